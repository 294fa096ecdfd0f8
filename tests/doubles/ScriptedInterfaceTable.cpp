#include "doubles/ScriptedInterfaceTable.h"

#include <cstring>

std::uint32_t ScriptedInterfaceTable::GetIfTable(std::uint8_t *buffer, std::uint32_t *size, bool)
{
    ++calls;
    if (onCall)
        onCall(*this);
    if (!supported)
        return NotSupported;
    const auto needed = static_cast<std::uint32_t>(image.size());
    if (!buffer || *size < needed) {
        *size = needed;
        return InsufficientBuffer;
    }
    std::memcpy(buffer, image.constData(), needed);
    *size = needed;
    return NoError;
}
