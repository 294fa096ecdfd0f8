#include "doubles/ScriptedTray.h"

bool ScriptedTray::notifyIcon(int command, const NotifyIconData &data)
{
    qsizetype at = -1;
    for (qsizetype i = 0; i < m_icons.size(); ++i)
        if (m_icons[i].hWnd == data.hWnd && m_icons[i].uID == data.uID)
            at = i;
    bool answer = false;
    switch (command) {
    case Add:
        answer = at < 0;
        if (answer)
            m_icons.append(data);
        break;
    case Modify:
        answer = at >= 0;
        if (answer) {
            NotifyIconData &held = m_icons[at];
            if (data.uFlags & 2)
                held.hIcon = data.hIcon;
            if (data.uFlags & 4)
                held.szTip = data.szTip;
        }
        break;
    case Delete:
        answer = at >= 0;
        if (answer)
            m_icons.removeAt(at);
        break;
    default:
        break;
    }
    calls.append({command, data, answer});
    return answer;
}

bool ScriptedTray::hasIcon(QWidget *window, int id) const
{
    return icon(window, id) != nullptr;
}

const NotifyIconData *ScriptedTray::icon(QWidget *window, int id) const
{
    for (const NotifyIconData &d : m_icons)
        if (d.hWnd == window && d.uID == id)
            return &d;
    return nullptr;
}
