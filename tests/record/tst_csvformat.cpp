// What a recording writes and where: the CSV header and rows, the file name and folder, the
// free-space text, and the options that choose the columns, kept in the user's settings.
#include <QtTest>
#include <random>

#include "TempSettings.h"
#include "csvformat.h"
#include "freespace.h"

namespace {

// The seven column groups by settings key.
const QList<QPair<QString, bool RecOptions::*>> kGroups = {
    {"accelerometer", &RecOptions::accelerometer}, {"gyroscope", &RecOptions::gyroscope},
    {"magnetometer", &RecOptions::magnetometer},   {"orientation", &RecOptions::orientation},
    {"barometer", &RecOptions::barometer},         {"temperatures", &RecOptions::temperatures},
    {"movement", &RecOptions::movement},
};

// The groups named by their settings keys, all others off.
RecOptions groups(const QStringList& keys) {
    RecOptions options;
    for (const auto& group : kGroups) options.*group.second = keys.contains(group.first);
    return options;
}

// Row 42 with every field numbered in the order of the complete header: the time stamps 1 to
// 3, then the groups' values 4 to 22.
CsvRow numberedRow() {
    CsvRow r;
    r.index = 42;
    double* fields[] = {&r.imuTime,  &r.magTime,      &r.baroTime,    &r.accX,     &r.accY,
                        &r.accZ,     &r.gyroX,        &r.gyroY,       &r.gyroZ,    &r.magX,
                        &r.magY,     &r.magZ,         &r.orientX,     &r.orientY,  &r.orientZ,
                        &r.pressure, &r.altitude,     &r.movingState, &r.tempLeft, &r.tempRight,
                        &r.tempImu,  &r.tempBarometer};
    for (int i = 0; i < 22; ++i) *fields[i] = i + 1;
    return r;
}

std::string rowLine(const RecOptions& options, const CsvRow& row) {
    std::string line;
    appendCsvRow(line, options, row);
    return line;
}

}  // namespace

class TestCsvFormat : public QObject {
    Q_OBJECT

    TempSettings settings;

private slots:
    void initTestCase() { QVERIFY(settings.isValid()); }
    void init() { TempSettings::clear(); }

    // No group, each group alone, and all of them: the header lists the chosen groups' titles,
    // the row puts each value under its title. A group's time stamp comes with it; "moving, "
    // keeps its blank.
    void headerAndRowOfTheChosenGroups_data() {
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QList<int>>("values");
        const auto row = [](const QString& group, const char* titles, const QList<int>& values) {
            QStringList keys;
            for (const auto& g : kGroups) {
                if (group == "all" || group == g.first) keys << g.first;
            }
            QTest::newRow(qPrintable(group)) << keys << QString("idx,%1\n").arg(titles) << values;
        };
        row("none", "", {});
        row("accelerometer", "imu_Timestamp[sec],accX[m/s^2],accY[m/s^2],accZ[m/s^2],",
            {1, 4, 5, 6});
        row("gyroscope", "imu_Timestamp[sec],gyroX[deg/s],gyroY[deg/s],gyroZ[deg/s],",
            {1, 7, 8, 9});
        row("magnetometer", "mag_Timestamp[sec],magX[uT],magY[uT],magZ[uT],", {2, 10, 11, 12});
        row("orientation", "imu_Timestamp[sec],orX[deg],orY[deg],orZ[deg],", {1, 13, 14, 15});
        row("barometer", "baro_Timestamp[sec],press[hPa],rel_alt[m],", {3, 16, 17});
        row("temperatures",
            "imu_Timestamp[sec],baro_Timestamp[sec],temp_left[C],temp_right[C],temp_imu[C],"
            "temp_barom[C],",
            {1, 3, 19, 20, 21, 22});
        row("movement", "imu_Timestamp[sec],moving, ", {1, 18});
        QList<int> all;
        for (int i = 1; i <= 22; ++i) all << i;
        row("all",
            "imu_Timestamp[sec],mag_Timestamp[sec],baro_Timestamp[sec],accX[m/s^2],accY[m/s^2],"
            "accZ[m/s^2],gyroX[deg/s],gyroY[deg/s],gyroZ[deg/s],magX[uT],magY[uT],magZ[uT],"
            "orX[deg],orY[deg],orZ[deg],press[hPa],rel_alt[m],moving, temp_left[C],temp_right[C],"
            "temp_imu[C],temp_barom[C],",
            all);
    }

