#include "platform/qtdesktop/MprisService.h"

#include "platform/qtdesktop/MprisPlayer.h"
#include "platform/qtdesktop/MprisRoot.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace {

QString statusText(NowPlaying::Status status)
{
    switch (status) {
    case NowPlaying::Status::Playing: return QStringLiteral("Playing");
    case NowPlaying::Status::Paused: return QStringLiteral("Paused");
    case NowPlaying::Status::Stopped: break;
    }
    return QStringLiteral("Stopped");
}

qlonglong microseconds(double seconds)
{
    return seconds > 0 ? static_cast<qlonglong>(seconds * 1e6) : 0;
}

} // namespace

std::unique_ptr<MprisService> MprisService::onSessionBus(NowPlaying &player)
{
    return start(player, QDBusConnection::sessionBus());
}

std::unique_ptr<MprisService> MprisService::start(NowPlaying &player, const QDBusConnection &bus)
{
    if (!bus.isConnected())
        return nullptr;
    std::unique_ptr<MprisService> service(new MprisService(player, bus));
    if (!service->m_bus.registerObject(QLatin1String(ObjectPath), service.get(), QDBusConnection::ExportAdaptors))
        return nullptr;
    // A second copy of the program takes a name of its own, as players do.
    const QString first = QLatin1String(BusName);
    const QString second = first + QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid());
    for (const QString &name : {first, second}) {
        if (service->m_bus.registerService(name)) {
            service->m_serviceName = name;
            break;
        }
    }
    if (service->m_serviceName.isEmpty()) {
        service->m_bus.unregisterObject(QLatin1String(ObjectPath));
        return nullptr;
    }
    service->m_poll.start();
    return service;
}

MprisService::MprisService(NowPlaying &player, const QDBusConnection &bus)
    : m_player(player)
    , m_bus(bus)
{
    new MprisRoot(this);
    auto *adaptor = new MprisPlayer(this);
    connect(this, &MprisService::seeked, adaptor, &MprisPlayer::Seeked);
    m_shown = read();
    if (!m_shown.title.isEmpty())
        m_track = 1;
    m_poll.setInterval(PollMs);
    m_poll.setTimerType(Qt::CoarseTimer);
    connect(&m_poll, &QTimer::timeout, this, &MprisService::refresh);
}

MprisService::~MprisService()
{
    if (!m_serviceName.isEmpty()) {
        m_bus.unregisterService(m_serviceName);
        m_bus.unregisterObject(QLatin1String(ObjectPath));
    }
}

MprisService::Shown MprisService::read() const
{
    Shown s;
    s.status = statusText(m_player.status());
    s.player = m_player.playerName();
    s.title = m_player.title();
    s.url = m_player.url();
    s.lengthUs = microseconds(m_player.length());
    s.can = m_player.abilities();
    return s;
}

void MprisService::refresh()
{
    const Shown now = read();
    const bool newTrack = now.player != m_shown.player || now.title != m_shown.title || now.url != m_shown.url;
    if (newTrack)
        ++m_track;
    QVariantMap changed;
    if (now.status != m_shown.status)
        changed.insert(QStringLiteral("PlaybackStatus"), now.status);
    if (newTrack || now.lengthUs != m_shown.lengthUs)
        changed.insert(QStringLiteral("Metadata"), metadataOf(now));
    const struct {
        const char *name;
        bool NowPlaying::Abilities::*flag;
    } abilities[] = {{"CanPlay", &NowPlaying::Abilities::play},
                     {"CanPause", &NowPlaying::Abilities::pause},
                     {"CanGoNext", &NowPlaying::Abilities::next},
                     {"CanGoPrevious", &NowPlaying::Abilities::previous},
                     {"CanSeek", &NowPlaying::Abilities::seek}};
    for (const auto &a : abilities) {
        if (now.can.*a.flag != m_shown.can.*a.flag)
            changed.insert(QLatin1String(a.name), now.can.*a.flag);
    }
    m_shown = now;
    if (changed.isEmpty())
        return;
    QDBusMessage signal = QDBusMessage::createSignal(QLatin1String(ObjectPath),
                                                     QStringLiteral("org.freedesktop.DBus.Properties"),
                                                     QStringLiteral("PropertiesChanged"));
    signal << QLatin1String(PlayerInterface) << changed << QStringList();
    m_bus.send(signal);
}

QDBusObjectPath MprisService::trackIdOf(const Shown &shown) const
{
    if (shown.title.isEmpty())
        return QDBusObjectPath(QStringLiteral("/org/mpris/MediaPlayer2/TrackList/NoTrack"));
    return QDBusObjectPath(QStringLiteral("/org/zarvent/track/%1/%2").arg(shown.player).arg(m_track));
}

QVariantMap MprisService::metadataOf(const Shown &shown) const
{
    // No title, no track (a station click and a loaded file both bring one):
    // an empty map, as the sound menus expect.
    QVariantMap m;
    if (shown.title.isEmpty())
        return m;
    m.insert(QStringLiteral("mpris:trackid"), QVariant::fromValue(trackIdOf(shown)));
    m.insert(QStringLiteral("xesam:title"), shown.title);
    if (!shown.url.isEmpty())
        m.insert(QStringLiteral("xesam:url"), shown.url);
    if (shown.lengthUs > 0)
        m.insert(QStringLiteral("mpris:length"), shown.lengthUs);
    return m;
}

QString MprisService::playbackStatus()
{
    refresh();
    return m_shown.status;
}

QVariantMap MprisService::metadata()
{
    refresh();
    return metadataOf(m_shown);
}

NowPlaying::Abilities MprisService::abilities()
{
    refresh();
    return m_shown.can;
}

QDBusObjectPath MprisService::trackId()
{
    refresh();
    return trackIdOf(m_shown);
}

void MprisService::later(std::function<void(NowPlaying &)> press)
{
    QTimer::singleShot(0, this, [this, press = std::move(press)] {
        press(m_player);
        refresh();
    });
}
