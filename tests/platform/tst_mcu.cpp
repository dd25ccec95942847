// bw::ORYXmcu and the HID listing on the simulated bus: the magnetometer stream as the
// calibration dialog reads it, the EEPROM across reopening, the calibration status and the
// heading convention. Faults and the dialog's two threads are driven through the calibration
// dialog's own tests.
#include <Eigen/Geometry>
#include <QtTest>
#include <bw/ORYXmcu.hpp>
#include <bw/hid.hpp>
#include <cmath>

#include "SimFixture.hpp"
#include "SimulatedMcu.h"
#include "physics/SensorTimeline.hpp"

using namespace simtest;
using namespace simmcu;
using bw::MODEL;

namespace {

constexpr unsigned kSerialD = 30000001;
constexpr double kPi = 3.14159265358979323846;

// Reader records with a new magnetometer sample, until the device has none left.
std::vector<bw::_imu_reader_data> magRecords(bw::ORYXmcu& mcu) {
    std::vector<bw::_imu_reader_data> out;
    for (int idle = 0; idle < 3;) {
        const bw::_imu_reader_data r = mcu.getIMUReaderData();
        if (r.valid != 1) return out;
        if (r.mag_update == 2) {
            out.push_back(r);
            idle = 0;
        } else {
            ++idle;
        }
    }
    return out;
}

const bw::HidDeviceRecord* findHid(const std::vector<bw::HidDeviceRecord>& list, unsigned serial) {
    for (const auto& r : list) {
        if (r.simulated && r.serialNumber == std::to_string(serial)) return &r;
    }
    return nullptr;
}

}  // namespace

class TestMcu : public QObject {
    Q_OBJECT

private slots:
    void everyMagSampleOnceInTicks() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        const std::uint64_t end = sim.startNs + 2 * kSecond;
        Clock::setAutoAdvanceLimit(end);
        const auto mcu = openMcu(kSerialD);
        QCOMPARE(mcu->startCapture(0.f), 0);
        QVERIFY(mcu->isCapturing());
        const auto got = magRecords(*mcu);

