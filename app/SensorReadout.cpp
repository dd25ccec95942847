#include "SensorReadout.h"

#include <algorithm>
#include <cmath>

QString rateText(double nominalRate, double effectiveRate) {
    const auto shown = static_cast<long long>(std::ceil(std::min(nominalRate, effectiveRate)));
    return translated("%1 Hz").arg(shown);
}

SensorReadout readoutFor(Sensor sensor, const SensorSeries& series, const SensorLevels& levels) {
    const SensorReadoutLook& look = sensorInfo(sensor).readout;
    SensorReadout readout;
    for (int i = 0; i < 3; ++i) {
        if (look.formats[i] == nullptr) continue;
        readout.fields[i] =
            translated(look.formats[i])
                .arg((series.*look.series[i]).last(), look.width, 'f', look.precision);
    }
    readout.rate =
        rateText(sensorInfo(sensor).chart.nominalRate, (levels.*look.effectiveRate).load());
    return readout;
}
