// cIDV3 against real encoders and taggers: MP3s made by lame and ffmpeg,
// blocks written by id3v2 and eyeD3, and what mutagen and ffprobe make of
// the same files. A missing tool fails the test and names its package.

#include "TagFiles.h"

#include "music/cIDV3.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace tagfiles;

namespace {

const QStringList ModeNames = {"Stereo", "Joint Stereo", "Dual Channel", "Single Channel"};

struct Ran {
    bool ok = false;
    QByteArray out;
    QString why;
};

Ran run(const QString &program, const QStringList &args)
{
    Ran r;
    QProcess p;
    p.setProgram(program);
    p.setArguments(args);
    p.start();
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished();
        r.why = program + QStringLiteral(" did not finish");
        return r;
    }
    r.out = p.readAllStandardOutput();
    r.ok = p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    if (!r.ok)
        r.why = program + ' ' + args.join(' ') + QStringLiteral(" failed: ") + QString::fromLocal8Bit(p.readAllStandardError());
    return r;
}

// A python3 that has mutagen; Debian's own first, since a private one on
// PATH may lack the package.
QString mutagenPython()
{
    static const QString found = [] {
        for (const QString &candidate : {QStringLiteral("/usr/bin/python3"), QStandardPaths::findExecutable("python3")}) {
            if (!candidate.isEmpty() && QFile::exists(candidate)
                && run(candidate, {QStringLiteral("-c"), QStringLiteral("import mutagen")}).ok)
                return candidate;
        }
        return QString();
    }();
    return found;
}

QString probeScript() { return QStringLiteral(ZARVENT_MUSIC_TESTS) + QStringLiteral("/mutagen_probe.py"); }

} // namespace

// Fails the calling test when a tool is not installed.
#define NEED(program, package)                                                                                       \
    do {                                                                                                             \
        if (QStandardPaths::findExecutable(QStringLiteral(program)).isEmpty())                                       \
            QFAIL(program " not found: install the Debian package " package);                                       \
    } while (false)
#define NEED_MUTAGEN()                                                                                               \
    do {                                                                                                             \
        if (mutagenPython().isEmpty())                                                                               \
            QFAIL("python3 with mutagen not found: install the Debian package python3-mutagen");                     \
    } while (false)
#define RUN(result, program, ...)                                                                                     \
    const Ran result = run(QStringLiteral(program), __VA_ARGS__);                                                    \
    QVERIFY2(result.ok, qPrintable(result.why))

class tst_cidv3_tools : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void lameFramesAgreeWithMutagen_data();
    void lameFramesAgreeWithMutagen();
    void ffmpegFrameBehindItsOwnTags();
    void largeId3v2HidesTheFrame();
    void blockFromId3v2Tool();
    void blockFromEyeD3();
    void writeTagReadByMutagenAndId3v2();

private:
    // A tone through sox and lame.
    QString lame(const QString &name, int rate, int channels, const QStringList &options)
    {
        const QString wav = path(QStringLiteral("tone-%1-%2.wav").arg(rate).arg(channels));
        if (!QFile::exists(wav)) {
            const Ran sox = run(QStringLiteral("sox"), {"-n", "-r", QString::number(rate), "-c", QString::number(channels),
                                                         wav, "synth", "1.5", "sine", "440", "vol", "0.5"});
            if (!sox.ok)
                qWarning("%s", qPrintable(sox.why));
        }
        const QString mp3 = path(name);
        const Ran enc = run(QStringLiteral("lame"), QStringList{"--quiet"} + options + QStringList{wav, mp3});
        if (!enc.ok)
            qWarning("%s", qPrintable(enc.why));
        return mp3;
    }

    QString path(const QString &name) const { return QDir(m_dir.path()).filePath(name); }

    static QJsonObject mutagen(const QStringList &args)
    {
        const Ran r = run(mutagenPython(), QStringList{probeScript()} + args);
        if (!r.ok)
            qWarning("%s", qPrintable(r.why));
        return QJsonDocument::fromJson(r.out).object();
    }

    static QJsonObject ffprobe(const QString &file)
    {
        const Ran r = run(QStringLiteral("ffprobe"), {"-v", "error", "-count_frames", "-select_streams", "a:0", "-show_entries",
                                                      "stream=sample_rate,channels,bit_rate,nb_read_frames,duration", "-of",
                                                      "json", file});
        if (!r.ok)
            qWarning("%s", qPrintable(r.why));
        return QJsonDocument::fromJson(r.out).object().value("streams").toArray().at(0).toObject();
    }

    QTemporaryDir m_dir;
};

