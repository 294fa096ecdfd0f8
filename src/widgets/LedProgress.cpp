#include "widgets/LedProgress.h"

#include "platform/OleColor.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>

using basic::Integer;
using basic::Long;

namespace {

// The control's background, so also the colour of the cuts: the text of an
// active title bar.
constexpr std::uint32_t Background = 0x80000009;
const QColor Outline(190, 190, 190);

struct Zone {
    QColor body, stripe;
};
const Zone Green{QColor(0, 255, 0), QColor(120, 255, 120)};
const Zone Yellow{QColor(255, 255, 0), QColor(255, 255, 130)};
const Zone Red{QColor(255, 0, 0), QColor(255, 120, 120)};

// Nearest pixel, halves to even, as a 32-bit integer.
Long R(float a)
{
    return basic::CLng(static_cast<double>(a));
}

// A percentage of a length: a 32-bit product, a 32-bit float quotient.
float share(Integer percent, Long length)
{
    return static_cast<float>(basic::mul<Long>(percent, length)) / 100.0f;
}

// A rectangle given by its corners, right and bottom outside it. One turned
// inside out covers nothing.
void fill(QPainter &p, Long left, Long top, Long right, Long bottom, const QColor &colour)
{
    if (right > left && bottom > top)
        p.fillRect(QRect(left, top, right - left, bottom - top), colour);
}

} // namespace

LedProgress::LedProgress(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void LedProgress::setZoneYellow(Integer percent)
{
    m_zoneYellow = percent;
    emit PropertyChanged(QStringLiteral("ZoneYellow"));
    draw();
}

void LedProgress::setZoneRed(Integer percent)
{
    m_zoneRed = percent;
    emit PropertyChanged(QStringLiteral("ZoneRed"));
    draw();
}

void LedProgress::setOrientation(std::int32_t orientation)
{
    m_orientation = orientation;
    emit PropertyChanged(QStringLiteral("Orientation"));
    // Every write turns the control, even one that repeats the value.
    resize(height(), width());
    if (orientation == 1)
        makeRotatedFont();
    draw();
}

void LedProgress::setShowText(bool show)
{
    m_showText = show;
    emit PropertyChanged(QStringLiteral("ShowText"));
    draw();
}

void LedProgress::setValue(Integer percent)
{
    const bool same = percent == m_value && !m_surface.isNull();
    m_value = percent;
    emit PropertyChanged(QStringLiteral("Value"));
    // The host sets the value at every tick; an unchanged one is already
    // on the surface, so only a change costs a drawing.
    if (!same)
        draw();
}

void LedProgress::ReadProperties(const PropertyBag &bag)
{
    m_orientation = bag.ReadProperty(QStringLiteral("Orientation"), 0).toInt();
    m_showText = bag.ReadProperty(QStringLiteral("ShowText"), false).toBool();
    m_value = basic::narrow<Integer>(bag.ReadProperty(QStringLiteral("Value"), 0).toInt());
    m_zoneYellow = basic::narrow<Integer>(bag.ReadProperty(QStringLiteral("ZoneYellow"), 70).toInt());
    m_zoneRed = basic::narrow<Integer>(bag.ReadProperty(QStringLiteral("ZoneRed"), 90).toInt());
    // Stored already turned: the font, and no swap.
    if (m_orientation == 1)
        makeRotatedFont();
    draw();
}

void LedProgress::WriteProperties(PropertyBag &bag) const
{
    bag.WriteProperty(QStringLiteral("Orientation"), m_orientation, 0);
    bag.WriteProperty(QStringLiteral("ShowText"), m_showText, false);
    bag.WriteProperty(QStringLiteral("Value"), m_value, 0);
    bag.WriteProperty(QStringLiteral("ZoneYellow"), m_zoneYellow, 70);
    bag.WriteProperty(QStringLiteral("ZoneRed"), m_zoneRed, 90);
}

void LedProgress::makeRotatedFont()
{
    QFont turned(font());
    turned.setFamily(QString());
    turned.setPixelSize(11);
    turned.setWeight(QFont::Normal);
    m_rotatedFont = turned;
}

void LedProgress::resizeEvent(QResizeEvent *)
{
    QPainterPath rounded;
    rounded.addRoundedRect(QRectF(0, 0, width() + 1, height() + 1), 2.5, 2.5);
    setMask(QRegion(rounded.toFillPolygon().toPolygon()));
    draw();
}

void LedProgress::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.drawImage(0, 0, m_surface);
}

