#include "SensorReadout.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace {

constexpr double kImuNominalRate = 400.0;
constexpr double kMagNominalRate = 50.0;
constexpr double kBaroNominalRate = 25.0;

QString tr(const char* text) { return QCoreApplication::translate("MainWindow", text); }

QString number(const QString& format, const QVector<double>& series, int width, int precision) {
    return format.arg(series.last(), width, 'f', precision);
}

SensorReadout threeAxes(const char* x, const char* y, const char* z, const QVector<double>& sx,
                        const QVector<double>& sy, const QVector<double>& sz, QString rate) {
    SensorReadout r;
    r.fields[0] = number(tr(x), sx, 5, 3);
    r.fields[1] = number(tr(y), sy, 5, 3);
    r.fields[2] = number(tr(z), sz, 5, 3);
    r.rate = std::move(rate);
    return r;
}

}  // namespace

QString rateText(double nominalRate, double effectiveRate) {
    const auto shown = static_cast<long long>(std::ceil(std::min(nominalRate, effectiveRate)));
    return tr("%1 Hz").arg(shown);
}

SensorReadout readoutFor(const QString& name, const SensorSeries& s, const SensorLevels& l) {
    const QString imuRate = rateText(kImuNominalRate, l.imuEffectiveRate.load());
    const QString baroRate = rateText(kBaroNominalRate, l.baroEffectiveRate.load());
    if (name == QLatin1String("Gyroscope"))
        return threeAxes("X %1 °/s", "Y %1 °/s", "Z %1 °/s", s.gyroX, s.gyroY, s.gyroZ, imuRate);
    if (name == QLatin1String("Magnetometer"))
        return threeAxes("X %1 µT", "Y %1 µT", "Z %1 µT", s.magX, s.magY, s.magZ,
                         rateText(kMagNominalRate, l.magEffectiveRate.load()));
    if (name == QLatin1String("Orientation"))
        return threeAxes("X %1°", "Y %1°", "Z %1°", s.orientX, s.orientY, s.orientZ, imuRate);
    if (name == QLatin1String("Barometer")) {
        SensorReadout r;
        r.fields[0] = number(tr("Atmospheric Pressure %1 hPa"), s.pressure, 7, 2);
        r.rate = baroRate;
        return r;
    }
    if (name == QLatin1String("Camera Temperature")) {
        // Crossed on purpose: the first field is coloured like the left camera's curve.
        SensorReadout r;
        r.fields[0] = number(tr("Right %1°C"), s.tempLeft, 1, 2);
        r.fields[1] = number(tr("Left %1°C"), s.tempRight, 1, 2);
        r.rate = baroRate;
        return r;
    }
    return threeAxes("X %1 m/s²", "Y %1 m/s²", "Z %1 m/s²", s.accX, s.accY, s.accZ, imuRate);
}
