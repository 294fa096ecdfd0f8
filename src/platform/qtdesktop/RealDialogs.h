#pragma once

#include "platform/Dialogs.h"

class RealDialogs : public Dialogs {
public:
    explicit RealDialogs(QString appTitle) : m_appTitle(std::move(appTitle)) {}
    int MsgBox(const QString &prompt, int style = 0, const QString &title = QString()) override;

private:
    QString m_appTitle;
};
