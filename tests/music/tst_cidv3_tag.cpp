// The ID3v1 block of cIDV3 on files written byte by byte. No file here is
// shorter than 128 bytes: such a file takes slot 1 for the whole process,
// which tst_cidv3_slot covers on its own.

#include "TagFiles.h"

#include "basic/RuntimeError.h"
#include "music/FileSlots.h"
#include "music/ListControl.h"
#include "music/cIDV3.h"

#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <limits>
#include <sys/stat.h>

using namespace tagfiles;

namespace {

struct RecordingList : ListControl {
    QStringList items;
    int index = -1;
    int clears = 0;
    bool failClear = false;
    int failItem = -1; // the call, counted from 0, that fails
    int addCalls = 0;
    bool failIndex = false;

    void Clear() override
    {
        if (failClear)
            basic::raise(basic::InvalidProcedureCall);
        ++clears;
        items.clear();
    }
    void AddItem(const QString &item) override
    {
        if (addCalls++ == failItem)
            basic::raise(basic::InvalidProcedureCall);
        items << item;
    }
    void setListIndex(int i) override
    {
        if (failIndex)
            basic::raise(basic::InvalidPropertyValue);
        index = i;
    }
};

int errorOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const basic::RuntimeError &e) {
        return e.number();
    }
    return 0;
}

void overwrite(const QString &path, qint64 offset, const QByteArray &bytes)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadWrite) || !f.seek(offset) || f.write(bytes) != bytes.size())
        qFatal("cannot overwrite %s", qPrintable(path));
}

// Runs change, then puts the file's modification time back.
void keepingModificationTime(const QString &path, const std::function<void()> &change)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat st {};
    ::stat(name.constData(), &st);
    change();
    const timespec times[2] = {st.st_atim, st.st_mtim};
    ::utimensat(AT_FDCWD, name.constData(), times, 0);
}

} // namespace

class tst_cidv3_tag : public QObject {
    Q_OBJECT
private slots:
    void init() { QVERIFY(m_dir.isValid()); }

    void startValuesAndMissingFiles();
    void textSettersCutAndFill();
    void writeTagGoesOverTheLastBlock();
    void fileThatIsAllBlock();
    void markerIsBlindToCase();
    void zeroFilledFieldsKeepTheirZeros();
    void clearTagKeepsTheGenreByte();
    void genreRangeAndNames();
    void fillComboGenre();
    void codePageOfTheText();
    void refusedFilesAnswerFalse();
    void otherKindsOfPath();
    void noHandleOutlivesACall();
    void changesBetweenCallsAreSeen();

private:
    QTemporaryDir m_dir;
};

void tst_cidv3_tag::startValuesAndMissingFiles()
{
    cIDV3 t;
    QCOMPARE(t.filename(), QString());
    QCOMPARE(t.Title(), QString());
    QCOMPARE(t.Genre(), 12);
    QCOMPARE(t.GenreText(basic::Integer(t.Genre())), QStringLiteral("Other"));
    QCOMPARE(t.InfoString(), QString());
    QCOMPARE(t.Mode(), QString());
    QCOMPARE(t.Channels(), 0);

    // A tagged file with a frame, then a path that is not there: the tag
    // and the frame facts go back to start values, the info text stays.
    QByteArray audio = filler(1000);
    audio.replace(0, 4, QByteArray::fromHex("fffb9000"));
    const QString tagged = write(m_dir.path(), "a.mp3", audio + block("TAG", "Song", "Band", "Disc", "1999", "Note", 17));
    t.setfilename(tagged);
    QCOMPARE(t.filename(), tagged);
    QCOMPARE(t.Title(), QStringLiteral("Song"));
    QCOMPARE(t.Genre(), 17);
    QCOMPARE(t.Hz(), 44100);
    const QString info = t.InfoString();
    QVERIFY(info.startsWith(QStringLiteral("Size: 1128 bytes\r\n")));

    for (const QString &missing : {QDir(m_dir.path()).filePath("none.mp3"), QString()}) {
        t.setfilename(missing);
        QCOMPARE(t.filename(), QString());
        QCOMPARE(t.Title(), QString());
        QCOMPARE(t.Artist(), QString());
        QCOMPARE(t.Year(), QString());
        QCOMPARE(t.Genre(), 12);
        QCOMPARE(t.Hz(), 0);
        QCOMPARE(t.Kbits(), 0);
        QCOMPARE(t.FileBytes(), 0);
        QCOMPARE(t.Mode(), QString());
        QCOMPARE(t.CRCs(), QString());
        QCOMPARE(t.InfoString(), info);
        QVERIFY(!t.HasTag());
        QVERIFY(!t.WriteTag());
        QVERIFY(!t.ClearTag());
    }

    // A file that goes away after it was loaded.
    t.setfilename(tagged);
    QVERIFY(QFile::remove(tagged));
    QVERIFY(!t.HasTag());
    QVERIFY(!t.WriteTag());
    QVERIFY(!t.ClearTag());
    QVERIFY(!QFile::exists(tagged));
}

