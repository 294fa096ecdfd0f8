// The numbered file slots: the runtime's failures, and the sharing of one
// OS handle within a batch without a handle left behind.

#include "TagFiles.h"

#include "basic/RuntimeError.h"
#include "music/FileSlots.h"

#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

using music::FileSlots;
using namespace tagfiles;

namespace {

int errorOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const basic::RuntimeError &e) {
        return e.number();
    }
    return 0;
}

QByteArray get(FileSlots &table, int slot, qint64 offset, int count)
{
    QByteArray b(count, '?');
    table.Get(slot, offset, reinterpret_cast<unsigned char *>(b.data()), count);
    return b;
}

} // namespace

class tst_fileslots : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void runtimeFailures();
    void readAndWrite();
    void batchSharesOneHandle();
    void slotsLeftOpenOutliveTheBatch();
    void batchAnswersOnceForItsFile();
    void unreadableFileStillHasALength();

private:
    QTemporaryDir m_dir;
};

void tst_fileslots::runtimeFailures()
{
    FileSlots t;
    const QString file = write(m_dir.path(), "a.bin", "0123456789");
    const QString missing = QDir(m_dir.path()).filePath("missing.bin");
    const QString fifo = QDir(m_dir.path()).filePath("fifo");
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0644), 0);

    QCOMPARE(t.FreeFile(), 1);
    QCOMPARE(errorOf([&] { t.Open(0, file, FileSlots::Read); }), 52);
    QCOMPARE(errorOf([&] { t.Open(256, file, FileSlots::Read); }), 52);
    QCOMPARE(errorOf([&] { t.Open(1, QString(), FileSlots::Read); }), 52);
    QCOMPARE(errorOf([&] { t.Open(1, missing, FileSlots::Read); }), 53);
    QCOMPARE(errorOf([&] { t.Open(1, missing, FileSlots::Write); }), 53);
    QVERIFY(!QFile::exists(missing)); // never created
    QCOMPARE(errorOf([&] { t.Open(1, m_dir.path(), FileSlots::Read); }), 75);
    QCOMPARE(errorOf([&] { t.Open(1, fifo, FileSlots::Read); }), 75);
    QCOMPARE(errorOf([&] { t.Open(1, fifo, FileSlots::Write); }), 75);
    QVERIFY(!t.IsOpen(1));

    t.Open(1, file, FileSlots::Read);
    QCOMPARE(t.FreeFile(), 2);
    QCOMPARE(errorOf([&] { t.Open(1, file, FileSlots::Read); }), 55);
    QCOMPARE(errorOf([&] { get(t, 1, -1, 1); }), 63);
    QCOMPARE(errorOf([&] { get(t, 2, 0, 1); }), 52);
    QCOMPARE(errorOf([&] { t.Seek(1, -1); }), 63);
    const unsigned char x = 'x';
    QCOMPARE(errorOf([&] { t.Put(1, &x, 1); }), 54);
    QCOMPARE(errorOf([&] { t.LOF(3); }), 52);
    QCOMPARE(errorOf([&] { t.Close(0); }), 52);
    t.Close(2); // not open: left alone
    QCOMPARE(errorOf([&] { t.FileLen(missing); }), 53);
    QCOMPARE(t.FileLen(file), 10);
    t.Close(1);
}

void tst_fileslots::readAndWrite()
{
    FileSlots t;
    const QString file = write(m_dir.path(), "rw.bin", "0123456789");
    const int before = openHandles();
    t.Open(1, file, FileSlots::Read);
    t.Open(2, file, FileSlots::Write);
    QCOMPARE(t.LOF(1), 10);
    QCOMPARE(get(t, 1, 8, 4), QByteArray("89\0\0", 4)); // past the end reads zero
    QCOMPARE(errorOf([&] { get(t, 2, 0, 1); }), 54);

    const unsigned char ab[] = {'a', 'b'};
    t.Seek(2, 3);
    t.Put(2, ab, 2);
    t.Put(2, ab, 1); // at the moved position
    QCOMPARE(read(file), QByteArray("012aba6789"));
    t.Seek(2, 9);
    t.Put(2, ab, 2);
    QCOMPARE(t.LOF(2), 11);
    QCOMPARE(read(file), QByteArray("012aba678ab"));
    QCOMPARE(openHandles(), before + 2);
    t.Reset();
    QVERIFY(!t.IsOpen(1) && !t.IsOpen(2));
    QCOMPARE(openHandles(), before);
}

