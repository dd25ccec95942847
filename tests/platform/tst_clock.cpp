// The simulation clock: virtual time for tests, real time for the viewer.
#include <QtTest>
#include <bw/sim/Clock.hpp>
#include <chrono>
#include <cstdint>
#include <future>
#include <thread>

using bw::sim::Clock;
using bw::sim::VirtualTimeScope;
using namespace std::chrono_literals;

namespace {

constexpr std::uint64_t kStart = Clock::kVirtualEpochNs;
// Long enough that a waiter still blocked after it means a missed wake-up; the test harness's
// time-out then fails the run.
constexpr std::chrono::microseconds kForever = std::chrono::hours(1);

// Runs waitUntil on another thread; the future holds the clock reading it returned.
std::future<std::uint64_t> waitInBackground(std::uint64_t target) {
    std::promise<void> started;
    std::future<void> isStarted = started.get_future();
    auto result = std::async(std::launch::async, [target, started = std::move(started)]() mutable {
        started.set_value();
        return Clock::waitUntil(target, kForever);
    });
    isStarted.wait();
    // Give the waiter time to block, so that the advance below really has to wake it.
    std::this_thread::sleep_for(20ms);
    return result;
}

}  // namespace

class ClockTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { Clock::useRealTime(); }

    void virtualTimeMovesOnlyForwardAndWhenTold() {
        VirtualTimeScope scope(kStart);
        QVERIFY(Clock::isVirtual());
        std::this_thread::sleep_for(10ms);
        QCOMPARE(Clock::nowNs(), kStart);
        Clock::advanceBy(2'500'000);
        QCOMPARE(Clock::nowNs(), kStart + 2'500'000);
        Clock::advanceTo(kStart + 10'000'000);
        Clock::advanceTo(kStart);
        QCOMPARE(Clock::nowNs(), kStart + 10'000'000);
        // A waiter for a moment already past gets the current time, not its target.
        Clock::setAutoAdvanceLimit(UINT64_MAX);
        QCOMPARE(Clock::waitUntil(kStart + 500, kForever), kStart + 10'000'000);
    }

    // Blocked waiters wake when time is advanced past their target, or when the limit of
    // automatic advance is raised past it.
    void blockedWaitersWake() {
        VirtualTimeScope scope(kStart);
        auto first = waitInBackground(kStart + 1000);
        auto second = waitInBackground(kStart + 3000);
        Clock::advanceTo(kStart + 2000);
        QCOMPARE(first.get(), kStart + 2000);
        QVERIFY(second.wait_for(0s) != std::future_status::ready);
        Clock::advanceBy(5000);
        QCOMPARE(second.get(), kStart + 7000);

        auto third = waitInBackground(kStart + 9000);
        Clock::setAutoAdvanceLimit(kStart + 10'000);
        QCOMPARE(third.get(), kStart + 9000);
    }

    void autoAdvanceJumpsUpToTheLimit_data() {
        // Offsets from the start; the limit is absolute, 0 forbids jumping.
        QTest::addColumn<quint64>("limit");
        QTest::addColumn<quint64>("target");
        QTest::addColumn<quint64>("expected");
        const quint64 start = kStart;
        const quint64 hour = 3'600'000'000'000ull;
        QTest::newRow("below limit") << start + 1000 << start + 400 << start + 400;
        QTest::newRow("beyond limit") << start + 1000 << start + 1001 << start;
        QTest::newRow("jumping forbidden") << quint64{0} << start + 1 << start;
        QTest::newRow("free running") << quint64{UINT64_MAX} << start + hour << start + hour;
    }

    void autoAdvanceJumpsUpToTheLimit() {
        QFETCH(quint64, limit);
        QFETCH(quint64, target);
        QFETCH(quint64, expected);
        VirtualTimeScope scope(kStart);
        Clock::setAutoAdvanceLimit(limit);
        QCOMPARE(Clock::autoAdvanceLimit(), std::uint64_t{limit});
        QCOMPARE(Clock::waitUntil(target, 5ms), std::uint64_t{expected});
        QCOMPARE(Clock::nowNs(), std::uint64_t{expected});
    }

    // The viewer's clock: epoch time that waits for real and gives up when told to.
    void realTimeWaitReachesTargetOrGivesUp() {
        Clock::useRealTime();
        QVERIFY(!Clock::isVirtual());
        const auto wall = std::chrono::duration_cast<std::chrono::nanoseconds>(
            std::chrono::system_clock::now().time_since_epoch());
        QVERIFY(Clock::nowNs() + 60'000'000'000ull > std::uint64_t(wall.count()));  // epoch based
        const std::uint64_t target = Clock::nowNs() + 2'000'000;
        QVERIFY(Clock::waitUntil(target, kForever) >= target);

        const std::uint64_t farAway = Clock::nowNs() + 3'600'000'000'000ull;
        QVERIFY(Clock::waitUntil(farAway, 1ms) < farAway);
    }
};

QTEST_APPLESS_MAIN(ClockTest)
#include "tst_clock.moc"
