#pragma once

#include <QColor>
#include <QPixmap>
#include <QRect>

// The traffic pictures: two small computers joined by a cable, the upper
// left one and the lower right one each with a screen. Index 1 both screens
// dark, 2 upper left lit (received), 3 lower right lit (sent), 4 both lit.
// Drawn in the 16-colour palette on a transparent ground, at any multiple of
// 16 pixels (the window uses 32, the tray 16).
namespace activity {

QPixmap picture(int index, int size);

// Where the screens are, for anyone who wants to look at them.
QRect upperLeftScreen(int size);
QRect lowerRightScreen(int size);

inline const QColor DarkScreen{0x00, 0x80, 0x80}; // teal
inline const QColor LitScreen{0x00, 0xFF, 0xFF};  // aqua

} // namespace activity
