#pragma once

#include <QChar>

namespace music {

// The single-byte code page of the tag text, in one place: Windows-1252,
// with the five bytes that code page leaves undefined (0x81, 0x8D, 0x8F,
// 0x90, 0x9D) taken as Latin-1. One byte is always one character and back,
// so the fixed field widths hold on both sides.
char16_t fromCodePage(unsigned char byte);

// A character the code page cannot hold is written as '?'.
unsigned char toCodePage(char16_t ch);

} // namespace music
