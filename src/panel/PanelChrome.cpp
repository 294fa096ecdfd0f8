// The ring of small behaviours around the player: the spots on the skin,
// the tray and its menu, the swinging window icon, and the two shell
// procedures. Where the panels differ, their traits say so.

#include "panel/Panel.h"

#include "basic/Checked.h"
#include "catalogue/Product.h"
#include "platform/AppInfo.h"
#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/Forms.h"
#include "platform/Shell.h"
#include "platform/Tray.h"
#include "platform/Twips.h"
#include "widgets/ClickLabel.h"
#include "widgets/Picture.h"

#include <QCursor>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>

NotifyIconData Panel::TrayIcon;

namespace {

const QColor Yellow(255, 255, 0);
constexpr int IconStep = 30;
constexpr int LineWidth = 5;

} // namespace

void Panel::buildChrome()
{
    icntimer = new Timer(platform().clock, Frame3, QStringLiteral("icntimer"), 0, true);
    Picture1 = new QLabel(Frame3);
    Picture1->setObjectName(QStringLiteral("Picture1"));
    if (m_traits.fixedIcon) {
        Picture2 = new QLabel(Frame3);
        Picture2->setObjectName(QStringLiteral("Picture2"));
        const QPixmap mast = loadPicture(platform().app.file(QStringLiteral("\\img\\panel\\mast.svg")), QSize(45, 47));
        Picture2->setPixmap(mast);
        Picture2->resize(mast.deviceIndependentSize().toSize());
        m_picture2 = QIcon(mast);
    }
    on(icntimer, &Timer::tick, [this] { icntimer_Timer(); });

    on(Label8, &ClickLabel::Click, [this] { Label8_Click(); });
    on(Donate, &ClickLabel::Click, [this] { Donate_Click(); });
    if (Label10 && m_traits.label10Minimises)
        on(Label10, &ClickLabel::Click, [this] { Label10_Click(); });

    if (!m_traits.hasTrayMenu)
        return;
    mnusystray = new QMenu(QStringLiteral("Systray"), this);
    mnusystray->setObjectName(QStringLiteral("mnusystray"));
    mnuRestore = mnusystray->addAction(QStringLiteral("Restore"));
    mnuRestore->setObjectName(QStringLiteral("mnuRestore"));
    Space1 = mnusystray->addSeparator();
    Space1->setObjectName(QStringLiteral("Space1"));
    mnuexit = mnusystray->addAction(QStringLiteral("Exit"));
    mnuexit->setObjectName(QStringLiteral("mnuexit"));
    on(mnuRestore, &QAction::triggered, [this] { mnuRestore_Click(); });
    on(mnuexit, &QAction::triggered, [this] { mnuexit_Click(); });

    // The icon's messages arrive as mouse moves of the window, the message
    // number standing in the X coordinate.
    connect(&platform().tray, &Tray::callback, this, [this](QWidget *window, int, int message) {
        if (window == this)
            guard([this, message] { Form_MouseMove(0, 0, twips::fromPixels(message), 0); });
    });
    setMouseTracking(true);
}

// Load's step 4.
void Panel::prepareIcon()
{
    // The board keeps its drawing: every frame is drawn once, in boardIcon().
    twips::place(Picture1, 0, 0, BoardTwips, BoardTwips);
    Picture1->setAutoFillBackground(true);
    QPalette pal = Picture1->palette();
    pal.setColor(QPalette::Window, Yellow);
    Picture1->setPalette(pal);
    m_iconFrame = 0;
    icntimer->setInterval(1);
    icntimer->setEnabled(true);
    m_iconFlag = true;
}

void Panel::icntimer_Timer()
{
    AnimateIcon();
    // Tafm draws its board like the others, then shows its mast.
    showIcon(m_traits.fixedIcon ? m_picture2 : m_board);
}

void Panel::AnimateIcon()
{
    m_board = boardIcon(m_iconFrame);
    m_iconFrame = m_iconFlag ? basic::add<std::int32_t>(m_iconFrame, IconStep)
                             : basic::sub<std::int32_t>(m_iconFrame, IconStep);
    if (m_iconFrame > BoardTwips - 80)
        m_iconFlag = false;
    if (m_iconFrame < 0)
        m_iconFlag = true;
}

