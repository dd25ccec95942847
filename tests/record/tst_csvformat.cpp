#include <QtTest>
#include <random>

#include "TempSettings.h"
#include "csvformat.h"
#include "freespace.h"

namespace {

using Group = bool RecOptions::*;

struct Column {
    const char* title;
    double CsvRow::*value;
};

// Column groups as a reader of the files sees them: header texts, values, and when each group
// is written. The timestamp groups depend on the groups that use them.
struct ColumnGroup {
    std::function<bool(const RecOptions&)> written;
    QList<Column> columns;
};

const QList<ColumnGroup>& columnGroups() {
    static const QList<ColumnGroup> groups = {
        {[](const RecOptions& o) {
             return o.accelerometer || o.gyroscope || o.orientation || o.movement || o.temperatures;
         },
         {{"imu_Timestamp[sec]", &CsvRow::imuTime}}},
        {[](const RecOptions& o) { return o.magnetometer; },
         {{"mag_Timestamp[sec]", &CsvRow::magTime}}},
        {[](const RecOptions& o) { return o.barometer || o.temperatures; },
         {{"baro_Timestamp[sec]", &CsvRow::baroTime}}},
        {[](const RecOptions& o) { return o.accelerometer; },
         {{"accX[m/s^2]", &CsvRow::accX},
          {"accY[m/s^2]", &CsvRow::accY},
          {"accZ[m/s^2]", &CsvRow::accZ}}},
        {[](const RecOptions& o) { return o.gyroscope; },
         {{"gyroX[deg/s]", &CsvRow::gyroX},
          {"gyroY[deg/s]", &CsvRow::gyroY},
          {"gyroZ[deg/s]", &CsvRow::gyroZ}}},
        {[](const RecOptions& o) { return o.magnetometer; },
         {{"magX[uT]", &CsvRow::magX}, {"magY[uT]", &CsvRow::magY}, {"magZ[uT]", &CsvRow::magZ}}},
        {[](const RecOptions& o) { return o.orientation; },
         {{"orX[deg]", &CsvRow::orientX},
          {"orY[deg]", &CsvRow::orientY},
          {"orZ[deg]", &CsvRow::orientZ}}},
        {[](const RecOptions& o) { return o.barometer; },
         {{"press[hPa]", &CsvRow::pressure}, {"rel_alt[m]", &CsvRow::altitude}}},
        {[](const RecOptions& o) { return o.movement; }, {{"moving", &CsvRow::movingState}}},
        {[](const RecOptions& o) { return o.temperatures; },
         {{"temp_left[C]", &CsvRow::tempLeft},
          {"temp_right[C]", &CsvRow::tempRight},
          {"temp_imu[C]", &CsvRow::tempImu},
          {"temp_barom[C]", &CsvRow::tempBarometer}}},
    };
    return groups;
}

const Group kGroupFields[] = {&RecOptions::accelerometer, &RecOptions::gyroscope,
                              &RecOptions::magnetometer,  &RecOptions::orientation,
                              &RecOptions::barometer,     &RecOptions::temperatures,
                              &RecOptions::movement};

RecOptions optionsOfMask(int mask) {
    RecOptions options;
    for (int bit = 0; bit < 7; ++bit) {
        options.*kGroupFields[bit] = (mask >> bit) & 1;
    }
    return options;
}

RecOptions only(Group group) {
    RecOptions options = optionsOfMask(0);
    options.*group = true;
    return options;
}

// Every value different and recognisable: field k holds k + 0.25.
CsvRow distinctRow(int index) {
    CsvRow row;
    row.index = index;
    double next = 1.25;
    for (const ColumnGroup& group : columnGroups()) {
        for (const Column& column : group.columns) {
            row.*column.value = next;
            next += 1.0;
        }
    }
    return row;
}

std::string rowLine(const RecOptions& options, const CsvRow& row) {
    std::string line;
    appendCsvRow(line, options, row);
    return line;
}

}  // namespace

class TestCsvFormat : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void headerAndRowAgreeForEveryCombination();
    void movementOnly();
    void allGroupsRowIsByteExact();
    void valuesUseFixedNotationWithNineDecimals_data();
    void valuesUseFixedNotationWithNineDecimals();
    void valuesMatchQtFixedFormatting();
    void fileNameFollowsThePattern();
    void fileNameHasNoBlanks_data();
    void fileNameHasNoBlanks();
    void folderGetsOneTrailingSlash();
    void freeSpaceText_data();
    void freeSpaceText();
    void freeSpaceIsMeasured();

