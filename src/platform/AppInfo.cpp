#include "platform/AppInfo.h"

#include <QCoreApplication>
#include <QDir>

QString AppInfo::file(const QString &relative) const
{
    QString rel = relative;
    rel.replace(QLatin1Char('\\'), QLatin1Char('/'));
    // At a root the joined path carries a doubled separator; harmless, and
    // cleaner without.
    return QDir::cleanPath(Path + QLatin1Char('/') + rel);
}

AppInfo AppInfo::forExecutable()
{
    AppInfo info;
    info.Path = QCoreApplication::applicationDirPath();
    return info;
}
