// What the desktop's media controls see: the panel last shown, and MPRIS 2 over a private session bus.
#include "catalogue/Station.h"
#include "panel/PanelNowPlaying.h"
#include "panel/PanelWorld.h"
#include "platform/qtdesktop/MprisService.h"
#include "widgets/GlowButton.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QTest>

namespace {

struct World : PanelWorld {
    PanelNowPlaying now{sp.platform};
    std::unique_ptr<MprisService> service = MprisService::start(now, QDBusConnection::sessionBus());
    // The player, its status for each state of the engine (S stopped, P playing, A paused), abilities, title, address, length, position.
    QString seen(int *state, std::initializer_list<int> states)
    {
        QString all = now.playerName() + u' ';
        for (int s : states)
            *state = s, all += QLatin1Char("SPA"[int(now.status())]);
        const NowPlaying::Abilities c = now.abilities();
        return all + QStringLiteral(" %1%2%3%4%5 %6 %7 %8 %9").arg(c.play).arg(c.pause).arg(c.next).arg(c.previous).arg(c.seek).arg(now.title(), now.url()).arg(now.length()).arg(now.position());
    }
};

} // namespace

class tst_mpris : public QObject {
    Q_OBJECT
    // The desktop's connection: calls wait with the event loop running, as the service answers on this thread.
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("desktop"));
    QList<QVariantMap> changes;
    QDBusMessage call(const QString &method, const QVariantList &args = {}, const char *interface = MprisService::PlayerInterface)
    {
        QDBusMessage m = QDBusMessage::createMethodCall(MprisService::BusName, MprisService::ObjectPath, interface, method);
        m.setArguments(args);
        return bus.call(m, QDBus::BlockWithGui, 5000);
    }
    QVariantMap metadata()
    {
        const QDBusMessage m = call("Get", {MprisService::PlayerInterface, "Metadata"}, "org.freedesktop.DBus.Properties");
        return qdbus_cast<QVariantMap>(m.arguments().value(0).value<QDBusVariant>().variant().value<QDBusArgument>());
    }
public slots:
    void changed(const QString &, const QVariantMap &properties, const QStringList &) { changes << properties; }
private slots:
    void lastShownPanelItsStateAndPresses();
    void onTheBus();
};

void tst_mpris::lastShownPanelItsStateAndPresses()
{
    World w;
    QCOMPARE(w.seen(nullptr, {}), QStringLiteral("  00000   0 0")); // no panel yet
    Panel *tafm = w.open("Tafm");
    World::click(tafm->stationButton(QStringLiteral("s1")));
    const Station &s1 = stationsOf(QStringLiteral("Tafm")).first();
    // Opening and buffering are on the way to sound; a station cannot pause or seek, and has no length.
    QCOMPARE(w.seen(&World::engine(tafm)->state, {0, 1, 2, 3, 6, 9, 10, 8}), QStringLiteral("Tafm SSAPPPSS 10110 %1 %2 0 0").arg(s1.displayName, s1.URL()));
    // Mp3 shown after it: its engine, its file, and seek once a length is known.
    Panel *mp3 = w.open("Mp3");
    ScriptedLocalEngine *engine = World::local(mp3);
    QCOMPARE(w.seen(&engine->state, {6}), QStringLiteral("Mp3 S 11110   0 0"));
    engine->setFileName(QStringLiteral("/music/old songs/a b.mp3"));
    engine->duration = 200;
    engine->position = 12.5;
    QCOMPARE(w.seen(&engine->state, {0, 1, 2, 3, 6}), QStringLiteral("Mp3 SAPPS 11111 a b.mp3 file:///music/old songs/a b.mp3 200 12.5"));
    // Hidden, it stays the last shown; a child widget's show, or a show of a panel on screen, changes nothing.
    tafm->Show();
    mp3->Hide();
    tafm->time->show();
    QCOMPARE(w.now.playerName(), QStringLiteral("Mp3"));
    tafm->Hide();
    tafm->Show();
    QCOMPARE(w.now.playerName(), QStringLiteral("Tafm"));
    // Playing, PlayPause is a station's disabled pause label, which does nothing, and a stream cannot be sought.
    World::engine(tafm)->state = 3;
    const QStringList calls = World::engine(tafm)->calls;
    w.now.playPause();
    w.now.seekTo(1);
    QVERIFY(w.prompts().isEmpty() && World::engine(tafm)->calls == calls);
    // Mp3 pauses, seeks inside the track only, and lets the file go at Stop.
    mp3->Show();
    engine->state = 2;
    w.now.playPause();
    for (double to : {42.0, 200.5, -1.0})
        w.now.seekTo(to);
    QCOMPARE(std::pair(engine->state, engine->calls.filter("CurrentPosition")), std::pair(1, QStringList{"CurrentPosition=42"}));
    w.now.stop();
    QCOMPARE(std::pair(engine->file, w.now.title()), std::pair(QString(), QString()));
    // Stopped, Play, Next, Previous and PlayPause give the channel prompt, and a narrow panel opens its grid.
    for (void (NowPlaying::*press)() : {&NowPlaying::play, &NowPlaying::next, &NowPlaying::previous, &NowPlaying::playPause}) {
        World v;
        Panel *p = v.open("Tafm");
        (v.now.*press)();
        QVERIFY(v.prompts() == QStringList{"Please click Requried Channels"} && p->Timer3->Enabled());
    }
}

