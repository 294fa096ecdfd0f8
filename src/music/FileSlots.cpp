#include "music/FileSlots.h"

#include "basic/RuntimeError.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace music {

namespace {

// The runtime's file error numbers that basic does not name.
constexpr int BadFileMode = 54;
constexpr int DeviceIOError = 57;
constexpr int DiskFull = 61;
constexpr int BadRecordNumber = 63;
constexpr int TooManyFiles = 67;

bool validNumber(int slot)
{
    return slot >= FileSlots::FirstSlot && slot <= FileSlots::LastSlot;
}

bool validPath(const QString &path)
{
    return !path.isEmpty() && !path.contains(QChar(0));
}

[[noreturn]] void raiseOpenError(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        basic::raise(basic::FileNotFound);
    case EMFILE:
    case ENFILE:
        basic::raise(TooManyFiles);
    default:
        basic::raise(basic::PathFileAccessError);
    }
}

// O_NONBLOCK only so that a named pipe cannot hang the open; pipes are
// refused, and regular files ignore the flag. -1 with errno set when the
// system refuses.
int openQuietly(const QByteArray &name, FileSlots::Access access)
{
    const int flags = (access == FileSlots::Read ? O_RDONLY : O_WRONLY) | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int fd;
    do
        fd = ::open(name.constData(), flags);
    while (fd < 0 && errno == EINTR);
    return fd;
}

int openFile(const QByteArray &name, FileSlots::Access access)
{
    const int fd = openQuietly(name, access);
    if (fd < 0)
        raiseOpenError(errno);
    return fd;
}

// Bytes past the end read as zero.
void readAt(int fd, std::int64_t offset, unsigned char *into, std::int64_t count)
{
    std::int64_t done = 0;
    while (done < count) {
        const ssize_t n = ::pread(fd, into + done, static_cast<size_t>(count - done), offset + done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            basic::raise(DeviceIOError);
        if (n == 0)
            break;
        done += n;
    }
    std::memset(into + done, 0, static_cast<size_t>(count - done));
}

// Equal text, told at once when both hold the same characters in memory,
// as the paths of one call mostly do.
template <class Text>
bool sameText(const Text &a, const Text &b)
{
    return (a.constData() == b.constData() && a.size() == b.size()) || a == b;
}

std::int64_t nanoseconds(const timespec &t)
{
    return std::int64_t(t.tv_sec) * 1000000000 + t.tv_nsec;
}

// Whether any change made from now on must give the file a status other
// than st. This kernel stamps a change from its coarse real-time clock, so a
// file whose last change lies a full tick of that clock before `before`
// cannot be changed again under the same stamp. That holds for file systems
// on block devices, stamped here, unless they keep coarser stamps than a
// tick: FAT's and old ext3's have no digits below the millisecond. Of those
// without a device, network and FUSE file systems take stamps from other
// clocks; only tmpfs and btrfs are known to be ours.
bool changesMustShow(int fd, const struct stat &st, const timespec &before)
{
    static const std::int64_t tick = [] {
        timespec res{};
        ::clock_getres(CLOCK_REALTIME_COARSE, &res);
        return std::max<std::int64_t>(nanoseconds(res), 1);
    }();
    if (!S_ISREG(st.st_mode) || st.st_ctim.tv_nsec % 1000000 == 0)
        return false;
    if (nanoseconds(st.st_ctim) >= nanoseconds(before) - tick)
        return false;
    if (major(st.st_dev) != 0)
        return true;
    struct statfs fs;
    return ::fstatfs(fd, &fs) == 0 && (fs.f_type == TMPFS_MAGIC || fs.f_type == BTRFS_SUPER_MAGIC);
}

bool sameStatus(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_mode == b.st_mode && a.st_uid == b.st_uid
        && a.st_gid == b.st_gid && a.st_size == b.st_size && nanoseconds(a.st_mtim) == nanoseconds(b.st_mtim)
        && nanoseconds(a.st_ctim) == nanoseconds(b.st_ctim);
}

} // namespace

FileSlots::Batch::Batch(FileSlots &table, Access expected)
    : m_slots(table)
{
    if (m_slots.m_batchDepth++ == 0)
        m_slots.m_batchAccess = expected;
}

FileSlots::Batch::~Batch()
{
    if (--m_slots.m_batchDepth == 0)
        m_slots.endBatch();
}

