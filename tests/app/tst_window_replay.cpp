// Replay from the main window: a recording made by the viewer plays back through the whole
// window and records again to the same rows; a file that is not a recording is refused with a
// message and the viewer carries on; one cut short replays up to the damage and says so once;
// one that changes while it plays ends the replay with a message; the replay bar's speed is the
// pace of recorded time, and paused, the arrow keys step one sample at a time.
//
// Every wait gives up with a message saying what it waited for, and the waits for an opening
// stop as soon as a message box says the file was refused.
#include <QAbstractItemView>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QSettings>
#include <QSlider>
#include <QTemporaryDir>
#include <QtTest>

#include "InputThreadModul.h"
#include "MessageBoxWatcher.h"
#include "ReplayBar.h"
#include "SimulatedCameras.h"
#include "TempSettings.h"
#include "WaitOrFail.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

// Bounds waits for what takes well under a second on an idle machine.
constexpr int kWaitMs = 10000;
// Waits for what takes long on a slow build give up once nothing moves for this long.
constexpr int kStillMs = 5000;

// The rows of a recording by their IMU time, each without its index (the position in the
// window's series, which differs between runs).
struct Rows {
    QString header;
    QHash<QString, QString> byImuTime;
    int count = 0;
};

Rows readRows(const QString& path) {
    Rows rows;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return rows;
    const QList<QByteArray> lines = file.readAll().split('\n');
    rows.header = QString::fromUtf8(lines.first());
    for (int n = 1; n < lines.size(); ++n) {
        if (lines[n].isEmpty()) continue;
        const QString line = QString::fromUtf8(lines[n]);
        const QString values = line.section(',', 1);
        rows.byImuTime.insert(values.section(',', 0, 0), values);
        ++rows.count;
    }
    return rows;
}

// Accelerometer rows at `rateHz` from 100 s on, the i-th reading X = i / 1000, then `tail`.
QByteArray accelerometerRecording(int count, double rateHz, const QByteArray& tail = {}) {
    QByteArray content = "idx,imu_Timestamp[sec],accX[m/s^2],accY[m/s^2],accZ[m/s^2],\n";
    for (int i = 0; i < count; ++i)
        content += QString("%1,%2,%3,0.000000000,9.810000000,\n")
                       .arg(i)
                       .arg(100.0 + i / rateHz, 0, 'f', 9)
                       .arg(i * 0.001, 0, 'f', 9)
                       .toUtf8();
    return content + tail;
}

bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

bool isReplaying(const MainWindow& w) {
    return w.isSampling() && w.input() != nullptr && w.input()->isReplaying();
}

// Opens the recording in the window and waits until it replays, or a message box says why it
// does not.
bool opensForReplay(MainWindow& w, const MessageBoxWatcher& boxes, const QString& path) {
    w.openRecordings({path});
    w.show();
    return QTest::qWaitFor([&] { return isReplaying(w) || !boxes.shown().isEmpty(); }, kWaitMs) &&
           isReplaying(w);
}

QString replayFailure(const MessageBoxWatcher& boxes) {
    return "the recording does not replay; " + boxes.said();
}

// Waits until `done` holds while `progress` keeps changing: a slow build takes as long as it
// needs, a product that stopped gives up after kStillMs.
template <class Done, class Progress>
bool waitWhileMoving(Done done, Progress progress) {
    QElapsedTimer still;
    still.start();
    auto last = progress();
    while (!done()) {
        QTest::qWait(20);
        const auto now = progress();
        if (now != last) {
            last = now;
            still.restart();
        } else if (still.elapsed() > kStillMs) {
            return false;
        }
    }
    return true;
}

