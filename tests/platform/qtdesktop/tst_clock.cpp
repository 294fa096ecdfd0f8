// The real clock on Qt's event loop. Only counts and order are checked,
// never durations: the machine may be busy.
#include "platform/qtdesktop/RealClock.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class tst_clock : public QObject {
    Q_OBJECT
private slots:
    void fastTimersShareOneTick()
    {
        RealClock clock;
        Timer a(clock, nullptr, u"a"_s, 1, true), b(clock, nullptr, u"b"_s, 15, true), slow(clock, nullptr, u"s"_s, 16, true);
        Timer zero(clock, nullptr, u"zero"_s, 0, true), off(clock, nullptr, u"off"_s, 1, false);
        QCOMPARE(clock.fastTimerCount(), 2); // 16 ms is a whole tick: a timer of its own
        QString order;
        for (Timer *t : {&a, &b, &slow, &zero, &off})
            connect(t, &Timer::tick, [&order, t] { order += t->objectName(); });
        QTRY_VERIFY_WITH_TIMEOUT(order.count(u's') >= 3, 5000);
        order.remove(u's');
        QCOMPARE(order, u"ab"_s.repeated(order.size() / 2)); // both on one tick, in turn, every time
        a.setEnabled(false);
        b.setInterval(400);
        off.setEnabled(true);
        QCOMPARE(clock.fastTimerCount(), 1);
    }

    void handlersMayKillOtherTimers()
    {
        RealClock clock;
        auto victim = std::make_unique<Timer>(clock, nullptr, u"victim"_s, 1, true);
        Timer killer(clock, nullptr, u"killer"_s, 1, true);
        int victimTicks = 0, killerTicks = 0;
        connect(victim.get(), &Timer::tick, [&] { ++victimTicks; });
        connect(&killer, &Timer::tick, [&] {
            if (++killerTicks == 2)
                victim.reset(); // while the shared tick walks its list
            if (killerTicks == 4)
                killer.setEnabled(false);
        });
        QTRY_COMPARE_WITH_TIMEOUT(killerTicks, 4, 5000);
        QTest::qWait(100);
        QCOMPARE((QList<int>{victimTicks, killerTicks, clock.fastTimerCount()}), (QList<int>{2, 4, 0}));
    }
};

QTEST_GUILESS_MAIN(tst_clock)
#include "tst_clock.moc"
