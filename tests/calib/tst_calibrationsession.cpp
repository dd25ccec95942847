// The calibration session without a window, on simulated cameras with virtual time: what the
// grab thread collects across start, stop and restart; how it ends, and is reported, whatever the
// micro-controller does; a device that does not open; the fit stored in the EEPROM, its read-back
// and a refused write; and the sample set's refit rhythm.
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <cmath>
#include <functional>
#include <vector>

#include "CalibrationMessages.h"
#include "CalibrationSession.h"
#include "SimulatedMcu.h"
#include "physics/SensorTimeline.hpp"

using bw::MODEL;
using bw::sim::Bus;
using bw::sim::Clock;
using bw::sim::DeviceConfig;
using namespace calibmsg;
using namespace simmcu;
using StoreResult = CalibrationSession::StoreResult;

namespace {

constexpr unsigned kSerial = kTumblingSerial;
// Real time a wait allows: only a guard against a thread that never delivers, which a working
// session needs a small fraction of.
constexpr int kWaitMs = 5000;

// The magnetometer samples the camera measures after fromNs up to toNs, from a timeline of its
// own: what a grab thread that misses nothing reads.
std::vector<bw::sim::MagSample> measured(unsigned serial, std::uint64_t fromNs,
                                         std::uint64_t toNs) {
    bw::sim::SensorTimeline timeline(*Bus::instance().config(serial), Clock::kVirtualEpochNs);
    std::vector<bw::sim::MagSample> out;
    std::uint64_t cursor = fromNs;
    for (std::uint64_t now = Clock::kVirtualEpochNs; now < toNs;) {
        timeline.advanceTo(now = std::min(now + 100 * kMs, toNs));
        for (auto* m = timeline.firstMagAfter(cursor); m; m = timeline.firstMagAfter(cursor)) {
            cursor = m->timestampNs;
            out.push_back(*m);
        }
    }
    return out;
}

// Waits at most kWaitMs of real time for `done`, handling events meanwhile.
bool waitFor(const std::function<bool()>& done) {
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > kWaitMs) return false;
        QTest::qWait(5);
    }
    return true;
}

// Verifies that `failure`, a description of what went wrong, is empty.
#define VERIFY_NO_FAILURE(failure)                                \
    do {                                                          \
        const QString description = (failure);                    \
        QVERIFY2(description.isEmpty(), qPrintable(description)); \
    } while (false)

// Waits until the session has taken in the sample the device measured at `ns`, and says what it
// saw if it never does. Device time is counted in ticks of 39 µs, so the reading's time is at
// most one tick earlier.
QString takeIn(const CalibrationSession& session, std::uint64_t ns) {
    const double ms = double(ns) / 1e6;
    if (waitFor([&] { return std::abs(session.reading().timeMs - ms) < 1.0; })) return {};
    return QString("the newest sample taken in is at %1 ms, not %2 ms")
        .arg(session.reading().timeMs, 0, 'f', 3)
        .arg(ms, 0, 'f', 3);
}

// The first difference between the session's samples and the device's, or nothing. The session
// must hold each device sample once and in order, in the dialog's axes: x = -d1, y = d0, z = d2,
// read to a sixteenth of a microtesla.
QString differences(const MagSampleSet& got, const std::vector<bw::sim::MagSample>& want) {
    if (got.size() != int(want.size()))
        return QString("%1 samples, the device measured %2").arg(got.size()).arg(want.size());
    const double halfCount = 1.0 / 32 + 1e-6;
    for (int i = 0; i < got.size(); ++i) {
        const bw::Vector3<float>& f = want[std::size_t(i)].rawField;
        const double expected[3] = {-f.y, f.x, f.z};
        for (int axis = 0; axis < 3; ++axis) {
            if (std::abs(got.raw(axis)[i] - expected[axis]) > halfCount)
                return QString("sample %1 of %2, axis %3: %4, device %5")
                    .arg(i)
                    .arg(got.size())
                    .arg(axis)
                    .arg(got.raw(axis)[i])
                    .arg(expected[axis]);
        }
    }
    return {};
}

