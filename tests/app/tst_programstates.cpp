#include <QtTest>
#include <thread>

#include "programstates.h"

namespace {
constexpr int kStringCount = 4;
constexpr int kDoubleCount = 4;
constexpr int kIntCount = 19;
constexpr int kBoolCount = 4;

// Puts a distinct non-default value into every slot of every array.
void fillAllSlots() {
    for (int i = 0; i < kStringCount; ++i) ProgramStates::qstringAttr(i) = QString("s%1").arg(i);
    for (int i = 0; i < kDoubleCount; ++i) ProgramStates::setDoubleAttr(i, 0.5 + i);
    for (int i = 0; i < kIntCount; ++i) ProgramStates::setIntAttr(i, 100 + i);
    for (int i = 0; i < kBoolCount; ++i) ProgramStates::setBoolAttr(i, true);
}
}  // namespace

class TestProgramStates : public QObject {
    Q_OBJECT

private slots:
    // Reset after (not before) each case so that the first case sees the untouched store.
    void cleanup() { ProgramStates::resetStates(); }

    void startsZeroInitialised();
    void resetClearsEverySlot();
    void slotsAreIndependent();
    void switchBoolToggles();
    void referencesAliasStoredValues();
    void writesFromAnotherThreadAreSeen();
};

// Runs first: nothing has touched the store yet, so this checks the static initial state.
void TestProgramStates::startsZeroInitialised() {
    for (int i = 0; i < kStringCount; ++i) QVERIFY(ProgramStates::qstring_attributes[i].isEmpty());
    for (int i = 0; i < kDoubleCount; ++i)
        QCOMPARE(ProgramStates::double_attributes[i].load(), 0.0);
    for (int i = 0; i < kIntCount; ++i) QCOMPARE(ProgramStates::int_attributes[i].load(), 0);
    for (int i = 0; i < kBoolCount; ++i) QCOMPARE(ProgramStates::bool_attributes[i].load(), false);
}

void TestProgramStates::resetClearsEverySlot() {
    fillAllSlots();
    QCOMPARE(ProgramStates::getIntAttr(18), 118);
    QCOMPARE(ProgramStates::qstringAttr(1), QString("s1"));

    ProgramStates::resetStates();

    // The camera model code lives in the last int slot; the title in string 1.
    QCOMPARE(ProgramStates::getIntAttr(18), 0);
    QVERIFY(ProgramStates::qstringAttr(1).isEmpty());
    for (int i = 0; i < kStringCount; ++i) QVERIFY(ProgramStates::qstringAttr(i).isEmpty());
    for (int i = 0; i < kDoubleCount; ++i) QCOMPARE(ProgramStates::getDoubleAttr(i), 0.0);
    for (int i = 0; i < kIntCount; ++i) QCOMPARE(ProgramStates::getIntAttr(i), 0);
    for (int i = 0; i < kBoolCount; ++i) QCOMPARE(ProgramStates::getBoolAttr(i), false);
}

void TestProgramStates::slotsAreIndependent() {
    ProgramStates::setIntAttr(7, 1920);
    ProgramStates::setIntAttr(8, 1080);
    ProgramStates::setDoubleAttr(1, -1.0);
    ProgramStates::setDoubleAttr(2, 2.5);
    ProgramStates::setBoolAttr(3, true);
    ProgramStates::qstringAttr(2) = "replay.rec";

    QCOMPARE(ProgramStates::getIntAttr(6), 0);
    QCOMPARE(ProgramStates::getIntAttr(7), 1920);
    QCOMPARE(ProgramStates::getIntAttr(8), 1080);
    QCOMPARE(ProgramStates::getIntAttr(9), 0);
    QCOMPARE(ProgramStates::getDoubleAttr(1), -1.0);
    QCOMPARE(ProgramStates::getDoubleAttr(2), 2.5);
    QCOMPARE(ProgramStates::getDoubleAttr(3), 0.0);
    QCOMPARE(ProgramStates::getBoolAttr(2), false);
    QCOMPARE(ProgramStates::getBoolAttr(3), true);
    QVERIFY(ProgramStates::qstringAttr(1).isEmpty());
    QCOMPARE(ProgramStates::qstringAttr(2), QString("replay.rec"));
}

void TestProgramStates::switchBoolToggles() {
    ProgramStates::switchBoolAttr(1);
    QCOMPARE(ProgramStates::getBoolAttr(1), true);
    QCOMPARE(ProgramStates::getBoolAttr(0), false);
    QCOMPARE(ProgramStates::getBoolAttr(2), false);
    ProgramStates::switchBoolAttr(1);
    QCOMPARE(ProgramStates::getBoolAttr(1), false);

    ProgramStates::setBoolAttr(3, true);
    ProgramStates::switchBoolAttr(3);
    QCOMPARE(ProgramStates::getBoolAttr(3), false);
    ProgramStates::switchBoolAttr(3);
    QCOMPARE(ProgramStates::getBoolAttr(3), true);
}

void TestProgramStates::referencesAliasStoredValues() {
    std::atomic<int>& width = ProgramStates::intAttr(9);
    width = 1280;
    QCOMPARE(ProgramStates::getIntAttr(9), 1280);
    ProgramStates::setIntAttr(9, 640);
    QCOMPARE(width.load(), 640);
    QCOMPARE(&ProgramStates::intAttr(9), &width);

    std::atomic<double>& clickX = ProgramStates::doubleAttr(1);
    clickX = 12.25;
    QCOMPARE(ProgramStates::getDoubleAttr(1), 12.25);
    ProgramStates::setDoubleAttr(1, -1.0);
    QCOMPARE(clickX.load(), -1.0);

    QString& title = ProgramStates::qstringAttr(1);
    title = "Sensor Data Viewer";
    QCOMPARE(ProgramStates::qstringAttr(1), QString("Sensor Data Viewer"));
    ProgramStates::qstringAttr(1).append(" 2");
    QCOMPARE(title, QString("Sensor Data Viewer 2"));

    // References stay valid across a reset and see the cleared values.
    ProgramStates::resetStates();
    QCOMPARE(width.load(), 0);
    QCOMPARE(clickX.load(), 0.0);
    QVERIFY(title.isEmpty());
}

void TestProgramStates::writesFromAnotherThreadAreSeen() {
    std::thread writer([] {
        ProgramStates::setIntAttr(18, 3);
        ProgramStates::intAttr(7) = 1920;
        ProgramStates::setDoubleAttr(3, 0.75);
        ProgramStates::setBoolAttr(1, true);
        ProgramStates::qstringAttr(2) = "from worker";
    });
    writer.join();

    QCOMPARE(ProgramStates::getIntAttr(18), 3);
    QCOMPARE(ProgramStates::getIntAttr(7), 1920);
    QCOMPARE(ProgramStates::getDoubleAttr(3), 0.75);
    QCOMPARE(ProgramStates::getBoolAttr(1), true);
    QCOMPARE(ProgramStates::qstringAttr(2), QString("from worker"));
}

QTEST_GUILESS_MAIN(TestProgramStates)
#include "tst_programstates.moc"
