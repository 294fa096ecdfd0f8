#pragma once

#include <QObject>
#include <QString>

class Clock;

// A form's timer: an interval in milliseconds and an enabled flag, firing
// tick() while both allow it. Interval 0 never fires. Enabling a timer or
// changing its interval starts its count anew. Intervals below 16 ms are the
// design's "as fast as the platform allows" timers; the clock runs them all
// at one shared tick.
class Timer : public QObject {
    Q_OBJECT
public:
    Timer(Clock &clock, QObject *parent, const QString &name, int interval, bool enabled);
    ~Timer() override;

    bool Enabled() const { return m_enabled; }
    void setEnabled(bool enabled);
    int Interval() const { return m_interval; }
    void setInterval(int interval);

    bool isRunning() const { return m_enabled && m_interval > 0; }
    bool isFast() const { return m_interval > 0 && m_interval < FastTickMs; }

    static constexpr int FastTickMs = 16;

signals:
    void tick();

private:
    Clock &m_clock;
    int m_interval;
    bool m_enabled;
};

class Clock {
public:
    virtual ~Clock() = default;
    // Called by a timer whenever its enabled flag or interval is written.
    virtual void reschedule(Timer &timer) = 0;
    // Called by a timer as it goes.
    virtual void forget(Timer &timer) = 0;
};