void tst_cidv3_tag::textSettersCutAndFill()
{
    cIDV3 t;
    const QString thirtyOne = QStringLiteral("abcdefghijklmnopqrstuvwxyz01234");
    t.setTitle(thirtyOne);
    QCOMPARE(t.Title(), thirtyOne.left(30));
    t.setTitle(QStringLiteral("Hey"));
    QCOMPARE(t.Title(), QStringLiteral("Hey"));
    t.setArtist(QStringLiteral("  two  "));
    QCOMPARE(t.Artist(), QStringLiteral("  two"));
    t.setYear(QStringLiteral("19999"));
    QCOMPARE(t.Year(), QStringLiteral("1999"));
    t.setAlbum(QString(30, QLatin1Char(' ')));
    QCOMPARE(t.Album(), QString());
    t.setComments(QStringLiteral("tab\t"));
    QCOMPARE(t.Comments(), QStringLiteral("tab\t"));

    // On disk every field is blank-filled, never zero-filled, and the
    // setters changed nothing on disk before WriteTag.
    const QByteArray audio = filler(500);
    const QString path = write(m_dir.path(), "t.mp3", audio);
    cIDV3 w;
    w.setfilename(path);
    w.setTitle(QStringLiteral("Hey"));
    w.setArtist(thirtyOne);
    w.setYear(QStringLiteral("12"));
    QCOMPARE(read(path), audio);
    QVERIFY(w.WriteTag());
    const QByteArray tail = read(path).right(128);
    QCOMPARE(tail, QByteArray("TAG") + field("Hey", 30, ' ') + thirtyOne.left(30).toLatin1() + QByteArray(30, ' ')
                 + QByteArray("12  ") + QByteArray(30, ' ') + char(12));
}

void tst_cidv3_tag::writeTagGoesOverTheLastBlock()
{
    const QByteArray audio = filler(1000);
    const QString path = write(m_dir.path(), "plain.mp3", audio);
    cIDV3 t;
    t.setfilename(path);
    QVERIFY(!t.HasTag());
    QCOMPARE(t.Title(), QString());
    QCOMPARE(t.Genre(), 12);

    t.setTitle(QStringLiteral("Title"));
    t.setArtist(QStringLiteral("Artist"));
    t.setAlbum(QStringLiteral("Album"));
    t.setYear(QStringLiteral("2001"));
    t.setComments(QStringLiteral("Comment"));
    t.setGenre(147);
    QVERIFY(t.WriteTag());

    const QByteArray after = read(path);
    QCOMPARE(after.size(), 1000);
    QCOMPARE(after.left(872), audio.left(872));
    QCOMPARE(after.mid(872), block("TAG", "Title", "Artist", "Album", "2001", "Comment", 147));
    QVERIFY(t.HasTag());

    cIDV3 r;
    r.setfilename(path);
    QCOMPARE(r.Title(), QStringLiteral("Title"));
    QCOMPARE(r.Artist(), QStringLiteral("Artist"));
    QCOMPARE(r.Album(), QStringLiteral("Album"));
    QCOMPARE(r.Year(), QStringLiteral("2001"));
    QCOMPARE(r.Comments(), QStringLiteral("Comment"));
    QCOMPARE(r.Genre(), 147);

    // A second write replaces the block in place.
    r.setTitle(QStringLiteral("Second"));
    QVERIFY(r.WriteTag());
    QCOMPARE(read(path).size(), 1000);
    QCOMPARE(read(path).mid(875, 30), field("Second", 30, ' '));
}

