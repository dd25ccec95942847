#include <qwt_plot_curve.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

#include <QtTest>
#include <QtWidgets>
#include <functional>
#include <memory>

#include "DataPlot.h"
#include "PlotImages.h"
#include "TimeScaleDraw.h"
#include "WidgetTestMain.h"

namespace {

QList<const QwtPlotCurve*> curvesOf(const QwtPlot& plot) {
    QList<const QwtPlotCurve*> curves;
    for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotCurve)) {
        curves << static_cast<const QwtPlotCurve*>(item);
    }
    return curves;
}

QStringList visibleCurveTitles(const QwtPlot& plot) {
    QStringList titles;
    for (const QwtPlotCurve* curve : curvesOf(plot)) {
        if (curve->isVisible()) {
            titles << curve->title().text();
        }
    }
    return titles;
}

const QwtPlotCurve* curveTitled(const QwtPlot& plot, const QString& title) {
    for (const QwtPlotCurve* curve : curvesOf(plot)) {
        if (curve->title().text() == title) {
            return curve;
        }
    }
    return nullptr;
}

// A plot on screen with some accelerometer data, values -5..5 over 0..10 s.
std::unique_ptr<DataPlot> shownPlotWithData() {
    auto plot = std::make_unique<DataPlot>();
    plot->resize(600, 300);
    plot->show();
    QVector<double> t, x, y;
    for (int i = 0; i <= 1000; ++i) {
        t << i / 100.0;
        x << 5.0 * std::sin(i / 50.0);
        y << 5.0 * std::cos(i / 80.0);
    }
    plot->updateData(DataPlot::ACC_X, t, x, false);
    plot->updateData(DataPlot::ACC_Y, t, y, false);
    plot->setValRange(-6.0, 6.0, false);
    plot->setTimeRange(0.0, 10.0, false);
    plot->replot();
    return plot;
}

using Change = std::function<void(DataPlot&, bool replot)>;

// A change made with replot false leaves the screen as it was until replot(); made with replot
// true it shows at once.
void checkShownOnlyOnReplot(const Change& change) {
    auto deferred = shownPlotWithData();
    QVERIFY(QTest::qWaitForWindowExposed(deferred.get()));
    const QImage before = canvasImage(*deferred);
    change(*deferred, false);
    QCoreApplication::processEvents();
    QCOMPARE(canvasImage(*deferred), before);
    deferred->replot();
    const QImage after = canvasImage(*deferred);
    QVERIFY(after != before);

    auto immediate = shownPlotWithData();
    QVERIFY(QTest::qWaitForWindowExposed(immediate.get()));
    change(*immediate, true);
    QCOMPARE(canvasImage(*immediate), after);
}

}  // namespace

class TestDataPlot : public QObject {
    Q_OBJECT

private slots:
    void startsWithAccelerometerAndTenSeconds();
    void sensorTypeShowsItsCurvesAndTitle_data();
    void sensorTypeShowsItsCurvesAndTitle();
    void unknownSensorTypeHidesEverythingKeepsTitle();
    void curveColoursAndPens_data();
    void curveColoursAndPens();
    void updateDataUsesShorterVector();
    void rangesChangeScalesOnlyOnReplot();
    void valueRangeShowsOnlyOnReplot();
    void timeRangeShowsOnlyOnReplot();
    void newDataShowsOnlyOnReplot();
    void hidingCurveShowsOnlyOnReplot();
    void timeLabels_data();
    void timeLabels();
    void timeLabelsFromOtherBase();
};

void TestDataPlot::startsWithAccelerometerAndTenSeconds() {
    DataPlot plot;
    QCOMPARE(curvesOf(plot).size(), 15);
    QCOMPARE(visibleCurveTitles(plot), QStringList({"Acc. X", "Acc. Y", "Acc. Z"}));
    for (const QwtPlotCurve* curve : curvesOf(plot)) {
        QCOMPARE(curve->dataSize(), size_t(0));
    }
    QCOMPARE(plot.axisTitle(QwtPlot::yLeft).text(), QString::fromUtf8("Accelerations [m/s²]"));
    QCOMPARE(plot.axisTitle(QwtPlot::xBottom).text(), QString("Timestamp [h:m:s]"));
    QCOMPARE(plot.axisScaleDiv(QwtPlot::xBottom).lowerBound(), 0.0);
    QCOMPARE(plot.axisScaleDiv(QwtPlot::xBottom).upperBound(), 10.0);
    QCOMPARE(plot.axisScaleDraw(QwtPlot::xBottom)->label(0.0).text(), QString("00:00:00"));
    QVERIFY(!plot.axisAutoScale(QwtPlot::yLeft));
    QVERIFY(!plot.autoReplot());
    // Tick labels in the light axis font, titles in the medium one.
    QCOMPARE(plot.axisFont(QwtPlot::xBottom).weight(), int(QFont::Light));
    QCOMPARE(plot.axisFont(QwtPlot::yLeft).weight(), int(QFont::Light));
    QCOMPARE(plot.axisTitle(QwtPlot::xBottom).font().weight(), int(QFont::Medium));
}

