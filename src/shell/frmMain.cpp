#include "shell/frmMain.h"

#include "catalogue/Product.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/OleColor.h"
#include "platform/Shell.h"
#include "platform/Twips.h"
#include "shell/Snow.h"
#include "widgets/ClickLabel.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include <cmath>

using basic::Integer;

namespace {

constexpr int ClientWidth = 11460;
constexpr int ClientHeight = 6210;
constexpr std::uint32_t Black = 0;
constexpr std::uint32_t Red = 255;
constexpr std::uint32_t White = 0xFFFFFF;
constexpr std::uint32_t Green = 0x00FF00;
constexpr std::uint32_t ButtonText = 0x80000012; // a label's colour as it comes

QFont boldFont(const char *family, int points)
{
    QFont f(QLatin1String(family), points);
    f.setStyleHint(QFont::SansSerif);
    f.setBold(true);
    return f;
}

ClickLabel *label(QWidget *parent, const char *name, int left, int top, int width, int height, std::uint32_t colour,
                  const QFont &f, const QString &caption)
{
    auto *l = new ClickLabel(parent, QLatin1String(name));
    twips::place(l, left, top, width, height);
    QPalette pal = l->palette();
    pal.setColor(QPalette::WindowText, oleColor(colour));
    l->setPalette(pal);
    l->setFont(f);
    l->setText(caption);
    return l;
}

// Int() into a 16-bit field: the integer part, toward minus infinity,
// and error 6 beyond the field's range.
Integer intPart(double v)
{
    const double whole = std::floor(v);
    if (!(whole >= -32768.0 && whole <= 32767.0))
        basic::raise(basic::Overflow);
    return static_cast<Integer>(whole);
}

} // namespace

frmMain::frmMain(Platform &platform)
    : Form(platform, QStringLiteral("frmMain"))
{
    setWindowTitle(QStringLiteral("About"));
    setFixedSize(twips::toPixels(ClientWidth), twips::toPixels(ClientHeight));
    setFont(boldFont("Tahoma", 24));
    setAttribute(Qt::WA_OpaquePaintEvent); // the surface covers every pixel
    setMouseTracking(true); // a line goes on while Drawing is set, button or not

    Timer1 = new Timer(platform.clock, this, QStringLiteral("Timer1"), 500, false);
    Label2 = label(this, "Label2", 1200, 4200, 8295, 495, ButtonText, boldFont("Arial", 18),
                   QStringLiteral("If You Have More Links Please Share At"));
    Label2->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    Label1 = label(this, "Label1", 0, 4800, 11295, 735, Red, boldFont("Arial", 18), QLatin1String(product::MaintainersMail));
    Label1->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    Label3 = label(this, "Label3", 600, 5400, 10455, 615, Green, this->font(),
                   QStringLiteral("OR Join Here ") + QLatin1String(product::ForumName));
    Label3->setCursor(Qt::PointingHandCursor);

    m_rnd = [this] { return static_cast<float>(m_generator() >> 8) * (1.0f / 16777216.0f); };
    m_betweenFrames = [this] { pace(); };
    m_wake.setSingleShot(true);
    m_wake.setTimerType(Qt::PreciseTimer);
    const QScreen *screen = QGuiApplication::primaryScreen();
    const double rate = screen && screen->refreshRate() >= 1 ? screen->refreshRate() : 60;
    m_repaint.setInterval(static_cast<int>(std::lround(1000 / rate)));
    connect(&m_repaint, &QTimer::timeout, this, &frmMain::repaintChanged);

    on(Timer1, &Timer::tick, [this] { Timer1_Timer(); });
    on(Label3, &ClickLabel::Click, [this] { Label3_Click(); });
}

