// The bounded sample store: rows keep their numbers while old ones leave, each group of series
// keeps its own time span, no rate pushes the series past their memory budget, and what the
// chart was handed stays readable after the store has let go of it.
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ChartSamples.h"
#include "SensorSamples.h"

namespace {

constexpr double kMiB = 1024.0 * 1024.0;

// A row whose every value tells its row number and time apart.
ImuRow rowAt(std::int64_t n, double t) {
    ImuRow r{};
    r.accX = static_cast<double>(n);
    r.gyroZ = -static_cast<double>(n);
    r.imuTime = t;
    r.imuRate = 1.0 / 0.0025;
    return r;
}

// Appends `seconds` of rows at `imuRate` Hz, with magnetometer and barometer samples at their own
// rates, continuing from where the series stand. Returns the time of the newest row.
double sample(SensorSeries& s, double seconds, double imuRate, double magRate = 50.0,
              double baroRate = 25.0) {
    const std::int64_t first = s.endRow().value();
    const auto rows = static_cast<std::int64_t>(seconds * imuRate);
    double t = 0.0;
    for (std::int64_t n = first; n < first + rows; ++n) {
        t = 1000.0 + static_cast<double>(n) / imuRate;
        s.appendImuRow(rowAt(n, t));
        const auto events = [&](double rate) {
            return std::floor(t * rate) != std::floor((t - 1.0 / imuRate) * rate);
        };
        if (events(magRate)) s.appendMagnetometerSample(magRate, t, 2.0, 3.0, t);
        if (events(baroRate)) s.appendBarometerSample(baroRate, 1013.0, t, 40.0, 41.0);
    }
    return t;
}

double keptSeconds(const SampleColumn& time) { return time.last() - time.first(); }

}  // namespace

class TestSampleSeries : public QObject {
    Q_OBJECT

private slots:
    // Every kept row still holds what was appended as that row, across the chunks that left.
    void rowsKeepTheirNumbersWhileOldRowsLeave() {
        SensorSeries s;
        sample(s, 600.0, 400.0);
        const SampleColumn& acc = s.accX;
        QCOMPARE(acc.endRow().value(), 600 * 400);
        QVERIFY2(acc.firstRow().value() > 0, "nothing has left the series after ten minutes");
        for (RowNumber row = acc.firstRow(); row < acc.endRow(); ++row) {
            QCOMPARE(acc.at(row), static_cast<double>(row.value()));
            QCOMPARE(s.gyroZ.at(row), -static_cast<double>(row.value()));
        }
        QCOMPARE(acc.last(), static_cast<double>(600 * 400 - 1));
        // The series of one group leave together.
        QCOMPARE(s.imuRate.firstRow(), acc.firstRow());
        QCOMPARE(s.magSampleZ.firstRow(), s.magSampleTime.firstRow());
        QCOMPARE(s.tempSampleRight.firstRow(), s.baroSampleTime.firstRow());
    }

    // At the nominal rates every group keeps the chart's longest window with its margin, and
    // not much more: the series stop growing.
    void nominalRatesKeepTheirTimeSpanAndStopGrowing() {
        SensorSeries s;
        const std::pair<const SampleColumn*, double> timeBases[] = {
            {&s.imuTime, 400.0}, {&s.magSampleTime, 50.0}, {&s.baroSampleTime, 25.0}};
        // The most chunks each group holds while `seconds` are sampled. A group's chunks come
        // and go with a period of one chunk's time span, at most 164 s (the barometer's).
        const auto mostChunksWhile = [&](double seconds) {
            QVector<int> most(3, 0);
            for (double done = 0.0; done < seconds; done += 1.0) {
                sample(s, 1.0, 400.0);
                for (int g = 0; g < 3; ++g)
                    most[g] = std::max(most[g], timeBases[g].first->chunkCount());
            }
            return most;
        };
        mostChunksWhile(200.0);
        const QVector<int> settled = mostChunksWhile(200.0);
        QCOMPARE(mostChunksWhile(1400.0), settled);
        QVERIFY2(s.bytes() < 16 * kMiB, qPrintable(QString::number(s.bytes() / kMiB)));
        for (const auto& [time, rate] : timeBases) {
            const double chunkSeconds = SampleColumn::kChunkRows / rate;
            QVERIFY2(keptSeconds(*time) >= SensorSeries::kKeptSeconds,
                     qPrintable(QString::number(keptSeconds(*time))));
            QVERIFY2(keptSeconds(*time) <= SensorSeries::kKeptSeconds + chunkSeconds,
                     qPrintable(QString::number(keptSeconds(*time))));
        }
    }

