// Starts the viewer as a user would, lets it run for a while and saves a picture of its main
// window. Used to make the pictures in the README (run it under xvfb-run).
//
//   oryx_screenshot [--sensor=NAME] <output.png> [seconds] [recording-folder]
//
// With a recording folder, the record button is pressed once the camera runs, so the run also
// leaves a CSV recording there (with the saved recording options otherwise), and the picture
// shows the window recording. --sensor clicks the sensor button of that text ("Barometer",
// "Temperature", ...) once the camera runs.
#include <QApplication>
#include <QPushButton>
#include <QStringList>
#include <QSurfaceFormat>
#include <QTimer>
#include <cstdio>

#include "RendererProbe.h"
#include "mainwindow.h"
#include "resources.h"
#include "ui_mainwindow.h"

namespace {

// The options before the positional arguments.
struct ShotOptions {
    QString sensor;
    QStringList positional;
};

ShotOptions parse(const QStringList& arguments) {
    ShotOptions options;
    for (const QString& argument : arguments) {
        if (argument.startsWith(QStringLiteral("--sensor=")))
            options.sensor = argument.mid(QStringLiteral("--sensor=").size());
        else
            options.positional << argument;
    }
    return options;
}

void clickSensorButton(MainWindow& window, const QString& text) {
    for (QPushButton* button : window.findChildren<QPushButton*>()) {
        if (button->text() == text && button->isVisible()) {
            button->click();
            return;
        }
    }
    std::fprintf(stderr, "no sensor button \"%s\"\n", qPrintable(text));
}

}  // namespace

int main(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    const ShotOptions options = parse(arguments);
    if (options.positional.isEmpty()) {
        std::fprintf(stderr,
                     "usage: %s [--sensor=NAME] <output.png> [seconds] [recording-folder]\n",
                     argv[0]);
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

    const QString output = options.positional.value(0);
    const double seconds = options.positional.value(1, QStringLiteral("5")).toDouble();

    // At the size it opens with, as a user first sees it.
    MainWindow window;
    window.show();
    if (options.positional.size() > 2) {
        window.recordingOptions().saveFolder = options.positional.value(2);
        QTimer::singleShot(2000, [&window] { window.form()->toolButton_save->click(); });
    }
    if (!options.sensor.isEmpty())
        QTimer::singleShot(1000, [&] { clickSensorButton(window, options.sensor); });
    int result = 1;
    QTimer::singleShot(static_cast<int>(seconds * 1000), [&] {
        result = window.grab().save(output) ? 0 : 1;
        if (window.form()->toolButton_save->isChecked()) window.form()->toolButton_save->click();
        if (result != 0) std::fprintf(stderr, "could not write %s\n", qPrintable(output));
        window.close();
        app.quit();
    });
    app.exec();
    return result;
}
