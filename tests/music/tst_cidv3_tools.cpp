// cIDV3 on files of lame and id3v2, against the encoder's settings, ffprobe
// and id3v2. A missing tool fails the test and names its package.
#include "TagFiles.h"

#include <QtTest>

using namespace tagfiles;

namespace {

QByteArray run(const QString &program, const QStringList &args)
{
    QProcess p;
    p.start(program, args);
    p.waitForFinished(60000);
    return p.readAllStandardOutput();
}
bool ran(const QString &program, const QStringList &args) { return QProcess::execute(program, args) == 0; }
QString zeros(const char *text, int width) { return QString::fromLatin1(field(text, width, '\0')); }

} // namespace

class tst_cidv3_tools : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    // A stereo tone of 1.5 s through sox and lame; empty when a tool failed.
    QString lame(const QString &name, const QStringList &options, int rate = 44100)
    {
        const QString wav = m_dir.filePath(QString("tone-%1.wav").arg(rate)), mp3 = m_dir.filePath(name);
        const QStringList tone = {"-n", "-r", QString::number(rate), "-c", "2", wav, "synth", "1.5", "sine", "440"};
        const bool made = (QFile::exists(wav) || ran("sox", tone)) && ran("lame", QStringList{"--quiet"} + options + QStringList{wav, mp3});
        return made ? mp3 : QString();
    }

private slots:
    void initTestCase()
    {
        for (const auto &[program, package] : QList<std::pair<QString, QString>>{
                 {"sox", "sox"}, {"lame", "lame"}, {"ffprobe", "ffmpeg"}, {"id3v2", "id3v2"}})
            QVERIFY2(!QStandardPaths::findExecutable(program).isEmpty(), qPrintable(program + ": install the Debian package " + package));
    }

    void framesAgreeWithLameAndFfprobe()
    {
        // Options, rate, Mode|Channels|Private|CRCs, Copyrighted|Original|Emphasis. Mono VBR
        // puts its "Xing" count at +21, where it is not looked for.
        const QList<std::tuple<QStringList, int, QString, QString>> files = {
            {{"-b", "128"}, 44100, "Joint Stereo|2|No|No", "No|Yes|None"},
            {{"-b", "320", "-m", "s", "-p"}, 48000, "Stereo|2|No|Yes", "No|Yes|None"},
            {{"-b", "64", "-m", "m"}, 32000, "Single Channel|1|No|No", "No|Yes|None"},
            {{"-b", "112", "-m", "d", "-e", "c", "--resample", "48"}, 48000, "Dual Channel|2|No|No", "No|Yes|CCITT J 17"},
            {{"-b", "128", "-c", "-o", "-e", "5"}, 44100, "Joint Stereo|2|No|No", "Yes|No|50/15"},
            {{"-V", "2", "-p"}, 32000, "Joint Stereo|2|No|Yes", "No|Yes|None"},
            {{"-V", "0", "-m", "s"}, 48000, "Stereo|2|No|No", "No|Yes|None"},
            {{"-V", "5", "-m", "m"}, 44100, "Single Channel|1|No|No", "No|Yes|None"},
        };
        cIDV3 t;
        for (const auto &[options, rate, mode, flags] : files) {
            const QString file = lame("lame.mp3", options, rate);
            const bool cbr = options.first() == "-b", countRead = !cbr && !mode.startsWith("Single");
            const QJsonDocument probed = QJsonDocument::fromJson(
                run("ffprobe", {"-v", "error", "-count_frames", "-show_entries", "stream=nb_read_frames,duration", "-of", "json", file}));
            const QJsonObject f = probed["streams"][0].toObject();
            const int frames = countRead ? f["nb_read_frames"].toString().toInt() : 0;
            t.setfilename(file);
            const int kbit = cbr ? options[1].toInt() : t.Kbits(); // a VBR file's first rate is lame's own choice
            QCOMPARE(facts(t).section('|', 2), QString("1|3|%1|%2|%3|").arg(kbit).arg(frames).arg(rate) + mode + '|' + flags);
            QVERIFY(t.Kbits() > 0 && t.FileBytes() == QFileInfo(file).size());
            QVERIFY(!cbr || qAbs(t.Seconds() - f["duration"].toString().toDouble()) < 1.0);
        }
    }

    void blockOfId3v2()
    {
        const QString one = lame("id3v2.mp3", {"-b", "128"});
        const qint64 plain = QFileInfo(one).size();
        QVERIFY(ran("id3v2", {"-1", "-t", "Title One", "-a", "Artist", "-A", "Album", "-y", "2004", "-c", "Comment 1", "-g", "17", one}));
        cIDV3 t;
        t.setfilename(one);
        QCOMPARE(tagOf(t) + '|' + t.GenreText(basic::Integer(t.Genre())) + QString("|%1|%2").arg(t.Hz()).arg(t.FileBytes() - plain),
                 QStringList({zeros("Title One", 30), zeros("Artist", 30), zeros("Album", 30), "2004", zeros("Comment 1", 30),
                              "17|Rock|44100|128"}).join('|')); // id3v2's zero fill stays in the text
        // Written over the last audio bytes, then over id3v2's own block.
        t.setfilename(lame("written.mp3", {"-b", "128"}));
        t.setTitle(QStringLiteral(u"Café Müller"));
        t.setArtist("Zarvent");
        t.setAlbum("Tests");
        t.setYear("1987");
        t.setComments("kept short");
        t.setGenre(32);
        QVERIFY(t.WriteTag());
        QCOMPARE(QFileInfo(t.filename()).size(), plain);
        const QString listed = QString::fromLatin1(run("id3v2", {"-l", t.filename()}));
        QVERIFY2(listed.contains(QRegularExpression(QStringLiteral(u"Title  : Café Müller\\s+Artist: Zarvent\\s+Album  : Tests\\s+"
                                                                   u"Year: 1987, Genre: Classical \\(32\\)\\s+Comment: kept short"))),
                 qPrintable(listed));
        t.setfilename(one);
        t.setTitle("New");
        QVERIFY(t.WriteTag());
        const QString over = QString::fromLatin1(run("id3v2", {"-l", one}));
        QVERIFY2(over.contains(QRegularExpression("Title  : New\\s[\\s\\S]*Genre: Rock \\(17\\)")), qPrintable(over));
        QVERIFY(t.ClearTag());
        QCOMPARE(QFileInfo(one).size(), plain + 128);
        QVERIFY(!run("id3v2", {"-l", one}).contains("id3v1 tag info"));
    }
};

QTEST_GUILESS_MAIN(tst_cidv3_tools)
#include "tst_cidv3_tools.moc"
