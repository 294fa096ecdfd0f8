#pragma once

#include <QFont>
#include <QImage>
#include <QRect>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <vector>

// A window's retained drawing, in pixels: what is drawn stays until it is
// drawn over, and every pixel can be read back. Colours are 0x00BBGGRR.
// The pixels are our own buffer, which image() shows without a copy.
class DrawingSurface {
public:
    void setSize(int width, int height); // a new surface in BackColor
    int ScaleWidth() const { return m_width; }
    int ScaleHeight() const { return m_height; }

    std::uint32_t BackColor = 0;
    std::uint32_t ForeColor = 0;
    int DrawWidth = 1;
    double CurrentX = 0;
    double CurrentY = 0;
    QFont Font;

    void Cls(); // all BackColor, the pen back to the corner

    // Pixel positions round to the nearest pixel; whole ones take the
    // short way, which the snow's thousand reads and writes a frame need.
    void PSet(int x, int y, std::uint32_t colour)
    {
        if (inside(x, y)) {
            m_pixels[index(x, y)] = rgb(colour);
            changed(QRect(x, y, 1, 1));
        }
    }
    void PSet(double x, double y, std::uint32_t colour) { PSet(pixel(x), pixel(y), colour); }
    // The colour at (x, y); -1 outside the surface, so nothing beyond the
    // edge ever reads as black.
    std::int32_t Point(int x, int y) const
    {
        if (!inside(x, y))
            return -1;
        const std::uint32_t v = m_pixels[index(x, y)];
        return static_cast<std::int32_t>(((v >> 16) & 0xFF) | (v & 0xFF00) | ((v & 0xFF) << 16));
    }
    std::int32_t Point(double x, double y) const { return Point(pixel(x), pixel(y)); }

    void Line(double x1, double y1, double x2, double y2); // ForeColor, DrawWidth
    void Print(const QString &text); // at the pen, in ForeColor; the pen goes to the next line
    double TextWidth(const QString &text) const;
    double TextHeight(const QString &text) const;

    const QImage &image() const { return m_image; }
    // What changed since the last call, for the next repaint.
    QRect takeChanged();

private:
    static int pixel(double v);
    static std::uint32_t rgb(std::uint32_t ole)
    {
        return 0xFF000000u | ((ole & 0xFF) << 16) | (ole & 0xFF00) | ((ole >> 16) & 0xFF);
    }
    bool inside(int x, int y) const
    {
        return static_cast<unsigned>(x) < static_cast<unsigned>(m_width)
            && static_cast<unsigned>(y) < static_cast<unsigned>(m_height);
    }
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
    }
    void changed(const QRect &r)
    {
        m_changedLeft = std::min(m_changedLeft, r.left());
        m_changedTop = std::min(m_changedTop, r.top());
        m_changedRight = std::max(m_changedRight, r.right());
        m_changedBottom = std::max(m_changedBottom, r.bottom());
    }

    int m_width = 0;
    int m_height = 0;
    std::vector<std::uint32_t> m_pixels;
    QImage m_image; // over m_pixels
    int m_changedLeft = INT32_MAX, m_changedTop = INT32_MAX, m_changedRight = INT32_MIN, m_changedBottom = INT32_MIN;
};
