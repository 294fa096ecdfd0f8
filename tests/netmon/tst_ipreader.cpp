#include "IfTableImage.h"
#include "doubles/ScriptedPlatform.h"
#include "netmon/CIpHelper.h"

#include <QTest>

namespace {

// Runs f and answers the run-time error number it raised, 0 for none.
template <class F>
int errorOf(F &&f)
{
    try {
        f();
    } catch (const basic::RuntimeError &e) {
        return e.number();
    }
    return 0;
}

struct Reader {
    ScriptedInterfaceTable table;
    ScriptedDialogs dialogs;
    CIpHelper helper{table, dialogs};
};

} // namespace

class tst_ipreader : public QObject {
    Q_OBJECT
private slots:
    void collectionContract();
    void emptyUnsupportedAndFailedCalls();
    void everyFieldToItsProperty();
    void addressAndDescriptionTexts();
    void countersEnterSignedAndSumsAreChecked();
    void ceilingOf39Rows();
    void twoReadsTwoCollections();
};

void tst_ipreader::collectionContract()
{
    CInterfaces col;
    auto a = std::make_shared<CInterface>();
    auto b = std::make_shared<CInterface>();
    CInterface *aRaw = a.get();
    const CInterfaces::Record stored = col.Add(a);
    QVERIFY(!a); // the caller's variable is cleared
    QCOMPARE(stored.get(), aRaw);
    col.Add(b);
    QCOMPARE(col.Count(), 2);
    QCOMPARE(col.Item(1).get(), aRaw);
    QCOMPARE(col.Item(2.4).get(), col.Item(2).get()); // a variant index is rounded
    QList<CInterface *> walked;
    for (const CInterfaces::Record &r : col)
        walked << r.get();
    QCOMPARE(walked, (QList<CInterface *>{aRaw, col.Item(2).get()}));

    QCOMPARE(errorOf([&] { col.Item(3); }), int(basic::InvalidProcedureCall));
    QCOMPARE(errorOf([&] { col.Item(0); }), int(basic::InvalidProcedureCall));
    QCOMPARE(errorOf([&] { col.Item(QStringLiteral("1")); }), int(basic::InvalidProcedureCall)); // no keys
    QCOMPARE(errorOf([&] { col.Item(QVariant()); }), int(basic::TypeMismatch));

    // Records are independent, and outlive their collection.
    CInterfaces::Record kept = col.Item(2);
    col.Item(1)->setAdapterAddress(QStringLiteral("00-A"));
    QCOMPARE(kept->AdapterAddress(), QString());
    col.Remove(1);
    QCOMPARE(col.Count(), 1);
    QCOMPARE(col.Item(1), kept);
    {
        CInterfaces gone;
        auto c = std::make_shared<CInterface>();
        kept = gone.Add(c);
    }
    kept->setInterfaceName(QStringLiteral("still here"));
    QCOMPARE(kept->InterfaceName(), QStringLiteral("still here"));
}

void tst_ipreader::emptyUnsupportedAndFailedCalls()
{
    {
        Reader r;
        r.table.image = ifTable({});
        QCOMPARE(r.helper.BytesReceived(), 0); // never read
        const auto col = r.helper.Interfaces();
        QCOMPARE(col->Count(), 0);
        QCOMPARE(r.helper.BytesReceived(), 0);
        QCOMPARE(r.dialogs.shown.size(), 0);
        QCOMPARE(r.table.calls, 2); // the size call and the fill call
    }
    {
        // Not supported: the message at every read, an empty collection,
        // and totals set back to 0 although an earlier read had some.
        Reader r;
        r.table.image = ifTable({etherRow(1, "eth0", 500, 700)});
        r.helper.Interfaces();
        QCOMPARE(r.helper.BytesSent(), 700);
        r.table.supported = false;
        QCOMPARE(r.helper.Interfaces()->Count(), 0);
        QCOMPARE(r.helper.Interfaces()->Count(), 0);
        QCOMPARE(r.dialogs.shown.size(), 2);
        QCOMPARE(r.dialogs.shown[0].prompt, QStringLiteral("IP Helper is not supported by this system."));
        QCOMPARE(r.dialogs.shown[0].style, MsgBox::OkOnly);
        QCOMPARE(r.dialogs.shown[0].title, QString());
        QCOMPARE(r.helper.BytesReceived(), 0);
        QCOMPARE(r.helper.BytesSent(), 0);
    }
    {
        // The table grows between the size call and the fill call: the
        // second call fails and the read ends silently with nothing.
        Reader r;
        r.table.image = ifTable({etherRow(1, "eth0", 500, 700)});
        r.table.onCall = [](ScriptedInterfaceTable &t) {
            if (t.calls == 2)
                t.image = ifTable({etherRow(1, "eth0", 500, 700), etherRow(2, "eth1", 1, 1)});
        };
        QCOMPARE(r.helper.Interfaces()->Count(), 0);
        QCOMPARE(r.helper.BytesReceived(), 0);
        QCOMPARE(r.dialogs.shown.size(), 0);
        QCOMPARE(r.helper.Interfaces()->Count(), 2); // no retry, but the next read is whole
    }
    {
        // A size left at 0 is an empty array: subscript failure.
        Reader r;
        QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::SubscriptOutOfRange));
    }
    {
        // Counts that do not fit 16 bits overflow; a negative one reads nothing.
        Reader r;
        r.table.image = ifTable({}, 32768);
        QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::Overflow));
        r.table.image = ifTable({}, 0xFFFFFFFFu);
        QCOMPARE(r.helper.Interfaces()->Count(), 0);
        // A count above the rows the buffer holds fails on the missing row
        // instead of reading past the buffer.
        r.table.image = ifTable({etherRow(1, "eth0", 9, 9)}, 2);
        QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::SubscriptOutOfRange));
        QCOMPARE(r.helper.BytesReceived(), 9);
        r.table.image = QByteArray(2, '\1');
        QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::SubscriptOutOfRange));
    }
}

