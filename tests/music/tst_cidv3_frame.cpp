// The first-frame analysis of cIDV3 on bytes written by hand. Every file
// here is at least 128 bytes long, so slot 1 stays free.

#include "TagFiles.h"

#include "music/cIDV3.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace {

struct Part {
    qint64 offset;
    QByteArray bytes;
};

QByteArray hex(const char *h) { return QByteArray::fromHex(h); }

QString info(const QStringList &lines) { return lines.join(QStringLiteral("\r\n")); }

} // namespace

class tst_cidv3_frame : public QObject {
    Q_OBJECT
private slots:
    void init() { QVERIFY(m_dir.isValid()); }

    void frameAtTheStart();
    void searchTakesOnlyMpeg1Layer3();
    void searchWindowEndsAt4999();
    void xingCountAtItsFixedPlace();
    void modesAndFlags();
    void indexesBeyondTheRows();
    void secondsFromLengthAndFirstRate();
    void noFrameReadsFromMinusOne();
    void unopenableFile();

private:
    // Zeros with the parts laid in, grown to size as a hole.
    QString make(const QString &name, const QList<Part> &parts, qint64 size)
    {
        QByteArray bytes;
        for (const Part &p : parts) {
            if (bytes.size() < p.offset + p.bytes.size())
                bytes.resize(p.offset + p.bytes.size(), '\0');
            bytes.replace(p.offset, p.bytes.size(), p.bytes);
        }
        return tagfiles::write(m_dir.path(), name, bytes, size);
    }

    cIDV3 &load(const QList<Part> &parts, qint64 size)
    {
        m_t.setfilename(make(QStringLiteral("f.mp3"), parts, size));
        return m_t;
    }

    QTemporaryDir m_dir;
    cIDV3 m_t;
};

void tst_cidv3_frame::frameAtTheStart()
{
    cIDV3 &t = load({{0, hex("fffb9000")}}, 4000000);
    QCOMPARE(t.FileBytes(), 4000000);
    QCOMPARE(t.MpegVersion(), 1);
    QCOMPARE(t.LayerVersion(), 3);
    QCOMPARE(t.Kbits(), 128);
    QCOMPARE(t.Hz(), 44100);
    QCOMPARE(t.Mode(), QStringLiteral("Stereo"));
    QCOMPARE(t.Channels(), 2);
    QCOMPARE(t.CRCs(), QStringLiteral("No"));
    QCOMPARE(t.PrivateBit(), QStringLiteral("No"));
    QCOMPARE(t.Copyrighted(), QStringLiteral("No"));
    QCOMPARE(t.Original(), QStringLiteral("No"));
    QCOMPARE(t.Emphasis(), QStringLiteral("None"));
    QCOMPARE(t.Frames(), 0);
    QCOMPARE(t.Seconds(), 250);
    QCOMPARE(t.InfoString(), info({"Size: 4000000 bytes", "Length: 250 seconds", "MPEG 1.0 layer 3", "128kbit, 0 frames",
                                   "44100hz Stereo", "Private: No", "CRCs: No", "Copyrighted: No", "Original: No",
                                   "Emphasis: None"}));

    load({{0, hex("fffa9000")}}, 4000000);
    QCOMPARE(t.CRCs(), QStringLiteral("Yes"));
    QCOMPARE(t.Kbits(), 128);
    QCOMPARE(t.InfoString().split(QStringLiteral("\r\n")).at(6), QStringLiteral("CRCs: Yes"));

    // A tag at the end changes nothing of the analysis but the length.
    load({{0, hex("fffb9000")}, {15872, tagfiles::block("TAG", "t", "", "", "", "", 1)}}, 16000);
    QCOMPARE(t.Title(), QStringLiteral("t"));
    QCOMPARE(t.FileBytes(), 16000);
    QCOMPARE(t.Kbits(), 128);
    QCOMPARE(t.Seconds(), 1);
}

