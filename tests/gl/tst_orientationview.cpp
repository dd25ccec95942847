// The orientation view in a real window: what it paints before and after InitProcess, the model
// choice, the pose hand-over from another thread, and the mouse, wheel and key controls.
#include <QtTest>
#include <atomic>
#include <cmath>
#include <memory>
#include <thread>

#include "OGL3DWidget.h"
#include "SceneChecks.h"
#include "WidgetTestMain.h"
#include "programstates.h"

namespace {

bool sameQuat(const bw::Orientation& a, const bw::Orientation& b, float eps = 1e-5f) {
    return near(a.x, b.x, eps) && near(a.y, b.y, eps) && near(a.z, b.z, eps) && near(a.w, b.w, eps);
}

}  // namespace

class TstOrientationView : public QObject {
    Q_OBJECT

    std::unique_ptr<OGL3DWidget> view;

    void showView(int w = 400, int h = 300) {
        view = std::make_unique<OGL3DWidget>();
        view->resize(w, h);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    }

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

private slots:
    void init() { ProgramStates::setIntAttr(18, 0); }
    void cleanup() { view.reset(); }

    void beforeInitOnlyBackgroundAndBorder() {
        showView();
        const QImage img = frame();
        QCOMPARE(img.pixelColor(200, 150), QColor(25, 25, 25));
        // Everything inside the frame is background; the thin grey frame runs along the edges.
        QCOMPARE(
            countNear(img.copy(5, 5, img.width() - 10, img.height() - 10), QColor(25, 25, 25), 0),
            (img.width() - 10) * (img.height() - 10));
        // The grey frame (RGB 60, 60, 60) lies within the outermost two pixels on the left
        // and at the top.
        auto greyest = [&](QPoint a, QPoint b) {
            return std::max(img.pixelColor(a), img.pixelColor(b),
                            [](QColor l, QColor r) { return l.red() < r.red(); });
        };
        QCOMPARE(greyest({0, 150}, {1, 150}), QColor(60, 60, 60));
        QCOMPARE(greyest({200, 0}, {200, 1}), QColor(60, 60, 60));
        // The corners are blended into the background.
        QCOMPARE(img.pixelColor(0, 0), QColor(25, 25, 25));
        QVERIFY(!view->isInitialised());
    }

    void afterInitGridAndModelAppear() {
        showView();
        QVERIFY(view->InitProcess());
        QVERIFY(view->isInitialised());
        QCOMPARE(view->width(), 401);  // the one-pixel nudge
        const QImage img = frame();
        // Lime grid crosses and the aluminium model body (ORYX: 0.64 grey).
        QVERIFY(countNear(img, QColor(217, 255, 66), 8) > 50);
        QVERIFY(countNear(img, QColor(163, 163, 163), 3) > 50);
        QCOMPARE(view->grid()->getIndices().size(), std::size_t(2 * 246));
        QCOMPARE(view->fixedAxis()->getIndices().size(), std::size_t(6));
    }

    void modelChoiceByCode_data() {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("triangles");
        QTest::addColumn<QColor>("body");
        QTest::newRow("ORYX") << 0 << 108 << QColor(163, 163, 163);
        QTest::newRow("ORYX_B") << 1 << 1513 << QColor(201, 209, 237);
        QTest::newRow("ORYX_C") << 2 << 108 << QColor(51, 51, 51);
        QTest::newRow("ORYX_F") << 5 << 108 << QColor(51, 51, 51);
        QTest::newRow("SOLO_B") << 31 << 108 << QColor(51, 51, 51);
        QTest::newRow("none") << 32 << 108 << QColor(51, 51, 51);
    }

    void modelChoiceByCode() {
        QFETCH(int, code);
        QFETCH(int, triangles);
        QFETCH(QColor, body);
        ProgramStates::setIntAttr(18, code);
        showView();
        view->InitProcess();
        QCOMPARE(view->model()->getIndices().size(), std::size_t(3 * triangles));
        QCOMPARE(view->model()->getVertices().size(), std::size_t(9 * triangles));
        QCOMPARE(view->model()->getDrawingType(), 4u);
        QVERIFY(countNear(frame(), body, 3) > 30);
    }

