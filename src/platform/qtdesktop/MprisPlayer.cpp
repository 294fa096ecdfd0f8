#include "platform/qtdesktop/MprisPlayer.h"

#include "platform/qtdesktop/MprisService.h"

namespace {

qlonglong microseconds(double seconds)
{
    return static_cast<qlonglong>(seconds * 1e6);
}

} // namespace

MprisPlayer::MprisPlayer(MprisService *service)
    : QDBusAbstractAdaptor(service)
    , m_service(*service)
{
}

QString MprisPlayer::PlaybackStatus() const
{
    return m_service.playbackStatus();
}

QVariantMap MprisPlayer::Metadata() const
{
    return m_service.metadata();
}

qlonglong MprisPlayer::Position() const
{
    return microseconds(m_service.player().position());
}

bool MprisPlayer::CanPlay() const
{
    return m_service.abilities().play;
}

bool MprisPlayer::CanPause() const
{
    return m_service.abilities().pause;
}

bool MprisPlayer::CanGoNext() const
{
    return m_service.abilities().next;
}

bool MprisPlayer::CanGoPrevious() const
{
    return m_service.abilities().previous;
}

bool MprisPlayer::CanSeek() const
{
    return m_service.abilities().seek;
}

void MprisPlayer::Play()
{
    m_service.later([](NowPlaying &p) { p.play(); });
}

void MprisPlayer::Pause()
{
    m_service.later([](NowPlaying &p) { p.pause(); });
}

void MprisPlayer::PlayPause()
{
    m_service.later([](NowPlaying &p) { p.playPause(); });
}

void MprisPlayer::Stop()
{
    m_service.later([](NowPlaying &p) { p.stop(); });
}

void MprisPlayer::Next()
{
    m_service.later([](NowPlaying &p) { p.next(); });
}

void MprisPlayer::Previous()
{
    m_service.later([](NowPlaying &p) { p.previous(); });
}

void MprisPlayer::Seek(qlonglong Offset)
{
    m_service.later([this, Offset](NowPlaying &p) {
        if (!p.abilities().seek)
            return;
        const double target = p.position() + static_cast<double>(Offset) / 1e6;
        // Past the end a seek is a Next; before the start it is the start.
        if (target > p.length()) {
            p.next();
            return;
        }
        const double to = target < 0 ? 0 : target;
        p.seekTo(to);
        emit m_service.seeked(microseconds(to));
    });
}

void MprisPlayer::SetPosition(const QDBusObjectPath &TrackId, qlonglong Position)
{
    m_service.later([this, TrackId, Position](NowPlaying &p) {
        const double target = static_cast<double>(Position) / 1e6;
        // A position meant for another track, or outside this one, is ignored.
        if (!p.abilities().seek || TrackId != m_service.trackId() || target < 0 || target > p.length())
            return;
        p.seekTo(target);
        emit m_service.seeked(Position);
    });
}

void MprisPlayer::OpenUri(const QString &)
{
    // The program opens only what its own lists and buttons choose.
}
