// When the orientation view with the software settings draws, on Mesa's software renderer (the
// X server of these tests): a still pose once, a slow turn once it moves a pixel, a new viewpoint
// or size at once; the same view with the hardware settings draws at every tick.
#include <QtTest>
#include <memory>

#include "OGL3DWidget.h"
#include "PaintCounter.h"
#include "RenderSettings.h"
#include "RendererProbe.h"
#include "WidgetTestMain.h"
#include "programstates.h"

namespace {

constexpr int kTickMs = 40;  // the main window's image timer

bw::Orientation turnAboutY(float degrees) {
    return bw::Orientation(bw::Rotation(degrees * 3.14159265f / 180.f, bw::Translation(0, 1, 0)));
}

}  // namespace

class TstSoftwareView : public QObject {
    Q_OBJECT

    // The view sits in a window, as in the main window, where the software settings give it a
    // native window of its own.
    std::unique_ptr<QWidget> window;
    OGL3DWidget* view = nullptr;
    std::unique_ptr<PaintCounter> counter;

    void showView(RenderPath path) {
        counter.reset();
        window.reset();
        installRenderSettings(RenderSettings::forPath(path));
        window = std::make_unique<QWidget>();
        window->resize(420, 320);
        view = new OGL3DWidget(window.get());
        view->setGeometry(10, 10, 400, 300);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QVERIFY(view->InitProcess());
        counter = std::make_unique<PaintCounter>(view);
        // The first frames (show, the one-pixel nudge) are Qt's own.
        QTest::qWait(200);
        QTRY_VERIFY(counter->paints > 0);
    }

    // Paints over `ticks` image-timer ticks.
    int paintsOver(int ticks) {
        counter->paints = 0;
        for (int i = 0; i < ticks; ++i) {
            view->requestFrame();
            QTest::qWait(kTickMs);
        }
        return counter->paints;
    }

private slots:
    void init() { ProgramStates::setIntAttr(18, 3); }
    void cleanup() {
        counter.reset();
        window.reset();
        installRenderSettings(RenderSettings::forPath(RenderPath::Hardware));
    }

    void aStillCameraIsDrawnOnce() {
        showView(RenderPath::Software);
        view->setCameraModelOr(turnAboutY(20.f));
        view->setGravity(0.f, -1.f, 0.f);
        QCOMPARE(paintsOver(3), 1);
        QCOMPARE(paintsOver(10), 0);
        // Forced to the hardware behaviour, the same view draws at every tick.
        view->setRenderSettings(RenderSettings::forPath(RenderPath::Hardware));
        QVERIFY(paintsOver(10) >= 8);
    }

    void aSlowTurnIsDrawnOnceItShows() {
        showView(RenderPath::Software);
        paintsOver(2);
        // Hundredths of a degree per tick: nothing moves by a pixel for a while, then a frame
        // catches up with everything turned since the last.
        float degrees = 0.f;
        int quietTicks = 0;
        counter->paints = 0;
        while (counter->paints == 0 && degrees < 5.f) {
            degrees += 0.01f;
            view->setCameraModelOr(turnAboutY(degrees));
            view->requestFrame();
            QTest::qWait(5);
            if (counter->paints == 0) ++quietTicks;
        }
        QCOMPARE(counter->paints, 1);
        QVERIFY(quietTicks >= 3);
        // A pixel at this size is about two degrees of the small model seen from the start-up
        // viewpoint.
        QVERIFY2(degrees < 3.f, qPrintable(QString::number(degrees)));
        QCOMPARE(paintsOver(3), 0);
        view->setCameraModelOr(turnAboutY(degrees + 5.f));
        QCOMPARE(paintsOver(3), 1);
    }

    void aNewViewpointOrSizeIsDrawnOnce() {
        showView(RenderPath::Software);
        paintsOver(2);
        QTest::keyClick(view, Qt::Key_Up);
        QCOMPARE(paintsOver(3), 1);
        QTest::keyClick(view, Qt::Key_R);
        QCOMPARE(paintsOver(3), 1);
        QCOMPARE(paintsOver(3), 0);
        counter->paints = 0;
        view->resize(500, 300);
        QTRY_VERIFY(counter->paints >= 1);
        QCOMPARE(view->getViewWidth(), 500.f);
        // Qt draws the new size itself (resize, then the X server's expose); after that the
        // frame on screen is the current one.
        QTest::qWait(200);
        QCOMPARE(paintsOver(3), 0);
    }
};

WIDGET_TEST_MAIN(TstSoftwareView)
#include "tst_softwareview.moc"
