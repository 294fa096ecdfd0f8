// The traffic window and its reader over table images built at the system's row offsets, not the reader's own.

#include "doubles/ScriptedPlatform.h"
#include "netmon/ActivityPictures.h"
#include "netmon/frmInterfaces.h"

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
        dwAdminStatus = 540, dwOperStatus = 544, dwInOctets = 552, dwInUcastPkts = 556, dwOutOctets = 576,
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

// The window and a reader over one scripted table; tick() publishes the rows and lets Timer1 run once.
struct World {
    ScriptedPlatform sp;
    QList<IfRow> rows;
    frmInterfaces f{sp.platform};
    CIpHelper reader{sp.interfaces, sp.dialogs};

    explicit World(QList<IfRow> r = {}) : rows(std::move(r)) { sp.interfaces.image = ifTable(rows); }
    void tick() { sp.interfaces.image = ifTable(rows), sp.clock.advance(200); }
    QString read(const QByteArray &image)
    {
        QString outcome;
        try {
            outcome = QString("rows %1").arg((sp.interfaces.image = image, reader.Interfaces()->Count()));
        } catch (const basic::RuntimeError &e) {
            outcome = QString("error %1").arg(e.number());
        }
        return outcome + QString(", in %1, out %2").arg(reader.BytesReceived()).arg(reader.BytesSent());
    }
    CInterfaces::Record only(const IfRow &row) { return sp.interfaces.image = ifTable({row}), reader.Interfaces()->Item(1); }
    QStringList values()
    {
        QStringList v;
        for (int r = 0; r < 21; ++r)
            v << f.lvInterfaceInfo->topLevelItem(r)->text(1);
        return v;
    }
    // Image1 and the icon: upper left (received) and lower right (sent) screen lit or dark; the icon's tip.
    QString shown()
    {
        QString s;
        for (const QImage &image : {f.Image1->pixmap().toImage(), sp.tray.icon(&f, 1)->hIcon.pixmap(16).toImage()})
            for (const QRect &at : {activity::upperLeftScreen(image.width()), activity::lowerRightScreen(image.width())})
                s += image.pixelColor(at.center()) == activity::LitScreen ? 'L' : image.pixelColor(at.center()) == activity::DarkScreen ? 'D' : '?';
        return s + ' ' + sp.tray.icon(&f, 1)->tipText();
    }
};

} // namespace

class tst_frminterfaces : public QObject {
    Q_OBJECT
private slots:
    void readsAndTheirFailures()
    {
        const std::pair<QByteArray, const char *> reads[] = {
            {ifTable({}), "rows 0, in 0, out 0"}, {QByteArray(), "error 9, in 0, out 0"}, // size 0: an empty array
            {QByteArray(2, '\1'), "error 9, in 0, out 0"}, {ifTable({}, 0xFFFFFFFF), "rows 0, in 0, out 0"},
            {ifTable({}, 32768), "error 6, in 0, out 0"}, // the count is a 16-bit integer
            {ifTable({etherRow(1, "a", 9, 9)}, 2), "error 9, in 9, out 9"}, // a missing row, not read past the end
            // Counters enter bit for bit, so 2^31 and above read negative; the totals are checked sums.
            {ifTable({etherRow(1, "a", 0x80000000u, 0xFFFFFFFFu), etherRow(2, "b", 5, 5)}), "rows 2, in -2147483643, out 4"},
            {ifTable({etherRow(1, "a", 0x7FFFFFF0u, 1), etherRow(2, "b", 0x10, 1)}), "error 6, in 2147483632, out 1"},
            {ifTable({etherRow(1, "a", 1, 0x80000000u), etherRow(2, "b", 1, 0x80000000u)}), "error 6, in 2, out -2147483648"},
            {ifTable({etherRow(1, "a", 0x7FFFFFFEu, 0), etherRow(2, "b", 1, 0)}), "rows 2, in 2147483647, out 0"},
            // 16-bit offsets: row 39 (offset 32684) is the last that fits; row 40 overflows, the 39 before it summed.
            {ifTable(numberedRows(39)), "rows 39, in 780, out 39780"}, {ifTable(numberedRows(40)), "error 6, in 780, out 39780"},
            // An address longer than the field's 8 bytes fails on its row.
            {ifTable({etherRow(1, "a", 40, 4), IfRow().phys(QByteArray(8, '\1'), 9)}), "error 9, in 40, out 4"}};
        for (const auto &[image, outcome] : reads)
            QCOMPARE(World().read(image), QLatin1String(outcome));
        // No table: the message at every read, the totals back at 0. Grown between size and fill: silently nothing.
        World w(numberedRows(1)), g(numberedRows(1));
        w.reader.Interfaces();
        w.sp.interfaces.supported = false;
        g.sp.interfaces.onCall = [](ScriptedInterfaceTable &t) { t.image = ifTable(numberedRows(t.calls < 2 ? 1 : 2)); };
        QCOMPARE(QStringList({w.read({}), w.read({}), w.sp.dialogs.shown.value(1).prompt, g.read({}), g.read({})}),
                 QStringList({"rows 0, in 0, out 0", "rows 0, in 0, out 0", CIpHelper::NotSupportedText,
                              "rows 0, in 0, out 0", "rows 2, in 3, out 2003"}));
    }

