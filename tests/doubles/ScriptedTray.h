#pragma once

#include "platform/Tray.h"

#include <QList>

#include <algorithm>

// Records every tray call; icons are kept as in the real area, so Modify and
// Delete of a missing icon answer false.
class ScriptedTray : public Tray {
    Q_OBJECT
public:
    struct Call { int command; NotifyIconData data; bool answer; };
    bool notifyIcon(int command, const NotifyIconData &data) override
    {
        const qsizetype at = find(data.hWnd, data.uID);
        const bool answer = command == Add ? at < 0 : (command == Modify || command == Delete) && at >= 0;
        if (answer && command == Add)
            m_icons.append(data);
        if (answer && command == Modify && (data.uFlags & 2))
            m_icons[at].hIcon = data.hIcon;
        if (answer && command == Modify && (data.uFlags & 4))
            m_icons[at].szTip = data.szTip;
        if (answer && command == Delete)
            m_icons.removeAt(at);
        calls.append({command, data, answer});
        return answer;
    }
    bool isAvailable() const override { return available; }
    bool available = true; // false: a desktop with no notification area

    // Reports a mouse action on an icon as the area would.
    void click(QWidget *window, int id, int message) { emit callback(window, id, message); }
    bool hasIcon(QWidget *window, int id) const { return find(window, id) >= 0; }
    const NotifyIconData *icon(QWidget *window, int id) const
    {
        const qsizetype at = find(window, id);
        return at < 0 ? nullptr : &m_icons[at];
    }

    QList<Call> calls;

private:
    qsizetype find(QWidget *window, int id) const
    {
        const auto it = std::find_if(m_icons.cbegin(), m_icons.cend(),
                                     [&](const NotifyIconData &d) { return d.hWnd == window && d.uID == id; });
        return it == m_icons.cend() ? -1 : it - m_icons.cbegin();
    }
    QList<NotifyIconData> m_icons;
};