std::vector<bw::sim::MagSample> between(const std::vector<bw::sim::MagSample>& all,
                                        std::uint64_t afterNs, std::uint64_t untilNs) {
    std::vector<bw::sim::MagSample> out;
    for (const auto& m : all)
        if (m.timestampNs > afterNs && m.timestampNs <= untilNs) out.push_back(m);
    return out;
}

// An open session on the tumbling camera with its grab thread running.
void startGrabbing(CalibrationSession& session) {
    QVERIFY(session.initOryxMcu());
    QVERIFY(session.startAcquisition());
    QVERIFY(session.isGrabbing());
}

// A point on the ellipsoid with centre c and semi-axes r, in the direction of angles a and b.
MagAxes onEllipsoid(const double c[3], const double r[3], double a, double b) {
    return {c[0] + r[0] * std::cos(a) * std::cos(b), c[1] + r[1] * std::sin(a) * std::cos(b),
            c[2] + r[2] * std::sin(b)};
}

}  // namespace

class TestCalibrationSession : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(!Clock::isVirtual()); }

    // Live readings come in from the start; samples are kept only while collecting, each once,
    // and the set goes on across a stop and a restart.
    void collectsEveryNewSampleOnceAcrossStopAndRestart() {
        Sim sim({tumblingD()});
        CalibrationSession session(kSerial);
        QSignalSpy readings(&session, &CalibrationSession::readingChanged);
        QSignalSpy added(&session, &CalibrationSession::samplesAdded);
        startGrabbing(session);
        const auto device = measured(kSerial, sim.start, sim.start + 3 * kSecond);
        const auto lastUntil = [&](std::uint64_t ns) {
            return between(device, sim.start, sim.start + ns).back().timestampNs;
        };

        sim.allowUntil(500 * kMs);
        VERIFY_NO_FAILURE(takeIn(session, lastUntil(500 * kMs)));
        QCOMPARE(session.samples().size(), 0);
        QVERIFY(added.isEmpty());
        QVERIFY(!readings.isEmpty());
        QCOMPARE(session.reading().calibStatus, int(MAG_CALIB_NONE));
        // Nothing stored on the device: its heading is the uncalibrated one.
        QCOMPARE(session.reading().headingCalib, session.reading().headingUncalib);

        session.startCollecting();
        sim.allowUntil(1500 * kMs);
        VERIFY_NO_FAILURE(takeIn(session, lastUntil(1500 * kMs)));
        VERIFY_NO_FAILURE(differences(
            session.samples(), between(device, sim.start + 500 * kMs, sim.start + 1500 * kMs)));

        QCOMPARE(added.last()[0].toInt(), session.samples().size());

        session.stopAcquisition();
        QVERIFY(!session.isGrabbing());
        const std::uint64_t stoppedAt = Clock::nowNs();
        const int collected = session.samples().size();
        sim.allowUntil(2500 * kMs);
        QTest::qWait(50);
        QCOMPARE(Clock::nowNs(), stoppedAt);  // no reader is left to move time
        QCOMPARE(session.samples().size(), collected);

        QVERIFY(session.startAcquisition());
        QVERIFY(session.isGrabbing());
        VERIFY_NO_FAILURE(takeIn(session, lastUntil(2500 * kMs)));
        VERIFY_NO_FAILURE(differences(
            session.samples(), between(device, sim.start + 500 * kMs, sim.start + 2500 * kMs)));
    }

    // A device that stops delivering ends the grab thread with one report; once the device
    // works again, start goes on collecting into the same set.
    void grabThreadEndsWithOneReport_data() {
        QTest::addColumn<int>("failure");
        QTest::addColumn<bool>("recovers");
        QTest::newRow("reads fail") << 0 << true;
        QTest::newRow("no magnetometer data") << 1 << true;
        QTest::newRow("camera unplugged") << 2 << false;
    }
    void grabThreadEndsWithOneReport() {
        QFETCH(int, failure);
        QFETCH(bool, recovers);
        Sim sim({tumblingD()});
        CalibrationSession session(kSerial);
        QSignalSpy errors(&session, &CalibrationSession::cameraError);
        startGrabbing(session);
        session.startCollecting();
        sim.allowUntil(1 * kSecond);
        QVERIFY2(waitFor([&] { return session.samples().size() >= 20; }), "no samples collected");

        bw::sim::Faults f;
        f.mcuReadFails = failure == 0;
        f.magUnavailable = failure == 1;
        sim.setFaults(f);
        if (failure == 2) Bus::instance().unplug(kSerial);
        QVERIFY2(waitFor([&] { return !errors.isEmpty(); }), "the failure was not reported");
        QCOMPARE(errors[0][0].toString(), kReadError);
        QVERIFY(!session.isGrabbing());
        QCoreApplication::processEvents();
        QCOMPARE(errors.size(), 1);
        if (!recovers) return;

        sim.setFaults({});
        const int before = session.samples().size();
        QVERIFY(session.startAcquisition());
        QVERIFY(session.isGrabbing());
        sim.allowAnother(1 * kSecond);
        QVERIFY2(waitFor([&] { return session.samples().size() >= before + 20; }),
                 "no samples after the restart");
        QCOMPARE(errors.size(), 1);
    }

    // A camera the session cannot use is reported at every attempt, and start tries to open it
    // again each time rather than run on a device that is not open.
    void deviceThatDoesNotOpen_data() {
        QTest::addColumn<int>("model");
        QTest::addColumn<unsigned>("serial");
        QTest::addColumn<unsigned>("asked");
        QTest::addColumn<bool>("openFails");
        QTest::addColumn<QString>("message");
        QTest::newRow("serial not listed")
            << int(MODEL::ORYX_D) << kSerial << 30000099u << false << kNotDetected.arg(30000099);
        QTest::newRow("ORYX_B has no magnetometer")
            << int(MODEL::ORYX_B) << 10000001u << 10000001u << false << kNotDetected.arg(10000001);
        QTest::newRow("open fails")
            << int(MODEL::ORYX_D) << kSerial << kSerial << true << kCannotOpen;
    }
    void deviceThatDoesNotOpen() {
        QFETCH(int, model);
        QFETCH(unsigned, serial);
        QFETCH(unsigned, asked);
        QFETCH(bool, openFails);
        QFETCH(QString, message);
        Sim sim({tumblingD(MODEL(model), serial)});
        bw::sim::Faults f;
        f.mcuOpenFails = openFails;
        sim.setFaults(f);
        CalibrationSession session(asked);
        QSignalSpy errors(&session, &CalibrationSession::cameraError);

        QVERIFY(!session.initOryxMcu());
        QVERIFY(!session.hasDevice());
        QVERIFY(!session.startAcquisition());
        QVERIFY(!session.isGrabbing());
        QCOMPARE(session.saveCalibData(), StoreResult::NO_DEVICE);
        QCOMPARE(errors.size(), 3);
        for (const QList<QVariant>& error : errors) QCOMPARE(error[0].toString(), message);
        if (!openFails) return;

        sim.setFaults({});
        QVERIFY(session.startAcquisition());
        QVERIFY(session.hasDevice());
        QVERIFY(session.isGrabbing());
        QCOMPARE(errors.size(), 3);
    }

    // The whole run: collect while the camera tumbles, fit, store, and the device rates it.
    void tumblingCameraCalibrationIsStoredAndJudgedGood() {
        const DeviceConfig config = tumblingD();
        Sim sim({config});
        CalibrationSession session(kSerial);
        startGrabbing(session);
        // Collecting from the first sample on: the device's verdict is not taken meanwhile.
        session.startCollecting();
        sim.allowUntil(40 * kSecond);
        QVERIFY2(waitFor([&] { return session.samples().size() >= 1800; }),
                 qPrintable(QString("%1 samples collected").arg(session.samples().size())));
        QCOMPARE(session.reading().calibStatus, int(MAG_CALIB_UNKNOWN));
        session.stopCollecting();
        QVERIFY(session.hasCalibrationToStore());
        QCOMPARE(session.samples().correctedSize(), session.samples().size());

        QCOMPARE(session.saveCalibData(), StoreResult::STORED);
        QVERIFY(!session.hasCalibrationToStore());
        // On the device: offset = hard iron, scale = 1 / (soft iron * field), in device axes.
        const double field = earthFieldUt(config);
        const Stored s = readEeprom(kSerial);
        QCOMPARE(s.calibStored, 1);
        for (int i = 0; i < 3; ++i) {
            const double hard = config.hardIronOffset[i];
            const double wantScale = 1.0 / (config.softIronScale[i] * field);
            QVERIFY2(std::abs(s.offset[i] - hard) < 0.01 * field,
                     qPrintable(QString("offset d%1 %2 vs %3").arg(i).arg(s.offset[i]).arg(hard)));
            QVERIFY2(
                std::abs(s.scale[i] - wantScale) < 0.01 * wantScale,
                qPrintable(QString("scale d%1 %2 vs %3").arg(i).arg(s.scale[i]).arg(wantScale)));
        }

        // A session of its own loads it back as this one fitted it, up to float rounding.
        {
            CalibrationSession reader(kSerial);
            QVERIFY(reader.initOryxMcu());
            const MagCorrection& fitted = session.samples().correction();
            const MagCorrection& loaded = reader.samples().correction();
            for (int i = 0; i < 3; ++i) {
                QCOMPARE(loaded.offset[i], double(float(fitted.offset[i])));
                QCOMPARE(loaded.scale[i], double(float(fitted.scale[i])));
            }
        }

        sim.allowUntil(41 * kSecond);
        QVERIFY2(waitFor([&] { return session.reading().calibStatus == MAG_CALIB_GOOD; }),
                 qPrintable(QString("status %1").arg(session.reading().calibStatus)));
        QVERIFY(session.reading().calibQuality > 0.9f);
        QVERIFY(session.reading().headingCalib != session.reading().headingUncalib);
    }

    // The read-back that matches only at read k: the store succeeds up to k = 10, after exactly
    // k reads, and fails beyond, after exactly ten.
    void storeVerifiesTheReadBack_data() {
        QTest::addColumn<int>("badReads");
        QTest::addColumn<StoreResult>("result");
        QTest::addColumn<int>("badReadsLeft");
        for (int k = 1; k <= 10; ++k)
            QTest::addRow("match at read %d", k) << k - 1 << StoreResult::STORED << 0;
        QTest::newRow("no match in ten reads") << 10 << StoreResult::NOT_VERIFIED << 0;
        QTest::newRow("eleven bad reads") << 11 << StoreResult::NOT_VERIFIED << 1;
    }
    void storeVerifiesTheReadBack() {
        QFETCH(int, badReads);
        QFETCH(StoreResult, result);
        QFETCH(int, badReadsLeft);
        Sim sim({tumblingD()});
        CalibrationSession session(kSerial);
        QVERIFY(session.initOryxMcu());
        session.stopCollecting();  // too few samples to fit, but still a result to store
        QVERIFY(session.hasCalibrationToStore());
        bw::sim::Faults f;
        f.eepromBadReads = badReads;
        sim.setFaults(f);

        QCOMPARE(session.saveCalibData(), result);
        QCOMPARE(Bus::instance().faults(kSerial)->eepromBadReads, badReadsLeft);
        QCOMPARE(session.hasCalibrationToStore(), result != StoreResult::STORED);
        QCOMPARE(readEeprom(kSerial).calibStored, 1);  // written either way
    }

    // A write the device refuses stores nothing and keeps the result to store, and the live
    // reading goes on; once the device takes writes again the result is stored.
    void refusedWrite() {
        Sim sim({tumblingD()});
        CalibrationSession session(kSerial);
        QSignalSpy errors(&session, &CalibrationSession::cameraError);
        startGrabbing(session);
        sim.allowUntil(1 * kSecond);
        VERIFY_NO_FAILURE(
            takeIn(session, measured(kSerial, sim.start, sim.start + kSecond).back().timestampNs));
        session.stopCollecting();
        bw::sim::Faults f;
        f.eepromWriteFails = true;
        sim.setFaults(f);

        QCOMPARE(session.saveCalibData(), StoreResult::WRITE_FAILED);
        QVERIFY(session.hasCalibrationToStore());
        QCOMPARE(readEeprom(kSerial).calibStored, 0);
        // Every sample up to the store was taken in: later ones come from the resumed capture.
        const double before = session.reading().timeMs;
        sim.allowAnother(1 * kSecond);
        QVERIFY2(waitFor([&] { return session.reading().timeMs > before + 500; }),
                 "no live reading after the store");
        QVERIFY(session.isGrabbing());

        sim.setFaults({});
        QCOMPARE(session.saveCalibData(), StoreResult::STORED);
        QVERIFY(!session.hasCalibrationToStore());
        QCOMPARE(readEeprom(kSerial).calibStored, 1);
        QCOMPARE(errors.size(), 0);
    }

    // While collecting, the first refit comes after more than a hundred samples, and the next
    // ones once fifty more arrived. Clearing starts over.
    void sampleSetRefitsAfterAHundredThenEveryFifty() {
        MagSampleSet set;
        const double centre[3] = {10, -5, 3}, radii[3] = {40, 50, 45};
        const auto add = [&](int n) {
            for (int i = 0; i < n; ++i) set.append(onEllipsoid(centre, radii, i * 0.7, i * 0.3));
        };
        add(100);
        QVERIFY(!set.refitDue());
        add(1);
        QVERIFY(set.refitDue());
        set.noteRefit();
        QCOMPARE(set.lastRefitCount(), 101);
        add(49);
        QVERIFY(!set.refitDue());
        add(1);
        QVERIFY(set.refitDue());

        set.clear();
        QCOMPARE(set.size(), 0);
        QCOMPARE(set.lastRefitCount(), 0);
        add(100);
        QVERIFY(!set.refitDue());
    }

    // Six samples are the least a fit needs; the fit puts the corrected samples on the unit
    // sphere, and a failed fit leaves the correction as it was.
    void sampleSetFitsFromSixSamples() {
        MagSampleSet set;
        MagCorrection stored;
        stored.offset[0] = 7.0;
        stored.scale[2] = 0.5;
        set.setCorrection(stored);
        const double centre[3] = {12, -7, 4}, radii[3] = {30, 45, 38};
        const double angles[6][2] = {{0, 0},      {1.5708, 0}, {3.1416, 0},
                                     {4.7124, 0}, {0, 1.5708}, {0, -1.5708}};
        for (int i = 0; i < 5; ++i)
            set.append(onEllipsoid(centre, radii, angles[i][0], angles[i][1]));
        QVERIFY(!set.fit());
        QCOMPARE(set.correction().offset[0], 7.0);
        QCOMPARE(set.correction().scale[2], 0.5);
        QCOMPARE(set.correctedSize(), 0);

        set.append(onEllipsoid(centre, radii, angles[5][0], angles[5][1]));
        QVERIFY(set.fit());
        QCOMPARE(set.correctedSize(), 6);
        for (int i = 0; i < 6; ++i) {
            const double x = set.calibrated(0)[i], y = set.calibrated(1)[i],
                         z = set.calibrated(2)[i];
            QVERIFY2(std::abs(std::sqrt(x * x + y * y + z * z) - 1.0) < 1e-6,
                     qPrintable(
                         QString("sample %1 at %2").arg(i).arg(std::sqrt(x * x + y * y + z * z))));
        }
    }

    // A camera only turned about one axis puts its samples on a circle, which fixes no
    // ellipsoid: such a fit fails like one of too few samples, and the correction to store stays
    // the one before it, never the fit's NaN or infinity.
    void sampleSetRefusesAFitThatFixesNoEllipsoid() {
        MagSampleSet set;
        MagCorrection stored;
        stored.offset[1] = -3.0;
        stored.scale[0] = 1.2;
        set.setCorrection(stored);
        const double centre[3] = {12, -7, 4}, radii[3] = {30, 45, 38};
        for (int i = 0; i < 150; ++i) set.append(onEllipsoid(centre, radii, i * 0.03, 0.2));
        QVERIFY(!set.fit());
        for (int axis = 0; axis < 3; ++axis) {
            QCOMPARE(set.correction().offset[axis], stored.offset[axis]);
            QCOMPARE(set.correction().scale[axis], stored.scale[axis]);
        }
        QCOMPARE(set.correctedSize(), 0);
    }
};

QTEST_GUILESS_MAIN(TestCalibrationSession)
#include "tst_calibrationsession.moc"
