#include "catalogue/Product.h"
#include "doubles/ScriptedPlatform.h"
#include "netmon/frmInterfaces.h"
#include "panel/Panel.h"
#include "platform/Clock.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>
#include <QTest>

namespace {

struct World {
    ScriptedPlatform sp;
    World() { defineForms(sp.platform); }
    Panel *open(const char *name)
    {
        sp.forms.Show(QLatin1String(name));
        return sp.forms.get<Panel>(QLatin1String(name));
    }
    void ticks(int n) { sp.clock.advance(16 * n); }
    int count(int command) const
    {
        int n = 0;
        for (const ScriptedTray::Call &c : sp.tray.calls)
            n += c.command == command;
        return n;
    }
};

// The icon frames AnimateIcon draws, tick after tick, on a 1000-twip board:
// up by 30 until past 920, down by 30 until below 0, and up again.
QList<int> swing(int ticks)
{
    QList<int> frames;
    int frame = 0;
    bool up = true;
    while (frames.size() < ticks) {
        frames << frame;
        frame += up ? 30 : -30;
        if (frame > 920)
            up = false;
        if (frame < 0)
            up = true;
    }
    return frames;
}

} // namespace

class tst_chrome : public QObject {
    Q_OBJECT
private slots:
    void perPanelTable();
    void trayTipAndRestore();
    void noNotificationArea();
    void donationAndShellToolkit();
    void iconsSwingAndStand();
};

void tst_chrome::perPanelTable()
{
    struct Expect {
        const char *name;
        bool tray;        // minimising hides it behind an icon
        bool left;        // 513 on the icon opens the menu
        bool right;       // 516 as well
        bool unload;      // the menu's Exit deletes the icon and ends
        bool label10Min;  // Label10 minimises
        bool copiesIcon;  // shows Tafm's icon until its own first tick
        int icntimer;     // interval after Load
    };
    const Expect all[] = {
        {"Mp3", true, true, false, true, true, false, 1},
        {"Tafm", true, true, false, true, true, false, 1},
        {"Afm", false, false, false, false, false, false, 1},
        {"Malfm", true, true, true, true, false, true, 0},
        {"kanna", false, false, false, false, false, true, 1},
    };
    for (const Expect &e : all) {
        World w;
        Panel *p = w.open(e.name);
        const QByteArray name(e.name);
        QCOMPARE(p->icntimer->Interval(), e.icntimer);
        QCOMPARE(p->mnusystray != nullptr, e.tray);
        if (e.copiesIcon)
            QCOMPARE(p->windowIcon().cacheKey(), w.sp.forms.form("Tafm")->windowIcon().cacheKey());
        QCOMPARE(p->Label10 != nullptr && !p->Label10->text().isEmpty(), name == "kanna"); // the notice

        // Minimise by Label10 where it minimises, by the window's own box elsewhere.
        if (e.label10Min)
            p->Label10->Click();
        else
            p->setWindowState(p->windowState() | Qt::WindowMinimized);
        QVERIFY(p->windowState() & Qt::WindowMinimized);
        QCOMPARE(p->isVisible(), !e.tray);
        QCOMPARE(w.sp.tray.hasIcon(p, 1), e.tray);
        QCOMPARE(w.count(Tray::Add), e.tray ? 1 : 0);

        // The icon's buttons.
        for (int message : {int(Tray::LeftDown), int(Tray::RightDown), int(Tray::LeftUp), int(Tray::LeftDouble)}) {
            w.sp.tray.click(p, 1, message);
            const bool opens = (message == Tray::LeftDown && e.left) || (message == Tray::RightDown && e.right);
            QVERIFY2((p->mnusystray && p->mnusystray->isVisible()) == opens, qPrintable(name + " " + QByteArray::number(message)));
            if (p->mnusystray)
                p->mnusystray->hide();
        }
        // A real move over the bare form whose x in pixels is the message
        // is taken for it.
        if (e.tray) {
            p->Form_MouseMove(0, 0, 513 * 15.0, 0);
            QVERIFY(p->mnusystray->isVisible());
            p->mnusystray->hide();
            p->Form_MouseMove(0, 0, 512 * 15.0, 0);
            QVERIFY(!p->mnusystray->isVisible());
        }

        if (e.unload) {
            p->mnuexit->trigger();
            QCOMPARE(w.sp.process.ends, 1);
            QVERIFY(!w.sp.tray.hasIcon(p, 1));
            QCOMPARE(w.sp.tray.calls.last().command, int(Tray::Delete));
            QVERIFY(w.sp.tray.calls.last().answer);
        }
        // Spots every panel has.
        p->Label8->Click();
        QVERIFY(w.sp.forms.form("frmMain")->isVisible());
        const qsizetype trayCalls = w.sp.tray.calls.size();
        p->killme->Click();
        QCOMPARE(w.sp.process.ends, e.unload ? 2 : 1);
        QCOMPARE(w.sp.tray.calls.size(), trayCalls); // killme leaves the tray alone
    }
}

