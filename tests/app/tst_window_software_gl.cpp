// The main window set up as start-up sets it up, on Mesa's software renderer (the X server of
// these tests): the settings the running orientation view got, with and without the
// ORYX_GL_RENDERING override; how often it draws a camera standing still; and what the screen
// shows of it.
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QScreen>
#include <QtTest>

#include "ComposedWindow.h"
#include "OGL3DWidget.h"
#include "PaintCounter.h"
#include "RenderSettings.h"
#include "RendererProbe.h"
#include "SimulatedCameras.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

Q_DECLARE_METATYPE(RenderPath)

namespace {

constexpr int kTimeoutMs = 10000;

QString gpuRenderer() { return QStringLiteral("NVIDIA Tegra Orin (nvgpu)/integrated"); }

}  // namespace

class TstWindowSoftwareGl : public QObject {
    Q_OBJECT

    std::unique_ptr<PacedVirtualTime> time;
    std::unique_ptr<MainWindow> window;

    OGL3DWidget* view() { return window->form()->widget_3d_view; }

    // A camera on a table: the pose never changes, only the accelerometer's noise.
    void openWindowOnStillCamera() {
        bw::sim::DeviceConfig camera = simulatedCamera(bw::MODEL::ORYX_D);
        camera.motion = bw::sim::MotionProfile::Still;
        time = std::make_unique<PacedVirtualTime>(std::vector<bw::sim::DeviceConfig>{camera});
        window = std::make_unique<MainWindow>();
        window->resize(1400, 900);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QTRY_VERIFY_WITH_TIMEOUT(window->isSampling() && view()->isInitialised(), kTimeoutMs);
        QTest::qWait(300);  // the first frames of the new scene
    }

    int framebufferSamples() {
        view()->makeCurrent();
        GLint samples = -1;
        QOpenGLContext::currentContext()->functions()->glGetIntegerv(GL_SAMPLES, &samples);
        view()->doneCurrent();
        return samples;
    }

private slots:
    void cleanup() {
        window.reset();
        time.reset();
        qunsetenv(kRenderingVariable);
        installRenderSettings(RenderSettings::forPath(RenderPath::Hardware));
    }

    void theRunningViewGetsTheChosenSettings_data() {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<bool>("onGpu");  // the probe names a GPU instead of asking Mesa
        QTest::addColumn<RenderPath>("path");
        QTest::newRow("detected: Mesa") << QByteArray() << false << RenderPath::Software;
        QTest::newRow("hardware on Mesa")
            << QByteArray("hardware") << false << RenderPath::Hardware;
        QTest::newRow("detected: GPU") << QByteArray() << true << RenderPath::Hardware;
        QTest::newRow("software on a GPU")
            << QByteArray("software") << true << RenderPath::Software;
    }

    void theRunningViewGetsTheChosenSettings() {
        QFETCH(QByteArray, variable);
        QFETCH(bool, onGpu);
        QFETCH(RenderPath, path);
        if (!variable.isNull()) qputenv(kRenderingVariable, variable);
        setUpGlRendering(onGpu ? &gpuRenderer : &probeGlRenderer);
        openWindowOnStillCamera();

        const bool software = path == RenderPath::Software;
        QCOMPARE(view()->renderSettings().path, path);
        if (software)
            QCOMPARE(framebufferSamples(), 0);
        else
            QVERIFY(framebufferSamples() > 1);  // llvmpipe's most is 4
        QCOMPARE(view()->internalWinId() != 0, software);

        // The image timer asks for 25 frames a second; a still camera needs none of them. The
        // hardware settings draw every one they get to.
        PaintCounter counter(view());
        if (software) {
            QTest::qWait(1500);
            QVERIFY2(counter.paints <= 2, qPrintable(QString::number(counter.paints)));
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(counter.paints >= 10, kTimeoutMs);
        }
    }

    void theScreenShowsGridAxesAndModel() {
        setUpGlRendering();
        openWindowOnStillCamera();
        QCOMPARE(view()->renderSettings().path, RenderPath::Software);
        // What the X server shows, the view's own window composed with the rest.
        const QRect area(view()->mapToGlobal(QPoint(0, 0)), view()->size());
        const QImage shown = QGuiApplication::primaryScreen()
                                 ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
                                 .toImage();
        QCOMPARE(shown.size(), area.size());
        using composed::countNear;
        QVERIFY(countNear(shown, QColor(217, 255, 66), 10) > 500);  // lime grid
        QVERIFY(countNear(shown, QColor(255, 87, 87), 10) > 100);   // X axis
        QVERIFY(countNear(shown, QColor(0, 190, 255), 10) > 100);   // Z axis
        QVERIFY(countNear(shown, QColor(51, 51, 51), 4) > 200);     // the ORYX_D body
    }
};

WIDGET_TEST_MAIN(TstWindowSoftwareGl)
#include "tst_window_software_gl.moc"