    // Where the time span would not fit, the series keep what the budget allows, even when every
    // group runs at the IMU's rate or the time base stands still.
    void highRatesKeepWhatFitsInTheBudget_data() {
        QTest::addColumn<double>("rate");
        QTest::addColumn<double>("minimumKeptSeconds");
        QTest::newRow("4 kHz") << 4000.0 << 60.0;
        QTest::newRow("20 kHz") << 20000.0 << 12.0;
    }
    void highRatesKeepWhatFitsInTheBudget() {
        QFETCH(double, rate);
        QFETCH(double, minimumKeptSeconds);
        SensorSeries s;
        const double seconds = 1.5 * SensorSeries::kBudgetBytes / (34 * sizeof(double) * rate);
        sample(s, seconds, rate, rate, rate);
        // A time base that stands still: only the budget lets rows go.
        for (std::int64_t n = 0; n < s.endRow().value(); ++n)
            s.appendFallbackTemperatures(5.0, 40.0, 41.0);
        QVERIFY2(s.bytes() <= SensorSeries::kBudgetBytes,
                 qPrintable(QString("%1 MiB").arg(s.bytes() / kMiB)));
        QVERIFY2(keptSeconds(s.imuTime) >= minimumKeptSeconds,
                 qPrintable(QString::number(keptSeconds(s.imuTime))));
        QVERIFY(s.tempFallbackTime.size() < s.tempFallbackTime.endRow().value());
    }

    // The chart draws later, without the lock, from what it was handed: those rows stay
    // readable after the store has let them go, and later appends do not show in them.
    void whatTheChartWasHandedOutlivesTheStore() {
        SensorSeries s;
        sample(s, 80.0, 400.0);
        const RowNumber start = s.imuTime.endRow() - 31200;
        const ChartSamples curve(s.imuTime.slice(start), s.accX.slice(start));
        QCOMPARE(int(curve.size()), 31200);
        sample(s, 600.0, 400.0);
        QVERIFY(s.accX.firstRow() > start + 31200);
        for (size_t i = 0; i < curve.size(); ++i) {
            const double row = static_cast<double>(start.value()) + static_cast<double>(i);
            QCOMPARE(curve.sample(i), QPointF(1000.0 + row / 400.0, row));
        }
        // Run by run, the same points, chunk boundaries included.
        size_t i = 0;
        while (i < curve.size()) {
            const SampleRuns::Run run = curve.runFrom(i);
            QVERIFY(run.count >= 1 && i + run.count <= curve.size());
            for (size_t k = 0; k < run.count; ++k)
                QCOMPARE(QPointF(run.x[k], run.y[k]), curve.sample(i + k));
            i += run.count;
        }
    }

    void clearingStartsTheNumberingAgain() {
        SensorSeries s;
        sample(s, 200.0, 400.0);
        s.clear();
        QCOMPARE(s.bytes(), std::size_t{0});
        QVERIFY(s.imuTime.isEmpty() && s.magSampleTime.isEmpty());
        s.appendImuRow(rowAt(0, 5.0));
        QCOMPARE(s.accX.firstRow().value(), 0);
        QCOMPARE(s.endRow().value(), 1);
        QCOMPARE(s.imuTime.last(), 5.0);
    }
};

QTEST_APPLESS_MAIN(TestSampleSeries)
#include "tst_sampleseries.moc"
