#pragma once

#include "platform/InterfaceTable.h"

#include <QByteArray>

#include <functional>

// Answers from a table image the test builds (count + 860-byte rows), or
// NotSupported when told so.
class ScriptedInterfaceTable : public InterfaceTable {
public:
    std::uint32_t GetIfTable(std::uint8_t *buffer, std::uint32_t *size, bool sorted) override;

    QByteArray image;
    bool supported = true;
    int calls = 0;
    // Runs at the start of every call, before the answer is made: lets a
    // test change the table between the size call and the fill call.
    std::function<void(ScriptedInterfaceTable &)> onCall;
};
