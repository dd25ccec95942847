#include <qwt_plot_curve.h>
#include <qwt_plot_shapeitem.h>
#include <qwt_symbol.h>

#include <QtTest>
#include <QtWidgets>

#include "CalibPlot.h"
#include "Compass.h"
#include "PlotImages.h"
#include "WidgetTestMain.h"

namespace {

const QwtPlotShapeItem* ellipseTitled(const CalibPlot& plot, const QString& title) {
    for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotShape)) {
        if (item->title().text() == title) {
            return static_cast<const QwtPlotShapeItem*>(item);
        }
    }
    return nullptr;
}

// The dialog's sample clouds: symbols only, translucent diamonds.
QwtPlotCurve* scatter(const QVector<double>& x, const QVector<double>& y) {
    auto* curve = new QwtPlotCurve("Raw Mag XY");
    curve->setStyle(QwtPlotCurve::NoCurve);
    const QColor colour(255, 53, 53, 100);
    curve->setSymbol(
        new QwtSymbol(QwtSymbol::Diamond, QBrush(colour), QPen(colour, 1.0), QSize(5, 5)));
    curve->setSamples(x, y);
    return curve;
}

// Where the needle's red (north) half lies, relative to the dial's centre.
QPointF redCentroid(const QImage& image) {
    QPointF sum;
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            // Bright red; the raw dial's disc (dark red) stays below this.
            if (c.red() > 180 && c.green() < 80 && c.blue() < 80) {
                sum += QPointF(x, y);
                ++n;
            }
        }
    }
    return n > 0 ? sum / n - QPointF(image.width() / 2.0, image.height() / 2.0) : QPointF();
}

QImage shownImage(QWidget& widget) {
    widget.resize(200, 200);
    widget.show();
    if (!QTest::qWaitForWindowExposed(&widget)) {
        return QImage();
    }
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

// A point on the dial disc between the scale and the needle (lower left, away from both).
QColor discColour(const QImage& image) { return image.pixelColor(image.width() / 3, 140); }

}  // namespace

class TestCalibPlots : public QObject {
    Q_OBJECT

private slots:
    void startsEmptyAtOnePointFive();
    void ellipseOfEachPlane_data();
    void ellipseOfEachPlane();
    void scatterTakesOverScales();
    void compassShowsHeading();
    void rawCompassIsRed();
};

void TestCalibPlots::startsEmptyAtOnePointFive() {
    CalibPlot plot;
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        QCOMPARE(plot.axisScaleDiv(axis).lowerBound(), -1.5);
        QCOMPARE(plot.axisScaleDiv(axis).upperBound(), 1.5);
        QVERIFY(plot.axisAutoScale(axis));
        QVERIFY(plot.axisEnabled(axis));
    }
    QVERIFY(plot.autoReplot());
    QStringList titles;
    for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotShape)) {
        titles << item->title().text();
        QVERIFY(static_cast<const QwtPlotShapeItem*>(item)->shape().isEmpty());
        QVERIFY(item->testRenderHint(QwtPlotItem::RenderAntialiased));
    }
    QCOMPARE(titles, QStringList({"Fit Ellipse XY", "Fit Ellipse XZ", "Fit Ellipse YZ"}));
    QCOMPARE(plot.itemList(QwtPlotItem::Rtti_PlotGrid).size(), 1);
}

void TestCalibPlots::ellipseOfEachPlane_data() {
    QTest::addColumn<int>("plane");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("XY") << int(CalibPlot::XY) << "Fit Ellipse XY" << QColor(255, 53, 53, 100);
    QTest::newRow("XZ") << int(CalibPlot::XZ) << "Fit Ellipse XZ" << QColor(77, 156, 210, 100);
    QTest::newRow("YZ") << int(CalibPlot::YZ) << "Fit Ellipse YZ" << QColor(105, 199, 85, 100);
}

