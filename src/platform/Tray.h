#pragma once

#include <QIcon>
#include <QObject>
#include <QString>

class QWidget;

// The notification-area record: which window and icon id, what to show, and
// the callback message the window expects. The tip is a fixed field of 64
// characters; only the text before its first zero character is shown.
struct NotifyIconData {
    int cbSize = 88;
    QWidget *hWnd = nullptr;
    int uID = 0;
    int uFlags = 0; // 1 message, 2 icon, 4 tip
    int uCallbackMessage = 0;
    QIcon hIcon;
    QString szTip;

    QString tipText() const; // szTip up to its first zero character, at most 64 characters
};

// The notification area. Icons are keyed by window and id, so two windows
// may each hold an icon of id 1. Mouse actions on an icon come back as the
// classic callback messages: 513 left down, 514 left up, 515 left double,
// 516 right down, 517 right up.
class Tray : public QObject {
    Q_OBJECT
public:
    enum Command { Add = 0, Modify = 1, Delete = 2 };
    enum Message { MouseMove = 512, LeftDown = 513, LeftUp = 514, LeftDouble = 515, RightDown = 516, RightUp = 517 };

    // Shell_NotifyIcon: true when the area did what was asked. Modify and
    // Delete of an icon that is not there answer false and change nothing.
    virtual bool notifyIcon(int command, const NotifyIconData &data) = 0;

    // Whether the desktop has a notification area at all. Where it has none
    // (stock GNOME), a window that went to the tray could never come back,
    // so minimising stays an ordinary minimise.
    virtual bool isAvailable() const = 0;

signals:
    void callback(QWidget *window, int id, int message);
};