void tst_cidv3_tag::fileThatIsAllBlock()
{
    const QString path = write(m_dir.path(), "block.mp3", block("TAG", "Only", "Block", "", "2020", "x", 3));
    cIDV3 t;
    t.setfilename(path);
    QVERIFY(t.HasTag());
    QCOMPARE(t.Title(), QStringLiteral("Only"));
    QCOMPARE(t.Artist(), QStringLiteral("Block"));
    QCOMPARE(t.Year(), QStringLiteral("2020"));
    QCOMPARE(t.Genre(), 3);
    QCOMPARE(t.FileBytes(), 128);

    t.setAlbum(QStringLiteral("Now"));
    QVERIFY(t.WriteTag());
    QCOMPARE(read(path), block("TAG", "Only", "Block", "Now", "2020", "x", 3));

    QVERIFY(t.ClearTag());
    QCOMPARE(read(path), QByteArray(127, '\0') + char(3));
    QVERIFY(!t.HasTag());
    // The slot was given back on every path above.
    QVERIFY(!music::FileSlots::process().IsOpen(1));
}

void tst_cidv3_tag::markerIsBlindToCase()
{
    for (const QByteArray &marker : {QByteArray("tag"), QByteArray("TaG"), QByteArray("tAg")}) {
        const QString path = write(m_dir.path(), "small.mp3", filler(300) + block(marker, "Low", "", "", "", "", 9));
        cIDV3 t;
        t.setfilename(path);
        QVERIFY2(t.HasTag(), marker.constData());
        QCOMPARE(t.Title(), QStringLiteral("Low"));
        QCOMPARE(t.Genre(), 9);
        QVERIFY(t.WriteTag());
        QCOMPARE(read(path).mid(300, 3), QByteArray("TAG"));
        QCOMPARE(read(path).size(), 428);
    }
    for (const QByteArray &marker : {QByteArray("TAX"), QByteArray(" TA"), QByteArray("TAQ")}) {
        const QString path = write(m_dir.path(), "not.mp3", filler(300) + block(marker, "Low", "", "", "", "", 9));
        cIDV3 t;
        t.setfilename(path);
        QVERIFY2(!t.HasTag(), marker.constData());
        QCOMPARE(t.Title(), QString());
        QCOMPARE(t.Genre(), 12);
    }
}

void tst_cidv3_tag::zeroFilledFieldsKeepTheirZeros()
{
    // Another writer fills with zero bytes; only blanks are trimmed, so the
    // zeros come back inside the text, and are written back as they are.
    QByteArray b = block("TAG", "Hello", "Band  ", "", "99", "c", 20, '\0');
    const QString path = write(m_dir.path(), "zero.mp3", filler(200) + b);
    cIDV3 t;
    t.setfilename(path);
    QCOMPARE(t.Title(), QStringLiteral("Hello") + QString(25, QChar(0)));
    QCOMPARE(t.Artist(), QStringLiteral("Band  ") + QString(24, QChar(0)));
    QCOMPARE(t.Album(), QString(30, QChar(0)));
    QCOMPARE(t.Year(), QStringLiteral("99") + QString(2, QChar(0)));
    QCOMPARE(t.Genre(), 20);

    QVERIFY(t.WriteTag());
    QCOMPARE(read(path).right(128), b);

    // Blanks behind the zeros go, the zeros stay.
    b = QByteArray("TAG") + QByteArray("A\0\0  ", 5) + QByteArray(25, ' ') + QByteArray(94, ' ') + char(0);
    write(m_dir.path(), "zero.mp3", filler(200) + b);
    t.setfilename(path);
    QCOMPARE(t.Title(), QString::fromLatin1("A\0\0", 3));
}