    void headerAndRowOfTheChosenGroups() {
        QFETCH(QStringList, keys);
        QFETCH(QString, header);
        QFETCH(QList<int>, values);
        const RecOptions options = groups(keys);
        QCOMPARE(csvHeader(options), header);
        QString row = "42,";
        for (int value : values) row += QString("%1.000000000,").arg(value);
        QCOMPARE(QString::fromStdString(rowLine(options, numberedRow())), row + "\n");
    }

    // The files have always been written with Qt's fixed notation with nine decimals; every value
    // must read the same, including the halves that Qt rounds away from zero, large values (no
    // exponent) and infinity.
    void valuesMatchQtFixedFormatting() {
        std::mt19937_64 random(20240611);
        std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
        std::uniform_int_distribution<int> exponent(-12, 12);
        std::uniform_int_distribution<int> steps(-(1 << 20), 1 << 20);
        const RecOptions options = groups({"movement"});
        for (int i = 0; i < 20000; ++i) {
            CsvRow row;
            row.imuTime = i == 0       ? std::numeric_limits<double>::infinity()
                          : i % 4 == 0 ? std::ldexp(steps(random), -10)  // many exact halves
                                       : mantissa(random) * std::pow(10.0, exponent(random));
            const QString line = QString::fromStdString(rowLine(options, row));
            QCOMPARE(line.split(',')[1], QString::number(row.imuTime, 'f', 9));
        }
    }

    void fileName_data() {
        QTest::addColumn<QDateTime>("time");
        QTest::addColumn<QString>("model");
        QTest::addColumn<uint>("serial");
        QTest::addColumn<QString>("name");
        QTest::newRow("pattern") << QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9)) << "ORYX_C"
                                 << 41020037u
                                 << "20240305_070809-ORYX_C-sn_41020037-ORYXSensorsData.csv";
        QTest::newRow("blanks removed")
            << QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)) << " ORYX  SOLO\tA " << 7u
            << "20240102_030405-ORYXSOLOA-sn_7-ORYXSensorsData.csv";
    }

    void fileName() {
        QFETCH(QDateTime, time);
        QFETCH(QString, model);
        QFETCH(uint, serial);
        QFETCH(QString, name);
        QCOMPARE(recordingFileName(time, model, serial), name);
    }

    void folderGetsOneTrailingSlash() {
        QCOMPARE(recordingFolder("/data/rec"), QStringLiteral("/data/rec/"));
        QCOMPARE(recordingFolder("/data/rec/"), QStringLiteral("/data/rec/"));
        QCOMPARE(recordingFolder("/"), QStringLiteral("/"));
    }

    // One decimal, at least four characters wide.
    void freeSpaceText() {
        QCOMPARE(::freeSpaceText(1.54, "/media/rec/"), "Disk Free Space:  1.5 Gb  on /media/rec/");
        QCOMPARE(::freeSpaceText(1234.56, "/"), "Disk Free Space: 1234.6 Gb  on /");
    }

    void freeSpaceIsMeasured() { QVERIFY(freeSpaceGigabytes(settings.path()) > 0.0); }

    // ---- options ----

    void optionsRoundTripThroughTheSettings() {
        RecOptions written = groups({"gyroscope", "orientation", "barometer", "temperatures"});
        written.saveFolder = settings.path() + "/recordings";
        written.sampleFreq = 25;
        written.saveRecSettings();

        const RecOptions read;
        QCOMPARE(read.saveFolder, written.saveFolder);
        for (const auto& group : kGroups) QCOMPARE(read.*group.second, written.*group.second);
        QCOMPARE(read.sampleFreq, 25);
        // Stored as a string, booleans and an integer, at top level.
        QCOMPARE(TempSettings::stored("save_folder").toString(), written.saveFolder);
        QCOMPARE(TempSettings::stored("accelerometer").toBool(), false);
        QCOMPARE(TempSettings::stored("sample_freq").toInt(), 25);
    }

    // A key read into the wrong field would switch off a group the user left on.
    void eachGroupKeyControlsItsOwnField() {
        for (int group = 0; group < kGroups.size(); ++group) {
            TempSettings::clear();
            TempSettings::store({{kGroups[group].first, false}});
            const RecOptions options;
            for (int i = 0; i < kGroups.size(); ++i)
                QCOMPARE(options.*kGroups[i].second, i != group);
        }
    }

    void unreadableValuesFallBack() {
        TempSettings::store({{"sample_freq", "fast"}, {"gyroscope", "false"}});
        const RecOptions options;
        QCOMPARE(options.sampleFreq, 400);
        QCOMPARE(options.gyroscope, false);
        QCOMPARE(options.accelerometer, true);
    }
};

QTEST_GUILESS_MAIN(TestCsvFormat)
#include "tst_csvformat.moc"
