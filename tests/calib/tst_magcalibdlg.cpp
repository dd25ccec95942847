// The calibration dialog on simulated cameras with virtual time: a whole calibration of a
// tumbling camera stored and checked on the device, reset, the store retries, and every device
// failure the dialog reports.
#include <QLabel>
#include <QPushButton>
#include <QtTest>
#include <bw/ORYXmcu.hpp>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <cmath>
#include <memory>

#include "MessageBoxWatcher.h"
#include "SimulatedMcu.h"
#include "WidgetTestMain.h"
#include "magcalibdlg.h"

using bw::MODEL;
using bw::sim::Bus;
using bw::sim::Clock;
using bw::sim::DeviceConfig;
using namespace simmcu;

namespace {

constexpr unsigned kSerial = 30000001;
constexpr std::uint64_t kMs = 1'000'000ull;
constexpr std::uint64_t kSecond = 1000 * kMs;
// Only a guard against hangs. QTRY_* counts its polling steps, not elapsed time, so a failing
// wait lasts longer than this when the dialog redraws between steps.
constexpr int kWaitMs = 20000;

const QString kNotDetected = QStringLiteral(
    "ORYX_C/ORYX_D with serial number %1 not detected. Please verify the connections and retry");
const QString kCannotOpen = QStringLiteral(
    "Cannot open the ORYX_C/ORYX_D camera. Please verify the connections and restart");
const QString kStoreError =
    QStringLiteral("An error occurred while saving calibration parameters. Please retry.");
const QString kReadError = QStringLiteral("Error retrieving sensors data");

DeviceConfig tumblingD(MODEL model = MODEL::ORYX_D, unsigned serial = kSerial) {
    DeviceConfig c;
    c.model = model;
    c.serial = serial;
    c.motion = bw::sim::MotionProfile::Tumbling;
    c.seed = 7;
    c.hardIronOffset = {23.f, -14.f, 9.f};
    c.softIronScale = {1.08f, 0.93f, 1.02f};
    return c;
}

struct Stored {
    float scale[3];
    float offset[3];
    int calibStored;
};

Stored readEeprom(unsigned serial) {
    auto mcu = openMcu(serial);
    Stored s{};
    if (!mcu || mcu->updateEepromMemory(true) != 0) return s;
    const bw::_eeprom_data& e = mcu->eeprom();
    for (int i = 0; i < 3; ++i) {
        s.scale[i] = e.mag_scale[i];
        s.offset[i] = e.mag_offset[i];
    }
    s.calibStored = e.mag_calib_stored;
    return s;
}

// Virtual time with the given cameras; time moves only as far as a test allows. The cameras have
// been running for a moment when a test starts, as a plugged camera has: a reader on a clock that
// stands still then finds no new sample rather than no sample at all, which the dialog would count
// as a failed read however fast or slow the test runs.
class Sim {
    bw::sim::VirtualTimeScope time_;

    static std::uint64_t plugAndRun(const std::vector<DeviceConfig>& cameras) {
        Bus::instance().load(cameras);
        Clock::advanceBy(kAlreadyRunningNs);
        return Clock::nowNs();
    }

public:
    static constexpr std::uint64_t kAlreadyRunningNs = 100 * kMs;

    explicit Sim(const std::vector<DeviceConfig>& cameras) : start(plugAndRun(cameras)) {
        Clock::setAutoAdvanceLimit(start);
    }
    ~Sim() {
        Clock::setAutoAdvanceLimit(0);
        Bus::instance().load({});
    }
    // Lets readers move time forward to start + ns.
    void allowUntil(std::uint64_t ns) { Clock::setAutoAdvanceLimit(start + ns); }
    // Lets readers move time forward by ns from where it stands now.
    void allowAnother(std::uint64_t ns) { Clock::setAutoAdvanceLimit(Clock::nowNs() + ns); }
    void setFaults(const bw::sim::Faults& f) { Bus::instance().setFaults(kSerial, f); }

    const std::uint64_t start;
};

template <class T>
T* child(QWidget& parent, const char* name) {
    return parent.findChild<T*>(QString::fromLatin1(name));
}

}  // namespace

class TestMagCalibDlg : public QObject {
    Q_OBJECT

    // Presses start, lets the tumbling camera deliver samples up to `untilNs` and waits for at
    // least `samples` of them.
    static void collect(MagCalibDlg& dlg, Sim& sim, std::uint64_t untilNs, int samples) {
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        if (!start->isChecked()) start->click();
        QVERIFY(start->isChecked());
        QVERIFY(dlg.isAcquiring());
        sim.allowUntil(untilNs);
        QTRY_VERIFY_WITH_TIMEOUT(dlg.rawSampleCount() >= samples, kWaitMs);
    }

private slots:
    void init() { QVERIFY(!Clock::isVirtual()); }

