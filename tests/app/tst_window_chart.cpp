// The chart, the readout and the orientation view of the main window, fed by a simulated camera
// on a virtual clock.
#include <QtTest>

#include "DataPlot.h"
#include "OGL3DWidget.h"
#include "SimulatedCameras.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"
#include "WidgetTestMain.h"

namespace {

constexpr int kTimeoutMs = 10000;

double sampledSeconds(MainWindow& w) {
    std::lock_guard<std::mutex> lock(w.sampleMutex());
    const QVector<double>& t = w.sampleSeries().imuTime;
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

}  // namespace

class TestWindowChart : public QObject {
    Q_OBJECT

    std::unique_ptr<PacedVirtualTime> time;
    std::unique_ptr<MainWindow> window;

    MainWindow& w() { return *window; }

private slots:
    void init() {
        time = std::make_unique<PacedVirtualTime>(
            std::vector<bw::sim::DeviceConfig>{simulatedCamera(bw::MODEL::ORYX_D)});
        window = std::make_unique<MainWindow>();
        window->show();
        QTRY_VERIFY_WITH_TIMEOUT(w().input() != nullptr && w().isSampling(), kTimeoutMs);
    }
    void cleanup() {
        window.reset();
        time.reset();
    }

    void theOrientationViewTurnsWithTheCamera() {
        OGL3DWidget* view = w().form()->widget_3d_view;
        QTRY_VERIFY_WITH_TIMEOUT(view->isInitialised(), kTimeoutMs);
        // ORYX_D is not the model with its own mesh.
        QCOMPARE(view->model()->getIndices().size(), std::size_t(3 * 108));
        QTRY_VERIFY_WITH_TIMEOUT(degreesBetween(view->modelOrientation(), bw::Orientation()) > 1e-3,
                                 kTimeoutMs);
        const bw::Orientation first = view->modelOrientation();
        const QImage before = view->grabFramebuffer();
        // The default hand-held motion turns the camera by several degrees within seconds.
        QTRY_VERIFY_WITH_TIMEOUT(degreesBetween(view->modelOrientation(), first) > 2.0, kTimeoutMs);
        QTRY_VERIFY_WITH_TIMEOUT(view->grabFramebuffer() != before, kTimeoutMs);
        QCOMPARE(view->modelPosition().x, 0.f);
    }

    void theReadoutShowsTheNewestValuesAndTheRate() {
        QTRY_VERIFY_WITH_TIMEOUT(w().form()->lineEdit_value_0->text().endsWith(" m/s²"),
                                 kTimeoutMs);
        QVERIFY(w().form()->lineEdit_value_0->text().startsWith("X "));
        QVERIFY(w().form()->lineEdit_value_2->text().startsWith("Z "));
        QTRY_COMPARE_WITH_TIMEOUT(w().form()->label_sensor_rate->text(), QString("400 Hz"),
                                  kTimeoutMs);
        QCOMPARE(w().form()->label_sensor_type->text(), QString("Accelerometer @ "));
    }

    void theBarometerHidesTwoFieldsAndTheNextSensorShowsThem() {
        w().form()->pushButton_baro->click();
        QCOMPARE(w().shownSensor(), QString("Barometer"));
        QVERIFY(w().form()->lineEdit_value_1->isHidden());
        QVERIFY(w().form()->lineEdit_value_2->isHidden());
        QCOMPARE(w().form()->label_sensor_type_top->text(), QString("Barometer"));
        QTRY_VERIFY_WITH_TIMEOUT(
            w().form()->lineEdit_value_0->text().startsWith("Atmospheric Pressure "), kTimeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(w().form()->label_sensor_rate->text(), QString("25 Hz"),
                                  kTimeoutMs);

        w().form()->pushButton_gyro->click();
        QVERIFY(!w().form()->lineEdit_value_1->isHidden());
        QVERIFY(!w().form()->lineEdit_value_2->isHidden());
        QTRY_VERIFY_WITH_TIMEOUT(w().form()->lineEdit_value_1->text().endsWith(" °/s"), kTimeoutMs);
    }

    void temperatureUsesTwoFieldsAndTheMagnetometerOffersCalibration() {
        w().form()->pushButton_temper->click();
        QVERIFY(!w().form()->lineEdit_value_1->isHidden());
        QVERIFY(w().form()->lineEdit_value_2->isHidden());
        QVERIFY(w().form()->pushButton_calib_mag->isHidden());
        QTRY_VERIFY_WITH_TIMEOUT(w().form()->lineEdit_value_0->text().startsWith("Right "),
                                 kTimeoutMs);
        w().form()->pushButton_mag->click();
        QVERIFY(!w().form()->pushButton_calib_mag->isHidden());
        QCOMPARE(w().form()->label_sensor_type_top->text(),
                 QString("Magnetometer [Not Calibrated]"));
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

    void aLongWindowRedrawsLessOften() {
        QTRY_COMPARE_WITH_TIMEOUT(w().chartPeriodMs(), 25, kTimeoutMs);
        w().form()->comboBox_time_range->setCurrentIndex(3);  // "Last 60 sec"
        QTRY_VERIFY_WITH_TIMEOUT(sampledSeconds(w()) > 80.0, 4 * kTimeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(w().chartPeriodMs(), 62, kTimeoutMs);
    }
};

WIDGET_TEST_MAIN(TestWindowChart)
#include "tst_window_chart.moc"