private:
    TempSettings settings;
};

void TestCsvFormat::initTestCase() { QVERIFY(settings.isValid()); }

// For all 128 choices of groups: the header lists exactly the chosen groups' titles in the
// documented order, and the row puts each value under its own title.
void TestCsvFormat::headerAndRowAgreeForEveryCombination() {
    const CsvRow row = distinctRow(42);
    for (int mask = 0; mask < 128; ++mask) {
        const RecOptions options = optionsOfMask(mask);
        QString expectedHeader = "idx,";
        QStringList expectedValues = {"42"};
        for (const ColumnGroup& group : columnGroups()) {
            if (!group.written(options)) continue;
            for (const Column& column : group.columns) {
                expectedHeader += QLatin1String(column.title) +
                                  (column.value == &CsvRow::movingState ? ", " : ",");
                expectedValues << QString::number(row.*column.value, 'f', 9);
            }
        }
        expectedHeader += "\n";
        QCOMPARE(csvHeader(options), expectedHeader);

        const QString line = QString::fromStdString(rowLine(options, row));
        QVERIFY(line.endsWith(",\n"));
        QCOMPARE(line.chopped(2).split(','), expectedValues);
    }
}

void TestCsvFormat::movementOnly() {
    const RecOptions options = only(&RecOptions::movement);
    QCOMPARE(csvHeader(options), QStringLiteral("idx,imu_Timestamp[sec],moving, \n"));
    CsvRow row;
    row.index = 12;
    row.imuTime = 3.14159265358979;
    row.movingState = 0.0;
    QCOMPARE(rowLine(options, row), std::string("12,3.141592654,0.000000000,\n"));
}

void TestCsvFormat::allGroupsRowIsByteExact() {
    const RecOptions options = optionsOfMask(127);
    QCOMPARE(csvHeader(options),
             QStringLiteral("idx,imu_Timestamp[sec],mag_Timestamp[sec],baro_Timestamp[sec],"
                            "accX[m/s^2],accY[m/s^2],accZ[m/s^2],"
                            "gyroX[deg/s],gyroY[deg/s],gyroZ[deg/s],"
                            "magX[uT],magY[uT],magZ[uT],orX[deg],orY[deg],orZ[deg],"
                            "press[hPa],rel_alt[m],moving, "
                            "temp_left[C],temp_right[C],temp_imu[C],temp_barom[C],\n"));
    CsvRow row;
    row.index = 7031;
    row.imuTime = 17.5775;
    row.magTime = 17.57;
    row.baroTime = 17.5625;
    row.accX = -0.125;
    row.accY = 9.80665;
    row.accZ = 0.0;
    row.gyroX = 0.1;
    row.gyroY = -2.5;
    row.gyroZ = 180.0;
    row.magX = 23.4375;
    row.magY = -4.0625;
    row.magZ = 41.0;
    row.orientX = -179.999;
    row.orientY = 0.5;
    row.orientZ = 90.0;
    row.pressure = 1013.25;
    row.altitude = -1.75;
    row.movingState = 1.0;
    row.tempLeft = 36.5;
    row.tempRight = 37.0;
    row.tempImu = 41.25;
    row.tempBarometer = 38.125;
    QCOMPARE(rowLine(options, row),
             std::string("7031,17.577500000,17.570000000,17.562500000,"
                         "-0.125000000,9.806650000,0.000000000,"
                         "0.100000000,-2.500000000,180.000000000,"
                         "23.437500000,-4.062500000,41.000000000,"
                         "-179.999000000,0.500000000,90.000000000,"
                         "1013.250000000,-1.750000000,1.000000000,"
                         "36.500000000,37.000000000,41.250000000,38.125000000,\n"));
}