void LedProgress::draw()
{
    const int w = width();
    const int h = height();
    if (w <= 0 || h <= 0)
        return;
    QImage next(w, h, QImage::Format_RGB32);
    next.fill(oleColor(Background));
    {
        QPainter p(&next);
        if (m_orientation == 0)
            horizontalBar(p, w, h);
        else
            verticalBar(p, w, h);
        p.setPen(Outline);
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(QRect(0, 0, w - 1, h - 1), 3, 3);
    }
    m_surface = next;
    ++m_drawings;
    update();
}

void LedProgress::horizontalBar(QPainter &p, int w, int h)
{
    const float s = static_cast<float>(h) / 2.5f;
    const float f = share(m_value, w);
    // From the tip backwards: yellow over green, red over yellow.
    fill(p, 0, 0, R(f), h, Green.body);
    fill(p, 0, 2, R(f), R(s), Green.stripe);
    if (m_value > m_zoneYellow) {
        const float y = f - share(basic::sub<Integer>(m_value, m_zoneYellow), w);
        fill(p, R(y), 0, R(f), h, Yellow.body);
        fill(p, R(y), 2, R(f), R(s), Yellow.stripe);
    }
    if (m_value > m_zoneRed) {
        const float r = f - share(basic::sub<Integer>(m_value, m_zoneRed), w);
        fill(p, R(r), 0, R(f), h, Red.body);
        fill(p, R(r), 2, R(f), R(s), Red.stripe);
    }
    const Long end = R(f);
    for (Long i = 1; i <= end; i += 10)
        p.fillRect(QRect(i, 1, 1, h), oleColor(Background)); // (i, h) up to, not onto, (i, 0)
    if (m_showText) {
        p.setPen(Qt::black);
        p.setFont(font());
        p.drawText(QRect(0, 0, w, h), Qt::AlignCenter | Qt::TextSingleLine, QString::number(m_value) + QStringLiteral(" %"));
    }
}

void LedProgress::verticalBar(QPainter &p, int w, int h)
{
    const float s = static_cast<float>(w) / 2.5f;
    const float f = share(m_value, h);
    const Long t = R(static_cast<float>(h) - f);
    fill(p, 0, t, w, h, Green.body);
    fill(p, 2, t, R(s), h, Green.stripe);
    if (m_value > m_zoneYellow) {
        const float y = f - share(basic::sub<Integer>(m_value, m_zoneYellow), h);
        const Long b = R(static_cast<float>(h) - y);
        fill(p, 0, t, w, b, Yellow.body);
        fill(p, 2, t, R(s), b, Yellow.stripe);
    }
    if (m_value > m_zoneRed) {
        const float r = f - share(basic::sub<Integer>(m_value, m_zoneRed), h);
        const Long b = R(static_cast<float>(h) - r);
        fill(p, 0, t, w, b, Red.body);
        fill(p, 2, t, R(s), b, Red.stripe);
    }
    const Long end = R(f);
    for (Long i = 1; i <= end; i += 10)
        p.fillRect(QRect(0, h - i, w, 1), oleColor(Background));
    if (m_showText) {
        // Only orientation 1 has a turned font; any other vertical value
        // writes across with the control's own.
        const QFont used = m_rotatedFont.value_or(font());
        const QString text = QString::number(m_value) + QStringLiteral(" %");
        const QFontMetrics metrics(used);
        const int right = metrics.horizontalAdvance(text);
        const int bottom = metrics.height();
        const Long left = R(static_cast<float>(w) / 2.0f - static_cast<float>(bottom) / 2.0f);
        const Long top = R(static_cast<float>(right) / 2.0f + static_cast<float>(h) / 2.0f);
        p.setPen(Qt::black);
        p.setFont(used);
        p.save();
        p.translate(left, top);
        if (m_rotatedFont)
            p.rotate(-90); // reading upwards from (left, top)
        p.drawText(QRect(0, 0, right, bottom), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, text);
        p.restore();
    }
}
