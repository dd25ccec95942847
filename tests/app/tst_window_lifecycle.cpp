// The main window on simulated cameras: finding and opening cameras, the sensor buttons each
// model gets, the error paths of opening, and tearing down when a camera goes away.
#include <QDir>
#include <QSignalSpy>
#include <QtTest>
#include <atomic>
#include <bw/Camera.hpp>
#include <mutex>

#include "InputThreadModul.h"
#include "MessageBoxWatcher.h"
#include "SimulatedCameras.h"
#include "WaitOrFail.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

using bw::MODEL;

constexpr int kOpenTimeoutMs = 5000;
// Polls come every 200 ms; three take 600 ms.
constexpr int kSlowestThreePollsMs = 3000;

bool isSamplingCamera(MainWindow& w) { return w.input() != nullptr && w.isSampling(); }

// Counts finished device polls. The detection thread reports from its own thread, so the count is
// an atomic rather than a QSignalSpy (which is not safe to read while another thread appends).
class PollCounter {
public:
    explicit PollCounter(MainWindow& w) : detector_(w.detector()) {
        QObject::connect(
            &detector_, &QThread::finished, &context_,
            [this] {
                std::lock_guard<std::mutex> lock(mutex_);
                ++count_;
            },
            Qt::DirectConnection);
    }
    ~PollCounter() {
        // A poll finishing right now may still be inside the counting slot; taking the lock
        // after the thread has ended orders its last count before this object goes away.
        QObject::disconnect(&detector_, nullptr, &context_, nullptr);
        detector_.wait();
        std::lock_guard<std::mutex> lock(mutex_);
    }
    int count() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return count_;
    }
    bool waitForNext(int timeoutMs = kOpenTimeoutMs) {
        const int before = count();
        return QTest::qWaitFor([&] { return count() > before; }, timeoutMs);
    }

private:
    DetectionThread& detector_;
    QObject context_;
    mutable std::mutex mutex_;
    int count_ = 0;
};

std::int64_t sampledRows(MainWindow& w) {
    std::lock_guard<std::mutex> lock(w.sampleMutex());
    return w.sampleSeries().endRow().value();
}

int threadCount() { return QDir(QStringLiteral("/proc/self/task")).count() - 2; }

unsigned serialOf(MODEL model, int index = 0) {
    return bw::sim::DeviceConfig::defaultSerial(model, index);
}

QStringList listed(MainWindow& w) {
    QStringList items;
    for (int i = 0; i < w.form()->comboBox_camera_list->count(); ++i)
        items << w.form()->comboBox_camera_list->itemText(i);
    return items;
}

QString item(MODEL model, int index) {
    return QStringLiteral("%1 - %2").arg(bw::toString(model)).arg(serialOf(model, index));
}

}  // namespace

class TestWindowLifecycle : public QObject {
    Q_OBJECT

private slots:
    // A model-zero camera is never listed nor opened: to the window the bus is empty.
    void withoutCamerasTheListSaysSoAndPollingGoesOn() {
        PacedVirtualTime time({simulatedCamera(MODEL::ORYX)});
        MainWindow w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QVERIFY(w.width() >= 1280 && w.height() >= 800);
        PollCounter polls(w);
        WAIT_OR_FAIL(polls.count() >= 4, "fewer than 4 polls", kOpenTimeoutMs);
        auto* list = w.form()->comboBox_camera_list;
        QCOMPARE(list->count(), 1);
        QCOMPARE(list->itemText(0), QStringLiteral("No cameras"));
        QVERIFY(!list->isEnabled());
        QVERIFY(w.isDetecting());
        QVERIFY(w.input() == nullptr);
    }

    void aPluggedCameraOpensAtTheSecondPoll() {
        PacedVirtualTime time({});
        MainWindow w;
        w.show();
        PollCounter polls(w);
        QVERIFY(polls.waitForNext());
        const int pollsBeforePlug = polls.count();
        bw::sim::Bus::instance().plug(simulatedCamera(MODEL::ORYX_D));
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        // The list shown is one poll old: a poll must have seen the camera first.
        QVERIFY(polls.count() - pollsBeforePlug >= 1);
        QCOMPARE(w.form()->comboBox_camera_list->itemText(0),
                 QStringLiteral("ORYX_D - %1").arg(serialOf(MODEL::ORYX_D)));
        QVERIFY(!w.isDetecting());
        QVERIFY(w.form()->comboBox_camera_list->isEnabled());
    }

