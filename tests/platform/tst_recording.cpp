// Opening recordings for replay: the files that are refused, each with the line and the problem
// a user needs to find it; recordings cut short by a writer that died, which replay up to the
// damage; the rows read back in order or by seeking, and reading that fails cleanly when the
// file changes underneath; the camera that a file name names.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <future>
#include <optional>

#include "RecordingFile.h"
#include "RecordingName.h"

namespace {

using recording::Column;
using recording::RecordingFile;

const QByteArray kHeader = "idx,imu_Timestamp[sec],accX[m/s^2],moving, \n";

QByteArray row(int i) {
    return QString("%1,%2,%3,%4,\n")
        .arg(i)
        .arg(10.0 + i * 0.0025, 0, 'f', 9)
        .arg(-i * 0.5, 0, 'f', 9)
        .arg(i % 3)
        .toUtf8();
}

QByteArray rows(int count) {
    QByteArray content;
    for (int i = 0; i < count; ++i) content += row(i);
    return content;
}

// Opens on another thread, so that a reader that blocks (a named pipe without a writer) fails
// the test in seconds instead of hanging it. The pipe is then given a writer that leaves at once,
// which lets the blocked open go on to an empty file.
std::unique_ptr<RecordingFile> openWithin(const std::string& path, recording::Problem& problem,
                                          bool& blocked) {
    auto opening = std::async(std::launch::async, [path] {
        recording::Problem found;
        auto file = RecordingFile::open(path, found);
        return std::make_pair(std::move(file), found);
    });
    blocked = opening.wait_for(std::chrono::seconds(5)) != std::future_status::ready;
    if (blocked) {
        const int writer = ::open(path.c_str(), O_WRONLY | O_NONBLOCK);
        if (writer >= 0) ::close(writer);
    }
    auto [file, found] = opening.get();
    problem = found;
    return std::move(file);
}

QString textOf(const recording::Problem& problem) { return QString::fromStdString(problem.text); }

// A listening Unix socket at `path`; closed when it goes.
class SocketFile {
public:
    explicit SocketFile(const QString& path) : fd_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray name = path.toLocal8Bit();
        std::memcpy(address.sun_path, name.constData(),
                    std::min(sizeof address.sun_path - 1, std::size_t(name.size())));
        bound_ = fd_ >= 0 &&
                 ::bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                 ::listen(fd_, 1) == 0;
    }
    ~SocketFile() {
        if (fd_ >= 0) ::close(fd_);
    }
    bool isBound() const { return bound_; }

private:
    int fd_;
    bool bound_ = false;
};

// What an excerpt of the file shows: `shown`, cut with an ellipsis.
QString cutExcerpt(const QString& shown) { return shown + QString::fromUtf8("\u2026"); }

}  // namespace

class TestRecording : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    int files = 0;

    std::string write(const QByteArray& content) {
        const QString path = dir.filePath(QString("file%1.csv").arg(++files));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) return {};
        file.write(content);
        return path.toStdString();
    }