void tst_chrome::trayTipAndRestore()
{
    World w;
    Panel *t = w.open("Tafm");
    // Every resize that is not a minimise asks for a delete, icon or not.
    const int deletes = w.count(Tray::Delete);
    t->Label1_Click();
    w.ticks(10);
    QVERIFY(w.count(Tray::Delete) >= deletes + 10);
    {
        World alone; // Afm has no tray: its resizes and minimise ask nothing of it
        Panel *a = alone.open("Afm");
        a->Label1_Click();
        alone.ticks(10);
        a->setWindowState(Qt::WindowMinimized);
        QVERIFY(alone.sp.tray.calls.isEmpty());
    }

    // A caption longer than the field is cut at 64, a shorter one is
    // followed by a zero character and padding.
    const QString longCaption = QString(70, QLatin1Char('x')) + QStringLiteral("tail");
    t->setWindowTitle(longCaption);
    t->Label10->Click();
    QCOMPARE(Panel::TrayIcon.szTip, longCaption.left(64));
    QCOMPARE(w.sp.tray.icon(t, 1)->tipText(), longCaption.left(64));
    const NotifyIconData &d = Panel::TrayIcon;
    QCOMPARE(d.cbSize, 88);
    QCOMPARE(d.hWnd, static_cast<QWidget *>(t));
    QCOMPARE(d.uID, 1);
    QCOMPARE(d.uFlags, 7);
    QCOMPARE(d.uCallbackMessage, 512);
    QCOMPARE(d.hIcon.cacheKey(), t->windowIcon().cacheKey());

    // Restore: shown, normal, and the resize that follows deletes the icon.
    t->mnuRestore->trigger();
    QVERIFY(t->isVisible());
    QCOMPARE(t->windowState(), Qt::WindowNoState);
    QVERIFY(!w.sp.tray.hasIcon(t, 1));

    t->setWindowTitle(QStringLiteral("FM"));
    t->setWindowState(Qt::WindowMinimized);
    QCOMPARE(d.szTip.size(), 64);
    QCOMPARE(d.szTip.left(3), QStringLiteral("FM") + QChar(0));
    QCOMPARE(d.szTip.mid(3), QString(61, QLatin1Char(' ')));
    // The tip is the caption of that moment.
    t->setWindowTitle(QStringLiteral("Playing  Radio"));
    QCOMPARE(w.sp.tray.icon(t, 1)->tipText(), QStringLiteral("FM"));

    // One record for all. A panel that opens while Tafm is in the tray
    // resizes, and its resize deletes the icon the record names: Tafm's.
    Panel *m = w.open("Mp3");
    QVERIFY(!w.sp.tray.hasIcon(t, 1));
    QVERIFY(!t->isVisible());
    // Both in the tray, Mp3 first: Mp3's Exit deletes Tafm's icon.
    t->mnuRestore->trigger();
    m->Label10->Click();
    t->Label10->Click();
    QVERIFY(w.sp.tray.hasIcon(t, 1));
    QVERIFY(w.sp.tray.hasIcon(m, 1));
    m->mnuexit->trigger();
    QVERIFY(!w.sp.tray.hasIcon(t, 1));
    QVERIFY(w.sp.tray.hasIcon(m, 1));
    QCOMPARE(w.sp.process.ends, 1);
}

