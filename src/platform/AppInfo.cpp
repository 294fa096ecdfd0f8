#include "platform/AppInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString AppInfo::file(const QString &relative) const
{
    QString rel = relative;
    rel.replace(QLatin1Char('\\'), QLatin1Char('/'));
    // At a root the joined path carries a doubled separator; harmless, and
    // cleaner without.
    return QDir::cleanPath(Path + QLatin1Char('/') + rel);
}

QString AppInfo::installPath(const QString &executableFolder)
{
    // The install rules put the program in bin/ and its pictures in
    // share/zarvent/, so the tree can be moved or installed under any prefix.
    const QString shared = QDir::cleanPath(executableFolder + QStringLiteral("/../share/zarvent"));
    if (!QFileInfo(executableFolder + QStringLiteral("/img")).isDir() && QFileInfo(shared + QStringLiteral("/img")).isDir())
        return shared;
    return executableFolder;
}

AppInfo AppInfo::forExecutable()
{
    AppInfo info;
    info.Path = installPath(QCoreApplication::applicationDirPath());
    return info;
}
