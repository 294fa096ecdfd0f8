#include "panel/PanelWorld.h"
#include "panel/Panel.h"
#include "platform/Twips.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"
#include "widgets/zzSlider.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTest>

namespace {

using World = PanelWorld;

void move(QWidget *w, QPoint at = QPoint(2, 2))
{
    QMouseEvent e(QEvent::MouseMove, QPointF(at), w->mapToGlobal(QPointF(at)), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}

} // namespace

class tst_panel : public QObject {
    Q_OBJECT
private slots:
    void traitsOfTheFivePanels();
    void loadSettlesFoldedAndNarrowOnce();
    void foldAndUnfold();
    void widenAndNarrow();
    void titleBouncesBetweenTurningPoints();
    void statusFollowsTheEngine();
    void transportOnAStationPanel();
    void keysNeedControlAlone();
    void hoverImagesAndTheStopQuirk();
    void navigationStopsTheEngine();
    void waysOut();
};

void tst_panel::traitsOfTheFivePanels()
{
    World w;
    struct Expect {
        const char *name;
        int wide, list;
        QPoint label9, fm;
        bool ma, label10, closeBox;
    };
    const Expect all[] = {
        {"Tafm", 18990, 7695, {32, 24}, {32, 80}, true, true, false},
        {"Afm", 17115, 7695, {24, 32}, {24, 80}, false, false, false},
        {"Malfm", 17085, 4815, {32, 24}, {32, 80}, false, false, false},
        {"kanna", 17085, 4815, {32, 24}, {32, 80}, false, true, false},
        {"Mp3", 17010, 7695, {32, 24}, {32, 80}, false, true, true},
    };
    for (const Expect &e : all) {
        Panel *p = w.open(QLatin1String(e.name));
        QCOMPARE(p->traits().wideWidth, e.wide);
        QCOMPARE(p->traits().unfoldedListHeight, e.list);
        QCOMPARE(p->Label9->pos(), e.label9);
        QCOMPARE(p->fm->pos(), e.fm);
        QCOMPARE(p->ma != nullptr, e.ma);
        QCOMPARE(p->Label10 != nullptr, e.label10);
        QCOMPARE(bool(p->windowFlags() & Qt::WindowCloseButtonHint), e.closeBox);
        QCOMPARE(p->windowTitle(), QString(p->isStation() ? "FM" : "Mp3 Player"));
        QCOMPARE(p->player() != nullptr, p->isStation());
        QCOMPARE(p->Player() != nullptr, !p->isStation());
        QCOMPARE(p->pstate()->FileName(), w.sp.app.file("\\img\\play.gif"));
        QCOMPARE(p->pausel->isEnabled(), !p->isStation());
        p->Hide();
    }
}

void tst_panel::loadSettlesFoldedAndNarrowOnce()
{
    World w;
    // Malfm copies Tafm's icon, which loads Tafm, hidden, with its timers.
    Panel *mal = w.open("Malfm");
    QVERIFY(w.sp.forms.isLoaded("Tafm"));
    QVERIFY(!w.sp.forms.form("Tafm")->isVisible());
    QVERIFY(!w.sp.forms.isLoaded("Afm"));
    QCOMPARE(mal->windowIcon().cacheKey(), w.sp.forms.form("Tafm")->windowIcon().cacheKey());

    QCOMPARE(mal->Height(), 4800.0);
    QCOMPARE(mal->Width(), 12841.0);
    w.ticks(1);
    // Folding steps once past the limit; narrowing stops without a step.
    QCOMPARE(mal->Height(), 4780.0);
    QCOMPARE(mal->Width(), 12841.0);
    QCOMPARE(mal->fileHeight(), 4380.0);
    QVERIFY(!mal->hei1->Enabled());
    QVERIFY(!mal->Timer2->Enabled());
    QVERIFY(!mal->Label6->isHidden());
    QVERIFY(mal->Label7->isHidden());
    auto *tafm = w.sp.forms.get<Panel>("Tafm");
    QCOMPARE(tafm->Height(), 4780.0); // its timers ran though it is hidden

    // Shown again: no second Load, nothing reset.
    mal->Label2_Click();
    w.ticks(5);
    const double h = mal->Height();
    mal->Hide();
    w.sp.forms.Show("Malfm");
    QCOMPARE(mal->Height(), h);
}

void tst_panel::foldAndUnfold()
{
    World w;
    Panel *p = w.open("Tafm");
    w.ticks(1);
    QCOMPARE(p->Label2->toolTip(), QString());
    move(p->Main);
    QCOMPARE(p->Label2->toolTip(), QStringLiteral("Show Info List"));

    p->Label2_Click(); // from the folded rest: unfold
    QVERIFY(p->hei2->Enabled());
    QVERIFY(!p->hei1->Enabled());
    w.ticks(200);
    QCOMPARE(p->Height(), 8120.0);
    QVERIFY(!p->hei2->Enabled());
    QCOMPARE(p->fileHeight(), 7695.0);
    QVERIFY(p->Label6->isHidden());
    move(p->Main);
    QCOMPARE(p->Label2->toolTip(), QStringLiteral("Hide info list"));

    p->Label2_Click(); // from anywhere else: fold
    w.ticks(200);
    QCOMPARE(p->Height(), 4780.0);
    QCOMPARE(p->fileHeight(), 4380.0);

    // A second click while unfolding runs both timers: the height stands.
    p->Label2_Click();
    w.ticks(10);
    QCOMPARE(p->Height(), 4780.0 + 200);
    p->Label2_Click();
    QVERIFY(p->hei1->Enabled() && p->hei2->Enabled());
    w.ticks(100);
    QCOMPARE(p->Height(), 4980.0);
    QVERIFY(p->hei1->Enabled() && p->hei2->Enabled());

    // Malfm unfolds to its shorter list.
    Panel *m = w.open("Malfm");
    w.ticks(1);
    m->Label2_Click();
    w.ticks(200);
    QCOMPARE(m->fileHeight(), 4815.0);
}

void tst_panel::widenAndNarrow()
{
    World w;
    Panel *p = w.open("Tafm");
    w.ticks(1);
    QVERIFY(p->pls->isHidden());
    p->Label1_Click();
    QVERIFY(p->Timer3->Enabled());
    w.ticks(400);
    // 12841 + 308 steps of 20 first reaches the limit of 18990, and passes it.
    QCOMPARE(p->Width(), 19001.0);
    QVERIFY(!p->Timer3->Enabled());
    QVERIFY(!p->pls->isHidden());
    QCOMPARE(p->width(), 1267);

    p->Label1_Click();
    QVERIFY(p->Timer2->Enabled());
    w.ticks(400);
    QCOMPARE(p->Width(), 12881.0);
    QVERIFY(p->pls->isHidden());

    // Timer3 sets the list height only as the unfolding passes 8100 exactly.
    p->Label2_Click();
    w.ticks(166); // 4780 + 166 * 20 = 8100
    QCOMPARE(p->Height(), 8100.0);
    QCOMPARE(p->fileHeight(), 4380.0);
    p->Label1_Click();
    w.ticks(1);
    QCOMPARE(p->fileHeight(), 7695.0);
}

void tst_panel::titleBouncesBetweenTurningPoints()
{
    World w;
    Panel *p = w.open("Afm");
    p->StationName = QStringLiteral("Radio ");
    p->cptn->setText(QStringLiteral("Hello"));
    p->stss_Click();
    const double width = p->fNameWidth();
    QVERIFY(width > 0);
    QCOMPARE(p->fNameLeft(), 10320.0);
    QCOMPARE(p->wdth1->text().toDouble(), 10320 - width);
    QVERIFY(p->scr1->Enabled());

    w.ticks(1); // already past the right turning point: hand over to scr2
    QVERIFY(!p->scr1->Enabled());
    QVERIFY(p->scr2->Enabled());
    QCOMPARE(p->windowTitle(), QStringLiteral("Radio "));
    w.ticks(840); // 840 steps of 10 to reach 1920
    QCOMPARE(p->fNameLeft(), 1920.0);
    w.ticks(1);
    QVERIFY(p->scr1->Enabled());
    w.ticks(3);
    QCOMPARE(p->fNameLeft(), 1950.0);

    // A title wider than 8400 twips: its right turning point lies left of
    // 1920, and from there the two timers hand over on every tick.
    p->cptn->setText(QString(400, QLatin1Char('W')));
    p->stss_Click();
    QVERIFY(p->fNameWidth() > 8400);
    w.ticks(1 + 840 + 1);
    QCOMPARE(p->fNameLeft(), 1920.0);
    for (int i = 0; i < 6; ++i) {
        w.ticks(1);
        QCOMPARE(p->fNameLeft(), 1920.0);
    }

    // An empty title has a width and moves like any other.
    p->cptn->setText(QString());
    p->stss_Click();
    w.ticks(3);
    QCOMPARE(p->fNameLeft(), 10300.0);
}

void tst_panel::statusFollowsTheEngine()
{
    World w;
    Panel *p = w.open("Tafm");
    auto *engine = w.engine(p);
    p->StationName = QStringLiteral("Suryan FM  ");
    p->sts->setEnabled(true);
    engine->position = QStringLiteral("00:07");
    const QList<QPair<int, QString>> states = {
        {0, "Connecting......."}, {1, "Connecting......."}, {2, "Connecting......."}, {3, "Playing  Suryan FM  "},
        {6, "Buffering..."},       {8, "Connecting......."}, {9, "Connecting......."}, {10, "Player Is Ready"},
    };
    for (const auto &[state, text] : states) {
        engine->state = state;
        w.light(p)->state = 0;
        w.ticks(1);
        QCOMPARE(p->cptn->text(), text);
        QCOMPARE(p->fName->text(), text);
        QCOMPARE(p->wdth1->text().toDouble(), 10320 - p->fNameWidth());
        QCOMPARE(p->time->text(), QStringLiteral("Played Time 00:07"));
        QCOMPARE(w.light(p)->state, state == 3 ? 2 : 0);
    }
    engine->position.clear();
    w.ticks(1);
    QCOMPARE(p->time->text(), QStringLiteral("Played Time "));

    // Stop: the engine stops, the light stops, the title goes home and stays.
    engine->state = 3;
    p->stss_Click();
    w.ticks(20);
    p->stop_Click();
    QCOMPARE(engine->calls.last(), QStringLiteral("stop"));
    QCOMPARE(w.light(p)->state, 0);
    QVERIFY(!p->scr1->Enabled() && !p->scr2->Enabled());
    QCOMPARE(p->fNameLeft(), 10320.0);
    w.ticks(5);
    QCOMPARE(p->cptn->text(), QStringLiteral("Connecting......."));
    QCOMPARE(p->fNameLeft(), 10320.0);
    QVERIFY(p->sts->Enabled());
}

void tst_panel::transportOnAStationPanel()
{
    World w;
    Panel *p = w.open("kanna");
    w.ticks(1);
    p->next_Click();
    QCOMPARE(w.sp.dialogs.shown.size(), 1);
    QCOMPARE(w.sp.dialogs.shown[0].prompt, QStringLiteral("Please click Requried Channels"));
    QCOMPARE(w.sp.dialogs.shown[0].style, 0);
    QVERIFY(w.sp.dialogs.shown[0].title.isEmpty());
    QVERIFY(p->Timer3->Enabled()); // a narrow panel opens its grid
    w.ticks(400);
    p->play_Click();
    p->previous_Click();
    QCOMPARE(w.sp.dialogs.shown.size(), 3);
    QVERIFY(!p->Timer3->Enabled() && !p->Timer2->Enabled()); // a wide one stays as it is

    // Stop on an idle panel stops the idle engine and says nothing.
    p->stop_Click();
    QCOMPARE(w.engine(p)->calls, QStringList{"stop"});
    QCOMPARE(w.sp.dialogs.shown.size(), 3);

    // The time line only drives the light, with the local engine's numbers.
    w.engine(p)->state = 2;
    p->Slider1->setValue(50);
    QCOMPARE(w.light(p)->state, 2);
    w.engine(p)->state = 1;
    p->Slider1->setValue(60);
    QCOMPARE(w.light(p)->state, 1);
    QCOMPARE(w.engine(p)->calls, QStringList{"stop"}); // and never seeks
}

void tst_panel::keysNeedControlAlone()
{
    World w;
    Panel *p = w.open("Tafm");
    w.ticks(1);
    auto *engine = w.engine(p);
    QTest::keyClick(p, Qt::Key_S, Qt::ShiftModifier | Qt::ControlModifier);
    QTest::keyClick(p, Qt::Key_S, Qt::AltModifier);
    QTest::keyClick(p, Qt::Key_S);
    QTest::keyClick(p, Qt::Key_P, Qt::ControlModifier | Qt::AltModifier);
    QVERIFY(engine->calls.isEmpty());
    QVERIFY(w.sp.dialogs.shown.isEmpty());

    QTest::keyClick(p->Slider1, Qt::Key_S, Qt::ControlModifier); // the form sees keys before its controls
    QCOMPARE(engine->calls, QStringList{"stop"});
    QTest::keyClick(p, Qt::Key_P, Qt::ControlModifier);
    QTest::keyClick(p, Qt::Key_N, Qt::ControlModifier);
    QTest::keyClick(p, Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(w.sp.dialogs.shown.size(), 3);

    // Mp3 takes the same keys to its own transport.
    Panel *mp3 = w.open("Mp3");
    QTest::keyClick(mp3, Qt::Key_S, Qt::ControlModifier);
    QVERIFY(w.sp.media.locals.first()->calls.contains(QStringLiteral("Stop")));
}

void tst_panel::hoverImagesAndTheStopQuirk()
{
    World w;
    Panel *p = w.open("Tafm");
    move(p->next);
    QVERIFY(!p->nxt->isHidden());
    QVERIFY(p->NextHot);
    // Pressed: the pressed image; a move while hot leaves it pressed.
    QMouseEvent down(QEvent::MouseButtonPress, QPointF(2, 2), p->next->mapToGlobal(QPointF(2, 2)), Qt::LeftButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(p->next, &down);
    QVERIFY(p->nxt->isHidden() && !p->nxtp->isHidden());
    move(p->next);
    QVERIFY(p->nxt->isHidden() && !p->nxtp->isHidden());

    // stop tests PauseHot, which never rises here: every move lights it anew.
    QMouseEvent stopDown(QEvent::MouseButtonPress, QPointF(2, 2), p->stop->mapToGlobal(QPointF(2, 2)), Qt::LeftButton,
                         Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(p->stop, &stopDown);
    QVERIFY(!p->stpp->isHidden());
    move(p->stop);
    QVERIFY(!p->stp->isHidden() && p->stpp->isHidden());
    QVERIFY(p->StopHot);
    QVERIFY(!p->PauseHot);

    move(p->Main); // the skin ends every hover
    for (QLabel *image : {p->nxt, p->nxtp, p->stp, p->stpp})
        QVERIFY(image->isHidden());
    QVERIFY(!p->NextHot && !p->StopHot);

    // Each picture stands where it was drawn, at its own size.
    const struct {
        QLabel *image;
        QRect at;
    } drawn[] = {{p->pre, twips::rect(3720, 3265, 840, 720)},    {p->prep, twips::rect(3720, 3300, 840, 735)},
                 {p->stp, twips::rect(4920, 3225, 840, 810)},    {p->stpp, twips::rect(4920, 3240, 840, 810)},
                 {p->ply, twips::rect(5970, 3225, 840, 810)},    {p->plyp, twips::rect(5970, 3240, 840, 810)},
                 {p->pause, twips::rect(7020, 3225, 840, 810)},  {p->pausep, twips::rect(7020, 3255, 840, 810)},
                 {p->nxt, twips::rect(7995, 3225, 840, 810)},    {p->nxtp, twips::rect(7995, 3255, 840, 810)}};
    for (const auto &d : drawn)
        QCOMPARE(d.image->geometry(), d.at);
}

void tst_panel::navigationStopsTheEngine()
{
    World w;
    Panel *t = w.open("Tafm");
    bool mapUpAtStop = true;
    w.engine(t)->onStop = [&] { mapUpAtStop = w.sp.forms.isLoaded("Mainmap") && w.sp.forms.form("Mainmap")->isVisible(); };
    t->ma->Click();
    QVERIFY(!mapUpAtStop); // silenced before the map is up
    QVERIFY(!t->isVisible());
    QVERIFY(w.sp.forms.form("Mainmap")->isVisible());

    // Label9: Tafm shows Mp3 before it stops; Afm stops and hides first.
    bool mp3UpAtStop = false;
    w.sp.forms.Show("Tafm");
    w.engine(t)->onStop = [&] { mp3UpAtStop = w.sp.forms.isLoaded("Mp3") && w.sp.forms.form("Mp3")->isVisible(); };
    t->Label9->Click();
    QVERIFY(mp3UpAtStop);
    QVERIFY(!t->isVisible());
    w.sp.forms.Hide("Mp3");

    Panel *a = w.open("Afm");
    bool afmUpAtStop = false;
    w.engine(a)->onStop = [&] {
        mp3UpAtStop = w.sp.forms.form("Mp3")->isVisible();
        afmUpAtStop = a->isVisible();
    };
    a->Label9->Click();
    QVERIFY(!mp3UpAtStop);
    QVERIFY(afmUpAtStop);
    QVERIFY(w.sp.forms.form("Mp3")->isVisible());

    // From Mp3 back to the map, the local engine stopped.
    auto *mp3 = w.sp.forms.get<Panel>("Mp3");
    mp3->Label9->Click();
    QVERIFY(w.sp.forms.form("Mainmap")->isVisible());
    QVERIFY(!mp3->isVisible());
    QCOMPARE(w.sp.media.locals.first()->calls.last(), QStringLiteral("Stop"));
    QCOMPARE(w.sp.process.ends, 0);
}

void tst_panel::waysOut()
{
    World w;
    Panel *a = w.open("Afm");
    a->close(); // no close command: nothing
    QCOMPARE(w.sp.process.ends, 0);
    QVERIFY(a->isVisible());
    Panel *t = w.open("Tafm");
    t->close();
    QCOMPARE(w.sp.process.ends, 0);
    // The traffic window opens beside the panel and leaves it as it is.
    QByteArray table(4 + 860, '\0');
    table[0] = 1; // one row, all zero
    w.sp.interfaces.image = table;
    a->Label12->Click();
    QVERIFY(w.sp.dialogs.shown.isEmpty());
    QVERIFY(w.sp.forms.form("frmInterfaces")->isVisible());
    QVERIFY(a->isVisible());
    a->killme->Click();
    QCOMPARE(w.sp.process.ends, 1);
    Panel *m = w.open("Mp3");
    m->close(); // Mp3 keeps its close box: Unload ends the program
    QCOMPARE(w.sp.process.ends, 2);
}

QTEST_MAIN(tst_panel)
#include "tst_panel.moc"