void tst_chrome::noNotificationArea()
{
    World w;
    w.sp.tray.available = false;
    for (const char *name : {"Mp3", "Tafm", "Malfm"}) {
        Panel *p = w.open(name);
        p->setWindowState(p->windowState() | Qt::WindowMinimized);
        QVERIFY2(p->isVisible(), name); // an ordinary minimise: the window stays to come back to
        QVERIFY(p->windowState() & Qt::WindowMinimized);
        p->setWindowState(Qt::WindowNoState);
    }
    QCOMPARE(w.count(Tray::Add), 0);

    // The traffic window minimises the same way there; with an area it hides.
    QByteArray table(4 + 860, '\0');
    table[0] = 1;
    w.sp.interfaces.image = table;
    w.sp.forms.Show("frmInterfaces");
    auto *f = w.sp.forms.get<frmInterfaces>("frmInterfaces");
    f->cmdHide->click();
    QVERIFY(f->isVisible());
    QVERIFY(f->windowState() & Qt::WindowMinimized);
    f->setWindowState(Qt::WindowNoState);
    w.sp.tray.available = true;
    f->cmdHide->click();
    QVERIFY(!f->isVisible());
}

void tst_chrome::donationAndShellToolkit()
{
    World w;
    const QString page = QStringLiteral("https://") + QLatin1String(product::PaymentHost)
        + QStringLiteral("/cgi-bin/webscr?cmd=_donations&business=") + QLatin1String(product::DonationAccount)
        + QStringLiteral("&lc=IN&item_name=Zarvent&currency_code=USD&bn=PP%2dDonationsBF%3abtn_donate_LG%2egif%3aNonHosted");
    QVERIFY(QString::fromLatin1(product::PaymentHost).endsWith(QLatin1String(".invalid")));
    for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"}) {
        Panel *p = w.open(name);
        const bool thanks = QByteArray(name) == "Tafm";
        const qsizetype boxes = w.sp.dialogs.shown.size();
        qsizetype openedAtBox = -1;
        w.sp.dialogs.onShow = [&](const ShownBox &) { openedAtBox = w.sp.shell.executed.size(); };
        const qsizetype before = w.sp.shell.executed.size();
        p->Donate->Click();
        w.sp.dialogs.onShow = nullptr;
        QCOMPARE(w.sp.dialogs.shown.size() - boxes, thanks ? 1 : 0);
        if (thanks) {
            QCOMPARE(w.sp.dialogs.shown.last().prompt, QStringLiteral("Thanks For your Kind Heart"));
            QCOMPARE(w.sp.dialogs.shown.last().style, MsgBox::OkOnly);
            QVERIFY(w.sp.dialogs.shown.last().title.isEmpty());
            QCOMPARE(openedAtBox, before); // the box comes first
        }
        QCOMPARE(w.sp.shell.executed.size(), before + 1);
        const ScriptedShell::Call &c = w.sp.shell.executed.last();
        QCOMPARE(c.file, page);
        QCOMPARE(c.verb, QStringLiteral("open"));
        QVERIFY(c.parameters.isEmpty() && c.directory.isEmpty());
        QCOMPARE(c.showCommand, 1);
        p->Hide();
    }

    // Run: only an answer of exactly 0 is a failure.
    Panel *k = w.open("kanna");
    struct Case {
        int answer;
        QString result;
    };
    const Case cases[] = {{0, "Insufficent system memory or corrupt program file"}, {1, ""}, {2, ""}, {32, ""},
                          {33, ""}, {-1, ""}};
    for (const Case &c : cases) {
        w.sp.shell.answer = c.answer;
        QString file = QStringLiteral("notes.txt"), parameters = QStringLiteral("-x"), directory = QStringLiteral("/tmp");
        QCOMPARE(k->Run(file, parameters, directory), c.result);
        const ScriptedShell::Call &call = w.sp.shell.executed.last();
        QCOMPARE(call.verb, QStringLiteral("Open"));
        QCOMPARE(QStringList({call.file, call.parameters, call.directory}), QStringList({file, parameters, directory}));
        QCOMPARE(call.showCommand, 5);
    }
    // Errora: the box's answer as a variant.
    w.sp.dialogs.answers = {MsgBox::Cancel};
    QCOMPARE(k->Errora(), QVariant(MsgBox::Cancel));
    QCOMPARE(w.sp.dialogs.shown.last().prompt, QStringLiteral("An error has ocurred."));
    QCOMPARE(w.sp.dialogs.shown.last().style, MsgBox::OkOnly);
    QVERIFY(w.sp.dialogs.shown.last().title.isEmpty());
}