void tst_cidv3_frame::searchTakesOnlyMpeg1Layer3()
{
    // MPEG-2, MPEG-2.5, Layer I and II, and FF FF are passed over; FF FB
    // 50 44 at 700 is a 64 kbit joint stereo frame marked original.
    cIDV3 &t = load({{0, hex("fff39000")},
                     {100, hex("fff29000")},
                     {200, hex("fffd9000")},
                     {300, hex("fffc9000")},
                     {400, hex("ffe39000")},
                     {500, hex("fffe9000")},
                     {600, hex("ffff0000")},
                     {699, hex("00fffb5044")}},
                    3000);
    QCOMPARE(t.MpegVersion(), 1);
    QCOMPARE(t.LayerVersion(), 3);
    QCOMPARE(t.Kbits(), 64);
    QCOMPARE(t.Hz(), 44100);
    QCOMPARE(t.Mode(), QStringLiteral("Joint Stereo"));
    QCOMPARE(t.Original(), QStringLiteral("Yes"));

    // A pair FF FF FB is found at its second FF: the "Xing" word that
    // proves it sits 36 bytes behind offset 11.
    load({{10, hex("fffffb9000")}, {47, "Xing"}, {55, hex("00000007")}}, 3000);
    QCOMPARE(t.Frames(), 7);
    QCOMPARE(t.Kbits(), 128);

    // The last byte of the file is FF: what lies behind it reads as zero.
    load({{299, hex("ff")}}, 300);
    QCOMPARE(t.MpegVersion(), 25);
    QCOMPARE(t.Hz(), 0);
}

void tst_cidv3_frame::searchWindowEndsAt4999()
{
    cIDV3 &t = load({{4999, hex("fffb9000")}}, 6000);
    QCOMPARE(t.MpegVersion(), 1);
    QCOMPARE(t.Kbits(), 128);
    QCOMPARE(t.Hz(), 44100);
    QCOMPARE(t.Seconds(), 0);
    const QString found = t.InfoString();
    QVERIFY(found.startsWith(QStringLiteral("Size: 6000 bytes\r\nLength: 0 seconds\r\n")));

    // At 5000 the pair is out of reach. The header is then read from -1:
    // four zero bytes give the empty bit text, whose fields are all index
    // 0; version 25 ends the routine and leaves the earlier text.
    load({{5000, hex("fffb9000")}}, 6000);
    QCOMPARE(t.FileBytes(), 6000);
    QCOMPARE(t.MpegVersion(), 25);
    QCOMPARE(t.LayerVersion(), 0);
    QCOMPARE(t.Mode(), QStringLiteral("Stereo"));
    QCOMPARE(t.Channels(), 2);
    QCOMPARE(t.Emphasis(), QStringLiteral("None"));
    QCOMPARE(t.Hz(), 0);
    QCOMPARE(t.Kbits(), 0);
    QCOMPARE(t.CRCs(), QString());
    QCOMPARE(t.Seconds(), 0);
    QCOMPARE(t.InfoString(), found);
}

void tst_cidv3_frame::xingCountAtItsFixedPlace()
{
    const QByteArray frame = hex("fffb9000");
    cIDV3 &t = load({{0, frame}, {36, "Xing"}, {40, hex("00000000")}, {44, hex("00001000")}}, 9000);
    QCOMPARE(t.Frames(), 4096);
    QCOMPARE(t.InfoString().split(QStringLiteral("\r\n")).at(3), QStringLiteral("128kbit, 4096 frames"));
    // The count does not enter the length: the first frame's rate decides.
    QCOMPARE(t.Seconds(), 0);

    load({{0, frame}, {36, "Xing"}, {44, hex("7fffffff")}}, 9000);
    QCOMPARE(t.Frames(), 2147483647);

    // A count with its top bit set overflows on the way and is dropped;
    // everything else is still analysed.
    load({{0, frame}, {36, "Xing"}, {44, hex("80000001")}}, 9000);
    QCOMPARE(t.Frames(), 0);
    QCOMPARE(t.Kbits(), 128);
    QVERIFY(t.InfoString().contains(QStringLiteral("128kbit, 0 frames")));

    // Case-sensitive word, "Info" not counted, and only at +36: the mono
    // place +21 is not looked at.
    for (const QList<Part> &parts : QList<QList<Part>>{{{0, frame}, {36, "xing"}, {44, hex("00001000")}},
                                                        {{0, frame}, {36, "Info"}, {44, hex("00001000")}},
                                                        {{0, frame}, {21, "Xing"}, {29, hex("00001000")}}}) {
        load(parts, 9000);
        QCOMPARE(t.Frames(), 0);
        QCOMPARE(t.Kbits(), 128);
    }

    // The same word at the place of a frame at 4999 still counts.
    load({{4999, frame}, {5035, "Xing"}, {5043, hex("00000300")}}, 9000);
    QCOMPARE(t.Frames(), 768);
}

