// bw::Camera and bw::CameraOne on the simulated bus: opening, cable loss, and
// the sensor-record contract on the virtual clock (every IMU sample once and in order, backlog
// oldest first and at most a second of it, waiting readers), image frames and faults.
#include <QtTest>

#include "physics/SensorTimeline.hpp"
#include "SimFixture.hpp"

using namespace simtest;
using bw::MODEL;
using bw::SensorsData;
using Location = bw::SensorsData::TemperatureData::SENSOR_LOCATION;

Q_DECLARE_METATYPE(bw::sim::MotionProfile)

namespace {

constexpr std::uint64_t kImuPeriodNs = 2'500'000;
constexpr unsigned kSerialD = 30000001;

// Every IMU timestamp a camera of this description stamps in (fromNs, toNs], computed by a
// timeline of its own.
std::vector<std::uint64_t> expectedImu(unsigned serial, std::uint64_t startNs, std::uint64_t fromNs,
                                       std::uint64_t toNs) {
    bw::sim::SensorTimeline timeline(*Bus::instance().config(serial), startNs);
    std::vector<std::uint64_t> out;
    std::uint64_t cursor = fromNs;
    for (std::uint64_t now = fromNs;; now = std::min(now + 100 * kMs, toNs)) {
        timeline.advanceTo(now);
        while (const auto* s = timeline.firstImuAfter(cursor)) {
            out.push_back(cursor = s->timestampNs);
        }
        if (now == toNs) return out;
    }
}

// Reads until a few calls in a row bring nothing new; the IMU timestamps after `last`, in order.
std::vector<std::uint64_t> drain(bw::Camera& cam, std::uint64_t last = 0) {
    std::vector<std::uint64_t> out;
    SensorsData data;
    for (int idle = 0; idle < 3;) {
        if (cam.getSensorsData(data, bw::TIME_REFERENCE::CURRENT) != bw::SUCCESS) break;
        if (data.imu.timestamp == last) {
            ++idle;
        } else {
            out.push_back(last = data.imu.timestamp);
            idle = 0;
        }
    }
    return out;
}

bool noGaps(const std::vector<std::uint64_t>& t) {
    for (size_t i = 1; i < t.size(); ++i) {
        if (t[i] <= t[i - 1] || t[i] - t[i - 1] >= 2 * kImuPeriodNs) return false;
    }
    return true;
}

SensorsData read(bw::Camera& cam) {
    SensorsData data;
    cam.getSensorsData(data, bw::TIME_REFERENCE::CURRENT);
    return data;
}

// Reads through the backlog; the record of the newest sample.
SensorsData catchUp(bw::Camera& cam) {
    SensorsData data = read(cam);
    for (SensorsData next = read(cam); next.imu.timestamp != data.imu.timestamp; next = read(cam)) {
        data = next;
    }
    return data;
}

}  // namespace