void tst_cidv3_tools::lameFramesAgreeWithMutagen_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("cbr");
    QTest::addColumn<bool>("countRead"); // a "Xing" count at +36
    QTest::addColumn<QString>("copyrighted");
    QTest::addColumn<QString>("original");
    QTest::addColumn<QString>("emphasis");

    QTest::newRow("cbr 128 joint 44.1k") << 44100 << 2 << QStringList{"-b", "128"} << true << false << QString("No") << QString("Yes") << QString("None");
    QTest::newRow("cbr 320 stereo 48k") << 48000 << 2 << QStringList{"-b", "320", "-m", "s"} << true << false << QString("No") << QString("Yes") << QString("None");
    QTest::newRow("cbr 64 mono 32k") << 32000 << 1 << QStringList{"-b", "64", "-m", "m"} << true << false << QString("No") << QString("Yes") << QString("None");
    QTest::newRow("cbr 192 crc 44.1k") << 44100 << 2 << QStringList{"-b", "192", "-p"} << true << false << QString("No") << QString("Yes") << QString("None");
    QTest::newRow("cbr 112 dual 48k ccitt") << 48000 << 2 << QStringList{"-b", "112", "-m", "d", "-e", "c", "--resample", "48"} << true << false << QString("No") << QString("Yes") << QString("CCITT J 17");
    QTest::newRow("cbr 128 copyright copy 50/15") << 44100 << 2 << QStringList{"-b", "128", "-c", "-o", "-e", "5"} << true << false << QString("Yes") << QString("No") << QString("50/15");
    QTest::newRow("vbr V2 joint 44.1k") << 44100 << 2 << QStringList{"-V", "2"} << false << true << QString("No") << QString("Yes") << QString("None");
    QTest::newRow("vbr V0 stereo 48k") << 48000 << 2 << QStringList{"-V", "0", "-m", "s"} << false << true << QString("No") << QString("Yes") << QString("None");
    QTest::newRow("vbr V2 crc 32k") << 32000 << 2 << QStringList{"-V", "2", "-p"} << false << true << QString("No") << QString("Yes") << QString("None");
    // Mono puts the word at +21, where the fixed place does not look.
    QTest::newRow("vbr V5 mono 44.1k") << 44100 << 1 << QStringList{"-V", "5", "-m", "m"} << false << false << QString("No") << QString("Yes") << QString("None");
}

void tst_cidv3_tools::lameFramesAgreeWithMutagen()
{
    NEED("sox", "sox");
    NEED("lame", "lame");
    NEED("ffprobe", "ffmpeg");
    NEED_MUTAGEN();
    QFETCH(int, rate);
    QFETCH(int, channels);
    QFETCH(QStringList, options);
    QFETCH(bool, cbr);
    QFETCH(bool, countRead);
    QFETCH(QString, copyrighted);
    QFETCH(QString, original);
    QFETCH(QString, emphasis);

    const QString file = lame(QStringLiteral("lame.mp3"), rate, channels, options);
    const QJsonObject m = mutagen({"frame", file});
    QVERIFY2(!m.isEmpty(), "mutagen found no frame");
    QCOMPARE(m.value("frame_offset").toInt(), 0);
    QCOMPARE(m.value("version").toDouble(), 1.0);
    QCOMPARE(m.value("sample_rate").toInt(), rate); // the row covers the rate it names
    QVERIFY2(!m.value("xing_frames").isNull(), "lame wrote no Xing/Info header");

    cIDV3 t;
    t.setfilename(file);
    QCOMPARE(t.FileBytes(), QFileInfo(file).size());
    QCOMPARE(t.MpegVersion(), 1);
    QCOMPARE(t.LayerVersion(), m.value("layer").toInt());
    QCOMPARE(t.Hz(), m.value("sample_rate").toInt());
    QCOMPARE(t.Kbits() * 1000, m.value("bitrate").toInt());
    QCOMPARE(t.Mode(), ModeNames.at(m.value("mode").toInt()));
    QCOMPARE(t.Channels(), m.value("channels").toInt());
    QCOMPARE(t.CRCs(), m.value("protected").toBool() ? QStringLiteral("Yes") : QStringLiteral("No"));
    QCOMPARE(t.Copyrighted(), copyrighted);
    QCOMPARE(t.Original(), original);
    QCOMPARE(t.Emphasis(), emphasis);
    QCOMPARE(t.PrivateBit(), QStringLiteral("No"));
    QCOMPARE(t.Frames(), countRead ? m.value("xing_frames").toInt() : 0);

    const QJsonObject f = ffprobe(file);
    QCOMPARE(t.Hz(), f.value("sample_rate").toString().toInt());
    QCOMPARE(t.Channels(), f.value("channels").toInt());
    if (countRead)
        QCOMPARE(QString::number(t.Frames()), f.value("nb_read_frames").toString());
    if (cbr) {
        QCOMPARE(QString::number(t.Kbits() * 1000), f.value("bit_rate").toString());
        QVERIFY(std::fabs(t.Seconds() - f.value("duration").toString().toDouble()) < 1.0);
    }
    QVERIFY(t.InfoString().startsWith(QStringLiteral("Size: %1 bytes\r\n").arg(t.FileBytes())));
}

