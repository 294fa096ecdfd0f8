#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <sys/stat.h>

namespace music {

// The numbered file slots of the process, as the runtime's FileLen, Open,
// Get, Put, Seek, LOF and Close statements have them. A slot that is never
// closed keeps its OS handle until the process ends, exactly as a forgotten
// Close would; no handle is held anywhere but here.
//
// Offsets count from 0. A negative offset is the runtime's record number
// below 1 and fails with error 63; reading past the end is no failure and
// gives zero bytes. Every failure is a basic::RuntimeError.
//
// Within a Batch the OS work of one file is shared: its length and kind are
// asked once, and a slot opened for reading takes a handle the batch already
// holds for that file instead of opening it again. Every Open and Close
// still happens in the table with all its failures; only the system calls
// behind them are saved. A caller wraps one call of its own in a batch, for
// which the file is taken to stay what it was.
//
// What a reading batch learnt of its file (length, kind, last 128 bytes)
// may serve the next reading batch on the same path, which then asks the
// system for the file's status alone and starts afresh unless inode, length,
// owner, mode and both time stamps are still the same. The knowledge is kept
// only when no change can leave all of that as it was: the file system is
// stamped by this kernel to below the millisecond, and the file's last change
// lies a tick of the stamping clock before we looked. Any write through the
// table and any writing batch drop it; no handle is kept for it. What the
// status cannot tell is another program's write caught halfway (stamped
// before we looked, its bytes copied after we read) or its stores into a
// mapping it already dirtied: those show from the file's next change on.
class FileSlots {
public:
    enum Access { Read, Write };

    static constexpr int FirstSlot = 1;
    static constexpr int LastSlot = 255;

    // A batch that expects to read asks the system by opening the file for
    // reading at the first question, since its Open follows anyway; one that
    // expects to write asks for the length alone.
    class Batch {
    public:
        explicit Batch(FileSlots &table, Access expected = Read);
        ~Batch();
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;

    private:
        FileSlots &m_slots;
    };

    FileSlots() = default;
    ~FileSlots();
    FileSlots(const FileSlots &) = delete;
    FileSlots &operator=(const FileSlots &) = delete;

    // The one table of the process.
    static FileSlots &process();

    // Length of a file by its path; 53 when the system cannot tell.
    std::int64_t FileLen(const QString &path);

    // The lowest slot that is free (error 67 when none is).
    int FreeFile() const;

    // Opens a regular file for byte access; the file is never created or
    // cut. 52 for a bad slot number or path, 55 when the slot is taken,
    // 53 when the file is missing, 75 when it is refused or not a file.
    void Open(int slot, const QString &path, Access access);

    // A slot that is not open is left alone, as the runtime does.
    void Close(int slot);

    // Closes every slot: the runtime's Reset statement. The program itself
    // never calls it; the fuzzer does, so that each input starts afresh.
    void Reset();

    bool IsOpen(int slot) const;

    // Length of the open file: the length known at its open, moved on by
    // the slot's own writes.
    std::int64_t LOF(int slot) const;

    void Get(int slot, std::int64_t offset, unsigned char *into, std::int64_t count);

    void Seek(int slot, std::int64_t offset);

    // Writes at the slot's position and moves it on.
    void Put(int slot, const unsigned char *from, std::int64_t count);

private:
    struct Slot {
        int fd = -1;           // a handle of the slot's own
        bool borrowed = false; // reads through the batch's handle instead
        Access access = Read;
        std::int64_t position = 0;
        std::int64_t length = 0;

        bool isOpen() const { return fd >= 0 || borrowed; }
    };

    // What the running batch knows of the one file it works on.
    struct Known {
        QByteArray name;
        bool asked = false;    // asked by the running batch
        int error = 0;         // errno of the length query, 0 when it answered
        struct stat st {};
        int readFd = -1;       // opened when first needed
        bool reused = false;   // taken over from an earlier batch
        bool keepable = false; // may serve a later batch; see above
        // The last bytes of the file, where the tag routines read twice.
        std::array<unsigned char, 128> tail{};
        bool tailRead = false;
    };

    const Slot &openSlot(int slot) const;
    Slot &openSlot(int slot);
    const QByteArray *nativeName(const QString &path);
    Known &ask(const QByteArray &name);
    bool reuse(const QByteArray &name);
    int knownReadFd();
    void handOver();
    void forget();
    void endBatch();

    std::array<Slot, LastSlot + 1> m_slots{};
    int m_batchDepth = 0;
    Access m_batchAccess = Read;
    int m_borrowers = 0; // slots reading through the batch's handle
    Known m_known;
    QString m_lastPath;
    QByteArray m_lastName;
};

} // namespace music
