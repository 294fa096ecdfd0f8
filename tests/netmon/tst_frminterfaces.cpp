// The traffic window and the reader under it, over interface-table images built byte by byte at the offsets of
// the system's row layout, so both are checked against that layout and not against their own idea of it.

#include "doubles/ScriptedPlatform.h"
#include "netmon/ActivityPictures.h"
#include "netmon/frmInterfaces.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTest>
#include <QTreeWidget>
#include <QtEndian>

namespace {

struct IfRow {
    enum Offset : int {
        wszName = 0, dwIndex = 512, dwType = 516, dwMtu = 520, dwSpeed = 524, dwPhysAddrLen = 528, bPhysAddr = 532,
        dwAdminStatus = 540, dwOperStatus = 544, dwLastChange = 548, dwInOctets = 552, dwInUcastPkts = 556, dwOutOctets = 576,
        dwOutUcastPkts = 580, dwOutQLen = 596, dwDescrLen = 600, bDescr = 604
    };
    QByteArray bytes = QByteArray(860, '\0');

    IfRow &set(Offset at, quint32 v) { return qToLittleEndian(v, bytes.data() + at), *this; }
    IfRow &put(Offset at, const QByteArray &b) { return bytes.replace(at, b.size(), b), *this; }
    IfRow &descr(const QByteArray &text, quint32 length) { return put(bDescr, text).set(dwDescrLen, length); }
    IfRow &phys(const QByteArray &address, quint32 length) { return put(bPhysAddr, address).set(dwPhysAddrLen, length); }
    IfRow &traffic(quint32 in, quint32 out) { return set(dwInOctets, in).set(dwOutOctets, out); }
    IfRow &name(const QString &text) { return put(wszName, QByteArray(reinterpret_cast<const char *>(text.utf16()), 2 * text.size())); }
};

// A count, which may lie, and the rows.
QByteArray ifTable(const QList<IfRow> &rows, qint64 count = -1)
{
    QByteArray image(4, '\0');
    qToLittleEndian(quint32(count < 0 ? rows.size() : count), image.data());
    for (const IfRow &r : rows)
        image += r.bytes;
    return image;
}

IfRow etherRow(quint32 index, const QByteArray &name, quint32 in, quint32 out)
{
    return IfRow().name(name).descr(name, name.size()).set(IfRow::dwIndex, index).set(IfRow::dwType, 6)
        .set(IfRow::dwMtu, 1500).set(IfRow::dwSpeed, 100000000).set(IfRow::dwAdminStatus, 1).set(IfRow::dwOperStatus, 5)
        .phys(QByteArray::fromHex("000a959d6816"), 6).traffic(in, out);
}

// Rows 1 to n named "if<i>", with i bytes received and 1000 + i sent.
QList<IfRow> numberedRows(quint32 n)
{
    QList<IfRow> rows;
    for (quint32 i = 1; i <= n; ++i)
        rows << etherRow(i, "if" + QByteArray::number(i), i, 1000 + i);
    return rows;
}

template <class F>
int errorOf(F &&f)
{
    try {
        return f(), 0;
    } catch (const basic::RuntimeError &e) {
        return e.number();
    }
}

// The window and a reader over one scripted table; tick() publishes the rows and lets Timer1 run once.
struct World {
    ScriptedPlatform sp;
    QList<IfRow> rows;
    frmInterfaces f{sp.platform};
    CIpHelper reader{sp.interfaces, sp.dialogs};