void tst_cidv3_frame::modesAndFlags()
{
    cIDV3 &t = load({{0, hex("fffb91ed")}}, 16000);
    QCOMPARE(t.PrivateBit(), QStringLiteral("Yes"));
    QCOMPARE(t.Mode(), QStringLiteral("Single Channel"));
    QCOMPARE(t.Channels(), 1);
    QCOMPARE(t.Copyrighted(), QStringLiteral("Yes"));
    QCOMPARE(t.Original(), QStringLiteral("Yes"));
    QCOMPARE(t.Emphasis(), QStringLiteral("50/15"));
    QCOMPARE(t.InfoString(), info({"Size: 16000 bytes", "Length: 1 seconds", "MPEG 1.0 layer 3", "128kbit, 0 frames",
                                   "44100hz Single Channel", "Private: Yes", "CRCs: No", "Copyrighted: Yes",
                                   "Original: Yes", "Emphasis: 50/15"}));

    const QStringList modes = {"Stereo", "Joint Stereo", "Dual Channel", "Single Channel"};
    const QStringList emphases = {"None", "50/15", "Reserved", "CCITT J 17"};
    for (int v = 0; v < 4; ++v) {
        load({{0, hex("fffb90") + char(v << 6 | 0x30)}}, 16000);
        QCOMPARE(t.Mode(), modes.at(v));
        QCOMPARE(t.Channels(), v == 3 ? 1 : 2);
        QCOMPARE(t.Emphasis(), QStringLiteral("None"));
        load({{0, hex("fffb90") + char(v)}}, 16000);
        QCOMPARE(t.Emphasis(), emphases.at(v));
        QCOMPARE(t.Mode(), QStringLiteral("Stereo"));
    }
}

void tst_cidv3_frame::indexesBeyondTheRows()
{
    cIDV3 &t = load({{0, hex("fffb9400")}}, 16000);
    QCOMPARE(t.Hz(), 48000);
    load({{0, hex("fffb9800")}}, 16000);
    QCOMPARE(t.Hz(), 32000);
    // Sampling index 3 lies outside the row: Hz stays 0, the rest runs on.
    load({{0, hex("fffb9c00")}}, 16000);
    QCOMPARE(t.Hz(), 0);
    QCOMPARE(t.Kbits(), 128);
    QCOMPARE(t.Seconds(), 1);
    QCOMPARE(t.InfoString().split(QStringLiteral("\r\n")).at(4), QStringLiteral("0hz Stereo"));

    load({{0, hex("fffbe000")}}, 16000);
    QCOMPARE(t.Kbits(), 320);
    load({{0, hex("fffb1000")}}, 16000);
    QCOMPARE(t.Kbits(), 32);
    // Bitrate index 0 (free format) and 15 both give 0, and so Seconds 0,
    // with a complete text.
    for (const char *header : {"fffb0000", "fffbf000"}) {
        load({{0, hex(header)}}, 16000);
        QCOMPARE(t.Kbits(), 0);
        QCOMPARE(t.Seconds(), 0);
        QCOMPARE(t.Hz(), 44100);
        QCOMPARE(t.InfoString(), info({"Size: 16000 bytes", "Length: 0 seconds", "MPEG 1.0 layer 3", "0kbit, 0 frames",
                                       "44100hz Stereo", "Private: No", "CRCs: No", "Copyrighted: No", "Original: No",
                                       "Emphasis: None"}));
    }
}

