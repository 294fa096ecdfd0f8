#include "platform/qtdesktop/RealClock.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

// The real clock on Qt's event loop. Only counts and order are checked, never
// durations: the machine may be busy.
class tst_clock : public QObject {
    Q_OBJECT
private slots:
    void fastTimersShareOneTick();
    void intervalZeroAndDisabledNeverFire();
    void handlersMayKillOtherTimers();
};

void tst_clock::fastTimersShareOneTick()
{
    RealClock clock;
    Timer a(clock, nullptr, QStringLiteral("a"), 1, true);
    Timer b(clock, nullptr, QStringLiteral("b"), 1, true);
    Timer slow(clock, nullptr, QStringLiteral("slow"), 400, false);
    QCOMPARE(clock.fastTimerCount(), 2);
    QStringList order;
    connect(&a, &Timer::tick, [&] { order << QStringLiteral("a"); });
    connect(&b, &Timer::tick, [&] { order << QStringLiteral("b"); });
    QTRY_VERIFY_WITH_TIMEOUT(order.size() >= 6, 5000);
    // One shared tick fires both, in turn, every time.
    for (int i = 0; i + 1 < order.size(); i += 2)
        QCOMPARE(order.mid(i, 2), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));

    a.setEnabled(false);
    b.setInterval(0);
    QCOMPARE(clock.fastTimerCount(), 0);
    b.setInterval(400); // no longer fast: its own timer
    QCOMPARE(clock.fastTimerCount(), 0);
}

void tst_clock::intervalZeroAndDisabledNeverFire()
{
    RealClock clock;
    Timer zero(clock, nullptr, QStringLiteral("zero"), 0, true);
    Timer off(clock, nullptr, QStringLiteral("off"), 1, false);
    Timer witness(clock, nullptr, QStringLiteral("witness"), 30, true);
    int fired = 0, witnessed = 0;
    connect(&zero, &Timer::tick, [&] { ++fired; });
    connect(&off, &Timer::tick, [&] { ++fired; });
    connect(&witness, &Timer::tick, [&] { ++witnessed; });
    QTRY_VERIFY_WITH_TIMEOUT(witnessed >= 3, 5000);
    QCOMPARE(fired, 0);
    QCOMPARE(clock.fastTimerCount(), 0);
}

void tst_clock::handlersMayKillOtherTimers()
{
    RealClock clock;
    auto victim = std::make_unique<Timer>(clock, nullptr, QStringLiteral("victim"), 1, true);
    Timer killer(clock, nullptr, QStringLiteral("killer"), 1, true);
    int victimTicks = 0, killerTicks = 0;
    connect(victim.get(), &Timer::tick, [&] { ++victimTicks; });
    connect(&killer, &Timer::tick, [&] {
        ++killerTicks;
        if (killerTicks == 2)
            victim.reset(); // while the shared tick is walking its list
        if (killerTicks == 4)
            killer.setEnabled(false);
    });
    QTRY_COMPARE_WITH_TIMEOUT(killerTicks, 4, 5000);
    QCOMPARE(victimTicks, 2);
    QCOMPARE(clock.fastTimerCount(), 0);
    QTest::qWait(100);
    QCOMPARE(killerTicks, 4);
}

QTEST_GUILESS_MAIN(tst_clock)
#include "tst_clock.moc"
