#include <QtTest>

#include "orientcount.h"

// The coverage counter marks one of 12 x 12 x 12 cells of 30 degrees per orientation, each
// cell once, and reports the share of cells marked in percent.
class TestOrientCount : public QObject {
    Q_OBJECT

private slots:
    // Two orientations mark one cell when their angles fall in the same 30 degree bins after
    // wrapping into [0, 360).
    void binsOfTwoOrientations_data() {
        QTest::addColumn<QVector<float>>("a");
        QTest::addColumn<QVector<float>>("b");
        QTest::addColumn<int>("cells");
        const auto row = [](const char* name, QVector<float> a, QVector<float> b, int cells) {
            QTest::newRow(name) << a << b << cells;
        };
        row("same angles", {100, 200, 300}, {100, 200, 300}, 1);
        row("360 wraps to bin 0", {360, 0, 0}, {0, 0, 0}, 1);
        row("-30 is bin 11", {-30, 0, 0}, {330, 0, 0}, 1);
        row("725 is 5 degrees", {725, 0, 0}, {0, 0, 0}, 1);
        row("29.9 still bin 0", {29.9f, 0, 0}, {0, 0, 0}, 1);
        row("30 starts bin 1", {30, 0, 0}, {59.9f, 0, 0}, 1);
        row("second angle wraps", {0, 360, 0}, {0, 10, 0}, 1);
        row("third angle wraps", {0, 0, -1}, {0, 0, 345}, 1);
        row("30 is not bin 0", {30, 0, 0}, {0, 0, 0}, 2);
        row("-30 is not bin 0", {-30, 0, 0}, {0, 0, 0}, 2);
        row("359.9 is not bin 0", {359.9f, 0, 0}, {0, 0, 0}, 2);
        // Each angle has its own axis: swapping angles between positions lands elsewhere.
        row("first vs second", {30, 0, 0}, {0, 30, 0}, 2);
        row("second vs third", {0, 30, 0}, {0, 0, 30}, 2);
        row("first vs third", {30, 0, 0}, {0, 0, 30}, 2);
    }

    void binsOfTwoOrientations() {
        QFETCH(QVector<float>, a);
        QFETCH(QVector<float>, b);
        QFETCH(int, cells);
        OrientCount count;
        count.addOrientation(a[0], a[1], a[2]);
        count.addOrientation(b[0], b[1], b[2]);
        QCOMPARE(count.getPercNotZero(), cells * 100.0f / 1728.0f);
    }

    // The 1728 cells are distinct, and all of them make exactly 100.0 in single precision.
    void everyCellGivesExactlyHundred() {
        OrientCount count;
        QCOMPARE(count.getPercNotZero(), 0.0f);
        float last = 0.0f;
        for (int i = 0; i < 12; ++i) {
            for (int j = 0; j < 12; ++j) {
                for (int k = 0; k < 12; ++k) {
                    count.addOrientation(15.0f + 30.0f * i, 15.0f + 30.0f * j, 15.0f + 30.0f * k);
                    QVERIFY(count.getPercNotZero() > last);
                    last = count.getPercNotZero();
                }
            }
        }
        QVERIFY(count.getPercNotZero() == 100.0f);
    }
};

QTEST_APPLESS_MAIN(TestOrientCount)
#include "tst_orientcount.moc"
