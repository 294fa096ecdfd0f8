#include "platform/vlc/VlcLocalEngine.h"

#include "platform/vlc/VlcEvents.h"

#include <QMetaObject>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

bool running(libvlc_state_t state)
{
    return state == libvlc_Playing || state == libvlc_Paused;
}

bool opening(int state)
{
    return state == libvlc_Opening || state == libvlc_Buffering || state == libvlc_NothingSpecial;
}

bool isStream(const QString &file)
{
    return file.contains(QLatin1String("://"));
}

} // namespace

VlcLocalEngine::VlcLocalEngine(VlcInstancePtr instance)
    : m_instance(std::move(instance))
{
    if (!m_instance)
        return;
    m_player.reset(libvlc_media_player_new(m_instance.get()));
    if (!m_player)
        return;
    m_output.setPlayer(m_player.get(), [this] {
        const int state = m_state.load();
        return state == libvlc_Opening || state == libvlc_Playing || state == libvlc_Paused;
    });
    m_events.attach(m_player.get(),
                    {
                        libvlc_MediaPlayerNothingSpecial, libvlc_MediaPlayerOpening, libvlc_MediaPlayerPlaying,
                        libvlc_MediaPlayerPaused, libvlc_MediaPlayerStopped, libvlc_MediaPlayerEndReached,
                        libvlc_MediaPlayerEncounteredError, libvlc_MediaPlayerTimeChanged, libvlc_MediaPlayerLengthChanged,
                        libvlc_MediaPlayerAudioVolume, libvlc_MediaPlayerMuted, libvlc_MediaPlayerUnmuted,
                        libvlc_MediaPlayerESAdded,
                    },
                    &VlcLocalEngine::onEvent, this);
}

VlcLocalEngine::~VlcLocalEngine()
{
    m_events.detach(); // first: see VlcEventHook
    m_output.stopped();
    m_output.setPlayer(nullptr, {});
    if (m_player)
        libvlc_media_player_stop(m_player.get());
    m_player.reset();
    m_media.reset();
}

void VlcLocalEngine::setFileName(const QString &file)
{
    m_file = file;
    if (!m_player)
        return;
    m_output.stopped();
    libvlc_media_player_stop(m_player.get());
    libvlc_media_player_set_media(m_player.get(), nullptr);
    m_media.reset();
    m_state = libvlc_NothingSpecial;
    m_timeMs = 0;
    m_lengthMs = 0;
    m_pendingSeekMs = -1;
    m_openFailed = false;
    if (file.isEmpty())
        return;
    const QByteArray utf8 = file.toUtf8();
    m_media.reset(isStream(file) ? libvlc_media_new_location(m_instance.get(), utf8.constData())
                                 : libvlc_media_new_path(m_instance.get(), utf8.constData()));
    if (!m_media) {
        m_state = libvlc_Error;
        return;
    }
    libvlc_media_player_set_media(m_player.get(), m_media.get());
    start(true);
}

void VlcLocalEngine::start(bool wait)
{
    // libvlc keeps an input that ended until it is stopped, and play alone
    // does nothing then.
    libvlc_media_player_stop(m_player.get());
    m_state = libvlc_Opening;
    m_timeMs = 0;
    m_hasAudio = false;
    m_playingHeld = false;
    if (libvlc_media_player_play(m_player.get()) != 0) {
        m_state = libvlc_Error;
        return;
    }
    m_output.started();
    if (wait && !isStream(m_file))
        awaitPlaying();
}

// The panel reads PlayState right after it starts a file and names the song
// only if it plays by then, as the older control did for a local file at
// once. libvlc opens on its own thread, in tens of ms for a readable file,
// so the caller is held until it plays, fails or the bound runs out.
void VlcLocalEngine::awaitPlaying()
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(OpenWaitMs);
    {
        std::unique_lock<std::mutex> hold(m_stateLock);
        m_stateMoved.wait_until(hold, deadline, [this] { return !opening(m_state.load()); });
    }
    // A file that failed or stalled is not waited for again by a Play on
    // it: one wait per file name.
    m_openFailed = m_state.load() != libvlc_Playing;
    applyPendingSeek();
}

int VlcLocalEngine::PlayState() const
{
    return playStateOf(static_cast<libvlc_state_t>(m_state.load()), m_player && m_media);
}

int VlcLocalEngine::playStateOf(libvlc_state_t state, bool hasFile)
{
    if (!hasFile)
        return 6;
    switch (state) {
    case libvlc_NothingSpecial:
        return 0;
    case libvlc_Opening:
    case libvlc_Buffering:
        return 3;
    case libvlc_Playing:
        return 2;
    case libvlc_Paused:
        return 1;
    case libvlc_Stopped:
    case libvlc_Ended:
        return 0;
    case libvlc_Error:
        return 6;
    }
    return 6;
}

double VlcLocalEngine::CurrentPosition() const
{
    if (!running(static_cast<libvlc_state_t>(m_state.load())))
        return 0;
    return static_cast<double>(std::max<qint64>(0, m_timeMs.load())) / 1000.0;
}

void VlcLocalEngine::setCurrentPosition(double seconds)
{
    if (!m_player || !m_media || !std::isfinite(seconds))
        return;
    const qint64 ms = std::llround(std::max(0.0, seconds) * 1000.0);
    if (running(static_cast<libvlc_state_t>(m_state.load()))) {
        // A stream without length cannot seek; its position stays as it is.
        if (!libvlc_media_player_is_seekable(m_player.get()))
            return;
        libvlc_media_player_set_time(m_player.get(), ms);
        m_timeMs = ms; // read back at once, as the control did
    } else {
        // Not running yet (or any more): the next start begins there.
        m_pendingSeekMs = ms;
    }
}

