#pragma once

#include "netmon/CInterfaces.h"

class Dialogs;
class InterfaceTable;

// The interface table as a fresh collection of records, and the byte totals
// of all interfaces. Every get of Interfaces reads the table again; nothing
// is cached between reads.
class CIpHelper {
public:
    CIpHelper(InterfaceTable &table, Dialogs &dialogs);

    void setInterfaces(std::shared_ptr<CInterfaces> value); // nothing in the program calls it
    // A new read: replaces the collection and both totals. A collection an
    // earlier caller holds stays as it was. Failures of the read (overflow,
    // subscript) pass to the caller with the rows read so far kept.
    std::shared_ptr<CInterfaces> Interfaces();
    basic::Long BytesReceived() const { return mBytesReceived; }
    basic::Long BytesSent() const { return mBytesSent; }

    static constexpr const char *NotSupportedText = "IP Helper is not supported by this system.";

private:
    void ReadIfTable();

    InterfaceTable &m_table;
    Dialogs &m_dialogs;

    std::shared_ptr<CInterfaces> mInterfaces;
    basic::Long mBytesReceived = 0;
    basic::Long mBytesSent = 0;
};
