// The calibration dialog on simulated cameras with virtual time, as the user sees it: a whole
// calibration of a tumbling camera with its buttons, boxes and status texts, reset, and every
// device failure the dialog reports. What the device and the fit do is tested on the session.
#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include <QLabel>
#include <QPushButton>
#include <QtTest>
#include <bw/ORYXmcu.hpp>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <cmath>
#include <memory>

#include "CalibrationMessages.h"
#include "MessageBoxWatcher.h"
#include "SimulatedMcu.h"
#include "WidgetTestMain.h"
#include "magcalibdlg.h"

using bw::MODEL;
using bw::sim::Bus;
using bw::sim::Clock;
using bw::sim::DeviceConfig;
using namespace calibmsg;
using namespace simmcu;

namespace {

constexpr unsigned kSerial = kTumblingSerial;
// Only a guard against hangs. QTRY_* counts its polling steps, not elapsed time, so a failing
// wait lasts longer than this when the dialog redraws between steps.
constexpr int kWaitMs = 20000;

const QString kStoreError =
    QStringLiteral("An error occurred while saving calibration parameters. Please retry.");

template <class T>
T* child(QWidget& parent, const char* name) {
    return parent.findChild<T*>(QString::fromLatin1(name));
}

// The points the dialog has drawn on the named plot's curve of that title.
int pointsOn(QWidget& dialog, const char* plotName, const QString& title) {
    for (QwtPlotItem* item :
         child<QwtPlot>(dialog, plotName)->itemList(QwtPlotItem::Rtti_PlotCurve))
        if (item->title().text() == title) return int(static_cast<QwtPlotCurve*>(item)->dataSize());
    return -1;
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
        QVERIFY(dlg.session().isAcquiring());
        sim.allowUntil(untilNs);
        QTRY_VERIFY_WITH_TIMEOUT(dlg.session().samples().size() >= samples, kWaitMs);
    }

private slots:
    void init() { QVERIFY(!Clock::isVirtual()); }

    void calibrationOfATumblingCameraIsStoredAndJudgedGood() {
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        QVERIFY(dlg.session().isGrabbing());
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        auto* save = child<QPushButton>(dlg, "pushButton_save_calib");
        auto* reset = child<QPushButton>(dlg, "pushButton_reset");
        auto* status = child<QLabel>(dlg, "label_mag_calib_quality");

        // Nothing stored yet: the device says so once a sample arrives.
        sim.allowUntil(200 * kMs);
        QTRY_COMPARE_WITH_TIMEOUT(status->text(), QString("MAG. NOT CALIBRATED"), kWaitMs);
        QCOMPARE(dlg.session().samples().size(), 0);  // live only, nothing collected before start

        start->click();
        QCOMPARE(boxes.shown().size(), 1);  // the instructions
        QVERIFY(!save->isEnabled());
        QVERIFY(!reset->isEnabled());
        QTRY_COMPARE(status->text(), QString("CALIBRATING"));

        // The timer draws the samples as they arrive, long before the first refit, and refits
        // while they are being collected.
        collect(dlg, sim, 1500 * kMs, 40);
        QTRY_VERIFY_WITH_TIMEOUT(
            pointsOn(dlg, "widget_plot_XY", "Raw Mag XY") == dlg.session().samples().size(),
            kWaitMs);
        QCOMPARE(dlg.session().samples().lastRefitCount(), 0);
        collect(dlg, sim, 40 * kSecond, 1800);
        QTRY_VERIFY_WITH_TIMEOUT(dlg.session().samples().lastRefitCount() > 100, kWaitMs);

        start->click();  // stop
        QVERIFY(!start->isChecked());
        QVERIFY(save->isEnabled() && reset->isEnabled());
        QVERIFY(dlg.session().hasCalibrationToStore());
        QTRY_COMPARE(status->text(), QString("CALIBRATION TO BE STORED"));

        // Cancel in the store question writes nothing; Ok stores.
        boxes.setAnswers({"Cancel"});
        save->click();
        QCOMPARE(readEeprom(kSerial).calibStored, 0);
        QVERIFY(dlg.session().hasCalibrationToStore());
        boxes.setAnswers({"Ok"});
        save->click();
        QVERIFY(!dlg.session().hasCalibrationToStore());
        QCOMPARE(boxes.count(kStoreError), 0);
        QCOMPARE(readEeprom(kSerial).calibStored, 1);

        // The device judges the stored calibration good, and the dialog shows it.
        sim.allowUntil(41 * kSecond);
        QTRY_COMPARE_WITH_TIMEOUT(status->text(), QString("GOOD"), kWaitMs);

        // Nothing left to store: exit closes at once, with the grab thread ended.
        const int before = boxes.shown().size();
        child<QPushButton>(dlg, "pushButton_exit")->click();
        QCOMPARE(boxes.shown().size(), before);
        QVERIFY(!dlg.isVisible());
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
        QVERIFY(!dlg.session().isGrabbing());
    }