    explicit World(QList<IfRow> r = {}) : rows(std::move(r)) { sync(); }
    void sync() { sp.interfaces.image = ifTable(rows); }
    void tick() { sync(), sp.clock.advance(200); }
    // One read: its rows or its error, and the totals it leaves.
    QString read(const QByteArray &image)
    {
        qint32 n = 0;
        const int error = errorOf([&] { sp.interfaces.image = image, n = reader.Interfaces()->Count(); });
        return QString(error ? "error %1" : "rows %1").arg(error ? error : n) + QString(", in %1, out %2").arg(reader.BytesReceived()).arg(reader.BytesSent());
    }
    CInterfaces::Record only(const IfRow &row) { return sp.interfaces.image = ifTable({row}), reader.Interfaces()->Item(1); }
    QStringList values(int from = 1, int to = 21)
    {
        QStringList v;
        for (int r = from; r <= to; ++r)
            v << f.lvInterfaceInfo->topLevelItem(r - 1)->text(1);
        return v;
    }
    // Which of the four pictures Image1 and the tray icon show, and the icon's tip.
    QString shown()
    {
        int window = 0, icon = 0;
        for (int i = 1; i <= 4; ++i) {
            window += i * (f.Image1->pixmap().cacheKey() == f.ImageList2(i).cacheKey());
            icon += i * (sp.tray.icon(&f, 1)->hIcon.cacheKey() == f.ImageList1(i).cacheKey());
        }
        return QString("%1 %2 ").arg(window).arg(icon) + sp.tray.icon(&f, 1)->tipText();
    }
};

} // namespace

class tst_frminterfaces : public QObject {
    Q_OBJECT
private slots:
    void collectionContract()
    {
        CInterfaces col;
        auto a = std::make_shared<CInterface>(), b = std::make_shared<CInterface>();
        const QList<CInterface *> added{nullptr, a.get(), b.get(), b.get()};
        col.Add(a), col.Add(b);
        // The caller's variable is cleared (the reader's loop starts each record from it); 1-based, a number
        // rounded half to even; no keys, so a text fails like a position out of range.
        QCOMPARE((QList<CInterface *>{a.get(), col.Item(1).get(), col.Item(1.5).get(), col.Item(2.5).get()}), added);
        for (const auto &[index, error] : {std::pair<QVariant, int>{3, 5}, {0.4, 5}, {"1", 5}, {QVariant(), 13}})
            QCOMPARE(errorOf([&] { col.Item(index); }), error);
    }

    void readsAndTheirFailures()
    {
        const QList<IfRow> forty = numberedRows(40);
        const std::pair<QByteArray, const char *> reads[] = {
            {ifTable({}), "rows 0, in 0, out 0"}, {QByteArray(), "error 9, in 0, out 0"}, // size 0: an empty array
            {QByteArray(2, '\1'), "error 9, in 0, out 0"}, {ifTable({}, 0xFFFFFFFF), "rows 0, in 0, out 0"},
            {ifTable({}, 32768), "error 6, in 0, out 0"}, // the count is a 16-bit integer
            {ifTable({etherRow(1, "a", 9, 9)}, 2), "error 9, in 9, out 9"}, // a missing row, not read past the end
            // Counters enter bit for bit, so 2^31 and above read negative; the totals are checked sums.
            {ifTable({etherRow(1, "a", 0x80000000u, 0xFFFFFFFFu), etherRow(2, "b", 5, 5)}), "rows 2, in -2147483643, out 4"},
            {ifTable({etherRow(1, "a", 0x7FFFFFF0u, 1), etherRow(2, "b", 0x10, 1), etherRow(3, "c", 1, 1)}),
             "error 6, in 2147483632, out 1"},
            {ifTable({etherRow(1, "a", 1, 0x80000000u), etherRow(2, "b", 1, 0x80000000u)}), "error 6, in 2, out -2147483648"},
            {ifTable({etherRow(1, "a", 0x7FFFFFFEu, 0), etherRow(2, "b", 1, 0)}), "rows 2, in 2147483647, out 0"},
            // 16-bit offsets: row 39 (offset 32684) is the last that fits; row 40 overflows, the 39 before it summed.
            {ifTable(forty.mid(0, 39)), "rows 39, in 780, out 39780"}, {ifTable(forty), "error 6, in 780, out 39780"},
            // An address longer than the field's 8 bytes fails on its row.
            {ifTable({etherRow(1, "a", 40, 4), IfRow().phys(QByteArray(8, '\1'), 9)}), "error 9, in 40, out 4"}};
        for (const auto &[image, outcome] : reads)
            QCOMPARE(World().read(image), QLatin1String(outcome));

        // No table: the message at every read, no rows, the totals back at 0.
        World w;
        w.read(ifTable({etherRow(1, "eth0", 500, 700)}));
        w.sp.interfaces.supported = false;
        QCOMPARE(QStringList({w.read({}), w.read({}), w.sp.dialogs.shown.value(1).prompt}),
                 QStringList({"rows 0, in 0, out 0", "rows 0, in 0, out 0", CIpHelper::NotSupportedText}));
        // The table grows between the size call and the fill: that read ends silently with nothing, the next is
        // whole. A collection read earlier stays as it was.
        World g(numberedRows(1));
        const std::shared_ptr<CInterfaces> earlier = g.reader.Interfaces();
        g.sp.interfaces.onCall = [](ScriptedInterfaceTable &t) { t.image = ifTable(numberedRows(t.calls < 4 ? 1 : 2)); };
        QCOMPARE(QStringList({g.read({}), g.read({}), QString::number(earlier->Count() + g.sp.dialogs.shown.size())}),
                 QStringList({"rows 0, in 0, out 0", "rows 2, in 3, out 2003", "1"}));
    }