    void textsAndTheCollection()
    {
        World w;
        QCOMPARE(w.only(etherRow(1, "\\DEV", 0, 0))->InterfaceName(), QString::fromLatin1("\\\0D\0E\0V\0", 8) + QString(504, QChar(0)));
        // Address bytes in hex without padding, but "00" for a zero, kept as it stands; then the description.
        const std::pair<IfRow, QString> texts[] = {
            {IfRow().phys(QByteArray::fromHex("000a959d6816"), 6).descr("Realtek", 4), "00-A-95-9D-68-16|Real"},
            {IfRow().phys(QByteArray::fromHex("0102030405060708"), 8).descr("\xe9t\xe9", 3), QStringLiteral("1-2-3-4-5-6-7-8|\u00e9t\u00e9")},
            // A length past 2^31 is negative; a counted terminator stays; no more than the field is taken.
            {IfRow().phys(QByteArray(8, '\1'), 0x80000000u).descr("lo", 0), "|"}, {IfRow().descr(QByteArray("lo\0", 3), 3), QString::fromLatin1("|lo\0", 4)},
            {IfRow().descr("x", 1000), "|x" + QString(255, QChar(0))}};
        for (const auto &[text, expected] : texts)
            QCOMPARE(QStringList({w.only(text)->AdapterAddress(), w.reader.Interfaces()->Item(1)->InterfaceDescription()}).join('|'), expected);
        // The collection has no keys: a text index fails like a position out of range.
        QVERIFY_THROWS_EXCEPTION(basic::RuntimeError, w.reader.Interfaces()->Item(QStringLiteral("1")));
    }