void tst_cidv3_tools::ffmpegFrameBehindItsOwnTags()
{
    NEED("ffmpeg", "ffmpeg");
    NEED_MUTAGEN();
    // ffmpeg puts a small ID3v2 tag in front and, asked to, a zero-filled
    // ID3v1 block behind.
    const QString file = path("ffmpeg.mp3");
    RUN(enc, "ffmpeg", {"-v", "error", "-y", "-f", "lavfi", "-i", "sine=f=440:d=1.5", "-ac", "2", "-c:a", "libmp3lame",
                        "-b:a", "160k", "-write_id3v1", "1", "-metadata", "title=From ffmpeg", "-metadata", "date=2011",
                        "-metadata", "genre=Jazz", file});
    const QJsonObject m = mutagen({"frame", file});
    QVERIFY(m.value("frame_offset").toInt() > 0);
    QVERIFY(m.value("frame_offset").toInt() < 5000);

    cIDV3 t;
    t.setfilename(file);
    QCOMPARE(t.Hz(), m.value("sample_rate").toInt());
    QCOMPARE(t.Kbits() * 1000, m.value("bitrate").toInt());
    QCOMPARE(t.Mode(), ModeNames.at(m.value("mode").toInt()));
    QCOMPARE(t.Channels(), m.value("channels").toInt());
    QVERIFY(t.HasTag());
    QCOMPARE(t.Title(), QStringLiteral("From ffmpeg") + QString(19, QChar(0)));
    QCOMPARE(t.Year(), QStringLiteral("2011"));
    QCOMPARE(t.GenreText(basic::Integer(t.Genre())), QStringLiteral("Jazz"));
}

void tst_cidv3_tools::largeId3v2HidesTheFrame()
{
    NEED("sox", "sox");
    NEED("lame", "lame");
    NEED_MUTAGEN();
    const QString small = lame("plain.mp3", 44100, 2, {"-b", "128"});
    cIDV3 t;
    t.setfilename(small);
    QCOMPARE(t.Hz(), 44100);
    const QString before = t.InfoString();

    const QString big = lame("bigtag.mp3", 44100, 2, {"-b", "128"});
    const QJsonObject tagged = mutagen({"bigtag", big, "6000"});
    QVERIFY(tagged.value("size").toInt() > 5000);
    const QJsonObject m = mutagen({"frame", big});
    QCOMPARE(m.value("frame_offset").toInt(), tagged.value("size").toInt());
    QCOMPARE(m.value("sample_rate").toInt(), 44100);

    // Behind more than 5000 bytes of tag there is no frame for cIDV3.
    t.setfilename(big);
    QCOMPARE(t.FileBytes(), QFileInfo(big).size());
    QVERIFY(t.MpegVersion() != 1);
    QCOMPARE(t.Hz(), 0);
    QCOMPARE(t.Kbits(), 0);
    QCOMPARE(t.InfoString(), before);
}

void tst_cidv3_tools::blockFromId3v2Tool()
{
    NEED("sox", "sox");
    NEED("lame", "lame");
    NEED("id3v2", "id3v2");
    const QString file = lame("id3v2.mp3", 44100, 2, {"-b", "128"});
    const qint64 plain = QFileInfo(file).size();
    RUN(tag, "id3v2", {"-1", "-t", "Title One", "-a", "Artist", "-A", "Album", "-y", "2004", "-c", "Comment here", "-g",
                       "17", file});
    QCOMPARE(QFileInfo(file).size(), plain + 128);

    cIDV3 t;
    t.setfilename(file);
    QVERIFY(t.HasTag());
    // id3lib fills with zero bytes; they come back inside the text.
    QCOMPARE(t.Title(), QStringLiteral("Title One") + QString(21, QChar(0)));
    QCOMPARE(t.Artist(), QStringLiteral("Artist") + QString(24, QChar(0)));
    QCOMPARE(t.Album(), QStringLiteral("Album") + QString(25, QChar(0)));
    QCOMPARE(t.Year(), QStringLiteral("2004"));
    QCOMPARE(t.Comments(), QStringLiteral("Comment here") + QString(18, QChar(0)));
    QCOMPARE(t.Genre(), 17);
    QCOMPARE(t.GenreText(basic::Integer(t.Genre())), QStringLiteral("Rock"));
    QCOMPARE(t.Hz(), 44100); // the analysis ignores the block behind
}

