#include "IfTableImage.h"
#include "doubles/ScriptedPlatform.h"
#include "netmon/ActivityPictures.h"
#include "netmon/frmInterfaces.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QSet>
#include <QStyledItemDelegate>
#include <QTest>
#include <QTreeWidget>

namespace {

struct World {
    ScriptedPlatform sp;
    std::unique_ptr<frmInterfaces> form;
    QList<IfRow> rows;

    explicit World(QList<IfRow> r) : rows(std::move(r)) { sync(); }
    void sync() { sp.interfaces.image = ifTable(rows); }
    void load()
    {
        form = std::make_unique<frmInterfaces>(sp.platform);
        form->Load();
    }
    QString value(int row) const { return form->lvInterfaceInfo->topLevelItem(row - 1)->text(1); }
    void mark()
    {
        for (int r = 0; r < 21; ++r)
            form->lvInterfaceInfo->topLevelItem(r)->setText(1, QStringLiteral("*"));
    }
    // The picture index Image1 shows, found among the four.
    int picture() const
    {
        for (int i = 1; i <= 4; ++i)
            if (form->Image1->pixmap().cacheKey() == form->ImageList2(i).cacheKey())
                return i;
        return 0;
    }
    int trayPicture(const NotifyIconData &d) const
    {
        for (int i = 1; i <= 4; ++i)
            if (d.hIcon.cacheKey() == form->ImageList1(i).cacheKey())
                return i;
        return 0;
    }
    void tick()
    {
        sync();
        sp.clock.advance(200);
    }
};

IfRow counters(IfRow r, std::uint32_t in, std::uint32_t out)
{
    return r.set(IfRow::dwInOctets, in).set(IfRow::dwOutOctets, out);
}

int errorOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const basic::RuntimeError &e) {
        return e.number();
    }
    return 0;
}

} // namespace

class tst_frminterfaces : public QObject {
    Q_OBJECT
private slots:
    void loadAndFirstRefresh();
    void onlyChangedRowsAreWritten();
    void pictureAndTrayFollowTraffic();
    void shrunkenTableFreezesTheDisplay();
    void hideRestoreMenuAndUnload();
    void loadFailures();
    void activityPictures();
};

