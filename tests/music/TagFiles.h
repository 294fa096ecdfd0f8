#pragma once

// Small helpers for tests that write MP3 bytes by hand.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <functional>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tagfiles {

// Writes bytes into dir/name; with size, the file is then cut or grown to
// it, the growth a hole that takes no disk.
inline QString write(const QString &dir, const QString &name, const QByteArray &bytes, qint64 size = -1)
{
    const QString path = QDir(dir).filePath(name);
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    if (size >= 0 && !f.resize(size))
        qFatal("cannot resize %s", qPrintable(path));
    return path;
}

inline QByteArray read(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

// A field as another writer lays it down: the text, then fill bytes.
inline QByteArray field(const QByteArray &text, int width, char fill)
{
    QByteArray f = text.left(width);
    f.append(QByteArray(width - f.size(), fill));
    return f;
}

// A 128-byte ID3v1 block.
inline QByteArray block(const QByteArray &marker, const QByteArray &title, const QByteArray &artist,
                        const QByteArray &album, const QByteArray &year, const QByteArray &comment,
                        unsigned char genre, char fill = ' ')
{
    QByteArray b = marker.left(3);
    b += field(title, 30, fill);
    b += field(artist, 30, fill);
    b += field(album, 30, fill);
    b += field(year, 4, fill);
    b += field(comment, 30, fill);
    b += char(genre);
    return b;
}

// Some bytes of "audio" that hold no sync pair.
inline QByteArray filler(int size)
{
    QByteArray b(size, '\0');
    for (int i = 0; i < size; ++i)
        b[i] = char((i * 7 + 3) % 200);
    return b;
}

// OS handles the process holds right now.
inline int openHandles()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size());
}

// Runs fn with the file system refusing writes to a 0444 file. Root passes
// by mode bits, so root's file system id becomes nobody's for the call.
inline void refusingWrites(const QString &path, const std::function<void()> &fn)
{
    ::chmod(QFile::encodeName(path).constData(), 0444);
    const bool root = ::geteuid() == 0;
    if (root) {
        ::chmod(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), 0755);
        ::setfsuid(65534);
    }
    fn();
    if (root)
        ::setfsuid(0);
    ::chmod(QFile::encodeName(path).constData(), 0644);
}

} // namespace tagfiles
