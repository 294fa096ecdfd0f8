// The section's controls: the strips in f1, the hidden group fader and the
// player chain on the skin. The handlers are in MixerSection.cpp.

#include "mixer/MixerSection.h"

#include "mixer/MixerFader.h"
#include "mixer/PlayerFader.h"
#include "mixer/PlayerSound.h"
#include "platform/AppInfo.h"
#include "platform/ErrorBoundary.h"
#include "platform/OleColor.h"
#include "platform/Platform.h"
#include "platform/Twips.h"
#include "widgets/ClickLabel.h"
#include "widgets/Picture.h"

#include <QCheckBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

struct StripLook {
    const char *caption;
    const char *tip;
};

// Captions and tips by strip; " Bass" keeps its leading blank.
constexpr StripLook Looks[MixerSection::Strips] = {
    {"Master", "Main volume"}, {"Cd vol", nullptr}, {"Line In", "Line In"}, {"Mic", "Mic Volume"},
    {"AUX", nullptr},          {"Wave", "Wave Volume"}, {"TAD", nullptr},  {"MIDI", "Midi"},
    {"I25in", nullptr},        {"Pc spk", nullptr}, {"Treble", "Treble"}, {" Bass", "Bass"},
};

// Strips side by side, the seven a user sees first, in strip order; the
// hidden five follow past the frame's edge.
constexpr int SlotOf[MixerSection::Strips] = {0, 7, 1, 2, 8, 3, 9, 4, 10, 11, 5, 6};

// Twips. A strip keeps a column free right of its level fader for its
// level bar.
constexpr int StripWidth = 660;
constexpr int StripHeight = 3195;
constexpr int Margin = 60;
constexpr int VisibleStrips = 7;

QLineEdit *field(QWidget *parent, const QString &name, const QString &text, int top)
{
    auto *e = new QLineEdit(text, parent);
    e->setObjectName(name);
    twips::place(e, 45, top, 570, 240);
    return e;
}

} // namespace

MixerSection::MixerSection(Platform &platform, QWidget *panel, std::unique_ptr<PlayerSound> sound)
    : m_platform(platform)
    , m_sound(std::move(sound))
{
    f1 = new QFrame(panel);
    f1->setObjectName(QStringLiteral("f1"));
    f1->resize(twips::toPixels(VisibleStrips * StripWidth + 2 * Margin), twips::toPixels(StripHeight));
    QFont small(QStringLiteral("Arial"), 7);
    f1->setFont(small);
    QPalette pal = f1->palette();
    pal.setColor(QPalette::WindowText, oleColor(0xC0C0C0));
    f1->setPalette(pal);
    buildStrips();
    buildGroupFader();
    buildPlayerChain(panel);
    connectHandlers();
}

MixerSection::~MixerSection() = default;

void MixerSection::place(double left, double top)
{
    f1->move(twips::toPixels(left), twips::toPixels(top));
}

QLineEdit *MixerSection::levelField(int strip) const
{
    QLineEdit *const fields[Strips] = {TXTVol, Text1, Text2, Text3, Text4, Text5,
                                       Text6,  Text7, Text8, Text9, Text10, Text11};
    return fields[strip];
}

void MixerSection::buildStrips()
{
    for (int strip = 0; strip < Strips; ++strip)
        buildStrip(strip, SlotOf[strip]);
    for (int strip : {1, 4, 6, 8, 9})
        VolFrame[strip]->hide();
    // The strips a user sees keep their group links out of sight too.
    for (int strip : {0, 2, 3, 5, 7})
        SBMLink[strip]->hide();
}

void MixerSection::buildStrip(int strip, int slot)
{
    const QString n = QString::number(strip);
    auto *frame = new QGroupBox(QLatin1String(Looks[strip].caption), f1);
    frame->setObjectName(QStringLiteral("VolFrame(%1)").arg(n));
    if (Looks[strip].tip)
        frame->setToolTip(QLatin1String(Looks[strip].tip));
    twips::place(frame, Margin + slot * StripWidth, 0, StripWidth, StripHeight);
    VolFrame[strip] = frame;

    T0[strip] = field(frame, QStringLiteral("T0(%1)").arg(n), QString(), 210);
    auto *level = new MixerFader(frame, QStringLiteral("VolumeControl(%1)").arg(n), strip, Qt::Vertical, 0, 65535, 1,
                                 200);
    twips::place(level, 60, 480, 270, 1560);
    VolumeControl[strip] = level;
    // Named like the design's boxes: TXTVol for the master, Text1..Text11.
    const QString fieldName = strip == 0 ? QStringLiteral("TXTVol") : QStringLiteral("Text%1").arg(n);
    QLineEdit *text = field(frame, fieldName, QStringLiteral("32768"), 2070);
    QLineEdit **fields[Strips] = {&TXTVol, &Text1, &Text2, &Text3, &Text4, &Text5,
                                  &Text6,  &Text7, &Text8, &Text9, &Text10, &Text11};
    *fields[strip] = text;
    auto *balance = new MixerFader(frame, QStringLiteral("BalanceControl(%1)").arg(n), strip, Qt::Horizontal, -100,
                                   100, 5, 10);
    twips::place(balance, 45, 2340, 570, 225);
    BalanceControl[strip] = balance;
    QLineEdit *raw = field(frame, QStringLiteral("txtvolumecontrol(%1)").arg(n), QStringLiteral("32768"), 0);
    raw->hide();
    txtvolumecontrol[strip] = raw;

    if (strip >= MuteStrips)
        return;
    auto *holder = new QFrame(frame);
    holder->setObjectName(QStringLiteral("Picture11(%1)").arg(n));
    holder->setToolTip(QStringLiteral("Mute"));
    twips::place(holder, 45, 2595, 570, 540);
    Picture11[strip] = holder;
    // A graphical option pair: the two of one strip exclude each other.
    auto option = [&](const char *name, const char *caption, int top) {
        auto *b = new QPushButton(QLatin1String(caption), holder);
        b->setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name), n));
        b->setCheckable(true);
        b->setAutoExclusive(true);
        twips::place(b, 0, top, 570, 255);
        return b;
    };
    MuteOn[strip] = option("MuteOn", "Unmute", 0);
    MuteOff[strip] = option("MuteOff", "Mute", 285);
    MuteOn[strip]->setChecked(true);
    auto *link = new QCheckBox(frame);
    link->setObjectName(QStringLiteral("SBMLink(%1)").arg(n));
    twips::place(link, 45, 2880, 255, 255);
    SBMLink[strip] = link;
}