void TestDataPlot::sensorTypeShowsItsCurvesAndTitle_data() {
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("axisTitle");
    QTest::addColumn<QStringList>("curves");
    QTest::newRow("accelerometer")
        << int(DataPlot::ACCELEROMETER) << QString::fromUtf8("Accelerations [m/s²]")
        << QStringList({"Acc. X", "Acc. Y", "Acc. Z"});
    QTest::newRow("gyroscope") << int(DataPlot::GYROSCOPE)
                               << QString::fromUtf8("Angular velocities [°/s]")
                               << QStringList({"Gyr. X", "Gyr. Y", "Gyr. Z"});
    QTest::newRow("magnetometer") << int(DataPlot::MAGNETOMETER)
                                  << QString::fromUtf8("Magnetic fields [µT]")
                                  << QStringList({"Mag. X", "Mag. Y", "Mag. Z"});
    QTest::newRow("orientation") << int(DataPlot::ORIENTATION)
                                 << QString::fromUtf8("Orientation [°]")
                                 << QStringList({"Or. X", "Or. Y", "Or. Z"});
    QTest::newRow("barometer") << int(DataPlot::BAROMETER) << QString("Atmospheric Pressure [hPa]")
                               << QStringList({"Rel. Altitude"});
    QTest::newRow("temperature") << int(DataPlot::TEMPERATURE)
                                 << QString::fromUtf8("Camera temperatures [°C]")
                                 << QStringList(
                                        {"Temperature Camera Left", "Temperature Camera Right"});
}

void TestDataPlot::sensorTypeShowsItsCurvesAndTitle() {
    QFETCH(int, type);
    QFETCH(QString, axisTitle);
    QFETCH(QStringList, curves);
    DataPlot plot;
    // From a sensor other than the default one, so that every curve of the old sensor must go.
    plot.setSensorType(DataPlot::TEMPERATURE);
    plot.setSensorType(DataPlot::SensorType(type));
    QCOMPARE(visibleCurveTitles(plot), curves);
    QCOMPARE(plot.axisTitle(QwtPlot::yLeft).text(), axisTitle);
    QCOMPARE(plot.axisTitle(QwtPlot::xBottom).text(), QString("Timestamp [h:m:s]"));
}

void TestDataPlot::unknownSensorTypeHidesEverythingKeepsTitle() {
    DataPlot plot;
    plot.setSensorType(DataPlot::GYROSCOPE);
    plot.setSensorType(DataPlot::SensorType(6));
    QVERIFY(visibleCurveTitles(plot).isEmpty());
    QCOMPARE(plot.axisTitle(QwtPlot::yLeft).text(), QString::fromUtf8("Angular velocities [°/s]"));
}

void TestDataPlot::curveColoursAndPens_data() {
    QTest::addColumn<QString>("title");
    QTest::addColumn<QColor>("colour");
    const QColor red(255, 87, 87), green(48, 214, 149), blue(0, 190, 255);
    const char* const axes[][3] = {
        {"Acc. X", "Acc. Y", "Acc. Z"},
        {"Gyr. X", "Gyr. Y", "Gyr. Z"},
        {"Mag. X", "Mag. Y", "Mag. Z"},
        {"Or. X", "Or. Y", "Or. Z"},
    };
    for (const auto& sensor : axes) {
        QTest::newRow(sensor[0]) << QString(sensor[0]) << red;
        QTest::newRow(sensor[1]) << QString(sensor[1]) << green;
        QTest::newRow(sensor[2]) << QString(sensor[2]) << blue;
    }
    QTest::newRow("altitude") << QString("Rel. Altitude") << QColor(255, 87, 48);
    QTest::newRow("left") << QString("Temperature Camera Left") << green;
    QTest::newRow("right") << QString("Temperature Camera Right") << blue;
}

void TestDataPlot::curveColoursAndPens() {
    QFETCH(QString, title);
    QFETCH(QColor, colour);
    DataPlot plot;
    const QwtPlotCurve* curve = curveTitled(plot, title);
    QVERIFY(curve);
    QCOMPARE(curve->pen().color(), colour);
    QCOMPARE(curve->pen().color().alpha(), 255);
    QCOMPARE(curve->pen().widthF(), 2.0);
    QCOMPARE(curve->pen().style(), Qt::SolidLine);
    QCOMPARE(curve->style(), QwtPlotCurve::Lines);
    QVERIFY(!curve->testRenderHint(QwtPlotItem::RenderAntialiased));
}

