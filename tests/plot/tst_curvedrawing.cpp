// The chart paints its curves with fills, column by column, instead of stroking every sample.
// These tests hold that to the pixels Qwt's own drawing gives for the same samples and pen.
#include <qwt_painter.h>
#include <qwt_plot_curve.h>
#include <qwt_scale_map.h>

#include <QtTest>
#include <QtWidgets>
#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

#include "DataCurve.h"
#include "DataPlot.h"
#include "FilledStroke.h"
#include "PlotImages.h"
#include "PolylineChunks.h"
#include "SampleRuns.h"
#include "WidgetTestMain.h"

namespace {

// The pictures must agree on all but a negligible share of pixels.
constexpr double kMaxDifferingShare = 0.005;

struct Series {
    QVector<double> t;
    QVector<double> v;
};

using SeriesSet = QVector<Series>;

// Three sensor axes at `rate` Hz over `seconds`, starting at `start`: slow motion, noise, and a
// knock now and then.
SeriesSet imuLike(double start, double seconds, double rate, unsigned seed) {
    std::mt19937 rng(seed);
    std::normal_distribution<double> noise(0.0, 0.1);
    SeriesSet set(3);
    const int n = int(seconds * rate);
    for (int i = 0; i < n; ++i) {
        const double t = start + i / rate;
        const double knock = std::fmod(t, 2.3) < 0.02 ? 4.0 : 0.0;
        const double values[] = {1.5 * std::sin(t) + knock + noise(rng),
                                 -0.5 + std::cos(0.7 * t) - knock + noise(rng),
                                 9.81 + 0.4 * std::sin(3.1 * t) + noise(rng)};
        for (int a = 0; a < 3; ++a) {
            set[a].t << t;
            set[a].v << values[a];
        }
    }
    return set;
}

Series fromPoints(std::initializer_list<QPointF> points) {
    Series s;
    for (const QPointF& p : points) {
        s.t << p.x();
        s.v << p.y();
    }
    return s;
}

// A random polyline on whole (or, for `halfSteps`, half) pixels: dense columns, wide jumps, or
// a mix.
QPolygonF randomPolyline(std::mt19937& rng, int kind, const QSize& size) {
    QPolygonF line;
    const int n = 1 + int(rng() % 300);
    double x = rng() % size.width(), y = rng() % size.height();
    for (int i = 0; i < n; ++i) {
        switch (kind) {
            case 0:  // many points per column
                x += rng() % 4 == 0 ? 1 : 0;
                y += int(rng() % 9) - 4;
                break;
            case 1:  // a few pixels apart, any direction
                x += int(rng() % 7) - 1;
                y += int(rng() % 15) - 7;
                break;
            case 2:  // anywhere
                x = rng() % size.width();
                y = rng() % size.height();
                break;
            default:  // half pixels, as clipping at the canvas edge can give
                x += 0.5 * (int(rng() % 5) - 2);
                y += 0.5 * (int(rng() % 5) - 2);
                break;
        }
        line << QPointF(x, y);
        if (rng() % 12 == 0) {
            line << QPointF(x, y);  // repeated points, as the clipper can leave
        }
    }
    return line;
}

// Sets QwtPainter's global splitting for one scope, also when a check fails early.
class SplittingScope {
public:
    explicit SplittingScope(bool on) : before(QwtPainter::polylineSplitting()) {
        QwtPainter::setPolylineSplitting(on);
    }
    ~SplittingScope() { QwtPainter::setPolylineSplitting(before); }

private:
    bool before;
};

QImage blankImage(const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    return image;
}

// Draws one curve item straight onto an image through `setup`'s painter.
QImage drawItem(const QwtPlotCurve& curve, const std::function<void(QPainter&)>& setup) {
    QImage image = blankImage(QSize(300, 200));
    QPainter painter(&image);
    setup(painter);
    QwtScaleMap xMap, yMap;
    xMap.setScaleInterval(0.0, 10.0);
    xMap.setPaintInterval(0.0, 200.0);
    yMap.setScaleInterval(-2.0, 2.0);
    yMap.setPaintInterval(130.0, 0.0);
    painter.setRenderHint(QPainter::Antialiasing,
                          curve.testRenderHint(QwtPlotItem::RenderAntialiased) ||
                              painter.testRenderHint(QPainter::Antialiasing));
    curve.draw(&painter, xMap, yMap, QRectF(0, 0, 200, 130));
    return image;
}

// The samples of a series cut into runs at the given sample indexes, as a chunked store holds
// them.
class SeriesInRuns : public SampleRuns {
public:
    SeriesInRuns(Series series, QVector<int> cuts) : s(std::move(series)), runStarts(cuts) {
        runStarts.prepend(0);
        runStarts.append(s.t.size());
    }
    size_t size() const override { return size_t(s.t.size()); }
    QPointF sample(size_t i) const override { return {s.t[int(i)], s.v[int(i)]}; }
    QRectF boundingRect() const override { return qwtBoundingRect(*this); }
    Run runFrom(size_t i) const override {
        const int end = *std::upper_bound(runStarts.begin(), runStarts.end(), int(i));
        return {s.t.constData() + i, s.v.constData() + i, size_t(end) - i};
    }

private:
    Series s;
    QVector<int> runStarts;
};

}  // namespace

