// The panel last shown as the desktop's media controls see it, on scripted
// engines: its state and title, and presses that run the panel's own
// handlers with their messages. Also where the program finds its pictures.
#include "catalogue/Station.h"
#include "music/FileList.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "panel/PanelNowPlaying.h"
#include "panel/PanelWorld.h"
#include "platform/AppInfo.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>

namespace {

using Status = NowPlaying::Status;

void click(QWidget *w)
{
    const QPointF at(2, 2);
    for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent e(type, at, w->mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w, &e);
    }
}

struct World : PanelWorld {
    PanelNowPlaying now{sp.platform};

    ScriptedLocalEngine *local(Panel *p) { return static_cast<ScriptedLocalEngine *>(p->Player()); }
    QStringList prompts() const
    {
        QStringList all;
        for (const ShownBox &b : sp.dialogs.shown)
            all << b.prompt;
        return all;
    }
};

} // namespace

class tst_now_playing : public QObject {
    Q_OBJECT
private slots:
    void lastShownPanelAndItsState();
    void stationPressesRunTheStationHandlers();
    void mp3PressesRunMp3Handlers();
    void installPathOfBuildAndInstalledTrees();
};

void tst_now_playing::lastShownPanelAndItsState()
{
    World w;
    QCOMPARE(w.now.playerName(), QString());
    QCOMPARE(w.now.status(), Status::Stopped);
    QCOMPARE(w.now.abilities(), NowPlaying::Abilities());

    // A station clicked on Tafm: the engine's states as the desktop reads them.
    Panel *tafm = w.open(QStringLiteral("Tafm"));
    QCOMPARE(w.now.playerName(), QStringLiteral("Tafm"));
    click(tafm->stationButton(QStringLiteral("s1")));
    const Station &first = stationsOf(QStringLiteral("Tafm")).first();
    QCOMPARE(w.now.title(), first.displayName);
    QCOMPARE(w.now.url(), first.URL());
    const struct {
        int state;
        Status status;
    } stations[] = {{0, Status::Stopped}, {1, Status::Stopped},  {2, Status::Paused},   {3, Status::Playing},
                    {6, Status::Playing}, {9, Status::Playing},  {10, Status::Stopped}, {8, Status::Stopped}};
    for (const auto &row : stations) {
        World::engine(tafm)->state = row.state;
        QVERIFY2(w.now.status() == row.status, qPrintable(QString::number(row.state)));
    }
    const NowPlaying::Abilities station = w.now.abilities();
    QVERIFY(station.play && station.next && station.previous);
    QVERIFY(!station.pause);
    QVERIFY(!station.seek);
    QCOMPARE(w.now.length(), 0.0);

    // Mp3 shown after it: its engine, its file's name, its abilities.
    Panel *mp3 = w.open(QStringLiteral("Mp3"));
    QCOMPARE(w.now.playerName(), QStringLiteral("Mp3"));
    QCOMPARE(w.now.title(), QString());
    QCOMPARE(w.now.url(), QString());
    ScriptedLocalEngine *engine = w.local(mp3);
    engine->setFileName(QStringLiteral("/music/old songs/a b.mp3"));
    QCOMPARE(w.now.title(), QStringLiteral("a b.mp3"));
    QCOMPARE(w.now.url(), QStringLiteral("file:///music/old songs/a b.mp3"));
    const struct {
        int state;
        Status status;
    } locals[] = {{0, Status::Stopped}, {1, Status::Paused}, {2, Status::Playing}, {3, Status::Playing},
                  {6, Status::Stopped}};
    for (const auto &row : locals) {
        engine->state = row.state;
        QVERIFY2(w.now.status() == row.status, qPrintable(QString::number(row.state)));
    }
    QVERIFY(w.now.abilities().pause);
    QVERIFY(!w.now.abilities().seek); // no length known yet
    engine->duration = 200;
    engine->position = 12.5;
    QVERIFY(w.now.abilities().seek);
    QCOMPARE(w.now.length(), 200.0);
    QCOMPARE(w.now.position(), 12.5);

    // Hidden, it stays the last shown; a child widget showing changes
    // nothing, nor does a show of a panel already on screen.
    tafm->Show();
    mp3->Hide();
    tafm->time->show();
    QCOMPARE(w.now.playerName(), QStringLiteral("Mp3"));
    tafm->Hide();
    tafm->Show();
    QCOMPARE(w.now.playerName(), QStringLiteral("Tafm"));
}

