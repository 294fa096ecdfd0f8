#include "shell/DrawingSurface.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

int DrawingSurface::pixel(double v)
{
    return static_cast<int>(std::lround(v));
}

void DrawingSurface::setSize(int width, int height)
{
    m_width = std::max(width, 0);
    m_height = std::max(height, 0);
    m_pixels.assign(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height), 0);
    m_image = QImage(reinterpret_cast<uchar *>(m_pixels.data()), m_width, m_height, m_width * 4, QImage::Format_RGB32);
    Cls();
}

void DrawingSurface::Cls()
{
    std::fill(m_pixels.begin(), m_pixels.end(), rgb(BackColor));
    CurrentX = 0;
    CurrentY = 0;
    changed(QRect(0, 0, m_width, m_height));
}

void DrawingSurface::Line(double x1, double y1, double x2, double y2)
{
    QPainter p(&m_image);
    p.setPen(QPen(QColor(QRgb(rgb(ForeColor))), DrawWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
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
    p.setPen(QColor(QRgb(rgb(ForeColor))));
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
    QRect r;
    if (m_changedLeft <= m_changedRight && m_changedTop <= m_changedBottom)
        r = QRect(QPoint(m_changedLeft, m_changedTop), QPoint(m_changedRight, m_changedBottom)) & m_image.rect();
    m_changedLeft = m_changedTop = INT32_MAX;
    m_changedRight = m_changedBottom = INT32_MIN;
    return r;
}