void tst_frminterfaces::loadAndFirstRefresh()
{
    IfRow eth = etherRow(7, "Intel PRO/1000", 1234, 0);
    eth.set(IfRow::dwInUcastPkts, 0).set(IfRow::dwMtu, 1500).set(IfRow::dwLastChange, 99999);
    IfRow lo = etherRow(1, "lo", 5000, 5000);
    lo.set(IfRow::dwType, 24).set(IfRow::dwSpeed, 1000000000);
    World w({eth, lo});
    w.load();
    frmInterfaces &f = *w.form;

    QCOMPARE(f.windowTitle(), QStringLiteral("Network Interfaces Information"));
    QVERIFY(f.isVisible());
    QCOMPARE(f.Combo1->count(), 2);
    QCOMPARE(f.Combo1->itemText(0), QStringLiteral("Intel PRO/1000"));
    QCOMPARE(f.Combo1->itemText(1), QStringLiteral("lo"));
    QCOMPARE(f.Combo1->currentIndex(), 0);
    QCOMPARE(f.lvInterfaceInfo->topLevelItemCount(), 21);
    QCOMPARE(f.lvInterfaceInfo->headerItem()->text(0), QStringLiteral("Parameter"));
    QCOMPARE(f.lvInterfaceInfo->topLevelItem(8)->text(0), QStringLiteral("Last time operational status changed"));
    QCOMPARE(f.lvInterfaceInfo->topLevelItem(20)->text(0), QStringLiteral("Output queue length"));

    // First refresh against the empty record: values, and zeros left blank.
    QCOMPARE(w.value(1).left(6), QString::fromLatin1("I\0n\0t\0", 6));
    QCOMPARE(w.value(1).size(), 512);
    // The cell shows its text up to the first zero, as the native list did.
    auto *cells = qobject_cast<QStyledItemDelegate *>(f.lvInterfaceInfo->itemDelegate());
    QVERIFY(cells);
    QCOMPARE(cells->displayText(w.value(1), QLocale()), QStringLiteral("I"));
    QCOMPARE(cells->displayText(QStringLiteral("Loopback"), QLocale()), QStringLiteral("Loopback"));
    QCOMPARE(w.value(2), QStringLiteral("7"));
    QCOMPARE(w.value(3), QStringLiteral("Ethernet"));
    QCOMPARE(w.value(4), QStringLiteral("1500"));
    QCOMPARE(w.value(5), QStringLiteral("100 000 000"));
    QCOMPARE(w.value(6), QStringLiteral("00-A-95-9D-68-16"));
    QCOMPARE(w.value(7), QStringLiteral("Up"));
    QCOMPARE(w.value(8), QStringLiteral("Operational"));
    QCOMPARE(w.value(9), QString()); // LastChange is 0 in every record
    QCOMPARE(w.value(10), QStringLiteral("1 234"));
    QCOMPARE(w.value(11), QString()); // 0 equals the empty record's 0
    QCOMPARE(w.value(16), QString());
    QCOMPARE(f.lblRecv->text(), QStringLiteral("6 234")); // totals of all interfaces
    QCOMPARE(f.lblSent->text(), QStringLiteral("5 000"));
    QCOMPARE(w.picture(), 4); // compared with 0: history counts as traffic

    // Two reads at load's list, two per refresh; the first refresh's modify
    // comes before the icon exists and finds nothing.
    QCOMPARE(w.sp.interfaces.calls, 6);
    QCOMPARE(w.sp.tray.calls.size(), 2);
    QCOMPARE(w.sp.tray.calls[0].command, int(Tray::Modify));
    QVERIFY(!w.sp.tray.calls[0].answer);
    const NotifyIconData &added = w.sp.tray.calls[1].data;
    QCOMPARE(w.sp.tray.calls[1].command, int(Tray::Add));
    QVERIFY(w.sp.tray.calls[1].answer);
    QCOMPARE(added.cbSize, 88);
    QCOMPARE(added.hWnd, &f);
    QCOMPARE(added.uID, 1);
    QCOMPARE(added.uFlags, 7);
    QCOMPARE(added.uCallbackMessage, 512);
    QCOMPARE(w.trayPicture(added), 4);
    QCOMPARE(added.szTip.size(), 64);
    QCOMPARE(added.szTip, QStringLiteral("Bytes received: 6234 Bytes sent: 5000").append(QChar(0)).leftJustified(64));
    QCOMPARE(added.tipText(), QStringLiteral("Bytes received: 6234 Bytes sent: 5000"));
    QVERIFY(w.sp.dialogs.shown.isEmpty());

    // Grouping past the picture and at zero; negative totals in the tip.
    w.rows[0] = counters(w.rows[0].set(IfRow::dwSpeed, 1000000000), 0, 0x80000000u);
    w.rows[1] = counters(w.rows[1], 0, 0);
    w.tick();
    QCOMPARE(w.value(5), QStringLiteral("1000 000 000"));
    QCOMPARE(w.value(10), QString());
    QCOMPARE(f.lblRecv->text(), QString());
    QCOMPARE(w.sp.tray.calls.last().data.tipText(), QStringLiteral("Bytes received: 0 Bytes sent: -2147483648"));
    QCOMPARE(w.sp.interfaces.calls, 10);
}

void tst_frminterfaces::onlyChangedRowsAreWritten()
{
    IfRow a = etherRow(3, "first", 100, 100);
    a.set(IfRow::dwInUcastPkts, 10);
    IfRow b = etherRow(4, "second", 200, 200);
    b.set(IfRow::dwType, 71).set(IfRow::dwAdminStatus, 9).set(IfRow::dwOperStatus, 5).set(IfRow::dwInUcastPkts, 12);
    World w({a, b});
    w.load();

    // Switching to the second interface: rows that differ are written, a
    // code without a name writes nothing and keeps the first interface's
    // text, equal values are left alone.
    for (int r : {4, 5, 6, 8})
        w.form->lvInterfaceInfo->topLevelItem(r - 1)->setText(1, QStringLiteral("="));
    QTest::keyClick(w.form->Combo1, Qt::Key_Down);
    QCOMPARE(w.form->Combo1->currentIndex(), 1);
    QCOMPARE(w.value(1).left(4), QString::fromLatin1("s\0e\0", 4));
    QCOMPARE(w.value(2), QStringLiteral("4"));
    QCOMPARE(w.value(3), QStringLiteral("Ethernet")); // 71 has no name
    QCOMPARE(w.value(7), QStringLiteral("Up"));       // nor has 9
    for (int r : {4, 5, 6, 8})
        QCOMPARE(w.value(r), QStringLiteral("="));
    QCOMPARE(w.value(10), QStringLiteral("200"));
    QCOMPARE(w.value(11), QStringLiteral("12"));

    // A tick with nothing changed writes no row.
    w.mark();
    w.tick();
    for (int r = 1; r <= 21; ++r)
        QCOMPARE(w.value(r), QStringLiteral("*"));

    // Only the counter that moved is written.
    w.rows[1].set(IfRow::dwInUcastPkts, 11);
    w.tick();
    QCOMPARE(w.value(11), QStringLiteral("11"));
    QCOMPARE(w.value(10), QStringLiteral("*"));

    // And the timer keeps refreshing the chosen interface.
    w.rows[1].set(IfRow::dwOutUcastPkts, 77);
    w.tick();
    QCOMPARE(w.value(17), QStringLiteral("77"));
}

