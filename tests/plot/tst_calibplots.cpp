#include <qwt_plot_curve.h>

#include <QtTest>
#include <QtWidgets>

#include "CalibPlot.h"
#include "Compass.h"
#include "CompassNeedle.h"
#include "PlotImages.h"
#include "WidgetTestMain.h"

namespace {

QImage shownImage(QWidget& widget) {
    widget.resize(200, 200);
    widget.show();
    if (!QTest::qWaitForWindowExposed(&widget)) {
        return QImage();
    }
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace

class TestCalibPlots : public QObject {
    Q_OBJECT

private slots:

    void ellipseOfEachPlaneInItsColour_data() {
        QTest::addColumn<int>("plane");
        QTest::addColumn<int>("strongest");  // 0 red, 1 green, 2 blue
        QTest::newRow("XY") << int(CalibPlot::XY) << 0;
        QTest::newRow("XZ") << int(CalibPlot::XZ) << 2;
        QTest::newRow("YZ") << int(CalibPlot::YZ) << 1;
    }

    // The ellipse inscribed in the given rectangle, tinted in the plane's colour.
    void ellipseOfEachPlaneInItsColour() {
        QFETCH(int, plane);
        QFETCH(int, strongest);
        CalibPlot plot;
        plot.resize(300, 300);
        plot.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plot));
        plot.setAxisScale(QwtPlot::xBottom, -50.0, 50.0);
        plot.setAxisScale(QwtPlot::yLeft, -50.0, 50.0);
        const QImage empty = canvasImage(plot);
        plot.setFitEllipse(CalibPlot::_plane(plane), -10.0f, -20.0f, 30.0f, 40.0f);
        plot.replot();
        const QImage image = canvasImage(plot);
        const auto pixel = [&](const QImage& from, double x, double y) {
            return from.pixelColor(
                QPointF(plot.transform(QwtPlot::xBottom, x), plot.transform(QwtPlot::yLeft, y))
                    .toPoint());
        };
        // Centred at (5, 0) with semi-axes 15 and 20: inside near its edges, not in the corners.
        for (const QPointF& inside : {QPointF(5, 0), QPointF(5, 18.5), QPointF(-8.5, 1)}) {
            const QColor c = pixel(image, inside.x(), inside.y());
            const int channels[] = {c.red(), c.green(), c.blue()};
            QVERIFY2(c != pixel(empty, inside.x(), inside.y()), qPrintable(c.name()));
            QVERIFY2(*std::max_element(channels, channels + 3) == channels[strongest] &&
                         std::count(channels, channels + 3, channels[strongest]) == 1,
                     qPrintable(c.name()));
        }
        QCOMPARE(pixel(image, -8.0, 17.0), pixel(empty, -8.0, 17.0));
        QCOMPARE(pixel(image, 30.0, 0.0), pixel(empty, 30.0, 0.0));
    }

    // The axes start at +-1.5 and follow the samples from then on.
    void axesFollowTheSamples() {
        CalibPlot plot;
        QCOMPARE(plot.axisScaleDiv(QwtPlot::yLeft).upperBound(), 1.5);
        auto* samples = new QwtPlotCurve();
        samples->setSamples(QVector<double>{-40.0, 0.0, 35.0}, QVector<double>{-12.0, 25.0, 3.0});
        samples->attach(&plot);
        plot.replot();
        for (double x : {-40.0, 35.0}) QVERIFY(plot.axisScaleDiv(QwtPlot::xBottom).contains(x));
        for (double y : {-12.0, 25.0}) QVERIFY(plot.axisScaleDiv(QwtPlot::yLeft).contains(y));
    }

    // The needle's red (north) half points to the heading, clockwise from up, for headings
    // of either sign (the device reports -180 to 180).
    void needlePointsToTheHeading_data() {
        QTest::addColumn<double>("heading");
        for (double heading : {0.0, 90.0, 150.0, 180.0, -30.0, -100.0, -170.0, -180.0})
            QTest::addRow("%g", heading) << heading;
    }
    void needlePointsToTheHeading() {
        QFETCH(double, heading);
        Compass compass;
        compass.setValue(heading);
        const std::optional<double> shown = needle::headingOf(shownImage(compass));
        QVERIFY2(shown, "no needle in the picture");
        QVERIFY2(std::abs(needle::headingDifference(*shown, heading)) < 3.0,
                 qPrintable(QString("needle at %1 for %2").arg(*shown).arg(heading)));
    }

    // Restyling puts the needle back to north until the next heading comes.
    void restylingTurnsTheNeedleNorth() {
        Compass compass;
        compass.setValue(-100.0);
        compass.setRaw(true);
        const std::optional<double> shown = needle::headingOf(shownImage(compass));
        QVERIFY2(shown, "no needle in the picture");
        QVERIFY2(std::abs(*shown) < 3.0, qPrintable(QString("needle at %1").arg(*shown)));
    }
};

WIDGET_TEST_MAIN(TestCalibPlots)
#include "tst_calibplots.moc"
