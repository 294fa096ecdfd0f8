#pragma once

#include <QColor>
#include <cstdint>

// Colours are held as 0x00BBGGRR; a value with the top bit set names a system
// colour (0x8000000F the face of a button, 0x80000012 its text).
QColor oleColor(std::uint32_t value);
std::uint32_t toOleColor(const QColor &color);
