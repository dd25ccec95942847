// Starts the viewer as a user would, lets it run for a while and saves a picture of its main
// window. Used to make the pictures in the README (run it under xvfb-run).
//
//   oryx_screenshot <output.png> [seconds] [recording-folder]
//
// With a recording folder, the record button is pressed once the camera runs, so the run also
// leaves a CSV recording there (with the saved recording options otherwise).
#include <QApplication>
#include <QSurfaceFormat>
#include <QTimer>
#include <cstdio>

#include "RendererProbe.h"
#include "mainwindow.h"
#include "resources.h"
#include "ui_mainwindow.h"

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <output.png> [seconds]\n", argv[0]);
        return 2;
    }
    qputenv("QT_NO_FT_CACHE", "1");
    QSurfaceFormat format;
    format.setSamples(16);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication app(argc, argv);
    // The GL settings the viewer itself would choose on this machine.
    setUpGlRendering();
    initOryxResources();

    const QString output = QString::fromLocal8Bit(argv[1]);
    const double seconds = argc > 2 ? QString::fromLocal8Bit(argv[2]).toDouble() : 5.0;

    // At the size it opens with, as a user first sees it.
    MainWindow window;
    window.show();
    if (argc > 3) {
        window.recordingOptions().saveFolder = QString::fromLocal8Bit(argv[3]);
        QTimer::singleShot(2000, [&window] { window.form()->toolButton_save->click(); });
    }
    int result = 1;
    QTimer::singleShot(static_cast<int>(seconds * 1000), [&] {
        result = window.grab().save(output) ? 0 : 1;
        if (window.form()->toolButton_save->isChecked()) window.form()->toolButton_save->click();
        if (result != 0) std::fprintf(stderr, "could not write %s\n", argv[1]);
        window.close();
        app.quit();
    });
    app.exec();
    return result;
}