// The board at one frame: on yellow, a blue line from the middle of the
// bottom edge to the frame's column on the top edge, and a red one to the
// mirrored column, like the blades of scissors.
const QIcon &Panel::boardIcon(std::int32_t frame)
{
    const auto drawn = m_boards.constFind(frame);
    if (drawn != m_boards.constEnd())
        return *drawn;
    const int side = twips::toPixels(BoardTwips);
    const double scale = static_cast<double>(side) / BoardTwips;
    QPixmap board(side, side);
    board.fill(Yellow);
    QPainter p(&board);
    p.setRenderHint(QPainter::Antialiasing);
    const QPointF foot(BoardTwips / 2.0 * scale, BoardTwips * scale);
    p.setPen(QPen(QColor(0, 0, 255), LineWidth, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(foot, QPointF(frame * scale, 0));
    p.setPen(QPen(QColor(255, 0, 0), LineWidth, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(foot, QPointF((BoardTwips - frame) * scale, 0));
    p.end();
    return *m_boards.insert(frame, QIcon(board));
}

// Only a change reaches the window. A swinging frame goes only to a window
// on screen (a hidden one gets the frame of the moment when it shows); a
// fixed picture goes at once, as it costs one push in all, and the panels
// that borrow Tafm's icon then find it there.
void Panel::showIcon(const QIcon &icon)
{
    m_iconWanted = icon;
    if ((isVisible() || m_traits.fixedIcon) && windowIcon().cacheKey() != icon.cacheKey())
        setWindowIcon(icon);
}

void Panel::showEvent(QShowEvent *event)
{
    Form::showEvent(event);
    if (!m_iconWanted.isNull() && windowIcon().cacheKey() != m_iconWanted.cacheKey())
        setWindowIcon(m_iconWanted);
}

void Panel::Label8_Click()
{
    platform().forms.Show(QStringLiteral("frmMain")); // not modal
}

void Panel::Label10_Click()
{
    setWindowState(windowState() | Qt::WindowMinimized);
}

void Panel::Donate_Click()
{
    if (m_traits.thanksFirst)
        platform().dialogs.MsgBox(QStringLiteral("Thanks For your Kind Heart"), MsgBox::OkOnly);
    platform().shell.execute(QStringLiteral("open"), DonationAddress(), QString(), QString(), 1);
}

QString Panel::DonationAddress()
{
    return QStringLiteral("https://") + QLatin1String(product::PaymentHost)
        + QStringLiteral("/cgi-bin/webscr?cmd=_donations&business=") + QLatin1String(product::DonationAccount)
        + QStringLiteral("&lc=IN&item_name=") + QString::fromLatin1(QUrl::toPercentEncoding(QLatin1String(product::Name)))
        + QStringLiteral("&currency_code=USD&bn=PP%2dDonationsBF%3abtn_donate_LG%2egif%3aNonHosted");
}

// The tray's resize handler, in the panels that have a tray. Every resize
// that is not a minimise asks to delete the icon, whether one is there or not.
void Panel::Form_Resize()
{
    Tray &tray = platform().tray;
    if (!(windowState() & Qt::WindowMinimized)) {
        tray.notifyIcon(Tray::Delete, TrayIcon);
        return;
    }
    // With no notification area a hidden window could never come back:
    // there, minimised stays minimised.
    if (!tray.isAvailable())
        return;
    hide();
    TrayIcon.cbSize = 88;
    TrayIcon.hWnd = this;
    TrayIcon.uID = 1;
    TrayIcon.uFlags = 7;
    TrayIcon.uCallbackMessage = Tray::MouseMove;
    TrayIcon.hIcon = windowIcon();
    TrayIcon.szTip = (windowTitle() + QChar(0)).leftJustified(64, QLatin1Char(' '), true);
    tray.notifyIcon(Tray::Add, TrayIcon);
}

void Panel::changeEvent(QEvent *event)
{
    Form::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && m_traits.hasTrayMenu)
        guard([this] { Form_Resize(); });
}

void Panel::resizeEvent(QResizeEvent *event)
{
    Form::resizeEvent(event);
    if (m_traits.hasTrayMenu)
        guard([this] { Form_Resize(); });
}

// The tray's messages and the real moves over the bare form meet here.
void Panel::Form_MouseMove(int, int, double x, double)
{
    const basic::Long message = basic::CLng(x / twips::PerPixel);
    if (message == Tray::LeftDown || (m_traits.trayRightButton && message == Tray::RightDown))
        mnusystray->popup(QCursor::pos()); // the window is not brought forward first
}

void Panel::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF at = event->position();
    if (mnusystray && !childAt(at.toPoint()))
        guard([this, at] { Form_MouseMove(0, 0, twips::fromPixels(at.x()), twips::fromPixels(at.y())); });
    Form::mouseMoveEvent(event);
}

void Panel::mnuRestore_Click()
{
    setWindowState(Qt::WindowNoState);
    Show();
}

void Panel::mnuexit_Click()
{
    Form_Unload();
}

QVariant Panel::Errora()
{
    return QVariant(platform().dialogs.MsgBox(QStringLiteral("An error has ocurred."), MsgBox::OkOnly));
}

// Only an answer of exactly 0 is a failure here; the small error codes of
// the shell count as success.
QString Panel::Run(QString &File, QString &Parameters, QString &Directory)
{
    const int answer = platform().shell.execute(QStringLiteral("Open"), File, Parameters, Directory, 5);
    return answer == 0 ? QStringLiteral("Insufficent system memory or corrupt program file") : QString();
}
