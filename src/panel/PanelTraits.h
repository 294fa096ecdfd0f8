#pragma once

#include <QPoint>
#include <QString>

// Everything in which the five panels differ lives in this one table, not in
// copies of the panel.
struct PanelTraits {
    const char *name;         // form name: Tafm, Afm, Malfm, kanna, Mp3
    const char *caption;      // window caption as the form starts
    bool isStation;           // station grid and stream engine, rather than Mp3's list and local engine
    bool cutsSystemMenu;      // the close command is cut at Load, so the close box is dead
    bool hasUnload;           // an Unload handler that ends the program
    int wideWidth;            // where widening stops, twips
    int unfoldedListHeight;   // height of the list area once unfolded, twips
    QPoint label9At;          // the spot that leads to the other player, twips
    QPoint fmAt;              // the spot that leads back to the map, twips
    bool hasMa;               // a second map spot over fm
    bool hasLabel10;          // the minimise spot
    bool hasTrayMenu;         // goes to the tray with the Systray menu
    bool trayRightButton;     // the right button on the tray icon opens the menu too
    bool copiesTafmIcon;      // takes Tafm's window icon at Load (and so loads Tafm)
    bool animatesIcon;        // the swinging window icon
    bool label9StopsFirst;    // leaving for Mp3: stop and hide before showing Mp3
    bool hasSts2Handler;      // sts2 would hand over to stss, had anything enabled it
    bool label10Minimises;    // Label10 is the minimise spot (in kanna it is a notice)
    bool thanksFirst;         // Donate thanks in a box before the page opens
    bool fixedIcon;           // the window icon is the fixed mast picture, though the board swings
};

const PanelTraits &panelTraits(const QString &name); // unknown names raise error 5
const PanelTraits *allPanelTraits(int *count);
