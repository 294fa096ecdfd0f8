#pragma once

#include "platform/InterfaceTable.h"

// A system without an interface table: every call answers NotSupported.
class NoInterfaceTable : public InterfaceTable {
public:
    std::uint32_t GetIfTable(std::uint8_t *, std::uint32_t *, bool) override { return NotSupported; }
};
