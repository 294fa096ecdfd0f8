#include "panel/VuDisplay.h"

#include "basic/Checked.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "mixer/Nebular1.h"
#include "platform/Clock.h"
#include "platform/ErrorBoundary.h"
#include "platform/Platform.h"
#include "platform/Twips.h"
#include "widgets/LedProgress.h"

#include <QGroupBox>
#include <QLineEdit>
#include <QProgressBar>

namespace {

struct Bar {
    int strip;
    const char *tip;
    std::int32_t orientation;
    basic::Integer zoneYellow;
};

// Treble and bass keep orientation 0 although they are tall: their bars fill
// across the short side.
constexpr Bar Bars[] = {
    {0, "Master Level", 1, 60}, {2, nullptr, 1, 60},         {3, nullptr, 1, 60},      {5, nullptr, 1, 60},
    {7, nullptr, 1, 60},        {10, "Treble Level", 0, 70}, {11, "Bass Level", 0, 70},
};

// The bars' order of refresh.
constexpr int TickOrder[] = {0, 11, 10, 5, 2, 3, 7};

// Twips, in the strip's frame: the column the strip keeps beside its fader,
// as long as the fader.
constexpr int BarLeft = 360, BarTop = 480, BarWidth = 255, BarHeight = 1560;

QProgressBar *meter(QWidget *parent, const char *name, int left)
{
    auto *bar = new QProgressBar(parent);
    bar->setObjectName(QLatin1String(name));
    bar->setOrientation(Qt::Vertical);
    bar->setRange(0, 3275);
    bar->setValue(0);
    bar->setTextVisible(false);
    twips::place(bar, left, 300, 270, 2280);
    return bar;
}

QLineEdit *level(QWidget *parent, const char *name, int top)
{
    auto *field = new QLineEdit(QStringLiteral("32768"), parent);
    field->setObjectName(QLatin1String(name));
    twips::place(field, 60, top, 840, 255);
    return field;
}

} // namespace

VuDisplay::VuDisplay(Platform &platform, QWidget *panel, MixerSection &mixer)
    : QObject(panel)
    , m_platform(platform)
    , m_mixer(mixer)
{
    for (const Bar &b : Bars) {
        auto *led = new LedProgress(mixer.VolFrame[b.strip]);
        led->setObjectName(QStringLiteral("Led%1").arg(b.strip));
        twips::place(led, BarLeft, BarTop, BarWidth, BarHeight);
        if (b.tip)
            led->setToolTip(QLatin1String(b.tip));
        // Laid out already standing: read back, a stored orientation turns
        // nothing.
        PropertyBag stored;
        stored.set(QStringLiteral("Orientation"), b.orientation);
        stored.set(QStringLiteral("ZoneYellow"), b.zoneYellow);
        stored.set(QStringLiteral("ZoneRed"), 90);
        led->ReadProperties(stored);
        Led[b.strip] = led;
    }

    Frame1 = new QGroupBox(QStringLiteral("VU Meter"), panel);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    Frame1->resize(twips::toPixels(960), twips::toPixels(3255));
    Frame1->setFont(QFont(QStringLiteral("Arial"), 7)); // as the strips beside it
    ProgressBar1 = meter(Frame1, "ProgressBar1", 135);
    ProgressBar2 = meter(Frame1, "ProgressBar2", 555);
    // Nothing refers to these two: "32768" for good.
    VuLeftLevel = level(Frame1, "VuLeftLevel", 2640);
    VuRightLevel = level(Frame1, "VuRightLevel", 2940);

    Clock &clock = platform.clock;
    ctrlled = new Timer(clock, this, QStringLiteral("ctrlled"), 1, true);
    ctrlled2 = new Timer(clock, this, QStringLiteral("ctrlled2"), 1, false); // nothing starts it
    sbm = new Timer(clock, this, QStringLiteral("sbm"), 0, true);           // interval 0: never fires
    vctrl = new Timer(clock, this, QStringLiteral("vctrl"), 0, true);       // no handler either
    on(ctrlled, &VuDisplay::ctrlled_Timer);
    on(ctrlled2, &VuDisplay::ctrlled2_Timer);
    on(sbm, &VuDisplay::sbm_Timer);
}

void VuDisplay::on(Timer *timer, void (VuDisplay::*handler)())
{
    connect(timer, &Timer::tick, this, [this, handler] {
        boundary::run(m_platform.dialogs, m_platform.process, [this, handler] { (this->*handler)(); });
    });
}

void VuDisplay::place(double left, double top)
{
    Frame1->move(twips::toPixels(left), twips::toPixels(top));
}

void VuDisplay::ctrlled_Timer()
{
    // The bars follow the raw fields, not the sound: the crossing of the raw
    // fields at load shows until a fader moves.
    for (int strip : TickOrder) {
        LedProgress *led = Led[strip];
        if (m_mixer.VolumeControl[strip]->isHidden()) {
            led->hide();
            continue;
        }
        led->show();
        led->setValue(basic::CInt(m_mixer.txtvolumecontrol[strip]->text().toDouble() / 655.35));
    }
}

void VuDisplay::ctrlled2_Timer()
{
    ctrlled->setEnabled(true);
    ctrlled->setEnabled(false);
}

void VuDisplay::sbm_Timer()
{
    // The success flag plus 200, not a reading: 199 with a meter, 200
    // without. A found meter also takes over the master record.
    for (QProgressBar *bar : {ProgressBar1, ProgressBar2}) {
        const std::int16_t found =
            Nebular1::GetMixerControl(m_platform.mixer, m_mixer.hMixer, mixer::Speakers, mixer::SignedMeter, m_mixer.lineRecord[0]);
        bar->setValue(static_cast<int>(basic::CSng(found + 200.0)));
    }
}