    void calibrationOfATumblingCameraIsStoredAndJudgedGood() {
        const DeviceConfig config = tumblingD();
        Sim sim({config});
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        QVERIFY(dlg.isGrabbing());
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        auto* save = child<QPushButton>(dlg, "pushButton_save_calib");
        auto* reset = child<QPushButton>(dlg, "pushButton_reset");
        auto* status = child<QLabel>(dlg, "label_mag_calib_quality");

        // Nothing stored yet: the device says so once a sample arrives.
        sim.allowUntil(200 * kMs);
        QTRY_COMPARE_WITH_TIMEOUT(status->text(), QString("MAG. NOT CALIBRATED"), kWaitMs);
        QCOMPARE(dlg.rawSampleCount(), 0);  // live only, nothing collected before start

        start->click();
        QCOMPARE(boxes.shown().size(), 1);  // the instructions
        QVERIFY(!save->isEnabled());
        QVERIFY(!reset->isEnabled());
        QTRY_COMPARE(status->text(), QString("CALIBRATING"));

        collect(dlg, sim, 40 * kSecond, 1800);
        QTRY_VERIFY_WITH_TIMEOUT(dlg.lastRefitCount() > 100, kWaitMs);  // refits while collecting
        QVERIFY(dlg.calibratedSampleCount() > 100);

        start->click();  // stop
        QVERIFY(!start->isChecked());
        QVERIFY(save->isEnabled() && reset->isEnabled());
        QVERIFY(dlg.hasCalibrationToStore());
        QVERIFY(dlg.calibratedSampleCount() >= 1800);  // the stop fits the whole set
        QTRY_COMPARE(status->text(), QString("CALIBRATION TO BE STORED"));

        // Cancel in the store question writes nothing; Ok stores.
        boxes.setAnswers({"Cancel"});
        save->click();
        QCOMPARE(readEeprom(kSerial).calibStored, 0);
        QVERIFY(dlg.hasCalibrationToStore());
        boxes.setAnswers({"Ok"});
        save->click();
        QVERIFY(!dlg.hasCalibrationToStore());
        QCOMPARE(boxes.count(kStoreError), 0);

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

        // The device judges the stored calibration good, and the dialog shows it.
        sim.allowUntil(41 * kSecond);
        QTRY_COMPARE_WITH_TIMEOUT(status->text(), QString("GOOD"), kWaitMs);

        // Nothing left to store: exit closes at once, with the grab thread ended.
        const int before = boxes.shown().size();
        child<QPushButton>(dlg, "pushButton_exit")->click();
        QCOMPARE(boxes.shown().size(), before);
        QVERIFY(!dlg.isVisible());
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
        QVERIFY(!dlg.isGrabbing());
    }

