// The two GL views in real windows. The orientation view: what it paints before and after
// InitProcess, the model choice, the pose hand-over through its slots, and the mouse, wheel and
// key controls (the hand-over from the sampling thread runs in the main window's tests). The
// camera image view: letter-box viewports, the click rules and the drawing of a BGRA frame from
// host memory.
#include <QtTest>
#include <cmath>
#include <memory>
#include <vector>

#include "OGL2DWidget.h"
#include "OGL3DWidget.h"
#include "SceneChecks.h"
#include "WidgetTestMain.h"
#include "programstates.h"

namespace {

bool sameQuat(const bw::Orientation& a, const bw::Orientation& b, float eps = 1e-5f) {
    return near(a.x, b.x, eps) && near(a.y, b.y, eps) && near(a.z, b.z, eps) && near(a.w, b.w, eps);
}

}  // namespace

class TstViews : public QObject {
    Q_OBJECT

    std::unique_ptr<OGL3DWidget> view;
    std::unique_ptr<OGL2DWidget> image;

    template <class View>
    static void show(std::unique_ptr<View>& widget, int w, int h) {
        widget = std::make_unique<View>();
        widget->resize(w, h);
        widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
    }
    void showView(int w = 400, int h = 300) { show(view, w, h); }
    void showImage(int w, int h) { show(image, w, h); }

    QImage frame() { return view->grabFramebuffer(); }

    void sendWheel(int delta) {
        const QPointF pos(50, 50);
        QWheelEvent ev(pos, view->mapToGlobal(pos.toPoint()), QPoint(), QPoint(0, delta),
                       Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.get(), &ev);
    }

    void sendMouse(QEvent::Type type, QPoint pos, Qt::MouseButton button, Qt::MouseButtons held) {
        QMouseEvent ev(type, QPointF(pos), QPointF(view->mapToGlobal(pos)), button, held,
                       Qt::NoModifier);
        QApplication::sendEvent(view.get(), &ev);
    }

