#include "panel/PanelTraits.h"

#include "basic/RuntimeError.h"

namespace {

// Afm and kanna have no Unload: with their close command cut, only the
// panel's own exit and the map's EXIT leave them. Malfm and kanna carry the
// narrower list of their shared catalogue.
const PanelTraits kPanels[] = {
    // name    caption       station cut    unload  wide   list  Label9          fm               ma     L10    tray   right  copy   anim   stop1  sts2   min10  thank  fixed
    {"Tafm",  "FM",          true,  true,  true,  18990, 7695, {480, 360}, {480, 1200}, true,  true,  true,  false, false, true,  false, false, true,  true,  true},
    {"Afm",   "FM",          true,  true,  false, 17115, 7695, {360, 480}, {360, 1200}, false, false, false, false, false, true,  true,  true,  false, false, false},
    {"Malfm", "FM",          true,  true,  true,  17085, 4815, {480, 360}, {480, 1200}, false, false, true,  true,  true,  false, false, true,  false, false, false},
    {"kanna", "FM",          true,  true,  false, 17085, 4815, {480, 360}, {480, 1200}, false, true,  false, false, true,  true,  false, true,  false, false, false},
    {"Mp3",   "Mp3 Player",  false, false, true,  17010, 7695, {480, 360}, {480, 1200}, false, true,  true,  false, false, true,  false, false, true,  false, false},
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
