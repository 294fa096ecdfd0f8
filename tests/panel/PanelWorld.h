#pragma once

// The forms on the scripted platform: the fixture of the panel, catalogue and desktop tests.
#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"

#include <QApplication>
#include <QMouseEvent>

struct PanelWorld {
    ScriptedPlatform sp;
    PanelWorld() { defineForms(sp.platform); }

    Panel *open(const QString &name)
    {
        sp.forms.Show(name);
        return sp.forms.get<Panel>(name);
    }
    static ScriptedStationEngine *engine(Panel *p) { return static_cast<ScriptedStationEngine *>(p->player()); }
    static ScriptedLocalEngine *local(Panel *p) { return static_cast<ScriptedLocalEngine *>(p->Player()); }
    static ScriptedAnimation *light(Panel *p) { return static_cast<ScriptedAnimation *>(p->pstate()); }
    void ticks(int n) { sp.clock.advance(16 * n); } // of the shared 16 ms clock
    QStringList prompts() const
    {
        QStringList all;
        for (const ShownBox &b : sp.dialogs.shown)
            all << b.prompt;
        return all;
    }
    // The motion timers running and the marks showing, by name.
    static QString state(Panel *p)
    {
        QStringList on;
        for (QObject *o : std::initializer_list<QObject *>{p->hei1, p->hei2, p->Timer2, p->Timer3, p->scr1, p->scr2, p->pls, p->Label6, p->Label7})
            if (auto *t = qobject_cast<Timer *>(o); t ? t->Enabled() : !static_cast<QWidget *>(o)->isHidden())
                on << o->objectName();
        return on.join(u' ');
    }
    static void mouse(QWidget *w, QEvent::Type type = QEvent::MouseMove)
    {
        QMouseEvent e(type, QPointF(2, 2), w->mapToGlobal(QPointF(2, 2)), type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(w, &e);
    }
    static void click(QWidget *w) { mouse(w, QEvent::MouseButtonPress), mouse(w, QEvent::MouseButtonRelease); }
};
