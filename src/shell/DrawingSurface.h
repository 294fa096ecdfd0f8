#pragma once

#include <QFont>
#include <QImage>
#include <QRect>
#include <QString>

#include <cstdint>

// A window's retained drawing, in pixels: what is drawn stays until it is
// drawn over, and every pixel can be read back. Colours are 0x00BBGGRR.
class DrawingSurface {
public:
    void setSize(int width, int height); // a new surface in BackColor
    int ScaleWidth() const { return m_image.width(); }
    int ScaleHeight() const { return m_image.height(); }

    std::uint32_t BackColor = 0;
    std::uint32_t ForeColor = 0;
    int DrawWidth = 1;
    double CurrentX = 0;
    double CurrentY = 0;
    QFont Font;

    void Cls(); // all BackColor, the pen back to the corner
    void PSet(double x, double y, std::uint32_t colour);
    // The colour at (x, y); -1 outside the surface, so nothing beyond the
    // edge ever reads as black.
    std::int32_t Point(double x, double y) const;
    void Line(double x1, double y1, double x2, double y2); // ForeColor, DrawWidth
    void Print(const QString &text); // at the pen, in ForeColor; the pen goes to the next line
    double TextWidth(const QString &text) const;
    double TextHeight(const QString &text) const;

    const QImage &image() const { return m_image; }
    // What changed since the last call, for the next repaint.
    QRect takeChanged();

private:
    void changed(const QRect &r) { m_changed |= r; }

    QImage m_image;
    QRect m_changed;
};