void tst_cidv3_frame::secondsFromLengthAndFirstRate()
{
    // 268435456 bytes times 8 no longer fits 32 bits: Seconds 0, and the
    // length itself is right. Only the first 5 KB of the hole is read.
    cIDV3 &t = load({{0, hex("fffb9000")}}, 268435456);
    QCOMPARE(t.FileBytes(), 268435456);
    QCOMPARE(t.Seconds(), 0);
    QCOMPARE(t.Kbits(), 128);
    QVERIFY(t.InfoString().startsWith(QStringLiteral("Size: 268435456 bytes\r\nLength: 0 seconds\r\n")));
    struct stat st;
    QCOMPARE(::stat(QFile::encodeName(t.filename()).constData(), &st), 0);
    QVERIFY(st.st_blocks * 512 < 1024 * 1024); // still a hole

    load({{0, hex("fffb9000")}}, 268435455);
    QCOMPARE(t.Seconds(), 16777);

    // At 32 kbit the 16-bit result ends at 32767 seconds.
    load({{0, hex("fffb1000")}}, 131068000);
    QCOMPARE(t.Seconds(), 32767);
    load({{0, hex("fffb1000")}}, 131071999);
    QCOMPARE(t.Seconds(), 32767);
    load({{0, hex("fffb1000")}}, 131072000);
    QCOMPARE(t.Seconds(), 0);
    QCOMPARE(t.FileBytes(), 131072000);
}

void tst_cidv3_frame::noFrameReadsFromMinusOne()
{
    cIDV3 &t = load({{0, hex("fffb9000")}}, 8000);
    const QString before = t.InfoString();

    // "ID3" and no frame: the header is 00 49 44 33, version bits 01.
    load({{0, "ID3"}, {3, hex("04000000")}}, 6000);
    QCOMPARE(t.MpegVersion(), 0);
    QCOMPARE(t.LayerVersion(), 0);
    QCOMPARE(t.Hz(), 0);
    QCOMPARE(t.FileBytes(), 6000);
    QCOMPARE(t.Mode(), QStringLiteral("Stereo"));
    QCOMPARE(t.Kbits(), 0);
    QCOMPARE(t.CRCs(), QString());
    QCOMPARE(t.InfoString(), before);

    // The "Xing" test of the missing frame reads offset 35, its count 43.
    load({{0, "ID3"}, {35, "Xing"}, {43, hex("00000100")}}, 6000);
    QCOMPARE(t.Frames(), 256);
    QCOMPARE(t.MpegVersion(), 0);

    // FF 18 00: the bit text starts at the first byte, so version 1 with
    // layer bits 00; that key has no row, Kbits 1, flags stay empty.
    load({{0, hex("ff1800")}}, 16000);
    QCOMPARE(t.MpegVersion(), 1);
    QCOMPARE(t.LayerVersion(), 0);
    QCOMPARE(t.Hz(), 44100);
    QCOMPARE(t.Kbits(), 1);
    QCOMPARE(t.Seconds(), 0);
    QCOMPARE(t.CRCs(), QString());
    QCOMPARE(t.Original(), QString());
    QCOMPARE(t.InfoString(), before);

    // FF 1E 40: layer bits 11 make key 11, the Layer I row, which a found
    // frame never reaches; the 24-bit text has no places 29 and 30.
    load({{0, hex("ff1e40")}}, 16000);
    QCOMPARE(t.MpegVersion(), 1);
    QCOMPARE(t.LayerVersion(), 1);
    QCOMPARE(t.Kbits(), 128);
    QCOMPARE(t.Seconds(), 1);
    QCOMPARE(t.InfoString(), info({"Size: 16000 bytes", "Length: 1 seconds", "MPEG 1.0 layer 1", "128kbit, 0 frames",
                                   "44100hz Stereo", "Private: No", "CRCs: Yes", "Copyrighted: ", "Original: ",
                                   "Emphasis: None"}));

    // FF 1C 40: key 12, the Layer II row.
    load({{0, hex("ff1c40")}}, 16000);
    QCOMPARE(t.LayerVersion(), 2);
    QCOMPARE(t.Kbits(), 64);
    QCOMPARE(t.Seconds(), 2);
}

void tst_cidv3_frame::unopenableFile()
{
    cIDV3 &t = load({{0, hex("fffb9000")}}, 8000);
    const QString before = t.InfoString();
    // A folder passes the length query but does not open: every read
    // fails and the bit text is empty.
    t.setfilename(m_dir.path());
    QCOMPARE(t.filename(), m_dir.path());
    QCOMPARE(t.FileBytes(), 0);
    QCOMPARE(t.MpegVersion(), 25);
    QCOMPARE(t.Mode(), QStringLiteral("Stereo"));
    QCOMPARE(t.Channels(), 2);
    QCOMPARE(t.Hz(), 0);
    QCOMPARE(t.InfoString(), before);
}

QTEST_GUILESS_MAIN(tst_cidv3_frame)
#include "tst_cidv3_frame.moc"
