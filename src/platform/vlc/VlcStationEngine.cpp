#include "platform/vlc/VlcStationEngine.h"

#include "platform/vlc/VlcEvents.h"

#include <algorithm>

namespace {

// Network caching is how much sound libvlc holds before it starts. An
// Icecast server sends seconds of sound at once on connect, so there the
// start is set by the server whatever the value; a server that sends no
// burst makes the listener wait the whole caching time (libvlc's default
// 1000 ms measured 1030 ms to the first audio, 300 ms measured 325 ms). 300 ms
// starts such a stream within the panel's 350 ms target, and libvlc raises
// its delay by itself when a stream arrives late, so a slow network costs a
// short gap, not silence.
const QByteArray CachingOption = QByteArrayLiteral(":network-caching=")
                                 + QByteArray::number(VlcStationEngine::NetworkCachingMs);

} // namespace

VlcStationEngine::VlcStationEngine(VlcInstancePtr instance)
    : m_instance(std::move(instance))
{
    // Stored with the control and relied on by the panels: volume 50, mute off.
    m_output.setVolume(50);
    if (!m_instance)
        return;
    m_player.reset(libvlc_media_player_new(m_instance.get()));
    m_listPlayer.reset(libvlc_media_list_player_new(m_instance.get()));
    if (!m_player || !m_listPlayer) {
        m_listPlayer.reset();
        m_player.reset();
        return;
    }
    libvlc_media_list_player_set_media_player(m_listPlayer.get(), m_player.get());
    // Ended may be a playlist handing over to its first entry: only a
    // failure or a stop ends the wait for a sound output.
    m_output.setPlayer(m_player.get(), [this] {
        const int state = m_state.load();
        return state != libvlc_Error && state != libvlc_Stopped;
    });
    m_events.attach(m_player.get(),
                    {
                        libvlc_MediaPlayerNothingSpecial, libvlc_MediaPlayerOpening, libvlc_MediaPlayerBuffering,
                        libvlc_MediaPlayerPlaying, libvlc_MediaPlayerPaused, libvlc_MediaPlayerStopped,
                        libvlc_MediaPlayerEndReached, libvlc_MediaPlayerEncounteredError, libvlc_MediaPlayerTimeChanged,
                        libvlc_MediaPlayerAudioVolume, libvlc_MediaPlayerMuted, libvlc_MediaPlayerUnmuted,
                    },
                    &VlcStationEngine::onEvent, this);
}

VlcStationEngine::~VlcStationEngine()
{
    m_events.detach(); // first: see VlcEventHook
    m_output.stopped();
    m_output.setPlayer(nullptr, {});
    if (m_listPlayer)
        libvlc_media_list_player_stop(m_listPlayer.get());
    m_listPlayer.reset();
    m_player.reset();
}

void VlcStationEngine::setURL(const QString &url)
{
    m_url = url;
    if (!m_listPlayer)
        return;
    m_output.stopped();
    libvlc_media_list_player_stop(m_listPlayer.get());
    m_opened = false;
    m_state = libvlc_NothingSpecial;
    m_buffering = 0;
    m_timeMs = -1;
    if (url.isEmpty())
        return;

    const QByteArray utf8 = url.toUtf8();
    VlcPtr<libvlc_media_t> media(url.contains(QLatin1String("://"))
                                     ? libvlc_media_new_location(m_instance.get(), utf8.constData())
                                     : libvlc_media_new_path(m_instance.get(), utf8.constData()));
    VlcPtr<libvlc_media_list_t> list(libvlc_media_list_new(m_instance.get()));
    if (!media || !list) {
        m_state = libvlc_Error;
        return;
    }
    libvlc_media_add_option(media.get(), CachingOption.constData());
    libvlc_media_list_lock(list.get());
    libvlc_media_list_add_media(list.get(), media.get());
    libvlc_media_list_unlock(list.get());
    libvlc_media_list_player_set_media_list(m_listPlayer.get(), list.get());

    m_opened = true;
    m_state = libvlc_Opening;
    // By index: a new list does not reset the list player's place, and a
    // bare play would restart the previous media. Its answer is not used:
    // libvlc 3.0 answers -1 here even when the item plays; a source that
    // fails says so by its events.
    libvlc_media_list_player_play_item_at_index(m_listPlayer.get(), 0);
    m_output.started();
}