FileSlots::~FileSlots()
{
    Reset();
    forget();
}

FileSlots &FileSlots::process()
{
    static FileSlots table;
    return table;
}

FileSlots::Known &FileSlots::ask(const QByteArray &name)
{
    if (m_known.asked && sameText(m_known.name, name))
        return m_known;
    if (reuse(name))
        return m_known;
    forget();
    m_known.name = name;
    m_known.asked = true;
    if (m_batchAccess == Read) {
        // Read before the file's stamps: see changesMustShow.
        timespec before{};
        ::clock_gettime(CLOCK_REALTIME_COARSE, &before);
        const int fd = openQuietly(name, FileSlots::Read);
        if (fd >= 0 && ::fstat(fd, &m_known.st) == 0) {
            m_known.readFd = fd;
            m_known.keepable = changesMustShow(fd, m_known.st, before);
            return m_known;
        }
        if (fd >= 0)
            ::close(fd);
        else if (errno == ENOENT || errno == ENOTDIR) {
            m_known.error = errno;
            return m_known;
        }
        // Unreadable, or the like: the length query may still answer.
    }
    m_known.error = ::stat(name.constData(), &m_known.st) == 0 ? 0 : errno;
    return m_known;
}

// What the reading batch before learnt of this file, when a status query
// shows the file unchanged since.
bool FileSlots::reuse(const QByteArray &name)
{
    if (!m_known.keepable || m_known.asked || m_batchAccess != Read || !sameText(m_known.name, name))
        return false;
    struct stat now;
    if (::stat(name.constData(), &now) != 0 || !sameStatus(now, m_known.st))
        return false;
    m_known.st = now;
    m_known.asked = true;
    m_known.reused = true;
    return true;
}

int FileSlots::knownReadFd()
{
    if (m_known.readFd < 0)
        m_known.readFd = openFile(m_known.name, Read);
    return m_known.readFd;
}

// A slot still reading through the batch's handle (one left open by a
// failure) takes it over; a further such slot gets a copy of its own. With
// no handle yet (knowledge reused) the first opens one. A slot for which
// the system refuses a handle ends up closed.
void FileSlots::handOver()
{
    int given = -1;
    for (int n = FirstSlot; m_borrowers > 0 && n <= LastSlot; ++n) {
        Slot &s = m_slots[n];
        if (!s.borrowed)
            continue;
        --m_borrowers;
        s.borrowed = false;
        if (given >= 0) {
            s.fd = ::fcntl(given, F_DUPFD_CLOEXEC, 0);
        } else if (m_known.readFd >= 0) {
            s.fd = given = m_known.readFd;
            m_known.readFd = -1;
        } else {
            s.fd = given = openQuietly(m_known.name, Read);
        }
        if (s.fd < 0)
            s = Slot{};
    }
}

void FileSlots::forget()
{
    handOver();
    if (m_known.readFd >= 0)
        ::close(m_known.readFd);
    m_known = Known{};
}

void FileSlots::endBatch()
{
    if (!m_known.keepable) {
        forget();
        return;
    }
    // Kept for the next batch without its handle, to be checked first.
    handOver();
    if (m_known.readFd >= 0)
        ::close(m_known.readFd);
    m_known.readFd = -1;
    m_known.asked = false;
    m_known.reused = false;
}

// The path in the system's encoding, or null for one that no file can have.
// The last one is kept, since a call asks for one file several times.
const QByteArray *FileSlots::nativeName(const QString &path)
{
    if (path.isEmpty())
        return nullptr;
    if (!sameText(path, m_lastPath)) {
        if (!validPath(path))
            return nullptr;
        m_lastName = QFile::encodeName(path);
        m_lastPath = path;
    }
    return &m_lastName;
}

std::int64_t FileSlots::FileLen(const QString &path)
{
    const QByteArray *native = nativeName(path);
    if (!native)
        basic::raise(basic::FileNotFound);
    const QByteArray &name = *native;
    if (m_batchDepth > 0) {
        const Known &k = ask(name);
        if (k.error != 0)
            basic::raise(basic::FileNotFound);
        return k.st.st_size;
    }
    struct stat st;
    if (::stat(name.constData(), &st) != 0)
        basic::raise(basic::FileNotFound);
    return st.st_size;
}

int FileSlots::FreeFile() const
{
    for (int n = FirstSlot; n <= LastSlot; ++n)
        if (!m_slots[n].isOpen())
            return n;
    basic::raise(TooManyFiles);
}

