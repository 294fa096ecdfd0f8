#include "widgets/GlowButton.h"

#include "platform/OleColor.h"
#include "platform/Twips.h"
#include "widgets/ClickLabel.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

GlowButton::GlowButton(QWidget *parent, const QString &name)
    : QWidget(parent)
{
    setObjectName(name);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void GlowButton::setCaption(const QString &caption)
{
    m_caption = caption;
    setAccessibleName(caption);
    update();
}

void GlowButton::setAppearance(int appearance)
{
    if (m_appearance == appearance)
        return;
    m_appearance = appearance;
    update();
}

void GlowButton::setBackColor(const QColor &c)
{
    m_back = c;
    update();
}

void GlowButton::setForeColor(const QColor &c)
{
    m_fore = c;
    update();
}

void GlowButton::setStoredLook(const Look &look)
{
    m_look = look;
    m_back = oleColor(look.bcol);
    m_fore = oleColor(look.fcol);
    setEnabled(look.enab);
    update();
}

void GlowButton::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool lit = m_appearance != 0 && isEnabled();
    const bool down = m_pressed;

    QColor base = m_back;
    if (lit)
        base = base.lighter(down ? 130 : 160);
    QLinearGradient fill(r.topLeft(), r.bottomLeft());
    fill.setColorAt(0, base.lighter(down ? 100 : 135));
    fill.setColorAt(1, base.darker(down ? 120 : 105));
    QPainterPath shape;
    shape.addRoundedRect(r, 6, 6);
    p.fillPath(shape, fill);

    if (lit) { // the glow: a soft light rim
        p.setPen(QPen(QColor(0x80, 0xFF, 0xFF, 200), 2));
        p.drawPath(shape);
    } else {
        p.setPen(QPen(QColor(0xC0, 0xC0, 0xC0), 1));
        p.drawPath(shape);
    }

    QColor text = isEnabled() ? m_fore : QColor(0x90, 0x90, 0x90);
    p.setPen(text);
    QFont f = font();
    f.setBold(true);
    p.setFont(f);
    p.drawText(rect().translated(down ? 1 : 0, down ? 1 : 0), Qt::AlignCenter, m_caption);
    if (hasFocus()) {
        p.setPen(QPen(text, 1, Qt::DotLine));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(r.adjusted(3, 3, -3, -3), 4, 4);
    }
}

void GlowButton::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    if (event->button() == Qt::LeftButton) {
        m_pressed = true;
        update();
    }
}

void GlowButton::mouseMoveEvent(QMouseEvent *event)
{
    event->accept();
    emit MouseMove(ClickLabel::buttonCode(event->buttons()), ClickLabel::shiftCode(event->modifiers()),
                   twips::fromPixels(event->position().x()), twips::fromPixels(event->position().y()));
}

void GlowButton::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    const bool click = m_pressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_pressed = false;
    update();
    if (click)
        emit Click();
}

void GlowButton::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    emit MouseLeave();
}

void GlowButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        emit Click();
        return;
    }
    QWidget::keyPressEvent(event);
}
