// When the orientation view on a software renderer takes a new frame: whenever the scene, the
// size, the viewpoint or the motion state changed, and for a new pose only once the model or
// the dynamic triad would move by a pixel. Seen from the view's start-up viewpoint.
#include <QtTest>
#include <cmath>

#include "CameraGL.h"
#include "Oryx3D.h"
#include "ViewFrame.h"

namespace {

constexpr float kDegree = 3.14159265f / 180.f;
// The 3D view's size in the main window at 1400 x 900.
constexpr float kWindowViewWidth = 1100.f;
constexpr float kWindowViewHeight = 340.f;

CameraGL homeCamera() {
    CameraGL camera(bw::Translation(0.f, 0.f, 0.f), bw::Translation(0.f, 0.f, -1.f),
                    bw::Translation(0.f, 1.f, 0.f));
    camera.setOffsetFromPosition(bw::Translation(0.f, 0.f, 1.f));
    camera.setPosition(bw::Translation(-0.0542544f, -0.109509f, -0.270714f));
    camera.setRotation(bw::Orientation(-0.23252f, 0.170843f, 0.0401341f, 0.956623f));
    camera.setProjection(90.f, 90.f, 0.05f, 300.f);
    camera.update();
    return camera;
}

// A camera held level and at rest: gravity straight down the y axis.
ViewFrame restingFrame(float width = kWindowViewWidth, float height = kWindowViewHeight) {
    ViewFrame frame;
    frame.scene = 1;
    frame.width = width;
    frame.height = height;
    frame.viewProjection = homeCamera().getViewProjectionMatrix();
    frame.gravity = bw::Vector3<float>(0.f, -1.f, 0.f);
    return frame;
}

ViewFrame turned(ViewFrame frame, float degrees) {
    frame.model.setOrientation(
        bw::Orientation(bw::Rotation(degrees * kDegree, bw::Translation(0.f, 1.f, 0.f))));
    return frame;
}

const std::vector<bw::Vector3<float>>& oryxBox() {
    static const std::vector<bw::Vector3<float>> box = boundingBoxCorners(
        std::vector<float>(std::begin(ORYX_C_obj::vertices), std::end(ORYX_C_obj::vertices)));
    return box;
}

}  // namespace

class TstViewFrame : public QObject {
    Q_OBJECT

private slots:
    void accelerometerNoiseIsNotWorthAFrame() {
        // 0.02 m/s² of noise on each axis of 9.81 m/s² tilts the measured direction by about
        // 0.002; a triad drawn from it would tremble by a fraction of a pixel.
        ViewFrame shaken = restingFrame();
        for (const auto& g :
             {bw::Vector3<float>(0.004f, -1.f, 0.f), bw::Vector3<float>(-0.003f, -0.99999f, 0.003f),
              bw::Vector3<float>(0.f, -0.99998f, -0.004f)}) {
            shaken.gravity = g;
            QVERIFY(!looksDifferent(restingFrame(), shaken, oryxBox()));
        }
        shaken.gravity = bw::Vector3<float>(0.2f, -0.98f, 0.f);
        QVERIFY(looksDifferent(restingFrame(), shaken, oryxBox()));
    }

    void aTurnCountsOnceItMovesThePicture() {
        QVERIFY(!looksDifferent(restingFrame(), turned(restingFrame(), 0.02f), oryxBox()));
        QVERIFY(looksDifferent(restingFrame(), turned(restingFrame(), 2.f), oryxBox()));
    }

    void theThresholdIsInPixelsNotDegrees() {
        // A turn that stays within a pixel in a small view moves the model by two in a view
        // ten times as large.
        const float degrees = 1.f;
        QVERIFY(!looksDifferent(restingFrame(200, 150), turned(restingFrame(200, 150), degrees),
                                oryxBox()));
        QVERIFY(looksDifferent(restingFrame(2000, 1500), turned(restingFrame(2000, 1500), degrees),
                               oryxBox()));
    }

    void everythingElseIsWorthAFrame() {
        const ViewFrame drawn = restingFrame();
        ViewFrame now = drawn;
        now.width += 1.f;
        QVERIFY(looksDifferent(drawn, now, oryxBox()));
        now = drawn;
        now.scene = 2;  // a camera of another model opened
        QVERIFY(looksDifferent(drawn, now, oryxBox()));
        now = drawn;
        now.movingState = 1;
        QVERIFY(looksDifferent(drawn, now, oryxBox()));
        // The viewer stepped back by a tenth of a millimetre: the grid moves everywhere.
        CameraGL camera = homeCamera();
        camera.translate(camera.getForward() * 1e-4f);
        camera.update();
        now = drawn;
        now.viewProjection = camera.getViewProjectionMatrix();
        QVERIFY(looksDifferent(drawn, now, oryxBox()));
    }
};

QTEST_APPLESS_MAIN(TstViewFrame)
#include "tst_viewframe.moc"
