// Picture of the "IMU Noise" window for the README, on a recording made beforehand (for example
// by oryx_sim_recording):
//
//   oryx_imu_noise_shot RECORDING.csv OUTPUT.png
#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>
#include <cstdio>

#include "ImuNoiseWindow.h"
#include "style.h"

int main(int argc, char* argv[]) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <recording.csv> <output.png>\n", argv[0]);
        return 2;
    }
    QApplication app(argc, argv);
    const Style style;  // the application's fonts, as the viewer loads them
    ImuNoiseWindow window(QString::fromLocal8Bit(argv[1]));
    window.resize(1200, 800);
    window.show();
    QElapsedTimer waited;
    waited.start();
    while (window.isAnalysing() && waited.elapsed() < 120000)
        app.processEvents(QEventLoop::AllEvents, 50);
    if (window.isAnalysing()) {
        std::fprintf(stderr, "the analysis did not end within two minutes\n");
        return 1;
    }
    for (int i = 0; i < 20; ++i) app.processEvents(QEventLoop::AllEvents, 20);
    if (!window.grab().save(QString::fromLocal8Bit(argv[2]))) {
        std::fprintf(stderr, "could not write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
