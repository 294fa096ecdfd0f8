#include "platform/qtdesktop/RealClock.h"

RealClock::RealClock()
{
    m_shared.setInterval(Timer::FastTickMs);
    m_shared.setTimerType(Qt::PreciseTimer);
    connect(&m_shared, &QTimer::timeout, this, &RealClock::fastTick);
}

RealClock::~RealClock()
{
    qDeleteAll(m_slow);
}

void RealClock::reschedule(Timer &timer)
{
    Timer *t = &timer;
    m_fast.removeAll(t);
    if (QTimer *q = m_slow.value(t))
        q->stop();

    if (!timer.isRunning()) {
        if (m_fast.isEmpty())
            m_shared.stop();
        return;
    }
    if (timer.isFast()) {
        m_fast.append(t);
        if (!m_shared.isActive())
            m_shared.start();
        return;
    }
    if (m_fast.isEmpty())
        m_shared.stop();
    QTimer *q = m_slow.value(t);
    if (!q) {
        q = new QTimer;
        q->setTimerType(Qt::PreciseTimer);
        QObject::connect(q, &QTimer::timeout, t, &Timer::tick);
        m_slow.insert(t, q);
    }
    q->start(timer.Interval());
}

void RealClock::forget(Timer &timer)
{
    m_fast.removeAll(&timer);
    delete m_slow.take(&timer);
    if (m_fast.isEmpty())
        m_shared.stop();
}

void RealClock::fastTick()
{
    // A handler may disable, enable or delete any timer, its own included.
    const QList<Timer *> due = m_fast;
    for (Timer *t : due) {
        if (m_fast.contains(t))
            emit t->tick();
    }
}
