#include <qwt_picker_machine.h>
#include <qwt_plot_canvas.h>
#include <qwt_text.h>

#include <QtTest>
#include <QtWidgets>

#include "CurveTracker.h"
#include "DataPlot.h"
#include "WidgetTestMain.h"

namespace {

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

class TestCurveTracker : public QObject {
    Q_OBJECT

private slots:
    void chartHasTracker();
    void emptyLeftOfEveryCurve();
    void valuesOfCurvesAroundCursor_data();
    void valuesOfCurvesAroundCursor();
    void hiddenCurvesLeftOut();
    void boxBesideCursorInsideCanvas_data();
    void boxBesideCursorInsideCanvas();
};

void TestCurveTracker::chartHasTracker() {
    DataPlot plot;
    auto* tracker = plot.canvas()->findChild<CurveTracker*>();
    QVERIFY(tracker);
    QCOMPARE(tracker->rubberBandPen().color(), QColor("MediumOrchid"));
    QVERIFY(dynamic_cast<const QwtPickerTrackerMachine*>(tracker->stateMachine()));
}

void TestCurveTracker::emptyLeftOfEveryCurve() {
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

void TestCurveTracker::valuesOfCurvesAroundCursor_data() {
    QTest::addColumn<double>("time");
    QTest::addColumn<QString>("text");
    QTest::newRow("before both") << 9.99 << QString();
    QTest::newRow("first sample") << 10.0 << red("1.00");
    QTest::newRow("between samples, interpolated") << 10.25 << red("1.25");
    QTest::newRow("both curves, in plot order") << 11.5 << red("3.00") + "<br>" + green("-2.00");
    QTest::newRow("last sample of the shorter curve")
        << 12.0 << red("4.00") + "<br>" + green("-3.00");
    QTest::newRow("after the shorter curve") << 12.5 << red("6.00");
    QTest::newRow("last sample") << 13.0 << red("8.00");
    QTest::newRow("after both") << 13.01 << QString();
}

void TestCurveTracker::valuesOfCurvesAroundCursor() {
    QFETCH(double, time);
    QFETCH(QString, text);
    DataPlot plot;
    feed(plot);
    const TextProbe probe(plot.canvas());
    QCOMPARE(probe.trackerTextF(QPointF(time, 0.0)).text(), text);
}

void TestCurveTracker::hiddenCurvesLeftOut() {
    DataPlot plot;
    feed(plot);
    plot.updateData(DataPlot::GYR_Z, {10, 14}, {0, 40}, false);
    const TextProbe probe(plot.canvas());
    plot.setSensorType(DataPlot::GYROSCOPE);
    QCOMPARE(probe.trackerTextF(QPointF(11.5, 0.0)).text(),
             QString("<font color=#00beff>15.00</font>"));
}

void TestCurveTracker::boxBesideCursorInsideCanvas_data() {
    QTest::addColumn<double>("across");  // cursor position as a share of the canvas width
    QTest::addColumn<double>("down");
    QTest::addColumn<bool>("boxOnRight");
    QTest::newRow("left, middle") << 0.3 << 0.5 << true;
    QTest::newRow("near the right edge") << 0.97 << 0.5 << false;
    QTest::newRow("near the top") << 0.5 << 0.01 << true;
    QTest::newRow("near the bottom right corner") << 0.97 << 0.99 << false;
}

void TestCurveTracker::boxBesideCursorInsideCanvas() {
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

WIDGET_TEST_MAIN(TestCurveTracker)
#include "tst_curvetracker.moc"
