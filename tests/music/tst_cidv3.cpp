// cIDV3 and its file slots on files written byte by byte.
#include "TagFiles.h"
#include "music/FileSlots.h"

#include <QtTest>
#include <fcntl.h>

using music::FileSlots;
using namespace tagfiles;

namespace {

QByteArray getAt(FileSlots &t, int slot, qint64 offset, int count)
{
    QByteArray b(count, '?');
    t.Get(slot, offset, reinterpret_cast<unsigned char *>(b.data()), count);
    return b;
}

void putAt(FileSlots &t, int slot, qint64 offset, const QByteArray &bytes)
{
    t.Seek(slot, offset);
    t.Put(slot, reinterpret_cast<const unsigned char *>(bytes.constData()), bytes.size());
}

const QString Untagged = QStringLiteral("|||||12");
const QString Plain = QStringLiteral("1|3|128|0|44100|Stereo|2|No|No|No|No|None"); // a plain frame from the version on

} // namespace

class tst_cidv3 : public QObject {
    Q_OBJECT
private slots:
    void missingAndOddPaths()
    {
        const int handles = openHandles();
        const QString tagged = make("a.mp3", framed(1000) + block("TAG", "Song", "Band", "Disc", "1999", "Note", 17));
        const QString fifo = m_dir.filePath("pipe.mp3");
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0644), 0);
        cIDV3 t;
        t.setfilename(tagged);
        QCOMPARE(tagOf(t) + '|' + facts(t), "Song|Band|Disc|1999|Note|17|1128|0|" + Plain);
        const QString info = t.InfoString();
        // Start values, but InfoString keeps the text of the file before.
        for (const QString &path : {m_dir.filePath("none.mp3"), QString(), tagged + QChar(0) + "junk", m_dir.path(), fifo}) {
            t.setfilename(path);
            const bool kept = path == m_dir.path() || path == fifo;
            QCOMPARE(t.filename() + tagOf(t) + '|' + facts(t) + t.InfoString(),
                     (kept ? path + Untagged + "|0|0|25|0|0|0|0|Stereo|2|||||None" : Untagged + "|0|0|0|0|0|0|0||0|||||") + info);
            QVERIFY(!t.HasTag() && !t.WriteTag() && !t.ClearTag());
        }
        t.setfilename(tagged);
        QVERIFY(QFile::remove(tagged));
        QVERIFY(!t.HasTag() && !t.WriteTag() && !t.ClearTag() && !QFile::exists(tagged));
        const QByteArray before = filler(400) + block("TAG", "Keep", "", "", "", "", 1);
        t.setfilename(make("ro.mp3", before));
        t.setTitle("Changed");
        asNobody(t.filename(), 0444, [&] { QVERIFY(!t.WriteTag() && !t.ClearTag() && t.HasTag()); });
        QCOMPARE(read(t.filename()), before);
        QCOMPARE(openHandles(), handles); // none of it kept a slot or a handle
    }

    void writeAndClearTag()
    {
        const QByteArray audio = filler(1000), thirtyOne = "abcdefghijklmnopqrstuvwxyz01234";
        const QString path = make("plain.mp3", audio);
        cIDV3 t;
        t.setfilename(path);
        QVERIFY(!t.HasTag());
        t.setTitle(thirtyOne);
        t.setArtist("  two  ");
        t.setAlbum(QString(30, ' '));
        t.setYear("19999");
        t.setComments("tab\t");
        t.setGenre(147);
        // Over the last 128 bytes, tag or audio: the file never grows.
        QCOMPARE(tagOf(t), QString(thirtyOne.left(30)) + "|  two||1999|tab\t|147");
        QCOMPARE(read(path), audio);
        QVERIFY(t.WriteTag() && t.HasTag());
        QCOMPARE(read(path), audio.left(872) + block("TAG", thirtyOne, "  two", "", "1999", "tab\t", 147));
        t.setfilename(make("block.mp3", block("TAG", "Only", "Block", "", "2020", "x", 3)));
        QCOMPARE(tagOf(t) + '|' + QString::number(t.FileBytes()), QString("Only|Block||2020|x|3|128"));
        t.setAlbum("Now");
        QVERIFY(t.WriteTag());
        QCOMPARE(read(t.filename()), block("TAG", "Only", "Block", "Now", "2020", "x", 3));
        QVERIFY(t.ClearTag() && !t.HasTag() && !FileSlots::process().IsOpen(1));
        QCOMPARE(read(t.filename()), QByteArray(127, '\0') + char(3));
        // Read blind to case, written in capitals.
        for (const char *marker : {"tag", "TaG", "tAg", "TAX", " TA", "TAQ"}) {
            const bool tagged = QByteArray(marker).toUpper() == "TAG";
            t.setfilename(make("m.mp3", filler(300) + block(marker, "Low", "", "", "", "", 255)));
            QVERIFY2(t.HasTag() == tagged && tagOf(t) == (tagged ? "Low|||||255" : Untagged), marker);
            QVERIFY(t.WriteTag() && read(t.filename()).mid(300, 3) == "TAG");
        }

        // Only blanks are trimmed: another writer's zero fill stays in the text.
        const QByteArray b = block("TAG", "Hello", "Band  ", "", "99", "c", 20, '\0');
        t.setfilename(make("zero.mp3", filler(200) + b));
        const QChar z(0);
        QCOMPARE(tagOf(t), "Hello" + QString(25, z) + "|Band  " + QString(24, z) + '|' + QString(30, z) + "|99" + QString(2, z)
                               + "|c" + QString(29, z) + "|20");
        QVERIFY(t.WriteTag() && read(t.filename()).right(128) == b);
        t.setfilename(make("zero.mp3", filler(200) + "TAG" + QByteArray("A\0\0", 3) + QByteArray(121, ' ') + char(0)));
        QCOMPARE(t.Title(), QString::fromLatin1("A\0\0", 3));
        // ClearTag keeps the genre byte and the record in memory.
        t.setfilename(make("clear.mp3", audio + block("TAG", "Gone", "Gone", "Gone", "1234", "Gone", 77)));
        QVERIFY(t.ClearTag() && !t.HasTag());
        QCOMPARE(read(t.filename()), audio + QByteArray(127, '\0') + char(77));
        QCOMPARE(tagOf(t), QString("Gone|Gone|Gone|1234|Gone|77"));
        t.setfilename(t.filename());
        QCOMPARE(tagOf(t), Untagged);
        t.setfilename(make("plain.mp3", audio));
        QVERIFY(t.ClearTag());
        QCOMPARE(read(t.filename()), audio.left(872) + QByteArray(127, '\0') + audio.right(1));
    }

    void genresAndTheirList()
    {
        cIDV3 t;
        for (basic::Long genre : {0, 255, 256, -1, std::numeric_limits<basic::Long>::min()}) {
            const bool fits = genre == 0 || genre == 255;
            QCOMPARE(errorOf([&] { t.setGenre(genre); }), fits ? 0 : int(basic::Overflow));
            QCOMPARE(t.Genre(), fits ? genre : 255);
        }
        QStringList names;
        for (int i = 0; i < 148; ++i)
            names << t.GenreText(basic::Integer(i));
        QCOMPARE(QStringList({names[0], names[12], names[67], names[85], names[147], t.GenreText(-32768), t.GenreText(-1),
                              t.GenreText(148), t.GenreText(255)}),
                 QStringList({"Blues", "Other", "Psychadelic", "Bebob", "Synthpop", "Unknown", "Unknown", "Unknown", "Unknown"}));
        // Each statement may fail on its own, and the rest still runs.
        RecordingList list, failing;
        for (const auto &[in, out] : QList<std::pair<int, int>>{{200, 0}, {147, 147}, {148, 0}, {-1, 0}}) {
            basic::Integer index = basic::Integer(in);
            t.FillComboGenre(list, index);
            QCOMPARE(QString("%1 %2").arg(index).arg(list.index), QString("%1 %1").arg(out));
            QCOMPARE(list.items, names);
        }
        failing.failing = QStringList{"Clear", "AddItem 5", "setListIndex"};
        basic::Integer index = 17;
        t.FillComboGenre(failing, index);
        QCOMPARE(QStringList(failing.items) << QString::number(failing.index), QStringList("stale") + names.mid(0, 5) + names.mid(6) << "-1");
    }

    void codePageOfTheText()
    {
        cIDV3 t, r;
        t.setfilename(make("cp.mp3", filler(300)));
        const QString title = QStringLiteral(u"Café € … \u007f\u00a0ÿ");
        t.setTitle(title);
        t.setArtist(QStringLiteral(u"Ωmega Ÿ\u009f\u0080\u0100"));
        QVERIFY(t.WriteTag());
        QCOMPARE(read(t.filename()).right(128), block("TAG", "Caf\xe9 \x80 \x85 \x7f\xa0\xff", "?mega \x9f???", "", "", "", 12));
        r.setfilename(t.filename());
        QCOMPARE(r.Title() + '|' + r.Artist(), title + QStringLiteral(u"|?mega Ÿ???"));
        // The five bytes Windows-1252 leaves open read as Latin-1.
        QByteArray b("TAG");
        for (int i = 0; i < 124; ++i)
            b += char(0x80 + i);
        r.setfilename(make("cp.mp3", filler(300) + b + char(1)));
        QCOMPARE(r.Title().left(3), QStringLiteral(u"€\u0081\u201a"));
        QVERIFY(r.WriteTag() && read(t.filename()).right(128) == b + char(1));
    }

    void changesBetweenCallsAreSeen()
    {
        // Overwritten, replaced or removed under the same length and time: still seen.
        const QByteArray audio = filler(600);
        const QStringList after = {Untagged, "New|||||4", "Other|||||4", Untagged};
        const int handles = openHandles();
        for (int i = 0; i < 4; ++i) {
            const QString path = make("changed.mp3", audio + block("TAG", "Old", "", "", "", "", 4));
            const QByteArray file = QFile::encodeName(path);
            QTest::qSleep(50); // the last change lies some ticks of the system clock back
            cIDV3 t;
            t.setfilename(path);
            QVERIFY(t.HasTag());
            struct stat st {};
            ::stat(file.constData(), &st);
            QFile f(path);
            const QString other = make("other.mp3", audio + block("TAG", "Other", "", "", "", "", 4));
            if (i < 2)
                QVERIFY(f.open(QIODevice::ReadWrite) && f.seek(600 + 3 * i) && f.write(i ? "New" : "XYZ") == 3);
            else
                QVERIFY(i == 2 ? ::rename(QFile::encodeName(other).constData(), file.constData()) == 0 : f.remove());
            f.close();
            const timespec times[2] = {st.st_atim, st.st_mtim};
            ::utimensat(AT_FDCWD, file.constData(), times, 0);
            QCOMPARE(t.HasTag(), after[i] != Untagged);
            t.setfilename(path);
            QCOMPARE(tagOf(t), after[i]);
        }
        QCOMPARE(openHandles(), handles);
    }

    void frameAnalysis()
    {
        // Facts ending in '|' go on as a plain frame's; info "=": the row before's.
        const QByteArray f = hex("fffb9000");
        QList<std::tuple<QList<std::pair<int, QByteArray>>, qint64, QString, const char *>> rows = {
            {{{0, f}}, 4000000, "4000000|250|", nullptr},
            {{{0, hex("fffa9000")}}, 4000000, "4000000|250|1|3|128|0|44100|Stereo|2|No|Yes|No|No|None", nullptr},
            {{{0, hex("fff39000")}, {100, hex("fffd9000")}, {200, hex("ffff0000")}, {299, hex("00fffb5044")}}, 3000,
             "3000|0|1|3|64|0|44100|Joint Stereo|2|No|No|No|Yes|None", nullptr}, // MPEG-2, Layer II, FF FF passed over
            {{{10, hex("fffffb9000")}, {47, "Xing"}, {55, hex("00000007")}}, 3000, "3000|0|1|3|128|7|44100|", nullptr},
            {{{299, hex("ff")}}, 300, "300|0|25|0|0|0|0|Stereo|2|||||None", "="},
            // Past 4999 the header is read from -1: empty bits, version 25.
            {{{4999, f}}, 6000, "6000|0|", nullptr},
            {{{5000, f}}, 6000, "6000|0|25|0|0|0|0|Stereo|2|||||None", "="},
            // "Xing" at +36 only, whatever the mode.
            {{{0, f}, {36, "Xing"}, {44, hex("00001000")}}, 9000, "9000|0|1|3|128|4096|44100|", nullptr},
            {{{0, f}, {36, "Xing"}, {44, hex("80000001")}}, 9000, "9000|0|", nullptr},
            {{{0, f}, {36, "xing"}, {44, hex("00001000")}}, 9000, "9000|0|", nullptr},
            {{{0, f}, {36, "Info"}, {44, hex("00001000")}}, 9000, "9000|0|", nullptr},
            {{{0, f}, {21, "Xing"}, {29, hex("00001000")}}, 9000, "9000|0|", nullptr},
            {{{4999, f}, {5035, "Xing"}, {5043, hex("00000300")}}, 9000, "9000|0|1|3|128|768|44100|", nullptr},
            {{{0, hex("fffb91ed")}}, 16000, "16000|1|1|3|128|0|44100|Single Channel|1|Yes|No|Yes|Yes|50/15", nullptr},
            {{{0, hex("fffb9400")}}, 16000, "16000|1|1|3|128|0|48000|", nullptr},
            {{{0, hex("fffb9800")}}, 16000, "16000|1|1|3|128|0|32000|", nullptr},
            {{{0, hex("fffb9c00")}}, 16000, "16000|1|1|3|128|0|0|", nullptr}, // rate index 3: no row, the rest runs on
            {{{0, f}}, 268435456, "268435456|0|", nullptr},
            {{{0, f}}, 268435455, "268435455|16777|", nullptr},
            {{{0, hex("fffb1000")}}, 131071999, "131071999|32767|1|3|32|0|44100|", nullptr},
            {{{0, hex("fffb1000")}}, 131072000, "131072000|0|1|3|32|0|44100|", nullptr},
            {{{0, "ID3"}, {3, hex("04000000")}}, 6000, "6000|0|0|0|0|0|0|Stereo|2|||||None", "="},
            {{{0, "ID3"}, {35, "Xing"}, {43, hex("00000100")}}, 6000, "6000|0|0|0|0|256|0|Stereo|2|||||None", "="},
            {{{0, hex("ff1800")}}, 16000, "16000|0|1|0|1|0|44100|Stereo|2|||||None", "="},
            // A row a found frame never reaches; 24 bits have no places 29 and 30.
            {{{0, hex("ff1e40")}}, 16000, "16000|1|1|1|128|0|44100|Stereo|2|No|Yes|||None",
             "Size: 16000 bytes\r\nLength: 1 seconds\r\nMPEG 1.0 layer 1\r\n128kbit, 0 frames\r\n44100hz Stereo\r\n"
             "Private: No\r\nCRCs: Yes\r\nCopyrighted: \r\nOriginal: \r\nEmphasis: None"},
        };
        const QStringList words = {"Stereo", "Joint Stereo", "Dual Channel", "Single Channel", "CCITT J 17", "Reserved", "50/15", "None"};
        for (int v = 0; v < 4; ++v) // each mode with another emphasis
            rows.append({{{0, hex("fffb90") + char(v << 6 | (3 - v))}}, 16000,
                         QString("16000|1|1|3|128|0|44100|%1|%2|No|No|No|No|").arg(words[v]).arg(2 - v / 3) + words[4 + v], nullptr});
        cIDV3 t;
        // Seconds/Kbits of 16000 bytes at each bitrate index, of Layer III, and
        // of Layer I and II, whose rows only a header read from -1 reaches.
        QStringList rates;
        for (const char *head : {"fffb", "ff1e", "ff1c"}) {
            rates << QString();
            for (int i = 0; i < 16; ++i) {
                t.setfilename(make("f.mp3", hex(head) + char(i << 4) + '\0', 16000));
                rates.last() += QString(" %1/%2").arg(t.Seconds()).arg(t.Kbits());
            }
        }
        QCOMPARE(rates, QStringList({" 0/0 4/32 3/40 2/48 2/56 2/64 1/80 1/96 1/112 1/128 0/160 0/192 0/224 0/256 0/320 0/0",
                                     " 0/0 4/32 2/64 1/96 1/128 0/160 0/192 0/224 0/256 0/288 0/320 0/352 0/384 0/416 0/448 0/0",
                                     " 0/0 4/32 2/48 2/56 2/64 1/80 1/96 1/112 1/128 0/160 0/192 0/224 0/256 0/320 0/384 0/0"}));
        for (const auto &[parts, size, want, info] : rows) {
            const QString before = t.InfoString();
            t.setfilename(make("f.mp3", lay(parts), size));
            QCOMPARE(facts(t), want.endsWith('|') ? want + Plain.section('|', want.count('|') - 2) : want);
            if (info)
                QCOMPARE(t.InfoString(), qstrcmp(info, "=") ? QString(info) : before);
        }
    }

    void slotRulesAndBatches()
    {
        FileSlots t;
        const QByteArray bytes = filler(1000);
        const QString file = make("a.bin", "0123456789"), missing = m_dir.filePath("missing.bin"), fifo = m_dir.filePath("fifo");
        const QString big = make("b.bin", bytes);
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0644), 0);
        const int before = openHandles();
        const QList<std::pair<std::function<void()>, int>> calls = {
            {[&] { t.Open(0, file, FileSlots::Read); }, 52},      {[&] { t.Open(256, file, FileSlots::Read); }, 52},
            {[&] { t.Open(1, QString(), FileSlots::Read); }, 52}, {[&] { t.Open(1, missing, FileSlots::Read); }, 53},
            {[&] { t.Open(1, missing, FileSlots::Write); }, 53},  {[&] { t.Open(1, m_dir.path(), FileSlots::Read); }, 75},
            {[&] { t.Open(1, fifo, FileSlots::Read); }, 75},      {[&] { t.Open(1, fifo, FileSlots::Write); }, 75},
            {[&] { t.FileLen(missing); }, 53},                    {[&] { t.Open(1, file, FileSlots::Read); }, 0},
            {[&] { t.Open(1, file, FileSlots::Read); }, 55},      {[&] { getAt(t, 1, -1, 1); }, 63},
            {[&] { getAt(t, 2, 0, 1); }, 52},                     {[&] { t.Seek(1, -1); }, 63},
            {[&] { putAt(t, 1, 0, "x"); }, 54},                   {[&] { t.LOF(3); }, 52},
            {[&] { t.Close(0); }, 52},                            {[&] { t.Close(2); }, 0}, // not open: left alone
            {[&] { t.Open(2, file, FileSlots::Write); }, 0},      {[&] { getAt(t, 2, 0, 1); }, 54},
        };
        for (int i = 0; i < calls.size(); ++i)
            QVERIFY2(errorOf(calls[i].first) == calls[i].second, qPrintable(QString::number(i)));
        QVERIFY(!QFile::exists(missing) && t.FreeFile() == 3);
        QCOMPARE(getAt(t, 1, 8, 4), QByteArray("89\0\0", 4));
        putAt(t, 2, 3, "ab");
        t.Put(2, reinterpret_cast<const unsigned char *>("a"), 1);
        putAt(t, 2, 9, "ab");
        QCOMPARE(read(file), QByteArray("012aba678ab"));
        QCOMPARE(QString("%1 %2 %3").arg(t.LOF(1)).arg(t.LOF(2)).arg(t.FileLen(file)), QString("10 11 11"));
        t.Reset();
        QVERIFY(!t.IsOpen(1) && !t.IsOpen(2) && openHandles() == before);

        {
            FileSlots::Batch batch(t);
            {
                FileSlots::Batch nested(t); // ends nothing: only the outer one lets go
                QCOMPARE(t.FileLen(big), 1000);
                t.Open(1, big, FileSlots::Read);
            }
            t.Open(2, big, FileSlots::Read);
            QCOMPARE(openHandles(), before + 1);
            QCOMPARE(getAt(t, 1, 872, 3) + getAt(t, 2, 875, 125) + getAt(t, 1, 0, 50), bytes.mid(872) + bytes.left(50));
            QCOMPARE(getAt(t, 2, 995, 10) + QByteArray::number(t.LOF(2)), bytes.right(5) + QByteArray(5, 0) + "1000");
            t.Close(1);
            t.Open(3, big, FileSlots::Write);
            putAt(t, 3, 872, "ZZZ");
            QCOMPARE(getAt(t, 2, 872, 3), QByteArray("ZZZ"));
            putAt(t, 3, 1000, "!");
            t.Close(3);
            QCOMPARE(t.FileLen(big), 1001);
            t.Open(1, big, FileSlots::Read);
        }
        QCOMPARE(openHandles(), before + 2);
        QCOMPARE(getAt(t, 1, 100, 10), bytes.mid(100, 10));
        t.Reset();
        {
            FileSlots::Batch batch(t, FileSlots::Write);
            QCOMPARE(t.FileLen(file), 11);
            make("a.bin", "0"); // behind the batch's back
            QCOMPARE(t.FileLen(file), 11);
        }
        QTest::qSleep(50);
        for (int pass = 0; pass < 2; ++pass) {
            FileSlots::Batch batch(t);
            t.Open(1, big, FileSlots::Read);
            QCOMPARE(getAt(t, 1, 873, 128), "ZZ" + bytes.mid(875) + "!");
            QCOMPARE(openHandles(), before + 1 - pass);
            t.Close(1);
        }
        asNobody(big, 0, [&] {
            FileSlots::Batch batch(t);
            QCOMPARE(QString("%1 %2").arg(t.FileLen(big)).arg(errorOf([&] { t.Open(1, big, FileSlots::Read); })), QString("1001 75"));
        });
        QVERIFY(!t.IsOpen(1));
    }

    void shortFileTakesSlotOneForGood() // last: nothing gives the slot back
    {
        // Under 128 bytes a tag routine fails after opening slot 1, kept for good.
        const QByteArray tagged = framed(1000) + block("TAG", "Before", "", "", "", "", 5);
        const QString good = make("good.mp3", tagged), shortFile = make("short.mp3", framed(100));
        cIDV3 a, b, c;
        a.setfilename(good);
        QCOMPARE(tagOf(a), QString("Before|||||5"));
        const int handles = openHandles();
        b.setfilename(shortFile);
        QCOMPARE(b.filename() + tagOf(b) + '|' + facts(b), shortFile + Untagged + "|100|0|" + Plain); // analysed in slot 2
        QVERIFY(FileSlots::process().IsOpen(1) && openHandles() == handles + 1);
        a.setTitle("After");
        QVERIFY(!a.HasTag() && !a.WriteTag() && !a.ClearTag());
        c.setfilename(good);
        QCOMPARE(tagOf(c) + '|' + facts(c), Untagged + "|1128|0|" + Plain);
        c.setfilename(make("empty.mp3", QByteArray()));
        QVERIFY(!c.filename().isEmpty() && !c.WriteTag());
        for (int i = 0; i < 40; ++i) {
            c.setfilename(i % 2 ? good : shortFile);
            c.WriteTag();
            c.ClearTag();
        }
        QCOMPARE(openHandles(), handles + 1);
        QCOMPARE(read(good) + read(shortFile) + read(m_dir.filePath("empty.mp3")), tagged + framed(100));
    }

private:
    QString make(const QString &name, const QByteArray &bytes, qint64 size = -1) { return write(m_dir.path(), name, bytes, size); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_cidv3)
#include "tst_cidv3.moc"
