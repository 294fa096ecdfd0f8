#include "doubles/ScriptedPlatform.h"

#include <QCoreApplication>

#include <algorithm>

int ScriptedDialogs::MsgBox(const QString &prompt, int style, const QString &title)
{
    shown.append({prompt, style, title});
    if (onShow)
        onShow(shown.last());
    // Bounded, so that a box that stacks boxes shows in a test as a few
    // of them rather than as a stack overflow.
    if (upForMs > 0 && clock && m_depth < 4) {
        ++m_depth;
        clock->advance(upForMs);
        --m_depth;
    }
    return answers.isEmpty() ? MsgBox::Ok : answers.takeFirst();
}

static qint64 period(const Timer &t) { return t.isFast() ? Timer::FastTickMs : t.Interval(); }

void ManualClock::reschedule(Timer &timer)
{
    forget(timer);
    if (timer.isRunning())
        m_entries.append({&timer, m_now + period(timer), m_order++});
}

void ManualClock::forget(Timer &timer)
{
    m_entries.removeIf([&](const Entry &e) { return e.timer == &timer; });
}

void ManualClock::advance(int ms)
{
    const qint64 target = m_now + ms;
    for (;;) {
        const auto next = std::min_element(m_entries.cbegin(), m_entries.cend(), [](const Entry &a, const Entry &b) {
            return a.due < b.due || (a.due == b.due && a.order < b.order);
        });
        if (next == m_entries.cend() || next->due > target)
            break;
        Timer *t = next->timer;
        m_now = next->due;
        // Schedule the following tick before firing, so a handler that
        // disables or re-enables its own timer has the last word.
        for (Entry &e : m_entries) {
            if (e.timer == t)
                e.due = m_now + period(*t);
        }
        emit t->tick();
        QCoreApplication::processEvents();
    }
    // A box held up under a tick may have moved the clock past this target.
    m_now = std::max(m_now, target);
}

ScriptedPlatform::ScriptedPlatform()
    : platform{app, dialogs, connection, shell, process, clock, forms, tray, interfaces, media, mixer}
{
    app.Path = QStringLiteral(ZARVENT_RUNTIME_DIR); // where the build puts img/
    dialogs.clock = &clock;
}
