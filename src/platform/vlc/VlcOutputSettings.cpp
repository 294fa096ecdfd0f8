#include "platform/vlc/VlcOutputSettings.h"

#include <QMetaObject>

#include <algorithm>
#include <cmath>

namespace {

// 20 ms steps for at most 15 s: an output comes within a second of the
// start here. A source slower than that to sound keeps libvlc's level until
// the next change; one that fails ends the retries at once.
constexpr int RetryMs = 20;
constexpr int MaxTries = 15000 / RetryMs;

} // namespace

VlcOutputSettings::VlcOutputSettings(QObject *parent)
    : QObject(parent)
{
    m_retry.setInterval(RetryMs);
    connect(&m_retry, &QTimer::timeout, this, &VlcOutputSettings::retry);
}

void VlcOutputSettings::setPlayer(libvlc_media_player_t *player, std::function<bool()> starting)
{
    m_player = player;
    m_starting = std::move(starting);
}

void VlcOutputSettings::setVolume(int percent)
{
    m_volume = std::clamp(percent, 0, 100);
    apply();
}

void VlcOutputSettings::setMute(bool mute)
{
    m_mute = mute;
    apply();
}

void VlcOutputSettings::started()
{
    m_watch = true;
    m_tries = 0;
    if (!apply())
        m_retry.start();
}

void VlcOutputSettings::stopped()
{
    m_watch = false;
    m_retry.stop();
}

bool VlcOutputSettings::apply()
{
    if (!m_player)
        return false;
    if (libvlc_audio_set_volume(m_player, m_volume.load()) != 0)
        return false;
    libvlc_audio_set_mute(m_player, m_mute.load() ? 1 : 0);
    return true;
}

void VlcOutputSettings::retry()
{
    if (apply() || ++m_tries >= MaxTries || (m_starting && !m_starting()))
        m_retry.stop();
}

void VlcOutputSettings::report(const libvlc_event_t *event)
{
    bool differs = false;
    switch (event->type) {
    case libvlc_MediaPlayerAudioVolume:
        differs = std::abs(event->u.media_player_audio_volume.volume * 100 - static_cast<float>(m_volume.load())) > 0.5f;
        break;
    case libvlc_MediaPlayerMuted:
        differs = !m_mute.load();
        break;
    case libvlc_MediaPlayerUnmuted:
        differs = m_mute.load();
        break;
    default:
        return;
    }
    if (differs && m_watch.exchange(false))
        QMetaObject::invokeMethod(this, [this] { apply(); }, Qt::QueuedConnection);
}