void tst_ipreader::everyFieldToItsProperty()
{
    // Distinct values in every field, so a field read from a neighbour's
    // offset shows.
    IfRow row;
    const IfRow::Offset fields[] = {IfRow::dwIndex, IfRow::dwType, IfRow::dwMtu, IfRow::dwSpeed,
                                    IfRow::dwAdminStatus, IfRow::dwOperStatus, IfRow::dwLastChange,
                                    IfRow::dwInOctets, IfRow::dwInUcastPkts, IfRow::dwInNUcastPkts,
                                    IfRow::dwInDiscards, IfRow::dwInErrors, IfRow::dwInUnknownProtos,
                                    IfRow::dwOutOctets, IfRow::dwOutUcastPkts, IfRow::dwOutNUcastPkts,
                                    IfRow::dwOutDiscards, IfRow::dwOutErrors, IfRow::dwOutQLen};
    std::uint32_t v = 101;
    for (IfRow::Offset f : fields)
        row.set(f, v++);
    row.name(QStringLiteral("\\DEV")).descr("Adapter one");

    Reader r;
    r.table.image = ifTable({row});
    const CInterfaces::Record i = r.helper.Interfaces()->Item(1);
    QCOMPARE(i->InterfaceIndex(), 101);
    QCOMPARE(i->InterfaceType(), 102);
    QCOMPARE(i->MaximumTransmissionUnit(), 103);
    QCOMPARE(i->Speed(), 104);
    QCOMPARE(i->AdminStatus(), 105);
    QCOMPARE(i->OperationalStatus(), 106);
    QCOMPARE(i->LastChange(), 0.0); // never copied, whatever the row says (107)
    QCOMPARE(i->OctetsReceived(), 108);
    QCOMPARE(i->UnicastPacketsReceived(), 109);
    QCOMPARE(i->NonunicastPacketsReceived(), 110);
    QCOMPARE(i->DiscardedIncomingPackets(), 111);
    QCOMPARE(i->IncomingErrors(), 112);
    QCOMPARE(i->UnknownProtocolPackets(), 113);
    QCOMPARE(i->OctetsSent(), 114);
    QCOMPARE(i->UnicastPacketsSent(), 115);
    QCOMPARE(i->NonunicastPacketsSent(), 116);
    QCOMPARE(i->DiscardedOutgoingPackets(), 117);
    QCOMPARE(i->OutgoingErrors(), 118);
    QCOMPARE(i->OutputQueueLength(), 119);
    QCOMPARE(i->InterfaceDescription(), QStringLiteral("Adapter one"));
    // The 16-bit name widened byte by byte: 512 characters, zeros included.
    const QString name = i->InterfaceName();
    QCOMPARE(name.size(), 512);
    QCOMPARE(name.left(8), QString::fromLatin1("\\\0D\0E\0V\0", 8));
    QVERIFY(name.mid(8).count(QChar(0)) == 504);
    QCOMPARE(r.helper.BytesReceived(), 108);
    QCOMPARE(r.helper.BytesSent(), 114);
}

