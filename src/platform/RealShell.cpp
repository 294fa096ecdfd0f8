#include "platform/RealShell.h"

#include <QDesktopServices>
#include <QUrl>

void RealShell::open(const QString &target)
{
    const QUrl url(target);
    if (url.isValid() && url.scheme().size() > 1)
        QDesktopServices::openUrl(url);
    else
        QDesktopServices::openUrl(QUrl::fromLocalFile(target));
}
