#pragma once

#include <cstdint>

// The operating system's table of network interfaces, in the classic
// GetIfTable layout: a 32-bit row count, then packed 860-byte MIB_IFROW rows,
// little-endian.
class InterfaceTable {
public:
    static constexpr std::uint32_t NoError = 0;
    static constexpr std::uint32_t NotSupported = 50;
    static constexpr std::uint32_t InsufficientBuffer = 122;
    static constexpr std::uint32_t RowSize = 860;

    virtual ~InterfaceTable() = default;

    // With a null buffer, or one smaller than *size says is needed, stores
    // the needed size in *size and answers InsufficientBuffer. Otherwise
    // fills the buffer and answers NoError. NotSupported when there is no
    // table at all. `sorted` asks for rows in index order.
    virtual std::uint32_t GetIfTable(std::uint8_t *buffer, std::uint32_t *size, bool sorted) = 0;
};