void frmMain::Load()
{
    m_loaded = true;
    // 1. Reading the icon loads Tafm, hidden, if it is not loaded yet.
    setWindowIcon(platform().forms.form(QStringLiteral("Tafm"))->windowIcon());
    // 2.
    Randomize();
    // 3. A new window: a new surface.
    m_surface.BackColor = Black;
    m_surface.DrawWidth = 1;
    m_surface.Font = font();
    m_surface.setSize(width(), height());
    const int w = m_surface.ScaleWidth(), h = m_surface.ScaleHeight();
    // 4.
    for (Particle &p : Snow) {
        p.X = intPart(Rnd() * static_cast<float>(w));
        p.Y = intPart(Rnd() * static_cast<float>(h));
    }
    // 5.
    Running = true;
    Timer1->setEnabled(true);
    // 6.-8. The title, and the version line twice over: its edges come out
    // heavier than the title's.
    m_surface.ForeColor = Red;
    const QString title = QStringLiteral("ZARVENT AND MP3 PLAYER");
    m_surface.CurrentX = (w - m_surface.TextWidth(title)) / 2;
    m_surface.CurrentY = h / 2.0 - m_surface.TextHeight(title) / 2 - 5;
    m_surface.Print(title);
    const QString version = QStringLiteral("VERSION 3.0");
    for (int twice = 0; twice < 2; ++twice) {
        m_surface.CurrentX = (w - m_surface.TextWidth(version)) / 2;
        m_surface.CurrentY = h / 2.0 + m_surface.TextHeight(version) + 2;
        m_surface.Print(version);
    }
    // 9. The colour of the snow from now on.
    m_surface.ForeColor = White;
    update();
}

void frmMain::Randomize()
{
    m_generator.seed(static_cast<std::uint32_t>(std::chrono::system_clock::now().time_since_epoch().count()));
}

void frmMain::Timer1_Timer()
{
    DrawSnow();
}

void frmMain::DrawSnow()
{
    Timer1->setEnabled(false);
    m_nextFrame = std::chrono::steady_clock::now();
    while (Running) {
        frame();
        m_betweenFrames();
    }
    m_wake.stop();
}

void frmMain::frame()
{
    for (const Particle &p : Snow) {
        m_surface.PSet(p.OldX, p.OldY, Black);
        m_surface.PSet(p.X, p.Y, m_surface.ForeColor);
    }
    for (int i = 0; i <= SnowLast; ++i)
        flakeStep(i);
    ++m_frames;
}

void frmMain::flakeStep(int i)
{
    Particle &p = Snow[static_cast<std::size_t>(i)];
    const int w = m_surface.ScaleWidth(), h = m_surface.ScaleHeight();
    p.OldX = p.X;
    p.OldY = p.Y;
    // Two coins, drawn in this order: -1, 0 or +1 with chances of a
    // quarter, a half, a quarter.
    const Integer right = intPart(Rnd() * 2);
    const Integer left = intPart(Rnd() * 2);
    Integer target = basic::sub<Integer>(basic::add<Integer>(p.X, right), left);
    if (target < 0)
        target = 0;
    if (target >= w)
        target = static_cast<Integer>(w - 1);
    const Integer below = basic::add<Integer>(p.Y, 1);
    if (m_surface.Point(target, below) == 0) {
        p.X = target;
        p.Y = below;
    } else if (p.Stuck != 10) {
        p.Stuck = basic::add<Integer>(p.Stuck, 1);
    } else {
        // The slide starts from where the flake is, not from the target.
        if (m_surface.Point(basic::add<Integer>(p.X, 1), below) == 0) {
            p.X = basic::add<Integer>(p.X, 1);
        } else if (m_surface.Point(basic::sub<Integer>(p.X, 1), below) == 0) {
            p.X = basic::sub<Integer>(p.X, 1);
        } else {
            // At rest. Its pixel is never erased: that is the drift.
            Integer index = static_cast<Integer>(i);
            newParticle(index);
            return;
        }
        p.Y = below;
        p.Stuck = 0;
    }
    if (p.Y >= h) {
        Integer index = static_cast<Integer>(i);
        newParticle(index);
    }
}

