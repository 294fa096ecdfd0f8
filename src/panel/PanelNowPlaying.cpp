#include "panel/PanelNowPlaying.h"

#include "music/MusicList.h"
#include "panel/Panel.h"
#include "platform/ErrorBoundary.h"
#include "platform/LocalEngine.h"
#include "platform/Platform.h"
#include "platform/StationEngine.h"
#include "widgets/zzSlider.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFileInfo>
#include <QUrl>

PanelNowPlaying::PanelNowPlaying(Platform &platform, QObject *parent)
    : QObject(parent)
    , m_platform(platform)
{
    // Panels show through Forms, the tray's Restore and the window manager
    // alike; watching the show itself catches every road.
    QCoreApplication::instance()->installEventFilter(this);
}

PanelNowPlaying::~PanelNowPlaying()
{
    if (QCoreApplication *app = QCoreApplication::instance())
        app->removeEventFilter(this);
}

bool PanelNowPlaying::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *shown = qobject_cast<Panel *>(watched))
            m_shown = shown;
    }
    return false;
}

Panel *PanelNowPlaying::panel() const
{
    return static_cast<Panel *>(m_shown.data());
}

QString PanelNowPlaying::playerName() const
{
    return m_shown ? m_shown->objectName() : QString();
}

NowPlaying::Status PanelNowPlaying::status() const
{
    const Panel *p = panel();
    if (!p)
        return Status::Stopped;
    if (p->isStation()) {
        switch (p->player()->playState()) {
        case 3:
        case 6:
        case 9: return Status::Playing; // opening and buffering are on the way to sound
        case 2: return Status::Paused;
        default: return Status::Stopped;
        }
    }
    switch (p->Player()->PlayState()) {
    case 2:
    case 3: return Status::Playing; // waiting for the file to start
    case 1: return Status::Paused;
    default: return Status::Stopped;
    }
}

QString PanelNowPlaying::title() const
{
    const Panel *p = panel();
    if (!p)
        return QString();
    if (p->isStation())
        return p->StationName;
    return QFileInfo(p->Player()->FileName()).fileName();
}

QString PanelNowPlaying::url() const
{
    const Panel *p = panel();
    if (!p)
        return QString();
    if (p->isStation())
        return p->player()->URL();
    const QString file = p->Player()->FileName();
    return file.isEmpty() ? QString() : QUrl::fromLocalFile(file).toString();
}

double PanelNowPlaying::position() const
{
    const Panel *p = panel();
    return p && !p->isStation() ? p->Player()->CurrentPosition() : 0;
}

double PanelNowPlaying::length() const
{
    const Panel *p = panel();
    return p && !p->isStation() ? p->Player()->Duration() : 0;
}

NowPlaying::Abilities PanelNowPlaying::abilities() const
{
    Abilities can;
    const Panel *p = panel();
    if (!p)
        return can;
    // Play, Next and Previous always answer, if only with the panel's prompt.
    can.play = can.next = can.previous = true;
    // A station panel's pause label is disabled and has no handler, and a
    // stream cannot be sought.
    can.pause = !p->isStation();
    can.seek = !p->isStation() && p->Player()->Duration() > 0;
    return can;
}

template <class Handler>
void PanelNowPlaying::press(Handler &&handler)
{
    Panel *p = panel();
    if (!p)
        return;
    boundary::run(m_platform.dialogs, m_platform.process, [&] { handler(*p); });
}

void PanelNowPlaying::play()
{
    press([](Panel &p) { p.isStation() ? p.play_Click() : p.music()->localPlay_Click(); });
}

void PanelNowPlaying::pause()
{
    press([](Panel &p) {
        if (!p.isStation())
            p.music()->localPausel_Click();
    });
}

void PanelNowPlaying::playPause()
{
    if (status() == Status::Playing)
        pause();
    else
        play();
}

void PanelNowPlaying::stop()
{
    press([](Panel &p) { p.isStation() ? p.stop_Click() : p.music()->localStop_Click(); });
}

void PanelNowPlaying::next()
{
    press([](Panel &p) { p.isStation() ? p.next_Click() : p.music()->localNext_Click(); });
}

void PanelNowPlaying::previous()
{
    press([](Panel &p) { p.isStation() ? p.previous_Click() : p.music()->localPrevious_Click(); });
}

void PanelNowPlaying::seekTo(double seconds)
{
    if (!abilities().seek || seconds < 0 || seconds > length())
        return;
    // As a drag of the time line ends: the knob first, then its scroll handler.
    press([seconds](Panel &p) {
        p.Slider1->setValue(static_cast<float>(seconds));
        p.music()->Slider1_SliderScroll();
    });
}
