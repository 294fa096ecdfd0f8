#pragma once

#include "platform/InterfaceTable.h"

#include <QByteArray>

#include <cstring>
#include <functional>

// Answers from a table image the test builds (count + 860-byte rows), or
// NotSupported when told so.
class ScriptedInterfaceTable : public InterfaceTable {
public:
    std::uint32_t GetIfTable(std::uint8_t *buffer, std::uint32_t *size, bool) override
    {
        ++calls;
        if (onCall)
            onCall(*this);
        if (!supported)
            return NotSupported;
        const auto needed = static_cast<std::uint32_t>(image.size());
        const bool fits = buffer && *size >= needed;
        if (fits)
            std::memcpy(buffer, image.constData(), needed);
        *size = needed;
        return fits ? NoError : InsufficientBuffer;
    }

    QByteArray image;
    bool supported = true;
    int calls = 0;
    // Runs at the start of every call, before the answer is made: lets a
    // test change the table between the size call and the fill call.
    std::function<void(ScriptedInterfaceTable &)> onCall;
};