    void everyFieldToItsProperty()
    {
        // Distinct values in every number field, so a field read from a neighbour's offset shows.
        IfRow row = IfRow().name("\\DEV");
        quint32 v = 101;
        for (int at = IfRow::dwIndex; at <= IfRow::dwOutQLen; at += 4)
            if (at < IfRow::dwPhysAddrLen || at >= IfRow::dwAdminStatus)
                row.set(IfRow::Offset(at), v++);
        World w;
        const CInterfaces::Record i = w.only(row);
        QCOMPARE((QList<qint64>{i->InterfaceIndex(), i->InterfaceType(), i->MaximumTransmissionUnit(), i->Speed(),
                                i->AdminStatus(), i->OperationalStatus(), qint64(i->LastChange()), i->OctetsReceived(),
                                i->UnicastPacketsReceived(), i->NonunicastPacketsReceived(), i->DiscardedIncomingPackets(),
                                i->IncomingErrors(), i->UnknownProtocolPackets(), i->OctetsSent(), i->UnicastPacketsSent(),
                                i->NonunicastPacketsSent(), i->DiscardedOutgoingPackets(), i->OutgoingErrors(),
                                i->OutputQueueLength(), w.reader.BytesReceived(), w.reader.BytesSent()}),
                 (QList<qint64>{101, 102, 103, 104, 105, 106, 0, 108, 109, 110, 111, 112, 113, 114, 115, 116, 117, 118,
                                119, 108, 114})); // LastChange is never copied: 0, not 107
        // The 16-bit name widened byte by byte: 512 characters, zeros included.
        QCOMPARE(i->InterfaceName(), QString::fromLatin1("\\\0D\0E\0V\0", 8) + QString(504, QChar(0)));
        // Address bytes in hex without padding, but "00" for a zero, kept as it stands; then the description.
        const std::pair<IfRow, QString> texts[] = {
            {IfRow().phys(QByteArray::fromHex("000a959d6816"), 6).descr("Adapter", 7), "00-A-95-9D-68-16|Adapter"},
            {IfRow().phys(QByteArray::fromHex("0a00ff"), 3).descr("Realtek", 4), "A-00-FF|Real"},
            {IfRow().phys(QByteArray::fromHex("0a00ff"), 0).descr("Realtek", 0), "|"},
            {IfRow().phys(QByteArray::fromHex("0102030405060708"), 8), "1-2-3-4-5-6-7-8|"},
            {IfRow().phys(QByteArray(8, '\1'), 0x80000000u), "|"}, // a length past 2^31 is negative: no address
            {IfRow().descr(QByteArray("lo\0", 3), 3), QString::fromLatin1("|lo\0", 4)}, // a counted terminator stays
            {IfRow().descr("x", 1000), "|x" + QString(255, QChar(0))},                  // no more than the field
            {IfRow().descr("\xe9t\xe9", 3), QStringLiteral("|\u00e9t\u00e9")}};
        for (const auto &[text, expected] : texts) {
            const CInterfaces::Record r = w.only(text);
            QCOMPARE(r->AdapterAddress() + '|' + r->InterfaceDescription(), expected);
        }
    }

