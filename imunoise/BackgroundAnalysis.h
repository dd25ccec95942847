// One noise analysis on a thread of its own, for a window that must stay responsive: the window
// polls its progress and its end, takes the report, and may cancel it at any time. Every hand-over
// goes through atomics and the thread's join, so nothing is shared unguarded.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "NoiseAnalysis.h"

namespace imunoise {

class BackgroundAnalysis {
public:
    // What is run; analyseRecording unless a caller wants another (a test holding it back).
    using Analysis = std::function<NoiseReport(const std::string&, const AnalysisOptions&)>;

    // Starts at once.
    explicit BackgroundAnalysis(std::string path, Analysis analysis = analyseRecording);
    // Cancels and waits for the thread.
    ~BackgroundAnalysis();
    BackgroundAnalysis(const BackgroundAnalysis&) = delete;
    BackgroundAnalysis& operator=(const BackgroundAnalysis&) = delete;

    void cancel() { cancelled_.store(true); }
    // The share done, 0 to 1.
    double progress() const { return permille_.load() / 1000.0; }
    bool finished() const { return finished_.load(std::memory_order_acquire); }
    // Once finished: the report (moved out; call once).
    NoiseReport takeReport();

private:
    std::atomic<bool> cancelled_{false};
    std::atomic<bool> finished_{false};
    std::atomic<int> permille_{0};
    NoiseReport report_;
    std::thread thread_;
};

}  // namespace imunoise
