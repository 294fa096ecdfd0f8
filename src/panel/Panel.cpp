// The panel's model, its Load, navigation, keys and end. Status and
// transport are in PanelStatus.cpp, the movements in PanelMotion.cpp.

#include "panel/Panel.h"

#include "mixer/MixerSection.h"
#include "mixer/PlayerFader.h"
#include "mixer/PlayerSound.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "panel/VuDisplay.h"
#include "platform/AnimationSurface.h"
#include "platform/AppInfo.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/LocalEngine.h"
#include "platform/Media.h"
#include "platform/OleColor.h"
#include "platform/Process.h"
#include "platform/StationEngine.h"
#include "platform/Tray.h"
#include "platform/Twips.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"
#include "widgets/Picture.h"
#include "widgets/PropertyBag.h"
#include "widgets/zzSlider.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {

// The skin's pictures are drawn at the size of the surface they cover.
constexpr int SkinWidth = 12841;
constexpr int SkinHeight = 8120;
constexpr int PlsWidth = 6150;

// An image that is not stretched takes the size of its picture.
QLabel *picture(QWidget *parent, const AppInfo &app, const char *name, const char *file, int left, int top, int width,
                int height)
{
    auto *l = new QLabel(parent);
    l->setObjectName(QLatin1String(name));
    twips::place(l, left, top, width, height);
    const QPixmap pixmap = loadPicture(app.file(QStringLiteral("\\img\\panel\\") + QLatin1String(file)));
    l->setPixmap(pixmap);
    if (!pixmap.isNull())
        l->resize(pixmap.deviceIndependentSize().toSize());
    return l;
}

ClickLabel *spot(QWidget *parent, const char *name, int left, int top, int width, int height,
                 const QString &tip = QString(), bool pointer = true)
{
    auto *l = new ClickLabel(parent, QLatin1String(name));
    twips::place(l, left, top, width, height);
    if (!tip.isEmpty())
        l->setToolTip(tip);
    if (pointer)
        l->setCursor(Qt::PointingHandCursor);
    return l;
}

QLabel *text(QWidget *parent, const char *name, int left, int top, int width, int height, std::uint32_t colour)
{
    auto *l = new QLabel(parent);
    l->setObjectName(QLatin1String(name));
    twips::place(l, left, top, width, height);
    QPalette pal = l->palette();
    pal.setColor(QPalette::WindowText, oleColor(colour));
    l->setPalette(pal);
    return l;
}

QLineEdit *box(QWidget *parent, const char *name)
{
    auto *e = new QLineEdit(parent);
    e->setObjectName(QLatin1String(name));
    e->hide();
    return e;
}

// The lower deck holds the tag editor, the "VU Meter" frame and the mixer
// side by side: the editor keeps the left part, the meter stands between,
// and the strips take the right part.
void shareLowerDeck(TagEditor &editor, MixerSection &mixer, VuDisplay &display)
{
    editor.fitLeftOfDeck();
    display.place(7020, 4860);
    mixer.place(8040, 4860);
}

} // namespace

Panel::Panel(Platform &platform, const PanelTraits &traits)
    : Form(platform, QLatin1String(traits.name))
    , m_traits(traits)
{
    setWindowTitle(QLatin1String(traits.caption));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, oleColor(0x404040));
    setPalette(pal);
    setKeyPreview(true);
    // The form as drawn, before Load gives it its working size.
    setWidth(SkinWidth);
    setHeight(SkinHeight);

    buildSkin();
    buildLayoutControls();
    buildTransport();
    buildNavigation();
    buildTimers();
    connectHandlers();
    buildStations();
    buildMusic();
    auto sound = isStation() ? PlayerSound::of(*m_player) : PlayerSound::of(*m_localPlayer);
    m_mixer = std::make_unique<MixerSection>(platform, this, std::move(sound));
    m_display = new VuDisplay(platform, this, *m_mixer);
    shareLowerDeck(*m_tagEditor, *m_mixer, *m_display);
    buildChrome();
}

Panel::~Panel() = default;

