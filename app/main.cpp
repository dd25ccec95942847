#include <QApplication>
#include <QSurfaceFormat>

#include "RendererProbe.h"
#include "mainwindow.h"
#include "resources.h"

int main(int argc, char* argv[]) {
    // FreeType glyph caching is disabled for the whole process.
    qputenv("QT_NO_FT_CACHE", "1");

    // Every GL view gets multisampling unless it asks for something else.
    QSurfaceFormat format;
    format.setSamples(16);
    QSurfaceFormat::setDefaultFormat(format);

    // Must be set before the application object exists.
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);

    QApplication app(argc, argv);
    // Software OpenGL gets cheaper settings; this has to happen before the first GL widget.
    setUpGlRendering();
    initOryxResources();
    app.addLibraryPath("platforms/");

    MainWindow w;
    // Any arguments are recordings to replay: SensorDataViewer FILE.csv...
    w.openRecordings(app.arguments().mid(1));
    w.show();
    return app.exec();
}
