#pragma once

// The music tests' fixture: MP3 bytes laid by hand, and what cIDV3 makes of them.

#include "basic/RuntimeError.h"
#include "music/ListControl.h"
#include "music/cIDV3.h"

#include <QtCore>

#include <functional>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tagfiles {

// With size, the file is then cut or grown to it, as a hole.
inline QString write(const QString &dir, const QString &name, const QByteArray &bytes, qint64 size = -1)
{
    QFile f(QDir(dir).filePath(name));
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size() || (size >= 0 && !f.resize(size)))
        qFatal("cannot write %s", qPrintable(f.fileName()));
    return f.fileName();
}

inline QByteArray read(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline QByteArray hex(const char *h) { return QByteArray::fromHex(h); }

inline QByteArray lay(const QList<std::pair<int, QByteArray>> &parts)
{
    QByteArray bytes;
    for (const auto &[offset, part] : parts)
        bytes = bytes.leftJustified(offset + part.size(), '\0').replace(offset, part.size(), part);
    return bytes;
}

inline QByteArray field(const QByteArray &text, int width, char fill) { return text.leftJustified(width, fill, true); }
inline QByteArray block(const QByteArray &marker, const QByteArray &title, const QByteArray &artist, const QByteArray &album,
                        const QByteArray &year, const QByteArray &comment, unsigned char genre, char fill = ' ')
{
    return marker.left(3) + field(title, 30, fill) + field(artist, 30, fill) + field(album, 30, fill)
        + field(year, 4, fill) + field(comment, 30, fill) + char(genre);
}

// Audio with no sync pair; framed, it starts with a 128 kbit 44100 Hz header.
inline QByteArray filler(int size)
{
    QByteArray b(size, '\0');
    for (int i = 0; i < size; ++i)
        b[i] = char((i * 7 + 3) % 200);
    return b;
}
inline QByteArray framed(int size) { return filler(size).replace(0, 4, hex("fffb9000")); }

// The record, and the frame facts in InfoString's order with Channels after the mode.
inline QString tagOf(const cIDV3 &t)
{
    return QStringList{t.Title(), t.Artist(), t.Album(), t.Year(), t.Comments(), QString::number(t.Genre())}.join('|');
}
inline QString facts(const cIDV3 &t)
{
    const auto n = [](qint64 v) { return QString::number(v); };
    return QStringList{n(t.FileBytes()), n(t.Seconds()), n(t.MpegVersion()), n(t.LayerVersion()), n(t.Kbits()), n(t.Frames()), n(t.Hz()),
                       t.Mode(), n(t.Channels()), t.PrivateBit(), t.CRCs(), t.Copyrighted(), t.Original(), t.Emphasis()}.join('|');
}

inline int openHandles() { return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size()); }

inline int errorOf(const std::function<void()> &f)
{
    try { f(); } catch (const basic::RuntimeError &e) { return e.number(); }
    return 0;
}

// Runs fn with the file at mode; root, who passes by mode bits, as nobody.
inline void asNobody(const QString &path, mode_t mode, const std::function<void()> &fn)
{
    ::chmod(QFile::encodeName(path).constData(), mode);
    ::chmod(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), 0755);
    const uid_t me = ::geteuid();
    ::setfsuid(me == 0 ? 65534 : me);
    fn();
    ::setfsuid(me);
    ::chmod(QFile::encodeName(path).constData(), 0644);
}

// A list that raises in the calls named in failing: "Clear", "AddItem 5", "setListIndex".
struct RecordingList : ListControl {
    QStringList items{QStringLiteral("stale")}, failing;
    int index = -1, added = 0;
    void Clear() override { call("Clear", [&] { items.clear(); }); }
    void AddItem(const QString &item) override { call(QString("AddItem %1").arg(added++), [&] { items << item; }); }
    void setListIndex(int i) override { call("setListIndex", [&] { index = i; }); }
    void call(const QString &name, const std::function<void()> &effect)
    {
        if (failing.contains(name))
            basic::raise(basic::InvalidProcedureCall);
        effect();
    }
};

} // namespace tagfiles
