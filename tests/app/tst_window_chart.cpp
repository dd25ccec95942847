// The chart, the readout and the orientation view of the main window, fed by a simulated camera
// on a virtual clock.
#include <qwt_plot_curve.h>

#include <QAbstractButton>
#include <QtTest>
#include <optional>

#include "DataPlot.h"
#include "OGL3DWidget.h"
#include "SimulatedCameras.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

constexpr int kTimeoutMs = 10000;

double sampledSeconds(MainWindow& w) {
    std::lock_guard<std::mutex> lock(w.sampleMutex());
    const SampleColumn& t = w.sampleSeries().imuTime;
    return t.size() < 2 ? 0.0 : t.last() - t.first();
}

// Angle between two orientations, in degrees.
double degreesBetween(const bw::Orientation& a, const bw::Orientation& b) {
    const double dot =
        std::abs(double(a.x) * b.x + double(a.y) * b.y + double(a.z) * b.z + double(a.w) * b.w);
    return 2.0 * std::acos(std::min(1.0, dot)) * 180.0 / M_PI;
}

QwtInterval timeAxis(MainWindow& w) {
    return w.form()->widget_chart->axisInterval(QwtPlot::xBottom);
}

QwtInterval valueAxis(MainWindow& w) {
    DataPlot* plot = w.form()->widget_chart;
    plot->updateAxes();  // what the next redraw shows
    return plot->axisInterval(QwtPlot::yLeft);
}

// The points the chart holds for one curve, as last handed over.
QVector<QPointF> pointsOf(MainWindow& w, DataPlot::DataType curve) {
    const auto* c = static_cast<const QwtPlotCurve*>(
        w.form()->widget_chart->itemList(QwtPlotItem::Rtti_PlotCurve).at(curve));
    QVector<QPointF> points;
    for (size_t i = 0; i < c->dataSize(); ++i) points.append(c->sample(int(i)));
    return points;
}

const SampleColumn& seriesNamed(const SensorSeries& s, const QString& name) {
    static const QMap<QString, SampleColumn SensorSeries::*> byName{
        {"imuTime", &SensorSeries::imuTime},
        {"gyroY", &SensorSeries::gyroY},
        {"magSampleTime", &SensorSeries::magSampleTime},
        {"magSampleZ", &SensorSeries::magSampleZ},
        {"baroSampleTime", &SensorSeries::baroSampleTime},
        {"baroSamplePressure", &SensorSeries::baroSamplePressure},
        {"tempFallbackTime", &SensorSeries::tempFallbackTime},
        {"tempSampleLeft", &SensorSeries::tempSampleLeft},
        {"tempSampleRight", &SensorSeries::tempSampleRight},
        {"tempFallbackRight", &SensorSeries::tempFallbackRight},
    };
    return s.*byName.value(name);
}

// The row of `time` that holds `t`, if any.
std::optional<RowNumber> rowAt(const SampleColumn& time, double t) {
    for (RowNumber row = time.firstRow(); row < time.endRow(); ++row)
        if (time.at(row) == t) return row;
    return std::nullopt;
}

// Empty when `points` are the pairs (time, value) of one unbroken stretch of rows of the two
// series, the newest `window` of them as the series stood when the chart took them; otherwise
// what is wrong.
QString stretchMismatch(const QVector<QPointF>& points, const SampleColumn& time,
                        const SampleColumn& value, int window) {
    if (points.isEmpty()) return "no points";
    const std::optional<RowNumber> k = rowAt(time, points.first().x());
    if (!k) return "the first point's time is not in the time series";
    if (*k + points.size() > std::min(time.endRow(), value.endRow())) return "runs past the series";
    for (int i = 0; i < points.size(); ++i) {
        const RowNumber row = *k + i;
        if (points[i] != QPointF(time.at(row), value.at(row)))
            return QString("point %1 is not the series' row %2").arg(i).arg(row.value());
    }
    // A stretch that does not start at the first row was cut to the window.
    if (*k > time.firstRow() && points.size() != window)
        return QString("%1 points where the window holds %2").arg(points.size()).arg(window);
    if (points.size() > window)
        return QString("%1 points, more than the window").arg(points.size());
    return {};
}

}  // namespace

class TestWindowChart : public QObject {
    Q_OBJECT

    std::unique_ptr<PacedVirtualTime> time;
    std::unique_ptr<MainWindow> window;

    MainWindow& w() { return *window; }

    void openWindowOn(const bw::sim::DeviceConfig& camera) {
        window.reset();
        time.reset();
        time = std::make_unique<PacedVirtualTime>(std::vector<bw::sim::DeviceConfig>{camera});
        window = std::make_unique<MainWindow>();
        window->show();
        QTRY_VERIFY_WITH_TIMEOUT(w().input() != nullptr && w().isSampling(), kTimeoutMs);
    }

