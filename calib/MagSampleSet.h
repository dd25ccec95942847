// The raw magnetometer samples of one calibration run, in the dialog's axes, the correction that
// applies to them (fitted, loaded from the device or the identity) and the samples after it.
#pragma once

#include <QVector>

#include "magcalibrecord.h"

// Hard-iron offset and per-axis scale: corrected = (raw - offset) * scale, per axis x, y, z.
struct MagCorrection {
    double offset[3] = {0.0, 0.0, 0.0};
    double scale[3] = {1.0, 1.0, 1.0};
};

class MagSampleSet {
public:
    void append(const MagAxes& raw);
    // Forgets every sample and the refit count, and puts the identity correction back.
    void clear();

    // Fits an axis-aligned ellipsoid to the raw samples. On success the fit becomes the
    // correction and the corrected samples are computed anew; with fewer than six samples, or
    // samples that fix no ellipsoid, it fails and nothing changes.
    bool fit();
    // While samples are being collected they are refitted after more than a hundred of them, and
    // then once at least fifty more arrived since the last refit.
    bool refitDue() const;
    // Records that a refit of the current samples was made (whether or not the fit succeeded).
    void noteRefit() { refitCount = size(); }

    int size() const { return rawSamples[0].size(); }
    int correctedSize() const { return corrected[0].size(); }
    int lastRefitCount() const { return refitCount; }

    const MagCorrection& correction() const { return current; }
    // A correction from elsewhere (the device's EEPROM); the corrected samples stay as they are.
    void setCorrection(const MagCorrection& correction) { current = correction; }

    // One axis of the samples: 0 x, 1 y, 2 z.
    const QVector<double>& raw(int axis) const { return rawSamples[axis]; }
    const QVector<double>& calibrated(int axis) const { return corrected[axis]; }

private:
    void applyCorrection();

    QVector<double> rawSamples[3];
    QVector<double> corrected[3];
    MagCorrection current;
    int refitCount = 0;  // samples at the last refit
};
