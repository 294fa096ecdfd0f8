// The real clock on Qt's event loop. Only counts and order are checked,
// never durations: the machine may be busy.
#include "platform/qtdesktop/RealClock.h"

#include <QTest>

using namespace Qt::StringLiterals;

class tst_clock : public QObject {
    Q_OBJECT
private slots:
    void fastTimersShareOneTick()
    {
        RealClock clock;
        Timer a(clock, nullptr, u"a"_s, 1, true), b(clock, nullptr, u"b"_s, 15, true), slow(clock, nullptr, u"s"_s, 16, true);
        Timer zero(clock, nullptr, u"zero"_s, 0, true), off(clock, nullptr, u"off"_s, 1, false);
        auto *victim = new Timer(clock, nullptr, u"v"_s, 1, true);
        QCOMPARE(clock.fastTimerCount(), 3); // 16 ms is a whole tick: a timer of its own
        QString order;
        for (Timer *t : {&a, &b, &slow, &zero, &off, victim})
            connect(t, &Timer::tick, [&order, t] { order += t->objectName(); });
        connect(&b, &Timer::tick, [&] {
            if (order.count(u'b') == 2)
                delete victim; // while the shared tick walks its list
        });
        QTRY_VERIFY_WITH_TIMEOUT(order.count(u's') >= 3 && order.count(u'b') >= 3, 5000);
        order.remove(u's');
        // One shared tick fires the fast timers in turn, every time.
        QCOMPARE(order, u"abvab"_s + u"ab"_s.repeated(order.size() / 2 - 2));
        a.setEnabled(false);
        b.setInterval(400);
        off.setEnabled(true);
        QCOMPARE(clock.fastTimerCount(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_clock)
#include "tst_clock.moc"
