#pragma once

#include <QRect>
#include <QWidget>
#include <cmath>

// Forms are laid out in twips, 15 to a pixel; conversion happens here, at
// the edge, and Qt scales pixels for high-DPI screens.
namespace twips {

constexpr int PerPixel = 15;

inline int toPixels(double tw) { return static_cast<int>(std::lround(tw / PerPixel)); }
inline double fromPixels(double px) { return px * PerPixel; }

inline QRect rect(double left, double top, double width, double height)
{
    return QRect(toPixels(left), toPixels(top), toPixels(width), toPixels(height));
}

inline void place(QWidget *w, double left, double top, double width, double height)
{
    w->setGeometry(rect(left, top, width, height));
}

} // namespace twips