void tst_now_playing::stationPressesRunTheStationHandlers()
{
    const QString prompt = QStringLiteral("Please click Requried Channels");

    // Play, Next and Previous: the channel prompt, and the narrow panel opens its grid.
    const struct {
        const char *press;
        void (NowPlaying::*run)();
    } prompting[] = {{"play", &NowPlaying::play}, {"next", &NowPlaying::next}, {"previous", &NowPlaying::previous}};
    for (const auto &row : prompting) {
        World fresh;
        Panel *p = fresh.open(QStringLiteral("Tafm"));
        (fresh.now.*row.run)();
        QVERIFY2(fresh.prompts() == QStringList{prompt}, row.press);
        QVERIFY2(p->Timer3->Enabled(), row.press); // Label1 widens the panel
    }

    World w;
    Panel *tafm = w.open(QStringLiteral("Tafm"));
    ScriptedStationEngine *engine = World::engine(tafm);

    // PlayPause: playing, it is the disabled pause label, which does nothing;
    // stopped, it is Play and its prompt.
    engine->state = 3;
    w.now.playPause();
    w.now.pause();
    QVERIFY(w.prompts().isEmpty());
    QVERIFY(engine->calls.isEmpty());
    engine->state = 1;
    w.now.playPause();
    QCOMPARE(w.prompts(), QStringList{prompt});

    // Stop: the engine and the light stop, the title stops moving.
    World::light(tafm)->state = 2;
    tafm->scr1->setEnabled(true);
    w.now.stop();
    QCOMPARE(engine->calls, QStringList{QStringLiteral("stop")});
    QCOMPARE(World::light(tafm)->state, 0);
    QVERIFY(!tafm->scr1->Enabled());
    w.now.seekTo(1); // a stream cannot be sought
    QCOMPARE(engine->calls.size(), 1);
}

void tst_now_playing::mp3PressesRunMp3Handlers()
{
    World w;
    QTemporaryDir dir;
    for (const char *name : {"a.mp3", "b.mp3"}) {
        QFile f(dir.filePath(QLatin1String(name)));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
    Panel *mp3 = w.open(QStringLiteral("Mp3"));
    mp3->music()->fileList()->setPath(dir.path());
    ScriptedLocalEngine *engine = w.local(mp3);

    // Nothing loaded: Play asks for a song, Previous (not playing) for songs.
    w.now.play();
    w.now.previous();
    QCOMPARE(w.prompts(), (QStringList{QStringLiteral("Please Choose a song to play"),
                                       QStringLiteral("Please Add Songs in playlist")}));

    // Next starts the first entry; PlayPause pauses, then plays again.
    w.now.next();
    QCOMPARE(mp3->music()->fileList()->ListIndex(), 0);
    QCOMPARE(engine->file, dir.filePath(QStringLiteral("a.mp3")));
    QCOMPARE(engine->state, 2);
    w.now.playPause();
    QCOMPARE(engine->state, 1);
    QVERIFY(mp3->play->isEnabled());
    w.now.playPause();
    QCOMPARE(engine->state, 2);
    QCOMPARE(w.now.title(), QStringLiteral("a.mp3"));

    // Seeking is the time line's drag: inside the track only.
    engine->duration = 90;
    engine->calls.clear();
    w.now.seekTo(42);
    w.now.seekTo(91);
    w.now.seekTo(-1);
    QCOMPARE(engine->calls, QStringList{QStringLiteral("CurrentPosition=42")});

    // Stop lets the file go, so the title goes with it.
    w.now.stop();
    QCOMPARE(engine->file, QString());
    QCOMPARE(w.now.title(), QString());

    // A run-time error in a handler ends at the boundary, as a key's would:
    // Previous during play with nothing selected asks the list for -2.
    mp3->music()->fileList()->setListIndex(-1);
    engine->setFileName(dir.filePath(QStringLiteral("b.mp3")));
    w.now.previous();
    QCOMPARE(w.sp.process.ends, 1);
    QVERIFY(w.prompts().last().startsWith(QStringLiteral("Run-time error '380':")));
}

void tst_now_playing::installPathOfBuildAndInstalledTrees()
{
    QTemporaryDir top;
    const QString root = top.path();
    const auto make = [&](const QString &relative) { QVERIFY(QDir(root).mkpath(relative)); };
    make(QStringLiteral("build/img"));
    make(QStringLiteral("prefix/bin"));
    make(QStringLiteral("prefix/share/zarvent/img"));
    make(QStringLiteral("both/bin/img"));
    make(QStringLiteral("both/share/zarvent/img"));
    make(QStringLiteral("bare/bin"));
    make(QStringLiteral("bare/share/zarvent"));
    const struct {
        const char *executable;
        const char *path;
    } rows[] = {
        {"build", "build"},                         // the build tree: img/ beside the program
        {"prefix/bin", "prefix/share/zarvent"},     // an installed tree
        {"both/bin", "both/bin"},                   // beside the program wins
        {"bare/bin", "bare/bin"},                   // no pictures anywhere: its own folder
    };
    for (const auto &row : rows) {
        const QString executable = root + QLatin1Char('/') + QLatin1String(row.executable);
        QCOMPARE(AppInfo::installPath(executable), root + QLatin1Char('/') + QLatin1String(row.path));
    }
    AppInfo installed;
    installed.Path = AppInfo::installPath(root + QStringLiteral("/prefix/bin"));
    QCOMPARE(installed.file(QStringLiteral("\\img\\play.gif")), root + QStringLiteral("/prefix/share/zarvent/img/play.gif"));
}

QTEST_MAIN(tst_now_playing)
#include "tst_now_playing.moc"
