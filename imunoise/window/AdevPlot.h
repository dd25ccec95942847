// A log–log plot of the Allan deviation of one sensor's three axes, in the chart's axis
// colours, with the fitted noise lines drawn bold over the regions they were fitted to and thin
// beyond them.
#pragma once

#include <qwt_plot.h>

#include "NoiseAnalysis.h"

class AdevPlot : public QwtPlot {
    Q_OBJECT

public:
    AdevPlot(imunoise::Sensor sensor, QWidget* parent = nullptr);

    // Replaces what the plot shows; an empty report clears it.
    void showReport(const imunoise::NoiseReport& report);

private:
    void addAxis(const imunoise::AxisResult& result, const QString& name, const QColor& colour);
    void addLine(const imunoise::LineFit& line, const QColor& colour, double tauFrom, double tauTo);

    imunoise::Sensor sensor;
};
