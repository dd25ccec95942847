#include <QtTest>

#include "orientcount.h"

namespace {

constexpr float kOneCell = 100.0f / 1728.0f;

// How many cells two orientations mark together: 1 if they share a cell, 2 if not.
int cellsMarked(float a1, float a2, float a3, float b1, float b2, float b3) {
    OrientCount count;
    count.addOrientation(a1, a2, a3);
    count.addOrientation(b1, b2, b3);
    return qRound(count.getPercNotZero() / kOneCell);
}

}  // namespace

class TestOrientCount : public QObject {
    Q_OBJECT

private slots:
    void newCounterIsEmpty();
    void oneOrientationIsOneCell();
    void repeatedVisitsCountOnce();
    void sameCell_data();
    void sameCell();
    void differentCell_data();
    void differentCell();
    void everyCellGivesExactlyHundred();
};

void TestOrientCount::newCounterIsEmpty() {
    OrientCount count;
    QCOMPARE(count.getPercNotZero(), 0.0f);
}

void TestOrientCount::oneOrientationIsOneCell() {
    OrientCount count;
    count.addOrientation(0.0f, 0.0f, 0.0f);
    QCOMPARE(count.getPercNotZero(), 100.0f / 1728.0f);
    QVERIFY(qAbs(count.getPercNotZero() - 0.0578704f) < 1e-6f);
}

void TestOrientCount::repeatedVisitsCountOnce() {
    OrientCount count;
    for (int i = 0; i < 50; ++i) {
        count.addOrientation(100.0f, 200.0f, 300.0f);
    }
    QCOMPARE(count.getPercNotZero(), kOneCell);
}

void TestOrientCount::sameCell_data() {
    QTest::addColumn<float>("a1");
    QTest::addColumn<float>("a2");
    QTest::addColumn<float>("a3");
    QTest::addColumn<float>("b1");
    QTest::addColumn<float>("b2");
    QTest::addColumn<float>("b3");
    QTest::newRow("360 wraps to bin 0") << 360.f << 0.f << 0.f << 0.f << 0.f << 0.f;
    QTest::newRow("-30 is bin 11") << -30.f << 0.f << 0.f << 330.f << 0.f << 0.f;
    QTest::newRow("725 is 5 degrees") << 725.f << 0.f << 0.f << 0.f << 0.f << 0.f;
    QTest::newRow("29.9 still bin 0") << 29.9f << 0.f << 0.f << 0.f << 0.f << 0.f;
    QTest::newRow("30 starts bin 1") << 30.f << 0.f << 0.f << 59.9f << 0.f << 0.f;
    QTest::newRow("-720 is 0") << 0.f << -720.f << 0.f << 0.f << 0.f << 0.f;
    QTest::newRow("second angle wraps") << 0.f << 360.f << 0.f << 0.f << 10.f << 0.f;
    QTest::newRow("third angle wraps") << 0.f << 0.f << -1.f << 0.f << 0.f << 345.f;
}

void TestOrientCount::sameCell() {
    QFETCH(float, a1);
    QFETCH(float, a2);
    QFETCH(float, a3);
    QFETCH(float, b1);
    QFETCH(float, b2);
    QFETCH(float, b3);
    QCOMPARE(cellsMarked(a1, a2, a3, b1, b2, b3), 1);
}

void TestOrientCount::differentCell_data() {
    QTest::addColumn<float>("a1");
    QTest::addColumn<float>("a2");
    QTest::addColumn<float>("a3");
    QTest::addColumn<float>("b1");
    QTest::addColumn<float>("b2");
    QTest::addColumn<float>("b3");
    QTest::newRow("30 is not bin 0") << 30.f << 0.f << 0.f << 0.f << 0.f << 0.f;
    QTest::newRow("-30 is not bin 0") << -30.f << 0.f << 0.f << 0.f << 0.f << 0.f;
    QTest::newRow("359.9 is not bin 0") << 359.9f << 0.f << 0.f << 0.f << 0.f << 0.f;
    // Swapping angles between positions must land elsewhere: each angle has its own axis.
    QTest::newRow("first vs second") << 30.f << 0.f << 0.f << 0.f << 30.f << 0.f;
    QTest::newRow("second vs third") << 0.f << 30.f << 0.f << 0.f << 0.f << 30.f;
    QTest::newRow("first vs third") << 30.f << 0.f << 0.f << 0.f << 0.f << 30.f;
}

void TestOrientCount::differentCell() {
    QFETCH(float, a1);
    QFETCH(float, a2);
    QFETCH(float, a3);
    QFETCH(float, b1);
    QFETCH(float, b2);
    QFETCH(float, b3);
    QCOMPARE(cellsMarked(a1, a2, a3, b1, b2, b3), 2);
}

// Also proves the 1728 bins map to 1728 distinct cells, and that the percentage reaches 100.0
// exactly in single precision.
void TestOrientCount::everyCellGivesExactlyHundred() {
    OrientCount count;
    float last = 0.0f;
    for (int i = 0; i < 12; ++i) {
        for (int j = 0; j < 12; ++j) {
            for (int k = 0; k < 12; ++k) {
                count.addOrientation(15.0f + 30.0f * i, 15.0f + 30.0f * j, 15.0f + 30.0f * k);
                const float now = count.getPercNotZero();
                QVERIFY(now > last);
                last = now;
            }
        }
    }
    QCOMPARE(count.getPercNotZero(), 100.0f);
    QVERIFY(count.getPercNotZero() == 100.0f);
}

QTEST_APPLESS_MAIN(TestOrientCount)
#include "tst_orientcount.moc"
