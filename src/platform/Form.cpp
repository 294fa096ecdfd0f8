#include "platform/Form.h"

#include <QCoreApplication>
#include <QKeyEvent>

Form::Form(Platform &platform, const QString &name, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_platform(platform)
{
    setObjectName(name);
}

void Form::Show()
{
    show();
    raise();
    activateWindow();
}

void Form::setKeyPreview(bool on)
{
    if (on == m_keyPreview)
        return;
    m_keyPreview = on;
    if (on)
        QCoreApplication::instance()->installEventFilter(this);
    else
        QCoreApplication::instance()->removeEventFilter(this);
}

bool Form::eventFilter(QObject *watched, QEvent *event)
{
    if (m_keyPreview && (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease)
        && watched->isWidgetType() && static_cast<QWidget *>(watched)->window() == this) {
        return keyPreview(static_cast<QKeyEvent *>(event));
    }
    return QWidget::eventFilter(watched, event);
}
