#include "BackgroundAnalysis.h"

#include <utility>

namespace imunoise {

BackgroundAnalysis::BackgroundAnalysis(std::string path, Analysis analysis) {
    thread_ = std::thread([this, path = std::move(path), analysis = std::move(analysis)] {
        AnalysisOptions options;
        options.progress = [this](double share) {
            permille_.store(static_cast<int>(share * 1000.0));
            return !cancelled_.load();
        };
        report_ = analysis(path, options);
        finished_.store(true, std::memory_order_release);
    });
}

BackgroundAnalysis::~BackgroundAnalysis() {
    cancel();
    if (thread_.joinable()) thread_.join();
}

NoiseReport BackgroundAnalysis::takeReport() {
    // Finished: returns at once, and orders the report's writes before the reads.
    if (thread_.joinable()) thread_.join();
    return std::move(report_);
}

}  // namespace imunoise
