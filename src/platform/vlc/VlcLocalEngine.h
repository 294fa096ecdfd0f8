#pragma once

#include "platform/LocalEngine.h"
#include "platform/vlc/VlcAudioTap.h"
#include "platform/vlc/VlcEvents.h"
#include "platform/vlc/VlcHandles.h"
#include "platform/vlc/VlcOutputSettings.h"

#include <QObject>

#include <atomic>
#include <condition_variable>
#include <mutex>

// The Mp3 panel's engine on a plain libvlc media player. libvlc's threads
// only move the atomics below; anything that calls back into libvlc is
// handed to the thread this object lives in.
class VlcLocalEngine : public QObject, public LocalEngine {
    Q_OBJECT
public:
    // A null instance (libvlc did not start) gives an engine that opens
    // nothing and reports 6.
    explicit VlcLocalEngine(VlcInstancePtr instance);
    ~VlcLocalEngine() override;

    QString FileName() const override { return m_file; }
    void setFileName(const QString &file) override;
    int PlayState() const override;
    double CurrentPosition() const override;
    void setCurrentPosition(double seconds) override;
    double Duration() const override;
    void Play() override;
    void Pause() override;
    void Stop() override;
    bool Mute() const override { return m_output.mute(); }
    void setMute(bool mute) override;
    long Volume() const override { return m_volume; }
    void setVolume(long volume) override;

    // The one mapping from libvlc's state to PlayState.
    static int playStateOf(libvlc_state_t state, bool hasFile);
    // Hundredths of a decibel to libvlc's percent: 100 * 10^(v / 2000),
    // 0 dB and above at 100.
    static int volumePercent(long hundredthsDb);

    // Replaces the sound output with a counter of decoded audio. Call it
    // before the first FileName.
    VlcAudioTap &countDecodedAudio();

    // The longest a start of a local file holds the caller until libvlc
    // plays it.
    static constexpr int OpenWaitMs = 1000;

private:
    static void onEvent(const libvlc_event_t *event, void *opaque);
    void start(bool wait);
    void awaitPlaying();
    void applyPendingSeek();
    void setState(libvlc_state_t state); // any thread
    void playingWithSound();              // libvlc's thread

    VlcInstancePtr m_instance;
    VlcAudioTap m_tap;
    VlcPtr<libvlc_media_player_t> m_player;
    VlcPtr<libvlc_media_t> m_media;
    VlcEventHook m_events;
    VlcOutputSettings m_output;

    QString m_file;
    long m_volume = 0; // as given, hundredths of a dB
    qint64 m_pendingSeekMs = -1; // Qt thread only
    bool m_openFailed = false;   // the last wait for this file gave up

    std::atomic<int> m_state{libvlc_NothingSpecial};
    std::atomic<qint64> m_timeMs{0};
    std::atomic<qint64> m_lengthMs{0};
    // libvlc says Playing also for a file it cannot make sound of; such a
    // start is held at Opening until an audio stream turns up.
    std::atomic<bool> m_hasAudio{false};
    std::atomic<bool> m_playingHeld{false};
    std::mutex m_stateLock; // only pairs m_stateMoved with m_state
    std::condition_variable m_stateMoved;
};
