#include "netmon/CIpHelper.h"

#include "platform/Dialogs.h"
#include "platform/InterfaceTable.h"
#include "platform/MibIfRow.h"

#include <QByteArray>

#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

namespace {


// Unsigned system values enter the signed properties bit for bit.
basic::Long bits(std::uint32_t v)
{
    return static_cast<basic::Long>(v);
}

// The system's single-byte code page: one character per byte, zeros included.
QString widened(const std::uint8_t *bytes, qsizetype count)
{
    return QString::fromLatin1(reinterpret_cast<const char *>(bytes), count);
}

// Copying out of the buffer never reaches past its end: a table shorter than
// its own count says is a subscript failure.
void copyOut(void *to, const std::vector<std::uint8_t> &buffer, std::size_t from, std::size_t count)
{
    if (from > buffer.size() || buffer.size() - from < count)
        basic::raise(basic::SubscriptOutOfRange);
    std::memcpy(to, buffer.data() + from, count);
}

// "00" for a zero byte; any other byte in upper-case hex without padding, so
// 0x0A is "A". Kept as it stands: the address text has always looked so.
QString byteText(std::uint8_t b)
{
    return b == 0 ? QStringLiteral("00") : QString::number(b, 16).toUpper();
}

} // namespace

CIpHelper::CIpHelper(InterfaceTable &table, Dialogs &dialogs)
    : m_table(table)
    , m_dialogs(dialogs)
{
}

void CIpHelper::setInterfaces(std::shared_ptr<CInterfaces> value)
{
    mInterfaces = std::move(value);
}

std::shared_ptr<CInterfaces> CIpHelper::Interfaces()
{
    mInterfaces.reset();
    mInterfaces = std::make_shared<CInterfaces>();
    ReadIfTable();
    return mInterfaces;
}

void CIpHelper::ReadIfTable()
{
    using basic::Integer;
    using basic::Long;

    std::uint32_t size = 0;
    mBytesReceived = 0;
    mBytesSent = 0;

    if (m_table.GetIfTable(nullptr, &size, false) == InterfaceTable::NotSupported) {
        m_dialogs.MsgBox(QLatin1String(NotSupportedText), MsgBox::OkOnly);
        return;
    }
    // Whatever the first call answered, the size is taken as it stands. A
    // size of 0 makes the bound -1, an empty array, which fails.
    const Long bound = basic::sub<Long>(bits(size), 1);
    if (bound < 0)
        basic::raise(basic::SubscriptOutOfRange);
    std::vector<std::uint8_t> buffer;
    try {
        buffer.resize(static_cast<std::size_t>(bound) + 1);
    } catch (const std::bad_alloc &) {
        basic::raise(7); // out of memory
    }

    if (m_table.GetIfTable(buffer.data(), &size, false) != InterfaceTable::NoError)
        return;

    std::uint32_t rawCount = 0;
    copyOut(&rawCount, buffer, 0, sizeof rawCount);
    const Integer count = basic::narrow<Integer>(bits(rawCount));

    MIB_IFROW row{};
    CInterfaces::Record item;
    for (Integer i = 1; i <= count; ++i) {
        // 16-bit offsets: row 39 (offset 32684) is the last that fits, and
        // row 40 overflows. That ceiling belongs to the reader; keep it.
        const Integer offset = basic::add<Integer>(basic::mul<Integer>(basic::sub<Integer>(i, 1), 860), 4);
        copyOut(&row, buffer, static_cast<std::size_t>(offset), sizeof row);

        if (!item)
            item = std::make_shared<CInterface>();
        const Long descrLen = bits(row.dwDescrLen);
        if (descrLen < 0)
            basic::raise(basic::InvalidProcedureCall); // a negative length to cut at
        item->setInterfaceDescription(widened(row.bDescr, sizeof row.bDescr).left(descrLen));

        const Long physLen = bits(row.dwPhysAddrLen);
        if (physLen > 0) {
            QString address;
            for (Long k = 0; k <= physLen - 1; ++k) {
                basic::checkIndex(k, 0, 7);
                address += byteText(row.bPhysAddr[k]) + QLatin1Char('-');
                item->setAdapterAddress(address);
            }
            address.chop(1);
            item->setAdapterAddress(address);
        }
        item->setAdminStatus(bits(row.dwAdminStatus));
        item->setInterfaceIndex(bits(row.dwIndex));
        item->setDiscardedIncomingPackets(bits(row.dwInDiscards));
        item->setIncomingErrors(bits(row.dwInErrors));
        item->setNonunicastPacketsReceived(bits(row.dwInNUcastPkts));
        item->setOctetsReceived(bits(row.dwInOctets));
        item->setUnicastPacketsReceived(bits(row.dwInUcastPkts));
        item->setUnknownProtocolPackets(bits(row.dwInUnknownProtos));
        item->setMaximumTransmissionUnit(bits(row.dwMtu));
        item->setOperationalStatus(bits(row.dwOperStatus));
        item->setDiscardedOutgoingPackets(bits(row.dwOutDiscards));
        item->setOutgoingErrors(bits(row.dwOutErrors));
        item->setNonunicastPacketsSent(bits(row.dwOutNUcastPkts));
        item->setOctetsSent(bits(row.dwOutOctets));
        item->setOutputQueueLength(bits(row.dwOutQLen));
        item->setUnicastPacketsSent(bits(row.dwOutUcastPkts));
        item->setSpeed(bits(row.dwSpeed));
        item->setInterfaceType(bits(row.dwType));
        // Raw bytes of the 16-bit name, one character each: 512 characters.
        item->setInterfaceName(widened(row.wszName, sizeof row.wszName));
        // dwLastChange is never copied: LastChange stays zero in every record.

        mBytesReceived = basic::add<Long>(mBytesReceived, bits(row.dwInOctets));
        mBytesSent = basic::add<Long>(mBytesSent, bits(row.dwOutOctets));

        mInterfaces->Add(item);
    }
}
