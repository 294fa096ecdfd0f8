#include "netmon/frmInterfaces.h"

#include "basic/NumberText.h"
#include "netmon/ActivityPictures.h"
#include "platform/Twips.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QCursor>
#include <QDateTime>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTreeWidget>

#include <cmath>
#include <optional>
#include <variant>

namespace {

using basic::Long;
using Value = std::variant<QString, Long, double>;
using Text = std::optional<QString>; // nullopt: the row is left as it is

// Digits through the picture, then blanks trimmed at both ends; a zero has
// no digits, so its text is empty.
QString grouped(Long v, QStringView picture)
{
    QString text = basic::formatNumber(v, picture);
    qsizetype from = 0, to = text.size();
    while (from < to && text[from] == QLatin1Char(' '))
        ++from;
    while (to > from && text[to - 1] == QLatin1Char(' '))
        --to;
    return text.mid(from, to - from);
}

Text asItStands(const Value &v) { return std::get<QString>(v); }
Text decimal(const Value &v) { return QString::number(std::get<Long>(v)); }
Text grouped9(const Value &v) { return grouped(std::get<Long>(v), u"### ### ###"); }
Text grouped12(const Value &v) { return grouped(std::get<Long>(v), u"### ### ### ###"); }

Text typeName(const Value &v)
{
    switch (std::get<Long>(v)) {
    case 1: return QStringLiteral("Other");
    case 6: return QStringLiteral("Ethernet");
    case 9: return QStringLiteral("TokenRing");
    case 15: return QStringLiteral("FDDI");
    case 23: return QStringLiteral("PPP");
    case 24: return QStringLiteral("Loopback");
    case 28: return QStringLiteral("SLIP");
    default: return std::nullopt;
    }
}

Text adminName(const Value &v)
{
    switch (std::get<Long>(v)) {
    case 1: return QStringLiteral("Up");
    case 2: return QStringLiteral("Down");
    case 3: return QStringLiteral("Testing");
    default: return std::nullopt;
    }
}

Text operName(const Value &v)
{
    switch (std::get<Long>(v)) {
    case 0: return QStringLiteral("Non operational");
    case 1: return QStringLiteral("Unreachable");
    case 2: return QStringLiteral("Disconnected");
    case 3: return QStringLiteral("Connecting");
    case 4: return QStringLiteral("Connected");
    case 5: return QStringLiteral("Operational");
    default: return std::nullopt;
    }
}

// The general date form of a day count from 30 December 1899: the date when
// there are whole days, the time when there is a part of a day.
Text dateText(const Value &v)
{
    const double days = std::get<double>(v);
    if (!std::isfinite(days) || std::fabs(days) > 3e6)
        return QString();
    const double whole = std::trunc(days);
    const auto seconds = static_cast<int>(std::lround(std::fabs(days - whole) * 86400.0)) % 86400;
    const QLocale locale = QLocale::system();
    QString text;
    if (whole != 0)
        text = locale.toString(QDate(1899, 12, 30).addDays(static_cast<qint64>(whole)), QLocale::ShortFormat);
    if (seconds != 0 || whole == 0) {
        if (!text.isEmpty())
            text += QLatin1Char(' ');
        text += QTime(0, 0).addSecs(seconds).toString(QStringLiteral("HH:mm:ss"));
    }
    return text;
}

struct Row {
    const char *parameter;
    Value (*source)(const CInterface &);
    Text (*format)(const Value &);
};

// clang-format off
const Row Rows[21] = {
    {"Name of the interface", [](const CInterface &i) -> Value { return i.InterfaceName(); }, asItStands},
    {"Index of the interface", [](const CInterface &i) -> Value { return i.InterfaceIndex(); }, decimal},
    {"Type of interface", [](const CInterface &i) -> Value { return i.InterfaceType(); }, typeName},
    {"Max transmission unit", [](const CInterface &i) -> Value { return i.MaximumTransmissionUnit(); }, decimal},
    {"Speed of the interface", [](const CInterface &i) -> Value { return i.Speed(); }, grouped9},
    {"Physical address of adapter", [](const CInterface &i) -> Value { return i.AdapterAddress(); }, asItStands},
    {"Administrative status", [](const CInterface &i) -> Value { return i.AdminStatus(); }, adminName},
    {"Operational status", [](const CInterface &i) -> Value { return i.OperationalStatus(); }, operName},
    {"Last time operational status changed", [](const CInterface &i) -> Value { return i.LastChange(); }, dateText},
    {"Octets received", [](const CInterface &i) -> Value { return i.OctetsReceived(); }, grouped12},
    {"Unicast packets received", [](const CInterface &i) -> Value { return i.UnicastPacketsReceived(); }, decimal},
    {"Non-unicast packets received", [](const CInterface &i) -> Value { return i.NonunicastPacketsReceived(); }, decimal},
    {"Received packets discarded", [](const CInterface &i) -> Value { return i.DiscardedIncomingPackets(); }, decimal},
    {"Erroneous packets received", [](const CInterface &i) -> Value { return i.IncomingErrors(); }, decimal},
    {"Unknown protocol packets received", [](const CInterface &i) -> Value { return i.UnknownProtocolPackets(); }, decimal},
    {"Octets sent", [](const CInterface &i) -> Value { return i.OctetsSent(); }, grouped12},
    {"Unicast packets sent", [](const CInterface &i) -> Value { return i.UnicastPacketsSent(); }, decimal},
    {"Non-unicast packets sent", [](const CInterface &i) -> Value { return i.NonunicastPacketsSent(); }, decimal},
    {"Outgoing packets discarded", [](const CInterface &i) -> Value { return i.DiscardedOutgoingPackets(); }, decimal},
    {"Erroneous packets sent", [](const CInterface &i) -> Value { return i.OutgoingErrors(); }, decimal},
    {"Output queue length", [](const CInterface &i) -> Value { return i.OutputQueueLength(); }, decimal},
};
// clang-format on

// A list cell shows its text up to the first zero character, as the native
// list did; the text itself stays as it was written (row 1 holds the raw
// 512-character name, so the cell shows its first character).
class UpToZeroDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant &value, const QLocale &locale) const override
    {
        const QString text = QStyledItemDelegate::displayText(value, locale);
        const qsizetype zero = text.indexOf(QChar(0));
        return zero < 0 ? text : text.left(zero);
    }
};

