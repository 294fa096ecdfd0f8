#include "platform/vlc/VlcAudioTap.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>

void VlcAudioTap::attach(libvlc_media_player_t *player)
{
    libvlc_audio_set_callbacks(player, &VlcAudioTap::play, nullptr, nullptr, nullptr, nullptr, this);
    libvlc_audio_set_volume_callback(player, &VlcAudioTap::setVolume);
    libvlc_audio_set_format(player, "S16N", 44100, 2);
}

void VlcAudioTap::reset()
{
    m_samples = 0;
    m_peak = 0;
    m_first = 0;
}

void VlcAudioTap::play(void *opaque, const void *samples, unsigned count, int64_t)
{
    auto *tap = static_cast<VlcAudioTap *>(opaque);
    if (tap->m_first.load() == 0) {
        const qint64 now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                               std::chrono::steady_clock::now().time_since_epoch())
                               .count();
        qint64 none = 0;
        tap->m_first.compare_exchange_strong(none, now);
    }
    const auto *s = static_cast<const int16_t *>(samples);
    int peak = tap->m_peak.load();
    for (unsigned i = 0; i < count * 2; ++i)
        peak = std::max(peak, std::abs(static_cast<int>(s[i])));
    tap->m_peak = peak;
    tap->m_samples += count;
}

void VlcAudioTap::setVolume(void *opaque, float volume, bool mute)
{
    auto *tap = static_cast<VlcAudioTap *>(opaque);
    tap->m_volume = static_cast<int>(std::lround(volume * 100));
    tap->m_mute = mute ? 1 : 0;
}