void tst_frminterfaces::pictureAndTrayFollowTraffic()
{
    World w({etherRow(1, "a", 100, 100), etherRow(2, "b", 50, 50)});
    w.load();
    QCOMPARE(w.picture(), 4);
    struct Step {
        std::uint32_t in, out;
        int picture;
    };
    // Totals are 150/150 after load.
    const Step steps[] = {
        {100, 100, 1}, // nothing new
        {101, 100, 2}, // received only
        {101, 130, 3}, // sent only
        {200, 200, 4}, // both
        {10, 300, 3},  // received fell (a wrap): no traffic that way
        {0x7FFFFF00u, 300, 2},
        {0x80000000u, 300, 1}, // the total turns negative: a fall, signed
    };
    int calls = static_cast<int>(w.sp.tray.calls.size());
    for (const Step &s : steps) {
        w.rows[0] = counters(w.rows[0], s.in, s.out);
        w.tick();
        QCOMPARE(w.picture(), s.picture);
        // A modify at every refresh, picture changed or not, with the tip.
        QCOMPARE(w.sp.tray.calls.size(), ++calls);
        const ScriptedTray::Call &c = w.sp.tray.calls.last();
        QCOMPARE(c.command, int(Tray::Modify));
        QVERIFY(c.answer);
        QCOMPARE(w.trayPicture(c.data), s.picture);
        const qint32 in = static_cast<qint32>(s.in + 50u), out = static_cast<qint32>(s.out + 50u);
        QCOMPARE(c.data.tipText(), QStringLiteral("Bytes received: %1 Bytes sent: %2").arg(in).arg(out));
    }
    QCOMPARE(w.trayPicture(*w.sp.tray.icon(w.form.get(), 1)), 1);
}

void tst_frminterfaces::shrunkenTableFreezesTheDisplay()
{
    World w({etherRow(1, "a", 100, 100), etherRow(2, "b", 200, 200), etherRow(3, "c", 300, 300)});
    w.load();
    QTest::keyClick(w.form->Combo1, Qt::Key_End);
    QCOMPARE(w.form->Combo1->currentIndex(), 2);
    QCOMPARE(w.value(2), QStringLiteral("3"));
    const QString recv = w.form->lblRecv->text();
    const int calls = static_cast<int>(w.sp.tray.calls.size());
    const int reads = w.sp.interfaces.calls;

    // The table shrinks below the selected position: one read, and nothing
    // else moves, the tray included.
    w.rows = {counters(w.rows[0], 900, 900), w.rows[1]};
    w.tick();
    w.tick();
    QCOMPARE(w.sp.interfaces.calls, reads + 4);
    QCOMPARE(w.sp.tray.calls.size(), calls);
    QCOMPARE(w.form->lblRecv->text(), recv);
    QCOMPARE(w.value(2), QStringLiteral("3"));

    // It grows again: the display follows.
    w.rows << etherRow(9, "c again", 1, 1);
    w.tick();
    QCOMPARE(w.value(2), QStringLiteral("9"));
    QCOMPARE(w.form->lblRecv->text(), QStringLiteral("1 101"));
    QCOMPARE(w.sp.tray.calls.size(), calls + 1);

    // It shrinks between the two reads of one refresh: the record is taken
    // from the second read, and the missing position is a failure that
    // nothing catches.
    w.sp.interfaces.calls = 0;
    w.sp.interfaces.onCall = [](ScriptedInterfaceTable &t) {
        if (t.calls == 3) // the size call of the second read
            t.image = ifTable({etherRow(1, "a", 1, 1)});
    };
    w.sp.clock.advance(200);
    QCOMPARE(w.sp.process.ends, 1);
    QCOMPARE(w.sp.dialogs.shown.last().prompt,
             QStringLiteral("Run-time error '5':\n\nInvalid procedure call or argument"));
}

