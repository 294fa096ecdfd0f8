#include "shell/DrawingSurface.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace {

QRgb rgb(std::uint32_t ole)
{
    return qRgb(ole & 0xFF, (ole >> 8) & 0xFF, (ole >> 16) & 0xFF);
}

// Pixel positions round to the nearest pixel, as the drawing calls always did.
int pixel(double v)
{
    return static_cast<int>(std::lround(v));
}

} // namespace

void DrawingSurface::setSize(int width, int height)
{
    m_image = QImage(width, height, QImage::Format_RGB32);
    Cls();
}

void DrawingSurface::Cls()
{
    m_image.fill(rgb(BackColor));
    CurrentX = 0;
    CurrentY = 0;
    changed(m_image.rect());
}

void DrawingSurface::PSet(double x, double y, std::uint32_t colour)
{
    const int px = pixel(x), py = pixel(y);
    if (px < 0 || py < 0 || px >= m_image.width() || py >= m_image.height())
        return;
    reinterpret_cast<QRgb *>(m_image.scanLine(py))[px] = rgb(colour);
    changed(QRect(px, py, 1, 1));
}

std::int32_t DrawingSurface::Point(double x, double y) const
{
    const int px = pixel(x), py = pixel(y);
    if (px < 0 || py < 0 || px >= m_image.width() || py >= m_image.height())
        return -1;
    const QRgb v = reinterpret_cast<const QRgb *>(m_image.constScanLine(py))[px];
    return qRed(v) | (qGreen(v) << 8) | (qBlue(v) << 16);
}

void DrawingSurface::Line(double x1, double y1, double x2, double y2)
{
    QPainter p(&m_image);
    p.setPen(QPen(QColor(rgb(ForeColor)), DrawWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF a(pixel(x1), pixel(y1)), b(pixel(x2), pixel(y2));
    p.drawLine(a, b);
    const int grow = DrawWidth / 2 + 1;
    changed(QRectF(a, b).normalized().toAlignedRect().adjusted(-grow, -grow, grow, grow));
    CurrentX = x2;
    CurrentY = y2;
}

void DrawingSurface::Print(const QString &text)
{
    QPainter p(&m_image);
    p.setFont(Font);
    p.setPen(QColor(rgb(ForeColor)));
    const QFontMetricsF metrics(Font);
    const QPointF at(CurrentX, CurrentY);
    // Only the letters are drawn: what lies between them stays as it was.
    p.drawText(at + QPointF(0, metrics.ascent()), text);
    changed(QRectF(at, QSizeF(metrics.horizontalAdvance(text), metrics.height())).toAlignedRect().adjusted(-2, -2, 2, 2));
    CurrentX = 0;
    CurrentY += metrics.height();
}

double DrawingSurface::TextWidth(const QString &text) const
{
    return QFontMetricsF(Font).horizontalAdvance(text);
}

double DrawingSurface::TextHeight(const QString &) const
{
    return QFontMetricsF(Font).height();
}

QRect DrawingSurface::takeChanged()
{
    const QRect r = m_changed & m_image.rect();
    m_changed = QRect();
    return r;
}
