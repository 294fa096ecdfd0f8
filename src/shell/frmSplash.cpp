#include "shell/frmSplash.h"

#include "basic/Checked.h"
#include "platform/AppInfo.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/OleColor.h"
#include "platform/Process.h"
#include "platform/Shell.h"
#include "platform/Twips.h"
#include "widgets/Picture.h"
#include "widgets/PropertyBag.h"
#include "widgets/zzSlider.h"

#include <QGuiApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>

namespace {

constexpr int ClientWidth = 7635;
constexpr int ClientHeight = 5715;

zzSlider *bar(Platform &platform, QWidget *parent, const char *name, int left, int top, int width, int height,
              const PropertyBag &stored)
{
    auto *s = new zzSlider(platform.dialogs, platform.process, parent);
    s->setObjectName(QLatin1String(name));
    twips::place(s, left, top, width, height);
    s->ReadProperties(stored);
    return s;
}

PropertyBag barSettings(int style, std::uint32_t back, std::uint32_t slider)
{
    PropertyBag bag;
    bag.set(QStringLiteral("BackColor"), back);
    bag.set(QStringLiteral("SliderColor"), slider);
    bag.set(QStringLiteral("MaxValue"), 100.0f);
    bag.set(QStringLiteral("SliderStyle"), style);
    return bag;
}

QLabel *label(QWidget *parent, const char *name, int left, int top, int width, int height, std::uint32_t fore,
              const QFont &font, const QString &caption = QString())
{
    auto *l = new QLabel(caption, parent);
    l->setObjectName(QLatin1String(name));
    twips::place(l, left, top, width, height);
    QPalette pal = l->palette();
    pal.setColor(QPalette::WindowText, oleColor(fore));
    l->setPalette(pal);
    l->setFont(font);
    return l;
}

QFont arial(int points, bool bold)
{
    QFont f(QStringLiteral("Arial"), points);
    f.setStyleHint(QFont::SansSerif);
    f.setBold(bold);
    return f;
}

// A label sized to its text grows from its left edge, as the splash's do.
void autoSize(QLabel *l)
{
    l->resize(l->sizeHint());
}

} // namespace

frmSplash::frmSplash(Platform &platform)
    : Form(platform, QStringLiteral("frmSplash"))
{
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setWindowTitle(platform.app.Title);
    setFixedSize(twips::toPixels(ClientWidth), twips::toPixels(ClientHeight));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, oleColor(0x808080));
    pal.setColor(QPalette::WindowText, oleColor(0xFFFFFF));
    setPalette(pal);
    setKeyPreview(true);

    s1 = bar(platform, this, "s1", 360, 480, 6795, 75, barSettings(0, 0xFFFFFF, 0x808080));
    s2 = bar(platform, this, "s2", 6960, 360, 75, 4935, barSettings(1, 0xFFFFFF, 0xFFFFFF));
    s3 = bar(platform, this, "s3", 360, 5040, 6735, 75, barSettings(0, 0x808080, 0xFFFFFF));
    s4 = bar(platform, this, "s4", 488, 360, 75, 4935, barSettings(1, 0xFFFFFF, 0x808080));

    Timer1 = new Timer(platform.clock, this, QStringLiteral("Timer1"), 400, true);
    Timer2 = new Timer(platform.clock, this, QStringLiteral("Timer2"), 1, false); // has no handler

    lblProductName = label(this, "lblProductName", 3720, 480, 105, 495, 0xFFFFFF, arial(18, true));
    lblProductName->setAlignment(Qt::AlignCenter);
    lblVersion = label(this, "lblVersion", 5520, 720, 2600, 375, 0x0000C0, arial(10, true));
    Label1 = label(this, "Label1", 2280, 1080, 4020, 330, 0xC0C000, arial(11, true), QStringLiteral("Zarvent's Entertainment"));
    sts = label(this, "sts", 2400, 4800, 60, 240, 0xFFFFFF, arial(9, false));

    // Below the client area: no mouse can reach it.
    cmdHelp = new QPushButton(QStringLiteral("Command1"), this);
    cmdHelp->setObjectName(QStringLiteral("cmdHelp"));
    twips::place(cmdHelp, 2400, 8520, 1695, 615);

    on(Timer1, &Timer::tick, [this] { Timer1_Timer(); });
    on(s1, &zzSlider::Change, [this] { s1_Change(); });
    on(cmdHelp, &QPushButton::clicked, [this] { cmdHelp_Click(); });

    m_picture = loadPicture(platform.app.file(QStringLiteral("\\img\\splash.svg")), size());
}