void tst_frminterfaces::hideRestoreMenuAndUnload()
{
    World w({etherRow(1, "a", 100, 100)});
    w.load();
    frmInterfaces &f = *w.form;
    ScriptedTray &tray = w.sp.tray;

    QTest::mouseClick(f.cmdHide, Qt::LeftButton);
    QVERIFY(!f.isVisible());
    QVERIFY(tray.hasIcon(&f, 1));
    // Hidden, the icon keeps following the traffic.
    w.rows[0] = counters(w.rows[0], 150, 100);
    w.tick();
    QCOMPARE(tray.icon(&f, 1)->tipText(), QStringLiteral("Bytes received: 150 Bytes sent: 100"));
    QCOMPARE(w.trayPicture(*tray.icon(&f, 1)), 2);

    // Left button up and double click restore; down messages, other windows'
    // icons and unknown numbers do nothing.
    tray.click(&f, 1, Tray::LeftDown);
    tray.click(&f, 1, Tray::RightDown);
    QWidget other;
    tray.click(&other, 1, Tray::LeftUp);
    QVERIFY(!f.isVisible());
    tray.click(&f, 1, Tray::LeftUp);
    QVERIFY(f.isVisible());
    QVERIFY(!(f.windowState() & Qt::WindowMinimized));
    f.setWindowState(Qt::WindowMinimized); // the minimise box hides too
    QVERIFY(!f.isVisible());
    tray.click(&f, 1, Tray::LeftDouble);
    QVERIFY(f.isVisible());

    // Right button up pops the menu, shown or hidden.
    QVERIFY(!f.mPopupSys->isVisible());
    tray.click(&f, 1, Tray::RightUp);
    QVERIFY(f.mPopupSys->isVisible());
    QCOMPARE(f.mPopRestore->text(), QStringLiteral("&Restore"));
    QCOMPARE(f.mPopExit->text(), QStringLiteral("&Exit"));
    f.mPopupSys->hide();
    QTest::mouseClick(f.cmdHide, Qt::LeftButton);
    tray.click(&f, 1, Tray::RightUp);
    QVERIFY(f.mPopupSys->isVisible());
    QVERIFY(!f.isVisible());
    f.mPopRestore->trigger();
    QVERIFY(f.isVisible());
    f.mPopupSys->hide();

    // Real mouse moves go through the same handler: harmless, unless the
    // pointer stands at x = 517 pixels.
    auto move = [&](int x) {
        QMouseEvent e(QEvent::MouseMove, QPointF(x, 2), f.mapToGlobal(QPointF(x, 2)), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
        QApplication::sendEvent(&f, &e);
    };
    move(516);
    QVERIFY(!f.mPopupSys->isVisible());
    move(517);
    QVERIFY(f.mPopupSys->isVisible());
    f.mPopupSys->hide();

    // Exit: the icon goes, the timer stops, the window is not loaded.
    const int reads = w.sp.interfaces.calls;
    f.mPopExit->trigger();
    QVERIFY(!tray.hasIcon(&f, 1));
    QCOMPARE(tray.calls.last().command, int(Tray::Delete));
    QVERIFY(!f.isVisible());
    QVERIFY(!f.isLoaded());
    w.tick();
    QCOMPARE(w.sp.interfaces.calls, reads);

    // Shown again, it loads afresh: one list, 21 rows, a new icon.
    w.rows << etherRow(2, "b", 1, 1);
    w.sync();
    f.Show();
    QVERIFY(f.isLoaded());
    QCOMPARE(f.Combo1->count(), 2);
    QCOMPARE(f.lvInterfaceInfo->topLevelItemCount(), 21);
    QCOMPARE(w.value(2), QStringLiteral("1"));
    QVERIFY(tray.hasIcon(&f, 1));
    QCOMPARE(tray.calls.last().command, int(Tray::Add));

    // cmdExit and the close box unload as well.
    QTest::mouseClick(f.cmdExit, Qt::LeftButton);
    QVERIFY(!tray.hasIcon(&f, 1));
    f.Show();
    QVERIFY(tray.hasIcon(&f, 1));
    f.close();
    QVERIFY(!tray.hasIcon(&f, 1));
    QCOMPARE(w.sp.process.ends, 0);
}

void tst_frminterfaces::loadFailures()
{
    {
        // No table at all: the reader's message, then selecting the first
        // entry of an empty list fails the load.
        // The box stays up a while, as a real one does: the message shows
        // once all the same, and the load fails on the empty list.
        World w({});
        w.sp.interfaces.supported = false;
        w.sp.dialogs.upForMs = 1000;
        auto *form = new frmInterfaces(w.sp.platform);
        w.form.reset(form);
        QCOMPARE(errorOf([&] { form->Load(); }), int(basic::InvalidPropertyValue));
        QCOMPARE(w.sp.dialogs.shown.size(), 1);
        QCOMPARE(w.sp.dialogs.shown[0].prompt, QStringLiteral("IP Helper is not supported by this system."));
        QVERIFY(w.sp.tray.calls.isEmpty());
    }
    {
        World w({});
        w.form = std::make_unique<frmInterfaces>(w.sp.platform);
        QCOMPARE(errorOf([&] { w.form->Load(); }), int(basic::InvalidPropertyValue));
        QVERIFY(w.sp.dialogs.shown.isEmpty());
    }
    {
        // Through the registry, as a panel opens it: the error ends the program.
        World w({});
        w.sp.forms.define(QStringLiteral("frmInterfaces"),
                          [&] { return std::make_unique<frmInterfaces>(w.sp.platform); });
        boundary::run(w.sp.dialogs, w.sp.process, [&] { w.sp.forms.Show(QStringLiteral("frmInterfaces")); });
        QCOMPARE(w.sp.process.ends, 1);
        QCOMPARE(w.sp.dialogs.shown.last().prompt, QStringLiteral("Run-time error '380':\n\nInvalid property value"));
    }
    {
        // 40 interfaces: the reader's overflow passes out of the load.
        QList<IfRow> rows;
        for (std::uint32_t i = 1; i <= 40; ++i)
            rows << etherRow(i, "if" + QByteArray::number(i), 1, 1);
        World w(rows.mid(0, 39));
        w.load();
        QCOMPARE(w.form->Combo1->count(), 39);
        // The table grows past the ceiling while the window runs: the next
        // tick ends the program with the overflow.
        w.rows = rows;
        w.tick();
        QCOMPARE(w.sp.process.ends, 1);
        QCOMPARE(w.sp.dialogs.shown.last().prompt, QStringLiteral("Run-time error '6':\n\nOverflow"));
        World again(rows);
        again.form = std::make_unique<frmInterfaces>(again.sp.platform);
        QCOMPARE(errorOf([&] { again.form->Load(); }), int(basic::Overflow));
    }
}

void tst_frminterfaces::activityPictures()
{
    for (int size : {16, 32}) {
        for (int index = 1; index <= 4; ++index) {
            const QImage image = activity::picture(index, size).toImage();
            QCOMPARE(image.size(), QSize(size, size));
            const bool upperLit = index == 2 || index == 4;
            const bool lowerLit = index == 3 || index == 4;
            const QColor upper = image.pixelColor(activity::upperLeftScreen(size).center());
            const QColor lower = image.pixelColor(activity::lowerRightScreen(size).center());
            QCOMPARE(upper, upperLit ? activity::LitScreen : activity::DarkScreen);
            QCOMPARE(lower, lowerLit ? activity::LitScreen : activity::DarkScreen);
            QVERIFY(activity::upperLeftScreen(size).center().x() < size / 2);
            QVERIFY(activity::lowerRightScreen(size).center().y() > size / 2);
            QSet<QRgb> colours;
            int transparent = 0;
            for (int y = 0; y < size; ++y)
                for (int x = 0; x < size; ++x) {
                    const QRgb p = image.pixel(x, y);
                    if (qAlpha(p) == 0)
                        ++transparent;
                    else
                        colours.insert(p);
                }
            QVERIFY(colours.size() <= 16);
            QVERIFY(transparent > 0);
        }
    }
    ScriptedPlatform sp;
    frmInterfaces f(sp.platform);
    QCOMPARE(f.ImageList2(1).size(), QSize(32, 32));
    QCOMPARE(f.ImageList1(4).availableSizes().value(0), QSize(16, 16));
}

QTEST_MAIN(tst_frminterfaces)
#include "tst_frminterfaces.moc"
