// The chart: which curves a sensor shows, when changes reach the screen, the time labels and
// the tracker's text and box.
#include <qwt_plot_curve.h>

#include <QtTest>
#include <QtWidgets>
#include <memory>

#include "CurveTracker.h"
#include "DataPlot.h"
#include "PlotImages.h"
#include "TimeScaleDraw.h"
#include "WidgetTestMain.h"

namespace {

QStringList visibleCurveTitles(const QwtPlot& plot) {
    QStringList titles;
    for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotCurve)) {
        if (item->isVisible()) titles << item->title().text();
    }
    return titles;
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

// Reads the tracker text at exact plot coordinates, which the protected interface takes.
class TextProbe : public CurveTracker {
public:
    using CurveTracker::CurveTracker;
    using CurveTracker::trackerTextF;
};

QString red(const QString& value) { return "<font color=#ff5757>" + value + "</font>"; }
QString green(const QString& value) { return "<font color=#30d695>" + value + "</font>"; }

// Acc. X from 10 s to 13 s, Acc. Y from 11 s to 12 s, Acc. Z empty; the axis spans 8 to 16 s.
void feed(DataPlot& plot) {
    plot.updateData(DataPlot::ACC_X, {10, 11, 12, 13}, {1, 2, 4, 8}, false);
    plot.updateData(DataPlot::ACC_Y, {11, 12}, {-1, -3}, false);
    plot.setTimeRange(8.0, 16.0, false);
    plot.setValRange(-10.0, 10.0, false);
    plot.replot();
}

// Moves the mouse into the canvas the way the window system would: it enters (which starts the
// tracker and with it mouse tracking), then moves.
void hover(QWidget* canvas, const QPoint& pos) {
    QEnterEvent enter(pos, pos, canvas->mapToGlobal(pos));
    QApplication::sendEvent(canvas, &enter);
    QMouseEvent move(QEvent::MouseMove, pos, canvas->mapToGlobal(pos), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(canvas, &move);
}

}  // namespace

