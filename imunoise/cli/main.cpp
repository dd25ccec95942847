// oryx-imu-noise RECORDING.csv [--adev OUT.csv] [--kalibr OUT.yaml] [--json OUT.json]
//
// The IMU noise of a still recording, for boards without a display: prints the table of noise
// densities, random walks and bias instabilities and writes the files asked for. Exits with 0
// on success, 1 with a one-line reason on a refused file, 2 on a wrong command line and 3 when
// an output cannot be written.
#include <cstdio>
#include <cstring>
#include <string>

#include "NoiseAnalysis.h"
#include "NoiseExport.h"

namespace {

constexpr const char* kUsage =
    "usage: oryx-imu-noise RECORDING.csv [--adev OUT.csv] [--kalibr OUT.yaml] [--json OUT.json]\n";
constexpr const char* kRostopic = "/imu0";

struct Arguments {
    std::string recording, adev, kalibr, json;
};

bool parseArguments(int argc, char** argv, Arguments& arguments) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        std::string* target = word == "--adev"     ? &arguments.adev
                              : word == "--kalibr" ? &arguments.kalibr
                              : word == "--json"   ? &arguments.json
                                                   : nullptr;
        if (target != nullptr) {
            if (i + 1 >= argc || !target->empty()) return false;
            *target = argv[++i];
        } else if (word.rfind("--", 0) == 0 || !arguments.recording.empty()) {
            return false;
        } else {
            arguments.recording = word;
        }
    }
    return !arguments.recording.empty();
}

bool writeOutput(const std::string& path, const std::string& text) {
    if (path.empty()) return true;
    std::string error;
    if (imunoise::writeTextFile(path, text, error)) return true;
    std::fprintf(stderr, "oryx-imu-noise: %s\n", error.c_str());
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (!parseArguments(argc, argv, arguments)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const imunoise::NoiseReport report = imunoise::analyseRecording(arguments.recording);
    if (!report.analysed()) {
        std::fprintf(stderr, "oryx-imu-noise: %s: %s\n", arguments.recording.c_str(),
                     report.refusal.c_str());
        return 1;
    }
    std::fputs(imunoise::resultsTable(report).c_str(), stdout);
    for (const std::string& warning : report.warnings)
        std::fprintf(stderr, "warning: %s\n", warning.c_str());
    std::string yaml;
    if (!arguments.kalibr.empty()) {
        std::string refusal;
        yaml = imunoise::kalibrYaml(report, kRostopic, refusal);
        if (yaml.empty()) {
            std::fprintf(stderr, "oryx-imu-noise: no Kalibr file: %s\n", refusal.c_str());
            return 1;
        }
    }
    const bool written = writeOutput(arguments.adev, imunoise::curvesCsv(report)) &&
                         writeOutput(arguments.kalibr, yaml) &&
                         writeOutput(arguments.json, imunoise::resultsJson(report));
    return written ? 0 : 3;
}
