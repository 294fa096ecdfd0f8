// The panel's music parts: the list buttons and the tag editor in every
// panel, Mp3's list with its local playback, and the title they show.

#include "panel/Panel.h"

#include "basic/NumberText.h"
#include "music/FileList.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "platform/Clock.h"
#include "widgets/ClickLabel.h"
#include "widgets/zzSlider.h"

#include <QLineEdit>
#include <QLabel>

void Panel::buildMusic()
{
    m_music = new MusicList(platform(), this, *this);
    placeListButtons();
    m_tagEditor = new TagEditor(platform(), this, Frame3, isStation() ? nullptr : m_localPlayer.get());

    // Afm, Malfm and kanna give the folder button work as Mp3 does; the
    // other list buttons of a station panel are drawn and do nothing.
    const QString name = objectName();
    if (name == QLatin1String("Afm") || name == QLatin1String("Malfm") || name == QLatin1String("kanna"))
        m_music->keepFolderButton();
    if (isStation())
        return;

    file = m_music->makeList(file, Frame3, {play, pause, Slider1, dur1, dur2, dur3});
    MusicList *music = m_music;
    // After the panel's own Label2 handler, connected earlier.
    on(Label2, &ClickLabel::Click, [music] { music->clk_Click(); });
    on(play, &ClickLabel::Click, [music] { music->localPlay_Click(); });
    on(pausel, &ClickLabel::Click, [music] { music->localPausel_Click(); });
    on(stop, &ClickLabel::Click, [music] { music->localStop_Click(); });
    on(next, &ClickLabel::Click, [music] { music->localNext_Click(); });
    on(previous, &ClickLabel::Click, [music] { music->localPrevious_Click(); });
    on(Timer1, &Timer::tick, [music] { music->Timer1_Timer(); });
    on(Slider1, &zzSlider::Change, [music] { music->localSlider1_Change(); });
    on(Slider1, &zzSlider::SliderScroll, [music] { music->Slider1_SliderScroll(); });
}

void Panel::placeListButtons()
{
    m_music->placeButtons(m_fileHeight);
}

void Panel::resetTitle()
{
    scr1->setEnabled(false);
    scr2->setEnabled(false);
    setfNameLeft(ScrollOrigin);
}

void Panel::showTitle(const QString &text)
{
    const QString before = fName->text();
    setTitle(text);
    if (fName->text() != before)
        fName_Change();
    wdth1->setText(basic::generalText(fNameWidth()));
    storeTurningPoint();
    scr1->setEnabled(true);
}

void Panel::showTag()
{
    m_tagEditor->Command5_Click();
}

void Panel::fName_Change()
{
    setWindowTitle(QLatin1Char(' ') + fName->text());
    scr1->setEnabled(true);
}