    void resetWritesTheIdentity() {
        Sim sim({tumblingD()});
        bw::_mag_calib_data stored = magCalibration({0.9f, 1.1f, 1.2f}, {5.f, -6.f, 7.f});
        QCOMPARE(openMcu(kSerial)->writeMagCalibInEEprom(stored), 0);
        MessageBoxWatcher boxes({"No"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        // The stored calibration is loaded into the dialog's axes.
        double o[3], s[3];
        dlg.currentCalibration(o, s);
        QVERIFY(o[0] == 6.0 && o[1] == 5.0 && o[2] == 7.0);
        QVERIFY(s[0] == double(1.1f) && s[1] == double(0.9f) && s[2] == double(1.2f));

        auto* resetButton = child<QPushButton>(dlg, "pushButton_reset");
        resetButton->click();  // refused
        QCOMPARE(readEeprom(kSerial).scale[0], 0.9f);

        boxes.setAnswers({"Yes"});
        resetButton->click();
        const Stored st = readEeprom(kSerial);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(st.scale[i], 1.f);
            QCOMPARE(st.offset[i], 0.f);
        }
        QCOMPARE(boxes.count(kStoreError), 0);
        // Identity stored: the device reports no calibration and both headings agree.
        sim.allowUntil(1 * kSecond);
        auto* status = child<QLabel>(dlg, "label_mag_calib_quality");
        QTRY_COMPARE_WITH_TIMEOUT(status->text(), QString("MAG. NOT CALIBRATED"), kWaitMs);
        const QString uncal = child<QLabel>(dlg, "label_heading_uncalib")->text();
        const QString cal = child<QLabel>(dlg, "label_heading_calib")->text();
        QVERIFY2(uncal.startsWith("Uncalibrated\n") && uncal.endsWith(QChar(0xB0)),
                 qPrintable(uncal));
        QCOMPARE(cal.mid(QString("Calibrated\n").size()),
                 uncal.mid(QString("Uncalibrated\n").size()));
        dlg.currentCalibration(o, s);
        QCOMPARE(s[0], 1.0);
        QCOMPARE(o[0], 0.0);
        QVERIFY(dlg.isGrabbing());  // capture goes on after the store
    }

    // The read-back that matches only at attempt k: the store succeeds up to k = 10 and fails
    // beyond, after exactly ten reads.
    void storeVerifiesInAtMostTenAttempts_data() {
        QTest::addColumn<int>("badReads");
        QTest::addColumn<bool>("succeeds");
        QTest::addColumn<int>("badReadsLeft");
        for (int k : {1, 2, 10}) QTest::addRow("match at attempt %d", k) << k - 1 << true << 0;
        QTest::newRow("never within ten") << 10 << false << 0;
        QTest::newRow("eleven bad reads") << 11 << false << 1;
    }
    void storeVerifiesInAtMostTenAttempts() {
        QFETCH(int, badReads);
        QFETCH(bool, succeeds);
        QFETCH(int, badReadsLeft);
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        bw::sim::Faults f;
        f.eepromBadReads = badReads;
        sim.setFaults(f);
        child<QPushButton>(dlg, "pushButton_save_calib")->click();
        QCOMPARE(boxes.count(kStoreError), succeeds ? 0 : 1);
        QCOMPARE(Bus::instance().faults(kSerial)->eepromBadReads, badReadsLeft);
        QCOMPARE(readEeprom(kSerial).calibStored, 1);  // written either way
    }

    void storeWriteFailure() {
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"Ok", "Yes"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        bw::sim::Faults f;
        f.eepromWriteFails = true;
        sim.setFaults(f);
        child<QPushButton>(dlg, "pushButton_save_calib")->click();
        QCOMPARE(boxes.count(kStoreError), 1);
        QCOMPARE(readEeprom(kSerial).calibStored, 0);
        child<QPushButton>(dlg, "pushButton_reset")->click();  // fails the same way
        QCOMPARE(boxes.count(kStoreError), 2);
        // The dialog stays usable and still reads the device.
        sim.setFaults({});
        QVERIFY(dlg.isGrabbing());
        collect(dlg, sim, 3 * kSecond, 20);
        QCOMPARE(boxes.count(kReadError), 0);
        child<QPushButton>(dlg, "pushButton_exit")->click();  // acquiring, nothing fitted yet
        QVERIFY(!dlg.isVisible());
        QVERIFY(!dlg.isGrabbing());
    }

    void cameraNotAmongTheHidDevices_data() {
        QTest::addColumn<int>("model");
        QTest::addColumn<unsigned>("serial");
        QTest::addColumn<int>("asked");
        QTest::newRow("unknown serial") << int(MODEL::ORYX_D) << kSerial << 30000099;
        QTest::newRow("ORYX_B has no magnetometer") << int(MODEL::ORYX_B) << 10000001u << 10000001;
    }
    void cameraNotAmongTheHidDevices() {
        QFETCH(int, model);
        QFETCH(unsigned, serial);
        QFETCH(int, asked);
        Sim sim({tumblingD(MODEL(model), serial)});
        sim.allowUntil(5 * kSecond);
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(asked, nullptr);
        dlg.show();
        QVERIFY(!dlg.isGrabbing());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.shown().size(), 1, kWaitMs);
        QCOMPARE(boxes.shown()[0].text, kNotDetected.arg(asked));

        // Start tries again, fails again and stays idle.
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        start->click();
        QVERIFY(!start->isChecked());
        QVERIFY(!dlg.isAcquiring());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.count(kNotDetected.arg(asked)), 2, kWaitMs);
        QCOMPARE(boxes.shown().size(), 2);  // no instructions
        QVERIFY(!dlg.isGrabbing());
        QCOMPARE(dlg.rawSampleCount(), 0);
        child<QPushButton>(dlg, "pushButton_exit")->click();
        QVERIFY(!dlg.isVisible());
    }

    void microControllerDoesNotOpen() {
        Sim sim({tumblingD()});
        bw::sim::Faults f;
        f.mcuOpenFails = true;
        sim.setFaults(f);
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        QVERIFY(!dlg.isGrabbing());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.count(kCannotOpen), 1, kWaitMs);
        child<QPushButton>(dlg, "pushButton_exit")->click();
        QVERIFY(!dlg.isVisible());
    }

    void readFailuresEndTheGrabThread() {
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        QVERIFY(dlg.isGrabbing());
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        collect(dlg, sim, 1 * kSecond, 20);
        bw::sim::Faults f;
        f.mcuReadFails = true;
        sim.setFaults(f);
        QTRY_COMPARE_WITH_TIMEOUT(boxes.count(kReadError), 1, kWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(!dlg.isGrabbing(), kWaitMs);
        QVERIFY(!start->isChecked());
        QCOMPARE(start->text(), QString(" Continue Calibration"));

        // The camera recovers: start again goes on collecting into the same set. Time moves only
        // once the new grab thread runs, so the samples it finds are new ones.
        sim.setFaults({});
        const int before = dlg.rawSampleCount();
        start->click();
        QVERIFY(dlg.isGrabbing());
        sim.allowAnother(1 * kSecond);
        QTRY_VERIFY_WITH_TIMEOUT(dlg.rawSampleCount() >= before + 20, kWaitMs);
        QCOMPARE(boxes.count(kReadError), 1);
    }

    // A fit that is not stored: neither Escape nor a No to the exit question leaves the dialog.
    // Clear Data forgets the set and the fit; a new fit asks again, and Yes leaves without
    // writing anything.
    void exitAsksWhileAFitIsUnstoredAndClearDataForgetsIt() {
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"No", "Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        auto* exitButton = child<QPushButton>(dlg, "pushButton_exit");
        collect(dlg, sim, 4 * kSecond, 150);
        start->click();  // stop: fits once
        QVERIFY(dlg.hasCalibrationToStore());
        double o[3], s[3];
        dlg.currentCalibration(o, s);
        QVERIFY(s[0] != 1.0);

        QTest::keyClick(&dlg, Qt::Key_Escape);
        QVERIFY(dlg.isVisible());
        exitButton->click();
        QCOMPARE(boxes.shown().last().buttons, (QStringList{"No", "Yes"}));
        QVERIFY(dlg.isVisible());
        QVERIFY(dlg.isGrabbing());

        child<QPushButton>(dlg, "pushButton_clear_data")->click();
        QCOMPARE(dlg.rawSampleCount(), 0);
        QCOMPARE(dlg.calibratedSampleCount(), 0);
        QCOMPARE(dlg.lastRefitCount(), 0);
        QVERIFY(!dlg.hasCalibrationToStore());
        QCOMPARE(start->text(), QString(" Start Calibration"));
        dlg.currentCalibration(o, s);
        for (int i = 0; i < 3; ++i) QVERIFY(o[i] == 0.0 && s[i] == 1.0);

        collect(dlg, sim, 8 * kSecond, 150);
        start->click();
        boxes.setAnswers({"Yes"});
        exitButton->click();
        QVERIFY(!dlg.isVisible());
        QVERIFY(!dlg.isGrabbing());
        QCOMPARE(readEeprom(kSerial).calibStored, 0);  // nothing was written
    }

    void refitsOnlyAfterAHundredSamplesAndThenEveryFifty() {
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        // About 75 samples at most: however many timer ticks pass, none refits.
        collect(dlg, sim, 1500 * kMs, 40);
        QTest::qWait(300);
        QVERIFY(dlg.rawSampleCount() <= 100);
        QCOMPARE(dlg.lastRefitCount(), 0);
        QCOMPARE(dlg.calibratedSampleCount(), 0);

        sim.allowUntil(4 * kSecond);
        QTRY_VERIFY_WITH_TIMEOUT(dlg.lastRefitCount() > 100, kWaitMs);
        int previous = dlg.lastRefitCount();
        QCOMPARE(dlg.calibratedSampleCount(), previous);  // each refit corrects the whole set
        // Each further two seconds (about a hundred samples) brings a refit of at least fifty
        // new samples.
        for (int step = 0; step < 3; ++step) {
            sim.allowUntil((6 + 2 * step) * kSecond);
            QTRY_VERIFY_WITH_TIMEOUT(dlg.lastRefitCount() != previous, kWaitMs);
            QVERIFY2(dlg.lastRefitCount() - previous >= 50,
                     qPrintable(QString("%1 -> %2").arg(previous).arg(dlg.lastRefitCount())));
            QCOMPARE(dlg.calibratedSampleCount(), dlg.lastRefitCount());
            previous = dlg.lastRefitCount();
        }
    }
};

WIDGET_TEST_MAIN(TestMagCalibDlg)
#include "tst_magcalibdlg.moc"