double VlcLocalEngine::Duration() const
{
    return static_cast<double>(std::max<qint64>(0, m_lengthMs.load())) / 1000.0;
}

void VlcLocalEngine::Play()
{
    if (!m_player || !m_media)
        return;
    switch (static_cast<libvlc_state_t>(m_state.load())) {
    case libvlc_Paused:
        libvlc_media_player_set_pause(m_player.get(), 0);
        m_state = libvlc_Playing;
        break;
    case libvlc_Playing:
    case libvlc_Opening:
    case libvlc_Buffering:
        break;
    case libvlc_Ended:
    case libvlc_Error:
    case libvlc_NothingSpecial:
    case libvlc_Stopped:
        start(!m_openFailed);
        break;
    }
}

void VlcLocalEngine::Pause()
{
    if (!m_player || static_cast<libvlc_state_t>(m_state.load()) != libvlc_Playing)
        return;
    if (!libvlc_media_player_can_pause(m_player.get()))
        return;
    libvlc_media_player_set_pause(m_player.get(), 1);
    m_state = libvlc_Paused;
}

void VlcLocalEngine::Stop()
{
    if (!m_player || !m_media)
        return;
    m_output.stopped();
    libvlc_media_player_stop(m_player.get());
    m_state = libvlc_Stopped;
    m_timeMs = 0;
}

void VlcLocalEngine::setMute(bool mute)
{
    m_output.setMute(mute);
}

void VlcLocalEngine::setVolume(long volume)
{
    m_volume = volume;
    m_output.setVolume(volumePercent(volume));
}

int VlcLocalEngine::volumePercent(long hundredthsDb)
{
    if (hundredthsDb >= 0)
        return 100;
    return static_cast<int>(std::lround(100.0 * std::pow(10.0, static_cast<double>(hundredthsDb) / 2000.0)));
}

VlcAudioTap &VlcLocalEngine::countDecodedAudio()
{
    if (m_player)
        m_tap.attach(m_player.get());
    return m_tap;
}

void VlcLocalEngine::applyPendingSeek()
{
    if (m_pendingSeekMs < 0 || !m_player || libvlc_media_player_get_state(m_player.get()) != libvlc_Playing)
        return;
    if (libvlc_media_player_is_seekable(m_player.get())) {
        libvlc_media_player_set_time(m_player.get(), m_pendingSeekMs);
        m_timeMs = m_pendingSeekMs;
    }
    m_pendingSeekMs = -1;
}

// Taken under the lock so that a waiter between its test and its sleep
// cannot miss the change.
void VlcLocalEngine::setState(libvlc_state_t state)
{
    {
        std::lock_guard<std::mutex> hold(m_stateLock);
        m_state = state;
    }
    m_stateMoved.notify_all();
}

// Playing and the first audio stream come in either order, perhaps from
// two threads: whichever is second gets here, once.
void VlcLocalEngine::playingWithSound()
{
    if (!m_playingHeld.exchange(false))
        return;
    setState(libvlc_Playing);
    // A position given before the file could seek is taken now, on the
    // engine's own thread (unless a wait there has taken it already).
    QMetaObject::invokeMethod(this, [this] { applyPendingSeek(); }, Qt::QueuedConnection);
}

// Runs on libvlc's threads: it only moves atomics and queues work. Calling
// libvlc from here (stop, play, release) would deadlock it.
void VlcLocalEngine::onEvent(const libvlc_event_t *event, void *opaque)
{
    auto *self = static_cast<VlcLocalEngine *>(opaque);
    switch (event->type) {
    case libvlc_MediaPlayerNothingSpecial:
        self->setState(libvlc_NothingSpecial);
        break;
    case libvlc_MediaPlayerOpening:
        self->setState(libvlc_Opening);
        break;
    case libvlc_MediaPlayerPlaying:
        self->m_playingHeld = true;
        if (self->m_hasAudio)
            self->playingWithSound();
        break;
    case libvlc_MediaPlayerESAdded:
        if (event->u.media_player_es_changed.i_type != libvlc_track_audio)
            break;
        self->m_hasAudio = true;
        if (self->m_playingHeld)
            self->playingWithSound();
        break;
    case libvlc_MediaPlayerPaused:
        self->setState(libvlc_Paused);
        break;
    case libvlc_MediaPlayerStopped:
        // libvlc says Stopped also when an input that ended or failed goes
        // away; that stays Ended (0) or Error (6). A stop of ours sets
        // Stopped itself.
        {
            std::lock_guard<std::mutex> hold(self->m_stateLock);
            stopUnlessFinished(self->m_state);
        }
        self->m_stateMoved.notify_all();
        break;
    case libvlc_MediaPlayerEndReached:
        // Ended, not stopped: nothing else starts by itself. An end with no
        // sound ever found (text, noise, a playlist) is a file that cannot
        // be played.
        self->setState(self->m_hasAudio ? libvlc_Ended : libvlc_Error);
        break;
    case libvlc_MediaPlayerEncounteredError:
        self->setState(libvlc_Error);
        break;
    case libvlc_MediaPlayerTimeChanged:
        self->m_timeMs = event->u.media_player_time_changed.new_time;
        break;
    case libvlc_MediaPlayerLengthChanged:
        // A live stream has none (-1 or 0): Duration stays 0.
        self->m_lengthMs = std::max<libvlc_time_t>(0, event->u.media_player_length_changed.new_length);
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