    void loadAndRefresh()
    {
        // Distinct values in every number field of the first row, so a field read from a neighbour's offset shows.
        IfRow first = IfRow().name("Intel PRO/1000").descr("Intel PRO/1000", 14).phys(QByteArray::fromHex("000a959d6816"), 6);
        for (quint32 at = IfRow::dwIndex, v = 101; at <= IfRow::dwOutQLen; at += 4)
            if (at < IfRow::dwPhysAddrLen || at >= IfRow::dwAdminStatus)
                first.set(IfRow::Offset(at), v++);
        World w({first.set(IfRow::dwType, 24).set(IfRow::dwAdminStatus, 2).set(IfRow::dwOperStatus, 3).set(IfRow::dwInUcastPkts, 0)
                     .set(IfRow::dwOutUcastPkts, 0), etherRow(1, "lo", 5000, 5000)});
        w.f.Load();
        // The first refresh compares with an empty record: zeros stay blank, LastChange is never copied (not 107).
        // Row 1 holds the raw 512-character name; its cell shows it up to the first zero, as the native list did.
        const QString name = QString::fromLatin1(first.bytes.left(512));
        QCOMPARE(w.values(), (QStringList{name, "101", "Loopback", "103", "104", "00-A-95-9D-68-16", "Down", "Connecting", "", "108",
                                          "", "110", "111", "112", "113", "114", "", "116", "117", "118", "119"}));
        const auto *cells = static_cast<QStyledItemDelegate *>(w.f.lvInterfaceInfo->itemDelegate());
        QCOMPARE((QStringList{cells->displayText(name, {}), cells->displayText(QString(1, QChar(0)) + "x", {}), w.f.Combo1->itemText(0),
                              w.f.Combo1->itemText(1), w.f.lblRecv->text(), w.f.lblSent->text(), w.shown()}),
                 (QStringList{"I", "", "Intel PRO/1000", "lo", "5 108", "5 114", "LLLL Bytes received: 5108 Bytes sent: 5114"}));
        // Two reads for the list, two per refresh; the first refresh's Modify comes before the icon and finds none.
        const QList<ScriptedTray::Call> &calls = w.sp.tray.calls;
        const NotifyIconData &added = calls.value(1).data;
        QCOMPARE((QList<qint64>{w.sp.interfaces.calls, calls.size(), calls[0].command, calls[0].answer, calls[1].command,
                                added.cbSize, added.uID, added.uFlags, added.uCallbackMessage, added.hWnd == &w.f,
                                added.hIcon.availableSizes().value(0).width(), w.f.Image1->pixmap().width()}),
                 (QList<qint64>{6, 2, Tray::Modify, false, Tray::Add, 88, 1, 7, 512, true, 16, 32}));
        QCOMPARE(added.szTip, QString("Bytes received: 5108 Bytes sent: 5114").append(QChar(0)).leftJustified(64));
        // Signed comparisons with the last totals: one that fell counts as no traffic.
        w.rows[1].traffic(0, 0);
        const std::tuple<quint32, quint32, const char *> steps[] = {
            {0, 0x80000000u, "DDDD"}, {1, 0x80000000u, "LDLD"}, {1, 0, "DLDL"}, {100, 100, "LLLL"}, {10, 300, "DLDL"},
            {0x7FFFFF00u, 300, "LDLD"}, {0x80000000u, 300, "DDDD"}};
        for (const auto &[in, out, lit] : steps) {
            w.rows[0].traffic(in, out);
            w.tick(); // a Modify at every refresh, the picture changed or not: the tip follows
            QCOMPARE(w.shown(), QString("%1 Bytes received: %2 Bytes sent: %3").arg(lit).arg(qint32(in)).arg(qint32(out)));
        }
    }

    void onlyChangedRowsAreWritten()
    {
        World w({etherRow(3, "first", 100, 100).set(IfRow::dwInUcastPkts, 10),
                 etherRow(4, "second", 200, 200).set(IfRow::dwType, 71).set(IfRow::dwAdminStatus, 9).set(IfRow::dwInUcastPkts, 12)});
        w.f.Load();
        for (int r = 0; r < 21; ++r)
            w.f.lvInterfaceInfo->topLevelItem(r)->setText(1, "*");
        // The second interface: rows that differ are written; a code without a name (71, 9) or an equal value is not.
        QTest::keyClick(w.f.Combo1, Qt::Key_Down);
        QCOMPARE(w.values().mid(1, 10), (QStringList{"4", "*", "*", "*", "*", "*", "*", "*", "200", "12"}));
        w.tick(); // nothing changed
        w.rows[1].set(IfRow::dwOutUcastPkts, 77);
        w.tick();
        QCOMPARE(w.values().mid(10), (QStringList{"12", "*", "*", "*", "*", "200", "77", "*", "*", "*", "*"}));
        // The table shrinks below the chosen entry: one read a tick, and nothing moves, the tray included.
        const QStringList before{w.f.lblRecv->text(), w.values()[1], w.shown(), QString::number(w.sp.interfaces.calls + 2)};
        w.rows = {w.rows[0].traffic(900, 900)};
        w.tick();
        QCOMPARE((QStringList{w.f.lblRecv->text(), w.values()[1], w.shown(), QString::number(w.sp.interfaces.calls)}), before);
        // It shrinks between the two reads of one refresh: the record comes from the second, and the missing
        // position is an error nothing catches.
        w.sp.interfaces.calls = 0;
        w.sp.interfaces.onCall = [](ScriptedInterfaceTable &t) { t.image = t.calls == 3 ? ifTable(numberedRows(1)) : t.image; };
        w.rows = numberedRows(2);
        w.tick();
        QCOMPARE(std::pair(w.sp.process.ends, w.sp.dialogs.shown.last().prompt),
                 std::pair(1, QString("Run-time error '5':\n\nInvalid procedure call or argument")));
    }