void Panel::buildSkin()
{
    const AppInfo &app = platform().app;
    Main = new ClickLabel(this, QStringLiteral("Main"));
    twips::place(Main, 0, 0, SkinWidth, SkinHeight);
    Main->setPixmap(loadPicture(app.file(QStringLiteral("\\img\\panel\\skin.svg")), Main->size()));
    pls = picture(this, app, "pls", "pls.svg", SkinWidth, 0, PlsWidth, SkinHeight);
    pls->hide();

    // The station grid (or Mp3's list) lies right of the narrow panel and is
    // seen only once the panel widens.
    file = new QFrame(this);
    file->setObjectName(QStringLiteral("file"));
    file->setAccessibleName(isStation() ? QStringLiteral("Frame4") : QString());
    twips::place(file, 13080, 0, 5775, m_fileHeight);

    // Hidden state holders live in a frame that is never shown.
    Frame3 = new QFrame(this);
    Frame3->setObjectName(QStringLiteral("Frame3"));
    Frame3->setAccessibleName(QStringLiteral("Invisibles"));
    Frame3->hide();
    cptn = text(Frame3, "cptn", 0, 0, 1000, 255, 0xFFFFFF);
    wdth1 = box(Frame3, "wdth1");
    t3 = box(Frame3, "t3");
    dur1 = text(Frame3, "dur1", 0, 0, 1000, 255, 0xFFFFFF);
    dur1->setToolTip(QStringLiteral("Current Time"));
    stss = new QPushButton(Frame3);
    stss->setObjectName(QStringLiteral("stss"));
    wdth2 = box(this, "wdth2");

    // The moving title sizes itself to its text.
    fName = text(this, "fName", ScrollOrigin, 840, 285, 210, 0xFFFF80);
    fName->setToolTip(QStringLiteral("Song Title"));
    QFont titleFont(QStringLiteral("Arial"), 9);
    titleFont.setBold(true);
    fName->setFont(titleFont);
    fName->adjustSize();
    time = text(this, "time", 1800, 1215, 8400, 255, 0xC0C000);

    m_pstate = platform().media.createAnimationSurface(this);
    QWidget *animation = m_pstate->widget();
    animation->setObjectName(QStringLiteral("pstate"));
    animation->setToolTip(QStringLiteral("Animation"));
    twips::place(animation, 4200, 1560, 3585, 1125);

    Slider1 = new zzSlider(platform().dialogs, platform().process, this);
    Slider1->setObjectName(QStringLiteral("Slider1"));
    twips::place(Slider1, 1800, 2850, 8400, 240);
    PropertyBag stored;
    stored.set(QStringLiteral("MaxValue"), 100.0f);
    stored.set(QStringLiteral("MinValue"), 1.0f);
    stored.set(QStringLiteral("ToolTipText"), QStringLiteral("Time Line"));
    stored.set(QStringLiteral("BackColor"), 0x202020u);
    stored.set(QStringLiteral("SliderColor"), 0xC0C000u);
    Slider1->ReadProperties(stored);
    // The two halves of one reading, "01:05" and "/03:12", meet at the seam
    // left of the time line; minutes may widen either way.
    dur2 = text(this, "dur2", 60, 2850, 840, 255, 0xC0C000);
    dur2->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    dur2->setToolTip(QStringLiteral("Current Time"));
    dur3 = text(this, "dur3", 900, 2850, 885, 255, 0xC0C000);
    dur3->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    dur3->setToolTip(QStringLiteral("Total Time"));

    if (isStation())
        m_player = platform().media.createStationEngine();
    else
        m_localPlayer = platform().media.createLocalEngine();
}

void Panel::buildLayoutControls()
{
    Label1 = spot(this, "Label1", 10920, 2160, 1455, 1815, QStringLiteral("Play List"));
    Label2 = spot(this, "Label2", 9480, 1320, 975, 1815);
    const AppInfo &app = platform().app;
    Label6 = spot(this, "Label6", 9360, 1320, 1215, 855);
    Label6->setPixmap(loadPicture(app.file(QStringLiteral("\\img\\panel\\mark-down.svg")), Label6->size()));
    Label7 = spot(this, "Label7", 9360, 2280, 1215, 855);
    Label7->setPixmap(loadPicture(app.file(QStringLiteral("\\img\\panel\\mark-up.svg")), Label7->size()));
    Label7->hide();
    // Label2 lies over the marks: it is the one that takes the click.
    Label2->raise();
}

void Panel::buildTransport()
{
    const AppInfo &app = platform().app;
    // Hover and pressed images first, so the transparent labels lie above them.
    pre = picture(this, app, "pre", "pre.svg", 3720, 3265, 840, 720);
    prep = picture(this, app, "prep", "prep.svg", 3720, 3300, 840, 735);
    stp = picture(this, app, "stp", "stp.svg", 4920, 3225, 840, 810);
    stpp = picture(this, app, "stpp", "stpp.svg", 4920, 3240, 840, 810);
    ply = picture(this, app, "ply", "ply.svg", 5970, 3225, 840, 810);
    plyp = picture(this, app, "plyp", "plyp.svg", 5970, 3240, 840, 810);
    pause = picture(this, app, "pause", "pause.svg", 7020, 3225, 840, 810);
    pausep = picture(this, app, "pausep", "pausep.svg", 7020, 3255, 840, 810);
    nxt = picture(this, app, "nxt", "nxt.svg", 7995, 3225, 840, 810);
    nxtp = picture(this, app, "nxtp", "nxtp.svg", 7995, 3255, 840, 810);
    for (QLabel *image : {pre, prep, stp, stpp, ply, plyp, pause, pausep, nxt, nxtp})
        image->hide();

    previous = spot(this, "previous", 3720, 3240, 975, 735, QStringLiteral("Previous"));
    stop = spot(this, "stop", 5040, 3225, 735, 855, QStringLiteral("Stop"));
    play = spot(this, "play", 6120, 3225, 735, 855, QStringLiteral("Play"));
    pausel = spot(this, "pausel", 7080, 3240, 735, 735, QStringLiteral("Pause"));
    next = spot(this, "next", 8040, 3240, 855, 855, QStringLiteral("Next"));
    pausel->setEnabled(!isStation()); // a station has no pause
}