void MixerSection::buildGroupFader()
{
    Frame13 = new QGroupBox(QStringLiteral("SBM"), f1);
    Frame13->setObjectName(QStringLiteral("Frame13"));
    twips::place(Frame13, Margin + 12 * StripWidth, 0, 2 * StripWidth, StripHeight);
    Frame13->hide();
    Slider6 = new MixerFader(Frame13, QStringLiteral("Slider6"), 0, Qt::Vertical, 0, 65535, 1, 200);
    Slider6->setValue(32768);
    twips::place(Slider6, 60, 480, 270, 1560);
    Check11 = new QCheckBox(Frame13);
    Check11->setObjectName(QStringLiteral("Check11"));
    Check11->setToolTip(QStringLiteral("Links all selected faders to SBM fader"));
    twips::place(Check11, 60, 2100, 255, 255);
    Command1 = new QPushButton(QStringLiteral("----I----"), Frame13);
    Command1->setObjectName(QStringLiteral("Command1"));
    Command1->setToolTip(QStringLiteral("Balance = 0"));
    twips::place(Command1, 60, 2400, 1200, 285);
    Label11 = new QLabel(Frame13);
    Label11->setObjectName(QStringLiteral("Label11"));
    twips::place(Label11, 60, 2760, 1200, 255);
}

void MixerSection::buildPlayerChain(QWidget *panel)
{
    // Over the speaker and the fader groove that the skin paints.
    const AppInfo &app = m_platform.app;
    const char *pictures[] = {"speaker-muted.svg", "speaker-low.svg", "speaker-high.svg", "speaker-silent.svg"};
    for (int i = 0; i < 4; ++i) {
        auto *image = new QLabel(panel);
        image->setObjectName(QStringLiteral("Image3(%1)").arg(i));
        twips::place(image, 9075, 3990, 390, 315);
        const QString file = app.file(QStringLiteral("\\img\\panel\\") + QLatin1String(pictures[i]));
        image->setPixmap(loadPicture(file, image->size()));
        // mutel lies over them and takes the click.
        image->setAttribute(Qt::WA_TransparentForMouseEvents);
        image->hide();
        Image3[i] = image;
    }
    mutel = new ClickLabel(panel, QStringLiteral("mutel"));
    mutel->setToolTip(QStringLiteral("Mute"));
    mutel->setCursor(Qt::PointingHandCursor);
    twips::place(mutel, 9075, 3990, 390, 315);

    Volumesl = new PlayerFader(panel, QStringLiteral("Volumesl"));
    twips::place(Volumesl, 9555, 3990, 2370, 285);

    vl = new QLabel(panel);
    vl->setObjectName(QStringLiteral("vl"));
    vl->setToolTip(QStringLiteral("Volume %"));
    QFont font(QStringLiteral("Arial"), 7);
    font.setBold(true);
    vl->setFont(font);
    twips::place(vl, 11985, 4020, 585, 225);
    setvlForeColor(0xC0C000);
}

template <class Sender, class Signal, class Handler>
void MixerSection::on(Sender *sender, Signal signal, Handler handler)
{
    connect(sender, signal, this, [this, handler] { boundary::run(m_platform.dialogs, m_platform.process, handler); });
}

void MixerSection::connectHandlers()
{
    for (int i = 0; i < Strips; ++i) {
        on(VolumeControl[i], &MixerFader::Change, [this, i] { VolumeControl_Change(i); });
        on(BalanceControl[i], &MixerFader::Change, [this, i] { BalanceControl_Change(i); });
    }
    for (int i = 0; i < MuteStrips; ++i) {
        on(MuteOn[i], &QPushButton::clicked, [this, i] { MuteOn_Click(i); });
        on(MuteOff[i], &QPushButton::clicked, [this, i] { MuteOff_Click(i); });
    }
    on(Slider6, &MixerFader::Change, [this] { Slider6_Change(); });
    on(Command1, &QPushButton::clicked, [this] { Command1_Click(); });
    on(Check11, &QCheckBox::clicked, [this] { Check11_Click(); });
    on(Volumesl, &PlayerFader::Change, [this] { Volumesl_Change(); });
    on(mutel, &ClickLabel::Click, [this] { mutel_Click(); });
}

void MixerSection::setvlForeColor(std::uint32_t colour)
{
    m_vlForeColor = colour;
    QPalette pal = vl->palette();
    pal.setColor(QPalette::WindowText, oleColor(colour));
    vl->setPalette(pal);
}

void MixerSection::showOnlyImage(int index)
{
    for (int i = 0; i < 4; ++i)
        Image3[i]->setVisible(i == index);
}