void frmMain::newParticle(Integer &i)
{
    basic::checkIndex(i, 0, SnowLast);
    Particle &p = Snow[static_cast<std::size_t>(i)];
    p.X = intPart(Rnd() * static_cast<float>(m_surface.ScaleWidth()));
    p.Y = 0;
    p.OldX = 0;
    p.OldY = 0;
    p.Stuck = 0;
}

// One frame, then the event loop until the next frame's moment. The moments
// are kept on a fixed grid, so a late wake-up costs the next wait rather
// than the rate.
void frmMain::pace()
{
    using namespace std::chrono;
    constexpr auto period = duration_cast<steady_clock::duration>(seconds(1)) / FramesPerSecond;
    m_nextFrame += period;
    if (m_nextFrame < steady_clock::now() - 4 * period)
        m_nextFrame = steady_clock::now(); // held up (a box, a drag): start afresh rather than race
    QCoreApplication::processEvents();
    while (Running) {
        const auto left = m_nextFrame - steady_clock::now();
        if (left <= steady_clock::duration::zero())
            break;
        m_wake.start(ceil<milliseconds>(left));
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void frmMain::repaintChanged()
{
    const QRect r = m_surface.takeChanged();
    if (!r.isEmpty())
        update(r);
}

void frmMain::paintEvent(QPaintEvent *event)
{
    QPainter p(this);
    p.drawImage(event->rect(), m_surface.image(), event->rect());
}

void frmMain::Label3_Click()
{
    platform().shell.execute(QStringLiteral("open"), QLatin1String(product::ForumPage), QString(), QString(), 1);
}

void frmMain::Form_MouseDown(int, int, float x, float y)
{
    m_surface.PSet(x, y, m_surface.ForeColor);
    Drawing = true;
    PenX = x;
    PenY = y;
}

void frmMain::Form_MouseMove(int, int, float x, float y)
{
    if (!Drawing)
        return;
    const int width = m_surface.DrawWidth;
    const std::uint32_t colour = m_surface.ForeColor;
    m_surface.DrawWidth = 3;
    m_surface.ForeColor = Red;
    m_surface.Line(PenX, PenY, x, y);
    PenX = x;
    PenY = y;
    m_surface.DrawWidth = width;
    m_surface.ForeColor = colour;
}

void frmMain::Form_MouseUp(int, int, float, float)
{
    Drawing = false;
}

void frmMain::mousePressEvent(QMouseEvent *event)
{
    const float x = static_cast<float>(event->position().x()), y = static_cast<float>(event->position().y());
    const int button = ClickLabel::buttonCode(event->button()), shift = ClickLabel::shiftCode(event->modifiers());
    guard([=, this] { Form_MouseDown(button, shift, x, y); });
}

void frmMain::mouseMoveEvent(QMouseEvent *event)
{
    const float x = static_cast<float>(event->position().x()), y = static_cast<float>(event->position().y());
    const int button = ClickLabel::buttonCode(event->buttons()), shift = ClickLabel::shiftCode(event->modifiers());
    guard([=, this] { Form_MouseMove(button, shift, x, y); });
}

void frmMain::mouseReleaseEvent(QMouseEvent *event)
{
    const float x = static_cast<float>(event->position().x()), y = static_cast<float>(event->position().y());
    const int button = ClickLabel::buttonCode(event->button()), shift = ClickLabel::shiftCode(event->modifiers());
    guard([=, this] { Form_MouseUp(button, shift, x, y); });
}

// A close unloads the window: the loop ends after its frame, the timer
// goes with the window, and the next show loads it afresh. Snow and the
// members stay as they are.
void frmMain::closeEvent(QCloseEvent *event)
{
    Running = false;
    Timer1->setEnabled(false);
    m_loaded = false;
    event->accept();
}

void frmMain::showEvent(QShowEvent *event)
{
    Form::showEvent(event);
    if (!m_loaded)
        guard([this] { Load(); });
    m_repaint.start();
}

void frmMain::hideEvent(QHideEvent *event)
{
    m_repaint.stop();
    Form::hideEvent(event);
}
