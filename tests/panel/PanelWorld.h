#pragma once

// The program's forms on the scripted platform, panels opened as a user
// opens them: the one fixture of the panel, catalogue and chrome tests.

#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "shell/ShellForms.h"

struct PanelWorld {
    ScriptedPlatform sp;
    PanelWorld() { defineForms(sp.platform); }

    Panel *open(const QString &name)
    {
        sp.forms.Show(name);
        return sp.forms.get<Panel>(name);
    }
    static ScriptedStationEngine *engine(Panel *p) { return static_cast<ScriptedStationEngine *>(p->player()); }
    static ScriptedAnimation *light(Panel *p) { return static_cast<ScriptedAnimation *>(p->pstate()); }
    // Ticks of the shared 16 ms clock.
    void ticks(int n) { sp.clock.advance(16 * n); }
};
