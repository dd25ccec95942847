// A recording of a simulated camera made on the virtual clock, as fast as the simulation runs:
// hours of IMU data for the README's picture of the IMU noise window and for trying
// oryx-imu-noise.
//
//   oryx_sim_recording OUTPUT.csv SECONDS ["ORYX_SIM text of one camera"]
#include <QCoreApplication>
#include <bw/sim/Scenario.hpp>
#include <cstdio>

#include "SimulatedRecording.h"

int main(int argc, char* argv[]) {
    if (argc < 3 || argc > 4) {
        std::fprintf(stderr, "usage: %s <output.csv> <seconds> [\"camera text\"]\n", argv[0]);
        return 2;
    }
    QCoreApplication app(argc, argv);
    const std::string text = argc > 3 ? argv[3] : "motion=still";
    const bw::sim::ScenarioParseResult scenario = bw::sim::parseScenario(text);
    if (!scenario.ok || scenario.cameras.empty()) {
        std::fprintf(stderr, "%s\n", scenario.error.c_str());
        return 2;
    }
    QString error;
    const long rows =
        recordSimulatedCamera(scenario.cameras.front(), std::atof(argv[2]), everyGroupRecording(),
                              QString::fromLocal8Bit(argv[1]), error);
    if (rows < 0) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    std::printf("%ld rows\n", rows);
    return 0;
}