    void theSensorButtonsFollowTheModel_data() {
        QTest::addColumn<int>("model");
        QTest::addColumn<bool>("baro");
        QTest::addColumn<bool>("mag");
        QTest::addColumn<bool>("temperature");
        QTest::newRow("ORYX_B") << int(MODEL::ORYX_B) << false << false << false;
        QTest::newRow("ORYX_C") << int(MODEL::ORYX_C) << true << true << true;
        QTest::newRow("ORYX_D") << int(MODEL::ORYX_D) << true << true << true;
        QTest::newRow("ORYX_E") << int(MODEL::ORYX_E) << false << false << true;
        QTest::newRow("ORYX_F") << int(MODEL::ORYX_F) << false << false << true;
        QTest::newRow("ORYX_SOLO_A") << int(MODEL::ORYX_SOLO_A) << true << true << true;
    }
    void theSensorButtonsFollowTheModel() {
        QFETCH(int, model);
        QFETCH(bool, baro);
        QFETCH(bool, mag);
        QFETCH(bool, temperature);
        PacedVirtualTime time({simulatedCamera(static_cast<MODEL>(model))});
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        QCOMPARE(unsigned(model), w.input()->getModel());
        QCOMPARE(!w.form()->pushButton_baro->isHidden(), baro);
        QCOMPARE(!w.form()->pushButton_mag->isHidden(), mag);
        QCOMPARE(!w.form()->pushButton_temper->isHidden(), temperature);
        QVERIFY(w.form()->frame_data_options->isEnabled());
    }

    void oldCameraFirmwareWarnsAndTheCameraIsStillUsed_data() {
        QTest::addColumn<unsigned>("firmware");
        QTest::addColumn<bool>("warned");
        QTest::newRow("1141") << 1141u << true;
        QTest::newRow("1142") << 1142u << false;
    }
    void oldCameraFirmwareWarnsAndTheCameraIsStillUsed() {
        QFETCH(unsigned, firmware);
        QFETCH(bool, warned);
        bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        camera.cameraFirmware = firmware;
        PacedVirtualTime time({camera});
        MessageBoxWatcher boxes;
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        QCOMPARE(boxes.shown().size(), warned ? 1 : 0);
        if (warned) QVERIFY(boxes.shown().first().text.contains("firmware needs to be updated"));
    }

    void gpuMemoryFailureShowsTheErrorAndKeepsTheCameraWithoutSampling() {
        bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        camera.faults.gpuMemoryFails = true;
        PacedVirtualTime time({camera});
        MessageBoxWatcher boxes;
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(!boxes.shown().isEmpty(), "no message box", kOpenTimeoutMs);
        QVERIFY(boxes.shown().first().text.startsWith("Not enough GPU memory"));
        QTest::qWait(500);
        QVERIFY(w.input() != nullptr);
        QVERIFY(w.input()->isStereoOpen());
        QVERIFY(!w.isSampling());
        QVERIFY(!w.isDetecting());
        QCOMPARE(boxes.shown().size(), 1);
    }

    void anOpenFailureIsSilentAndPollingResumes() {
        bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        camera.faults.openFails = true;
        PacedVirtualTime time({camera});
        MessageBoxWatcher boxes;
        MainWindow w;
        w.show();
        PollCounter polls(w);
        WAIT_OR_FAIL(polls.count() >= 5, "fewer than 5 polls", kOpenTimeoutMs);
        QVERIFY(boxes.shown().isEmpty());
        QVERIFY(w.input() == nullptr);
        QVERIFY(w.isDetecting());
        // Once the camera opens again, the retries succeed.
        bw::sim::Faults healthy;
        bw::sim::Bus::instance().setFaults(camera.serial, healthy);
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
    }

