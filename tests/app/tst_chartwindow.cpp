// How much of the series the chart takes, how often it redraws, and its time axis.
#include <QtTest>

#include "ChartWindow.h"

class TestChartWindow : public QObject {
    Q_OBJECT

private slots:
    void imuWindowCarriesThirtyPercentMore_data() {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<int>("start");
        QTest::newRow("5 s of a long series") << 100000 << 5 << 100000 - 2600;
        QTest::newRow("60 s of a long series") << 100000 << 60 << 100000 - 31200;
        QTest::newRow("shorter than the window") << 1000 << 5 << 0;
        QTest::newRow("exactly the window") << 2600 << 5 << 0;
        QTest::newRow("empty") << 0 << 10 << 0;
    }
    void imuWindowCarriesThirtyPercentMore() {
        QFETCH(int, size);
        QFETCH(int, seconds);
        QFETCH(int, start);
        QCOMPARE(chart::imuStartIndex(size, seconds, 400), start);
    }

    void eventWindowHasNoMargin() {
        QCOMPARE(chart::eventStartIndex(1000, 10, 50), 500);
        QCOMPARE(chart::eventStartIndex(400, 10, 50), 0);
        QCOMPARE(chart::eventStartIndex(250, 10, 25), 0);
    }

    void redrawSlowsDownWithMorePoints_data() {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("period");
        QTest::newRow("5 s at 400 Hz") << 2600 << 25;
        QTest::newRow("last at 25 ms") << 12499 << 25;
        QTest::newRow("first proportional") << 12500 << 25;
        QTest::newRow("last proportional") << 249999 << 499;
        QTest::newRow("capped") << 250000 << 500;
    }
    void redrawSlowsDownWithMorePoints() {
        QFETCH(int, count);
        QFETCH(int, period);
        QCOMPARE(chart::refreshPeriodMs(count), period);
    }

    void timeAxisGrowsThenScrolls() {
        QVector<double> time;
        for (int i = 0; i <= 400; ++i) time.append(100.0 + i * 0.0025);  // one second
        chart::TimeAxis axis = chart::timeAxisFor(time, 5);
        QCOMPARE(axis.min, 100.0);
        QCOMPARE(axis.max, 105.0);
        for (int i = 401; i <= 4000; ++i) time.append(100.0 + i * 0.0025);  // ten seconds
        axis = chart::timeAxisFor(time, 5);
        QCOMPARE(axis.max, time.last());
        QCOMPARE(axis.min, time.last() - 5.0);
        axis = chart::timeAxisFor({}, 5);
        QCOMPARE(axis.max, 0.0);
    }

    void timeRangeFromTheComboText_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("seconds");
        QTest::newRow("5 sec") << "Last 5 sec" << 5;
        QTest::newRow("minutes") << "Last 2 min" << 120;
        QTest::newRow("hours") << "Last 1 hours" << 3600;
        QTest::newRow("unknown unit") << "Last 7 fortnights" << 7;
        QTest::newRow("unit case matters") << "Last 3 MIN" << 3;
        QTest::newRow("empty") << "" << -1;
    }
    void timeRangeFromTheComboText() {
        QFETCH(QString, text);
        QFETCH(int, seconds);
        QCOMPARE(chart::timeRangeFromText(text, "sec", "min", "hours"), seconds);
    }
};

QTEST_APPLESS_MAIN(TestChartWindow)
#include "tst_chartwindow.moc"
