#pragma once

#include "platform/InterfaceTable.h"

#include <cstddef>
#include <cstdint>

// One row of the table as the system lays it out: 860 bytes, packed, in the
// machine's byte order. The text fields are plain bytes, not strings.
struct MIB_IFROW {
    std::uint8_t wszName[512];
    std::uint32_t dwIndex;
    std::uint32_t dwType;
    std::uint32_t dwMtu;
    std::uint32_t dwSpeed;
    std::uint32_t dwPhysAddrLen;
    std::uint8_t bPhysAddr[8];
    std::uint32_t dwAdminStatus;
    std::uint32_t dwOperStatus;
    std::uint32_t dwLastChange;
    std::uint32_t dwInOctets;
    std::uint32_t dwInUcastPkts;
    std::uint32_t dwInNUcastPkts;
    std::uint32_t dwInDiscards;
    std::uint32_t dwInErrors;
    std::uint32_t dwInUnknownProtos;
    std::uint32_t dwOutOctets;
    std::uint32_t dwOutUcastPkts;
    std::uint32_t dwOutNUcastPkts;
    std::uint32_t dwOutDiscards;
    std::uint32_t dwOutErrors;
    std::uint32_t dwOutQLen;
    std::uint32_t dwDescrLen;
    std::uint8_t bDescr[256];
};
static_assert(sizeof(MIB_IFROW) == InterfaceTable::RowSize);
static_assert(offsetof(MIB_IFROW, bPhysAddr) == 532);
static_assert(offsetof(MIB_IFROW, dwInOctets) == 552);
static_assert(offsetof(MIB_IFROW, bDescr) == 604);