    void trayHideRestoreAndUnload()
    {
        World w({etherRow(1, "a", 100, 100)});
        w.f.Load();
        auto tray = [&](int message) { w.sp.tray.click(&w.f, 1, message); };
        auto move = [&](int x) {
            QMouseEvent e(QEvent::MouseMove, QPointF(x, 2), QPointF(x, 2), Qt::NoButton, Qt::NoButton, {});
            QCoreApplication::sendEvent(&w.f, &e);
        };
        // Each step, then whether the window shows, whether its menu does, and whether the icon is there.
        const std::tuple<std::function<void()>, bool, bool, bool> steps[] = {
            // Down messages and other windows' icons do nothing; left up and double click restore.
            {[&] { w.f.cmdHide->click(), tray(Tray::LeftDown), w.sp.tray.click(new QWidget(&w.f), 1, Tray::LeftUp); }, false, false, true},
            {[&] { tray(Tray::LeftUp); }, true, false, true},
            {[&] { w.f.cmdHide->click(), tray(Tray::LeftDouble); }, true, false, true},
            {[&] { w.f.cmdHide->click(), tray(Tray::RightDown), tray(Tray::RightUp); }, false, true, true}, // shown or hidden
            // Real mouse moves pass the same handler: harmless, unless the pointer stands at x = 517 pixels.
            {[&] { w.f.mPopRestore->trigger(), w.f.mPopupSys->hide(), move(516); }, true, false, true},
            {[&] { move(517); }, true, true, true},
            // Exit, the exit button and the close box unload; showing loads afresh.
            {[&] { w.f.mPopupSys->hide(), w.f.mPopExit->trigger(), w.tick(); }, false, false, false},
            {[&] { w.f.Show(); }, true, false, true},
            {[&] { w.f.cmdExit->click(), w.f.Show(), w.f.close(); }, false, false, false}};
        for (const auto &[step, window, menu, icon] : steps) {
            step();
            QCOMPARE(std::tuple(w.f.isVisible(), w.f.mPopupSys->isVisible(), w.sp.tray.hasIcon(&w.f, 1)), std::tuple(window, menu, icon));
        }
        // Unloaded, the timer read nothing; each load read the list and the first rows once; the last left nothing.
        QCOMPARE((QList<qint64>{w.sp.interfaces.calls, w.f.Combo1->count(), w.sp.process.ends}), (QList<qint64>{18, 0, 0}));
    }

    void loadFailures()
    {
        // No table: the reader's message once, though the box stays up as a real one does (the timer starts when
        // the load is done); then the empty list fails the load, ending the program when a panel opens the window.
        World w;
        w.sp.interfaces.supported = false;
        w.sp.dialogs.upForMs = 1000;
        w.sp.forms.define("frmInterfaces", [&] { return std::make_unique<frmInterfaces>(w.sp.platform); });
        boundary::run(w.sp.dialogs, w.sp.process, [&] { w.sp.forms.Show("frmInterfaces"); });
        const QList<ShownBox> &shown = w.sp.dialogs.shown;
        QCOMPARE((QStringList{shown.value(0).prompt, shown.value(1).prompt, QString::number(shown.size() + w.sp.tray.calls.size())}),
                 (QStringList{CIpHelper::NotSupportedText, "Run-time error '380':\n\nInvalid property value", "2"}));
        QCOMPARE(w.sp.process.ends, 1);
    }
};

QTEST_MAIN(tst_frminterfaces)
#include "tst_frminterfaces.moc"