    // The first unplug tears down once and clears the readout; a replug opens again, and the
    // cycles leave no thread behind. Each cycle waits for about four 200 ms polls, so 25 cycles
    // take about 20 s; a thread left per cycle shows after the first, and ORYX_REPLUG_CYCLES asks
    // for more when hunting a rarer fault.
    void unplugTearsDownOnceAndReplugOpensAgain() {
        const bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        PacedVirtualTime time({camera});
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        WAIT_OR_FAIL(w.form()->lineEdit_value_2->text().startsWith("Z "),
                     "the readout shows no Z value", kOpenTimeoutMs);
        std::atomic<int> lossReports{0};
        connect(
            w.input(), &InputThreadModul::DetectORYXDisconnect, this, [&] { ++lossReports; },
            Qt::DirectConnection);

        PollCounter polls(w);
        bw::sim::Bus::instance().unplug(camera.serial);
        WAIT_OR_FAIL(w.isDetecting(), "the unplugged camera was not let go", kOpenTimeoutMs);
        QVERIFY(w.input() == nullptr);
        QVERIFY(!w.isSampling());
        QVERIFY(w.hasNoCamera());
        for (QLineEdit* field :
             {w.form()->lineEdit_value_0, w.form()->lineEdit_value_1, w.form()->lineEdit_value_2})
            QCOMPARE(field->text(), QStringLiteral("---"));
        QCOMPARE(w.form()->label_sensor_rate->text(), QStringLiteral("---"));
        WAIT_OR_FAIL(w.form()->comboBox_camera_list->itemText(0) == QStringLiteral("No cameras"),
                     "the list does not say \"No cameras\"", kOpenTimeoutMs);
        // Each cycle below waits for two polls: slow polling would make them take minutes.
        const int pollsSinceUnplug = polls.count();
        QVERIFY2(QTest::qWaitFor([&] { return polls.count() >= pollsSinceUnplug + 3; },
                                 kSlowestThreePollsMs),
                 qPrintable(QString("%1 polls in %2 ms without a camera")
                                .arg(polls.count() - pollsSinceUnplug)
                                .arg(kSlowestThreePollsMs)));
        QCOMPARE(lossReports.load(), 1);

        bw::sim::Bus::instance().replug(camera.serial);
        WAIT_OR_FAIL(isSamplingCamera(w), "the replugged camera did not open", kOpenTimeoutMs);

        const int threads = threadCount();
        const int cycles = qEnvironmentVariableIntValue("ORYX_REPLUG_CYCLES") > 0
                               ? qEnvironmentVariableIntValue("ORYX_REPLUG_CYCLES")
                               : 25;
        for (int cycle = 1; cycle < cycles; ++cycle) {
            const QByteArray which = "cycle " + QByteArray::number(cycle) + ": ";
            bw::sim::Bus::instance().unplug(camera.serial);
            WAIT_OR_FAIL(w.isDetecting() && w.input() == nullptr,
                         (which + "the unplugged camera was not let go").constData(),
                         kOpenTimeoutMs);
            QVERIFY(!w.isSampling());
            bw::sim::Bus::instance().replug(camera.serial);
            WAIT_OR_FAIL(isSamplingCamera(w),
                         (which + "the replugged camera did not open").constData(), kOpenTimeoutMs);
        }
        WAIT_OR_FAIL(
            threadCount() <= threads,
            qPrintable(QString("%1 threads, %2 before the cycles").arg(threadCount()).arg(threads)),
            kOpenTimeoutMs);
    }

    // The camera goes while the last poll saw none: the refresh polled while it was open, and
    // an open camera is not available. The window's own poll then finds nothing, and it must
    // keep polling by itself for a camera plugged in later.
    void aCameraLostWhenTheLastPollSawNoneIsOpenedOncePluggedAgain() {
        const bw::sim::DeviceConfig camera = simulatedCamera(MODEL::ORYX_D);
        PacedVirtualTime time({camera});
        MessageBoxWatcher boxes;
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(isSamplingCamera(w), qPrintable("the camera did not open; " + boxes.said()),
                     kOpenTimeoutMs);
        PollCounter polls(w);
        WAIT_OR_FAIL(!w.detector().isRunning(), "a poll does not end", kOpenTimeoutMs);
        const int pollsBefore = polls.count();
        w.form()->pushButton_refresh_list->click();
        WAIT_OR_FAIL(polls.count() > pollsBefore, "the refresh did not poll", kOpenTimeoutMs);

        bw::sim::Bus::instance().unplug(camera.serial);
        WAIT_OR_FAIL(w.input() == nullptr, "the unplugged camera was not let go", kOpenTimeoutMs);
        // The path under test: the window's own poll had nothing to open.
        QCOMPARE(listed(w), QStringList{"No cameras"});
        bw::sim::Bus::instance().replug(camera.serial);
        WAIT_OR_FAIL(
            isSamplingCamera(w),
            qPrintable(QString("the camera plugged in again did not open; %1 polls since the "
                               "refresh")
                           .arg(polls.count())),
            kOpenTimeoutMs);
    }

