#include "netmon/ActivityPictures.h"

#include <QPainter>

namespace activity {

namespace {

// Drawn on a 16-unit grid; one unit is size/16 pixels.
constexpr QRect UpperMonitor(0, 0, 8, 6);
constexpr QRect LowerMonitor(8, 8, 8, 6);

QRect scaled(const QRect &units, int unit)
{
    return QRect(units.x() * unit, units.y() * unit, units.width() * unit, units.height() * unit);
}

QRect screenOf(const QRect &monitor)
{
    return monitor.adjusted(1, 1, -1, -1);
}

const QColor Black(0x00, 0x00, 0x00);
const QColor Grey(0x80, 0x80, 0x80);
const QColor Silver(0xC0, 0xC0, 0xC0);
const QColor White(0xFF, 0xFF, 0xFF);

void computer(QPainter &p, const QRect &monitor, bool lit, int unit)
{
    // Case, with a light upper-left and a shaded lower-right edge.
    const QRect box = scaled(monitor, unit);
    p.fillRect(box, Black);
    p.fillRect(box.adjusted(0, 0, -1, -1), Silver);
    if (unit > 1) {
        p.fillRect(QRect(box.left(), box.top(), box.width() - 1, 1), White);
        p.fillRect(QRect(box.left(), box.top(), 1, box.height() - 1), White);
        p.fillRect(QRect(box.left() + 1, box.bottom() - 1, box.width() - 2, 1), Grey);
        p.fillRect(QRect(box.right() - 1, box.top() + 1, 1, box.height() - 2), Grey);
    }
    const QRect screen = scaled(screenOf(monitor), unit);
    p.fillRect(screen, lit ? LitScreen : DarkScreen);
    if (lit && unit > 1) // a glint in the upper corner of a lit screen
        p.fillRect(QRect(screen.left() + 1, screen.top() + 1, unit, 1), White);

    // Stand and keyboard under the monitor.
    const int mid = monitor.left() + monitor.width() / 2;
    p.fillRect(scaled(QRect(mid - 1, monitor.bottom() + 1, 2, 1), unit), Grey);
    const QRect keyboard = scaled(QRect(monitor.left() + 1, monitor.bottom() + 2, monitor.width() - 2, 1), unit);
    p.fillRect(keyboard, Silver);
    if (unit > 1)
        p.fillRect(QRect(keyboard.left(), keyboard.bottom(), keyboard.width(), 1), Black);
}

} // namespace

QPixmap picture(int index, int size)
{
    const int unit = size / 16 > 0 ? size / 16 : 1;
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, false);

    // The cable: down from the upper computer's keyboard, across to the
    // lower monitor's left side.
    p.fillRect(scaled(QRect(3, 8, 1, 4), unit), Black);
    p.fillRect(scaled(QRect(3, 11, 5, 1), unit), Black);

    computer(p, UpperMonitor, index == 2 || index == 4, unit);
    computer(p, LowerMonitor, index == 3 || index == 4, unit);
    p.end();
    return QPixmap::fromImage(image);
}

QRect upperLeftScreen(int size)
{
    return scaled(screenOf(UpperMonitor), size / 16 > 0 ? size / 16 : 1);
}

QRect lowerRightScreen(int size)
{
    return scaled(screenOf(LowerMonitor), size / 16 > 0 ? size / 16 : 1);
}

} // namespace activity