void tst_chrome::iconsSwingAndStand()
{
    World w;
    Panel *k = w.open("kanna"); // loads Tafm, hidden
    Panel *t = w.sp.forms.get<Panel>("Tafm");
    const qint64 tafmIcon = t->windowIcon().cacheKey();
    QCOMPARE(k->windowIcon().cacheKey(), tafmIcon);
    QCOMPARE(k->iconFrame(), 0);
    QVERIFY(k->iconFlag());

    QList<int> frames;
    QList<qint64> icons;
    for (int n = 0; n < 140; ++n) {
        frames << k->iconFrame();
        w.ticks(1);
        icons << k->windowIcon().cacheKey();
    }
    QCOMPARE(frames, swing(140));
    QVERIFY(frames.contains(930) && frames.contains(-30));
    QVERIFY(!frames.contains(960) && !frames.contains(-60));
    QVERIFY(icons.first() != tafmIcon); // from the first tick on
    for (int n = 1; n < icons.size(); ++n) {
        // A new picture at every tick, the same picture for the same frame.
        QVERIFY(icons[n] != icons[n - 1]);
        const int same = static_cast<int>(frames.indexOf(frames[n]));
        QCOMPARE(icons[n], icons[same]);
    }
    // The board at frame 0: the blue line reaches the top-left corner, the
    // red one the top-right, both from the middle of the bottom edge.
    w.ticks(140 % 64 == 0 ? 0 : 64 - 140 % 64); // back to frame 0
    QCOMPARE(k->iconFrame(), 0);
    w.ticks(1);
    const QImage board = k->windowIcon().pixmap(QSize(67, 67)).toImage();
    QCOMPARE(board.size(), QSize(67, 67));
    QCOMPARE(board.pixelColor(2, 2), QColor(0, 0, 255));
    QCOMPARE(board.pixelColor(64, 2), QColor(255, 0, 0));
    QCOMPARE(board.pixelColor(10, 60), QColor(255, 255, 0));

    // Hidden, the window is not told; shown, it gets the frame of the moment.
    k->Hide();
    const qint64 atHide = k->windowIcon().cacheKey();
    w.ticks(5);
    QCOMPARE(k->windowIcon().cacheKey(), atHide);
    k->Show();
    QVERIFY(k->windowIcon().cacheKey() != atHide);

    // Tafm, hidden, draws its board all the same, and shows its mast from
    // its first tick on: one picture for good.
    QVERIFY(t->iconFrame() != 0);
    const qint64 mast = t->windowIcon().cacheKey();
    QVERIFY(mast != tafmIcon);
    QCOMPARE(t->windowIcon().pixmap(QSize(45, 47)).size(), QSize(45, 47));
    w.sp.forms.Show("Tafm");
    w.ticks(70);
    QCOMPARE(t->windowIcon().cacheKey(), mast);

    // Malfm stands still on Tafm's icon as it was when Malfm loaded.
    Panel *m = w.open("Malfm");
    const qint64 malfm = m->windowIcon().cacheKey();
    QCOMPARE(malfm, mast);
    w.ticks(20);
    QCOMPARE(m->windowIcon().cacheKey(), malfm);
    QCOMPARE(m->iconFrame(), 0);
    QVERIFY(!m->icntimer->isRunning());
}

QTEST_MAIN(tst_chrome)
#include "tst_chrome.moc"
