// Recording from the main window: the record button, the rows written while the camera runs,
// a camera pulled out mid-recording, a disk that fills up, and the free-space label.
#include <sys/resource.h>

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>

#include "InputThreadModul.h"
#include "MessageBoxWatcher.h"
#include "SimulatedCameras.h"
#include "TempSettings.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

constexpr int kTimeoutMs = 10000;

// Reads a recording strictly: every line complete, every row with the header's column count
// and every value a number. Returns the rows' first column (the series index) and imu time.
struct Recording {
    QStringList columns;
    QVector<int> indexes;
    QVector<double> imuTimes;
    QString error;
};

Recording readStrictly(const QString& path) {
    Recording r;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {{}, {}, {}, "cannot open " + path};
    const QByteArray all = file.readAll();
    if (!all.endsWith('\n')) return {{}, {}, {}, "the file does not end on a line boundary"};
    const QList<QByteArray> lines = all.left(all.size() - 1).split('\n');
    r.columns = QString::fromUtf8(lines.first()).split(',');
    for (int n = 1; n < lines.size(); ++n) {
        const QList<QByteArray> fields = lines[n].split(',');
        if (fields.size() != r.columns.size())
            return {{}, {}, {}, QString("line %1 has %2 fields").arg(n).arg(fields.size())};
        for (int c = 0; c + 1 < fields.size(); ++c) {
            bool ok = false;
            fields[c].toDouble(&ok);
            if (!ok) return {{}, {}, {}, QString("line %1 field %2 is not a number").arg(n).arg(c)};
        }
        r.indexes.append(fields[0].toInt());
        r.imuTimes.append(fields[1].toDouble());
    }
    return r;
}

// While it exists, files this process writes can grow to `bytes` only: a write past the limit
// fails as on a full disk (SIGXFSZ, which would end the process, is ignored). Needs no
// privileges: a process may lower its own limit and raise it again up to the hard limit.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &saved);
        previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limited = saved;
        limited.rlim_cur = bytes;
        applied = setrlimit(RLIMIT_FSIZE, &limited) == 0;
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, previousHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    bool isApplied() const { return applied; }

private:
    rlimit saved{};
    void (*previousHandler)(int) = SIG_DFL;
    bool applied = false;
};

int lineCount(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? int(file.readAll().count('\n')) : 0;
}

std::int64_t sampledRows(MainWindow& w) {
    std::lock_guard<std::mutex> lock(w.sampleMutex());
    return w.sampleSeries().endRow().value();
}

}  // namespace

class TestWindowRecording : public QObject {
    Q_OBJECT

    TempSettings settings;  // never the user's own settings
    QTemporaryDir recordings;
    std::unique_ptr<PacedVirtualTime> time;
    std::unique_ptr<MainWindow> window;

    // The window on the default ORYX_D, once sampling, set to record `rowsPerSecond` into `folder`.
    MainWindow& sampling(int rowsPerSecond, const QString& folder) {
        time = std::make_unique<PacedVirtualTime>(
            std::vector<bw::sim::DeviceConfig>{simulatedCamera(bw::MODEL::ORYX_D)});
        window = std::make_unique<MainWindow>();
        window->show();
        (void)QTest::qWaitFor([this] { return window->isSampling(); }, kTimeoutMs);
        window->recordingOptions().saveFolder = folder;
        window->recordingOptions().sampleFreq = rowsPerSecond;
        return *window;
    }

private slots:
    void cleanup() {
        window.reset();
        time.reset();
    }

    void withoutACameraTheButtonSpringsBack() {
        PacedVirtualTime noCameras({});
        MainWindow w;
        w.show();
        w.form()->toolButton_save->click();
        QVERIFY(!w.form()->toolButton_save->isChecked());
        QVERIFY(w.recordingPath().isEmpty());
    }

    void anUnwritableFolderGivesTheFileErrorAndTheButtonSpringsBack() {
        MessageBoxWatcher boxes;
        MainWindow& w = sampling(400, recordings.filePath("no/such/folder"));
        QVERIFY(w.isSampling());
        w.form()->toolButton_save->click();
        QTRY_VERIFY_WITH_TIMEOUT(!boxes.shown().isEmpty(), kTimeoutMs);
        QCOMPARE(boxes.shown().first().text, QString("Error while opening file for writing"));
        QTRY_VERIFY(!w.form()->toolButton_save->isChecked());
        QVERIFY(w.form()->pushButton_rec_option->isEnabled());
    }

