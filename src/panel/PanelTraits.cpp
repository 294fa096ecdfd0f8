#include "panel/PanelTraits.h"

#include "basic/RuntimeError.h"

namespace {

// Afm and kanna have no Unload: with their close command cut, only the
// panel's own exit and the map's EXIT leave them.
const PanelTraits kPanels[] = {
    {"Tafm", "FM", true, true, true},
    {"Afm", "FM", true, true, false},
    {"Malfm", "FM", true, true, true},
    {"kanna", "FM", true, true, false},
    {"Mp3", "Mp3 Player", false, false, true},
};

} // namespace

const PanelTraits &panelTraits(const QString &name)
{
    for (const PanelTraits &t : kPanels)
        if (name == QLatin1String(t.name))
            return t;
    throw basic::RuntimeError(basic::InvalidProcedureCall, QStringLiteral("No panel named ") + name);
}

const PanelTraits *allPanelTraits(int *count)
{
    *count = static_cast<int>(std::size(kPanels));
    return kPanels;
}