    // Clicks the sensor's button and checks, once the chart has been fed a full window, that
    // `curve` shows the newest stretch of the two series, no more than `windowPoints` points.
    void verifyCurveFeed(const QString& button, DataPlot::DataType curve, const QString& timeName,
                         const QString& valueName, int windowPoints) {
        w().findChild<QAbstractButton*>(button)->click();
        // Long enough for the stretch to be cut to the window.
        QTRY_VERIFY_WITH_TIMEOUT(sampledSeconds(w()) > 12.0, kTimeoutMs);
        QTRY_VERIFY_WITH_TIMEOUT(pointsOf(w(), curve).size() == windowPoints, kTimeoutMs);
        // The chart is fed under the sample lock: holding it, nothing changes underneath.
        std::lock_guard<std::mutex> lock(w().sampleMutex());
        const SensorSeries& s = w().sampleSeries();
        const QString mismatch = stretchMismatch(pointsOf(w(), curve), seriesNamed(s, timeName),
                                                 seriesNamed(s, valueName), windowPoints);
        QVERIFY2(mismatch.isEmpty(), qPrintable(mismatch));
    }

private slots:
    void init() { openWindowOn(simulatedCamera(bw::MODEL::ORYX_D)); }
    void cleanup() {
        window.reset();
        time.reset();
    }

    void theOrientationViewTurnsWithTheCamera() {
        OGL3DWidget* view = w().form()->widget_3d_view;
        QTRY_VERIFY_WITH_TIMEOUT(view->isInitialised(), kTimeoutMs);
        QTRY_VERIFY_WITH_TIMEOUT(degreesBetween(view->modelOrientation(), bw::Orientation()) > 1e-3,
                                 kTimeoutMs);
        const bw::Orientation first = view->modelOrientation();
        const QImage before = view->grabFramebuffer();
        // The default hand-held motion turns the camera by several degrees within seconds.
        QTRY_VERIFY_WITH_TIMEOUT(degreesBetween(view->modelOrientation(), first) > 2.0, kTimeoutMs);
        QTRY_VERIFY_WITH_TIMEOUT(view->grabFramebuffer() != before, kTimeoutMs);
        QCOMPARE(view->modelPosition().x, 0.f);
    }

    // The accelerometer (shown first) and the next sensors use three fields, the barometer one,
    // the temperatures two; only the magnetometer offers calibration.
    void theFieldsFollowTheSensor() {
        Ui::MainWindow* f = w().form();
        QTRY_VERIFY_WITH_TIMEOUT(f->lineEdit_value_0->text().endsWith(" m/s²"), kTimeoutMs);
        QVERIFY(f->lineEdit_value_0->text().startsWith("X "));
        QVERIFY(f->lineEdit_value_2->text().startsWith("Z "));
        QTRY_COMPARE_WITH_TIMEOUT(f->label_sensor_rate->text(), QString("400 Hz"), kTimeoutMs);
        f->pushButton_baro->click();
        QCOMPARE(f->label_sensor_type_top->text(), QString("Barometer"));
        QVERIFY(f->lineEdit_value_1->isHidden() && f->lineEdit_value_2->isHidden());
        QTRY_VERIFY_WITH_TIMEOUT(f->lineEdit_value_0->text().startsWith("Atmospheric Pressure "),
                                 kTimeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(f->label_sensor_rate->text(), QString("25 Hz"), kTimeoutMs);

        f->pushButton_temper->click();
        QVERIFY(!f->lineEdit_value_1->isHidden() && f->lineEdit_value_2->isHidden());
        QVERIFY(f->pushButton_calib_mag->isHidden());
        QTRY_VERIFY_WITH_TIMEOUT(f->lineEdit_value_0->text().startsWith("Right "), kTimeoutMs);

        f->pushButton_gyro->click();
        QVERIFY(!f->lineEdit_value_1->isHidden() && !f->lineEdit_value_2->isHidden());
        QTRY_VERIFY_WITH_TIMEOUT(f->lineEdit_value_1->text().endsWith(" °/s"), kTimeoutMs);

        f->pushButton_mag->click();
        QVERIFY(!f->pushButton_calib_mag->isHidden());
        QCOMPARE(f->label_sensor_type_top->text(), QString("Magnetometer [Not Calibrated]"));
    }

    void theTimeAxisGrowsThenScrolls() {
        w().form()->comboBox_time_range->setCurrentIndex(0);  // "Last 5 sec"
        QTRY_VERIFY_WITH_TIMEOUT(sampledSeconds(w()) > 0.5, kTimeoutMs);
        // The axis starts as a placeholder interval; wait for the first redraw with samples.
        QTRY_VERIFY_WITH_TIMEOUT(timeAxis(w()).minValue() > 0.0, kTimeoutMs);
        QwtInterval axis = timeAxis(w());
        QVERIFY(axis.width() > 4.99);
        double first = 0.0;
        {
            std::lock_guard<std::mutex> lock(w().sampleMutex());
            first = w().sampleSeries().imuTime.first();
        }
        if (sampledSeconds(w()) < 4.0) QCOMPARE(axis.minValue(), first);
        QTRY_VERIFY_WITH_TIMEOUT(sampledSeconds(w()) > 8.0, kTimeoutMs);
        // Scrolling: the left edge has left the first sample behind.
        QTRY_VERIFY_WITH_TIMEOUT(timeAxis(w()).minValue() > first + 2.0, kTimeoutMs);
        axis = timeAxis(w());
        QVERIFY(qAbs(axis.width() - 5.0) < 1e-6);
    }

    // Ten seconds ("Last 10 sec" when a camera opens) of each sensor's own series: IMU-rate
    // sensors with 30 % more samples than the window needs, the others from their event series.
    void eachSensorIsDrawnFromItsOwnSeries_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("curve");
        QTest::addColumn<QString>("timeSeries");
        QTest::addColumn<QString>("valueSeries");
        QTest::addColumn<int>("windowPoints");
        QTest::newRow("gyroscope") << "pushButton_gyro" << int(DataPlot::GYR_Y) << "imuTime"
                                   << "gyroY" << 5200;
        QTest::newRow("magnetometer") << "pushButton_mag" << int(DataPlot::MAG_Z) << "magSampleTime"
                                      << "magSampleZ" << 500;
        QTest::newRow("barometer")
            << "pushButton_baro" << int(DataPlot::REL_ALTITUDE) << "baroSampleTime"
            << "baroSamplePressure" << 250;
        // Handed the pressure too, on purpose; hidden while the barometer is shown.
        QTest::newRow("barometer's hidden temperature curve")
            << "pushButton_baro" << int(DataPlot::TEMP_LEFT) << "baroSampleTime"
            << "baroSamplePressure" << 250;
        QTest::newRow("temperature left")
            << "pushButton_temper" << int(DataPlot::TEMP_LEFT) << "baroSampleTime"
            << "tempSampleLeft" << 250;
        QTest::newRow("temperature right")
            << "pushButton_temper" << int(DataPlot::TEMP_RIGHT) << "baroSampleTime"
            << "tempSampleRight" << 250;
    }
    void eachSensorIsDrawnFromItsOwnSeries() {
        QFETCH(QString, button);
        QFETCH(int, curve);
        QFETCH(QString, timeSeries);
        QFETCH(QString, valueSeries);
        QFETCH(int, windowPoints);
        verifyCurveFeed(button, DataPlot::DataType(curve), timeSeries, valueSeries, windowPoints);
    }