    void aRecordingHoldsTheChosenRateAndEndsCleanlyWhenStopped() {
        MainWindow& w = sampling(100, recordings.path());
        QVERIFY(w.isSampling());
        w.form()->toolButton_save->click();
        QVERIFY(w.form()->toolButton_save->isChecked());
        QCOMPARE(w.form()->toolButton_save->text(), QString("Recording..."));
        QVERIFY(!w.form()->pushButton_rec_option->isEnabled());
        const QString path = w.recordingPath();
        QVERIFY(!QFileInfo(path).fileName().contains(' '));
        QVERIFY(path.endsWith("-ORYX_D-sn_31000017-ORYXSensorsData.csv"));
        // A few seconds of samples on the paced clock; how long that takes depends on the load.
        QTRY_VERIFY_WITH_TIMEOUT(lineCount(path) > 300, kTimeoutMs);
        w.form()->toolButton_save->click();
        QCOMPARE(w.form()->toolButton_save->text(), QString("Record"));
        QVERIFY(w.form()->pushButton_rec_option->isEnabled());

        const Recording r = readStrictly(path);
        QVERIFY2(r.error.isEmpty(), qPrintable(r.error));
        QCOMPARE(r.columns.first(), QString("idx"));
        QVERIFY(r.indexes.size() > 100);
        const double seconds = r.imuTimes.last() - r.imuTimes.first();
        const double perSecond = (r.indexes.size() - 1) / seconds;
        QVERIFY2(qAbs(perSecond - 100.0) <= 1.0, qPrintable(QString::number(perSecond)));
        for (int n = 1; n < r.indexes.size(); ++n) QVERIFY(r.indexes[n] > r.indexes[n - 1]);
    }

    void pullingTheCameraOutMidRecordingKeepsEveryWrittenRowWhole() {
        MainWindow& w = sampling(400, recordings.path());
        QVERIFY(w.isSampling());
        w.form()->toolButton_save->click();
        const QString path = w.recordingPath();
        QVERIFY(!path.isEmpty());
        QTest::qWait(150);
        bw::sim::Bus::instance().unplug(w.input()->getSerialNum());
        QTRY_VERIFY_WITH_TIMEOUT(w.isDetecting(), kTimeoutMs);
        QVERIFY(!w.form()->toolButton_save->isChecked());
        QCOMPARE(w.form()->toolButton_save->text(), QString("Record"));

        const Recording r = readStrictly(path);
        QVERIFY2(r.error.isEmpty(), qPrintable(r.error));
        QVERIFY(r.indexes.size() > 50);
        // At 400 rows per second every sample is written: consecutive indexes.
        for (int n = 1; n < r.indexes.size(); ++n) QCOMPARE(r.indexes[n], r.indexes[n - 1] + 1);
    }

    // The disk fills up while a recording runs: the user is told which file and why, the button
    // returns to "Record", the file keeps every row written before and ends on a whole row, and
    // the camera goes on being sampled and shown.
    void aFullDiskStopsTheRecordingAndTheViewerGoesOn() {
        constexpr rlim_t kRoomForRows = 64 * 1024;
        MessageBoxWatcher boxes;
        MainWindow& w = sampling(400, recordings.path());
        QVERIFY(w.isSampling());
        FileSizeLimit fullDisk(kRoomForRows);
        QVERIFY2(fullDisk.isApplied(), "the file size limit could not be set");
        w.form()->toolButton_save->click();
        const QString path = w.recordingPath();
        QVERIFY(!path.isEmpty());

        QTRY_VERIFY_WITH_TIMEOUT(!boxes.shown().isEmpty(), kTimeoutMs);
        const ShownMessage box = boxes.shown().first();
        QCOMPARE(box.title, QString("File error"));
        QVERIFY2(box.text.contains(QDir::toNativeSeparators(path)) &&
                     box.text.contains("File too large"),
                 qPrintable(box.text));
        QCOMPARE(box.clicked, QString("Ok"));
        QCOMPARE(w.form()->toolButton_save->text(), QString("Record"));
        QVERIFY(!w.form()->toolButton_save->isChecked());
        QVERIFY(w.form()->pushButton_rec_option->isEnabled());

        const Recording r = readStrictly(path);
        QVERIFY2(r.error.isEmpty(), qPrintable(r.error));
        QVERIFY(QFileInfo(path).size() <= static_cast<qint64>(kRoomForRows));
        QVERIFY(r.indexes.size() > 100);
        for (int n = 1; n < r.indexes.size(); ++n) QCOMPARE(r.indexes[n], r.indexes[n - 1] + 1);

        // The camera is still sampled and shown.
        QVERIFY(w.isSampling() && !w.hasNoCamera());
        const std::int64_t rowsThen = sampledRows(w);
        const QString shownThen = w.form()->lineEdit_value_0->text();
        QTRY_VERIFY_WITH_TIMEOUT(sampledRows(w) > rowsThen + 400, kTimeoutMs);
        QTRY_VERIFY_WITH_TIMEOUT(w.form()->lineEdit_value_0->text() != shownThen, kTimeoutMs);
        QCOMPARE(boxes.shown().size(), 1);
    }