void FileSlots::Open(int slot, const QString &path, Access access)
{
    const QByteArray *native = validNumber(slot) ? nativeName(path) : nullptr;
    if (!native)
        basic::raise(basic::BadFileNameOrNumber);
    if (m_slots[slot].isOpen())
        basic::raise(basic::FileAlreadyOpen);
    const QByteArray &name = *native;

    if (m_batchDepth > 0) {
        Known &k = ask(name);
        if (k.error != 0)
            raiseOpenError(k.error);
        if (!S_ISREG(k.st.st_mode))
            basic::raise(basic::PathFileAccessError);
        if (access == Read) {
            // Reused knowledge opens a handle only for a read past the tail.
            if (k.readFd < 0 && !k.reused)
                k.readFd = openFile(name, Read);
            m_slots[slot] = Slot{-1, true, Read, 0, k.st.st_size};
            ++m_borrowers;
        } else {
            m_slots[slot] = Slot{openFile(name, Write), false, Write, 0, k.st.st_size};
        }
        return;
    }

    const int fd = openFile(name, access);
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        basic::raise(basic::PathFileAccessError);
    }
    m_slots[slot] = Slot{fd, false, access, 0, st.st_size};
}

void FileSlots::Close(int slot)
{
    if (!validNumber(slot))
        basic::raise(basic::BadFileNameOrNumber);
    Slot &s = m_slots[slot];
    if (s.borrowed)
        --m_borrowers;
    else if (s.fd >= 0)
        ::close(s.fd);
    s = Slot{};
}

void FileSlots::Reset()
{
    for (int n = FirstSlot; n <= LastSlot; ++n)
        Close(n);
}

bool FileSlots::IsOpen(int slot) const
{
    return validNumber(slot) && m_slots[slot].isOpen();
}

const FileSlots::Slot &FileSlots::openSlot(int slot) const
{
    if (!validNumber(slot) || !m_slots[slot].isOpen())
        basic::raise(basic::BadFileNameOrNumber);
    return m_slots[slot];
}

FileSlots::Slot &FileSlots::openSlot(int slot)
{
    return const_cast<Slot &>(std::as_const(*this).openSlot(slot));
}

std::int64_t FileSlots::LOF(int slot) const
{
    return openSlot(slot).length;
}

void FileSlots::Get(int slot, std::int64_t offset, unsigned char *into, std::int64_t count)
{
    const Slot &s = openSlot(slot);
    if (s.access != Read)
        basic::raise(BadFileMode);
    if (offset < 0)
        basic::raise(BadRecordNumber);

    // Within a batch the last 128 bytes are read once for all who ask.
    const std::int64_t tailStart = m_known.st.st_size - std::int64_t(m_known.tail.size());
    if (s.borrowed && tailStart >= 0 && offset >= tailStart && offset + count <= m_known.st.st_size) {
        if (!m_known.tailRead) {
            readAt(knownReadFd(), tailStart, m_known.tail.data(), std::int64_t(m_known.tail.size()));
            m_known.tailRead = true;
        }
        std::memcpy(into, m_known.tail.data() + (offset - tailStart), static_cast<size_t>(count));
        return;
    }
    readAt(s.borrowed ? knownReadFd() : s.fd, offset, into, count);
}

void FileSlots::Seek(int slot, std::int64_t offset)
{
    Slot &s = openSlot(slot);
    if (offset < 0)
        basic::raise(BadRecordNumber);
    s.position = offset;
}

void FileSlots::Put(int slot, const unsigned char *from, std::int64_t count)
{
    Slot &s = openSlot(slot);
    if (s.access != Write)
        basic::raise(BadFileMode);
    std::int64_t done = 0;
    while (done < count) {
        const ssize_t n = ::pwrite(s.fd, from + done, static_cast<size_t>(count - done), s.position + done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            basic::raise(n < 0 && errno == ENOSPC ? DiskFull : DeviceIOError);
        done += n;
    }
    s.position += done;
    s.length = std::max(s.length, s.position);
    // What the batch read or asked may be out of date now, and what an
    // earlier batch learnt is not to be trusted any more.
    m_known.tailRead = false;
    m_known.keepable = false;
    if (m_known.asked && s.length > m_known.st.st_size)
        forget();
}

} // namespace music