void tst_mpris::onTheBus()
{
    if (!QDBusConnection::sessionBus().isConnected())
        QSKIP("no session bus: run under dbus-run-session (package dbus-daemon)");
    World w;
    QVERIFY(w.service && bus.interface()->isServiceRegistered(MprisService::BusName) && metadata().isEmpty());
    // The panel brings its abilities; a click, its first title and Playing.
    QVERIFY(bus.connect(MprisService::BusName, MprisService::ObjectPath, "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
                          SLOT(changed(QString, QVariantMap, QStringList))));
    Panel *tafm = w.open("Tafm");
    QTRY_VERIFY(!changes.isEmpty() && changes.last().value("CanPlay").toBool() && !changes.last().value("CanPause").toBool());
    changes.clear();
    World::click(tafm->stationButton(QStringLiteral("s1")));
    World::engine(tafm)->state = 3;
    QTRY_VERIFY(!changes.isEmpty());
    const QVariantMap one = metadata();
    const QList<Station> &rows = stationsOf(QStringLiteral("Tafm"));
    QCOMPARE(QStringList({changes[0].value("PlaybackStatus").toString(), one.value("xesam:title").toString(), one.value("xesam:url").toString(),
                          one.value("mpris:trackid").value<QDBusObjectPath>().path().section(u'/', 0, 4), QString::number(one.contains("mpris:length"))}),
             QStringList({"Playing", rows[0].displayName, rows[0].URL(), "/org/zarvent/track/Tafm", "0"})); // a stream has no length
    // Another station: a new title under a new track id, and nothing else.
    changes.clear();
    World::click(tafm->stationButton(rows[1].button));
    QTRY_COMPARE(changes.size(), 1);
    QCOMPARE(std::pair(changes[0].keys(), metadata().value("mpris:trackid") != one.value("mpris:trackid")), std::pair(QStringList{"Metadata"}, true));
    // Stop, answered at once and run on the next pass of the loop: the state alone, then nothing more.
    changes.clear();
    QCOMPARE(call("Stop").type(), QDBusMessage::ReplyMessage);
    QTRY_COMPARE(changes.size(), 1);
    QTest::qWait(3 * MprisService::PollMs);
    QCOMPARE(changes, (QList<QVariantMap>{{{"PlaybackStatus", "Stopped"}}}));
    // SetPosition for the track at hand seeks; for another id it is ignored.
    ScriptedLocalEngine *engine = World::local(w.open("Mp3"));
    engine->setFileName(QStringLiteral("/music/a.mp3"));
    engine->duration = 120;
    const QVariant track = metadata().value("mpris:trackid");
    call("SetPosition", {QVariant::fromValue(QDBusObjectPath("/org/zarvent/track/other/1")), qlonglong(5000000)});
    call("SetPosition", {track, qlonglong(30000000)});
    QTRY_COMPARE(engine->calls.filter("CurrentPosition"), QStringList{"CurrentPosition=30"});
}

QTEST_MAIN(tst_mpris)
#include "tst_mpris.moc"