// Records from the window's open camera until `done` holds, as long as `progress` moves; empty
// if it stops first.
template <class Done, class Progress>
QString recordUntil(MainWindow& w, const QString& folder, Done done, Progress progress) {
    QDir().mkpath(folder);
    w.recordingOptions().saveFolder = folder;
    w.recordingOptions().sampleFreq = 400;
    w.form()->toolButton_save->click();
    const QString path = w.recordingPath();
    const bool finished = waitWhileMoving(done, progress);
    w.form()->toolButton_save->click();
    return finished ? path : QString();
}

// Picks `text` from the combo box's list as a user does: open it, go to the entry, press Enter.
void choose(QComboBox* box, const QString& text) {
    const int index = box->findText(text);
    QVERIFY2(index >= 0, qPrintable("no entry " + text));
    box->showPopup();
    QAbstractItemView* list = box->view();
    WAIT_OR_FAIL(list->isVisible(), "the list did not open", kWaitMs);
    list->setCurrentIndex(list->model()->index(index, box->modelColumn()));
    QTest::keyClick(list, Qt::Key_Return);
    WAIT_OR_FAIL(!list->isVisible(), "the list did not close", kWaitMs);
    QCOMPARE(box->currentText(), text);
}

QStringList listed(const MainWindow& w) {
    QStringList items;
    for (int i = 0; i < w.form()->comboBox_camera_list->count(); ++i)
        items << w.form()->comboBox_camera_list->itemText(i);
    return items;
}

}  // namespace

class TestWindowReplay : public QObject {
    Q_OBJECT

    TempSettings settings;  // never the user's own settings
    QTemporaryDir folder;

private slots:
    // One minute of every group at 400 Hz, replayed and recorded again: the same rows at the same
    // times.
    void aReplayRecordsTheRowsItWasRecordedFrom() {
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        MessageBoxWatcher boxes;
        QString original;
        {
            MainWindow w;
            w.show();
            WAIT_OR_FAIL(w.isSampling() && w.sampleLevels().currentTime > 0,
                         qPrintable("the camera does not sample; " + boxes.said()), kWaitMs);
            const auto sampledTime = [&w] { return w.sampleLevels().currentTime.load(); };
            const double start = sampledTime();
            original = recordUntil(
                w, folder.filePath("live"), [&] { return sampledTime() > start + 60.0; },
                sampledTime);
            QVERIFY2(!original.isEmpty(),
                     qPrintable(QString("sampling stopped after %1 s").arg(sampledTime() - start)));
        }
        bw::sim::Bus::instance().load({});
        MainWindow w;
        QVERIFY2(opensForReplay(w, boxes, original), qPrintable(replayFailure(boxes)));
        QVERIFY(w.windowTitle().contains(QFileInfo(original).fileName()));
        QVERIFY(w.form()->comboBox_camera_list->currentText().startsWith("Recording - "));
        QVERIFY(w.replayControls()->isVisible());
        const int frames = w.input()->replayFrameCount();
        // From the start, paused while the recording begins, until the replay starts over.
        auto* playPause = w.replayControls()->findChild<QToolButton*>();
        playPause->click();
        w.input()->seekReplay(0);
        WAIT_OR_FAIL(w.input()->shownFrameTimestamp() == w.input()->replayTimestamp(0),
                     "the first frame is not shown after seeking to it", kWaitMs);
        int furthest = 0;
        const auto position = [&w] { return w.input()->replayPosition(); };
        const QString replayed = recordUntil(
            w, folder.filePath("replayed"),
            [&] {
                if (w.replayControls()->isPaused()) playPause->click();
                furthest = std::max(furthest, position());
                return position() + 100 < furthest;
            },
            position);
        QVERIFY2(!replayed.isEmpty(), qPrintable(QString("the replay stopped before it started "
                                                         "over, at frame %1 of %2")
                                                     .arg(furthest)
                                                     .arg(frames)));

        const Rows before = readRows(original), after = readRows(replayed);
        QCOMPARE(after.header, before.header);
        QCOMPARE(frames, before.count);
        // The replay's first row only sets the time origin, as a live camera's first does.
        QVERIFY2(
            after.byImuTime.size() >= before.count - 2,
            qPrintable(QString("%1 of %2 rows").arg(after.byImuTime.size()).arg(before.count)));
        // Orientation goes through a float rotation rebuilt from its angles, which keeps them to
        // a few float steps; every other value is equal as written.
        const QStringList titles = after.header.split(',').mid(1);
        for (auto row = after.byImuTime.cbegin(); row != after.byImuTime.cend(); ++row) {
            QVERIFY2(before.byImuTime.contains(row.key()), qPrintable(row.key()));
            const QStringList got = row.value().split(','),
                              want = before.byImuTime.value(row.key()).split(',');
            QCOMPARE(got.size(), want.size());
            for (int c = 0; c < got.size(); ++c) {
                if (titles.value(c).startsWith("or"))
                    QVERIFY2(std::fabs(got[c].toDouble() - want[c].toDouble()) < 1e-4,
                             qPrintable(titles[c] + ": " + got[c] + " vs " + want[c]));
                else
                    QVERIFY2(got[c] == want[c],
                             qPrintable(titles.value(c) + ": " + got[c] + " vs " + want[c]));
            }
        }
        QVERIFY2(boxes.shown().isEmpty(), qPrintable(boxes.said()));
    }

