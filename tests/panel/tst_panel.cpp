// The panel form: Load, motions, status, transport, keys, hover, navigation,
// ways out, tray, swinging icon, level bars, and a click on every control.
#include "panel/PanelWorld.h"
#include "catalogue/Product.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "panel/VuDisplay.h"
#include "widgets/LedProgress.h"
#include "widgets/zzSlider.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

using namespace Qt::StringLiterals;
using World = PanelWorld;
using Twips = QList<double>;

namespace {

// Covered on purpose: the skin under everything, the marks under Label2,
// the hover and pressed pictures under the transparent transport spots,
// s27 of Malfm and kanna, wholly under s9, and Tafm's fm under ma.
bool coveredByDesign(const Panel *p, const QWidget *w)
{
    static const QStringList underneath{"Main", "pls", "Label6", "Label7", "pre", "prep", "stp",
                                        "stpp", "ply", "plyp", "pause", "pausep", "nxt", "nxtp"};
    const QString name = w->objectName();
    return underneath.contains(name) || (name == u"fm" && p->ma)
        || (name == u"s27" && QStringList{"Malfm", "kanna"}.contains(p->objectName()));
}

QStringList problems(Panel *p)
{
    QStringList found;
    QList<std::pair<QString, QRect>> targets;
    for (QWidget *w : p->findChildren<QWidget *>()) {
        QRect part(w->mapTo(p, QPoint(0, 0)), w->size()); // cut by each parent up to the panel
        for (const QWidget *up = w->parentWidget(); up != p; up = up->parentWidget())
            part &= QRect(up->mapTo(p, QPoint(0, 0)), up->size());
        part &= p->rect();
        if (w->objectName().isEmpty() || !w->isVisibleTo(p) || coveredByDesign(p, w) || part.isEmpty())
            continue;
        QWidget *hit = p->childAt(part.center());
        if (hit != w && !w->isAncestorOf(hit) && !w->testAttribute(Qt::WA_TransparentForMouseEvents))
            found << w->objectName() + u" under "_s + (hit ? hit->objectName() : u"nothing"_s);
        if (!qobject_cast<ClickLabel *>(w) && !qobject_cast<QAbstractButton *>(w) && !qobject_cast<QAbstractSlider *>(w))
            continue;
        for (const auto &[other, area] : targets)
            if (area.intersects(part))
                found << w->objectName() + u" overlaps "_s + other;
        targets.append({w->objectName(), part});
    }
    return found;
}

} // namespace

class tst_panel : public QObject {
    Q_OBJECT
private slots:
    void loadFoldWidenAndTitle();
    void statusTransportAndKeys();
    void hoverNavigationAndWaysOut();
    void perPanelChrome();
    void oneTrayRecordAndSwingingIcons();
    void levelBarsFollowTheFadersNotTheSound();
    void everyVisibleControlTakesItsClick();
};