void tst_cidv3_tools::blockFromEyeD3()
{
    NEED("sox", "sox");
    NEED("lame", "lame");
    NEED("eyeD3", "eyed3");
    const QString file = lame("eyed3.mp3", 44100, 2, {"-b", "128"});
    RUN(tag, "eyeD3", {"--v1", "-t", "Title Two", "-a", "Artist B", "-A", "Album B", "-Y", "1999", "-c", "Comm B", "-G",
                       "Classical", "-n", "7", file});

    cIDV3 t;
    t.setfilename(file);
    QVERIFY(t.HasTag());
    QCOMPARE(t.Title(), QStringLiteral("Title Two") + QString(21, QChar(0)));
    QCOMPARE(t.Artist(), QStringLiteral("Artist B") + QString(22, QChar(0)));
    QCOMPARE(t.Year(), QStringLiteral("1999"));
    // No track variant: the track number is the last comment character.
    QCOMPARE(t.Comments(), QStringLiteral("Comm B") + QString(23, QChar(0)) + QChar(7));
    QCOMPARE(t.GenreText(basic::Integer(t.Genre())), QStringLiteral("Classical"));
}

void tst_cidv3_tools::writeTagReadByMutagenAndId3v2()
{
    NEED("sox", "sox");
    NEED("lame", "lame");
    NEED("id3v2", "id3v2");
    NEED_MUTAGEN();
    const QString file = lame("written.mp3", 44100, 2, {"-b", "128"});
    const qint64 size = QFileInfo(file).size();
    QCOMPARE(mutagen({"v1", file}).value("tag").toBool(), false);

    cIDV3 t;
    t.setfilename(file);
    t.setTitle(QStringLiteral(u"Café Müller"));
    t.setArtist(QStringLiteral("Zarvent"));
    t.setAlbum(QStringLiteral("Tests"));
    t.setYear(QStringLiteral("1987"));
    t.setComments(QStringLiteral("kept short"));
    t.setGenre(32);
    QVERIFY(t.WriteTag());
    QCOMPARE(QFileInfo(file).size(), size); // over the last audio bytes

    QJsonObject v1 = mutagen({"v1", file});
    QVERIFY(v1.value("tag").toBool());
    QCOMPARE(v1.value("title").toString(), QStringLiteral(u"Café Müller"));
    QCOMPARE(v1.value("artist").toString(), QStringLiteral("Zarvent"));
    QCOMPARE(v1.value("album").toString(), QStringLiteral("Tests"));
    QCOMPARE(v1.value("year").toString(), QStringLiteral("1987"));
    QCOMPARE(v1.value("comment").toString(), QStringLiteral("kept short"));
    QCOMPARE(v1.value("genre").toString(), QStringLiteral("Classical"));

    {
        RUN(listed, "id3v2", {"-l", file});
        const QString out = QString::fromLatin1(listed.out);
        QVERIFY2(out.contains(QRegularExpression(QStringLiteral(u"Title  : Café Müller\\s+Artist: Zarvent"))), qPrintable(out));
        QVERIFY2(out.contains(QRegularExpression(QStringLiteral("Album  : Tests\\s+Year: 1987, Genre: Classical \\(32\\)"))), qPrintable(out));
        QVERIFY2(out.contains(QStringLiteral("Comment: kept short")), qPrintable(out));
    }

    // Over a block another tool wrote, in place.
    RUN(tagged, "id3v2", {"-1", "-t", "Old", "-g", "9", file});
    const qint64 withBlock = QFileInfo(file).size();
    t.setfilename(file);
    QCOMPARE(t.Title(), QStringLiteral("Old") + QString(27, QChar(0)));
    t.setTitle(QStringLiteral("New"));
    QVERIFY(t.WriteTag());
    QCOMPARE(QFileInfo(file).size(), withBlock);
    v1 = mutagen({"v1", file});
    QCOMPARE(v1.value("title").toString(), QStringLiteral("New"));
    QCOMPARE(v1.value("genre").toString(), QStringLiteral("Metal"));

    // ClearTag: no block for either reader, length unchanged.
    QVERIFY(t.ClearTag());
    QCOMPARE(QFileInfo(file).size(), withBlock);
    QCOMPARE(mutagen({"v1", file}).value("tag").toBool(), false);
    RUN(cleared, "id3v2", {"-l", file});
    QVERIFY2(!cleared.out.contains("id3v1 tag info"), cleared.out.constData());
}

QTEST_GUILESS_MAIN(tst_cidv3_tools)
#include "tst_cidv3_tools.moc"