template <class W>
W *named(W *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace

frmInterfaces::frmInterfaces(Platform &platform)
    : Form(platform, QStringLiteral("frmInterfaces"))
{
    setWindowTitle(QStringLiteral("Network Interfaces Information"));
    resize(twips::toPixels(6480), twips::toPixels(7245));
    setMouseTracking(true); // the tray's messages and real mouse moves share one handler
    // The geometry was laid out for an 8-point sans serif; a larger default
    // font would not fit the labels.
    QFont font(QStringLiteral("Arial"), 8);
    font.setStyleHint(QFont::SansSerif);
    setFont(font);

    Frame1 = named(new QGroupBox(QStringLiteral("&Select Interface"), this), "Frame1");
    twips::place(Frame1, 120, 120, 4935, 615);
    Combo1 = named(new QComboBox(Frame1), "Combo1");
    twips::place(Combo1, 120, 240, 4695, 315);

    Frame2 = named(new QGroupBox(QStringLiteral("Interface Information"), this), "Frame2");
    twips::place(Frame2, 120, 840, 4935, 5295);
    lvInterfaceInfo = named(new QTreeWidget(Frame2), "lvInterfaceInfo");
    twips::place(lvInterfaceInfo, 120, 240, 4695, 4935);
    lvInterfaceInfo->setRootIsDecorated(false);
    lvInterfaceInfo->setItemDelegate(new UpToZeroDelegate(lvInterfaceInfo));
    lvInterfaceInfo->setColumnCount(0);

    Frame3 = named(new QGroupBox(QStringLiteral("Traffic Summary"), this), "Frame3");
    twips::place(Frame3, 120, 6240, 4935, 855);
    Image1 = named(new QLabel(Frame3), "Image1");
    twips::place(Image1, 240, 240, 480, 480);
    Label1 = named(new QLabel(QStringLiteral("Bytes received:"), Frame3), "Label1");
    twips::place(Label1, 1800, 240, 1125, 195);
    lblRecv = named(new QLabel(QStringLiteral("000 000 000"), Frame3), "lblRecv");
    twips::place(lblRecv, 3000, 240, 975, 255);
    Label2 = named(new QLabel(QStringLiteral("Bytes sent:"), Frame3), "Label2");
    twips::place(Label2, 1800, 480, 825, 195);
    lblSent = named(new QLabel(QStringLiteral("000 000 000"), Frame3), "lblSent");
    twips::place(lblSent, 3000, 480, 975, 255);

    cmdHide = named(new QPushButton(QStringLiteral("&Hide"), this), "cmdHide");
    twips::place(cmdHide, 5160, 240, 1215, 375);
    cmdExit = named(new QPushButton(QStringLiteral("E&xit"), this), "cmdExit");
    twips::place(cmdExit, 5160, 720, 1215, 375);

    // Runs from the load on, hidden or not: it is what keeps the tray icon alive.
    Timer1 = new Timer(platform.clock, this, QStringLiteral("Timer1"), 200, false);

    mPopupSys = named(new QMenu(QStringLiteral("&SysTray"), this), "mPopupSys");
    mPopRestore = named(mPopupSys->addAction(QStringLiteral("&Restore")), "mPopRestore");
    mPopExit = named(mPopupSys->addAction(QStringLiteral("&Exit")), "mPopExit");

    for (int i = 1; i <= 4; ++i) {
        m_large.append(activity::picture(i, 32));
        m_small.append(QIcon(activity::picture(i, 16)));
    }

    connect(Combo1, &QComboBox::activated, this, [this] { guard([this] { Combo1_Click(); }); });
    on(Timer1, &Timer::tick, [this] { Timer1_Timer(); });
    on(cmdHide, &QPushButton::clicked, [this] { cmdHide_Click(); });
    on(cmdExit, &QPushButton::clicked, [this] { cmdExit_Click(); });
    on(mPopRestore, &QAction::triggered, [this] { mPopRestore_Click(); });
    on(mPopExit, &QAction::triggered, [this] { mPopExit_Click(); });
    connect(&platform.tray, &Tray::callback, this, [this](QWidget *window, int, int message) {
        // The icon's messages arrive as mouse moves of the window, the
        // message number standing in the X coordinate (in the form's twips).
        if (window == this)
            guard([this, message] { Form_MouseMove(0, 0, twips::fromPixels(message), 0); });
    });
}

frmInterfaces::~frmInterfaces() = default;

void frmInterfaces::Load()
{
    m_loaded = true;

    lvInterfaceInfo->setHeaderLabels({QStringLiteral("Parameter"), QStringLiteral("Value")});
    lvInterfaceInfo->setColumnWidth(0, twips::toPixels(3000));
    lvInterfaceInfo->setColumnWidth(1, twips::toPixels(1600));
    for (const Row &row : Rows)
        new QTreeWidgetItem(lvInterfaceInfo, {QLatin1String(row.parameter), QString()});

    mIpHelper = std::make_unique<CIpHelper>(platform().interfaces, platform().dialogs);
    const std::shared_ptr<CInterfaces> interfaces = mIpHelper->Interfaces();
    for (const CInterfaces::Record &item : *interfaces)
        Combo1->addItem(item->InterfaceDescription());

    // The first refresh comes here, before the icon exists: its modify call
    // finds no icon and does nothing.
    setListIndex(0);

    Show();
    repaint();

    mTrayIcon.cbSize = 88;
    mTrayIcon.hWnd = this;
    mTrayIcon.uID = 1;
    mTrayIcon.uFlags = 7;
    mTrayIcon.uCallbackMessage = Tray::MouseMove;
    mTrayIcon.hIcon = ImageList1(4); // the load always starts on traffic both ways
    mTrayIcon.szTip = tip(mIpHelper->BytesReceived(), mIpHelper->BytesSent());
    platform().tray.notifyIcon(Tray::Add, mTrayIcon);
    // Ticks start once the window stands. A box shown during the load (the
    // reader's "no interface table") must not see the timer read the table
    // again under it and repeat itself every 200 ms.
    Timer1->setEnabled(true);
}

// Selecting an entry of an empty list is an invalid property value.
void frmInterfaces::setListIndex(int index)
{
    if (index < -1 || index >= Combo1->count())
        basic::raise(basic::InvalidPropertyValue);
    {
        const QSignalBlocker quiet(Combo1);
        Combo1->setCurrentIndex(index);
    }
    Combo1_Click();
}

void frmInterfaces::RefreshInterfaceInfo(basic::Long position)
{
    if (!mIpHelper)
        return;
    // Two reads: the test of the position and the record shown come from
    // different snapshots of the table, as they always have.
    if (position > mIpHelper->Interfaces()->Count())
        return;
    if (!mLastInterface)
        mLastInterface = std::make_shared<CInterface>();
    const CInterfaces::Record current = mIpHelper->Interfaces()->Item(position);

    // Only rows whose raw value moved are touched. Zeros and empty strings
    // stay blank at the first refresh, a code without a name leaves the
    // previous text, and row 9 is never written (LastChange is always 0).
    for (int r = 0; r < 21; ++r) {
        const Value now = Rows[r].source(*current);
        if (now == Rows[r].source(*mLastInterface))
            continue;
        if (const Text text = Rows[r].format(now))
            lvInterfaceInfo->topLevelItem(r)->setText(1, *text);
    }

    const Long received = mIpHelper->BytesReceived();
    const Long sent = mIpHelper->BytesSent();
    lblRecv->setText(grouped(received, u"### ### ### ###"));
    lblSent->setText(grouped(sent, u"### ### ### ###"));

    // Signed comparisons: a counter that fell counts as no traffic.
    const bool receivedFlag = received > mLastBytesReceived;
    const bool sentFlag = sent > mLastBytesSent;
    const int picture = receivedFlag && sentFlag ? 4 : sentFlag ? 3 : receivedFlag ? 2 : 1;
    if (picture != m_shownPicture) { // the same picture again would only cost a repaint
        Image1->setPixmap(ImageList2(picture));
        m_shownPicture = picture;
    }
    mTrayIcon.hIcon = ImageList1(picture);

    mLastBytesReceived = received;
    mLastBytesSent = sent;

    mTrayIcon.szTip = tip(mLastBytesReceived, mLastBytesSent);
    platform().tray.notifyIcon(Tray::Modify, mTrayIcon);

    mLastInterface = current;
}

// "Bytes received: n Bytes sent: m" and a zero character, left-justified in
// the 64-character field.
QString frmInterfaces::tip(basic::Long received, basic::Long sent)
{
    const QString text = QStringLiteral("Bytes received: ") + QString::number(received) + QStringLiteral(" Bytes sent: ")
        + QString::number(sent) + QChar(0);
    return text.leftJustified(64, QLatin1Char(' '), true);
}

void frmInterfaces::Combo1_Click()
{
    RefreshInterfaceInfo(Combo1->currentIndex() + 1);
}

void frmInterfaces::Timer1_Timer()
{
    RefreshInterfaceInfo(Combo1->currentIndex() + 1);
}

void frmInterfaces::cmdHide_Click()
{
    setWindowState(windowState() | Qt::WindowMinimized);
}

// Minimising is the one way to hiding, so the minimise box and cmdHide
// behave alike. With no notification area there is no icon to come back
// by, so the window stays an ordinary minimised one.
void frmInterfaces::changeEvent(QEvent *event)
{
    Form::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && (windowState() & Qt::WindowMinimized)
        && platform().tray.isAvailable())
        guard([this] { hide(); });
}

