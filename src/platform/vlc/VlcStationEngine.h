#pragma once

#include "platform/StationEngine.h"
#include "platform/vlc/VlcAudioTap.h"
#include "platform/vlc/VlcEvents.h"
#include "platform/vlc/VlcHandles.h"
#include "platform/vlc/VlcOutputSettings.h"

#include <QObject>

#include <atomic>

// The station engine on libvlc. It plays through a media-list player, so a
// playlist URL (.asx, .pls, .m3u ...) plays its first entry. libvlc's
// threads only move the atomics below; anything that calls back into
// libvlc is handed to the thread this object lives in.
class VlcStationEngine : public QObject, public StationEngine {
    Q_OBJECT
public:
    // A null instance (libvlc did not start) gives an engine that plays
    // nothing and reports 0.
    explicit VlcStationEngine(VlcInstancePtr instance);
    ~VlcStationEngine() override;

    QString URL() const override { return m_url; }
    void setURL(const QString &url) override;
    int playState() const override;
    void stop() override;
    QString currentPositionString() const override;
    bool mute() const override { return m_output.mute(); }
    void setMute(bool mute) override { m_output.setMute(mute); }
    int volume() const override { return m_output.volume(); }
    void setVolume(int volume) override { m_output.setVolume(volume); }

    // The one mapping from libvlc's state to playState. bufferingPercent is
    // the last cache fill libvlc reported since opening; opened says a media
    // is set.
    static int playStateOf(libvlc_state_t state, float bufferingPercent, bool opened);
    // "mm:ss" (minutes grow past 99), "" for a negative time.
    static QString positionText(qint64 ms);

    // Replaces the sound output with a counter of decoded audio. Call it
    // before the first URL.
    VlcAudioTap &countDecodedAudio();

    // Network caching asked of every station media, in ms: see the .cpp.
    static constexpr int NetworkCachingMs = 300;

private:
    static void onEvent(const libvlc_event_t *event, void *opaque);

    VlcInstancePtr m_instance;
    VlcAudioTap m_tap;
    VlcPtr<libvlc_media_player_t> m_player;
    VlcPtr<libvlc_media_list_player_t> m_listPlayer;
    VlcEventHook m_events;
    VlcOutputSettings m_output;

    QString m_url;

    std::atomic<int> m_state{libvlc_NothingSpecial};
    std::atomic<float> m_buffering{0};
    std::atomic<qint64> m_timeMs{-1};
    std::atomic<bool> m_opened{false};
};