    void turningTheModelChangesTheImage() {
        showView();
        view->InitProcess();
        const QImage before = frame();
        view->setCameraModelOr(bw::Orientation(bw::Rotation(1.2f, bw::Translation(0, 1, 0))));
        const QImage turned = frame();
        QVERIFY(before != turned);
        view->setCameraModelOr(bw::Orientation());
        QCOMPARE(frame(), before);
        view->setCameraModelPos(bw::Translation(0.3f, 0, 0));
        QVERIFY(frame() != before);
        view->setCameraModelTr(bw::Transform(bw::Orientation(), bw::Translation(0, 0, 0)));
        QCOMPARE(frame(), before);
    }

    void poseFromAnotherThread() {
        showView();
        view->InitProcess();
        std::atomic<bool> stop{false};
        std::thread sampler([&] {
            float a = 0.f;
            while (!stop.load()) {
                a += 0.01f;
                view->setGravity(std::sin(a), std::cos(a), 0.f);
                view->setCameraModelOr(bw::Orientation(bw::Rotation(a, bw::Translation(0, 0, 1))));
                view->setCameraModelPos(bw::Translation(0, 0, 0));
                view->setMovingState(int(a) % 3);
            }
            view->setCameraModelOr(bw::Orientation(bw::Rotation(0.5f, bw::Translation(1, 0, 0))));
        });
        for (int i = 0; i < 5; ++i) {
            frame();
        }
        stop = true;
        sampler.join();
        frame();
        QVERIFY(sameQuat(view->model()->getRotation(),
                         bw::Orientation(bw::Rotation(0.5f, bw::Translation(1, 0, 0)))));
    }

    void poseThroughQueuedSlots() {
        showView();
        view->InitProcess();
        const bw::Orientation q(bw::Rotation(0.7f, bw::Translation(0, 0, 1)));
        QVERIFY(QMetaObject::invokeMethod(view.get(), "setCameraModelOr", Qt::QueuedConnection,
                                          Q_ARG(bw::Orientation, q)));
        QVERIFY(QMetaObject::invokeMethod(view.get(), "setCameraModelPos", Qt::QueuedConnection,
                                          Q_ARG(bw::Translation, bw::Translation(0.1f, 0, 0))));
        QTRY_VERIFY(sameQuat(view->modelOrientation(), q));
        QTRY_VERIFY(sameVec(view->modelPosition(), bw::Translation(0.1f, 0, 0)));
        QVERIFY(QMetaObject::invokeMethod(view.get(), "ResetPosition", Qt::QueuedConnection));
    }

    void wheelMovesAlongMinusForward() {
        showView();
        view->InitProcess();
        const CameraGL* cam = view->viewCamera();
        const bw::Translation start = cam->getPosition();
        const bw::Translation fwd = cam->getForward();
        sendWheel(120);
        const bw::Translation moved = cam->getPosition() - start;
        QVERIFY(near(moved.norm(), 0.15f));
        QVERIFY(sameVec(moved, fwd * -0.15f));
        const bw::Translation p = cam->getPosition();
        sendWheel(-7);
        QVERIFY(sameVec(cam->getPosition(), p, 0.f));
        sendWheel(-120);
        QVERIFY(sameVec(cam->getPosition(), start));
    }

    void resetRestoresTheStartViewpoint() {
        showView();
        view->InitProcess();
        const CameraGL* cam = view->viewCamera();
        const bw::Translation pos = cam->getPosition();
        const bw::Orientation rot = cam->getOrientation();
        const bw::Translation fwd = cam->getForward();
        const bw::Translation up = cam->getUp();
        const QImage home = frame();

        sendWheel(240);
        QTest::keyClick(view.get(), Qt::Key_Up);
        QTest::keyClick(view.get(), Qt::Key_Left);
        sendMouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton, Qt::LeftButton);
        sendMouse(QEvent::MouseMove, {140, 130}, Qt::NoButton, Qt::LeftButton);
        sendMouse(QEvent::MouseButtonRelease, {140, 130}, Qt::LeftButton, Qt::NoButton);
        QVERIFY(!(cam->getPosition() == pos));
        QVERIFY(!(cam->getOrientation() == rot));

