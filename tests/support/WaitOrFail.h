// A bounded wait that fails with a message. QTRY_* waits alike, but after a failed wait it waits
// twice as long again to report how long the wait would have needed: a failing test then takes
// three times its bound before it says anything.
#pragma once

#include <QtTest>

// Waits until `condition` holds, at most `timeoutMs`; otherwise fails the test with `message`
// (a const char*). The arguments are QTRY_VERIFY2_WITH_TIMEOUT's.
#define WAIT_OR_FAIL(condition, message, timeoutMs) \
    QVERIFY2(QTest::qWaitFor([&]() -> bool { return (condition); }, (timeoutMs)), message)
