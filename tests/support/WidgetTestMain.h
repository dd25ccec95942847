// The main function of the tests that need a QApplication (widgets, windows, GL views).
//
// In the AddressSanitizer build the leak check runs here, once the last test function has ended
// and while the application still exists, instead of at process exit. At exit Qt stops some of
// its threads from global destructors (the D-Bus connection of the X11 accessibility bridge,
// the global thread pool), and QThread::wait returns before such a thread has left the system:
// when LeakSanitizer stops the world while a thread is half-way out, its tracer crashes
// ("Tracer caught signal 11"). Here nothing is being torn down, the GL driver is still loaded
// and the display still open, so what they keep for the life of the process is reachable.
#pragma once

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QThread>
#include <QThreadPool>
#include <QtTest>

#include "UnansweredMessageBoxes.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace widget_test {

inline int threadCount() { return int(QDir(QStringLiteral("/proc/self/task")).count()); }

// Threads whose QThread::wait has returned may still be on their way out of the system; the
// check waits until no thread has come or gone for a while.
inline void waitUntilThreadsSettle() {
    constexpr int kQuietMs = 50;
    constexpr int kLongestMs = 2000;
    QElapsedTimer total;
    total.start();
    int count = threadCount();
    while (total.elapsed() < kLongestMs) {
        QThread::msleep(kQuietMs);
        const int now = threadCount();
        if (now == count) return;
        count = now;
    }
}

inline void checkLeaksNow() {
#if defined(__SANITIZE_ADDRESS__)
    waitUntilThreadsSettle();
    // Also switches off the check at exit.
    __lsan_do_leak_check();
#endif
}

}  // namespace widget_test

// QTEST_MAIN for QApplication tests, with the leak check described above. Pooled threads never
// expire, so that none ends by itself while the world is stopped. A message box that no test
// answers is closed after a while (UnansweredMessageBoxes.h).
#define WIDGET_TEST_MAIN(TestObject)                         \
    int main(int argc, char* argv[]) {                       \
        QApplication app(argc, argv);                        \
        app.setAttribute(Qt::AA_Use96Dpi, true);             \
        QThreadPool::globalInstance()->setExpiryTimeout(-1); \
        UnansweredMessageBoxes unansweredBoxes;              \
        TestObject test;                                     \
        QTEST_SET_MAIN_SOURCE_PATH                           \
        const int result = QTest::qExec(&test, argc, argv);  \
        widget_test::checkLeaksNow();                        \
        return result;                                       \
    }
