#include "shell/Mainmap.h"

#include "basic/Checked.h"
#include "platform/AppInfo.h"
#include "platform/Connection.h"
#include "platform/Dialogs.h"
#include "platform/Forms.h"
#include "platform/OleColor.h"
#include "platform/Process.h"
#include "platform/Twips.h"
#include "shell/MapOutline.h"
#include "widgets/Picture.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

namespace {

constexpr int ClientWidth = 7935;
constexpr int ClientHeight = 6435;

ClickLabel *area(QWidget *parent, const char *name, int left, int top, int width, int height)
{
    auto *l = new ClickLabel(parent, QLatin1String(name));
    twips::place(l, left, top, width, height);
    return l;
}

GlowButton *button(QWidget *parent, const char *name, int left, const char *caption)
{
    auto *b = new GlowButton(parent, QLatin1String(name));
    b->setCaption(QLatin1String(caption));
    twips::place(b, left, 0, 1335, 375);
    return b;
}

} // namespace

Mainmap::Mainmap(Platform &platform)
    : Form(platform, QStringLiteral("Mainmap"))
{
    // The outline cuts the title bar away; the window is dragged by its picture.
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setWindowTitle(QStringLiteral("Form2"));
    setFixedSize(twips::toPixels(ClientWidth), twips::toPixels(ClientHeight));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, oleColor(0xFFFF80));
    setPalette(pal);

    // Made bottom first: a later sibling lies above an earlier one, so where
    // areas overlap the table's upper row wins (kal over Tn1).
    Kll = area(this, "Kll", 2160, 3240, 1095, 2535);
    Andrha = area(this, "Andrha", 3600, 120, 3375, 2655);
    Tn1 = area(this, "Tn1", 3600, 2880, 1455, 2535);
    Tn2 = area(this, "Tn2", 3000, 3840, 1215, 375);
    Tn3 = area(this, "Tn3", 3120, 4320, 615, 1215);
    kal = area(this, "kal", 2040, 1080, 1575, 2535);
    GlowButton1 = button(this, "GlowButton1", 2280, "MP3");
    GlowButton2 = button(this, "GlowButton2", 5160, "EXIT");

    on(kal, &ClickLabel::Click, [this] { chooseRegion(QStringLiteral("kanna")); });
    on(Andrha, &ClickLabel::Click, [this] { chooseRegion(QStringLiteral("Afm")); });
    on(Kll, &ClickLabel::Click, [this] { chooseRegion(QStringLiteral("Malfm")); });
    on(Tn1, &ClickLabel::Click, [this] { Tn1_Click(); });
    on(Tn2, &ClickLabel::Click, [this] { Tn1_Click(); });
    on(Tn3, &ClickLabel::Click, [this] { Tn1_Click(); });
    on(GlowButton1, &GlowButton::Click, [this] {
        Hide(); // local files need no connection
        this->platform().forms.Show(QStringLiteral("Mp3"));
    });
    on(GlowButton2, &GlowButton::Click, [this] { this->platform().process.end(); });

    m_picture = loadPicture(platform.app.file(QStringLiteral("\\img\\map.svg")), size());
}

void Mainmap::Load()
{
    Dragging = false;
    ApplyMapRegion();
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect available = screen->availableGeometry();
        move(available.center() - rect().center());
    }
}

void Mainmap::ApplyMapRegion()
{
    // Alternate fill, as the outline was drawn for it; the region stays with
    // the window from here on.
    setMask(QRegion(mapOutline(), Qt::OddEvenFill));
}

bool Mainmap::CheckInternetConnection()
{
    return platform().connection.connectedState();
}

void Mainmap::Tn1_Click()
{
    chooseRegion(QStringLiteral("Tafm"));
}

void Mainmap::chooseRegion(const QString &panel)
{
    Hide();
    if (CheckInternetConnection()) {
        platform().forms.Show(panel);
        return;
    }
    const QString title = QStringLiteral("Connection Problem");
    platform().dialogs.MsgBox(QStringLiteral("You Dont have internet Connection to Continue"), MsgBox::Critical, title);
    platform().dialogs.MsgBox(QStringLiteral("Please check your connection and try again"), MsgBox::Information, title);
    Show();
}

void Mainmap::paintEvent(QPaintEvent *)
{
    if (m_picture.isNull())
        return;
    QPainter p(this);
    p.drawPixmap(0, 0, m_picture);
}

void Mainmap::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->button() == Qt::LeftButton;
    const QPointF at = event->position();
    guard([&] { Form_MouseDown(twips::fromPixels(at.x()), twips::fromPixels(at.y())); });
}

void Mainmap::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF at = event->position();
    guard([&] { Form_MouseMove(twips::fromPixels(at.x()), twips::fromPixels(at.y())); });
}

void Mainmap::mouseReleaseEvent(QMouseEvent *event)
{
    // The window moves with the mouse, so a drag ends over the form and
    // completes a click, message and all.
    const bool click = m_pressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_pressed = false;
    guard([&] {
        Form_MouseUp();
        if (click)
            Form_Click();
    });
}

void Mainmap::Form_MouseDown(double x, double y)
{
    Dragging = true;
    DragX = basic::CInt(x);
    DragY = basic::CInt(y);
}

void Mainmap::Form_MouseMove(double x, double y)
{
    if (!Dragging)
        return;
    // Positions are relative to the moving window, so the press point stays
    // the anchor for the whole drag.
    const double top = twips::fromPixels(pos().y()) + y - DragY;
    const double left = twips::fromPixels(pos().x()) + x - DragX;
    move(twips::toPixels(left), twips::toPixels(top));
}

void Mainmap::Form_MouseUp()
{
    Dragging = false;
}

void Mainmap::Form_Click()
{
    platform().dialogs.MsgBox(QStringLiteral("Please Select Appropriate Place"));
}
