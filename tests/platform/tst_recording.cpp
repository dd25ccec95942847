// Opening recordings for replay: the files that are refused, each with the line and the problem
// a user needs to find it, and the rows read back in order or by seeking.
#include <QTemporaryDir>
#include <QtTest>

#include "RecordingFile.h"

namespace {

const QByteArray kHeader = "idx,imu_Timestamp[sec],accX[m/s^2],moving, \n";

}  // namespace

class TestRecording : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

    std::string write(const QByteArray& content) {
        const QString path = dir.filePath(QString("file%1.csv").arg(++files));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) return {};
        file.write(content);
        return path.toStdString();
    }
    int files = 0;

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
        QTest::newRow("short row") << kHeader + "0,1.000,2.000,0,\n1,1.002,2.000,\n"
                                   << 3 << "The row has 3 values where the header has 4 columns.";
        QTest::newRow("long row") << kHeader + "0,1.000,2.000,0,7,\n"
                                  << 2 << "The row has 5 values where the header has 4 columns.";
        QTest::newRow("not a number") << kHeader + "0,1.000,abc,0,\n"
                                      << 2 << "Value 3 (accX[m/s^2]) \"abc\" is not a number.";
        QTest::newRow("empty value") << kHeader + "0,1.000,,0,\n"
                                     << 2 << "Value 3 (accX[m/s^2]) is empty.";
        QTest::newRow("scientific") << kHeader + "0,1.000,1e-05,0,\n"
                                    << 2
                                    << "Value 3 (accX[m/s^2]) \"1e-05\" is in scientific "
                                       "notation; recordings hold fixed-point numbers.";
        QTest::newRow("backwards")
            << kHeader + "0,1.000,2.0,0,\n1,1.002,2.0,0,\n2,1.001,2.0,0,\n"
            << 4 << "The IMU timestamp 1.001 goes back from the line before.";
    }
    void aFileThatIsNotARecordingIsRefused() {
        QFETCH(QByteArray, content);
        QFETCH(int, line);
        QFETCH(QString, problem);
        const std::string path = write(content);
        recording::Problem found;
        QVERIFY(recording::RecordingFile::open(path, found) == nullptr);
        QCOMPARE(found.line, line);
        QCOMPARE(QString::fromStdString(found.text), problem);
        QFile file(QString::fromStdString(path));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content);  // read, never written
    }

    void aMissingFileIsNamedAsSuch() {
        recording::Problem found;
        QVERIFY(!recording::RecordingFile::open(dir.filePath("none.csv").toStdString(), found));
        QCOMPARE(QString::fromStdString(found.text), QString("The file does not exist."));
    }

    // Rows come back the same whether read in order, by seeking far or back, or after the
    // reader went elsewhere; CRLF line ends and a last line without one are read too.
    void rowsReadTheSameInOrderAndBySeeking() {
        QByteArray content = kHeader;
        const int rows = 5000;
        for (int i = 0; i < rows; ++i)
            content += QString("%1,%2,%3,%4%5")
                           .arg(i)
                           .arg(10.0 + i * 0.0025, 0, 'f', 9)
                           .arg(-i * 0.5, 0, 'f', 9)
                           .arg(i % 3)
                           .arg(i == rows - 1 ? ""
                                : i % 2       ? ",\r\n"
                                              : ",\n")
                           .toUtf8();
        recording::Problem problem;
        auto file = recording::RecordingFile::open(write(content), problem);
        QVERIFY2(file, problem.text.c_str());
        QCOMPARE(file->rowCount(), rows);
        QVERIFY(!file->has(recording::Column::GYRO_X));
        recording::Row row;
        for (const int index : {0, 1, 2, 4999, 1023, 1024, 1025, 3000, 17, 18, 4998}) {
            QVERIFY(file->read(index, row));
            QCOMPARE(row[recording::Column::INDEX], double(index));
            QCOMPARE(row[recording::Column::ACC_X], -index * 0.5);
            QCOMPARE(row[recording::Column::MOVING], double(index % 3));
            QCOMPARE(row[recording::Column::GYRO_X], 0.0);
        }
        QVERIFY(!file->read(rows, row));
    }
};

QTEST_GUILESS_MAIN(TestRecording)
#include "tst_recording.moc"