class TestDataPlot : public QObject {
    Q_OBJECT

private slots:
    void sensorTypeShowsItsCurves_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<QStringList>("curves");
        QTest::newRow("accelerometer")
            << int(DataPlot::ACCELEROMETER) << QStringList({"Acc. X", "Acc. Y", "Acc. Z"});
        QTest::newRow("barometer") << int(DataPlot::BAROMETER) << QStringList({"Rel. Altitude"});
        QTest::newRow("temperature")
            << int(DataPlot::TEMPERATURE)
            << QStringList({"Temperature Camera Left", "Temperature Camera Right"});
        QTest::newRow("unknown type: none") << 6 << QStringList();
    }

    void sensorTypeShowsItsCurves() {
        QFETCH(int, type);
        QFETCH(QStringList, curves);
        DataPlot plot;
        // From a sensor other than the default one, so that every curve of the old sensor must go.
        plot.setSensorType(DataPlot::TEMPERATURE);
        plot.setSensorType(DataPlot::SensorType(type));
        QCOMPARE(visibleCurveTitles(plot), curves);
    }

    void updateDataUsesShorterVector() {
        DataPlot plot;
        plot.updateData(DataPlot::MAG_Y, {1.0, 2.0, 3.0}, {10.0, 20.0}, false);
        const QwtPlotItemList curves = plot.itemList(QwtPlotItem::Rtti_PlotCurve);
        const auto* curve = static_cast<const QwtPlotCurve*>(curves[DataPlot::MAG_Y]);
        QCOMPARE(curve->dataSize(), size_t(2));
        QCOMPARE(curve->sample(1), QPointF(2.0, 20.0));
        QCOMPARE(static_cast<const QwtPlotCurve*>(curves[DataPlot::MAG_X])->dataSize(), size_t(0));
    }

    // A change made with replot false leaves the screen as it was until replot(); made with
    // replot true it shows at once.
    void changesShowOnlyOnReplot_data() {
        QTest::addColumn<int>("change");
        QTest::newRow("value range") << 0;
        QTest::newRow("new data") << 2;
        QTest::newRow("hidden curve") << 3;
    }

    void changesShowOnlyOnReplot() {
        QFETCH(int, change);
        const auto apply = [change](DataPlot& plot, bool replot) {
            if (change == 0) plot.setValRange(-2.0, 2.0, replot);
            if (change == 2) plot.updateData(DataPlot::ACC_Z, {0.0, 10.0}, {-4.0, 4.0}, replot);
            if (change == 3) {
                QwtPlotItem* accX = plot.itemList(QwtPlotItem::Rtti_PlotCurve).first();
                QCOMPARE(accX->title().text(), QString("Acc. X"));
                plot.showCurve(accX, false, replot);
            }
        };
        auto deferred = shownPlotWithData();
        QVERIFY(QTest::qWaitForWindowExposed(deferred.get()));
        const QImage before = canvasImage(*deferred);
        apply(*deferred, false);
        QCoreApplication::processEvents();
        QCOMPARE(canvasImage(*deferred), before);
        deferred->replot();
        const QImage after = canvasImage(*deferred);
        QVERIFY(after != before);

        auto immediate = shownPlotWithData();
        QVERIFY(QTest::qWaitForWindowExposed(immediate.get()));
        apply(*immediate, true);
        QCOMPARE(canvasImage(*immediate), after);
    }

    // Hours, minutes and seconds after the base time, wrapping at a day; fractions are dropped.
    void timeLabels_data() {
        QTest::addColumn<QTime>("base");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("label");
        const QTime midnight(0, 0, 0, 0);
        QTest::newRow("zero") << midnight << 0.0 << "00:00:00";
        QTest::newRow("fraction dropped") << midnight << 3725.9 << "01:02:05";
        QTest::newRow("a day wraps") << midnight << 86400.0 << "00:00:00";
        QTest::newRow("before zero") << midnight << -1.5 << "23:59:59";
        QTest::newRow("just before zero truncates to zero") << midnight << -0.5 << "00:00:00";
        QTest::newRow("other base") << QTime(12, 30, 0) << 75.2 << "12:31:15";
        QTest::newRow("not a number") << midnight << qQNaN() << "";
    }

    void timeLabels() {
        QFETCH(QTime, base);
        QFETCH(double, seconds);
        QFETCH(QString, label);
        QCOMPARE(TimeScaleDraw(base).label(seconds).text(), label);
    }

    // ---- tracker ----

    void emptyLeftOfEveryCurve() {
        DataPlot plot;
        plot.resize(600, 300);
        plot.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plot));
        feed(plot);
        const QwtPicker* tracker = plot.canvas()->findChild<CurveTracker*>();
        // Every pixel left of the first sample (10 s), through the chart's own tracker.
        const int firstSample = int(plot.transform(QwtPlot::xBottom, 10.0));
        for (int x = 0; x < firstSample - 1; ++x) {
            QVERIFY2(tracker->trackerText(QPoint(x, 50)).isEmpty(), qPrintable(QString::number(x)));
        }
        // ...and not empty right of it, so the loop above could have failed.
        QVERIFY(!tracker->trackerText(QPoint(firstSample + 5, 50)).isEmpty());
    }

    void valuesOfCurvesAroundCursor_data() {
        QTest::addColumn<double>("time");
        QTest::addColumn<QString>("text");
        QTest::newRow("before both") << 9.99 << QString();
        QTest::newRow("first sample") << 10.0 << red("1.00");
        QTest::newRow("between samples, interpolated") << 10.25 << red("1.25");
        QTest::newRow("both curves, in plot order")
            << 11.5 << red("3.00") + "<br>" + green("-2.00");
        QTest::newRow("last sample of the shorter curve")
            << 12.0 << red("4.00") + "<br>" + green("-3.00");
        QTest::newRow("after the shorter curve") << 12.5 << red("6.00");
        QTest::newRow("last sample") << 13.0 << red("8.00");
    }

    void valuesOfCurvesAroundCursor() {
        QFETCH(double, time);
        QFETCH(QString, text);
        DataPlot plot;
        feed(plot);
        const TextProbe probe(plot.canvas());
        QCOMPARE(probe.trackerTextF(QPointF(time, 0.0)).text(), text);
    }

    void hiddenCurvesLeftOut() {
        DataPlot plot;
        feed(plot);
        plot.updateData(DataPlot::GYR_Z, {10, 14}, {0, 40}, false);
        const TextProbe probe(plot.canvas());
        plot.setSensorType(DataPlot::GYROSCOPE);
        QCOMPARE(probe.trackerTextF(QPointF(11.5, 0.0)).text(),
                 QString("<font color=#00beff>15.00</font>"));
    }

    void boxBesideCursorInsideCanvas_data() {
        QTest::addColumn<double>("across");  // cursor position as a share of the canvas width
        QTest::addColumn<double>("down");
        QTest::addColumn<bool>("boxOnRight");
        QTest::newRow("left, middle") << 0.3 << 0.5 << true;
        QTest::newRow("near the bottom right corner") << 0.97 << 0.99 << false;
    }

    void boxBesideCursorInsideCanvas() {
        QFETCH(double, across);
        QFETCH(double, down);
        QFETCH(bool, boxOnRight);
        DataPlot plot;
        plot.resize(600, 300);
        plot.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plot));
        // Samples across the whole time axis, so that there is text everywhere.
        plot.updateData(DataPlot::ACC_X, {8, 16}, {-5, 5}, false);
        plot.setTimeRange(8.0, 16.0, false);
        plot.setValRange(-10.0, 10.0, true);
        QWidget* canvas = plot.canvas();
        const auto* tracker = canvas->findChild<CurveTracker*>();

        const QPoint cursor(int(across * canvas->width()), int(down * canvas->height()));
        hover(canvas, cursor);
        QVERIFY(tracker->isActive());
        QCOMPARE(tracker->trackerPosition(), cursor);

        const QRect box = tracker->trackerRect(tracker->trackerFont());
        QVERIFY(!box.isEmpty());
        QVERIFY(canvas->contentsRect().contains(box));
        QVERIFY(!box.contains(cursor));
        QCOMPARE(box.left() > cursor.x(), boxOnRight);
        QCOMPARE(box.right() < cursor.x(), !boxOnRight);
    }
};

WIDGET_TEST_MAIN(TestDataPlot)
#include "tst_dataplot.moc"