        QTest::keyClick(view.get(), Qt::Key_R);
        QCOMPARE(cam->getPosition(), pos);
        QVERIFY(cam->getOrientation() == rot);
        QVERIFY(cam->getForward() == fwd);
        QVERIFY(cam->getUp() == up);
        QCOMPARE(frame(), home);
    }

    void arrowKeysPan() {
        showView();
        view->InitProcess();
        const CameraGL* cam = view->viewCamera();
        const bw::Translation start = cam->getPosition();
        const bw::Translation up = cam->getUp();
        const bw::Translation right = cam->getRight();
        QTest::keyClick(view.get(), Qt::Key_Up);
        QVERIFY(sameVec(cam->getPosition(), start + up * -0.01f));
        QTest::keyClick(view.get(), Qt::Key_Down);
        QVERIFY(sameVec(cam->getPosition(), start));
        QTest::keyClick(view.get(), Qt::Key_Right);
        QVERIFY(sameVec(cam->getPosition(), start + right * 0.01f));
        QTest::keyClick(view.get(), Qt::Key_A);  // ignored
        QVERIFY(sameVec(cam->getPosition(), start + right * 0.01f));
    }

    void dragRotatesAndPans() {
        showView();
        view->InitProcess();
        const CameraGL* cam = view->viewCamera();
        // Reference camera driven through the same steps.
        CameraGL ref = *cam;

        // Both buttons: a rotation by (dx, dy) / 5, then a pan whose step is measured from the
        // position the rotation just stored, i.e. zero.
        sendMouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton,
                  Qt::LeftButton | Qt::RightButton);
        sendMouse(QEvent::MouseMove, {110, 120}, Qt::NoButton, Qt::LeftButton | Qt::RightButton);
        ref.rotate(bw::Rotation(4.f * 0.015f, ref.getRight()));
        ref.rotate(bw::Rotation(2.f * 0.015f, -ref.getVertical()));
        QVERIFY(sameQuat(cam->getOrientation(), ref.getOrientation()));
        QVERIFY(sameVec(cam->getPosition(), ref.getPosition()));

        // Right button only: a pan by (dx, dy) / 50 along up and right.
        sendMouse(QEvent::MouseMove, {135, 70}, Qt::NoButton, Qt::RightButton);
        ref.translate(ref.getUp() * (-1.f * 0.1f));
        ref.translate(ref.getRight() * (0.5f * 0.1f));
        QVERIFY(sameVec(cam->getPosition(), ref.getPosition()));
        QVERIFY(sameQuat(cam->getOrientation(), ref.getOrientation()));

        // After the release, moves do nothing.
        sendMouse(QEvent::MouseButtonRelease, {135, 70}, Qt::RightButton, Qt::NoButton);
        sendMouse(QEvent::MouseMove, {10, 10}, Qt::NoButton, Qt::LeftButton);
        QVERIFY(sameVec(cam->getPosition(), ref.getPosition()));
        // A middle-button press does not start a drag.
        sendMouse(QEvent::MouseButtonPress, {10, 10}, Qt::MiddleButton, Qt::MiddleButton);
        sendMouse(QEvent::MouseMove, {60, 60}, Qt::NoButton, Qt::LeftButton);
        QVERIFY(sameQuat(cam->getOrientation(), ref.getOrientation()));
    }

    void aSecondCameraRebuildsTheSceneForItsModel() {
        ProgramStates::setIntAttr(18, 2);
        showView();
        QVERIFY(view->InitProcess());
        view->setCameraModelOr(bw::Orientation(0.f, 0.38268343f, 0.f, 0.92387953f));
        ProgramStates::setIntAttr(18, 1);
        QVERIFY(view->InitProcess());
        QCOMPARE(view->model()->getIndices().size(), std::size_t(3 * 1513));
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

    void colourHelper() {
        showView();
        float r = 0, g = 0, b = 0;
        view->getColor(10, 0, r, g, b);
        QVERIFY(near(r, 0.1f) && near(g, 0.3f) && near(b, 0.8f));
        view->getColor(10, 5, r, g, b);
        QVERIFY(near(r, 0.f) && near(b, 0.f));
        view->getColor(10, 10, r, g, b);
        QVERIFY(near(b, 0.8f));
    }
};

WIDGET_TEST_MAIN(TstOrientationView)
#include "tst_orientationview.moc"