void TestCsvFormat::valuesUseFixedNotationWithNineDecimals_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0.0 << "0.000000000";
    QTest::newRow("pressure") << 1013.25 << "1013.250000000";
    QTest::newRow("rounds up") << 0.1234567896 << "0.123456790";
    QTest::newRow("rounds down") << 0.1234567894 << "0.123456789";
    QTest::newRow("tiny") << 1e-12 << "0.000000000";
    QTest::newRow("large, no exponent") << 1.5e12 << "1500000000000.000000000";
    QTest::newRow("negative") << -273.15 << "-273.150000000";
    QTest::newRow("timestamp") << 86400.123456789 << "86400.123456789";
    QTest::newRow("half rounds away from zero") << 0.0009765625 << "0.000976563";
    QTest::newRow("negative half") << -0.0029296875 << "-0.002929688";
    QTest::newRow("half of a large value") << 4097.9990234375 << "4097.999023438";
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity() << "inf";
}

void TestCsvFormat::valuesUseFixedNotationWithNineDecimals() {
    QFETCH(double, value);
    QFETCH(QString, text);
    CsvRow row;
    row.pressure = value;
    QCOMPARE(QString::fromStdString(rowLine(only(&RecOptions::barometer), row)).split(',')[2],
             text);
}

// The files have always been written with Qt's fixed notation; every value must read the same,
// including the halves that Qt rounds away from zero.
void TestCsvFormat::valuesMatchQtFixedFormatting() {
    std::mt19937_64 random(20240611);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-12, 12);
    const RecOptions options = only(&RecOptions::movement);
    std::uniform_int_distribution<int> steps(-(1 << 20), 1 << 20);
    for (int i = 0; i < 20000; ++i) {
        CsvRow row;
        row.imuTime = mantissa(random) * std::pow(10.0, exponent(random));
        if (i % 4 == 0) {
            row.imuTime = std::ldexp(steps(random), -10);  // many exact halves
        }
        const QString line = QString::fromStdString(rowLine(options, row));
        QCOMPARE(line.split(',')[1], QString::number(row.imuTime, 'f', 9));
    }
}

void TestCsvFormat::fileNameFollowsThePattern() {
    const QDateTime when(QDate(2024, 3, 5), QTime(7, 8, 9));
    QCOMPARE(recordingFileName(when, "ORYX_C", 41020037u),
             QStringLiteral("20240305_070809-ORYX_C-sn_41020037-ORYXSensorsData.csv"));
    QCOMPARE(
        recordingFileName(QDateTime(QDate(1999, 12, 31), QTime(23, 59, 58)), "ORYX_D", 4294967295u),
        QStringLiteral("19991231_235958-ORYX_D-sn_4294967295-ORYXSensorsData.csv"));
}

void TestCsvFormat::fileNameHasNoBlanks_data() {
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("expected");
    QTest::newRow("inner blank") << "ORYX C"
                                 << "ORYXC";
    QTest::newRow("several") << " ORYX  SOLO A "
                             << "ORYXSOLOA";
    QTest::newRow("tab") << "ORYX\tD"
                         << "ORYXD";
}

void TestCsvFormat::fileNameHasNoBlanks() {
    QFETCH(QString, model);
    QFETCH(QString, expected);
    const QString name = recordingFileName(QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)), model, 7);
    QCOMPARE(name, "20240102_030405-" + expected + "-sn_7-ORYXSensorsData.csv");
}

void TestCsvFormat::folderGetsOneTrailingSlash() {
    QCOMPARE(recordingFolder("/data/rec"), QStringLiteral("/data/rec/"));
    QCOMPARE(recordingFolder("/data/rec/"), QStringLiteral("/data/rec/"));
    QCOMPARE(recordingFolder("/"), QStringLiteral("/"));
}

void TestCsvFormat::freeSpaceText_data() {
    QTest::addColumn<double>("gigabytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("9.99 rounds up") << 9.99 << "10.0";
    QTest::newRow("exactly 10") << 10.0 << "10.0";
    QTest::newRow("just under 10") << 9.9999999 << "10.0";
    QTest::newRow("padded to four") << 1.54 << " 1.5";
    QTest::newRow("empty disk") << 0.0 << " 0.0";
    QTest::newRow("large") << 1234.56 << "1234.6";
}

void TestCsvFormat::freeSpaceText() {
    QFETCH(double, gigabytes);
    QFETCH(QString, text);
    QCOMPARE(::freeSpaceText(gigabytes, "/media/rec/"),
             "Disk Free Space: " + text + " Gb  on /media/rec/");
}

void TestCsvFormat::freeSpaceIsMeasured() { QVERIFY(freeSpaceGigabytes(settings.path()) > 0.0); }

QTEST_GUILESS_MAIN(TestCsvFormat)
#include "tst_csvformat.moc"
