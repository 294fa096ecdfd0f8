// Status and transport of a station panel: the engine's state as text, the
// played time, the five transport labels and their hover images.

#include "panel/Panel.h"

#include "basic/NumberText.h"
#include "platform/AnimationSurface.h"
#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/StationEngine.h"
#include "widgets/ClickLabel.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

void Panel::stss_Click()
{
    setfNameLeft(ScrollOrigin);
    setTitle(cptn->text());
    storeTurningPoint();
    scr1->setEnabled(true);
}

void Panel::sts_Timer()
{
    // Written at every tick, changed or not: nothing is cached.
    cptn->setText(QStringLiteral("Connecting......."));
    switch (m_player->playState()) {
    case 3:
        cptn->setText(QStringLiteral("Playing  ") + StationName);
        m_pstate->Play();
        break;
    case 6: cptn->setText(QStringLiteral("Buffering...")); break;
    case 10: cptn->setText(QStringLiteral("Player Is Ready")); break;
    default: break; // stopped, paused, ended and failed all read "Connecting......."
    }
    setTitle(cptn->text());
    storeTurningPoint();
    time->setText(QStringLiteral("Played Time ") + m_player->currentPositionString());
}

void Panel::sts2_Timer()
{
    // Nothing enables sts2, so this never runs; it stays as drawn.
    stss->setEnabled(true);
    sts2->setEnabled(false);
}

void Panel::stop_Click()
{
    m_player->stop();
    m_pstate->Stop();
    scr1->setEnabled(false);
    scr2->setEnabled(false);
    setfNameLeft(ScrollOrigin);
}

void Panel::next_Click()
{
    platform().dialogs.MsgBox(QStringLiteral("Please click Requried Channels"));
    if (Width() <= NarrowLimit)
        Label1_Click(); // opens the station grid
}

void Panel::previous_Click()
{
    next_Click();
}

void Panel::play_Click()
{
    next_Click();
}

void Panel::hover(ClickLabel *label, QLabel *lit, QLabel *pressed, bool *hot, bool *testedHot)
{
    on(label, &ClickLabel::MouseDown, [lit, pressed] {
        lit->hide();
        pressed->show();
    });
    on(label, &ClickLabel::MouseUp, [lit, pressed] {
        lit->show();
        pressed->hide();
    });
    on(label, &ClickLabel::MouseMove, [lit, pressed, hot, testedHot] {
        if (!*testedHot) {
            lit->show();
            pressed->hide();
            *hot = true;
        }
    });
}

void Panel::Main_MouseMove()
{
    struct Hover {
        bool *hot;
        QLabel *lit;
        QLabel *pressed;
    };
    const Hover all[] = {{&PreviousHot, pre, prep}, {&PlayHot, ply, plyp}, {&PauseHot, pause, pausep},
                         {&StopHot, stp, stpp},     {&NextHot, nxt, nxtp}};
    for (const Hover &h : all) {
        if (*h.hot) {
            h.lit->hide();
            h.pressed->hide();
            *h.hot = false;
        }
    }
    // The capitals differ on purpose: both texts are the panel's own.
    Label2->setToolTip(!Label6->isHidden() ? QStringLiteral("Show Info List") : QStringLiteral("Hide info list"));
}

void Panel::Slider1_Change()
{
    // Written for the local engine's numbering: on a station engine 2 is
    // paused and 1 stopped. Kept as it stands.
    if (m_player->playState() == 2)
        m_pstate->Play();
    if (m_player->playState() == 1)
        m_pstate->Pause();
}
