// What the main window shows of the samples: the live readout's texts, byte for byte, its rate
// label, and how much of the series the chart takes and how often it redraws. The time axis is
// checked on the main window.
#include <QtTest>

#include "ChartSpan.h"
#include "SensorReadout.h"

namespace {

ImuRow oneRow() {
    ImuRow r{};
    r.accX = 9.81, r.accY = 0.5, r.accZ = -0.25;
    r.gyroX = 1.5, r.gyroY = -12.345, r.gyroZ = 0.0;
    r.magX = 21.0, r.magY = -3.0625, r.magZ = -42.5;
    r.orientX = -179.5, r.orientY = 0.001, r.orientZ = 45.0;
    r.pressure = 1013.25;
    r.tempLeft = 41.256, r.tempRight = 7.0;
    return r;
}

}  // namespace

class TestReadout : public QObject {
    Q_OBJECT

private slots:
    void rateNeverExceedsTheNominalRate_data() {
        QTest::addColumn<double>("nominal");
        QTest::addColumn<double>("effective");
        QTest::addColumn<QString>("text");
        QTest::newRow("just below") << 400.0 << 399.2 << "400 Hz";
        QTest::newRow("far above") << 400.0 << 612.0 << "400 Hz";
        QTest::newRow("rounded up") << 50.0 << 48.01 << "49 Hz";
        QTest::newRow("nothing yet") << 400.0 << 0.0 << "0 Hz";
    }
    void rateNeverExceedsTheNominalRate() {
        QFETCH(double, nominal);
        QFETCH(double, effective);
        QFETCH(QString, text);
        QCOMPARE(rateText(nominal, effective), text);
    }

    // The three fields and the rate label of each sensor, separated by "|".
    void fieldTexts_data() {
        QTest::addColumn<QString>("sensor");
        QTest::addColumn<QString>("texts");
        const auto row = [](const char* sensor, const char* texts) {
            QTest::newRow(sensor) << QString(sensor) << QString::fromUtf8(texts);
        };
        row("Accelerometer", "X 9.810 m/s²|Y 0.500 m/s²|Z -0.250 m/s²|400 Hz");
        row("Gyroscope", "X 1.500 °/s|Y -12.345 °/s|Z 0.000 °/s|400 Hz");
        row("Magnetometer", "X 21.000 µT|Y -3.063 µT|Z -42.500 µT|50 Hz");
        row("Orientation", "X -179.500°|Y 0.001°|Z 45.000°|400 Hz");
        row("Barometer", "Atmospheric Pressure 1013.25 hPa|||25 Hz");
        // Crossed on purpose: "Right" shows the left sensor.
        row("Camera Temperature", "Right 41.26°C|Left 7.00°C||25 Hz");
    }

    void fieldTexts() {
        QFETCH(QString, sensor);
        QFETCH(QString, texts);
        SensorLevels levels;
        levels.imuEffectiveRate = 400.4;
        levels.magEffectiveRate = 49.7;
        levels.baroEffectiveRate = 25.2;
        SensorSeries series;
        ImuRow older{};
        older.accX = older.gyroX = older.magX = older.orientX = older.pressure = older.tempLeft =
            1.0;
        series.appendImuRow(older);
        series.appendImuRow(oneRow());
        const SensorReadout r = readoutFor(*sensorNamed(sensor), series, levels);
        QCOMPARE(QStringList({r.fields[0], r.fields[1], r.fields[2], r.rate}).join('|'), texts);
    }

    void narrowValuesArePaddedToTheFieldWidth() {
        SensorSeries s;
        ImuRow row = oneRow();
        row.accX = 0.5;
        row.pressure = 5.5;
        s.appendImuRow(row);
        SensorLevels levels;
        QCOMPARE(readoutFor(Sensor::ACCELEROMETER, s, levels).fields[0], QString("X 0.500 m/s²"));
        QCOMPARE(readoutFor(Sensor::BAROMETER, s, levels).fields[0],
                 QString("Atmospheric Pressure    5.50 hPa"));
    }

    // ---- chart ----

    void imuWindowCarriesThirtyPercentMore_data() {
        QTest::addColumn<qint64>("first");
        QTest::addColumn<qint64>("end");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<qint64>("start");
        QTest::newRow("5 s of a long series") << 0ll << 100000ll << 5 << 100000ll - 2600;
        QTest::newRow("60 s of a long series") << 0ll << 100000ll << 60 << 100000ll - 31200;
        QTest::newRow("shorter than the window") << 0ll << 1000ll << 5 << 0ll;
        QTest::newRow("empty") << 0ll << 0ll << 10 << 0ll;
        // Rows beyond the 32-bit range, the oldest of them gone: the window is counted back
        // from the newest row and never reaches before the oldest kept one.
        QTest::newRow("after days")
            << 4'000'000'000ll << 4'000'040'000ll << 60 << 4'000'040'000ll - 31200;
        QTest::newRow("fewer kept than the window")
            << 4'000'020'000ll << 4'000'040'000ll << 60 << 4'000'020'000ll;
    }
    void imuWindowCarriesThirtyPercentMore() {
        QFETCH(qint64, first);
        QFETCH(qint64, end);
        QFETCH(int, seconds);
        QFETCH(qint64, start);
        QCOMPARE(chart::imuStartRow(RowNumber(first), RowNumber(end), seconds, 400).value(), start);
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
};

QTEST_APPLESS_MAIN(TestReadout)
#include "tst_readout.moc"
