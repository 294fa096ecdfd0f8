#pragma once

#include "platform/Tray.h"

#include <QHash>
#include <QPair>

class QSystemTrayIcon;

// The desktop's tray through QSystemTrayIcon. A click arrives as a whole:
// it is reported as its down and up messages in turn.
class RealTray : public Tray {
    Q_OBJECT
public:
    ~RealTray() override;
    bool notifyIcon(int command, const NotifyIconData &data) override;
    bool isAvailable() const override;

private:
    using Key = QPair<QWidget *, int>;
    QHash<Key, QSystemTrayIcon *> m_icons;
};