    void loadAndRefresh()
    {
        World w({etherRow(7, "Intel PRO/1000", 1234, 0).set(IfRow::dwLastChange, 99999),
                 etherRow(1, "lo", 5000, 5000).set(IfRow::dwType, 24)});
        w.f.Load();
        QCOMPARE((QStringList{w.f.Combo1->itemText(0), w.f.Combo1->itemText(1)}), (QStringList{"Intel PRO/1000", "lo"}));
        // The first refresh compares with an empty record: zeros and empty texts stay blank; LastChange is always 0.
        QCOMPARE(w.values(2), (QStringList{"7", "Ethernet", "1500", "100 000 000", "00-A-95-9D-68-16", "Up", "Operational",
                                           "", "1 234", "", "", "", "", "", "", "", "", "", "", ""}));
        // Row 1 holds the raw 512-character name; its cell shows it up to the first zero, as the native list did.
        const auto *cells = static_cast<QStyledItemDelegate *>(w.f.lvInterfaceInfo->itemDelegate());
        QCOMPARE((QStringList{w.values(1, 1)[0].left(4), cells->displayText(w.values(1, 1)[0], {}), w.f.lblRecv->text(),
                              w.f.lblSent->text()}),
                 (QStringList{QString::fromLatin1("I\0n\0", 4), "I", "6 234", "5 000"}));
        // Two reads for the list, two per refresh. The first refresh's Modify comes before the icon and finds
        // none; against 0, the history counts as traffic both ways.
        const QList<ScriptedTray::Call> &calls = w.sp.tray.calls;
        const NotifyIconData &added = calls.value(1).data;
        QCOMPARE((QList<qint64>{w.sp.interfaces.calls, calls.size(), calls[0].command, calls[0].answer, calls[1].command,
                                added.cbSize, added.uID, added.uFlags, added.uCallbackMessage, added.hWnd == &w.f}),
                 (QList<qint64>{6, 2, Tray::Modify, false, Tray::Add, 88, 1, 7, 512, true}));
        QCOMPARE(added.szTip, QString("Bytes received: 6234 Bytes sent: 5000").append(QChar(0)).leftJustified(64));
        QCOMPARE(w.shown(), "4 4 Bytes received: 6234 Bytes sent: 5000");
        // Grouping past its picture, a zero left blank, and a negative total in the tip: a fall, so no traffic.
        w.rows[0].set(IfRow::dwSpeed, 1000000000).traffic(0, 0x80000000u);
        w.rows[1].traffic(0, 0);
        w.tick();
        QCOMPARE((QStringList{w.values(5, 5)[0], w.values(10, 10)[0], w.f.lblRecv->text(), w.shown()}),
                 (QStringList{"1000 000 000", "", "", "1 1 Bytes received: 0 Bytes sent: -2147483648"}));
    }

    void onlyChangedRowsAreWritten()
    {
        World w({etherRow(3, "first", 100, 100).set(IfRow::dwInUcastPkts, 10),
                 etherRow(4, "second", 200, 200).set(IfRow::dwType, 71).set(IfRow::dwAdminStatus, 9).set(IfRow::dwInUcastPkts, 12)});
        w.f.Load();
        for (int r : {4, 5, 6, 8})
            w.f.lvInterfaceInfo->topLevelItem(r - 1)->setText(1, "=");
        // The second interface: rows that differ are written, a code without a name (71, 9) keeps the text the
        // first one left, equal values are not touched.
        QTest::keyClick(w.f.Combo1, Qt::Key_Down);
        QCOMPARE(w.values(2, 11), (QStringList{"4", "Ethernet", "=", "=", "=", "Up", "=", "", "200", "12"}));
        // A tick with nothing changed writes no row; the next, only the counter that moved.
        for (int r = 0; r < 21; ++r)
            w.f.lvInterfaceInfo->topLevelItem(r)->setText(1, "*");
        w.tick();
        w.rows[1].set(IfRow::dwOutUcastPkts, 77);
        w.tick();
        QCOMPARE(w.values(), QStringList(16, "*") + QStringList{"77"} + QStringList(4, "*"));
    }