        // The same camera's magnetometer, sampled by a timeline of its own.
        bw::sim::SensorTimeline reference(*Bus::instance().config(kSerialD), sim.startNs);
        std::vector<std::uint64_t> expected;
        std::uint64_t cursor = sim.startNs;
        for (std::uint64_t now = sim.startNs; now < end;) {
            reference.advanceTo(now = std::min(now + 100 * kMs, end));
            for (auto* m = reference.firstMagAfter(cursor); m;
                 m = reference.firstMagAfter(cursor)) {
                cursor = m->timestampNs;
                expected.push_back(cursor / 39000);
            }
        }
        std::vector<std::uint64_t> ticks;
        for (const auto& r : got) ticks.push_back(std::uint64_t{r.timestamp});  // packed: copy
        QCOMPARE(ticks, expected);
        QVERIFY(ticks.size() > 95);  // about 50 Hz
    }

    void rawCountsMatchTheCameraField() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        bw::Camera cam;
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        const auto mcu = openMcu(kSerialD);
        QCOMPARE(mcu->startCapture(0.f), 0);
        Clock::advanceBy(100 * kMs);
        bw::SensorsData d;
        for (std::uint64_t last = 1; last != d.imu.timestamp;) {
            last = d.imu.timestamp;
            cam.getSensorsData(d, bw::TIME_REFERENCE::CURRENT);
        }
        const auto records = magRecords(*mcu);
        QVERIFY(!records.empty());
        const bw::_imu_reader_data& r = records.back();
        QCOMPARE(std::uint64_t{r.timestamp}, d.magnetometer.timestamp / 39000);
        const auto& u = d.magnetometer.magnetic_field_uncalibrated;
        const float tol = 1.f / 32 + 1e-4f;  // half a count
        QVERIFY(std::abs(r.mag[0] / 16.f - u.x) <= tol);
        QVERIFY(std::abs(r.mag[1] / 16.f - u.y) <= tol);
        QVERIFY(std::abs(r.mag[2] / 16.f - u.z) <= tol);
    }

    void eepromSurvivesReopening() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        auto mcu = openMcu(kSerialD);
        QCOMPARE(mcu->updateEepromMemory(true), 0);
        QCOMPARE(mcu->eeprom().mag_calib_stored, std::uint8_t(0));
        bw::_mag_calib_data c = magCalibration({0.9f, 1.1f, 1.2f}, {5.f, -6.f, 7.f});
        QCOMPARE(mcu->writeMagCalibInEEprom(c), 0);
        mcu.reset();

        bw::Camera cam;  // the camera's own opening and a cable cycle leave it alone too
        COMPARE_CODE(cam.open(bySerial(kSerialD)), bw::SUCCESS);
        cam.close();
        Bus::instance().unplug(kSerialD);
        Bus::instance().replug(kSerialD);

        mcu = openMcu(kSerialD);
        QCOMPARE(mcu->updateEepromMemory(true), 0);
        const bw::_eeprom_data& e = mcu->eeprom();
        QCOMPARE(e.mag_calib_stored, std::uint8_t(1));
        QCOMPARE(unsigned{e.serial_number}, kSerialD);
        QCOMPARE(e.mag_scale[2], 1.2f);
        QCOMPARE(e.mag_offset[1], -6.f);
    }

    void calibrationStatus_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("status");
        QTest::newRow("nothing stored") << 0 << 3;
        QTest::newRow("identity stored") << 1 << 3;
        QTest::newRow("exact inverse, unit sphere") << 2 << 0;
        QTest::newRow("exact inverse, microtesla") << 3 << 0;
        QTest::newRow("centre 0.5 uT off") << 4 << 1;
        QTest::newRow("scales swapped") << 5 << 2;
    }

    void calibrationStatus() {
        QFETCH(int, kind);
        QFETCH(int, status);
        SimScope sim({camera(MODEL::ORYX_D, kSerialD)});
        const DeviceConfig cfg = *Bus::instance().config(kSerialD);
        const auto& soft = cfg.softIronScale;
        const auto& hard = cfg.hardIronOffset;
        const float earth = kind == 3 ? 1.f : float(earthFieldUt(cfg));
        bw::Vector3<float> scale{1.f / (soft.x * earth), 1.f / (soft.y * earth),
                                 1.f / (soft.z * earth)};
        bw::Vector3<float> offset = hard;
        if (kind == 4) offset.x += 0.5f;
        if (kind == 5) std::swap(scale.x, scale.y);
        if (kind == 1) scale = {1.f, 1.f, 1.f}, offset = {0.f, 0.f, 0.f};

        const auto mcu = openMcu(kSerialD);
        bw::_mag_calib_data c = magCalibration(scale, offset);
        if (kind != 0) QCOMPARE(mcu->writeMagCalibInEEprom(c), 0);
        QCOMPARE(mcu->startCapture(0.f), 0);
        Clock::advanceBy(100 * kMs);
        const bw::_imu_pose_data p = mcu->getIMUPose(6);
        QCOMPARE(p.valid, std::uint8_t(1));
        QCOMPARE(p.mag_calib_status, status);
        const float expectedQuality[] = {0.f, 0.f, 1.f, 1.f, 0.85f, 0.f};
        QVERIFY2(std::abs(p.mag_calib_quality - expectedQuality[kind]) < 0.1f,
                 qPrintable(QString::number(p.mag_calib_quality)));

        // The calibrated field is the stored calibration applied to the raw one, and the
        // device's heading is the library's heading of it.
        const bool applied = kind >= 1;
        for (int i = 0; i < 3; ++i) {
            const float expected = applied ? (p.mag[i] - offset[i]) * scale[i] : p.mag[i];
            QVERIFY(std::abs(p.mag_calibrated[i] - expected) < 1e-3f * (1 + std::abs(expected)));
        }
        const bw::Vector3<float> cal(p.mag_calibrated[0], p.mag_calibrated[1], p.mag_calibrated[2]);
        const bw::Vector3<float> g(p.gravity[0], p.gravity[1], p.gravity[2]);
        QCOMPARE(p.mag_heading, mcu->calcMagHeading(cal, g));
    }

    // Heading of the optical axis (+x, camera frame x forward, y left, z up) from magnetic north,
    // positive towards east, whatever the tilt.
    void headingIsTiltCompensated_data() {
        QTest::addColumn<double>("yawDeg");
        QTest::addColumn<double>("rollDeg");
        QTest::addColumn<double>("pitchDeg");
        QTest::newRow("north, level") << 0.0 << 0.0 << 0.0;
        QTest::newRow("north-east, both") << -45.0 << -25.0 << 30.0;
    }

    void headingIsTiltCompensated() {
        QFETCH(double, yawDeg);
        QFETCH(double, rollDeg);
        QFETCH(double, pitchDeg);
        const double k = kPi / 180.0;
        // World: x north, y west, z up. Pose: camera to world.
        const Eigen::Matrix3d pose = (Eigen::AngleAxisd(yawDeg * k, Eigen::Vector3d::UnitZ()) *
                                      Eigen::AngleAxisd(pitchDeg * k, Eigen::Vector3d::UnitY()) *
                                      Eigen::AngleAxisd(rollDeg * k, Eigen::Vector3d::UnitX()))
                                         .toRotationMatrix();
        const Eigen::Vector3d field = pose.transpose() * Eigen::Vector3d(22, 0, -42);
        const Eigen::Vector3d down = pose.transpose() * Eigen::Vector3d(0, 0, -1);
        auto device = [](const Eigen::Vector3d& v) {
            const Eigen::Vector3f f = v.cast<float>();
            return bw::sim::deviceFromCameraAxes(bw::Vector3<float>(f.x(), f.y(), f.z()));
        };
        bw::ORYXmcu mcu(false, bw::ORYX_USB_VENDOR_ID, MODEL::ORYX_D, false, "");
        const double heading = mcu.calcMagHeading(device(field), device(down));
        const double expected = -yawDeg * k;  // yaw turns towards west, heading towards east
        QVERIFY2(std::abs(std::remainder(heading - expected, 2 * kPi)) < 1e-4,
                 qPrintable(QString::number(heading / k)));
    }

    // A still camera told where to face reports that heading, negative ones included.
    void stillCameraFacesTheHeadingItIsGiven_data() {
        QTest::addColumn<double>("headingDeg");
        QTest::newRow("east-north-east") << 60.0;
        QTest::newRow("west-south-west") << -100.0;
        QTest::newRow("south") << 180.0;
    }
    void stillCameraFacesTheHeadingItIsGiven() {
        QFETCH(double, headingDeg);
        DeviceConfig facing = camera(MODEL::ORYX_D, kSerialD);
        facing.motion = bw::sim::MotionProfile::Still;
        facing.headingDeg = headingDeg;
        // Undistorted, so that the raw field points to north as it is.
        facing.hardIronOffset = {0.f, 0.f, 0.f};
        facing.softIronScale = {1.f, 1.f, 1.f};
        SimScope sim({facing});
        const auto mcu = openMcu(kSerialD);
        QCOMPARE(mcu->startCapture(0.f), 0);
        Clock::advanceBy(100 * kMs);
        const bw::_imu_pose_data p = mcu->getIMUPose(6);
        QCOMPARE(p.valid, std::uint8_t(1));
        const double reported = p.mag_heading * 180.0 / kPi;
        // Within the magnetometer's noise.
        QVERIFY2(std::abs(std::remainder(reported - headingDeg, 360.0)) < 2.0,
                 qPrintable(QString::number(reported)));
    }

    void hidListing() {
        SimScope sim({camera(MODEL::ORYX_B, 10000007), camera(MODEL::ORYX_C, 20000007),
                      camera(MODEL::ORYX_D, kSerialD), camera(MODEL::ORYX_D, 30000002),
                      camera(MODEL::ORYX_E, 0, 1), camera(MODEL::ORYX_SOLO_A, 0, 2)});
        Bus::instance().unplug(30000002);
        Bus::instance().setHidProductIdZero(20000007, true);

        const auto all = bw::hidEnumerate(bw::ORYX_USB_VENDOR_ID, 0);
        int simulated = 0;
        for (const auto& r : all) simulated += r.simulated;
        QCOMPARE(simulated, 3);  // B, C and the plugged D; E and SOLO_A carry no such chip
        QCOMPARE(findHid(all, 10000007)->productId, bw::MCU_PID_ORYX_B);
        QCOMPARE(findHid(all, 20000007)->productId, (unsigned short)0);
        QCOMPARE(findHid(all, kSerialD)->releaseNumber,
                 Bus::instance().config(kSerialD)->mcuRelease);

        const auto onlyD = bw::hidEnumerate(bw::ORYX_USB_VENDOR_ID, bw::MCU_PID_ORYX_D);
        QVERIFY(findHid(onlyD, kSerialD) && !findHid(onlyD, 10000007));
        QVERIFY(!findHid(bw::hidEnumerate(0x1234, 0), kSerialD));
    }

    // Open and read failures the calibration dialog does not see through its own tests.
    void openAndReadFailures() {
        SimScope sim({camera(MODEL::ORYX_D, kSerialD), camera(MODEL::ORYX_B, 10000001),
                      camera(MODEL::ORYX_E, 0, 1)});
        int result = -1;
        openMcu(12345, &result);
        QCOMPARE(result, int(bw::MCU_NOT_FOUND));
        openMcu(Bus::instance().serials()[2], &result);  // ORYX_E: no micro-controller
        QCOMPARE(result, int(bw::MCU_NOT_FOUND));
        bw::ORYXmcu notOpen(false, bw::ORYX_USB_VENDOR_ID, MODEL::ORYX_D, false, "");
        bw::_mag_calib_data c;
        QCOMPARE(notOpen.writeMagCalibInEEprom(c), int(bw::MCU_NOT_OPEN));

        const auto mcu = openMcu(kSerialD);
        QCOMPARE(mcu->getIMUReaderData().valid, std::uint8_t(0));  // not capturing yet
        const auto noMag = openMcu(10000001);
        QCOMPARE(noMag->startCapture(0.f), 0);
        Clock::advanceBy(10 * kMs);
        const bw::_imu_reader_data b = noMag->getIMUReaderData();
        QCOMPARE(b.valid, std::uint8_t(1));
        QCOMPARE(b.mag_update, std::uint8_t(0));

        Bus::instance().unplug(kSerialD);
        QCOMPARE(mcu->getIMUReaderData().valid, std::uint8_t(0));
        QCOMPARE(mcu->writeMagCalibInEEprom(c), int(bw::MCU_DISCONNECTED));
        QCOMPARE(mcu->updateEepromMemory(true), int(bw::MCU_DISCONNECTED));
    }
};

QTEST_APPLESS_MAIN(TestMcu)
#include "tst_mcu.moc"