    // Each refusal names the file, the line and the problem, and the next camera opens.
    void aFileThatIsNotARecordingIsRefusedAndTheCameraOpens() {
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        const QString path = folder.filePath("backwards.csv");
        const QByteArray content = "idx,imu_Timestamp[sec],\n0,2.000000000,\n1,1.000000000,\n";
        QVERIFY(writeFile(path, content));
        MessageBoxWatcher boxes;
        MainWindow w;
        w.openRecordings({path});
        w.show();
        QVERIFY2(
            QTest::qWaitFor([&] { return !boxes.shown().isEmpty() || isReplaying(w); }, kWaitMs),
            "the file was neither refused nor replayed");
        QVERIFY2(!isReplaying(w), "the file replays instead of being refused");
        QCOMPARE(boxes.shown().size(), 1);
        QCOMPARE(boxes.shown().first().title, QString("Replay"));
        QCOMPARE(boxes.shown().first().text,
                 path +
                     " cannot be replayed.\nLine 3: The IMU timestamp 1.000000000 goes back "
                     "from the line before.");
        WAIT_OR_FAIL(w.isSampling() && !w.input()->isReplaying(),
                     "the camera did not open after the refusal", kWaitMs);
        QVERIFY(w.replayControls()->isHidden());
        QCOMPARE(w.windowTitle(), QString("Sensor Data Viewer"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content);  // untouched
        QTest::qWait(500);
        QCOMPARE(boxes.shown().size(), 1);  // refused once, not at every poll
    }

    // A recording whose writer died mid-row replays up to the damage; the user is told once
    // which line is damaged, not again when the recording is chosen again.
    void aRecordingCutShortReplaysUpToTheDamageAndSaysSoOnce() {
        const QString path = folder.filePath("cut-short.csv");
        QVERIFY(writeFile(path, accelerometerRecording(4000, 400.0, "4000,110.0")));
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        MessageBoxWatcher boxes;
        MainWindow w;
        QVERIFY2(opensForReplay(w, boxes, path), qPrintable(replayFailure(boxes)));
        WAIT_OR_FAIL(!boxes.shown().isEmpty(), "nothing said the recording is cut short", kWaitMs);
        QCOMPARE(boxes.shown().size(), 1);
        const ShownMessage told = boxes.shown().first();
        QCOMPARE(told.title, QString("Replay"));
        QCOMPARE(told.icon, QMessageBox::Information);
        QCOMPARE(told.text, path +
                                " ends in a damaged line, as a recording does whose writer "
                                "stopped mid-row. The 4000 rows before it are replayed.\n"
                                "Line 4002: The row has 2 values where the header has 5 columns.");
        QCOMPARE(w.input()->replayFrameCount(), 4000);

        // The camera, then the recording again.
        const QString camera =
            QString("ORYX_D - %1").arg(bw::sim::DeviceConfig::defaultSerial(bw::MODEL::ORYX_D, 0));
        // The list shows what the poll before the last refresh found.
        const auto refreshedListHasCamera = [&] {
            w.form()->pushButton_refresh_list->click();
            return listed(w).contains(camera);
        };
        QVERIFY2(QTest::qWaitFor(refreshedListHasCamera, kWaitMs),
                 qPrintable("the camera is not listed: " + listed(w).join(", ")));
        w.form()->comboBox_camera_list->setCurrentIndex(listed(w).indexOf(camera));
        QVERIFY2(w.isSampling() && !w.input()->isReplaying(), "the camera did not open");
        w.form()->pushButton_refresh_list->click();
        const int again = listed(w).indexOf("Recording - cut-short.csv");
        QVERIFY2(again >= 0, qPrintable("the recording is not listed: " + listed(w).join(", ")));
        w.form()->comboBox_camera_list->setCurrentIndex(again);
        QVERIFY2(isReplaying(w), qPrintable(replayFailure(boxes)));
        QCOMPARE(boxes.shown().size(), 1);
    }

    // The file is cut while it plays: the replay ends with a message, and the file is not opened
    // again by itself.
    void aRecordingChangedWhileReplayedEndsTheReplayWithAMessage() {
        const QString path = folder.filePath("changing.csv");
        // Larger than the reader's buffer, so that seeking reads from the disk.
        const QByteArray content = accelerometerRecording(60000, 400.0);
        QVERIFY(writeFile(path, content));
        PacedVirtualTime time({});
        MessageBoxWatcher boxes;
        MainWindow w;
        QVERIFY2(opensForReplay(w, boxes, path), qPrintable(replayFailure(boxes)));
        const int frames = w.input()->replayFrameCount();

        QVERIFY(QFile::resize(path, content.size() / 2 + 7));
        w.replayControls()->findChild<QSlider*>()->setValue(frames - 1);
        WAIT_OR_FAIL(!boxes.shown().isEmpty(), "no message after the replayed file was cut",
                     kWaitMs);
        QCOMPARE(boxes.shown().first().title, QString("Replay"));
        QCOMPARE(boxes.shown().first().text,
                 path +
                     " could not be read any more; the replay has ended.\nIt was changed while "
                     "it was replayed.");
        WAIT_OR_FAIL(w.isDetecting() && w.input() == nullptr,
                     "the window did not go back to looking for cameras", kWaitMs);
        QVERIFY(w.replayControls()->isHidden());
        QCOMPARE(w.windowTitle(), QString("Sensor Data Viewer"));
        WAIT_OR_FAIL(listed(w) == QStringList{"No cameras"},
                     qPrintable("listed: " + listed(w).join(", ")), kWaitMs);
        QCOMPARE(boxes.shown().size(), 1);
    }

    // Recorded time passes at the chosen speed on the virtual clock, which only the replay moves
    // here.
    void theChosenSpeedIsThePaceOfRecordedTime_data() {
        QTest::addColumn<QString>("speed");
        QTest::addColumn<double>("factor");
        QTest::newRow("quarter") << QString::fromUtf8("\u00bc\u00d7") << 0.25;
        QTest::newRow("as recorded") << QString::fromUtf8("1\u00d7") << 1.0;
        QTest::newRow("four times") << QString::fromUtf8("4\u00d7") << 4.0;
        QTest::newRow("sixteen times") << QString::fromUtf8("16\u00d7") << 16.0;
    }
    void theChosenSpeedIsThePaceOfRecordedTime() {
        QFETCH(QString, speed);
        QFETCH(double, factor);
        const QString path = folder.filePath("pace.csv");
        QVERIFY(writeFile(path, accelerometerRecording(3000, 100.0)));  // 30 s
        bw::sim::VirtualTimeScope virtualTime;
        bw::sim::Bus::instance().load({});
        MessageBoxWatcher boxes;
        MainWindow w;
        QVERIFY2(opensForReplay(w, boxes, path), qPrintable(replayFailure(boxes)));
        // The clock stands still until the test moves it: the first row, due at once, is shown.
        const bw::Timestamp shownFirst = w.input()->replayTimestamp(0);
        WAIT_OR_FAIL(w.input()->shownFrameTimestamp() == shownFirst, "the first row is not shown",
                     kWaitMs);
        choose(w.replayControls()->findChild<QComboBox*>(), speed);
        if (QTest::currentTestFailed()) return;

        // Twenty recorded seconds' worth of virtual time.
        const std::uint64_t startNs = bw::sim::Clock::nowNs();
        const std::uint64_t endNs = startNs + static_cast<std::uint64_t>(20e9 / factor);
        bw::sim::Clock::setAutoAdvanceLimit(endNs);
        // The clock stops at the last row due before the end: within a row's period of it.
        const std::uint64_t rowAtSpeedNs = static_cast<std::uint64_t>(1e9 / 100.0 / factor);
        WAIT_OR_FAIL(bw::sim::Clock::nowNs() + rowAtSpeedNs >= endNs,
                     "the replay did not move the virtual clock on", kWaitMs);
        const double recorded =
            static_cast<double>(w.input()->shownFrameTimestamp() - shownFirst) / 1e9;
        const double elapsed = static_cast<double>(bw::sim::Clock::nowNs() - startNs) / 1e9;
        const double pace = recorded / elapsed;
        QVERIFY2(std::fabs(pace - factor) < 0.05 * factor,
                 qPrintable(QString("%1 recorded seconds in %2 s: %3 per second at %4")
                                .arg(recorded)
                                .arg(elapsed)
                                .arg(pace)
                                .arg(speed)));
    }

    // Paused, the arrow keys move exactly one recorded sample and the readout follows it.
    void pausedTheArrowKeysStepOneSample() {
        const QString path = folder.filePath("steps.csv");
        QVERIFY(writeFile(path, accelerometerRecording(4000, 400.0)));
        PacedVirtualTime time({});
        MessageBoxWatcher boxes;
        MainWindow w;
        QVERIFY2(opensForReplay(w, boxes, path), qPrintable(replayFailure(boxes)));
        WAIT_OR_FAIL(w.input()->replayPosition() > 100, "the replay does not play", kWaitMs);
        // Key strokes reach the active window; without a window manager the test makes it so.
        QApplication::setActiveWindow(&w);
        QCOMPARE(QApplication::activeWindow(), &w);
        auto* pause = w.replayControls()->findChild<QToolButton*>();
        pause->click();
        QVERIFY(w.replayControls()->isPaused());
        QTest::qWait(300);  // a grab under way when the pause came still ends
        const int held = w.input()->replayPosition();
        QTest::qWait(300);
        QCOMPARE(w.input()->replayPosition(), held);
        const auto shownX = [&w] { return w.form()->lineEdit_value_0->text(); };
        for (const auto& [key, expected] :
             {std::pair{Qt::Key_Right, held + 1}, std::pair{Qt::Key_Right, held + 2},
              std::pair{Qt::Key_Left, held + 1}}) {
            QTest::keyClick(&w, key);
            QCOMPARE(w.input()->replayPosition(), expected);
            // The frame on show is the one stepped to: its acceleration reads i / 1000.
            const QString stepped = QString("X %1 m/s²").arg(expected * 0.001, 0, 'f', 3);
            WAIT_OR_FAIL(shownX() == stepped,
                         qPrintable("the readout shows " + shownX() + ", not " + stepped), kWaitMs);
        }
    }
};

WIDGET_TEST_MAIN(TestWindowReplay)
#include "tst_window_replay.moc"