void TestCalibPlots::ellipseOfEachPlane() {
    QFETCH(int, plane);
    QFETCH(QString, title);
    QFETCH(QColor, colour);
    CalibPlot plot;
    plot.setFitEllipse(CalibPlot::_plane(plane), -10.0f, -20.0f, 30.0f, 40.0f);

    const QwtPlotShapeItem* ellipse = ellipseTitled(plot, title);
    QVERIFY(ellipse);
    // Centred at (5, 0) with semi-axes 15 and 20.
    QCOMPARE(ellipse->boundingRect(), QRectF(-10.0, -20.0, 30.0, 40.0));
    QVERIFY(ellipse->shape().contains(QPointF(5.0, 19.5)));
    QVERIFY(ellipse->shape().contains(QPointF(-9.5, 0.0)));
    QVERIFY(!ellipse->shape().contains(QPointF(-9.0, 18.0)));  // a corner of the rectangle
    QCOMPARE(ellipse->pen().color(), colour.darker(200));
    QCOMPARE(ellipse->pen().widthF(), 0.0);
    QCOMPARE(ellipse->brush().color(), colour.lighter(150));
    QCOMPARE(ellipse->brush().style(), Qt::SolidPattern);
    QCOMPARE(ellipse->brush().color().alpha(), 100);

    // The other planes keep their (empty) ellipses.
    for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotShape)) {
        if (item != ellipse) {
            QVERIFY(static_cast<const QwtPlotShapeItem*>(item)->shape().isEmpty());
        }
    }
}

void TestCalibPlots::scatterTakesOverScales() {
    CalibPlot plot;
    plot.resize(300, 300);
    plot.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plot));
    scatter({-40.0, 0.0, 35.0}, {-12.0, 25.0, 3.0})->attach(&plot);
    plot.replot();
    QVERIFY(plot.axisScaleDiv(QwtPlot::xBottom).contains(-40.0));
    QVERIFY(plot.axisScaleDiv(QwtPlot::xBottom).contains(35.0));
    QVERIFY(plot.axisScaleDiv(QwtPlot::yLeft).contains(25.0));
    QVERIFY(plot.axisScaleDiv(QwtPlot::yLeft).contains(-12.0));
    // Symbols only: nothing drawn between the samples, away from their diamonds.
    const QImage image = canvasImage(plot);
    const QPointF from(plot.transform(QwtPlot::xBottom, -40.0),
                       plot.transform(QwtPlot::yLeft, -12.0));
    const QPointF to(plot.transform(QwtPlot::xBottom, 0.0), plot.transform(QwtPlot::yLeft, 25.0));
    for (double f = 0.1; f <= 0.9; f += 0.05) {
        const QColor c = image.pixelColor((from + f * (to - from)).toPoint());
        QVERIFY2(c.red() <= c.green() + 10, qPrintable(c.name()));
    }
    // ...where the samples themselves show.
    const QColor sample = image.pixelColor(to.toPoint());
    QVERIFY2(sample.red() > sample.green() + 50, qPrintable(sample.name()));
}

void TestCalibPlots::compassShowsHeading() {
    Compass compass;
    QCOMPARE(compass.value(), 0.0);
    QImage image = shownImage(compass);
    QVERIFY(!image.isNull());
    QCOMPARE(discColour(image), QColor(Qt::darkBlue));
    // North: the red half points up.
    QPointF red = redCentroid(image);
    QVERIFY2(red.y() < -10 && std::abs(red.x()) < 3,
             qPrintable(QString("%1,%2").arg(red.x()).arg(red.y())));

    compass.setValue(90.0);
    QCOMPARE(compass.value(), 90.0);
    image = compass.grab().toImage();
    red = redCentroid(image);
    QVERIFY2(red.x() > 10 && std::abs(red.y()) < 3,
             qPrintable(QString("%1,%2").arg(red.x()).arg(red.y())));
}

void TestCalibPlots::rawCompassIsRed() {
    Compass compass;
    compass.setValue(200.0);
    compass.setRaw(true);
    QCOMPARE(compass.value(), 0.0);
    QImage image = shownImage(compass);
    QCOMPARE(discColour(image), QColor(Qt::darkRed));

    compass.setRaw(false);
    image = compass.grab().toImage();
    QCOMPARE(discColour(image), QColor(Qt::darkBlue));
}

WIDGET_TEST_MAIN(TestCalibPlots)
#include "tst_calibplots.moc"
