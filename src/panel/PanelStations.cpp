// The station grid of a station panel and what a station click does.

#include "panel/Panel.h"

#include "catalogue/Product.h"
#include "catalogue/Station.h"
#include "platform/Clock.h"
#include "platform/StationEngine.h"
#include "platform/Twips.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QFrame>

namespace {

// The stored look every station button shares.
GlowButton::Look stationLook()
{
    GlowButton::Look look;
    look.btype = 3;
    look.coltype = 2;
    look.bcol = 0x404040;
    look.fcol = 0;
    look.fcolo = 0;
    look.embossm = 0xC0C0C0;
    look.embosss = 0xFFFFFF;
    look.showf = true;
    look.enab = true;
    look.style = 0;
    look.orient = 0;
    look.align = 1;
    return look;
}

// s27 of Malfm and kanna lies wholly under s9: the mouse never reaches it,
// and it carries no hover handlers.
bool outOfReach(const Station &s)
{
    return s.button == QLatin1String("s27") && (s.panel == QLatin1String("Malfm") || s.panel == QLatin1String("kanna"));
}

} // namespace

void Panel::buildStations()
{
    if (!isStation())
        return;
    const QList<Station> &stations = stationsOf(QLatin1String(m_traits.name));
    const GlowButton::Look look = stationLook();
    for (const Station &s : stations) {
        auto *b = new GlowButton(file, s.button);
        b->setCaption(s.caption);
        b->setStoredLook(look);
        twips::place(b, s.left, s.top, s.width, Station::Height);
        stationButtons.append(b);
        on(b, &GlowButton::Click, [this, s] { SelectStation(s); });
        if (!outOfReach(s)) {
            on(b, &GlowButton::MouseMove, [b] { b->setAppearance(1); });
            on(b, &GlowButton::MouseLeave, [b] { b->setAppearance(0); });
        }
    }
    // Later buttons would cover s9; the hidden s27 goes beneath it.
    for (GlowButton *b : stationButtons)
        if (b->objectName() == QLatin1String("s27"))
            b->lower();

    // Only Tafm's s31 ever enables Timer1; the handler stands in every
    // station panel all the same.
    on(Timer1, &Timer::tick, [this] { stationTimer1_Timer(); });

    if (m_traits.name == QLatin1String("kanna") && Label10) {
        // In kanna, Label10 is a notice in the list area, not a command.
        Label10->setParent(file);
        twips::place(Label10, 4080, 0, 1695, 4215);
        Label10->setWordWrap(true);
        Label10->setAlignment(Qt::AlignTop | Qt::AlignLeft);
        Label10->setCursor(Qt::ArrowCursor);
        Label10->setText(QStringLiteral("SORRY FRIENDS I CAN'T ABLE TO FIND LINKS FOR YOUR LANGUAGE IF YOU HAVE ANY LINK "
                                        "PLEASE SHARE WITH ME AT ")
                         + QLatin1String(product::MaintainersMail) + QStringLiteral("          THANKS"));
        Label10->show();
    }
}

GlowButton *Panel::stationButton(const QString &name) const
{
    for (GlowButton *b : stationButtons)
        if (b->objectName() == name)
            return b;
    return nullptr;
}

void Panel::SelectStation(const Station &station)
{
    // The URL alone switches streams: the engine starts on its own, so no
    // stop before and no play after.
    player()->setURL(station.URL());
    StationName = station.displayName;
    if (!sts->Enabled())
        sts->setEnabled(true);
    stss_Click();

    if (station.panel == QLatin1String("Tafm") && station.button == QLatin1String("s31")) {
        // Silent until Timer1 finds it playing. Nothing disables Timer1
        // again, so the rule carries over to every later Tafm station and
        // overrides the user's own mute: kept as it stands.
        player()->setMute(true);
        if (!Timer1->Enabled())
            Timer1->setEnabled(true);
    }
}

void Panel::stationTimer1_Timer()
{
    player()->setMute(player()->playState() != 3);
}
