#pragma once

#include "platform/vlc/VlcHandles.h"

#include <QtGlobal>

#include <atomic>

// Takes the place of a player's sound output: counts the sample frames that
// libvlc decodes (stereo 16-bit, 44.1 kHz), keeps the loudest sample and
// the moment of the first audio, and what volume and mute reached the
// output. For tests and benchmarks, which need no sound card. Written by
// libvlc's decoder thread, read from anywhere.
class VlcAudioTap {
public:
    void attach(libvlc_media_player_t *player);
    void reset(); // forget what was counted, not the volume seen

    qint64 samples() const { return m_samples.load(); }
    int peak() const { return m_peak.load(); }          // largest |sample|, 0..32768
    qint64 firstAudioNs() const { return m_first.load(); } // steady clock, 0 before any audio
    int outputVolume() const { return m_volume.load(); }   // percent, -1 before the output had one
    int outputMute() const { return m_mute.load(); }       // 1 or 0, -1 before

private:
    static void play(void *opaque, const void *samples, unsigned count, int64_t pts);
    static void setVolume(void *opaque, float volume, bool mute);

    std::atomic<qint64> m_samples{0};
    std::atomic<int> m_peak{0};
    std::atomic<qint64> m_first{0};
    std::atomic<int> m_volume{-1};
    std::atomic<int> m_mute{-1};
};
