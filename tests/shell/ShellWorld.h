#pragma once

// The shell's forms on the scripted platform: the splash, map and About tests' fixture.
#include "doubles/ScriptedPlatform.h"
#include "platform/Form.h"
#include "shell/ShellForms.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

struct ShellWorld {
    ScriptedPlatform sp;
    ShellWorld() { defineForms(sp.platform); }
    bool shown(const QString &form) { return sp.forms.isLoaded(form) && sp.forms.form(form)->isVisible(); }
    template <typename F> F *show(const QString &form) { return sp.forms.Show(form), sp.forms.get<F>(form); }
};

// A press or release of `button`, or a move with `button` held (or none).
inline void mouse(QWidget *w, QEvent::Type type, QPoint at, Qt::MouseButton button = Qt::LeftButton)
{
    QMouseEvent e(type, QPointF(at), w->mapToGlobal(QPointF(at)), type == QEvent::MouseMove ? Qt::NoButton : button,
                  type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button), Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}
