#include "music/DrivePaths.h"

#include <QDir>
#include <QStandardPaths>
#include <QStorageInfo>

namespace drives {

QString documents()
{
    const QString docs = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return docs.isEmpty() ? QDir::homePath() : docs;
}

QString root()
{
    return QDir::rootPath();
}

QString removable()
{
    for (const QStorageInfo &volume : QStorageInfo::mountedVolumes()) {
        if (!volume.isValid() || !volume.isReady())
            continue;
        const QString device = QString::fromLocal8Bit(volume.device());
        const QString at = volume.rootPath();
        if (device.startsWith(QLatin1String("/dev/sr")) || at.startsWith(QLatin1String("/media/"))
            || at.startsWith(QLatin1String("/run/media/")))
            return at;
    }
    return QString();
}

namespace {

// The rest of a design path after its drive prefix, with native separators.
QString joined(const QString &base, QStringView rest)
{
    QString tail = rest.toString();
    tail.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (tail.isEmpty())
        return base;
    if (base.endsWith(QLatin1Char('/')) || tail.startsWith(QLatin1Char('/')))
        return base + tail;
    return base + QLatin1Char('/') + tail;
}

} // namespace

QString localPath(const QString &designPath)
{
    static const QString docs = QStringLiteral("c:\\my documents");
    if (designPath.startsWith(docs, Qt::CaseInsensitive))
        return joined(documents(), QStringView(designPath).mid(docs.size()));
    if (designPath.size() >= 2 && designPath.at(1) == QLatin1Char(':')) {
        const QChar drive = designPath.at(0).toLower();
        QStringView rest = QStringView(designPath).mid(2);
        if (rest.startsWith(QLatin1Char('\\')))
            rest = rest.mid(1);
        if (drive == QLatin1Char('c'))
            return joined(root(), rest);
        if (drive == QLatin1Char('d')) {
            const QString volume = removable();
            return volume.isEmpty() ? QString() : joined(volume, rest);
        }
    }
    // A path of this system as it stands: a backslash here is a legal
    // character of a file or folder name, not a separator.
    return designPath;
}

} // namespace drives
