#include "SensorReadout.h"

#include <algorithm>
#include <cmath>

namespace {

QString fieldText(const SensorReadoutLook& look, int field, double value) {
    return translated(look.formats[field]).arg(value, look.width, 'f', look.precision);
}

}  // namespace

QString rateText(double nominalRate, double effectiveRate) {
    const auto shown = static_cast<long long>(std::ceil(std::min(nominalRate, effectiveRate)));
    return translated("%1 Hz").arg(shown);
}

SensorReadout readoutFor(Sensor sensor, const SensorSeries& series, const SensorLevels& levels) {
    const SensorReadoutLook& look = sensorInfo(sensor).readout;
    SensorReadout readout;
    for (int i = 0; i < 3; ++i) {
        if (look.formats[i] == nullptr) continue;
        readout.fields[i] = fieldText(look, i, (series.*look.series[i]).last());
    }
    readout.rate =
        rateText(sensorInfo(sensor).chart.nominalRate, (levels.*look.effectiveRate).load());
    return readout;
}

QStringList rangeEndTexts(Sensor sensor) {
    const SensorReadoutLook& look = sensorInfo(sensor).readout;
    QStringList texts;
    for (int i = 0; i < 3; ++i) {
        if (look.formats[i] == nullptr) continue;
        texts << fieldText(look, i, look.range.lowest) << fieldText(look, i, look.range.highest);
    }
    return texts;
}
