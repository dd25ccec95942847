// Replay from the main window: a recording made by the viewer plays back through the whole
// window and records again to the same rows; a file that is not a recording is refused with a
// message and the viewer carries on; the replay bar pauses and steps one sample at a time.
#include <QFile>
#include <QHash>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "InputThreadModul.h"
#include "MessageBoxWatcher.h"
#include "ReplayBar.h"
#include "SimulatedCameras.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

constexpr int kTimeoutMs = 60000;

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

// Records from the window's open camera until `done` holds; empty if it never does.
template <class Done>
QString recordUntil(MainWindow& w, const QString& folder, Done done) {
    QDir().mkpath(folder);
    w.recordingOptions().saveFolder = folder;
    w.recordingOptions().sampleFreq = 400;
    w.form()->toolButton_save->click();
    const QString path = w.recordingPath();
    const bool finished = QTest::qWaitFor(done, kTimeoutMs);
    w.form()->toolButton_save->click();
    return finished ? path : QString();
}

}  // namespace

class TestWindowReplay : public QObject {
    Q_OBJECT

    QTemporaryDir settingsDir;
    QTemporaryDir folder;

private slots:
    void initTestCase() {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());
    }

    // One minute of every group at 400 Hz, replayed and recorded again: the same rows at the same
    // times.
    void aReplayRecordsTheRowsItWasRecordedFrom() {
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        QString original;
        {
            MainWindow w;
            w.show();
            QTRY_VERIFY_WITH_TIMEOUT(w.isSampling() && w.sampleLevels().currentTime > 0,
                                     kTimeoutMs);
            const double start = w.sampleLevels().currentTime.load();
            original = recordUntil(w, folder.filePath("live"), [&] {
                return w.sampleLevels().currentTime.load() > start + 60.0;
            });
            QVERIFY(!original.isEmpty());
        }
        bw::sim::Bus::instance().load({});
        MainWindow w;
        w.openRecordings({original});
        w.show();
        QTRY_VERIFY_WITH_TIMEOUT(w.isSampling() && w.input()->isReplaying(), kTimeoutMs);
        QVERIFY(w.windowTitle().contains(QFileInfo(original).fileName()));
        QVERIFY(w.form()->comboBox_camera_list->currentText().startsWith("Recording - "));
        QVERIFY(w.replayControls()->isVisible());
        const int frames = w.input()->replayFrameCount();
        // From the start, paused while the recording begins, until the replay starts over.
        auto* playPause = w.replayControls()->findChild<QToolButton*>();
        playPause->click();
        w.input()->seekReplay(0);
        QTRY_COMPARE_WITH_TIMEOUT(w.input()->shownFrameTimestamp(), w.input()->replayTimestamp(0),
                                  kTimeoutMs);
        int furthest = 0;
        const QString replayed = recordUntil(w, folder.filePath("replayed"), [&] {
            if (w.replayControls()->isPaused()) playPause->click();
            const int position = w.input()->replayPosition();
            furthest = std::max(furthest, position);
            return position + 100 < furthest;
        });
        QVERIFY(!replayed.isEmpty());

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
    }

    // Each refusal names the file, the line and the problem, and the next camera opens.
    void aFileThatIsNotARecordingIsRefusedAndTheCameraOpens() {
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        const QString path = folder.filePath("backwards.csv");
        const QByteArray content = "idx,imu_Timestamp[sec],\n0,2.000000000,\n1,1.000000000,\n";
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        MessageBoxWatcher boxes;
        MainWindow w;
        w.openRecordings({path});
        w.show();
        QTRY_COMPARE_WITH_TIMEOUT(boxes.shown().size(), 1, kTimeoutMs);
        QCOMPARE(boxes.shown().first().title, QString("Replay"));
        QCOMPARE(boxes.shown().first().text,
                 path +
                     " cannot be replayed.\nLine 3: The IMU timestamp 1.000000000 goes back "
                     "from the line before.");
        QTRY_VERIFY_WITH_TIMEOUT(w.isSampling() && !w.input()->isReplaying(), kTimeoutMs);
        QVERIFY(w.replayControls()->isHidden());
        QCOMPARE(w.windowTitle(), QString("Sensor Data Viewer"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content);  // untouched
        QTest::qWait(500);
        QCOMPARE(boxes.shown().size(), 1);  // refused once, not at every poll
    }

    // Paused, the arrow keys move exactly one recorded sample and the readout follows it.
    void pausedTheArrowKeysStepOneSample() {
        const QString path = folder.filePath("steps.csv");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("idx,imu_Timestamp[sec],accX[m/s^2],accY[m/s^2],accZ[m/s^2],\n");
        for (int i = 0; i < 4000; ++i)
            file.write(QString("%1,%2,%3,0.000000000,9.810000000,\n")
                           .arg(i)
                           .arg(100.0 + i * 0.0025, 0, 'f', 9)
                           .arg(i * 0.001, 0, 'f', 9)
                           .toUtf8());
        file.close();
        PacedVirtualTime time({});
        MainWindow w;
        w.openRecordings({path});
        w.show();
        QTRY_VERIFY_WITH_TIMEOUT(w.isSampling() && w.input()->replayPosition() > 100, kTimeoutMs);
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
            QTRY_COMPARE_WITH_TIMEOUT(
                shownX(), QString("X %1 m/s²").arg(expected * 0.001, 0, 'f', 3), kTimeoutMs);
        }
    }
};

WIDGET_TEST_MAIN(TestWindowReplay)
#include "tst_window_replay.moc"
