#pragma once

#include "platform/vlc/VlcHandles.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <functional>

// Volume and mute of one player's sound output. libvlc drops both while the
// player has no output (it answers -1), and the output only comes to be
// once the first sound is decoded, which may be before or after libvlc says
// Playing or full. So after each start they are given again on a short
// timer until an output takes them, and once more if the output's first
// report says otherwise (a sound server restoring its own level); later
// changes from outside are left alone.
class VlcOutputSettings : public QObject {
    Q_OBJECT
public:
    explicit VlcOutputSettings(QObject *parent = nullptr);

    // starting answers whether the player may still bring an output (not
    // failed, ended or stopped); asked on the timer.
    void setPlayer(libvlc_media_player_t *player, std::function<bool()> starting);
    void setVolume(int percent);
    void setMute(bool mute);
    int volume() const { return m_volume.load(); }
    bool mute() const { return m_mute.load(); }

    void started(); // a new start: retry until an output takes them
    void stopped();
    void report(const libvlc_event_t *event); // libvlc's thread: AudioVolume, Muted, Unmuted

private:
    bool apply();
    void retry();

    libvlc_media_player_t *m_player = nullptr;
    std::function<bool()> m_starting;
    std::atomic<int> m_volume{100};
    std::atomic<bool> m_mute{false};
    std::atomic<bool> m_watch{false};
    QTimer m_retry;
    int m_tries = 0;
};