void tst_ipreader::addressAndDescriptionTexts()
{
    auto read = [](const IfRow &row) {
        Reader r;
        r.table.image = ifTable({row});
        return r.helper.Interfaces()->Item(1);
    };
    QCOMPARE(read(IfRow().phys(QByteArray::fromHex("000a959d6816"), 6))->AdapterAddress(),
             QStringLiteral("00-A-95-9D-68-16"));
    QCOMPARE(read(IfRow().phys(QByteArray::fromHex("0a00ff"), 3))->AdapterAddress(), QStringLiteral("A-00-FF"));
    QCOMPARE(read(IfRow().phys(QByteArray::fromHex("0a00ff"), 0))->AdapterAddress(), QString());
    QCOMPARE(read(IfRow().phys(QByteArray::fromHex("0102030405060708"), 8))->AdapterAddress(),
             QStringLiteral("1-2-3-4-5-6-7-8"));
    // A length above the 8 bytes of the field is a subscript failure; the
    // rows before it stay counted.
    {
        Reader r;
        r.table.image = ifTable({etherRow(1, "a", 40, 4), IfRow().phys(QByteArray(8, '\1'), 9)});
        QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::SubscriptOutOfRange));
        QCOMPARE(r.helper.BytesReceived(), 40);
    }
    // A length past 2^31 is negative: no address at all.
    QCOMPARE(read(IfRow().phys(QByteArray(8, '\1'), 0x80000000u))->AdapterAddress(), QString());

    QCOMPARE(read(IfRow().descr("Realtek", 0))->InterfaceDescription(), QString());
    QCOMPARE(read(IfRow().descr("Realtek", 4))->InterfaceDescription(), QStringLiteral("Real"));
    // A terminator that the length counts stays in the text; a length past
    // the field keeps all 256 characters.
    QCOMPARE(read(IfRow().descr(QByteArray("lo\0", 3), 3))->InterfaceDescription(), QString::fromLatin1("lo\0", 3));
    QCOMPARE(read(IfRow().descr("x", 1000))->InterfaceDescription().size(), 256);
    QCOMPARE(read(IfRow().descr("\xe9t\xe9", 3))->InterfaceDescription(), QStringLiteral(u"\u00e9t\u00e9"));
}

void tst_ipreader::countersEnterSignedAndSumsAreChecked()
{
    {
        Reader r;
        r.table.image = ifTable({etherRow(1, "a", 0x80000000u, 0xFFFFFFFFu), etherRow(2, "b", 5, 5)});
        const auto col = r.helper.Interfaces();
        QCOMPARE(col->Item(1)->OctetsReceived(), std::numeric_limits<qint32>::min());
        QCOMPARE(col->Item(1)->OctetsSent(), -1);
        QCOMPARE(r.helper.BytesReceived(), std::numeric_limits<qint32>::min() + 5);
        QCOMPARE(r.helper.BytesSent(), 4);
    }
    {
        // Leaving the signed range upwards fails on the row that does it;
        // that row is not added and the earlier sum stays.
        Reader r;
        r.table.image = ifTable({etherRow(1, "a", 0x7FFFFFF0u, 1), etherRow(2, "b", 0x10, 1), etherRow(3, "c", 1, 1)});
        QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::Overflow));
        QCOMPARE(r.helper.BytesReceived(), 0x7FFFFFF0);
        QCOMPARE(r.helper.BytesSent(), 1);
        // and downwards: two counters past 2^31 together.
        r.table.image = ifTable({etherRow(1, "a", 1, 0x80000000u), etherRow(2, "b", 1, 0x80000000u)});
        QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::Overflow));
        QCOMPARE(r.helper.BytesSent(), std::numeric_limits<qint32>::min());
        // An exact fit at the top is no failure.
        r.table.image = ifTable({etherRow(1, "a", 0x7FFFFFFEu, 0), etherRow(2, "b", 1, 0)});
        QCOMPARE(r.helper.Interfaces()->Count(), 2);
        QCOMPARE(r.helper.BytesReceived(), std::numeric_limits<qint32>::max());
    }
}

void tst_ipreader::ceilingOf39Rows()
{
    QList<IfRow> rows;
    for (std::uint32_t i = 1; i <= 40; ++i)
        rows << etherRow(i, "if" + QByteArray::number(i), i, 1000 + i);
    Reader r;
    r.table.image = ifTable(rows.mid(0, 39));
    const auto col = r.helper.Interfaces();
    QCOMPARE(col->Count(), 39);
    QCOMPARE(col->Item(39)->InterfaceIndex(), 39);
    QCOMPARE(col->Item(39)->InterfaceDescription(), QStringLiteral("if39"));
    QCOMPARE(r.helper.BytesReceived(), 39 * 40 / 2);

    // The fortieth row's offset does not fit 16 bits: overflow, with the
    // 39 rows before it summed.
    r.table.image = ifTable(rows);
    QCOMPARE(errorOf([&] { r.helper.Interfaces(); }), int(basic::Overflow));
    QCOMPARE(r.helper.BytesReceived(), 39 * 40 / 2);
    QCOMPARE(r.helper.BytesSent(), 39 * 1000 + 39 * 40 / 2);
}

void tst_ipreader::twoReadsTwoCollections()
{
    Reader r;
    r.table.image = ifTable({etherRow(1, "a", 10, 20)});
    const auto first = r.helper.Interfaces();
    r.table.image = ifTable({etherRow(1, "a", 15, 20), etherRow(2, "b", 1, 1)});
    const auto second = r.helper.Interfaces();
    QVERIFY(first != second);
    QVERIFY(first->Item(1) != second->Item(1));
    QCOMPARE(first->Count(), 1);
    QCOMPARE(first->Item(1)->OctetsReceived(), 10);
    QCOMPARE(second->Count(), 2);
    QCOMPARE(r.helper.BytesReceived(), 16);
    QCOMPARE(r.table.calls, 4);
}

QTEST_GUILESS_MAIN(tst_ipreader)
#include "tst_ipreader.moc"
