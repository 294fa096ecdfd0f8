#pragma once

#include <QChar>

#include <array>

namespace music {

namespace codepage {
// 0x80..0x9F; the rest of the page is Latin-1. Zero marks a byte with no
// Windows-1252 character.
inline constexpr std::array<char16_t, 32> HighControls = {
    0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0, 0x017D, 0,
    0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178,
};
} // namespace codepage

// The single-byte code page of the tag text, in one place: Windows-1252,
// with the five bytes that code page leaves undefined (0x81, 0x8D, 0x8F,
// 0x90, 0x9D) taken as Latin-1. One byte is always one character and back,
// so the fixed field widths hold on both sides. Inline, since a record
// decodes 124 of them.
inline char16_t fromCodePage(unsigned char byte)
{
    if (byte >= 0x80 && byte <= 0x9F && codepage::HighControls[byte - 0x80] != 0)
        return codepage::HighControls[byte - 0x80];
    return byte;
}

// A character the code page cannot hold is written as '?'.
unsigned char toCodePage(char16_t ch);

} // namespace music
