#include <QtTest>
#include <thread>

#include "programstates.h"

// The process-wide attribute store shared by the windows, the input module and the views.
class TestProgramStates : public QObject {
    Q_OBJECT

private slots:
    // Each slot holds its own value, references stay bound to their slot (also across a reset),
    // writes from another thread are seen, and a reset clears every slot.
    void slotsReferencesAndReset() {
        std::atomic<int>& width = ProgramStates::intAttr(7);
        std::atomic<double>& clickX = ProgramStates::doubleAttr(1);
        QString& title = ProgramStates::qstringAttr(1);
        ProgramStates::setIntAttr(7, 1920);
        ProgramStates::setIntAttr(8, 1080);
        clickX = 12.25;
        ProgramStates::setBoolAttr(3, true);
        title = "Sensor Data Viewer";
        std::thread([] { ProgramStates::setIntAttr(18, 3); }).join();

        QCOMPARE(width.load(), 1920);
        QCOMPARE(ProgramStates::getIntAttr(8), 1080);
        QCOMPARE(ProgramStates::getIntAttr(9), 0);
        QCOMPARE(ProgramStates::getIntAttr(18), 3);
        QCOMPARE(ProgramStates::getDoubleAttr(1), 12.25);
        QCOMPARE(ProgramStates::getDoubleAttr(2), 0.0);
        QVERIFY(ProgramStates::getBoolAttr(3) && !ProgramStates::getBoolAttr(2));
        QCOMPARE(ProgramStates::qstringAttr(1), QString("Sensor Data Viewer"));
        QVERIFY(ProgramStates::qstringAttr(2).isEmpty());
        ProgramStates::switchBoolAttr(3);
        QVERIFY(!ProgramStates::getBoolAttr(3));
        ProgramStates::switchBoolAttr(3);
        QVERIFY(ProgramStates::getBoolAttr(3));

        for (int i = 0; i < 4; ++i) ProgramStates::qstringAttr(i) = "set";
        for (int i = 0; i < 4; ++i) ProgramStates::setDoubleAttr(i, 1.5);
        for (int i = 0; i < 19; ++i) ProgramStates::setIntAttr(i, 7);
        for (int i = 0; i < 4; ++i) ProgramStates::setBoolAttr(i, true);
        ProgramStates::resetStates();
        QCOMPARE(width.load(), 0);
        QVERIFY(title.isEmpty());
        for (int i = 0; i < 4; ++i) QVERIFY(ProgramStates::qstringAttr(i).isEmpty());
        for (int i = 0; i < 4; ++i) QCOMPARE(ProgramStates::getDoubleAttr(i), 0.0);
        for (int i = 0; i < 19; ++i) QCOMPARE(ProgramStates::getIntAttr(i), 0);
        for (int i = 0; i < 4; ++i) QVERIFY(!ProgramStates::getBoolAttr(i));
    }
};

QTEST_GUILESS_MAIN(TestProgramStates)
#include "tst_programstates.moc"