Q_DECLARE_METATYPE(SeriesSet)

class TestCurveDrawing : public QObject {
    Q_OBJECT

private slots:
    void filledStrokeMatchesQwtPolyline_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("splitting");
        const char* const kinds[] = {"dense columns", "short jumps", "anywhere", "half pixels"};
        for (int kind = 0; kind < 4; ++kind) {
            QTest::addRow("%s, in pieces", kinds[kind]) << kind << true;
            QTest::addRow("%s, whole", kinds[kind]) << kind << false;
        }
    }

    void filledStrokeMatchesQwtPolyline() {
        QFETCH(int, kind);
        QFETCH(bool, splitting);
        const SplittingScope scope(splitting);
        const QSize size(120, 90);
        std::mt19937 rng(1000u + unsigned(kind));
        for (int round = 0; round < 60; ++round) {
            const QPolygonF line = randomPolyline(rng, kind, size);
            QImage stroked = blankImage(size), filled = blankImage(size);
            {
                QPainter painter(&stroked);
                painter.setPen(QPen(Qt::red, 2.0, Qt::SolidLine));
                QwtPainter::drawPolyline(&painter, line);
            }
            {
                QPainter painter(&filled);
                FilledStroke(painter, QBrush(Qt::red), 2.0, polylineChunkSegments()).draw(line);
            }
            // The fills stand in for the stroke pixel for pixel.
            QVERIFY2(stroked == filled,
                     qPrintable(QString("round %1: %2 % of pixels differ")
                                    .arg(round)
                                    .arg(100.0 * differingShare(stroked, filled))));
        }
    }

    void chartMatchesPlainCurves_data() {
        QTest::addColumn<SeriesSet>("set");
        QTest::addColumn<double>("t0");
        QTest::addColumn<double>("t1");
        QTest::addColumn<double>("v0");
        QTest::addColumn<double>("v1");
        QTest::addColumn<bool>("visible");
        // The live chart: far more samples than pixel columns, the first 30 % left of the axis.
        QTest::newRow("400 Hz, 13 s in a 10 s window")
            << imuLike(0.0, 13.0, 400.0, 1) << 3.0 << 13.0 << -11.0 << 11.0 << true;
        QTest::newRow("sparse, columns apart")
            << imuLike(0.0, 10.0, 6.0, 3) << 0.0 << 10.0 << -11.0 << 11.0 << true;
        // Knocks and values beyond the value range: clipped at the top and bottom too.
        QTest::newRow("clipped at every edge")
            << imuLike(0.0, 13.0, 400.0, 4) << 4.0 << 9.0 << -1.0 << 1.5 << true;
        QTest::newRow("time runs back")
            << SeriesSet{fromPoints({{1, 0}, {5, 3}, {3, -2}, {3.01, 2}, {8, 1}, {2, -4}, {9, 0}})}
            << 0.0 << 10.0 << -5.0 << 5.0 << true;
        QTest::newRow("two samples")
            << SeriesSet{fromPoints({{2, -3}, {7, 4}})} << 0.0 << 10.0 << -5.0 << 5.0 << true;
        // A polyline of one point draws nothing, either way.
        QTest::newRow("one sample")
            << SeriesSet{fromPoints({{5, 0}})} << 0.0 << 10.0 << -5.0 << 5.0 << false;
    }

    // The chart with its own curves, then the same plot with its curves hidden and plain
    // QwtPlotCurves of the same pens given the same samples.
    void chartMatchesPlainCurves() {
        QFETCH(SeriesSet, set);
        QFETCH(double, t0);
        QFETCH(double, t1);
        QFETCH(double, v0);
        QFETCH(double, v1);
        QFETCH(bool, visible);
        DataPlot plot;
        plot.resize(520, 260);
        plot.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plot));
        const DataPlot::DataType types[] = {DataPlot::ACC_X, DataPlot::ACC_Y, DataPlot::ACC_Z};
        for (int a = 0; a < set.size(); ++a) {
            plot.updateData(types[a], set[a].t, set[a].v, false);
        }
        plot.setTimeRange(t0, t1, false);
        plot.setValRange(v0, v1, false);
        plot.replot();
        const QImage chart = canvasImage(plot);

        const QwtPlotItemList ours = plot.itemList(QwtPlotItem::Rtti_PlotCurve);
        for (QwtPlotItem* item : ours) {
            const auto* curve = static_cast<QwtPlotCurve*>(item);
            if (curve->isVisible()) {
                auto* plain = new QwtPlotCurve();
                plain->setPen(curve->pen());
                QVector<QPointF> samples;
                for (size_t i = 0; i < curve->dataSize(); ++i) {
                    samples << curve->sample(i);
                }
                plain->setSamples(samples);
                plain->attach(&plot);
            }
            plot.showCurve(item, false, false);
        }
        plot.replot();
        const QImage reference = canvasImage(plot);
        for (QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotCurve)) {
            item->setVisible(false);
        }
        plot.replot();
        const QImage empty = canvasImage(plot);

        // Otherwise two empty pictures would pass.
        QCOMPARE(chart != empty, visible);
        const double share = differingShare(chart, reference);
        QVERIFY2(share <= kMaxDifferingShare,
                 qPrintable(QString("%1 % of pixels differ").arg(100 * share)));
    }

    // Samples that lie in runs (the sample store's chunks) are drawn as the same samples in one
    // array are, whatever the runs' lengths.
    void samplesInRunsDrawLikeOneArray_data() {
        QTest::addColumn<QVector<int>>("cuts");
        QTest::newRow("one run") << QVector<int>{};
        QTest::newRow("chunks") << QVector<int>{1000, 2000, 3000};
        QTest::newRow("runs of one sample") << QVector<int>{1, 2, 3, 1500, 1501, 3999};
    }
    void samplesInRunsDrawLikeOneArray() {
        QFETCH(QVector<int>, cuts);
        const Series series = imuLike(0.0, 10.0, 400.0, 6)[0];
        DataCurve inRuns("runs"), inOneArray("array");
        for (DataCurve* curve : {&inRuns, &inOneArray}) {
            curve->setLine(QColor(255, 87, 87), 2.0);
        }
        inRuns.setData(new SeriesInRuns(series, cuts));
        inOneArray.setSamples(series.t, series.v);
        const auto plainPainter = [](QPainter&) {};
        const QImage drawn = drawItem(inRuns, plainPainter);
        QCOMPARE(drawn, drawItem(inOneArray, plainPainter));
        QVERIFY(drawn != blankImage(drawn.size()));
    }

    // Where fills could not stand in for the stroke exactly, the chart's curve must draw just as a
    // plain one does.
    void otherPaintersDrawTheOrdinaryWay_data() {
        QTest::addColumn<int>("variant");
        QTest::newRow("scaled painter") << 0;
        QTest::newRow("antialiased") << 1;
        QTest::newRow("dashed pen") << 2;
        QTest::newRow("odd pen width") << 3;
        QTest::newRow("half-pixel offset") << 4;
    }

    void otherPaintersDrawTheOrdinaryWay() {
        QFETCH(int, variant);
        const SeriesSet set = imuLike(0.0, 10.0, 400.0, 5);
        DataCurve ours("ours");
        QwtPlotCurve plain("plain");
        QPen pen(QColor(255, 87, 87), variant == 3 ? 3.0 : 2.0,
                 variant == 2 ? Qt::DashLine : Qt::SolidLine);
        ours.setPen(pen);
        plain.setPen(pen);
        ours.setSamples(set[0].t, set[0].v);
        plain.setSamples(set[0].t, set[0].v);
        auto setup = [variant](QPainter& painter) {
            if (variant == 0) {
                painter.scale(1.3, 1.3);
            } else if (variant == 1) {
                painter.setRenderHint(QPainter::Antialiasing);
            } else if (variant == 4) {
                painter.translate(0.5, 0.5);
            }
        };
        QCOMPARE(drawItem(ours, setup), drawItem(plain, setup));
    }
};

WIDGET_TEST_MAIN(TestCurveDrawing)
#include "tst_curvedrawing.moc"
