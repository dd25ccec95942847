#include <QtTest>
#include <thread>

#include "programstates.h"

// The process-wide attribute store shared by the windows, the input module and the views.
class TestProgramStates : public QObject {
    Q_OBJECT

private slots:
    // Each slot holds its own value, references stay bound to their slot across a reset, writes
    // from another thread are seen, and a reset clears every slot of every kind.
    void slotsReferencesAndReset() {
        std::atomic<int>& width = ProgramStates::intAttr(7);
        QString& title = ProgramStates::qstringAttr(1);
        std::thread([] { ProgramStates::setIntAttr(7, 1920); }).join();
        title = "Sensor Data Viewer";
        QCOMPARE(width.load(), 1920);
        QCOMPARE(ProgramStates::getIntAttr(8), 0);
        QVERIFY(ProgramStates::qstringAttr(2).isEmpty());

        for (int i = 0; i < 4; ++i) ProgramStates::qstringAttr(i) = "set";
        for (int i = 0; i < 4; ++i) ProgramStates::setDoubleAttr(i, 1.5);
        for (int i = 0; i < 19; ++i) ProgramStates::setIntAttr(i, 7);
        for (int i = 0; i < 4; ++i) ProgramStates::switchBoolAttr(i);
        QVERIFY(ProgramStates::getBoolAttr(3));
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
