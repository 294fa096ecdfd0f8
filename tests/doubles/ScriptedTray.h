#pragma once

#include "platform/Tray.h"

#include <QList>

// Records every tray call; icons live in a map like the real area's, so
// Modify and Delete of a missing icon answer false.
class ScriptedTray : public Tray {
    Q_OBJECT
public:
    struct Call {
        int command;
        NotifyIconData data;
        bool answer;
    };
    bool notifyIcon(int command, const NotifyIconData &data) override;
    bool isAvailable() const override { return available; }
    bool available = true; // false: a desktop with no notification area

    // Reports a mouse action on an icon as the area would.
    void click(QWidget *window, int id, int message) { emit callback(window, id, message); }
    bool hasIcon(QWidget *window, int id) const;
    const NotifyIconData *icon(QWidget *window, int id) const;

    QList<Call> calls;

private:
    QList<NotifyIconData> m_icons;
};
