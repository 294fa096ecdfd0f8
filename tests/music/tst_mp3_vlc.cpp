// Mp3 on real libvlc (no sound card: the dummy output) with MP3 files the
// test encodes itself, and tags read back by mutagen.
#include "doubles/ScriptedPlatform.h"
#include "music/FileList.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "panel/Panel.h"
#include "platform/LocalEngine.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcLocalEngine.h"
#include "shell/ShellForms.h"
#include "widgets/GlowButton.h"
#include "widgets/zzSlider.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

// Encodes seconds of a tone into dir/name with ffmpeg's LAME encoder.
bool encode(const QString &path, int seconds)
{
    QProcess ff;
    ff.start(QStringLiteral("ffmpeg"), {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                        QStringLiteral("sine=frequency=440:duration=%1").arg(seconds), "-ac", "2",
                                        "-ar", "44100", "-c:a", "libmp3lame", "-b:a", "128k", path});
    return ff.waitForFinished(30000) && ff.exitCode() == 0;
}

QJsonObject mutagenV1(const QString &file)
{
    QProcess py;
    py.start(QStringLiteral("/usr/bin/python3"),
             {QStringLiteral(ZARVENT_MUSIC_TESTS "/mutagen_probe.py"), QStringLiteral("v1"), file});
    if (!py.waitForFinished(30000))
        return {};
    return QJsonDocument::fromJson(py.readAllStandardOutput()).object();
}

// Runs the event loop until the condition holds, at most ms milliseconds.
bool within(int ms, const std::function<bool()> &condition)
{
    QElapsedTimer t;
    t.start();
    while (!condition()) {
        if (t.elapsed() > ms)
            return false;
        QTest::qWait(10);
    }
    return true;
}

} // namespace

class tst_mp3_vlc : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void playSeekPauseAndEnd();
    void saveWhilePlaying();
    void selectionNamesTheSongAtOnce();

private:
    QTemporaryDir m_dir;
};

void tst_mp3_vlc::initTestCase()
{
    QVERIFY(encode(m_dir.filePath("1-short.mp3"), 3));
    QVERIFY(encode(m_dir.filePath("2-long.mp3"), 8));
}

void tst_mp3_vlc::playSeekPauseAndEnd()
{
    ScriptedPlatform sp;
    RealMedia media({QStringLiteral("--aout=dummy"), QStringLiteral("--quiet")});
    Forms forms;
    Platform platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, forms, sp.tray, sp.interfaces, media};
    defineForms(platform);
    forms.Show(QStringLiteral("Mp3"));
    auto *p = forms.get<Panel>(QStringLiteral("Mp3"));
    LocalEngine *player = p->Player();
    // Decoded sound goes to a counter: no sound card needed.
    dynamic_cast<VlcLocalEngine &>(*player).countDecodedAudio();
    p->music()->fileList()->setPath(m_dir.path());
    QCOMPARE(p->music()->fileList()->ListCount(), basic::Integer(2));

    // The selection starts the long track.
    p->music()->fileList()->setListIndex(1);
    QVERIFY(within(5000, [&] { return player->PlayState() == 2 && player->Duration() > 0; }));
    QCOMPARE(player->FileName(), m_dir.path() + QStringLiteral("/2-long.mp3"));
    QVERIFY(qAbs(player->Duration() - 8) < 0.5);
    sp.clock.advance(25);
    QCOMPARE(p->dur3->text(), QString()); // eight seconds: dur3 is left alone
    QVERIFY(p->dur2->text().startsWith(QStringLiteral("00:0")));

    // Seek by the slider, read the position back.
    p->Slider1->setValue(5.0f);
    emit p->Slider1->SliderScroll();
    QVERIFY(within(3000, [&] { return player->CurrentPosition() >= 4.9; }));
    QVERIFY(player->CurrentPosition() < 6.5);

    // Pause holds the position; Play resumes from it.
    p->music()->localPausel_Click();
    QVERIFY(within(3000, [&] { return player->PlayState() == 1; }));
    const double held = player->CurrentPosition();
    QTest::qWait(400);
    QVERIFY(qAbs(player->CurrentPosition() - held) < 0.1);
    p->music()->localPlay_Click();
    QVERIFY(within(3000, [&] { return player->PlayState() == 2; }));
    QVERIFY(within(3000, [&] { return player->CurrentPosition() > held + 0.2; }));

    // The natural end: stopped, and nothing starts the next track.
    QVERIFY(within(8000, [&] { return player->PlayState() == 0; }));
    QTest::qWait(300);
    QCOMPARE(player->PlayState(), 0);
    QCOMPARE(p->music()->fileList()->ListIndex(), basic::Integer(1));
    QCOMPARE(player->FileName(), m_dir.path() + QStringLiteral("/2-long.mp3"));

    // A stopped track plays again; Stop lets it go and Play then asks.
    p->music()->localPlay_Click();
    QVERIFY(within(5000, [&] { return player->PlayState() == 2; }));
    p->music()->localStop_Click();
    QVERIFY(within(3000, [&] { return player->PlayState() == 6; }));
    p->music()->localPlay_Click();
    QCOMPARE(sp.dialogs.shown.last().prompt, QString("Please Choose a song to play"));
}