int VlcStationEngine::playState() const
{
    if (!m_player)
        return 0;
    return playStateOf(static_cast<libvlc_state_t>(m_state.load()), m_buffering.load(), m_opened.load());
}

int VlcStationEngine::playStateOf(libvlc_state_t state, float bufferingPercent, bool opened)
{
    switch (state) {
    case libvlc_NothingSpecial:
        return opened ? 10 : 0;
    case libvlc_Opening:
        return 9;
    case libvlc_Buffering:
        return 6;
    case libvlc_Playing:
        // libvlc 3 says Playing as soon as the source is open and fills its
        // cache after that: the listener hears nothing until 100.
        return bufferingPercent < 100 ? 6 : 3;
    case libvlc_Paused:
        return 2;
    case libvlc_Stopped:
        return 1;
    case libvlc_Ended:
        return 8;
    case libvlc_Error:
        return 0;
    }
    return 0;
}

void VlcStationEngine::stop()
{
    if (!m_listPlayer)
        return;
    m_output.stopped();
    libvlc_media_list_player_stop(m_listPlayer.get());
    // Also when nothing played: the engine says stopped after a stop.
    m_state = libvlc_Stopped;
    m_timeMs = -1;
}

QString VlcStationEngine::currentPositionString() const
{
    const auto state = static_cast<libvlc_state_t>(m_state.load());
    if (state != libvlc_Playing && state != libvlc_Paused)
        return QString();
    // Playing before libvlc's first time report is at the start.
    return positionText(std::max<qint64>(0, m_timeMs.load()));
}

QString VlcStationEngine::positionText(qint64 ms)
{
    if (ms < 0)
        return QString();
    const qint64 seconds = ms / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60, 2, 10, QLatin1Char('0')).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

VlcAudioTap &VlcStationEngine::countDecodedAudio()
{
    if (m_player)
        m_tap.attach(m_player.get());
    return m_tap;
}

// Runs on libvlc's threads: it only moves atomics and queues work. Calling
// libvlc from here (stop, play, release) would deadlock it.
void VlcStationEngine::onEvent(const libvlc_event_t *event, void *opaque)
{
    auto *self = static_cast<VlcStationEngine *>(opaque);
    switch (event->type) {
    case libvlc_MediaPlayerNothingSpecial:
        self->m_state = libvlc_NothingSpecial;
        break;
    case libvlc_MediaPlayerOpening:
        self->m_state = libvlc_Opening;
        self->m_buffering = 0;
        self->m_timeMs = -1;
        break;
    case libvlc_MediaPlayerBuffering:
        self->m_buffering = event->u.media_player_buffering.new_cache;
        break;
    case libvlc_MediaPlayerPlaying:
        self->m_state = libvlc_Playing;
        break;
    case libvlc_MediaPlayerPaused:
        self->m_state = libvlc_Paused;
        break;
    case libvlc_MediaPlayerStopped:
        // libvlc says Stopped also when an input that ended or failed goes
        // away; that is still Ended (8) or Error to the panel. A stop of
        // ours sets Stopped itself.
        stopUnlessFinished(self->m_state);
        break;
    case libvlc_MediaPlayerEndReached:
        self->m_state = libvlc_Ended;
        break;
    case libvlc_MediaPlayerEncounteredError:
        self->m_state = libvlc_Error;
        break;
    case libvlc_MediaPlayerTimeChanged:
        self->m_timeMs = event->u.media_player_time_changed.new_time;
        break;
    case libvlc_MediaPlayerAudioVolume:
    case libvlc_MediaPlayerMuted:
    case libvlc_MediaPlayerUnmuted:
        self->m_output.report(event);
        break;
    default:
        break;
    }
}
