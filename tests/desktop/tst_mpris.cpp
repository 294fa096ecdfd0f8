// MPRIS 2 on a private session bus (dbus-run-session): the panels on
// scripted engines, read and pressed by a second connection as a desktop's
// sound menu would.
#include "catalogue/Station.h"
#include "panel/PanelNowPlaying.h"
#include "panel/PanelWorld.h"
#include "platform/qtdesktop/MprisService.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QMouseEvent>
#include <QTest>

namespace {

const QString Root = QStringLiteral("org.mpris.MediaPlayer2");
const QString Player = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString Path = QStringLiteral("/org/mpris/MediaPlayer2");

void click(QWidget *w)
{
    const QPointF at(2, 2);
    for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent e(type, at, w->mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w, &e);
    }
}

QVariantMap asMap(const QVariant &v)
{
    return v.canConvert<QDBusArgument>() ? qdbus_cast<QVariantMap>(v.value<QDBusArgument>()) : v.toMap();
}

// The desktop's side: its own connection to the bus. Calls are waited for
// with the event loop running, since the service answers on this thread.
struct Desktop {
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("desktop"));
    QString service = QLatin1String(MprisService::BusName);

    ~Desktop() { QDBusConnection::disconnectFromBus(QStringLiteral("desktop")); }

    QDBusMessage call(const QString &interface, const QString &method, const QVariantList &args = {})
    {
        QDBusMessage m = QDBusMessage::createMethodCall(service, Path, interface, method);
        m.setArguments(args);
        QDBusPendingCall pending = bus.asyncCall(m, 5000);
        if (!QTest::qWaitFor([&] { return pending.isFinished(); }, 6000))
            return QDBusMessage();
        return pending.reply();
    }
    QVariant get(const QString &interface, const QString &property)
    {
        const QDBusMessage reply = call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                                        {interface, property});
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            return QVariant();
        return reply.arguments().first().value<QDBusVariant>().variant();
    }
    QVariantMap metadata() { return asMap(get(Player, QStringLiteral("Metadata"))); }
};

// PropertiesChanged as the desktop receives it.
class Changes : public QObject {
    Q_OBJECT
public:
    QList<QVariantMap> seen;
public slots:
    void changed(const QString &interface, const QVariantMap &properties, const QStringList &)
    {
        if (interface == Player)
            seen.append(properties);
    }
};

struct World : PanelWorld {
    PanelNowPlaying now{sp.platform};
    std::unique_ptr<MprisService> service = MprisService::start(now, QDBusConnection::sessionBus());
    QStringList prompts() const
    {
        QStringList all;
        for (const ShownBox &b : sp.dialogs.shown)
            all << b.prompt;
        return all;
    }
};

} // namespace

class tst_mpris : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void onTheBusUnderItsName();
    void stationPlayingOverTheBus();
    void pressesReachThePanelsHandlers();
    void changesAreSignalled();
};

void tst_mpris::initTestCase()
{
    if (!QDBusConnection::sessionBus().isConnected())
        QSKIP("no session bus: run under dbus-run-session (package dbus-daemon)");
}

void tst_mpris::onTheBusUnderItsName()
{
    World w;
    QVERIFY(w.service);
    QCOMPARE(w.service->serviceName(), QLatin1String(MprisService::BusName));
    Desktop d;
    QVERIFY(d.bus.interface()->isServiceRegistered(d.service));
    const struct {
        const QString &interface;
        const char *property;
        QVariant value;
    } rows[] = {
        {Root, "Identity", QStringLiteral("Zarvent")},  {Root, "DesktopEntry", QStringLiteral("zarvent")},
        {Root, "CanQuit", false},                       {Root, "CanRaise", false},
        {Root, "HasTrackList", false},                  {Player, "CanControl", true},
        {Player, "PlaybackStatus", QStringLiteral("Stopped")}, {Player, "CanPlay", false},
        {Player, "Rate", 1.0},
    };
    for (const auto &row : rows)
        QVERIFY2(d.get(row.interface, QLatin1String(row.property)) == row.value, row.property);
    QVERIFY(d.metadata().isEmpty()); // no panel yet, no track

    // A second copy, on a connection of its own as another process would
    // be, takes a name of its own; without a bus there is no service.
    PanelNowPlaying other(w.sp.platform);
    const QDBusConnection own = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("second"));
    auto second = MprisService::start(other, own);
    QVERIFY(second);
    QCOMPARE(second->serviceName(),
             QLatin1String(MprisService::BusName) + QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid()));
    const QDBusConnection none = QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"),
                                                               QStringLiteral("none"));
    QVERIFY(!MprisService::start(other, none));
    second.reset();
    QVERIFY(d.bus.interface()->isServiceRegistered(d.service));
    w.service.reset();
    QVERIFY(!d.bus.interface()->isServiceRegistered(d.service));
}

void tst_mpris::stationPlayingOverTheBus()
{
    World w;
    Desktop d;
    Panel *tafm = w.open(QStringLiteral("Tafm"));
    click(tafm->stationButton(QStringLiteral("s1")));
    World::engine(tafm)->state = 3;
    const Station &s1 = stationsOf(QStringLiteral("Tafm")).first();

    QCOMPARE(d.get(Player, QStringLiteral("PlaybackStatus")).toString(), QStringLiteral("Playing"));
    const QVariantMap m = d.metadata();
    QCOMPARE(m.value(QStringLiteral("xesam:title")).toString(), s1.displayName);
    QCOMPARE(m.value(QStringLiteral("xesam:url")).toString(), s1.URL());
    QVERIFY(m.value(QStringLiteral("mpris:trackid")).value<QDBusObjectPath>().path().startsWith(
        QStringLiteral("/org/zarvent/track/Tafm/")));
    QVERIFY(!m.contains(QStringLiteral("mpris:length"))); // a stream has none
    // What a station panel can do, truthfully: no pause, no seek.
    const struct {
        const char *property;
        bool value;
    } can[] = {{"CanPlay", true}, {"CanPause", false}, {"CanGoNext", true}, {"CanGoPrevious", true}, {"CanSeek", false}};
    for (const auto &row : can)
        QVERIFY2(d.get(Player, QLatin1String(row.property)).toBool() == row.value, row.property);
}