    void resetWritesTheIdentity() {
        Sim sim({tumblingD()});
        bw::_mag_calib_data stored = magCalibration({0.9f, 1.1f, 1.2f}, {5.f, -6.f, 7.f});
        QCOMPARE(openMcu(kSerial)->writeMagCalibInEEprom(stored), 0);
        MessageBoxWatcher boxes({"No"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();

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
    }

    // A store the device refuses, or whose read-back never matches, is reported for store and
    // reset alike; the dialog stays usable and still reads the device.
    void storeFailures_data() {
        QTest::addColumn<bool>("writeFails");
        QTest::addColumn<int>("badReads");
        QTest::addColumn<int>("written");
        QTest::newRow("write refused") << true << 0 << 0;
        QTest::newRow("read-back never matches") << false << 100 << 1;
    }
    void storeFailures() {
        QFETCH(bool, writeFails);
        QFETCH(int, badReads);
        QFETCH(int, written);
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"Ok", "Yes"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        bw::sim::Faults f;
        f.eepromWriteFails = writeFails;
        f.eepromBadReads = badReads;
        sim.setFaults(f);
        child<QPushButton>(dlg, "pushButton_save_calib")->click();
        QCOMPARE(boxes.count(kStoreError), 1);
        QCOMPARE(boxes.shown().last().icon, QMessageBox::Critical);
        QCOMPARE(readEeprom(kSerial).calibStored, written);
        child<QPushButton>(dlg, "pushButton_reset")->click();  // fails the same way
        QCOMPARE(boxes.count(kStoreError), 2);
        QCOMPARE(boxes.shown().last().icon, QMessageBox::Warning);
        sim.setFaults({});
        QVERIFY(dlg.session().isGrabbing());
        collect(dlg, sim, 3 * kSecond, 20);
        QCOMPARE(boxes.count(kReadError), 0);
        child<QPushButton>(dlg, "pushButton_exit")->click();  // acquiring, nothing fitted yet
        QVERIFY(!dlg.isVisible());
        QVERIFY(!dlg.session().isGrabbing());
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
        QVERIFY(!dlg.session().isGrabbing());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.shown().size(), 1, kWaitMs);
        QCOMPARE(boxes.shown()[0].text, kNotDetected.arg(asked));

        // Start tries again, fails again and stays idle.
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        start->click();
        QVERIFY(!start->isChecked());
        QVERIFY(!dlg.session().isAcquiring());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.count(kNotDetected.arg(asked)), 2, kWaitMs);
        QCOMPARE(boxes.shown().size(), 2);  // no instructions
        QVERIFY(!dlg.session().isGrabbing());
        QCOMPARE(dlg.session().samples().size(), 0);
        child<QPushButton>(dlg, "pushButton_exit")->click();
        QVERIFY(!dlg.isVisible());
    }

    // Start after a failed open tries the open again: while it keeps failing the user sees why
    // and the dialog stays idle, never a read error from a device that was not opened.
    void microControllerDoesNotOpen() {
        Sim sim({tumblingD()});
        bw::sim::Faults f;
        f.mcuOpenFails = true;
        sim.setFaults(f);
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        QVERIFY(!dlg.session().isGrabbing());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.count(kCannotOpen), 1, kWaitMs);

        auto* start = child<QPushButton>(dlg, "pushButton_start");
        start->click();
        QVERIFY(!start->isChecked());
        QVERIFY(!dlg.session().isGrabbing());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.count(kCannotOpen), 2, kWaitMs);
        QCOMPARE(boxes.shown().size(), 2);  // no instructions, no read error
        child<QPushButton>(dlg, "pushButton_exit")->click();
        QVERIFY(!dlg.isVisible());
    }

    void readFailuresEndTheGrabThread() {
        Sim sim({tumblingD()});
        MessageBoxWatcher boxes({"Ok"});
        MagCalibDlg dlg(int(kSerial), nullptr);
        dlg.show();
        QVERIFY(dlg.session().isGrabbing());
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        collect(dlg, sim, 1 * kSecond, 20);
        bw::sim::Faults f;
        f.mcuReadFails = true;
        sim.setFaults(f);
        QTRY_COMPARE_WITH_TIMEOUT(boxes.count(kReadError), 1, kWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(!dlg.session().isGrabbing(), kWaitMs);
        QVERIFY(!start->isChecked());
        QCOMPARE(start->text(), QString(" Continue Calibration"));

        // The camera recovers: start again runs the grab thread again.
        sim.setFaults({});
        start->click();
        QVERIFY(start->isChecked());
        QVERIFY(dlg.session().isGrabbing());
        QCOMPARE(start->text(), QString(" Stop Calibration"));
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
        const CalibrationSession& session = dlg.session();
        auto* start = child<QPushButton>(dlg, "pushButton_start");
        auto* exitButton = child<QPushButton>(dlg, "pushButton_exit");
        collect(dlg, sim, 15 * kSecond, 600);
        start->click();  // stop: fits once
        QVERIFY(session.hasCalibrationToStore());
        QVERIFY(session.samples().correction().scale[0] != 1.0);

        QTest::keyClick(&dlg, Qt::Key_Escape);
        QVERIFY(dlg.isVisible());
        exitButton->click();
        QCOMPARE(boxes.shown().last().buttons, (QStringList{"No", "Yes"}));
        QVERIFY(dlg.isVisible());
        QVERIFY(session.isGrabbing());

        child<QPushButton>(dlg, "pushButton_clear_data")->click();
        QCOMPARE(session.samples().size(), 0);
        QCOMPARE(session.samples().correctedSize(), 0);
        QCOMPARE(session.samples().lastRefitCount(), 0);
        QVERIFY(!session.hasCalibrationToStore());
        QCOMPARE(start->text(), QString(" Start Calibration"));
        const MagCorrection& c = session.samples().correction();
        for (int i = 0; i < 3; ++i) QVERIFY(c.offset[i] == 0.0 && c.scale[i] == 1.0);

        collect(dlg, sim, 30 * kSecond, 600);
        start->click();
        boxes.setAnswers({"Yes"});
        exitButton->click();
        QVERIFY(!dlg.isVisible());
        QVERIFY(!session.isGrabbing());
        QCOMPARE(readEeprom(kSerial).calibStored, 0);  // nothing was written
    }
};

WIDGET_TEST_MAIN(TestMagCalibDlg)
#include "tst_magcalibdlg.moc"