void TestDataPlot::updateDataUsesShorterVector() {
    DataPlot plot;
    plot.updateData(DataPlot::MAG_Y, {1.0, 2.0, 3.0}, {10.0, 20.0}, false);
    const QwtPlotCurve* curve = curveTitled(plot, "Mag. Y");
    QCOMPARE(curve->dataSize(), size_t(2));
    QCOMPARE(curve->sample(1), QPointF(2.0, 20.0));
    // Only the addressed curve changes.
    QCOMPARE(curveTitled(plot, "Mag. X")->dataSize(), size_t(0));

    plot.updateData(DataPlot::MAG_Y, {}, {}, false);
    QCOMPARE(curve->dataSize(), size_t(0));
}

void TestDataPlot::rangesChangeScalesOnlyOnReplot() {
    DataPlot plot;
    plot.setValRange(-3.0, 7.0, false);
    plot.setTimeRange(100.0, 160.0, false);
    QCOMPARE(plot.axisScaleDiv(QwtPlot::xBottom).upperBound(), 10.0);
    plot.replot();
    QCOMPARE(plot.axisScaleDiv(QwtPlot::yLeft).lowerBound(), -3.0);
    QCOMPARE(plot.axisScaleDiv(QwtPlot::yLeft).upperBound(), 7.0);
    QCOMPARE(plot.axisScaleDiv(QwtPlot::xBottom).lowerBound(), 100.0);
    QCOMPARE(plot.axisScaleDiv(QwtPlot::xBottom).upperBound(), 160.0);
    // No minor ticks on either axis.
    QVERIFY(plot.axisScaleDiv(QwtPlot::yLeft).ticks(QwtScaleDiv::MinorTick).isEmpty());
    QVERIFY(plot.axisScaleDiv(QwtPlot::xBottom).ticks(QwtScaleDiv::MinorTick).isEmpty());

    plot.setValRange(0.0, 1.0, true);
    QCOMPARE(plot.axisScaleDiv(QwtPlot::yLeft).upperBound(), 1.0);
    plot.setTimeRange(5.0, 6.0, true);
    QCOMPARE(plot.axisScaleDiv(QwtPlot::xBottom).lowerBound(), 5.0);
}

void TestDataPlot::valueRangeShowsOnlyOnReplot() {
    checkShownOnlyOnReplot(
        [](DataPlot& plot, bool replot) { plot.setValRange(-2.0, 2.0, replot); });
}

void TestDataPlot::timeRangeShowsOnlyOnReplot() {
    checkShownOnlyOnReplot(
        [](DataPlot& plot, bool replot) { plot.setTimeRange(2.0, 4.0, replot); });
}

void TestDataPlot::newDataShowsOnlyOnReplot() {
    checkShownOnlyOnReplot([](DataPlot& plot, bool replot) {
        plot.updateData(DataPlot::ACC_Z, {0.0, 10.0}, {-4.0, 4.0}, replot);
    });
}

void TestDataPlot::hidingCurveShowsOnlyOnReplot() {
    checkShownOnlyOnReplot([](DataPlot& plot, bool replot) {
        for (QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotCurve)) {
            if (item->title().text() == "Acc. X") {
                plot.showCurve(item, false, replot);
            }
        }
    });
}

void TestDataPlot::timeLabels_data() {
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("label");
    QTest::newRow("zero") << 0.0 << "00:00:00";
    QTest::newRow("fraction dropped") << 3725.9 << "01:02:05";
    QTest::newRow("just below a minute") << 59.999 << "00:00:59";
    QTest::newRow("last second of a day") << 86399.0 << "23:59:59";
    QTest::newRow("a day wraps") << 86400.0 << "00:00:00";
    QTest::newRow("a day and more") << 90061.5 << "01:01:01";
    QTest::newRow("before zero") << -1.5 << "23:59:59";
    QTest::newRow("just before zero truncates to zero") << -0.5 << "00:00:00";
}

void TestDataPlot::timeLabels() {
    QFETCH(double, seconds);
    QFETCH(QString, label);
    const TimeScaleDraw draw(QTime(0, 0, 0, 0));
    QCOMPARE(draw.label(seconds).text(), label);
}

void TestDataPlot::timeLabelsFromOtherBase() {
    const TimeScaleDraw draw(QTime(12, 30, 0));
    QCOMPARE(draw.label(75.2).text(), QString("12:31:15"));
    QCOMPARE(draw.label(qQNaN()).text(), QString());
}

WIDGET_TEST_MAIN(TestDataPlot)
#include "tst_dataplot.moc"
