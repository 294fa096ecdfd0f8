#include "platform/Clock.h"

Timer::Timer(Clock &clock, QObject *parent, const QString &name, int interval, bool enabled)
    : QObject(parent)
    , m_clock(clock)
    , m_interval(interval)
    , m_enabled(enabled)
{
    setObjectName(name);
    m_clock.reschedule(*this);
}

Timer::~Timer()
{
    m_clock.forget(*this);
}

void Timer::setEnabled(bool enabled)
{
    m_enabled = enabled;
    m_clock.reschedule(*this);
}

void Timer::setInterval(int interval)
{
    m_interval = interval < 0 ? 0 : interval;
    m_clock.reschedule(*this);
}