    void release(Qt::MouseButton button, QPointF pos) {
        QMouseEvent ev(QEvent::MouseButtonRelease, pos, QPointF(image->mapToGlobal(pos.toPoint())),
                       button, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(image.get(), &ev);
    }

    static QPointF clicked() {
        return {ProgramStates::getDoubleAttr(1), ProgramStates::getDoubleAttr(2)};
    }

private slots:
    void init() {
        ProgramStates::setIntAttr(18, 0);
        ProgramStates::setDoubleAttr(1, -1.0);
        ProgramStates::setDoubleAttr(2, -1.0);
        ProgramStates::setIntAttr(4, 0);
    }
    void cleanup() {
        view.reset();
        image.reset();
    }

    void beforeInitOnlyBackgroundAndBorder() {
        showView();
        const QImage img = frame();
        // Everything inside the frame is background; the thin grey frame runs along the edges.
        QCOMPARE(
            countNear(img.copy(5, 5, img.width() - 10, img.height() - 10), QColor(25, 25, 25), 0),
            (img.width() - 10) * (img.height() - 10));
        // The grey frame (60) lies within the outermost two pixels on the left and at the top;
        // the corners are blended into the background.
        QCOMPARE(std::max(img.pixelColor(0, 150).red(), img.pixelColor(1, 150).red()), 60);
        QCOMPARE(std::max(img.pixelColor(200, 0).red(), img.pixelColor(200, 1).red()), 60);
        QCOMPARE(img.pixelColor(0, 0), QColor(25, 25, 25));
        QVERIFY(!view->isInitialised());
    }

    // After InitProcess the grid shows with the model that the model code picks: ORYX
    // aluminium, ORYX_B light blue, any other code dark.
    void gridAndModelAppear_data() {
        QTest::addColumn<int>("code");
        QTest::addColumn<QColor>("body");
        QTest::newRow("ORYX") << 0 << QColor(163, 163, 163);
        QTest::newRow("ORYX_B") << 1 << QColor(201, 209, 237);
        QTest::newRow("ORYX_C") << 2 << QColor(51, 51, 51);
        QTest::newRow("none") << 32 << QColor(51, 51, 51);
    }

    void gridAndModelAppear() {
        QFETCH(int, code);
        QFETCH(QColor, body);
        ProgramStates::setIntAttr(18, code);
        showView();
        QVERIFY(view->InitProcess());
        QVERIFY(view->isInitialised());
        QCOMPARE(view->width(), 401);  // the one-pixel nudge
        const QImage img = frame();
        QVERIFY(countNear(img, QColor(217, 255, 66), 8) > 50);  // the lime grid
        QVERIFY(countNear(img, body, 3) > 30);
    }

    void poseChangesTheImage() {
        showView();
        view->InitProcess();
        const QImage before = frame();
        view->setCameraModelOr(bw::Orientation(bw::Rotation(1.2f, bw::Translation(0, 1, 0))));
        QVERIFY(frame() != before);
        view->setCameraModelOr(bw::Orientation());
        QCOMPARE(frame(), before);
        view->setCameraModelPos(bw::Translation(0.3f, 0, 0));
        QVERIFY(frame() != before);

        // The slots take it queued from other threads too.
        const bw::Orientation q(bw::Rotation(0.7f, bw::Translation(0, 0, 1)));
        QVERIFY(QMetaObject::invokeMethod(view.get(), "setCameraModelOr", Qt::QueuedConnection,
                                          Q_ARG(bw::Orientation, q)));
        QVERIFY(QMetaObject::invokeMethod(view.get(), "setCameraModelPos", Qt::QueuedConnection,
                                          Q_ARG(bw::Translation, bw::Translation(0.1f, 0, 0))));
        QTRY_VERIFY(sameQuat(view->modelOrientation(), q));
        QTRY_VERIFY(sameVec(view->modelPosition(), bw::Translation(0.1f, 0, 0)));
    }

    // Wheel, arrow keys and drags move the viewer camera; R takes it back to the start.
    void controlsMoveTheViewerAndRResetsIt() {
        showView();
        view->InitProcess();
        const CameraGL* cam = view->viewCamera();
        const CameraGL home = *cam;
        const bw::Translation start = home.getPosition();
        const QImage homeFrame = frame();

        // A wheel notch moves 0.15 against forward; less than a notch does nothing.
        sendWheel(120);
        QVERIFY(sameVec(cam->getPosition() - start, home.getForward() * -0.15f));
        const bw::Translation p = cam->getPosition();
        sendWheel(-7);
        QVERIFY(sameVec(cam->getPosition(), p, 0.f));
        sendWheel(-120);
        QVERIFY(sameVec(cam->getPosition(), start));

        // Arrow keys pan along up and right; other keys do nothing.
        QTest::keyClick(view.get(), Qt::Key_Up);
        QVERIFY(sameVec(cam->getPosition(), start + home.getUp() * -0.01f));
        QTest::keyClick(view.get(), Qt::Key_Down);
        QTest::keyClick(view.get(), Qt::Key_Right);
        QTest::keyClick(view.get(), Qt::Key_A);
        QVERIFY(sameVec(cam->getPosition(), start + home.getRight() * 0.01f));

        // Both buttons turn the viewer; the right button alone pans without turning; after the
        // release, and with the middle button, moves do nothing.
        sendMouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton,
                  Qt::LeftButton | Qt::RightButton);
        sendMouse(QEvent::MouseMove, {110, 120}, Qt::NoButton, Qt::LeftButton | Qt::RightButton);
        const bw::Orientation turned = cam->getOrientation();
        QVERIFY(!sameQuat(turned, home.getOrientation(), 1e-3f));
        const bw::Translation beforePan = cam->getPosition();
        sendMouse(QEvent::MouseMove, {135, 70}, Qt::NoButton, Qt::RightButton);
        QVERIFY(!sameVec(cam->getPosition(), beforePan, 1e-3f));
        QVERIFY(sameQuat(cam->getOrientation(), turned));
        const bw::Translation panned = cam->getPosition();
        sendMouse(QEvent::MouseButtonRelease, {135, 70}, Qt::RightButton, Qt::NoButton);
        sendMouse(QEvent::MouseMove, {10, 10}, Qt::NoButton, Qt::LeftButton);
        sendMouse(QEvent::MouseButtonPress, {10, 10}, Qt::MiddleButton, Qt::MiddleButton);
        sendMouse(QEvent::MouseMove, {60, 60}, Qt::NoButton, Qt::LeftButton);
        QVERIFY(sameVec(cam->getPosition(), panned));
        QVERIFY(sameQuat(cam->getOrientation(), turned));

        QTest::keyClick(view.get(), Qt::Key_R);
        QCOMPARE(cam->getPosition(), start);
        QVERIFY(cam->getOrientation() == home.getOrientation());
        QCOMPARE(frame(), homeFrame);
    }

    void aSecondCameraRebuildsTheSceneForItsModel() {
        ProgramStates::setIntAttr(18, 2);
        showView();
        QVERIFY(view->InitProcess());
        view->setCameraModelOr(bw::Orientation(0.f, 0.38268343f, 0.f, 0.92387953f));
        ProgramStates::setIntAttr(18, 1);
        QVERIFY(view->InitProcess());
        QVERIFY(countNear(frame(), QColor(201, 209, 237), 3) > 30);
        // The pose handed over before the new camera opened still applies.
        QVERIFY(sameQuat(view->modelOrientation(),
                         bw::Orientation(0.f, 0.38268343f, 0.f, 0.92387953f)));
    }