void tst_panel::loadFoldWidenAndTitle()
{
    World w;
    w.open("Malfm"); // copies Tafm's icon, which loads Tafm, hidden, its timers running
    Panel *p = w.sp.forms.get<Panel>("Tafm");
    QVERIFY(!p->isVisible() && !w.sp.forms.isLoaded("Afm"));
    w.ticks(1);
    w.sp.forms.Show("Tafm"); // no second Load
    // Label1 (widen, narrow) or Label2 (unfold, fold), ticks: shape, timers and marks, Label2's tip.
    const std::tuple<void (Panel::*)(), int, Twips, QString, QString> steps[] = {
        {nullptr, 0, {12841, 4780, 4380}, "Label6", "Show Info List"}, // a fold step past the limit, no narrowing step
        {&Panel::Label1_Click, 1, {12861, 4780, 4380}, "Timer3 pls Label6", "Show Info List"},
        {nullptr, 400, {19001, 4780, 4380}, "pls Label6", "Show Info List"}, // steps of 20 pass 18990
        {&Panel::Label1_Click, 400, {12881, 4780, 4380}, "Label6", "Show Info List"},
        {&Panel::Label2_Click, 1, {12881, 4800, 4380}, "hei2 Label7", "Hide info list"},
        {nullptr, 200, {12881, 8120, 7695}, "Label7", "Hide info list"},
        {&Panel::Label2_Click, 200, {12881, 4780, 4380}, "Label6", "Show Info List"},
        // Timer3 sets the list height only as the unfolding passes 8100 exactly.
        {&Panel::Label2_Click, 166, {12881, 8100, 4380}, "hei2 Label7", "Hide info list"},
        {&Panel::Label1_Click, 1, {12901, 8120, 7695}, "Timer3 pls Label7", "Hide info list"},
        {&Panel::Label2_Click, 400, {19001, 4780, 4380}, "pls Label6", "Show Info List"},
        // A second click while unfolding runs both timers: the height stands.
        {&Panel::Label2_Click, 10, {19001, 4980, 4380}, "hei2 pls Label7", "Hide info list"},
        {&Panel::Label2_Click, 100, {19001, 4980, 4380}, "hei1 hei2 pls Label6", "Show Info List"},
    };
    for (const auto &[click, ticks, shape, state, tip] : steps) {
        if (click)
            (p->*click)();
        w.ticks(ticks);
        World::mouse(p->Main);
        QCOMPARE(std::tuple(Twips({p->Width(), p->Height(), p->fileHeight()}), World::state(p), p->Label2->toolTip()),
                 std::tuple(shape, state, tip));
    }

    // The title, ticks: its left edge and its timer. Wider than 8400 twips it turns right of 1920, and
    // the timers hand over on every tick; an empty title has a width and moves like any other.
    World v;
    Panel *a = v.open("Afm");
    v.ticks(1);
    a->StationName = QStringLiteral("Radio ");
    const std::tuple<QString, int, double, QString> title[] = {
        {"Hello", 0, 10320, "scr1"}, {"", 1, 10320, "scr2"}, {"", 840, 1920, "scr2"}, {"", 1, 1920, "scr1"},
        {"", 3, 1950, "scr1"},       {QString(400, 'W'), 842, 1920, "scr1"},         {"", 1, 1920, "scr2"},
        {"", 1, 1920, "scr1"},       {"", 1, 1920, "scr2"},  {"", 1, 1920, "scr1"},  {"", 1, 1920, "scr2"},
        {"", 1, 1920, "scr1"},       {"-", 3, 10300, "scr2"}};
    for (const auto &[text, ticks, left, timer] : title) {
        if (!text.isEmpty()) {
            a->cptn->setText(text == u"-" ? QString() : text);
            a->stss_Click();
            QCOMPARE(a->wdth1->text().toDouble(), 10320 - a->fNameWidth());
        }
        v.ticks(ticks);
        QCOMPARE(std::pair(a->fNameLeft(), World::state(a)), std::pair(left, timer + " Label6"));
    }
    QCOMPARE(a->windowTitle(), QStringLiteral("Radio "));
}