void tst_mpris::pressesReachThePanelsHandlers()
{
    World w;
    Desktop d;
    Panel *tafm = w.open(QStringLiteral("Tafm"));

    // Answered at once, run on the next pass of the loop: the station's prompt.
    for (const char *method : {"PlayPause", "Next"}) {
        w.sp.dialogs.shown.clear();
        const QDBusMessage reply = d.call(Player, QLatin1String(method));
        QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, method);
        QTRY_COMPARE(w.prompts(), QStringList{QStringLiteral("Please click Requried Channels")});
    }
    QVERIFY(tafm->Timer3->Enabled()); // and the grid opens, as Ctrl+N does

    // Stop reaches the engine.
    d.call(Player, QStringLiteral("Stop"));
    QTRY_VERIFY(World::engine(tafm)->calls.contains(QStringLiteral("stop")));

    // In Mp3, PlayPause while playing is its pause label; Previous paused asks for songs.
    Panel *mp3 = w.open(QStringLiteral("Mp3"));
    auto *engine = static_cast<ScriptedLocalEngine *>(mp3->Player());
    engine->setFileName(QStringLiteral("/music/a.mp3"));
    w.sp.dialogs.shown.clear();
    d.call(Player, QStringLiteral("PlayPause"));
    QTRY_COMPARE(engine->state, 1);
    QCOMPARE(d.get(Player, QStringLiteral("PlaybackStatus")).toString(), QStringLiteral("Paused"));
    d.call(Player, QStringLiteral("Previous"));
    QTRY_COMPARE(w.prompts(), QStringList{QStringLiteral("Please Add Songs in playlist")});

    // SetPosition for the track at hand seeks; for another id it is ignored.
    engine->duration = 120;
    const QDBusObjectPath track = d.metadata().value(QStringLiteral("mpris:trackid")).value<QDBusObjectPath>();
    engine->calls.clear();
    d.call(Player, QStringLiteral("SetPosition"),
           {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/zarvent/track/other/1"))), qlonglong(5000000)});
    d.call(Player, QStringLiteral("SetPosition"), {QVariant::fromValue(track), qlonglong(30000000)});
    QTRY_COMPARE(engine->calls, QStringList{QStringLiteral("CurrentPosition=30")});
}

void tst_mpris::changesAreSignalled()
{
    World w;
    Desktop d;
    Changes changes;
    QVERIFY(d.bus.connect(d.service, Path, QStringLiteral("org.freedesktop.DBus.Properties"),
                          QStringLiteral("PropertiesChanged"), &changes,
                          SLOT(changed(QString, QVariantMap, QStringList))));
    Panel *tafm = w.open(QStringLiteral("Tafm"));
    const QList<Station> &rows = stationsOf(QStringLiteral("Tafm"));

    // The panel showing brings its abilities; a click, its first title.
    QTRY_VERIFY(!changes.seen.isEmpty());
    QVERIFY(changes.seen.last().value(QStringLiteral("CanPlay")).toBool());
    changes.seen.clear();
    click(tafm->stationButton(QStringLiteral("s1")));
    World::engine(tafm)->state = 3;
    QTRY_VERIFY(!changes.seen.isEmpty());
    QVariantMap first;
    for (const QVariantMap &c : changes.seen)
        first.insert(c);
    QCOMPARE(first.value(QStringLiteral("PlaybackStatus")).toString(), QStringLiteral("Playing"));
    const QVariantMap one = asMap(first.value(QStringLiteral("Metadata")));
    QCOMPARE(one.value(QStringLiteral("xesam:title")).toString(), rows[0].displayName);

    // Another station: a new title under a new track id, and nothing else.
    changes.seen.clear();
    click(tafm->stationButton(rows[1].button));
    QTRY_COMPARE(changes.seen.size(), 1);
    const QVariantMap second = changes.seen.first();
    QCOMPARE(second.keys(), QStringList{QStringLiteral("Metadata")});
    const QVariantMap two = asMap(second.value(QStringLiteral("Metadata")));
    QCOMPARE(two.value(QStringLiteral("xesam:title")).toString(), rows[1].displayName);
    QVERIFY(two.value(QStringLiteral("mpris:trackid")).value<QDBusObjectPath>()
            != one.value(QStringLiteral("mpris:trackid")).value<QDBusObjectPath>());

    // A stop changes the state alone; an unchanged panel sends nothing more.
    changes.seen.clear();
    tafm->stop_Click();
    QTRY_COMPARE(changes.seen.size(), 1);
    QCOMPARE(changes.seen.first(), (QVariantMap{{QStringLiteral("PlaybackStatus"), QStringLiteral("Stopped")}}));
    QTest::qWait(3 * MprisService::PollMs);
    QCOMPARE(changes.seen.size(), 1);
}

QTEST_MAIN(tst_mpris)
#include "tst_mpris.moc"