void Panel::buildNavigation()
{
    Label9 = spot(this, "Label9", m_traits.label9At.x(), m_traits.label9At.y(), 855, 615);
    fm = spot(this, "fm", m_traits.fmAt.x(), m_traits.fmAt.y(), 855, 615);
    ma = m_traits.hasMa ? spot(this, "ma", m_traits.fmAt.x(), m_traits.fmAt.y(), 855, 615) : nullptr;
    if (!isStation())
        fm->hide(); // Mp3 goes back to the map through Label9
    killme = spot(this, "killme", 11280, 1200, 1215, 615, QStringLiteral("Kill Me"));
    Label8 = spot(this, "Label8", 2520, 1440, 855, 615, QStringLiteral("About"));
    Label12 = spot(this, "Label12", 11280, 480, 1215, 615);
    Donate = spot(this, "Donate", 2400, 2280, 1215, 855);
    Label10 = m_traits.hasLabel10 ? spot(this, "Label10", 9480, 3240, 1095, 735, QString(), false) : nullptr;
}

void Panel::buildTimers()
{
    Clock &clock = platform().clock;
    // Every timer of the panel stands in the hidden frame, as drawn.
    sts = new Timer(clock, Frame3, QStringLiteral("sts"), 1, false);
    sts2 = new Timer(clock, Frame3, QStringLiteral("sts2"), 1, false);
    Timer1 = new Timer(clock, Frame3, QStringLiteral("Timer1"), isStation() ? 10000 : 25, !isStation());
    Timer2 = new Timer(clock, Frame3, QStringLiteral("Timer2"), 1, true);
    Timer3 = new Timer(clock, Frame3, QStringLiteral("Timer3"), 1, false);
    hei1 = new Timer(clock, Frame3, QStringLiteral("hei1"), 1, true);
    hei2 = new Timer(clock, Frame3, QStringLiteral("hei2"), 1, false);
    scr1 = new Timer(clock, Frame3, QStringLiteral("scr1"), 1, false);
    scr2 = new Timer(clock, Frame3, QStringLiteral("scr2"), 1, false);
}

void Panel::connectHandlers()
{
    on(scr1, &Timer::tick, [this] { scr1_Timer(); });
    on(scr2, &Timer::tick, [this] { scr2_Timer(); });
    on(hei1, &Timer::tick, [this] { hei1_Timer(); });
    on(hei2, &Timer::tick, [this] { hei2_Timer(); });
    on(Timer2, &Timer::tick, [this] { Timer2_Timer(); });
    on(Timer3, &Timer::tick, [this] { Timer3_Timer(); });
    on(Label1, &ClickLabel::Click, [this] { Label1_Click(); });
    on(Label2, &ClickLabel::Click, [this] { Label2_Click(); });
    on(Main, &ClickLabel::MouseMove, [this] { Main_MouseMove(); });

    on(Label9, &ClickLabel::Click, [this] { Label9_Click(); });
    on(fm, &ClickLabel::Click, [this] { fm_Click(); });
    if (ma)
        on(ma, &ClickLabel::Click, [this] { fm_Click(); });
    on(killme, &ClickLabel::Click, [this] { killme_Click(); });
    // Not modal: the panel goes on behind it, and it never calls back.
    on(Label12, &ClickLabel::Click, [this] { platform().forms.Show(QStringLiteral("frmInterfaces")); });

    hover(previous, pre, prep, &PreviousHot, &PreviousHot);
    hover(play, ply, plyp, &PlayHot, &PlayHot);
    hover(pausel, pause, pausep, &PauseHot, &PauseHot);
    // Kept as it stands: stop's hover tests PauseHot and sets StopHot, so on
    // a station panel it lights again on every move.
    hover(stop, stp, stpp, &StopHot, &PauseHot);
    hover(next, nxt, nxtp, &NextHot, &NextHot);

    if (isStation()) {
        on(sts, &Timer::tick, [this] { sts_Timer(); });
        if (m_traits.hasSts2Handler)
            on(sts2, &Timer::tick, [this] { sts2_Timer(); });
        on(stss, &QPushButton::clicked, [this] { stss_Click(); });
        on(play, &ClickLabel::Click, [this] { play_Click(); });
        on(next, &ClickLabel::Click, [this] { next_Click(); });
        on(previous, &ClickLabel::Click, [this] { previous_Click(); });
        on(stop, &ClickLabel::Click, [this] { stop_Click(); });
        on(Slider1, &zzSlider::Change, [this] { Slider1_Change(); });
    }
}

