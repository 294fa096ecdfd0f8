#include "music/FileSlots.h"

#include "basic/RuntimeError.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
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
// refused, and regular files ignore the flag.
int openFile(const QByteArray &name, FileSlots::Access access)
{
    const int flags = (access == FileSlots::Read ? O_RDONLY : O_WRONLY) | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int fd;
    do
        fd = ::open(name.constData(), flags);
    while (fd < 0 && errno == EINTR);
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
        m_slots.forget();
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
    if (!m_known.asked || m_known.name != name) {
        forget();
        m_known.name = name;
        m_known.asked = true;
        if (m_batchAccess == Read) {
            int fd;
            do
                fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
            while (fd < 0 && errno == EINTR);
            if (fd >= 0 && ::fstat(fd, &m_known.st) == 0) {
                m_known.readFd = fd;
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
    }
    return m_known;
}

void FileSlots::forget()
{
    // A slot still reading through the batch's handle (one left open by a
    // failure) takes it over; a second such slot gets a copy of its own
    // (or, should the system refuse the copy, ends up closed).
    if (m_known.readFd >= 0) {
        bool handedOver = false;
        for (int n = FirstSlot; m_borrowers > 0 && n <= LastSlot; ++n) {
            Slot &s = m_slots[n];
            if (!s.borrowed)
                continue;
            --m_borrowers;
            s.borrowed = false;
            if (handedOver)
                s.fd = ::fcntl(m_known.readFd, F_DUPFD_CLOEXEC, 0);
            handedOver = true;
        }
        if (!handedOver)
            ::close(m_known.readFd);
    }
    m_known = Known{};
}

const QByteArray &FileSlots::nativeName(const QString &path)
{
    if (path != m_lastPath) {
        m_lastName = QFile::encodeName(path);
        m_lastPath = path;
    }
    return m_lastName;
}

std::int64_t FileSlots::FileLen(const QString &path)
{
    if (!validPath(path))
        basic::raise(basic::FileNotFound);
    const QByteArray name = nativeName(path);
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
        if (m_slots[n].fd < 0)
            return n;
    basic::raise(TooManyFiles);
}

void FileSlots::Open(int slot, const QString &path, Access access)
{
    if (!validNumber(slot) || !validPath(path))
        basic::raise(basic::BadFileNameOrNumber);
    if (m_slots[slot].fd >= 0)
        basic::raise(basic::FileAlreadyOpen);
    const QByteArray name = nativeName(path);

    if (m_batchDepth > 0) {
        Known &k = ask(name);
        if (k.error != 0)
            raiseOpenError(k.error);
        if (!S_ISREG(k.st.st_mode))
            basic::raise(basic::PathFileAccessError);
        if (access == Read) {
            if (k.readFd < 0)
                k.readFd = openFile(name, Read);
            m_slots[slot] = Slot{k.readFd, true, Read, 0, k.st.st_size};
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
    return validNumber(slot) && m_slots[slot].fd >= 0;
}

const FileSlots::Slot &FileSlots::openSlot(int slot) const
{
    if (!validNumber(slot) || m_slots[slot].fd < 0)
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
            readAt(s.fd, tailStart, m_known.tail.data(), std::int64_t(m_known.tail.size()));
            m_known.tailRead = true;
        }
        std::memcpy(into, m_known.tail.data() + (offset - tailStart), static_cast<size_t>(count));
        return;
    }
    readAt(s.fd, offset, into, count);
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
    // What the batch read or asked may be out of date now.
    m_known.tailRead = false;
    if (m_known.asked && s.length > m_known.st.st_size)
        forget();
}

} // namespace music
