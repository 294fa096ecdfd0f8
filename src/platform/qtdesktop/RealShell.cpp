#include "platform/qtdesktop/RealShell.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace {

constexpr int Done = 42;
constexpr int FileNotFound = 2;
constexpr int NoAssociation = 31;

bool isAddress(const QUrl &url)
{
    return url.isValid() && url.scheme().size() > 1; // a drive letter is no scheme
}

} // namespace

void RealShell::open(const QString &target)
{
    const QUrl url(target);
    if (isAddress(url))
        QDesktopServices::openUrl(url);
    else
        QDesktopServices::openUrl(QUrl::fromLocalFile(target));
}

// Any verb opens: the desktop knows no other.
int RealShell::execute(const QString &, const QString &file, const QString &parameters, const QString &directory,
                       int)
{
    const QUrl url(file);
    if (isAddress(url))
        return QDesktopServices::openUrl(url) ? Done : NoAssociation;
    const QFileInfo info(directory.isEmpty() ? file : QDir(directory).filePath(file));
    if (!info.exists())
        return FileNotFound;
    if (info.isFile() && info.isExecutable())
        return QProcess::startDetached(info.absoluteFilePath(), QProcess::splitCommand(parameters),
                                       directory.isEmpty() ? QString() : directory)
            ? Done
            : FileNotFound;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(info.absoluteFilePath())) ? Done : NoAssociation;
}
