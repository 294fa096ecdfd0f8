#pragma once

#include <QString>

// Everything in which the five panels differ lives in this one table, not in
// copies of the panel.
struct PanelTraits {
    const char *name;    // form name: Tafm, Afm, Malfm, kanna, Mp3
    const char *caption; // window caption as the form starts
    bool isStation;      // a station panel (grid, stream engine) rather than Mp3
    bool cutsSystemMenu; // the close command is removed at Load, so the close box is dead
    bool hasUnload;      // an Unload handler that ends the program
};

const PanelTraits &panelTraits(const QString &name); // unknown names raise error 5
const PanelTraits *allPanelTraits(int *count);
