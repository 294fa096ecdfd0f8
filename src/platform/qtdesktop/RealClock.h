#pragma once

#include "platform/Clock.h"

#include <QHash>
#include <QList>
#include <QPointer>
#include <QTimer>

// Timers on Qt's event loop. Every fast timer rides one shared QTimer of
// 16 ms, which runs only while some fast timer is enabled; slower ones get a
// QTimer each.
class RealClock : public QObject, public Clock {
    Q_OBJECT
public:
    RealClock();
    ~RealClock() override;

    void reschedule(Timer &timer) override;
    void forget(Timer &timer) override;

    int fastTimerCount() const { return static_cast<int>(m_fast.size()); }

private:
    void fastTick();

    QTimer m_shared;
    QList<Timer *> m_fast;
    QHash<Timer *, QTimer *> m_slow;
};
