#include "platform/OleColor.h"

#include <QApplication>
#include <QPalette>

QColor oleColor(std::uint32_t value)
{
    if (value & 0x80000000u) {
        const QPalette pal = QApplication::palette();
        switch (value & 0xFFu) {
        case 0x05: return pal.color(QPalette::Base);            // window background
        case 0x08: return pal.color(QPalette::Text);            // window text
        case 0x09: return pal.color(QPalette::HighlightedText); // text of an active title bar
        case 0x0D: return pal.color(QPalette::Highlight);
        case 0x0E: return pal.color(QPalette::HighlightedText);
        case 0x0F: return pal.color(QPalette::Button);          // button face
        case 0x10: return pal.color(QPalette::Dark);            // button shadow
        case 0x12: return pal.color(QPalette::ButtonText);
        case 0x14: return pal.color(QPalette::Light);           // button highlight
        default: return pal.color(QPalette::Window);
        }
    }
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF);
}

std::uint32_t toOleColor(const QColor &color)
{
    return static_cast<std::uint32_t>(color.red()) | (static_cast<std::uint32_t>(color.green()) << 8)
        | (static_cast<std::uint32_t>(color.blue()) << 16);
}
