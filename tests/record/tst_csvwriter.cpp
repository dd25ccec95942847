#include <sys/resource.h>
#include <unistd.h>

#include <QProcess>
#include <QtTest>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "TempSettings.h"
#include "csvwriter.h"

namespace {

const char kChildFlag[] = "--write-rows-until-killed";
const char kLimitedChildFlag[] = "--write-rows-under-size-limit";

using Outcome = CsvWriter::WriteOutcome;

// Row i of the child's recording; the parent recomputes it to check what reached the file.
CsvRow childRow(int i) {
    CsvRow row;
    row.index = i;
    row.imuTime = i * 0.0025;
    row.magTime = i * 0.01;
    row.baroTime = i * 0.04;
    row.accX = -9.81 + i * 1e-6;
    row.gyroZ = i % 360;
    row.pressure = 1013.25 - i * 1e-4;
    row.movingState = i % 2;
    row.tempImu = 40.0 + i * 1e-3;
    return row;
}

RecOptions allGroups() {
    RecOptions options;
    options.accelerometer = options.gyroscope = options.magnetometer = options.orientation =
        options.barometer = options.temperatures = options.movement = true;
    return options;
}

std::string expectedLine(const RecOptions& options, int i) {
    std::string line;
    appendCsvRow(line, options, childRow(i));
    return line;
}

// The child: records rows as fast as it can and reports each one that writeRow() has handed
// to the system, until the parent kills it.
int writeRowsUntilKilled(const char* path, const char* settingsFolder) {
    TempSettings::usePath(QString::fromLocal8Bit(settingsFolder));
    CsvWriter writer;
    if (!writer.open(QString::fromLocal8Bit(path), allGroups())) {
        return 2;
    }
    for (int i = 0; i < 50'000'000; ++i) {
        if (writer.writeRow(childRow(i)) != Outcome::WRITTEN) {
            return 3;
        }
        std::printf("%d\n", i);
        std::fflush(stdout);
    }
    return 0;
}

// The child: files may grow to `limit` bytes only, and going past the limit fails the write
// instead of ending the process. Writes rows until one fails, then reports how many went in and
// why the next failed: "<rows>\n<reason>\n<outcome of one more row>".
int writeRowsUnderSizeLimit(const char* path, const char* settingsFolder, const char* limit) {
    TempSettings::usePath(QString::fromLocal8Bit(settingsFolder));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit size{};
    getrlimit(RLIMIT_FSIZE, &size);
    size.rlim_cur = std::strtoull(limit, nullptr, 10);
    if (setrlimit(RLIMIT_FSIZE, &size) != 0) {
        return 4;
    }
    CsvWriter writer;
    if (!writer.open(QString::fromLocal8Bit(path), allGroups())) {
        return 2;
    }
    int rows = 0;
    while (writer.writeRow(childRow(rows)) == Outcome::WRITTEN) {
        ++rows;
    }
    const bool refusedAfter = writer.writeRow(childRow(rows + 1)) == Outcome::NOT_WRITTEN;
    std::printf("%d\n%s\n%s\n", rows, qPrintable(writer.errorString()),
                refusedAfter ? "refused" : "written");
    return 0;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

class TestCsvWriter : public QObject {
    Q_OBJECT

    TempSettings settings;
    QTemporaryDir dir;

private slots:
    void initTestCase() {
        QVERIFY(settings.isValid());
        QVERIFY(dir.isValid());
    }

    // Header, then each row in the file as soon as it is written; nothing before opening or
    // after closing; a new open starts a fresh file, with the groups chosen at that open.
    void writesHeaderThenRows() {
        const QString path = dir.filePath("rows.csv");
        const RecOptions options = allGroups();
        CsvWriter writer;
        QCOMPARE(writer.writeRow(childRow(0)), Outcome::NOT_WRITTEN);
        QVERIFY(writer.open(path, options));
        QVERIFY(writer.isOpen());
        QCOMPARE(writer.fileName(), path);
        QByteArray expected = csvHeader(options).toUtf8();
        for (int i = 10; i < 13; ++i) {
            QCOMPARE(writer.writeRow(childRow(i)), Outcome::WRITTEN);
            expected += QByteArray::fromStdString(expectedLine(options, i));
            QCOMPARE(readAll(path), expected);
        }
        writer.close();
        QVERIFY(!writer.isOpen());
        QCOMPARE(writer.writeRow(childRow(0)), Outcome::NOT_WRITTEN);
        QCOMPARE(readAll(path), expected);
        RecOptions movement = allGroups();
        movement.accelerometer = movement.gyroscope = movement.magnetometer = movement.orientation =
            movement.barometer = movement.temperatures = false;
        QVERIFY(writer.open(path, movement));
        movement.accelerometer = true;  // a later change of the caller's options does not matter
        CsvRow row;
        row.index = 5;
        row.imuTime = 0.5;
        row.movingState = 1.0;
        QCOMPARE(writer.writeRow(row), Outcome::WRITTEN);
        writer.close();
        QCOMPARE(readAll(path),
                 QByteArray("idx,imu_Timestamp[sec],moving, \n5,0.500000000,1.000000000,\n"));
    }

    void openFailsWhereNoFileCanBeWritten_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("needsUnprivileged");
        QDir(dir.path()).mkdir("existing_dir");
        QFile plain(dir.filePath("plain_file"));
        plain.open(QIODevice::WriteOnly);
        QDir(dir.path()).mkdir("read_only");
        QFile::setPermissions(dir.filePath("read_only"), QFile::ReadOwner | QFile::ExeOwner);

        QTest::newRow("folder is a file") << dir.filePath("plain_file/x.csv") << false;
        QTest::newRow("name is a folder") << dir.filePath("existing_dir") << false;
        QTest::newRow("read-only folder") << dir.filePath("read_only/x.csv") << true;
    }

    void openFailsWhereNoFileCanBeWritten() {
        QFETCH(QString, path);
        QFETCH(bool, needsUnprivileged);
        if (needsUnprivileged && geteuid() == 0) {
            QSKIP("permissions do not stop the superuser");
        }
        CsvWriter writer;
        QVERIFY(!writer.open(path, allGroups()));
        QVERIFY(!writer.isOpen());
        QVERIFY(!writer.errorString().isEmpty());
        QCOMPARE(writer.writeRow(childRow(0)), Outcome::NOT_WRITTEN);
    }

    // A device that is always full: not even the header goes in, and the system says why.
    void aFullDeviceFailsTheOpening() {
        if (!QFileInfo::exists(QStringLiteral("/dev/full"))) {
            QSKIP("this system has no /dev/full");
        }
        CsvWriter writer;
        QVERIFY(!writer.open(QStringLiteral("/dev/full"), allGroups()));
        QCOMPARE(writer.errorString(), QString("No space left on device"));
        QCOMPARE(writer.writeRow(childRow(0)), Outcome::NOT_WRITTEN);
    }

    // The file may grow only to a limit that falls inside a row: the system takes the start of
    // that row and refuses the rest. The row is cut off again, every row before it stays, the
    // writer says why and refuses further rows.
    void aRowTheFileTakesOnlyInPartIsCutOff() {
        const RecOptions options = allGroups();
        const QString path = dir.filePath(QStringLiteral("limited.csv"));
        constexpr int kWholeRows = 40;
        qint64 limit = csvHeader(options).toUtf8().size();
        for (int i = 0; i < kWholeRows; ++i) {
            limit += static_cast<qint64>(expectedLine(options, i).size());
        }
        limit += 7;  // the start of the next row fits, the rest does not

        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {kLimitedChildFlag, path, settings.path(), QString::number(limit)});
        QVERIFY(child.waitForFinished(30000));
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
        const QStringList report =
            QString::fromLocal8Bit(child.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(report, QStringList({QString::number(kWholeRows), "File too large", "refused"}));

        QByteArray expected = csvHeader(options).toUtf8();
        for (int i = 0; i < kWholeRows; ++i) {
            expected += QByteArray::fromStdString(expectedLine(options, i));
        }
        QCOMPARE(readAll(path), expected);
    }

    // A deleted file takes writes without complaint, but nobody will read them: the writer
    // notices and stops.
    void aDeletedFileEndsTheWriting() {
        const QString path = dir.filePath(QStringLiteral("deleted.csv"));
        CsvWriter writer;
        QVERIFY(writer.open(path, allGroups()));
        QCOMPARE(writer.writeRow(childRow(0)), Outcome::WRITTEN);
        QVERIFY(QFile::remove(path));
        QCOMPARE(writer.writeRow(childRow(1)), Outcome::FAILED);
        QVERIFY(writer.hasFailed());
        QCOMPARE(writer.errorString(), QString("No such file or directory"));
        QCOMPARE(writer.writeRow(childRow(2)), Outcome::NOT_WRITTEN);
        // A new file starts afresh.
        QVERIFY(writer.open(path, allGroups()));
        QVERIFY(!writer.hasFailed());
        QCOMPARE(writer.writeRow(childRow(3)), Outcome::WRITTEN);
    }

    void killedWriterLeavesOnlyCompleteRows_data() {
        QTest::addColumn<int>("killAfter");
        QTest::newRow("early") << 50;
        QTest::newRow("later") << 5000;
    }

    // Kills a writing process without warning. The file must hold the header and then rows 0, 1,
    // 2, ... each complete, and no row that the child had finished writing may be missing. Only
    // the row being written can be cut: Linux stops a write to a file at a page boundary when a
    // SIGKILL is pending, so even one write() per line can leave the start of that line.
    void killedWriterLeavesOnlyCompleteRows() {
        QFETCH(int, killAfter);
        const QString path = dir.filePath(QStringLiteral("killed_%1.csv").arg(killAfter));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {kChildFlag, path, settings.path()});
        QVERIFY(child.waitForStarted());

        int lastReported = -1;
        QByteArray pending;
        auto readReports = [&] {
            pending += child.readAllStandardOutput();
            int end;
            while ((end = pending.indexOf('\n')) >= 0) {
                lastReported = pending.left(end).toInt();
                pending.remove(0, end + 1);
            }
        };
        while (lastReported < killAfter && child.state() == QProcess::Running) {
            child.waitForReadyRead(1000);
            readReports();
        }
        QVERIFY2(child.state() == QProcess::Running, "the child stopped on its own");
        child.kill();  // SIGKILL
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        readReports();  // reports still in the pipe were made before the kill

        const QByteArray content = readAll(path);
        const RecOptions options = allGroups();
        const QByteArray header = csvHeader(options).toUtf8();
        QVERIFY(content.startsWith(header));

        const QList<QByteArray> lines = content.mid(header.size()).split('\n');
        const int rows = lines.size() - 1;  // complete rows; after them an empty or cut piece
        for (int i = 0; i < rows; ++i) {
            QCOMPARE(lines[i] + '\n', QByteArray::fromStdString(expectedLine(options, i)));
        }
        const QByteArray next = QByteArray::fromStdString(expectedLine(options, rows));
        QVERIFY2(next.startsWith(lines.last()), "the last piece is not the start of the next row");
        QVERIFY2(rows >= lastReported + 1, qPrintable(QStringLiteral("%1 rows in the file, row %2 "
                                                                     "reported written")
                                                          .arg(rows)
                                                          .arg(lastReported)));
        // At most the row being written when the signal came can be missing from the reports.
        QVERIFY(rows <= lastReported + 2);
    }
};

int main(int argc, char** argv) {
    if (argc == 4 && qstrcmp(argv[1], kChildFlag) == 0) {
        return writeRowsUntilKilled(argv[2], argv[3]);
    }
    if (argc == 5 && qstrcmp(argv[1], kLimitedChildFlag) == 0) {
        return writeRowsUnderSizeLimit(argv[2], argv[3], argv[4]);
    }
    QCoreApplication app(argc, argv);
    TestCsvWriter test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_csvwriter.moc"