    void anInitialisationBeforeTheFirstShowWaitsForTheContext() {
        view = std::make_unique<OGL3DWidget>();
        view->resize(400, 300);
        QVERIFY(view->InitProcess());
        QVERIFY(!view->isInitialised());
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        QTRY_VERIFY(view->isInitialised());
        QVERIFY(countNear(frame(), QColor(217, 255, 66), 8) > 50);
    }

    void nonSquareViewStaysCentred() {
        showView(600, 200);
        view->InitProcess();
        const QImage wide = frame();
        // The square viewport of side max(w, h) is centred: left and right halves of the picture
        // mirror the centred scene; the model sits near the middle column.
        int minX = wide.width(), maxX = 0;
        for (int y = 0; y < wide.height(); ++y) {
            for (int x = 0; x < wide.width(); ++x) {
                const QColor p = wide.pixelColor(x, y);
                if (std::abs(p.red() - 163) <= 3 && p.red() == p.blue()) {
                    minX = std::min(minX, x);
                    maxX = std::max(maxX, x);
                }
            }
        }
        QVERIFY(maxX > minX);
        QVERIFY(std::abs((minX + maxX) / 2 - wide.width() / 2) < wide.width() / 6);
        QCOMPARE(view->viewCamera()->getHorizontalFOV(), view->viewCamera()->getVerticalFOV());
    }

    // ---- camera image view ----

    void letterBoxViewports() {
        showImage(800, 800);
        QSignalSpy spy(image.get(), &OGL2DWidget::init);
        image->InitGLProcess(1920, 1080, 1920 * 4);
        QCOMPARE(spy.count(), 1);
        QVERIFY(image->isAvailable());
        QCOMPARE(image->getViewport(), QRect(0, 175, 800, 450));
        image->resize(1000, 400);
        QTRY_COMPARE(image->getViewport(), QRect(144, 0, 711, 400));
        image->Deinit();
        QVERIFY(!image->isAvailable());
    }

    // A left click stores its place in the picture as shares of the width and height (rounded
    // to whole pixels first); outside the picture it is ignored, a right click clears it, and a
    // locked selection in selection mode ignores left clicks.
    void clickRules() {
        showImage(400, 200);
        release(Qt::LeftButton, {99.5, 150.4});
        QCOMPARE(clicked(), QPointF(0.25, 0.75));
        release(Qt::LeftButton, {-3, 50});
        release(Qt::LeftButton, {420, 10});
        QCOMPARE(clicked(), QPointF(0.25, 0.75));
        release(Qt::LeftButton, {400, 200});  // the far edges are inside
        QCOMPARE(clicked(), QPointF(1.0, 1.0));
        release(Qt::RightButton, {-50, -50});
        QCOMPARE(clicked(), QPointF(-1.0, -1.0));

        image->setSelectionLocked(true);
        ProgramStates::setIntAttr(4, 1);
        release(Qt::LeftButton, {100, 50});
        QCOMPARE(clicked(), QPointF(-1.0, -1.0));
        ProgramStates::setIntAttr(4, 0);  // both conditions are needed
        release(Qt::LeftButton, {100, 50});
        QCOMPARE(clicked(), QPointF(0.25, 0.25));
    }

    void drawsHostFrameWithRedAndBlueSwapped() {
        showImage(400, 400);
        const int w = 64, h = 36, pitch = w * 4 + 16;  // rows padded
        image->InitGLProcess(w, h, pitch);
        // Top half pure blue, bottom half pure red, in B, G, R, A order.
        std::vector<std::uint8_t> frame(static_cast<std::size_t>(pitch) * h, 0);
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                std::uint8_t* px = &frame[static_cast<std::size_t>(y) * pitch + 4 * x];
                px[y < h / 2 ? 0 : 2] = 255;
                px[3] = 255;
            }
        }
        image->setHostFrame(frame.data());
        image->Ingest();
        image->updateGL();  // paint now rather than on the next event loop pass
        const QImage img = image->grabFrameBuffer();
        // Viewport (0, 87, 400, 225): black bars above and below, blue top, red bottom.
        QCOMPARE(img.pixelColor(200, 40), QColor(Qt::black));
        QCOMPARE(img.pixelColor(200, 360), QColor(Qt::black));
        QCOMPARE(img.pixelColor(200, 130), QColor(Qt::blue));
        QCOMPARE(img.pixelColor(200, 270), QColor(Qt::red));
        // Without a frame to draw, all black.
        image->stopDraw();
        image->updateGL();
        QCOMPARE(image->grabFrameBuffer().pixelColor(200, 130), QColor(Qt::black));
    }
};

WIDGET_TEST_MAIN(TstViews)
#include "tst_views.moc"