void frmSplash::Load()
{
    AppInfo &app = platform().app;
    Timer1->setEnabled(true);
    app.HelpFile = app.file(QStringLiteral("\\Help.chm"));
    lblVersion->setText(QStringLiteral("Version %1.%2.%3").arg(app.Major).arg(app.Minor).arg(app.Revision));
    lblProductName->setText(app.Title);
    autoSize(lblProductName);
    SplashStep = 0;

    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.center() - rect().center());
    }
}

void frmSplash::paintEvent(QPaintEvent *)
{
    if (m_picture.isNull())
        return;
    QPainter p(this);
    p.drawPixmap(0, 0, m_picture);
}

void frmSplash::Timer1_Timer()
{
    using basic::Integer;
    s1->setValue(SplashStep);
    s2->setValue(basic::sub<Integer>(100, SplashStep));
    s3->setValue(basic::sub<Integer>(100, SplashStep));
    s4->setValue(SplashStep);
    s2->setBackColor(0x808080);
    s2->setForeColor(0xFFFFFF);
    if (SplashStep < 110) {
        SplashStep = basic::add<Integer>(SplashStep, 10);
    } else {
        Timer1->setEnabled(false);
        Timer2->setEnabled(true);
    }
    if (!Timer1->Enabled()) {
        // Form2's Load probes and routes before it returns, so the splash
        // stays up, frozen, until the chosen window is shown.
        platform().forms.form(QStringLiteral("Form2"));
        Hide();
    }
}

void frmSplash::s1_Change()
{
    switch (SplashStep) {
    case 0: sts->setText(QStringLiteral("Loading Files...")); break;
    case 20: sts->setText(QStringLiteral("Checking Windows Version...")); break;
    case 40: sts->setText(QStringLiteral("Checking Sound hardware...")); break;
    case 60: sts->setText(QStringLiteral("Checking Internal memory...")); break;
    case 80: sts->setText(QStringLiteral("Checking Internet Connection...")); break;
    case 90: sts->setText(QStringLiteral("Loading Program...")); break;
    default: return;
    }
    autoSize(sts);
}

void frmSplash::cmdHelp_Click()
{
    platform().shell.open(platform().app.HelpFile);
}

void frmSplash::ShowHelpPage()
{
    // No compiled-help viewer here: the help file goes to whatever the
    // desktop opens it with, topic and all.
    platform().shell.open(platform().app.HelpFile + QStringLiteral("::/Page1.htm"));
}

bool frmSplash::keyPreview(QKeyEvent *event)
{
    // Only keys that type a character make a key press (Enter, Escape and
    // Backspace do; arrows and lone modifiers do not).
    if (event->type() != QEvent::KeyPress || event->text().isEmpty())
        return false;
    guard([this] { Form_KeyPress(); });
    return true;
}

void frmSplash::Form_KeyPress()
{
    Form_Unload();
}

// Closed by the window manager, the splash unloads just as a key makes it.
void frmSplash::closeEvent(QCloseEvent *event)
{
    event->ignore();
    guard([this] { Form_Unload(); });
}

void frmSplash::Form_Unload()
{
    // Unloading the splash drops its timer before Form2 was ever loaded;
    // with no other form left the program ends, silently.
    Timer1->setEnabled(false);
    Hide();
    platform().process.end();
}