void tst_mp3_vlc::saveWhilePlaying()
{
    ScriptedPlatform sp;
    RealMedia media({QStringLiteral("--aout=dummy"), QStringLiteral("--quiet")});
    Forms forms;
    Platform platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, forms, sp.tray, sp.interfaces, media};
    defineForms(platform);
    forms.Show(QStringLiteral("Mp3"));
    auto *p = forms.get<Panel>(QStringLiteral("Mp3"));
    dynamic_cast<VlcLocalEngine &>(*p->Player()).countDecodedAudio();
    p->music()->fileList()->setPath(m_dir.path());
    p->music()->fileList()->setListIndex(0);
    QVERIFY(within(5000, [&] { return p->Player()->PlayState() == 2; }));
    // The editor was loaded by the selection, from the real frame.
    QVERIFY(p->tagEditor()->lblInfo->text().contains(QStringLiteral("44100")));

    p->tagEditor()->txtTitle->setText(QStringLiteral("Tone"));
    p->tagEditor()->txtArtist->setText(QStringLiteral("Zarvent Test"));
    p->tagEditor()->txtYear->setText(QStringLiteral("2026"));
    p->tagEditor()->cboGenre->setCurrentIndex(8);
    p->tagEditor()->cmdsave->Click();
    QCOMPARE(sp.dialogs.shown.last().prompt, QString("Tag Saved Success Fully"));
    QCOMPARE(p->Player()->PlayState(), 2);

    const QJsonObject v1 = mutagenV1(m_dir.filePath("1-short.mp3"));
    QVERIFY2(v1.value("tag").toBool(), "mutagen found no ID3v1 block");
    QCOMPARE(v1.value("title").toString(), QString("Tone"));
    QCOMPARE(v1.value("artist").toString(), QString("Zarvent Test"));
    QCOMPARE(v1.value("year").toString(), QString("2026"));
    QCOMPARE(v1.value("genre").toString(), QString("Jazz"));
}

void tst_mp3_vlc::selectionNamesTheSongAtOnce()
{
    ScriptedPlatform sp;
    RealMedia media({QStringLiteral("--aout=dummy"), QStringLiteral("--quiet")});
    Forms forms;
    Platform platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, forms, sp.tray, sp.interfaces, media};
    defineForms(platform);
    forms.Show(QStringLiteral("Mp3"));
    auto *p = forms.get<Panel>(QStringLiteral("Mp3"));
    dynamic_cast<VlcLocalEngine &>(*p->Player()).countDecodedAudio();
    FileList *list = p->music()->fileList();
    list->setPath(m_dir.path());

    // Each step is read straight after it, with no turn of the event loop:
    // the song is named only if it already plays then.
    const auto named = [&](const QString &song) {
        return p->windowTitle() == QLatin1Char(' ') + song && p->fName->text() == song
               && p->Player()->PlayState() == 2;
    };
    const QRect entry = list->visualRect(list->model()->index(0, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, entry.center());
    QCOMPARE(list->ListIndex(), basic::Integer(0));
    QVERIFY2(named(QStringLiteral("1-short.mp3")), qPrintable(p->windowTitle()));
    p->music()->localNext_Click();
    QVERIFY2(named(QStringLiteral("2-long.mp3")), qPrintable(p->windowTitle()));
    p->music()->localPrevious_Click();
    QVERIFY2(named(QStringLiteral("1-short.mp3")), qPrintable(p->windowTitle()));
    QVERIFY(sp.dialogs.shown.isEmpty());
}

QTEST_MAIN(tst_mp3_vlc)
#include "tst_mp3_vlc.moc"
