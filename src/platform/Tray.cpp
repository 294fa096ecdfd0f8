#include "platform/Tray.h"

QString NotifyIconData::tipText() const
{
    QString tip = szTip.left(64);
    const qsizetype zero = tip.indexOf(QChar(0));
    if (zero >= 0)
        tip.truncate(zero);
    return tip;
}