    void pictureAndTrayFollowTraffic()
    {
        World w({etherRow(1, "a", 100, 100), etherRow(2, "b", 50, 50)});
        w.f.Load();
        // Totals are 150 and 150 after the load. Signed comparisons: a total that fell counts as no traffic.
        const std::tuple<quint32, quint32, int> steps[] = {{100, 100, 1}, {101, 100, 2}, {101, 130, 3}, {200, 200, 4},
                                                           {10, 300, 3}, {0x7FFFFF00u, 300, 2}, {0x80000000u, 300, 1}};
        for (const auto &[in, out, picture] : steps) {
            const qsizetype calls = w.sp.tray.calls.size();
            w.rows[0].traffic(in, out);
            w.tick();
            QCOMPARE(w.shown(), QString("%1 %1 Bytes received: %2 Bytes sent: %3").arg(picture).arg(qint32(in + 50)).arg(qint32(out + 50)));
            QCOMPARE(w.sp.tray.calls.size(), calls + 1); // a Modify at every refresh, the picture changed or not
        }
    }

    void shrunkenTableFreezesTheDisplay()
    {
        World w(numberedRows(3));
        w.f.Load();
        QTest::keyClick(w.f.Combo1, Qt::Key_End);
        const QStringList before{w.f.lblRecv->text(), w.values(2, 2)[0], w.shown()};
        // The table shrinks below the chosen entry: one read a tick, and nothing moves, the tray included.
        w.rows = {w.rows[0].traffic(900, 900), w.rows[1]};
        const int reads = w.sp.interfaces.calls;
        w.tick();
        QCOMPARE((QStringList{w.f.lblRecv->text(), w.values(2, 2)[0], w.shown()}), before);
        QCOMPARE(w.sp.interfaces.calls, reads + 2);
        w.rows << etherRow(9, "c again", 1, 1); // it grows again: the display follows
        w.tick();
        QCOMPARE((QStringList{w.f.lblRecv->text(), w.values(2, 2)[0]}), (QStringList{"903", "9"}));
        // It shrinks between the two reads of one refresh: the record comes from the second read, and the
        // missing position is an error nothing catches.
        w.sp.interfaces.calls = 0;
        w.sp.interfaces.onCall = [](ScriptedInterfaceTable &t) { t.image = t.calls == 3 ? ifTable(numberedRows(1)) : t.image; };
        w.tick();
        QCOMPARE(std::pair(w.sp.process.ends, w.sp.dialogs.shown.last().prompt),
                 std::pair(1, QString("Run-time error '5':\n\nInvalid procedure call or argument")));
    }