void Panel::Load()
{
    Forms &forms = platform().forms;
    const QString name = objectName();
    // 1. The map has hidden itself already; hiding it again is harmless.
    if (name == QLatin1String("Tafm") || !isStation())
        forms.Hide(QStringLiteral("Mainmap"));
    if (name == QLatin1String("kanna"))
        setWindowIcon(forms.form(QStringLiteral("Tafm"))->windowIcon()); // loads Tafm, hidden, timers and all
    // 2. The close command and its separator are cut from the system menu.
    // Told as hints of our own, or the window manager draws its default
    // frame, close box and all.
    if (m_traits.cutsSystemMenu)
        setWindowFlags((windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                        | Qt::WindowMinMaxButtonsHint)
                       & ~Qt::WindowCloseButtonHint);
    // 3.
    if (name == QLatin1String("Malfm"))
        setWindowIcon(forms.form(QStringLiteral("Tafm"))->windowIcon());
    // 4. The swinging window icon (Tafm's own icon stands until it shows its mast).
    if (name == QLatin1String("Tafm"))
        setWindowIcon(QIcon(loadPicture(platform().app.file(QStringLiteral("\\img\\panel\\icon.svg")), QSize(32, 32))));
    if (m_traits.animatesIcon)
        prepareIcon();
    // 5.
    m_mixer->OpenMixerLines();
    // 6.
    PlayHot = PreviousHot = PauseHot = NextHot = StopHot = false;
    // 7. Far above the fader's scale: it stops at 100.
    m_mixer->Volumesl->setValue(2000);
    // 8.
    setHeight(LoadedHeight);
    setWidth(LoadedWidth);
    // 9. Nothing runs it yet.
    m_pstate->setFileName(platform().app.file(QStringLiteral("\\img\\play.gif")));
    // 10.
    m_display->ctrlled->setEnabled(true);
    // 11.
    m_mixer->RefreshPercents();
    // 12. The editor's buttons: with the tag editor.
}

void Panel::setWidth(double tw)
{
    m_width = tw;
    setFixedWidth(twips::toPixels(tw));
}

void Panel::setHeight(double tw)
{
    m_height = tw;
    setFixedHeight(twips::toPixels(tw));
}

bool Panel::keyPreview(QKeyEvent *event)
{
    // Control alone: with Shift or Alt as well the keys do nothing.
    const Qt::KeyboardModifiers mods = event->modifiers() & ~Qt::KeypadModifier;
    if (event->type() != QEvent::KeyPress || mods != Qt::ControlModifier)
        return false;
    const bool station = isStation();
    switch (event->key()) {
    case Qt::Key_P: guard([this, station] { station ? play_Click() : m_music->localPlay_Click(); }); return true;
    case Qt::Key_N: guard([this, station] { station ? next_Click() : m_music->localNext_Click(); }); return true;
    case Qt::Key_R: guard([this, station] { station ? previous_Click() : m_music->localPrevious_Click(); }); return true;
    case Qt::Key_S: guard([this, station] { station ? stop_Click() : m_music->localStop_Click(); }); return true;
    default: return false;
    }
}

void Panel::fm_Click()
{
    Hide();
    m_player->stop();
    platform().forms.Show(QStringLiteral("Mainmap"));
}

void Panel::Label9_Click()
{
    Forms &forms = platform().forms;
    if (!isStation()) {
        forms.Show(QStringLiteral("Mainmap"));
        m_localPlayer->Stop();
        Hide();
        return;
    }
    if (m_traits.label9StopsFirst) {
        m_player->stop();
        Hide();
        forms.Show(QStringLiteral("Mp3"));
        return;
    }
    forms.Show(QStringLiteral("Mp3"));
    m_player->stop();
    Hide();
}

void Panel::killme_Click()
{
    platform().process.end();
}

void Panel::closeEvent(QCloseEvent *event)
{
    event->ignore();
    // With the close command cut, neither the box nor the close key reaches
    // Unload; only a panel that keeps its close command unloads.
    if (m_traits.hasUnload && !m_traits.cutsSystemMenu)
        guard([this] { Form_Unload(); });
}

void Panel::Form_Unload()
{
    // The shared record names the last panel that went to the tray.
    platform().tray.notifyIcon(Tray::Delete, TrayIcon);
    platform().process.end();
}