private slots:
    void aFileThatIsNotARecordingIsRefused_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("problem");
        QTest::newRow("empty") << QByteArray() << 0 << "The file is empty.";
        QTest::newRow("no header") << QByteArray("0,1.0,2.0,\n") << 1
                                   << "The first line is not a sensor recording header: it must "
                                      "begin with \"idx,\".";
        QTest::newRow("unknown column") << QByteArray("idx,imu_Timestamp[sec],speed[m/s],\n") << 1
                                        << "Unknown column \"speed[m/s]\" in the header.";
        QTest::newRow("no imu time") << QByteArray("idx,accX[m/s^2],\n0,1.0,\n") << 1
                                     << "The header has no imu_Timestamp[sec] column, by which "
                                        "rows are replayed.";
        QTest::newRow("header only") << kHeader << 0 << "The file has a header but no rows.";
        QTest::newRow("short row") << kHeader + "0,1.000,2.000,\n" + row(1) << 2
                                   << "The row has 3 values where the header has 4 columns.";
        QTest::newRow("long row") << kHeader + "0,1.000,2.000,0,7,\n" + row(1) << 2
                                  << "The row has 5 values where the header has 4 columns.";
        QTest::newRow("not a number") << kHeader + "0,1.000,abc,0,\n" + row(1) << 2
                                      << "Value 3 (accX[m/s^2]) \"abc\" is not a number.";
        QTest::newRow("empty value")
            << kHeader + "0,1.000,,0,\n" + row(1) << 2 << "Value 3 (accX[m/s^2]) is empty.";
        QTest::newRow("scientific") << kHeader + "0,1.000,1e-05,0,\n"
                                    << 2
                                    << "Value 3 (accX[m/s^2]) \"1e-05\" is in scientific "
                                       "notation; recordings hold fixed-point numbers.";
        QTest::newRow("backwards")
            << kHeader + "0,1.000,2.0,0,\n1,1.002,2.0,0,\n2,1.001,2.0,0,\n"
            << 4 << "The IMU timestamp 1.001 goes back from the line before.";
        QTest::newRow("blank line inside")
            << kHeader + row(0) + "\n" + row(1) << 3 << "The line is blank.";
        QTest::newRow("the only row cut")
            << kHeader + "0,10.0000" << 2 << "The row has 2 values where the header has 4 columns.";
        // Damage that a writer stopping leaves, on the last line but one.
        QTest::newRow("damage before the last line")
            << kHeader + row(0) + "1,10.00\n" + row(2) << 3
            << "The row has 2 values where the header has 4 columns.";
        // Beyond a double from_chars gives no value at all; it must not read as 0.
        QTest::newRow("too large")
            << kHeader + row(0) + "1,1" + QByteArray(309, '0') + ",0.0,0,\n"
            << 3
            << "Value 2 (imu_Timestamp[sec]) \"" + cutExcerpt("1" + QString(39, '0')) +
                   "\" is out of the range of a double-precision number.";
        QTest::newRow("too small")
            << kHeader + "0,10.0,0." + QByteArray(400, '0') + "1,0,\n"
            << 2
            << "Value 3 (accX[m/s^2]) \"" + cutExcerpt("0." + QString(38, '0')) +
                   "\" is out of the range of a double-precision number.";
        // Quoted file bytes stay short and printable, however long the junk.
        QTest::newRow("junk value")
            << kHeader + "0,10.0,\x1b[2J\t" + QByteArray(1 << 19, '\0') + ",0,\n" + row(1) << 2
            << "Value 3 (accX[m/s^2]) \"" +
                   cutExcerpt("\\x1b[2J\\x09" + QString("\\x00").repeated(35)) +
                   "\" is not a number.";
        // Cut before the 40th byte: the degree sign is not split.
        QTest::newRow("junk column")
            << "idx,imu_Timestamp[sec],temp_C\\" + QByteArray(32, 'x') + "\xc2\xb0yyy,\n"
            << 1
            << "Unknown column \"" + cutExcerpt("temp_C\\\\" + QString(32, 'x')) +
                   "\" in the header.";
    }
    void aFileThatIsNotARecordingIsRefused() {
        QFETCH(QByteArray, content);
        QFETCH(int, line);
        QFETCH(QString, problem);
        const std::string path = write(content);
        recording::Problem found;
        QVERIFY(RecordingFile::open(path, found) == nullptr);
        QCOMPARE(textOf(found), problem);
        QCOMPARE(qint64(found.line), qint64(line));
        QFile file(QString::fromStdString(path));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content);  // read, never written
    }

    // Only regular files are read; anything else is named for what it is, at once. A named pipe
    // without a writer must not block the reader.
    void aPathThatIsNotAFileIsRefused_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("problem");
        QTest::newRow("missing") << "missing"
                                 << "The file does not exist.";
        QTest::newRow("folder") << "folder"
                                << "This is a folder.";
        QTest::newRow("named pipe")
            << "pipe"
            << "This is a named pipe, not a file; only files can be replayed.";
        QTest::newRow("device") << "device"
                                << "This is a device, not a file; only files can be replayed.";
        QTest::newRow("socket") << "socket"
                                << "This is a socket, not a file; only files can be replayed.";
    }
    void aPathThatIsNotAFileIsRefused() {
        QFETCH(QString, kind);
        QFETCH(QString, problem);
        QString path = dir.filePath(kind + ".csv");
        if (kind == "folder") QVERIFY(QDir().mkpath(path));
        if (kind == "pipe") QCOMPARE(::mkfifo(path.toLocal8Bit().constData(), 0600), 0);
        if (kind == "device") path = "/dev/zero";
        std::optional<SocketFile> socket;
        if (kind == "socket") QVERIFY(socket.emplace(path).isBound());
        recording::Problem found;
        bool blocked = false;
        const auto file = openWithin(path.toStdString(), found, blocked);
        QVERIFY2(!blocked, "opening blocked for 5 s");
        QVERIFY(file == nullptr);
        QCOMPARE(textOf(found), problem);
        QCOMPARE(qint64(found.line), qint64(0));
    }

    // A writer that died leaves a damaged last line: the rows before it open, and the damage is
    // named with its line. A last row that is whole opens without a word, line end or not.
    void aRecordingCutShortOpensWithTheRowsBeforeIt_data() {
        QTest::addColumn<QByteArray>("end");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("problem");
        QTest::newRow("blank last line") << QByteArray("\n") << 12 << "The line is blank.";
        QTest::newRow("cut after a value")
            << QByteArray("10,10.0250") << 12
            << "The row has 2 values where the header has 4 columns.";
        QTest::newRow("cut inside the last value")
            << QByteArray("10,10.025000000,-5.000000000,1") << 12
            << "The line breaks off without a line end; its last value may be cut.";
        QTest::newRow("lost to zeros")
            << QByteArray(300, '\0') << 12
            << "Value 1 (idx) \"" + cutExcerpt(QString("\\x00").repeated(40)) +
                   "\" is not a number.";
        QTest::newRow("whole row without a line end")
            << QByteArray("10,10.025000000,-5.000000000,1,") << 0 << QString();
        QTest::newRow("whole row, its line end cut")
            << QByteArray("10,10.025000000,-5.000000000,1,\r") << 0 << QString();
    }
    void aRecordingCutShortOpensWithTheRowsBeforeIt() {
        QFETCH(QByteArray, end);
        QFETCH(int, line);
        QFETCH(QString, problem);
        recording::Problem found;
        const auto file = RecordingFile::open(write(kHeader + rows(10) + end), found);
        QVERIFY2(file, found.text.c_str());
        const bool cut = line > 0;
        QCOMPARE(qint64(file->rowCount()), qint64(cut ? 10 : 11));
        QCOMPARE(file->cutShort().has_value(), cut);
        if (cut) {
            QCOMPARE(qint64(file->cutShort()->line), qint64(line));
            QCOMPARE(textOf(*file->cutShort()), problem);
        }
        recording::Row last;
        QVERIFY(file->read(file->rowCount() - 1, last));
        QCOMPARE(last[Column::INDEX], double(file->rowCount() - 1));
        QCOMPARE(file->lastImuTime(), last[Column::IMU_TIME]);
        QVERIFY(!file->read(file->rowCount(), last));
    }

    void aMissingFileIsNamedAsSuch() {
        recording::Problem found;
        QVERIFY(!RecordingFile::open(dir.filePath("none.csv").toStdString(), found));
        QCOMPARE(textOf(found), QString("The file does not exist."));
    }

    // Rows come back the same whether read in order, by seeking far or back, or after the
    // reader went elsewhere; CRLF line ends and a last line without one are read too.
    void rowsReadTheSameInOrderAndBySeeking() {
        QByteArray content = kHeader;
        const int count = 5000;
        for (int i = 0; i < count; ++i) {
            QByteArray line = row(i);
            if (i % 2) line.insert(line.size() - 1, '\r');
            if (i == count - 1) line.chop(1);
            content += line;
        }
        recording::Problem problem;
        auto file = RecordingFile::open(write(content), problem);
        QVERIFY2(file, problem.text.c_str());
        QCOMPARE(qint64(file->rowCount()), qint64(count));
        QVERIFY(!file->cutShort());
        QVERIFY(!file->has(Column::GYRO_X));
        recording::Row read;
        for (const int index : {0, 1, 2, 4999, 1023, 1024, 1025, 3000, 17, 18, 4998}) {
            QVERIFY(file->read(index, read));
            QCOMPARE(read[Column::INDEX], double(index));
            QCOMPARE(read[Column::ACC_X], -index * 0.5);
            QCOMPARE(read[Column::MOVING], double(index % 3));
            QCOMPARE(read[Column::GYRO_X], 0.0);
        }
        QVERIFY(!file->read(count, read));
    }

    // A file changed after it was opened: the rows it no longer holds as they were fail to read,
    // never come back with values missing, and a failed read leaves reading in order and by
    // seeking as it was. The file is larger than the reader's buffer, so reads reach the disk.
    void aFileChangedAfterOpeningFailsToReadCleanly_data() {
        QTest::addColumn<QString>("change");
        QTest::addColumn<bool>("laterRowsLost");
        QTest::newRow("cut inside a row") << "cut inside" << true;
        QTest::newRow("cut between rows") << "cut between" << true;
        QTest::newRow("a comma rewritten away") << "rewrite" << false;
    }
    void aFileChangedAfterOpeningFailsToReadCleanly() {
        QFETCH(QString, change);
        QFETCH(bool, laterRowsLost);
        const int count = 60000, changedRow = 40000;
        const QByteArray content = kHeader + rows(count);
        QVERIFY(content.size() > 2 * int(recording::LineSource::kBufferBytes));
        const std::string path = write(content);
        recording::Problem problem;
        auto file = RecordingFile::open(path, problem);
        QVERIFY2(file, problem.text.c_str());
        recording::Row read;
        QVERIFY(file->read(0, read));

        const int changedAt = content.indexOf(row(changedRow));
        QFile changed(QString::fromStdString(path));
        if (change == "cut inside") QVERIFY(changed.resize(changedAt + 20));
        if (change == "cut between") QVERIFY(changed.resize(changedAt));
        if (change == "rewrite") {
            // The same length: the comma after the time becomes a digit.
            QVERIFY(changed.open(QIODevice::ReadWrite));
            QVERIFY(changed.seek(changedAt + row(changedRow).indexOf(',', 7)));
            QCOMPARE(changed.write("9"), qint64(1));
            changed.close();
        }

        // Far beyond the change, then on in order from the row read before.
        QCOMPARE(file->read(count - 1, read), !laterRowsLost);
        QVERIFY2(file->read(1, read), "the row after the one read before a failed read");
        QCOMPARE(read[Column::INDEX], 1.0);
        const recording::Row before = read;
        QVERIFY2(!file->read(changedRow, read), "the changed row was read");
        QVERIFY2(read.values == before.values, "a failed read changed the row");
        for (const int index : {2, changedRow - 1, 3}) {
            QVERIFY2(file->read(index, read), qPrintable(QString("row %1").arg(index)));
            QCOMPARE(read[Column::INDEX], double(index));
        }
    }

    void aFileNameNamesTheCameraOnlyInTheRecordersShape_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("model");  // empty: the name names no camera
        QTest::addColumn<uint>("serial");
        QTest::newRow("as recorded")
            << "/data/20240305_070809-ORYX_C-sn_41020037-ORYXSensorsData.csv"
            << "ORYX_C" << 41020037u;
        QTest::newRow("solo") << "20240102_030405-ORYX_SOLO_A-sn_7-ORYXSensorsData.csv"
                              << "ORYX_SOLO_A" << 7u;
        QTest::newRow("no date, no model") << "-sn_7-ORYXSensorsData.csv"
                                           << "" << 0u;
        QTest::newRow("empty model") << "--sn_36-ORYXSensorsData.csv"
                                     << "" << 0u;
        QTest::newRow("empty model after a date") << "20240305_070809--sn_36-ORYXSensorsData.csv"
                                                  << "" << 0u;
        QTest::newRow("short date") << "2024035_070809-ORYX_C-sn_4-ORYXSensorsData.csv"
                                    << "" << 0u;
        QTest::newRow("date with letters") << "2024O305_070809-ORYX_C-sn_4-ORYXSensorsData.csv"
                                           << "" << 0u;
        QTest::newRow("model with a dash") << "20240305_070809-ORYX-C-sn_4-ORYXSensorsData.csv"
                                           << "" << 0u;
        QTest::newRow("signed serial") << "20240305_070809-ORYX_C-sn_+4-ORYXSensorsData.csv"
                                       << "" << 0u;
        QTest::newRow("serial beyond 32 bits")
            << "20240305_070809-ORYX_C-sn_4294967296-ORYXSensorsData.csv"
            << "" << 0u;
        QTest::newRow("no serial") << "20240305_070809-ORYX_C-sn_-ORYXSensorsData.csv"
                                   << "" << 0u;
        QTest::newRow("other suffix") << "20240305_070809-ORYX_C-sn_4-ORYXSensorsData.txt"
                                      << "" << 0u;
    }
    void aFileNameNamesTheCameraOnlyInTheRecordersShape() {
        QFETCH(QString, name);
        QFETCH(QString, model);
        QFETCH(uint, serial);
        const auto named = recording::cameraNamedIn(name.toStdString());
        QCOMPARE(named.has_value(), !model.isEmpty());
        if (!named) return;
        QCOMPARE(QString::fromStdString(named->model), model);
        QCOMPARE(named->serial, serial);
    }
};

QTEST_GUILESS_MAIN(TestRecording)
#include "tst_recording.moc"