void tst_cidv3_tag::clearTagKeepsTheGenreByte()
{
    const QByteArray audio = filler(700);
    const QString path = write(m_dir.path(), "clear.mp3", audio + block("TAG", "Gone", "Gone", "Gone", "1234", "Gone", 77));
    cIDV3 t;
    t.setfilename(path);
    QVERIFY(t.HasTag());
    QVERIFY(t.ClearTag());
    const QByteArray after = read(path);
    QCOMPARE(after.size(), 828);
    QCOMPARE(after.left(700), audio);
    QCOMPARE(after.mid(700), QByteArray(127, '\0') + char(77));
    QVERIFY(!t.HasTag());
    // The record in memory is untouched.
    QCOMPARE(t.Title(), QStringLiteral("Gone"));
    QCOMPARE(t.Genre(), 77);

    t.setfilename(path);
    QCOMPARE(t.Title(), QString());
    QCOMPARE(t.Genre(), 12);

    // On a tagless file it blanks 127 bytes of audio all the same.
    const QString plain = write(m_dir.path(), "plain.mp3", audio);
    t.setfilename(plain);
    QVERIFY(t.ClearTag());
    QCOMPARE(read(plain), audio.left(572) + QByteArray(127, '\0') + audio.right(1));
}

void tst_cidv3_tag::genreRangeAndNames()
{
    cIDV3 t;
    t.setGenre(0);
    QCOMPARE(t.Genre(), 0);
    t.setGenre(255);
    QCOMPARE(t.Genre(), 255);
    for (basic::Long bad : {256, -1, 65536 + 5, std::numeric_limits<basic::Long>::min()}) {
        QCOMPARE(errorOf([&] { t.setGenre(bad); }), int(basic::Overflow));
        QCOMPARE(t.Genre(), 255);
    }

    QCOMPARE(t.GenreText(0), QStringLiteral("Blues"));
    QCOMPARE(t.GenreText(12), QStringLiteral("Other"));
    QCOMPARE(t.GenreText(67), QStringLiteral("Psychadelic"));
    QCOMPARE(t.GenreText(85), QStringLiteral("Bebob"));
    QCOMPARE(t.GenreText(147), QStringLiteral("Synthpop"));
    for (basic::Integer outside : {basic::Integer(148), basic::Integer(-1), basic::Integer(255), basic::Integer(-32768)})
        QCOMPARE(t.GenreText(outside), QStringLiteral("Unknown"));
    QSet<QString> names;
    for (basic::Integer i = 0; i < 148; ++i)
        names.insert(t.GenreText(i));
    QCOMPARE(names.size(), 148);
    QVERIFY(!names.contains(QStringLiteral("Unknown")));

    // A genre byte of 255 from disk is kept as read and written back.
    const QString path = write(m_dir.path(), "g.mp3", filler(200) + block("TAG", "", "", "", "", "", 255));
    t.setfilename(path);
    QCOMPARE(t.Genre(), 255);
    QCOMPARE(t.GenreText(basic::Integer(t.Genre())), QStringLiteral("Unknown"));
}

