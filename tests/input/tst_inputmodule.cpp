// The camera input module on its own, against simulated cameras: what it reports without a
// camera, what it asks the camera for when it opens one, and how its grab loop treats errors.
#include <QtTest>
#include <atomic>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>

#include "InputThreadModul.h"
#include "SimulatedCameras.h"
#include "programstates.h"

using bw::MODEL;

namespace {

constexpr int kTimeoutMs = 5000;

// Virtual time that runs freely: the grab loop follows it, nothing here waits for a sample.
class FreeVirtualTime {
public:
    explicit FreeVirtualTime(const std::vector<bw::sim::DeviceConfig>& cameras) {
        bw::sim::Bus::instance().load(cameras);
        bw::sim::Clock::setAutoAdvanceLimit(UINT64_MAX);
    }
    ~FreeVirtualTime() { bw::sim::Bus::instance().load({}); }

private:
    bw::sim::VirtualTimeScope time_;
};

bw::Timestamp lastFrame(InputThreadModul& module) {
    return module.stereoCamera().getTimestamp(bw::TIME_REFERENCE::IMAGE);
}

// Lets the clock run on so that the camera has new frames to give.
void advance(std::uint64_t ns) { bw::sim::Clock::advanceBy(ns); }

}  // namespace

class TestInputModule : public QObject {
    Q_OBJECT

private slots:
    void init() {
        // Values no opening leaves behind by chance, so that their way into the camera shows.
        ProgramStates::resetStates();
        ProgramStates::setIntAttr(1, 3);
        ProgramStates::setIntAttr(13, 55);
    }

    void withoutACameraNothingRuns() {
        FreeVirtualTime time({});
        InputThreadModul module;
        QCOMPARE(module.getModel(), 32u);
        QCOMPARE(module.getSerialNum(), 0u);
        QVERIFY(!module.CreateMemories());
        module.enableToStart(true);
        module.startGrabbing();
        QVERIFY(!module.isRunning());
        QVERIFY(module.live(12345678) != bw::SUCCESS);
        QCOMPARE(module.getModel(), 32u);
    }

    void aStereoCameraIsAskedForWhatTheStateStoreHolds() {
        const bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        FreeVirtualTime time({camera});
        InputThreadModul module;
        QCOMPARE(module.live(camera.serial), int(bw::SUCCESS));
        QCOMPARE(module.getModel(), unsigned(MODEL::ORYX_D));
        QCOMPARE(module.getSerialNum(), camera.serial);
        const bw::InitParameters p = module.stereoCamera().getInitParameters();
        QCOMPARE(p.stream_quality, 3);
        QCOMPARE(p.sensor_rate_percent, 55);
        QCOMPARE(p.depth_stabilization, 0);
        QCOMPARE(p.image_downscale_x, 2);
        QCOMPARE(p.image_downscale_y, 2);
        QCOMPARE(p.sensors_required, 1);

        // Opening by camera id on the GMSL bus takes the same overrides but not the rate.
        const bw::sim::DeviceConfig gmsl = simulatedCamera(MODEL::ORYX_E, 1);
        bw::sim::Bus::instance().plug(gmsl);
        InputThreadModul byId;
        QCOMPARE(byId.gmsl(gmsl.cameraId), int(bw::SUCCESS));
        const bw::InitParameters q = byId.stereoCamera().getInitParameters();
        QCOMPARE(q.stream_quality, 3);
        QVERIFY(q.sensor_rate_percent != 55);
        QCOMPARE(q.image_downscale_x, 2);
    }

    void aSingleSensorCameraIsAskedForItsOwnParameters() {
        const bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_SOLO_B, 2);
        FreeVirtualTime time({camera});
        InputThreadModul module;
        QCOMPARE(module.gmsl_one(camera.cameraId), int(bw::SUCCESS));
        QVERIFY(!module.isStereoOpen());
        QCOMPARE(module.getModel(), unsigned(MODEL::ORYX_SOLO_B));
        const bw::InitParametersOne p = module.singleCamera().getInitParameters();
        QCOMPARE(p.stream_quality, 3);
        QVERIFY(p.sensors_required);
        QCOMPARE(p.image_downscale_x, 2);
        QCOMPARE(p.image_downscale_y, 2);
    }

    // A stop that comes before the new grab loop has begun still ends it.
    void stoppingRightAfterStartingEndsTheLoop() {
        const bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        FreeVirtualTime time({camera});
        InputThreadModul module;
        QCOMPARE(module.live(camera.serial), int(bw::SUCCESS));
        module.enableToStart(true);
        for (int round = 0; round < 100; ++round) {
            module.startGrabbing();
            module.stopGrabbing();
            QVERIFY(module.isFinished());
        }
    }

    // Any grab error but a lost camera is waited out; a lost camera ends the loop and is
    // reported once.
    void theGrabLoopCarriesOnThroughErrorsAndEndsOnALoss() {
        const bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        FreeVirtualTime time({camera});
        InputThreadModul module;
        // The loss is announced from the grab thread; QSignalSpy would append there
        // while this thread reads it, so count with an atomic instead.
        std::atomic<int> losses{0};
        QObject::connect(&module, &InputThreadModul::DetectORYXDisconnect, [&losses] { ++losses; });
        QCOMPARE(module.live(camera.serial), int(bw::SUCCESS));
        QVERIFY(module.CreateMemories());
        module.startGrabbing();  // waits for the start permission
        QVERIFY(module.isRunning());
        module.enableToStart(false);  // the argument is ignored: it always permits
        advance(100'000'000);
        QTRY_VERIFY_WITH_TIMEOUT(lastFrame(module) > 0, kTimeoutMs);

        bw::sim::Faults failing;
        failing.grabFails = true;
        bw::sim::Bus::instance().setFaults(camera.serial, failing);
        const bw::Timestamp before = lastFrame(module);
        advance(1'000'000'000);
        QTest::qWait(100);
        QCOMPARE(lastFrame(module), before);  // no frame while grabs fail
        QVERIFY(module.isRunning());
        QCOMPARE(losses.load(), 0);

        bw::sim::Bus::instance().setFaults(camera.serial, {});
        advance(100'000'000);
        QTRY_VERIFY_WITH_TIMEOUT(lastFrame(module) > before, kTimeoutMs);

        bw::sim::Bus::instance().unplug(camera.serial);
        QTRY_VERIFY_WITH_TIMEOUT(!module.isRunning(), kTimeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(losses.load(), 1, kTimeoutMs);
        QVERIFY(!module.isOpened());
    }
};

QTEST_GUILESS_MAIN(TestInputModule)
#include "tst_inputmodule.moc"
