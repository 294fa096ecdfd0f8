#include "widgets/ClickLabel.h"

#include "platform/Twips.h"

#include <QMouseEvent>

ClickLabel::ClickLabel(QWidget *parent, const QString &name)
    : QLabel(parent)
{
    setObjectName(name);
    setMouseTracking(true);
}

int ClickLabel::buttonCode(Qt::MouseButtons buttons)
{
    int code = 0;
    if (buttons & Qt::LeftButton)
        code |= 1;
    if (buttons & Qt::RightButton)
        code |= 2;
    if (buttons & Qt::MiddleButton)
        code |= 4;
    return code;
}

int ClickLabel::shiftCode(Qt::KeyboardModifiers modifiers)
{
    int code = 0;
    if (modifiers & Qt::ShiftModifier)
        code |= 1;
    if (modifiers & Qt::ControlModifier)
        code |= 2;
    if (modifiers & Qt::AltModifier)
        code |= 4;
    return code;
}

void ClickLabel::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    m_pressed = event->button() == Qt::LeftButton;
    emit MouseDown(buttonCode(event->button()), shiftCode(event->modifiers()), twips::fromPixels(event->position().x()),
                   twips::fromPixels(event->position().y()));
}

void ClickLabel::mouseMoveEvent(QMouseEvent *event)
{
    event->accept();
    emit MouseMove(buttonCode(event->buttons()), shiftCode(event->modifiers()), twips::fromPixels(event->position().x()),
                   twips::fromPixels(event->position().y()));
}

void ClickLabel::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    const bool click = m_pressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_pressed = false;
    emit MouseUp(buttonCode(event->button()), shiftCode(event->modifiers()), twips::fromPixels(event->position().x()),
                 twips::fromPixels(event->position().y()));
    if (click)
        emit Click();
}
