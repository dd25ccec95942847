// The texts of the live readout: the newest value of each axis of the shown sensor, and its rate.
#pragma once

#include <QString>
#include <QStringList>

#include "SensorSamples.h"
#include "SensorTable.h"

struct SensorReadout {
    QString fields[3];  // empty where the sensor has no such axis
    QString rate;       // "400 Hz"
};

// Rate label: the measured rate rounded up, but never above the nominal rate.
QString rateText(double nominalRate, double effectiveRate);

// Texts for `sensor` from the last row of the series (the caller holds the data lock and has
// checked that there is a row).
SensorReadout readoutFor(Sensor sensor, const SensorSeries& series, const SensorLevels& levels);

// The texts the fields of `sensor` show at both ends of its measuring range: the widest they
// show.
QStringList rangeEndTexts(Sensor sensor);