    void closingWhileSamplingReleasesTheCamera() {
        PacedVirtualTime time({simulatedCamera(MODEL::ORYX_D)});
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        WAIT_OR_FAIL(sampledRows(w) > 0, "no rows sampled", kOpenTimeoutMs);
        w.close();
        QVERIFY(!w.isSampling());
        QVERIFY(w.input() == nullptr);
        const auto devices = bw::Camera::getDeviceList();
        QCOMPARE(devices.size(), size_t(1));
        QVERIFY(devices[0].camera_state == bw::CAMERA_STATE::AVAILABLE);
    }

    // Stereo cameras are listed before single-sensor ones, whatever order the bus has them in,
    // and the first listed is the one that opens.
    void theFirstListedCameraOpensAndStereoCamerasComeFirst() {
        PacedVirtualTime time({simulatedCamera(MODEL::ORYX_SOLO_A, 0),
                               simulatedCamera(MODEL::ORYX_E, 1),
                               simulatedCamera(MODEL::ORYX_C, 2)});
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        QCOMPARE(listed(w), (QStringList{item(MODEL::ORYX_E, 1), item(MODEL::ORYX_C, 2),
                                         item(MODEL::ORYX_SOLO_A, 0)}));
        QCOMPARE(w.input()->getModel(), unsigned(MODEL::ORYX_E));
        QCOMPARE(w.form()->comboBox_camera_list->currentIndex(), 0);
    }

    // Choosing another camera opens it with the time range back at ten seconds. Rebuilding the
    // list (refresh) changes its selection on the way, which must not reopen anything.
    void choosingAnotherCameraOpensItAndRebuildingTheListDoesNot() {
        PacedVirtualTime time(
            {simulatedCamera(MODEL::ORYX_D, 0), simulatedCamera(MODEL::ORYX_C, 1)});
        MainWindow w;
        w.show();
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        QCOMPARE(w.input()->getSerialNum(), serialOf(MODEL::ORYX_D, 0));
        auto* range = w.form()->comboBox_time_range;
        QCOMPARE(range->currentText(), QStringLiteral("Last 10 sec"));
        QCOMPARE(range->count(), 4);
        range->setCurrentIndex(3);

        InputThreadModul* first = w.input();
        w.form()->pushButton_refresh_list->click();
        QCOMPARE(w.input(), first);
        QCOMPARE(range->currentText(), QStringLiteral("Last 60 sec"));
        // The open camera first, then what the last poll found.
        const QStringList items = listed(w);
        QCOMPARE(items.first(), item(MODEL::ORYX_D, 0));
        QVERIFY2(items.contains(item(MODEL::ORYX_C, 1)), qPrintable(items.join(", ")));

        w.form()->comboBox_camera_list->setCurrentIndex(items.indexOf(item(MODEL::ORYX_C, 1)));
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
        QCOMPARE(w.input()->getSerialNum(), serialOf(MODEL::ORYX_C, 1));
        QCOMPARE(range->currentText(), QStringLiteral("Last 10 sec"));
        // The first camera was let go.
        const auto devices = bw::Camera::getDeviceList();
        QCOMPARE(devices.size(), size_t(2));
        QVERIFY(devices[0].camera_state == bw::CAMERA_STATE::AVAILABLE);
    }

    void refreshWithoutACameraSearchesAgain() {
        PacedVirtualTime time({});
        MainWindow w;
        w.show();
        PollCounter polls(w);
        QVERIFY(polls.waitForNext());
        bw::sim::Bus::instance().plug(simulatedCamera(MODEL::ORYX_C));
        QVERIFY(polls.waitForNext());
        // The last poll saw the camera: refreshing opens it without waiting for the timer.
        w.form()->pushButton_refresh_list->click();
        WAIT_OR_FAIL(isSamplingCamera(w), "the camera did not open", kOpenTimeoutMs);
    }
};

WIDGET_TEST_MAIN(TestWindowLifecycle)
#include "tst_window_lifecycle.moc"
