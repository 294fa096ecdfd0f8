#include "music/CodePage.h"

namespace music {

unsigned char toCodePage(char16_t ch)
{
    using codepage::HighControls;
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
