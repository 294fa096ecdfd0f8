#pragma once

#include "platform/NowPlaying.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <functional>
#include <memory>

// The program as an MPRIS 2 media player on a D-Bus bus, so that the
// desktop's sound menu shows what the panel last shown plays and its media
// keys press that panel's transport. The player is read on a slow timer and
// the bus is told only what changed.
class MprisService : public QObject {
    Q_OBJECT
public:
    static constexpr int PollMs = 200;
    static constexpr const char *ObjectPath = "/org/mpris/MediaPlayer2";
    static constexpr const char *BusName = "org.mpris.MediaPlayer2.zarvent";
    static constexpr const char *PlayerInterface = "org.mpris.MediaPlayer2.Player";

    // Null when there is no session bus: the program then runs as before.
    static std::unique_ptr<MprisService> onSessionBus(NowPlaying &player);
    // Null when the bus is not connected or takes neither name.
    static std::unique_ptr<MprisService> start(NowPlaying &player, const QDBusConnection &bus);
    ~MprisService() override;

    QString serviceName() const { return m_serviceName; }
    NowPlaying &player() { return m_player; }

    // What the bus reads, brought up to date first.
    QString playbackStatus();
    QVariantMap metadata();
    NowPlaying::Abilities abilities();
    QDBusObjectPath trackId();

    // A press is answered at once and run on the next pass of the event
    // loop: a handler may hold a message box, with its own loop, for as long
    // as the user takes, and the desktop must not wait for it.
    void later(std::function<void(NowPlaying &)> press);

    // Reads the player and sends PropertiesChanged for whatever differs.
    void refresh();

signals:
    void seeked(qlonglong positionUs);

private:
    MprisService(NowPlaying &player, const QDBusConnection &bus);

    struct Shown {
        QString status;
        QString player;
        QString title;
        QString url;
        qlonglong lengthUs = 0;
        NowPlaying::Abilities can;
    };
    Shown read() const;
    QVariantMap metadataOf(const Shown &shown) const;
    QDBusObjectPath trackIdOf(const Shown &shown) const;

    NowPlaying &m_player;
    QDBusConnection m_bus;
    QString m_serviceName;
    Shown m_shown;
    quint64 m_track = 0; // counts the titles seen, so that each has its own id
    QTimer m_poll;
};