void frmInterfaces::Form_MouseMove(int, int, double x, double)
{
    const basic::Long message = ScaleMode == 3 ? basic::CLng(x) : basic::CLng(x / TwipsPerPixelX);
    switch (message) {
    case Tray::LeftUp:
    case Tray::LeftDouble:
        restore();
        break;
    case Tray::RightUp:
        SetForegroundWindow();
        mPopupSys->popup(QCursor::pos());
        break;
    default:
        break; // real mouse moves, unless the pointer stands at x = 514, 515 or 517
    }
}

// Real moves over the window itself pass through the tray's handler.
void frmInterfaces::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF at = event->position();
    if (!childAt(at.toPoint()))
        guard([this, at] { Form_MouseMove(0, 0, twips::fromPixels(at.x()), twips::fromPixels(at.y())); });
    Form::mouseMoveEvent(event);
}

void frmInterfaces::restore()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    SetForegroundWindow();
    Show();
}

void frmInterfaces::SetForegroundWindow()
{
    raise();
    activateWindow();
}

void frmInterfaces::mPopRestore_Click()
{
    restore();
}

void frmInterfaces::cmdExit_Click()
{
    Unload();
}

void frmInterfaces::mPopExit_Click()
{
    Unload();
}

void frmInterfaces::Form_Unload()
{
    platform().tray.notifyIcon(Tray::Delete, mTrayIcon);
}

void frmInterfaces::Unload()
{
    if (!m_loaded)
        return;
    Form_Unload();
    clearLoadedState();
}

// Back to what the constructor left: no timer, no reader, no rows, no icon.
void frmInterfaces::clearLoadedState()
{
    m_loaded = false;
    Timer1->setEnabled(false);
    mPopupSys->hide();
    hide();
    setWindowState(Qt::WindowNoState);
    mIpHelper.reset();
    mLastInterface.reset();
    mLastBytesReceived = 0;
    mLastBytesSent = 0;
    mTrayIcon = NotifyIconData();
    Combo1->clear();
    lvInterfaceInfo->clear();
    lvInterfaceInfo->setColumnCount(0);
    Image1->clear();
    m_shownPicture = 0;
    lblRecv->setText(QStringLiteral("000 000 000"));
    lblSent->setText(QStringLiteral("000 000 000"));
}

// The close box unloads, like cmdExit.
void frmInterfaces::closeEvent(QCloseEvent *event)
{
    guard([this] { Unload(); });
    event->accept();
}

// Showing a window that is not loaded loads it.
void frmInterfaces::showEvent(QShowEvent *event)
{
    Form::showEvent(event);
    if (!m_loaded)
        guard([this] { Load(); });
}