void tst_cidv3_tag::fillComboGenre()
{
    cIDV3 t;
    RecordingList list;
    list.items << QStringLiteral("stale");
    basic::Integer index = 200;
    t.FillComboGenre(list, index);
    QCOMPARE(index, basic::Integer(0));
    QCOMPARE(list.clears, 1);
    QCOMPARE(list.items.size(), 148);
    QCOMPARE(list.items.first(), QStringLiteral("Blues"));
    QCOMPARE(list.items.at(147), QStringLiteral("Synthpop"));
    QCOMPARE(list.index, 0);
    for (int i = 0; i < 148; ++i)
        QCOMPARE(list.items.at(i), t.GenreText(basic::Integer(i)));

    index = 147;
    t.FillComboGenre(list, index);
    QCOMPARE(index, basic::Integer(147));
    QCOMPARE(list.index, 147);
    QCOMPARE(list.items.size(), 148);

    index = -3;
    t.FillComboGenre(list, index);
    QCOMPARE(index, basic::Integer(0));

    // Each statement fails on its own; the rest still runs.
    RecordingList failing;
    failing.failClear = true;
    failing.failItem = 5;
    failing.items << QStringLiteral("stale");
    index = 17;
    t.FillComboGenre(failing, index);
    QCOMPARE(failing.items.size(), 1 + 147);
    QCOMPARE(failing.items.first(), QStringLiteral("stale"));
    QVERIFY(!failing.items.contains(QStringLiteral("Funk")));
    QCOMPARE(failing.index, 17);

    RecordingList refusing;
    refusing.failIndex = true;
    index = 3;
    t.FillComboGenre(refusing, index);
    QCOMPARE(refusing.items.size(), 148);
    QCOMPARE(refusing.index, -1);
}

void tst_cidv3_tag::codePageOfTheText()
{
    const QString path = write(m_dir.path(), "cp.mp3", filler(300));
    cIDV3 t;
    t.setfilename(path);
    t.setTitle(QStringLiteral(u"Café € … Ÿ"));
    t.setArtist(QStringLiteral(u"Ωmega"));
    QCOMPARE(t.Artist(), QStringLiteral(u"Ωmega")); // held as text until written
    QVERIFY(t.WriteTag());
    const QByteArray onDisk = read(path).right(128);
    QCOMPARE(onDisk.mid(3, 10), QByteArray("Caf\xe9 \x80 \x85 \x9f", 10));
    QCOMPARE(onDisk.mid(33, 5), QByteArray("?mega"));

    cIDV3 r;
    r.setfilename(path);
    QCOMPARE(r.Title(), QStringLiteral(u"Café € … Ÿ"));
    QCOMPARE(r.Artist(), QStringLiteral("?mega"));

    // The five bytes Windows-1252 leaves open read as their Latin-1
    // characters and are written back as the same bytes; so is every other.
    QByteArray all(30, '\0');
    for (int i = 0; i < 30; ++i)
        all[i] = char(0x80 + i);
    QByteArray b = block("TAG", all, QByteArray("\x81\x8d\x8f\x90\x9d", 5), "", "", "", 1);
    write(m_dir.path(), "cp.mp3", filler(300) + b);
    r.setfilename(path);
    QCOMPARE(r.Artist(), QStringLiteral(u"\u0081\u008d\u008f\u0090\u009d"));
    QCOMPARE(r.Title().at(0), QChar(0x20AC));
    QVERIFY(r.WriteTag());
    QCOMPARE(read(path).right(128), b);
}

void tst_cidv3_tag::refusedFilesAnswerFalse()
{
    const QByteArray before = filler(400) + block("TAG", "Keep", "", "", "", "", 1);
    const QString path = write(m_dir.path(), "ro.mp3", before);
    cIDV3 t;
    t.setfilename(path);
    t.setTitle(QStringLiteral("Changed"));
    bool wrote = true, cleared = true, tagged = false;
    refusingWrites(path, [&] {
        wrote = t.WriteTag();
        cleared = t.ClearTag();
        tagged = t.HasTag(); // reading is still allowed
    });
    QVERIFY(!wrote);
    QVERIFY(!cleared);
    QVERIFY(tagged);
    QCOMPARE(read(path), before);

    // The refused open took no slot: the next file is written normally.
    const QString other = write(m_dir.path(), "rw.mp3", filler(400));
    t.setfilename(other);
    t.setTitle(QStringLiteral("Fine"));
    QVERIFY(t.WriteTag());
    QVERIFY(t.HasTag());
}