void tst_fileslots::batchSharesOneHandle()
{
    FileSlots t;
    QByteArray bytes = filler(1000);
    const QString file = write(m_dir.path(), "b.bin", bytes);
    const int before = openHandles();
    {
        FileSlots::Batch batch(t);
        QCOMPARE(t.FileLen(file), 1000);
        t.Open(1, file, FileSlots::Read);
        t.Open(2, file, FileSlots::Read);
        QCOMPARE(openHandles(), before + 1);
        QCOMPARE(t.LOF(2), 1000);
        // The tail is read once and served to both, the rest as asked.
        QCOMPARE(get(t, 1, 872, 3), bytes.mid(872, 3));
        QCOMPARE(get(t, 2, 875, 125), bytes.mid(875, 125));
        QCOMPARE(get(t, 2, 990, 20), bytes.mid(990) + QByteArray(10, '\0'));
        QCOMPARE(get(t, 1, 0, 50), bytes.left(50));
        t.Close(1);
        QCOMPARE(get(t, 2, 0, 4), bytes.left(4));
        t.Close(2);
        QCOMPARE(openHandles(), before + 1);

        // A write within the batch is a handle of its own, and what was
        // read of the tail is read again afterwards.
        t.Open(3, file, FileSlots::Write);
        const unsigned char z[] = {'Z', 'Z', 'Z'};
        t.Seek(3, 872);
        t.Put(3, z, 3);
        t.Close(3);
        t.Open(1, file, FileSlots::Read);
        QCOMPARE(get(t, 1, 872, 3), QByteArray("ZZZ"));
        t.Close(1);
    }
    QCOMPARE(openHandles(), before);
}

void tst_fileslots::slotsLeftOpenOutliveTheBatch()
{
    FileSlots t;
    const QByteArray bytes = filler(500);
    const QString file = write(m_dir.path(), "c.bin", bytes);
    const int before = openHandles();
    {
        FileSlots::Batch batch(t);
        t.Open(1, file, FileSlots::Read);
        t.Open(2, file, FileSlots::Read);
    }
    // Each slot now holds a handle of its own.
    QCOMPARE(openHandles(), before + 2);
    t.Close(1);
    QCOMPARE(get(t, 2, 100, 10), bytes.mid(100, 10));
    QCOMPARE(t.LOF(2), 500);
    t.Close(2);
    QCOMPARE(openHandles(), before);

    // A nested batch ends nothing: only the outer one lets go.
    {
        FileSlots::Batch outer(t);
        {
            FileSlots::Batch inner(t);
            t.Open(1, file, FileSlots::Read);
            t.Close(1);
        }
        QCOMPARE(openHandles(), before + 1);
    }
    QCOMPARE(openHandles(), before);
}

void tst_fileslots::batchAnswersOnceForItsFile()
{
    FileSlots t;
    const QString file = write(m_dir.path(), "d.bin", filler(300));
    {
        FileSlots::Batch batch(t, FileSlots::Write);
        QCOMPARE(t.FileLen(file), 300);
        write(m_dir.path(), "d.bin", filler(100)); // behind the batch's back
        QCOMPARE(t.FileLen(file), 300);
        // A write that grows the file makes the batch ask again.
        t.Open(1, file, FileSlots::Write);
        t.Seek(1, 400);
        const unsigned char b = 'b';
        t.Put(1, &b, 1);
        t.Close(1);
        QCOMPARE(t.FileLen(file), 401);
    }
    QFile::remove(file);
    QCOMPARE(errorOf([&] { t.FileLen(file); }), 53);
}

void tst_fileslots::unreadableFileStillHasALength()
{
    FileSlots t;
    const QString file = write(m_dir.path(), "e.bin", filler(200));
    ::chmod(QFile::encodeName(file).constData(), 0);
    ::chmod(QFile::encodeName(m_dir.path()).constData(), 0755);
    const bool root = ::geteuid() == 0;
    if (root)
        ::setfsuid(65534); // root reads any file by mode bits
    int openError = 0;
    std::int64_t length = -1;
    {
        FileSlots::Batch batch(t);
        length = t.FileLen(file);
        openError = errorOf([&] { t.Open(1, file, FileSlots::Read); });
    }
    if (root)
        ::setfsuid(0);
    ::chmod(QFile::encodeName(file).constData(), 0644);
    QCOMPARE(length, 200);
    QCOMPARE(openError, 75);
    QVERIFY(!t.IsOpen(1));
}

QTEST_GUILESS_MAIN(tst_fileslots)
#include "tst_fileslots.moc"
