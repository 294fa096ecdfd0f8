#include "music/CodePage.h"

#include <array>

namespace music {

namespace {

// 0x80..0x9F; the rest of the page is Latin-1. Zero marks a byte with no
// Windows-1252 character.
constexpr std::array<char16_t, 32> HighControls = {
    0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0, 0x017D, 0,
    0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178,
};

} // namespace

char16_t fromCodePage(unsigned char byte)
{
    if (byte >= 0x80 && byte <= 0x9F && HighControls[byte - 0x80] != 0)
        return HighControls[byte - 0x80];
    return byte;
}

unsigned char toCodePage(char16_t ch)
{
    if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF))
        return static_cast<unsigned char>(ch);
    for (unsigned i = 0; i < HighControls.size(); ++i) {
        const char16_t mapped = HighControls[i] != 0 ? HighControls[i] : static_cast<char16_t>(0x80 + i);
        if (mapped == ch)
            return static_cast<unsigned char>(0x80 + i);
    }
    return '?';
}

} // namespace music
