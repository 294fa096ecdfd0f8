#pragma once

// Builds interface-table images byte by byte, at the offsets of the system's
// row layout, so the reader is checked against the layout and not against
// its own idea of it.

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <cstring>

struct IfRow {
    enum Offset : int {
        wszName = 0, dwIndex = 512, dwType = 516, dwMtu = 520, dwSpeed = 524, dwPhysAddrLen = 528, bPhysAddr = 532,
        dwAdminStatus = 540, dwOperStatus = 544, dwLastChange = 548, dwInOctets = 552, dwInUcastPkts = 556,
        dwInNUcastPkts = 560, dwInDiscards = 564, dwInErrors = 568, dwInUnknownProtos = 572, dwOutOctets = 576,
        dwOutUcastPkts = 580, dwOutNUcastPkts = 584, dwOutDiscards = 588, dwOutErrors = 592, dwOutQLen = 596,
        dwDescrLen = 600, bDescr = 604, Size = 860
    };

    QByteArray bytes = QByteArray(Size, '\0');

    IfRow &set(Offset at, std::uint32_t v)
    {
        for (int i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<char>((v >> (8 * i)) & 0xFF);
        return *this;
    }
    std::uint32_t get(Offset at) const
    {
        std::uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
            v |= std::uint32_t(static_cast<std::uint8_t>(bytes[at + i])) << (8 * i);
        return v;
    }
    // A description and its length field (the length may differ on purpose).
    IfRow &descr(const QByteArray &text, std::uint32_t length)
    {
        bytes.replace(bDescr, static_cast<int>(qMin<qsizetype>(text.size(), 256)), text.left(256));
        return set(dwDescrLen, length);
    }
    IfRow &descr(const QByteArray &text) { return descr(text, static_cast<std::uint32_t>(text.size())); }
    // Address bytes and the length field.
    IfRow &phys(const QByteArray &address, std::uint32_t length)
    {
        bytes.replace(bPhysAddr, static_cast<int>(qMin<qsizetype>(address.size(), 8)), address.left(8));
        return set(dwPhysAddrLen, length);
    }
    // The name as the system writes it: 16-bit little-endian characters.
    IfRow &name(const QString &text)
    {
        for (qsizetype i = 0; i < text.size() && i < 256; ++i) {
            bytes[wszName + 2 * i] = static_cast<char>(text[i].unicode() & 0xFF);
            bytes[wszName + 2 * i + 1] = static_cast<char>(text[i].unicode() >> 8);
        }
        return *this;
    }
};

// A count and the rows; the count may be given apart to lie about them.
inline QByteArray ifTable(const QList<IfRow> &rows, qint64 count = -1)
{
    QByteArray image(4, '\0');
    const auto n = static_cast<std::uint32_t>(count < 0 ? rows.size() : count);
    for (int i = 0; i < 4; ++i)
        image[i] = static_cast<char>((n >> (8 * i)) & 0xFF);
    for (const IfRow &r : rows)
        image += r.bytes;
    return image;
}

// An ordinary Ethernet row with the given index, name and byte counters.
inline IfRow etherRow(std::uint32_t index, const QByteArray &name, std::uint32_t in, std::uint32_t out)
{
    IfRow r;
    r.name(QString::fromLatin1(name)).descr(name);
    r.set(IfRow::dwIndex, index).set(IfRow::dwType, 6).set(IfRow::dwMtu, 1500).set(IfRow::dwSpeed, 100000000);
    r.phys(QByteArray::fromHex("000a959d6816"), 6);
    r.set(IfRow::dwAdminStatus, 1).set(IfRow::dwOperStatus, 5);
    r.set(IfRow::dwInOctets, in).set(IfRow::dwOutOctets, out);
    return r;
}