    // Without a barometer to time them, the temperatures are sampled with every IMU sample.
    void withoutABarometerTemperaturesFollowTheImu() {
        openWindowOn(simulatedCamera(bw::MODEL::ORYX_E));
        verifyCurveFeed("pushButton_temper", DataPlot::TEMP_RIGHT, "tempFallbackTime",
                        "tempFallbackRight", 4000);
    }

    // A chosen sensor's axis has a margin of a tenth of its range; every update then gives it
    // five hundredths. Barometer and temperature span their running minimum and maximum.
    void theValueAxisFollowsTheSensorsRange_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("symmetric");
        QTest::newRow("accelerometer") << "pushButton_accel" << true;
        QTest::newRow("gyroscope") << "pushButton_gyro" << true;
        QTest::newRow("barometer") << "pushButton_baro" << false;
        QTest::newRow("temperature") << "pushButton_temper" << false;
    }
    void theValueAxisFollowsTheSensorsRange() {
        QFETCH(QString, button);
        QFETCH(bool, symmetric);
        const SensorLevels& l = w().sampleLevels();
        const auto expected = [&](double margin) {
            if (button == "pushButton_accel")
                return QwtInterval(-margin * l.accRange, margin * l.accRange);
            if (button == "pushButton_gyro")
                return QwtInterval(-margin * l.gyroRange, margin * l.gyroRange);
            if (button == "pushButton_baro") return QwtInterval(l.pressureMin, l.pressureMax);
            return QwtInterval(l.temperatureMin, l.temperatureMax);
        };
        const auto near = [](const QwtInterval& a, const QwtInterval& b) {
            return qAbs(a.minValue() - b.minValue()) < 1e-3 &&
                   qAbs(a.maxValue() - b.maxValue()) < 1e-3;
        };
        QTRY_VERIFY_WITH_TIMEOUT(sampledSeconds(w()) > 1.0, kTimeoutMs);
        // No update runs between the click and the look: the GUI thread is ours.
        w().findChild<QAbstractButton*>(button)->click();
        const QwtInterval chosen = valueAxis(w());
        QVERIFY2(near(chosen, expected(1.1)),
                 qPrintable(QString("%1..%2").arg(chosen.minValue()).arg(chosen.maxValue())));
        // The ranges may still grow while the camera runs: the axis follows them.
        QTRY_VERIFY_WITH_TIMEOUT(near(valueAxis(w()), expected(symmetric ? 1.05 : 1.0)),
                                 kTimeoutMs);
    }

    void aLongWindowRedrawsLessOften() {
        QTRY_COMPARE_WITH_TIMEOUT(w().chartPeriodMs(), 25, kTimeoutMs);
        w().form()->comboBox_time_range->setCurrentIndex(3);  // "Last 60 sec"
        QTRY_VERIFY_WITH_TIMEOUT(sampledSeconds(w()) > 80.0, 4 * kTimeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(w().chartPeriodMs(), 62, kTimeoutMs);
    }
};

WIDGET_TEST_MAIN(TestWindowChart)
#include "tst_window_chart.moc"