    // Every column of a recording with every group holds what the window sampled at the row's
    // index, to the nine decimals written.
    void eachColumnHoldsItsSeries() {
        MainWindow& w = sampling(50, recordings.path());
        QVERIFY(w.isSampling());
        w.form()->toolButton_save->click();
        const QString path = w.recordingPath();
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path).size() > 20000, kTimeoutMs);
        w.form()->toolButton_save->click();
        // The rows written must still be in the series when they are compared.
        time->pause();

        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
        QStringList header = lines.first().split(',');
        for (QString& name : header) name = name.trimmed();  // "moving, " has its blank
        const QMap<QString, SampleColumn SensorSeries::*> columns{
            {"imu_Timestamp[sec]", &SensorSeries::imuTime},
            {"mag_Timestamp[sec]", &SensorSeries::magTime},
            {"baro_Timestamp[sec]", &SensorSeries::baroTime},
            {"accX[m/s^2]", &SensorSeries::accX},
            {"accY[m/s^2]", &SensorSeries::accY},
            {"accZ[m/s^2]", &SensorSeries::accZ},
            {"gyroX[deg/s]", &SensorSeries::gyroX},
            {"gyroY[deg/s]", &SensorSeries::gyroY},
            {"gyroZ[deg/s]", &SensorSeries::gyroZ},
            {"magX[uT]", &SensorSeries::magX},
            {"magY[uT]", &SensorSeries::magY},
            {"magZ[uT]", &SensorSeries::magZ},
            {"orX[deg]", &SensorSeries::orientX},
            {"orY[deg]", &SensorSeries::orientY},
            {"orZ[deg]", &SensorSeries::orientZ},
            {"press[hPa]", &SensorSeries::pressure},
            {"rel_alt[m]", &SensorSeries::altitude},
            {"moving", &SensorSeries::movingState},
            {"temp_left[C]", &SensorSeries::tempLeft},
            {"temp_right[C]", &SensorSeries::tempRight},
        };
        // Every group's columns, each series once; the IMU and barometer temperatures are read
        // from the camera when the row is written, not kept in a series.
        for (const QString& name : columns.keys())
            QVERIFY2(header.contains(name), qPrintable(name));
        QVERIFY(header.contains("temp_imu[C]") && header.contains("temp_barom[C]"));
        QVERIFY(lines.size() > 50);

        std::lock_guard<std::mutex> lock(w.sampleMutex());
        const SensorSeries& s = w.sampleSeries();
        for (int n = 1; n < lines.size(); ++n) {
            const QStringList fields = lines[n].split(',');
            const RowNumber row(fields[0].toLongLong());
            QVERIFY2(row >= s.imuTime.firstRow(), "the row has left the series");
            for (int c = 1; c < header.size(); ++c) {
                const auto series = columns.value(header[c]);
                if (series == nullptr) continue;
                const QString want = QString::number((s.*series).at(row), 'f', 9);
                QVERIFY2(fields[c] == want, qPrintable(QString("line %1, %2: %3, sampled %4")
                                                           .arg(n)
                                                           .arg(header[c], fields[c], want)));
            }
        }
    }
};

WIDGET_TEST_MAIN(TestWindowRecording)
#include "tst_window_recording.moc"