void tst_cidv3_tag::otherKindsOfPath()
{
    // A folder exists for the length query but cannot be opened as a file.
    cIDV3 t;
    t.setfilename(m_dir.path());
    QCOMPARE(t.filename(), m_dir.path());
    QVERIFY(!t.HasTag());
    QVERIFY(!t.WriteTag());
    QVERIFY(!t.ClearTag());
    QCOMPARE(t.FileBytes(), 0);

    // A named pipe must neither hang nor be written to.
    const QString fifo = QDir(m_dir.path()).filePath("pipe.mp3");
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0644), 0);
    t.setfilename(fifo);
    QCOMPARE(t.filename(), fifo);
    QVERIFY(!t.HasTag());
    QVERIFY(!t.WriteTag());
    QVERIFY(!t.ClearTag());
    QVERIFY(!music::FileSlots::process().IsOpen(1));

    // A path holding a zero character is not cut short to another file.
    const QString real = write(m_dir.path(), "real.mp3", filler(300) + block("TAG", "x", "", "", "", "", 1));
    t.setfilename(real + QChar(0) + QStringLiteral("junk"));
    QCOMPARE(t.filename(), QString());
}

void tst_cidv3_tag::noHandleOutlivesACall()
{
    const QString tagged = write(m_dir.path(), "h1.mp3", filler(6000) + block("TAG", "a", "", "", "", "", 1));
    const QString plain = write(m_dir.path(), "h2.mp3", filler(6000));
    const int before = openHandles();
    cIDV3 t;
    for (int i = 0; i < 50; ++i) {
        t.setfilename(i % 2 ? tagged : plain);
        t.HasTag();
        t.WriteTag();
        t.ClearTag();
        t.setfilename(m_dir.path());
    }
    QCOMPARE(openHandles(), before);
    for (int n = music::FileSlots::FirstSlot; n <= music::FileSlots::LastSlot; ++n)
        QVERIFY(!music::FileSlots::process().IsOpen(n));
}

void tst_cidv3_tag::changesBetweenCallsAreSeen()
{
    // What one call read may serve the next only while the file is as it
    // was. Each change keeps the length and the modification time.
    const QByteArray audio = filler(600);
    const QString other = QDir(m_dir.path()).filePath("other.mp3");
    struct Case {
        const char *name;
        std::function<void(const QString &)> change;
        bool tagged;
        QString title;
    };
    const QList<Case> cases = {
        {"marker overwritten", [](const QString &p) { overwrite(p, 600, "XYZ"); }, false, QString()},
        {"title overwritten", [](const QString &p) { overwrite(p, 603, "New"); }, true, QStringLiteral("New")},
        {"replaced",
         [&](const QString &p) {
             write(m_dir.path(), "other.mp3", audio + block("TAG", "Other", "", "", "", "", 4));
             QVERIFY(::rename(QFile::encodeName(other).constData(), QFile::encodeName(p).constData()) == 0);
         },
         true, QStringLiteral("Other")},
        {"removed", [](const QString &p) { QFile::remove(p); }, false, QString()},
    };
    for (const Case &c : cases) {
        const QString path = write(m_dir.path(), "changed.mp3", audio + block("TAG", "Old", "", "", "", "", 4));
        QTest::qSleep(50); // the last change lies some ticks of the system clock back
        const int handles = openHandles();
        cIDV3 t;
        t.setfilename(path);
        QVERIFY2(t.HasTag(), c.name);
        QCOMPARE(openHandles(), handles);
        keepingModificationTime(path, [&] { c.change(path); });
        QVERIFY2(t.HasTag() == c.tagged, c.name);
        t.setfilename(path);
        QVERIFY2(t.Title() == c.title, c.name);
        QCOMPARE(openHandles(), handles);
    }
}

QTEST_GUILESS_MAIN(tst_cidv3_tag)
#include "tst_cidv3_tag.moc"
