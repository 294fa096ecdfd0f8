#include "platform/qtdesktop/RealTray.h"

#include <QSystemTrayIcon>

RealTray::~RealTray()
{
    qDeleteAll(m_icons);
}

bool RealTray::isAvailable() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

bool RealTray::notifyIcon(int command, const NotifyIconData &data)
{
    const Key key(data.hWnd, data.uID);
    QSystemTrayIcon *icon = m_icons.value(key);
    switch (command) {
    case Add: {
        if (icon || !QSystemTrayIcon::isSystemTrayAvailable())
            return false;
        icon = new QSystemTrayIcon;
        m_icons.insert(key, icon);
        QWidget *window = data.hWnd;
        const int id = data.uID;
        connect(icon, &QSystemTrayIcon::activated, this, [this, window, id](QSystemTrayIcon::ActivationReason reason) {
            switch (reason) {
            case QSystemTrayIcon::Trigger:
                emit callback(window, id, LeftDown);
                emit callback(window, id, LeftUp);
                break;
            case QSystemTrayIcon::DoubleClick:
                emit callback(window, id, LeftDouble);
                break;
            case QSystemTrayIcon::Context:
                emit callback(window, id, RightDown);
                emit callback(window, id, RightUp);
                break;
            default:
                break;
            }
        });
        break;
    }
    case Modify:
        if (!icon)
            return false;
        break;
    case Delete:
        if (!icon)
            return false;
        m_icons.remove(key);
        icon->hide();
        icon->deleteLater();
        return true;
    default:
        return false;
    }
    // The traffic window modifies its icon five times a second; the desktop
    // is asked to redraw only what really changed.
    if ((data.uFlags & 2) && icon->icon().cacheKey() != data.hIcon.cacheKey())
        icon->setIcon(data.hIcon);
    if ((data.uFlags & 4) && icon->toolTip() != data.tipText())
        icon->setToolTip(data.tipText());
    if (!icon->isVisible())
        icon->show();
    return true;
}
