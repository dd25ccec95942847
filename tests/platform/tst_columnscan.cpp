// The column scan reads the same values as the replay reader, whatever the number of threads and
// chunks, and names the line of a bad row.
#include <QTemporaryDir>
#include <QtTest>
#include <cstdio>
#include <fstream>
#include <string>

#include "ColumnScan.h"
#include "RecordingFile.h"

using recording::Column;

namespace {

constexpr const char* kHeader =
    "idx,imu_Timestamp[sec],accX[m/s^2],accY[m/s^2],accZ[m/s^2],gyroX[deg/s],gyroY[deg/s],"
    "gyroZ[deg/s],moving, \n";

// A row as the recorder writes it, with values that differ in every digit.
std::string row(int i) {
    char text[256];
    std::snprintf(text, sizeof text, "%d,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,\n", i,
                  1700000000.0 + i * 0.0025 + (i % 7) * 1e-9, 0.013 * (i % 11) - 0.07,
                  -9.81 + 1e-9 * i, 0.5 * std::sin(i * 0.1), -0.001 * i, 123.456789123 - i,
                  (i % 3) * 1e-9, double(i % 2));
    return text;
}

QString writeFile(const QTemporaryDir& dir, const std::string& text, const char* name) {
    const QString path = dir.filePath(QString::fromLatin1(name));
    std::ofstream(path.toStdString(), std::ios::binary) << text;
    return path;
}

}  // namespace

class TestColumnScan : public QObject {
    Q_OBJECT

private slots:
    void readsWhatTheReplayReaderReads_data() {
        QTest::addColumn<int>("threads");
        QTest::addColumn<int>("chunkBytes");
        QTest::newRow("one thread, one chunk") << 1 << (1 << 30);
        QTest::newRow("two threads, small chunks") << 2 << 4096;
        QTest::newRow("four threads, odd chunks") << 4 << 1237;
    }

    void readsWhatTheReplayReaderReads() {
        QFETCH(int, threads);
        QFETCH(int, chunkBytes);
        QTemporaryDir dir;
        std::string text = kHeader;
        constexpr int kRows = 5000;
        for (int i = 0; i < kRows; ++i) text += row(i);
        const QString path = writeFile(dir, text, "rows.csv");

        recording::ScanOptions options;
        options.threads = threads;
        options.chunkBytes = std::size_t(chunkBytes);
        const std::vector<Column> wanted = {Column::GYRO_Y, Column::ACC_X, Column::MOVING,
                                            Column::MAG_X};
        const recording::ScanResult result =
            recording::scanColumns(path.toStdString(), wanted, options);
        QVERIFY2(result.scan, result.problem.text.c_str());
        const recording::ColumnScan& scan = *result.scan;
        QCOMPARE(scan.rowCount, std::size_t(kRows));
        QVERIFY2(scan.find(Column::MAG_X) == nullptr, "a column the file lacks is not made up");
        QCOMPARE(scan.columns.size(), std::size_t(3));

        recording::Problem problem;
        auto reference = recording::RecordingFile::open(path.toStdString(), problem);
        QVERIFY(reference);
        recording::Row expected;
        for (int i = 0; i < kRows; ++i) {
            QVERIFY(reference->read(i, expected));
            const auto timeNs = scan.firstImuTimeNs + scan.imuTimeNs[std::size_t(i)];
            // Exact in the scan; a double of epoch seconds holds them to about 0.2 µs.
            QVERIFY(std::abs(timeNs - std::llround(expected[Column::IMU_TIME] * 1e9)) < 500);
            for (const recording::ScannedColumn& column : scan.columns) {
                const double value = column.origin + column.offsets[std::size_t(i)];
                if (std::abs(value - expected[column.column]) > 1e-6 * (1 + std::abs(value)))
                    QFAIL(qPrintable(QStringLiteral("row %1 column %2: %3 instead of %4")
                                         .arg(i)
                                         .arg(int(column.column))
                                         .arg(value, 0, 'g', 12)
                                         .arg(expected[column.column], 0, 'g', 12)));
            }
        }
    }

    void namesTheLineOfABadRow_data() {
        QTest::addColumn<QString>("badRow");
        QTest::addColumn<QString>("reason");
        QTest::newRow("scientific notation") << "3000,1.0,1e-3,0,0,0,0,0,0,"
                                             << "\"1e-3\" is not a fixed-point number";
        QTest::newRow("short row") << "3000,1.0,0,0,0,0,0,"
                                   << "has 7 values where the header has 9";
        QTest::newRow("empty value") << "3000,1.0,0,,0,0,0,0,0,"
                                     << "\"\" is not a fixed-point number";
    }

    void namesTheLineOfABadRow() {
        QFETCH(QString, badRow);
        QFETCH(QString, reason);
        QTemporaryDir dir;
        std::string text = kHeader;
        for (int i = 0; i < 4000; ++i) text += i == 3000 ? badRow.toStdString() + "\n" : row(i);
        const QString path = writeFile(dir, text, "bad.csv");
        recording::ScanOptions options;
        options.threads = 2;
        options.chunkBytes = 10000;  // the bad row lies in a late chunk
        const recording::ScanResult result =
            recording::scanColumns(path.toStdString(), {Column::ACC_X, Column::ACC_Y}, options);
        QVERIFY(!result.scan);
        QVERIFY(!result.cancelled);
        QCOMPARE(result.problem.line, 3002);  // header on line 1, row 0 on line 2
        QVERIFY2(QString::fromStdString(result.problem.text).contains(reason),
                 result.problem.text.c_str());
    }

    void refusesWhatIsNoRecording() {
        QTemporaryDir dir;
        const auto refusal = [&](const std::string& text) {
            const QString path = writeFile(dir, text, "other.csv");
            return QString::fromStdString(
                recording::scanColumns(path.toStdString(), {Column::ACC_X}).problem.text);
        };
        QVERIFY(refusal("a,b,c\n1,2,3\n").contains("must begin with \"idx,\""));
        QVERIFY(refusal(kHeader).contains("no rows"));
        QVERIFY(refusal("").contains("empty"));
        QVERIFY(
            QString::fromStdString(
                recording::scanColumns(dir.filePath("missing.csv").toStdString(), {}).problem.text)
                .contains("does not exist"));
    }

    void cancelsWhenProgressSaysSo() {
        QTemporaryDir dir;
        std::string text = kHeader;
        for (int i = 0; i < 20000; ++i) text += row(i);
        const QString path = writeFile(dir, text, "long.csv");
        recording::ScanOptions options;
        options.chunkBytes = 4096;
        options.threads = 1;        // else another thread may read every chunk before the cancel
        int callsAfterCancel = -1;  // counts from the call that cancels
        options.progress = [&](double share) {
            if (callsAfterCancel >= 0 || share >= 0.3) ++callsAfterCancel;
            return callsAfterCancel < 0;
        };
        const recording::ScanResult result =
            recording::scanColumns(path.toStdString(), {Column::ACC_X}, options);
        QVERIFY(!result.scan);
        QVERIFY(result.cancelled);
        QCOMPARE(result.problem.text, std::string("The reading was cancelled."));
        QCOMPARE(callsAfterCancel, 0);  // not asked again: the reading stopped
    }
};

QTEST_GUILESS_MAIN(TestColumnScan)
#include "tst_columnscan.moc"