void tst_panel::statusTransportAndKeys()
{
    World w;
    Panel *p = w.open("Tafm");
    auto *engine = w.engine(p);
    p->StationName = QStringLiteral("Suryan FM  ");
    p->sts->setEnabled(true);
    engine->position = QStringLiteral("00:07");
    const char *connecting = "Connecting.......";
    const std::pair<int, QString> states[] = {{0, connecting}, {1, connecting}, {2, connecting}, {3, "Playing  Suryan FM  "},
                                              {6, "Buffering..."}, {8, connecting}, {9, connecting}, {10, "Player Is Ready"}};
    for (const auto &[state, text] : states) {
        engine->state = state;
        w.light(p)->state = 0;
        w.ticks(1);
        QCOMPARE(QStringList({p->cptn->text(), p->fName->text(), p->time->text(), QString::number(w.light(p)->state)}),
                 QStringList({text, text, "Played Time 00:07", state == 3 ? "2" : "0"}));
    }
    // Stop: the engine and the light stop, the title goes home and stays.
    engine->state = 3;
    p->stss_Click();
    w.ticks(20);
    p->stop_Click();
    w.ticks(5);
    QCOMPARE(std::tuple(engine->calls, w.light(p)->state, p->fNameLeft(), p->cptn->text(), World::state(p), p->sts->Enabled()),
             std::tuple(QStringList{"stop"}, 0, 10320.0, QString(connecting), QStringLiteral("Label6"), true));

    // Keys: Control alone, seen before the controls; the prompt opens a narrow panel's grid only.
    for (auto modifiers : {Qt::ShiftModifier | Qt::ControlModifier, Qt::AltModifier | Qt::ControlModifier, Qt::KeyboardModifiers()})
        QTest::keyClick(p, Qt::Key_S, modifiers);
    QTest::keyClick(p->Slider1, Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(p, Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(World::state(p), QStringLiteral("Timer3 Label6"));
    w.ticks(400);
    QTest::keyClick(p, Qt::Key_P, Qt::ControlModifier);
    QTest::keyClick(p, Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(std::tuple(engine->calls, w.prompts(), World::state(p)),
             std::tuple(QStringList(2, "stop"), QStringList(3, "Please click Requried Channels"), QStringLiteral("pls Label6")));
    // The time line drives the light alone, by the local engine's numbers: 2 plays, 1 pauses.
    for (int state : {2, 1}) {
        engine->state = state;
        p->Slider1->setValue(50 + state);
        QCOMPARE(std::pair(w.light(p)->state, engine->calls.size()), std::pair(state, qsizetype(2)));
    }
    Panel *mp3 = w.open("Mp3"); // the same keys, to Mp3's own transport
    QTest::keyClick(mp3, Qt::Key_S, Qt::ControlModifier);
    QVERIFY(World::local(mp3)->calls.contains(QStringLiteral("Stop")));
}

void tst_panel::hoverNavigationAndWaysOut()
{
    World w;
    Panel *t = w.open("Tafm");
    const auto lit = [t] {
        return QList<bool>({t->NextHot, !t->nxt->isHidden(), !t->nxtp->isHidden(), t->StopHot, !t->stp->isHidden(),
                            !t->stpp->isHidden(), t->PauseHot});
    };
    World::mouse(t->next);
    World::mouse(t->next, QEvent::MouseButtonPress); // pressed; a move while hot leaves it pressed
    World::mouse(t->next);
    QCOMPARE(lit(), QList<bool>({true, false, true, false, false, false, false}));
    // stop tests PauseHot, which never rises here: every move lights it anew.
    World::mouse(t->stop, QEvent::MouseButtonPress);
    World::mouse(t->stop);
    QCOMPARE(lit(), QList<bool>({true, false, true, true, true, false, false}));
    World::mouse(t->Main); // the skin ends every hover
    QCOMPARE(lit(), QList<bool>(7, false));

    // On screen as the engine stops: nothing as ma leaves Tafm, Tafm and Mp3 as Label9 does, Afm as its Label9 does.
    QStringList seen;
    const auto snapshot = [&] {
        for (const char *form : {"Tafm", "Afm", "Mp3", "Mainmap"})
            if (w.sp.forms.isLoaded(form) && w.sp.forms.form(form)->isVisible())
                seen << form;
        seen << "|";
    };
    w.engine(t)->onStop = snapshot;
    t->ma->Click();
    QVERIFY(w.sp.forms.form("Mainmap")->isVisible());
    w.sp.forms.Show("Tafm");
    t->Label9->Click();
    w.sp.forms.Hide("Mp3");
    Panel *a = w.open("Afm");
    w.engine(a)->onStop = snapshot;
    a->Label9->Click();
    QCOMPARE(seen.join(u' '), QStringLiteral("| Tafm Mp3 | Afm |"));
    QVERIFY(!t->isVisible() && !a->isVisible() && w.sp.forms.form("Mp3")->isVisible());
    auto *mp3 = w.sp.forms.get<Panel>("Mp3"); // back to the map, the local engine stopped
    mp3->Label9->Click();
    QVERIFY(w.sp.forms.form("Mainmap")->isVisible() && !mp3->isVisible());
    QCOMPARE(World::local(mp3)->calls.last(), QStringLiteral("Stop"));

    QVERIFY(!w.open("Afm")->close() && !w.open("Tafm")->close()); // no close command in a station panel
    w.sp.interfaces.image = QByteArray(1, 1) + QByteArray(3 + 860, 0); // one row: the traffic window opens beside
    a->Label12->Click();
    QVERIFY(w.sp.dialogs.shown.isEmpty() && a->isVisible() && w.sp.forms.form("frmInterfaces")->isVisible());
    QCOMPARE(w.sp.process.ends, 0);
    a->killme->Click();
    w.open("Mp3")->close(); // Mp3 keeps its close box: Unload ends the program
    QCOMPARE(w.sp.process.ends, 2);
}

void tst_panel::perPanelChrome()
{
    const QString page = QStringLiteral("https://") + QLatin1String(product::PaymentHost)
        + QStringLiteral("/cgi-bin/webscr?cmd=_donations&business=") + QLatin1String(product::DonationAccount)
        + QStringLiteral("&lc=IN&item_name=Zarvent&currency_code=USD&bn=PP%2dDonationsBF%3abtn_donate_LG%2egif%3aNonHosted");
    // Minimising hides it behind an icon (whose left button and Exit work), the right
    // button works too, Label10 minimises, Tafm's icon until its own first tick; icntimer.
    const std::tuple<const char *, bool, bool, bool, bool, int> all[] = {
        {"Mp3", true, false, true, false, 1},  {"Tafm", true, false, true, false, 1}, {"Afm", false, false, false, false, 1},
        {"Malfm", true, true, false, true, 0}, {"kanna", false, false, false, true, 1}};
    for (const auto &[name, tray, right, label10Min, copiesIcon, icntimer] : all) {
        World w;
        Panel *p = w.open(name);
        const bool tafm = QByteArray(name) == "Tafm";
        QCOMPARE(p->windowIcon().cacheKey() == w.sp.forms.form("Tafm")->windowIcon().cacheKey(), copiesIcon || tafm);
        QCOMPARE(std::pair(p->icntimer->Interval(), p->Label10 && !p->Label10->text().isEmpty()), std::pair(icntimer, QByteArray(name) == "kanna"));
        w.sp.dialogs.onShow = [&](const ShownBox &) { QVERIFY(w.sp.shell.executed.isEmpty()); }; // Tafm thanks first
        p->Donate->Click();
        QCOMPARE(w.prompts(), tafm ? QStringList{"Thanks For your Kind Heart"} : QStringList());
        const ScriptedShell::Call &c = w.sp.shell.executed.value(0);
        QCOMPARE(QStringList({c.verb, c.file, c.parameters, c.directory, QString::number(c.showCommand)}), QStringList({"open", page, "", "", "1"}));

        label10Min ? p->Label10->Click() : p->setWindowState(Qt::WindowMinimized);
        QCOMPARE(std::tuple(p->isMinimized(), p->isVisible(), w.sp.tray.hasIcon(p, 1)), std::tuple(true, !tray, tray));
        for (int message : {Tray::LeftDown, Tray::RightDown, Tray::LeftUp, Tray::LeftDouble}) {
            w.sp.tray.click(p, 1, message);
            const bool opens = (message == Tray::LeftDown && tray) || (message == Tray::RightDown && right);
            QVERIFY2((p->mnusystray && p->mnusystray->isVisible()) == opens, qPrintable(QString::number(message)));
            if (p->mnusystray)
                p->mnusystray->hide();
        }
        if (tray) { // a move over the bare form whose x in pixels is the message is taken for it
            p->Form_MouseMove(0, 0, 512 * 15.0, 0);
            QVERIFY(!p->mnusystray->isVisible());
            p->Form_MouseMove(0, 0, 513 * 15.0, 0);
            QVERIFY(p->mnusystray->isVisible());
            p->mnuexit->trigger();
            QCOMPARE(std::tuple(w.sp.process.ends, w.sp.tray.hasIcon(p, 1), w.sp.tray.calls.last().answer), std::tuple(1, false, true));
        }
        p->Label8->Click(); // About; then killme ends the program and leaves the tray alone
        const qsizetype calls = w.sp.tray.calls.size();
        p->killme->Click();
        QCOMPARE(std::tuple(w.sp.forms.form("frmMain")->isVisible(), w.sp.process.ends, w.sp.tray.calls.size()), std::tuple(true, tray ? 2 : 1, calls));
    }
}

void tst_panel::oneTrayRecordAndSwingingIcons()
{
    World w;
    Panel *t = w.open("Tafm");
    // A caption longer than the field is cut at 64; a shorter one is followed
    // by a zero character and padding. The tip is the caption of the minimise.
    const QString longCaption = QString(70, QLatin1Char('x')) + QStringLiteral("tail");
    t->setWindowTitle(longCaption);
    t->Label10->Click();
    const NotifyIconData &d = Panel::TrayIcon;
    QCOMPARE(QStringList({w.sp.tray.icon(t, 1)->tipText(), d.szTip}), QStringList(2, longCaption.left(64)));
    QVERIFY(d.hIcon.cacheKey() == t->windowIcon().cacheKey() && d.uFlags == 7 && d.uCallbackMessage == 512);
    t->mnuRestore->trigger(); // shown, normal, and the resize that follows deletes the icon
    QVERIFY(t->isVisible() && t->windowState() == Qt::WindowNoState && !w.sp.tray.hasIcon(t, 1));
    t->setWindowTitle(QStringLiteral("FM"));
    t->setWindowState(Qt::WindowMinimized);
    t->setWindowTitle(QStringLiteral("Playing  Radio"));
    QCOMPARE(QStringList({d.szTip, w.sp.tray.icon(t, 1)->tipText()}), QStringList({QStringLiteral("FM") + QChar(0) + QString(61, u' '), "FM"}));
    // A panel that opens while Tafm is in the tray resizes, and its resize
    // deletes the icon the shared record names: Tafm's.
    Panel *m = w.open("Mp3");
    QVERIFY(!w.sp.tray.hasIcon(t, 1) && !t->isVisible());
    t->mnuRestore->trigger(); // both in the tray, Mp3 first: Mp3's Exit deletes Tafm's icon
    m->Label10->Click();
    t->Label10->Click();
    QVERIFY(w.sp.tray.hasIcon(t, 1) && w.sp.tray.hasIcon(m, 1));
    m->mnuexit->trigger();
    QVERIFY(!w.sp.tray.hasIcon(t, 1) && w.sp.tray.hasIcon(m, 1));

    // Icon frames on a 1000-twip board: up by 30 until past 920, down by 30 until below 0, and up
    // again; a new picture every tick from the first on, the same picture for the same frame.
    World v;
    Panel *k = v.open("kanna"); // loads Tafm, hidden
    t = v.sp.forms.get<Panel>("Tafm");
    QList<int> frames;
    QList<qint64> icons{t->windowIcon().cacheKey()};
    for (int n = 0; n < 140; ++n, v.ticks(1), icons << k->windowIcon().cacheKey())
        frames << k->iconFrame();
    QCOMPARE(frames.mid(0, 2) + frames.mid(30, 4) + frames.mid(61, 5), QList<int>({0, 30, 900, 930, 900, 870, 30, 0, -30, 0, 30}));
    QCOMPARE(frames.mid(64), frames.mid(0, 76));
    for (int n = 1; n < icons.size(); ++n)
        QVERIFY(icons[n] != icons[n - 1] && icons[n] == icons[frames.indexOf(frames[n - 1]) + 1]);
    // The board at frame 0: blue to the top-left corner, red to the top-right.
    v.ticks(64 - 140 % 64 + 1);
    const QImage board = k->windowIcon().pixmap(QSize(67, 67)).toImage();
    QCOMPARE(QList<QColor>({board.pixelColor(2, 2), board.pixelColor(64, 2), board.pixelColor(10, 60)}),
             QList<QColor>({Qt::blue, Qt::red, Qt::yellow}));
    // Tafm draws its board all the same, but shows its mast from its first tick, for good.
    const qint64 mast = t->windowIcon().cacheKey();
    QVERIFY(t->iconFrame() != 0 && mast != icons[0]);
    v.sp.forms.Show("Tafm");
    v.ticks(70);
    QCOMPARE(t->windowIcon().cacheKey(), mast);
}

void tst_panel::levelBarsFollowTheFadersNotTheSound()
{
    const auto bars = [](Panel *p) {
        QList<int> all;
        for (int strip : {0, 2, 3, 5, 7, 10, 11})
            all << (p->display()->Led[strip]->isHidden() ? -1 : p->display()->Led[strip]->Value());
        return all;
    };
    World w;
    Panel *p = w.open("Tafm");
    MixerSection *m = p->mixer();
    m->VolumeControl[0]->setSliderPosition(0); // the master at its top: full at the next tick
    // 655.35 raw to the percent, halves to even: 32768 is 50, 1638 2, 983 1.
    for (const auto &[strip, text] : {std::pair(5, "32768"), std::pair(7, "1638"), std::pair(2, "983")})
        m->txtvolumecontrol[strip]->setText(QLatin1String(text));
    w.ticks(1);
    const QList<int> levels{100, 1, 50, 50, 2, 50, 50};
    QCOMPARE(bars(p), levels);
    // Playing, paused or stopped, the bars stand.
    for (int state : {3, 2, 1}) {
        World::engine(p)->state = state;
        w.sp.clock.advance(500);
        QCOMPARE(bars(p), levels);
    }

    // No mixer: the raw fields stay at 32768, every bar at 50. A missing line hides its strip and bar.
    World none, partial;
    none.sp.mixer.openResult = mixer::BadDeviceId;
    partial.sp.mixer.removeLine(mixer::LineSource);
    partial.open("kanna");
    none.open("Mp3");
    none.ticks(1);
    partial.ticks(1);
    QCOMPARE(std::pair(bars(none.sp.forms.get<Panel>("Mp3")), bars(partial.sp.forms.get<Panel>("kanna"))[1]), std::pair(QList<int>(7, 50), -1));
}

void tst_panel::everyVisibleControlTakesItsClick()
{
    PanelWorld w;
    for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"}) {
        Panel *p = w.open(QLatin1String(name));
        for (int shape = 0; shape < 4; ++shape) {
            if (shape)
                shape == 2 ? p->Label2_Click() : p->Label1_Click();
            w.ticks(400);
            QCOMPARE(std::pair(p->Width() >= p->traits().wideWidth, p->Height() > Panel::UnfoldLimit), std::pair(shape % 3 != 0, shape >= 2));
            QStringList found = problems(p);
            // The list buttons, Mp3's list and kanna's notice lie inside the
            // widened panel (a station grid may run past the edge).
            for (const char *part : {"files", "flder", "Command3", "Command4", "file"})
                if (auto *c = p->findChild<QWidget *>(QLatin1String(part), Qt::FindDirectChildrenOnly); shape == 2 && c
                    && !(p->isStation() && c == p->file) && c->isVisibleTo(p) && !p->rect().contains(c->geometry()))
                    found << QLatin1String(part) + u" outside"_s;
            if (shape == 2 && p->Label10 && p->Label10->parentWidget() == p->file && !p->file->rect().contains(p->Label10->geometry()))
                found << u"Label10 past the list"_s;
            QVERIFY2(found.isEmpty(), qPrintable(QStringLiteral("%1 in shape %2: ").arg(name).arg(shape) + found.join(u", ")));
        }
        p->Hide();
    }
}

QTEST_MAIN(tst_panel)
#include "tst_panel.moc"