    void trayHideRestoreAndUnload()
    {
        World w({etherRow(1, "a", 100, 100)});
        w.f.Load();
        ScriptedTray &tray = w.sp.tray;
        QWidget other;
        auto move = [&](int x) {
            QMouseEvent e(QEvent::MouseMove, QPointF(x, 2), w.f.mapToGlobal(QPointF(x, 2)), Qt::NoButton, Qt::NoButton, {});
            QApplication::sendEvent(&w.f, &e);
        };
        auto click = [&](QWidget *window, std::initializer_list<int> messages) {
            for (int m : messages)
                tray.click(window, 1, m);
        };
        // Each step, then whether the window shows, whether its menu does, and whether the icon is there.
        const std::tuple<std::function<void()>, bool, bool, bool> steps[] = {
            {[&] { QTest::mouseClick(w.f.cmdHide, Qt::LeftButton); }, false, false, true},
            // Down messages and other windows' icons do nothing; left up and double click restore.
            {[&] { click(&w.f, {Tray::LeftDown, Tray::RightDown}), click(&other, {Tray::LeftUp}); }, false, false, true},
            {[&] { click(&w.f, {Tray::LeftUp}); }, true, false, true},
            {[&] { w.f.setWindowState(Qt::WindowMinimized); }, false, false, true}, // the minimise box hides too
            {[&] { click(&w.f, {Tray::LeftDouble}); }, true, false, true},
            {[&] { click(&w.f, {Tray::RightUp}); }, true, true, true}, // the menu, shown or hidden
            {[&] { w.f.mPopupSys->hide(), w.f.cmdHide->click(), click(&w.f, {Tray::RightUp}); }, false, true, true},
            // Real mouse moves pass the same handler: harmless, unless the pointer stands at x = 517 pixels.
            {[&] { w.f.mPopRestore->trigger(), w.f.mPopupSys->hide(), move(516); }, true, false, true},
            {[&] { move(517); }, true, true, true},
            // Exit, the exit button and the close box unload; showing loads afresh.
            {[&] { w.f.mPopupSys->hide(), w.f.mPopExit->trigger(); }, false, false, false},
            {[&] { w.rows << etherRow(2, "b", 1, 1), w.tick(), w.f.Show(); }, true, false, true},
            {[&] { w.f.cmdExit->click(); }, false, false, false},
            {[&] { w.f.Show(), w.f.close(); }, false, false, false}};
        for (const auto &[step, window, menu, icon] : steps) {
            step();
            QCOMPARE(std::tuple(w.f.isVisible(), w.f.mPopupSys->isVisible(), tray.hasIcon(&w.f, 1)), std::tuple(window, menu, icon));
        }
        // Unloaded, the timer read nothing; loaded again, the list and the rows are whole once.
        QCOMPARE((QList<qint64>{w.sp.interfaces.calls, w.f.Combo1->count(), w.f.lvInterfaceInfo->topLevelItemCount(),
                                w.sp.process.ends}),
                 (QList<qint64>{6 + 6 + 6, 0, 0, 0}));
    }

    void loadFailures()
    {
        // No table: the reader's message, once though the box stays up a while as a real one does (the timer
        // starts only when the load is done), then the empty list fails the load.
        World none;
        none.sp.interfaces.supported = false;
        none.sp.dialogs.upForMs = 1000;
        QCOMPARE(errorOf([&] { none.f.Load(); }), int(basic::InvalidPropertyValue));
        QCOMPARE((QList<qint64>{none.sp.dialogs.shown.size(), none.sp.tray.calls.size()}), (QList<qint64>{1, 0}));
        // Opened through the registry, as a panel does, the error ends the program.
        World empty;
        empty.sp.forms.define("frmInterfaces", [&] { return std::make_unique<frmInterfaces>(empty.sp.platform); });
        boundary::run(empty.sp.dialogs, empty.sp.process, [&] { empty.sp.forms.Show("frmInterfaces"); });
        QCOMPARE(std::pair(empty.sp.process.ends, empty.sp.dialogs.shown.last().prompt),
                 std::pair(1, QString("Run-time error '380':\n\nInvalid property value")));
        // 40 interfaces: the reader's overflow passes out of the load, and out of a tick once the table grows.
        World many(numberedRows(40)), growing(numberedRows(39));
        QCOMPARE(errorOf([&] { many.f.Load(); }), int(basic::Overflow));
        growing.f.Load();
        growing.rows = numberedRows(40);
        growing.tick();
        QCOMPARE(std::pair(growing.sp.process.ends, growing.sp.dialogs.shown.last().prompt),
                 std::pair(1, QString("Run-time error '6':\n\nOverflow")));
    }

    void activityPictures()
    {
        // Lit (L) or dark (D), upper left screen then lower right, for the pictures 1 to 4 at both sizes.
        QString screens;
        for (int size : {32, 16})
            for (int index = 1; index <= 4; ++index)
                for (const QRect &screen : {activity::upperLeftScreen(size), activity::lowerRightScreen(size)}) {
                    const QColor c = activity::picture(index, size).toImage().pixelColor(screen.center());
                    screens += c == activity::LitScreen ? 'L' : c == activity::DarkScreen ? 'D' : '?';
                }
        QCOMPARE(screens, QString("DDLDDLLL").repeated(2));
    }
};

QTEST_MAIN(tst_frminterfaces)
#include "tst_frminterfaces.moc"
