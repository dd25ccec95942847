#include "csvformat.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <charconv>
#include <cmath>

namespace {

// Translation context of the recording files' texts.
struct CsvRecorder {
    Q_DECLARE_TR_FUNCTIONS(CsvRecorder)
};

// Which timestamp columns a recording needs follows from the groups that use them.
bool writesImuTime(const RecOptions& o) {
    return o.accelerometer || o.gyroscope || o.orientation || o.movement || o.temperatures;
}
bool writesBaroTime(const RecOptions& o) { return o.barometer || o.temperatures; }

// |value| lies exactly halfway between two numbers of 9 decimals: value * 2e9 is an odd integer,
// which for a binary fraction means value is an odd multiple of 2^-10.
bool isHalfwayAtNineDecimals(double value) {
    const double scaled = std::ldexp(value, 10);
    return std::isfinite(scaled) && scaled == std::trunc(scaled) && std::fmod(scaled, 2.0) != 0.0;
}

// Fixed notation with 9 decimals; returns the end. to_chars rounds exact halves to even, where
// the files have always rounded them away from zero (0.0009765625 is written 0.000976563).
char* formatFixed9(char* begin, char* end, double value) {
    if (!isHalfwayAtNineDecimals(value)) {
        return std::to_chars(begin, end, value, std::chars_format::fixed, 9).ptr;
    }
    // Exactly ten decimals ending in 5: drop the 5 and raise the digit before it. That digit is
    // 2 or 7 (odd multiples of 2^-10 end in 25 or 75), so nothing carries.
    char* last = std::to_chars(begin, end, value, std::chars_format::fixed, 10).ptr - 1;
    ++last[-1];
    return last;
}

// The value, then a comma. to_chars needs no locale and no allocation, which matters on the
// sampling thread. A negative zero is written as zero, as Qt writes it.
void appendValue(std::string& line, double value) {
    if (value == 0.0) value = 0.0;
    char buffer[352];  // any double in fixed notation with 10 decimals
    line.append(buffer, formatFixed9(buffer, buffer + sizeof(buffer), value));
    line.push_back(',');
}

void appendValues(std::string& line, std::initializer_list<double> values) {
    for (double value : values) {
        appendValue(line, value);
    }
}

void appendIndex(std::string& line, std::int64_t index) {
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof(buffer), index);
    line.append(buffer, result.ptr);
    line.push_back(',');
}

}  // namespace

QString recordingFileName(const QDateTime& localTime, const QString& modelText, unsigned serial) {
    QString name = localTime.toString(QStringLiteral("yyyyMMdd_HHmmss"));
    name += QLatin1Char('-') + modelText;
    name += CsvRecorder::tr("-sn_%1").arg(serial);
    name += QStringLiteral("-ORYXSensorsData.csv");
    name.remove(QRegularExpression(QStringLiteral("\\s")));
    return name;
}

QString recordingFolder(const QString& saveFolder) {
    return saveFolder.endsWith(QLatin1Char('/')) ? saveFolder : saveFolder + QLatin1Char('/');
}

QString csvHeader(const RecOptions& o) {
    QString header = CsvRecorder::tr("idx,");
    if (writesImuTime(o)) header += CsvRecorder::tr("imu_Timestamp[sec],");
    if (o.magnetometer) header += CsvRecorder::tr("mag_Timestamp[sec],");
    if (writesBaroTime(o)) header += CsvRecorder::tr("baro_Timestamp[sec],");
    if (o.accelerometer) header += CsvRecorder::tr("accX[m/s^2],accY[m/s^2],accZ[m/s^2],");
    if (o.gyroscope) header += CsvRecorder::tr("gyroX[deg/s],gyroY[deg/s],gyroZ[deg/s],");
    if (o.magnetometer) header += CsvRecorder::tr("magX[uT],magY[uT],magZ[uT],");
    if (o.orientation) header += CsvRecorder::tr("orX[deg],orY[deg],orZ[deg],");
    if (o.barometer) header += CsvRecorder::tr("press[hPa],rel_alt[m],");
    // The blank after this comma has always been there; files are read with it.
    if (o.movement) header += CsvRecorder::tr("moving, ");
    if (o.temperatures)
        header += CsvRecorder::tr("temp_left[C],temp_right[C],temp_imu[C],temp_barom[C],");
    return header + QLatin1Char('\n');
}

void appendCsvRow(std::string& line, const RecOptions& o, const CsvRow& r) {
    appendIndex(line, r.index);
    if (writesImuTime(o)) appendValue(line, r.imuTime);
    if (o.magnetometer) appendValue(line, r.magTime);
    if (writesBaroTime(o)) appendValue(line, r.baroTime);
    if (o.accelerometer) appendValues(line, {r.accX, r.accY, r.accZ});
    if (o.gyroscope) appendValues(line, {r.gyroX, r.gyroY, r.gyroZ});
    if (o.magnetometer) appendValues(line, {r.magX, r.magY, r.magZ});
    if (o.orientation) appendValues(line, {r.orientX, r.orientY, r.orientZ});
    if (o.barometer) appendValues(line, {r.pressure, r.altitude});
    if (o.movement) appendValue(line, r.movingState);
    if (o.temperatures) appendValues(line, {r.tempLeft, r.tempRight, r.tempImu, r.tempBarometer});
    line.push_back('\n');
}