class TestCamera : public QObject {
    Q_OBJECT

private slots:
    void opening() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD), camera(MODEL::ORYX_E, 0, 2),
                      camera(MODEL::ORYX_SOLO_A, 0, 5)});
        bw::Camera cam;
        SensorsData data;
        COMPARE_CODE(cam.grab(), bw::CAMERA_NOT_INITIALIZED);
        COMPARE_CODE(cam.getSensorsData(data, bw::TIME_REFERENCE::CURRENT),
                     bw::CAMERA_NOT_INITIALIZED);
        COMPARE_CODE(cam.open(bySerial(123)), bw::CAMERA_NOT_DETECTED);

        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        const bw::CameraInformation info = cam.getCameraInformation();
        QCOMPARE(info.serial_number, kSerialD);
        COMPARE_CODE(info.camera_model, MODEL::ORYX_D);
        QCOMPARE(info.bus_type, bw::BUS_TYPE::USB);

        COMPARE_CODE(cam.open(byId(2)), bw::SUCCESS);  // reopening releases the first camera
        COMPARE_CODE(cam.getCameraInformation().camera_model, MODEL::ORYX_E);
        QCOMPARE(cam.getCameraInformation().bus_type, bw::BUS_TYPE::GMSL);
        COMPARE_CODE(cam.open(byId(5)), bw::CAMERA_NOT_DETECTED);  // a single-sensor camera

        bw::CameraOne one;
        COMPARE_CODE(one.open(monoById(5)), bw::SUCCESS);
        QVERIFY(one.isOpened());
        COMPARE_CODE(one.getCameraInformation().camera_model, MODEL::ORYX_SOLO_A);
        cam.close();
        QVERIFY(!cam.isOpened());
        QCOMPARE(cam.getCameraInformation().serial_number, 0u);
    }

    // The camera reports in the image frame (x right, y down, z forward): at rest the specific
    // force points up, -y, and the pose turns the world's up into the measured force direction.
    void sensorsAndPoseShareTheImageFrame_data() {
        QTest::addColumn<bw::sim::MotionProfile>("motion");
        QTest::addColumn<double>("toleranceDeg");
        QTest::newRow("still") << bw::sim::MotionProfile::Still << 1.0;
        QTest::newRow("hand-held") << bw::sim::MotionProfile::Gentle << 6.0;
    }

    void sensorsAndPoseShareTheImageFrame() {
        QFETCH(bw::sim::MotionProfile, motion);
        QFETCH(double, toleranceDeg);
        DeviceConfig config = camera(MODEL::ORYX_D, kSerialD);
        config.motion = motion;
        SimScope sim({config});
        bw::Camera cam;
        Clock::setAutoAdvanceLimit(UINT64_MAX);
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        Clock::setAutoAdvanceLimit(0);
        for (int i = 0; i < 20; ++i) {
            Clock::advanceBy(250 * kMs);
            const SensorsData d = catchUp(cam);
            const bw::Orientation q = d.imu.pose.getOrientation();
            const bw::Orientation worldToCamera(-q.x, -q.y, -q.z, q.w);
            const bw::Translation up = bw::Translation(0.f, -1.f, 0.f) * worldToCamera;
            const bw::Translation force =
                bw::Translation::normalize(bw::Translation(d.imu.linear_acceleration));
            const double cosine = std::min(1.f, bw::Translation::dot(up, force));
            QVERIFY2(std::acos(cosine) * 180.0 / M_PI < toleranceDeg,
                     qPrintable(QString("sample %1: %2 deg").arg(i).arg(std::acos(cosine) * 57.3)));
        }
        if (motion == bw::sim::MotionProfile::Still) {
            const SensorsData d = catchUp(cam);
            QVERIFY(d.imu.linear_acceleration.y < -9.5f);
            // Level on the table: pitch and roll stay near zero whatever the heading.
            const bw::Vector3<float> euler = d.imu.pose.getEulerAngles(false);
            QVERIFY2(std::abs(euler.x) < 3.f && std::abs(euler.z) < 3.f,
                     qPrintable(QString("%1 %2 %3").arg(euler.x).arg(euler.y).arg(euler.z)));
        }
    }

    void cableLossNeedsAReopen() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        Clock::setAutoAdvanceLimit(UINT64_MAX);
        bw::Camera cam;
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        COMPARE_CODE(cam.grab(), bw::SUCCESS);
        Bus::instance().unplug(kSerialD);
        SensorsData data;
        COMPARE_CODE(cam.grab(), bw::CAMERA_NOT_DETECTED);
        COMPARE_CODE(cam.getSensorsData(data, bw::TIME_REFERENCE::CURRENT),
                     bw::CAMERA_NOT_DETECTED);
        COMPARE_CODE(cam.getSensorsData(data, bw::TIME_REFERENCE::IMAGE), bw::CAMERA_NOT_DETECTED);
        bw::Camera other;
        COMPARE_CODE(other.open(bySerial(kSerialD)), bw::CAMERA_NOT_DETECTED);

        Bus::instance().replug(kSerialD);
        COMPARE_CODE(cam.grab(), bw::CAMERA_NOT_DETECTED);  // the old session died with the cable
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        COMPARE_CODE(cam.grab(), bw::SUCCESS);
        QVERIFY(read(cam).imu.timestamp > 0);
    }

    // A reader gets every IMU sample once and in order: after a stall the backlog oldest first,
    // after a long one only the last second of it, and then every sample as time runs on.
    void readerGetsEverySampleOfTheLastSecond() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        bw::Camera cam;
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        Clock::advanceBy(20 * kMs);
        const std::uint64_t cursor = drain(cam).back();

        Clock::advanceBy(800 * kMs);  // the reader stalls; nobody reads
        auto got = drain(cam);
        QCOMPARE(got, expectedImu(kSerialD, sim.startNs, cursor, Clock::nowNs()));
        QVERIFY(got.size() > 300);

        Clock::advanceBy(3 * kSecond);
        got = drain(cam);
        const auto all = expectedImu(kSerialD, sim.startNs, sim.startNs, Clock::nowNs());
        QCOMPARE(got.back(), all.back());
        QVERIFY(got.front() > all.back() - kSecond);
        QVERIFY(got.front() <= all.back() - kSecond + 2 * kImuPeriodNs);
        QVERIFY(noGaps(got));

        const std::uint64_t from = Clock::nowNs(), end = from + 3 * kSecond;
        Clock::setAutoAdvanceLimit(end);
        got = drain(cam, got.back());
        QCOMPARE(got, expectedImu(kSerialD, sim.startNs, from, end));
        QVERIFY(got.size() > 1150 && noGaps(got));
    }

    void upToDateReaderWaitsForTheNextSample() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        bw::Camera cam;
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        Clock::advanceBy(10 * kMs);
        const std::uint64_t newest = drain(cam).back();
        const std::uint64_t now = Clock::nowNs();
        // Time may not move by itself: the wait ends with the same record.
        QCOMPARE(read(cam).imu.timestamp, newest);
        QCOMPARE(Clock::nowNs(), now);
        // Allowed to move: the wait itself brings the clock to the next sample.
        Clock::setAutoAdvanceLimit(now + 2 * kImuPeriodNs);
        const std::uint64_t next = read(cam).imu.timestamp;
        QVERIFY(next > newest && next == Clock::nowNs());
    }

    void imageRecordLeavesTheCursorAlone() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        Clock::setAutoAdvanceLimit(UINT64_MAX);
        bw::Camera cam;
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        const std::uint64_t first = read(cam).imu.timestamp;
        COMPARE_CODE(cam.grab(), bw::SUCCESS);  // the first frame comes at once
        std::uint64_t previous = cam.getTimestamp(bw::TIME_REFERENCE::IMAGE);
        // Frames follow the clock and never move it: the sensor reader drives virtual time.
        const std::uint64_t beforeGrab = Clock::nowNs();
        COMPARE_CODE(cam.grab(), bw::SUCCESS);
        QCOMPARE(Clock::nowNs(), beforeGrab);
        for (int i = 0; i < 3; ++i) {
            Clock::advanceBy(1'000'000'000ull / 30);
            COMPARE_CODE(cam.grab(), bw::SUCCESS);
            const std::uint64_t t = cam.getTimestamp(bw::TIME_REFERENCE::IMAGE);
            QVERIFY(t - previous <= 1'000'000'000ull / 30);  // then 30 fps on the clock
            QVERIFY(t - previous > 1'000'000'000ull / 30 - 3 * kMs);
            previous = t;
        }
        SensorsData atImage;
        COMPARE_CODE(cam.getSensorsData(atImage, bw::TIME_REFERENCE::IMAGE), bw::SUCCESS);
        QVERIFY(atImage.imu.timestamp <= previous);
        QVERIFY(atImage.imu.timestamp + kImuPeriodNs * 2 > previous);
        // The reader's next record is the one after its own last, not after the image.
        const std::uint64_t next = read(cam).imu.timestamp;
        QVERIFY(next > first && next - first < 2 * kImuPeriodNs);
    }

    void faults() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        bw::Camera cam;
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        Clock::advanceBy(50 * kMs);
        bw::sim::Faults f;
        f.magSaturated = true;
        f.temperatureLeftFails = true;
        f.baroUnavailable = true;
        Bus::instance().setFaults(kSerialD, f);
        SensorsData d = catchUp(cam);
        QCOMPARE(d.magnetometer.magnetic_field_uncalibrated.z, 2048.f);
        QVERIFY(!d.barometer.is_available);
        float celsius;
        COMPARE_CODE(d.temperature.get(Location::ONBOARD_LEFT, celsius), bw::SENSORS_NOT_AVAILABLE);
        COMPARE_CODE(d.temperature.get(Location::ONBOARD_RIGHT, celsius), bw::SUCCESS);

        f = {};
        f.repeatedImuTimestamps = true;
        f.magUnavailable = true;
        Bus::instance().setFaults(kSerialD, f);
        Clock::advanceBy(100 * kMs);
        std::vector<std::uint64_t> t;
        for (int i = 0; i < 8; ++i) t.push_back(read(cam).imu.timestamp);
        for (int i = 0; i < 8; i += 2) {
            QCOMPARE(t[i + 1], t[i]);             // every second call repeats ...
            if (i > 0) QVERIFY(t[i] > t[i - 1]);  // ... and the next one moves on
        }
        QVERIFY(!read(cam).magnetometer.is_available);

        f = {};
        f.imuUnavailable = true;
        Bus::instance().setFaults(kSerialD, f);
        d = read(cam);
        QVERIFY(!d.imu.is_available);
        QCOMPARE(d.imu.timestamp, std::uint64_t(0));
    }
};

QTEST_APPLESS_MAIN(TestCamera)
#include "tst_camera.moc"
