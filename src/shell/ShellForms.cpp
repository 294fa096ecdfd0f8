#include "shell/ShellForms.h"

#include "music/Form1.h"
#include "netmon/frmInterfaces.h"
#include "panel/Panel.h"
#include "platform/Forms.h"
#include "shell/Form2.h"
#include "shell/Mainmap.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"

void defineForms(Platform &platform)
{
    Forms &forms = platform.forms;
    forms.define(QStringLiteral("frmSplash"), [&platform] { return std::make_unique<frmSplash>(platform); });
    forms.define(QStringLiteral("Form2"), [&platform] { return std::make_unique<Form2>(platform); });
    forms.define(QStringLiteral("Mainmap"), [&platform] { return std::make_unique<Mainmap>(platform); });
    forms.define(QStringLiteral("Form1"), [&platform] { return std::make_unique<Form1>(platform); });
    forms.define(QStringLiteral("frmMain"), [&platform] { return std::make_unique<frmMain>(platform); });
    forms.define(QStringLiteral("frmInterfaces"), [&platform] { return std::make_unique<frmInterfaces>(platform); });
    int count = 0;
    const PanelTraits *panels = allPanelTraits(&count);
    for (int i = 0; i < count; ++i) {
        const PanelTraits &traits = panels[i];
        forms.define(QLatin1String(traits.name), [&platform, &traits] { return std::make_unique<Panel>(platform, traits); });
    }
}
