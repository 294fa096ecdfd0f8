// What a station click does in the four station panels, on a scripted
// engine and a manual clock.
#include "catalogue/Product.h"
#include "catalogue/Station.h"
#include "panel/PanelWorld.h"
#include "panel/Panel.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QMouseEvent>
#include <QTest>

namespace {

using World = PanelWorld;

void mouse(QWidget *w, QEvent::Type type, Qt::MouseButton button)
{
    const QPointF at(2, 2);
    QMouseEvent e(type, at, w->mapToGlobal(at), button, type == QEvent::MouseButtonRelease ? Qt::NoButton : button,
                  Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}

void click(QWidget *w)
{
    QVERIFY(w);
    mouse(w, QEvent::MouseButtonPress, Qt::LeftButton);
    mouse(w, QEvent::MouseButtonRelease, Qt::LeftButton);
}

const char *const StationPanels[] = {"Tafm", "Afm", "Malfm", "kanna"};

} // namespace

class tst_station_selection : public QObject {
    Q_OBJECT
private slots:
    void gridOfButtons();
    void hoverOnEveryReachableButton();
    void selectionSwitchesWithoutStop();
    void s31MuteRuleCarriesOver();
    void noTimer1ElsewhereAndTheKannadaNotice();
};

void tst_station_selection::gridOfButtons()
{
    World w;
    for (const char *name : StationPanels) {
        Panel *p = w.open(QLatin1String(name));
        const QList<Station> &rows = stationsOf(QLatin1String(name));
        QCOMPARE(p->stationButtons.size(), rows.size());
        for (int i = 0; i < rows.size(); ++i) {
            GlowButton *b = p->stationButtons[i];
            QCOMPARE(b->objectName(), rows[i].button);
            QCOMPARE(b->parentWidget(), static_cast<QWidget *>(p->file));
            QCOMPARE(b->Caption(), rows[i].caption);
            QCOMPARE(b->geometry(), QRect(rows[i].left / 15, rows[i].top / 15, rows[i].width / 15, 41));
            QCOMPARE(b->StoredLook().bcol, 0x404040u);
            QCOMPARE(b->StoredLook().btype, 3);
            QVERIFY(b->isEnabled());
        }
        // The grid lies right of the panel's loaded width: unseen until widened.
        w.ticks(3);
        QVERIFY(p->file->x() >= p->width());
    }
    QVERIFY(w.open(QStringLiteral("Mp3"))->stationButtons.isEmpty());
}

void tst_station_selection::hoverOnEveryReachableButton()
{
    World w;
    int lit = 0;
    for (const char *name : StationPanels) {
        Panel *p = w.open(QLatin1String(name));
        for (GlowButton *b : p->stationButtons) {
            mouse(b, QEvent::MouseMove, Qt::NoButton);
            if (b->Appearance() == 1) {
                ++lit;
                QEvent leave(QEvent::Leave);
                QApplication::sendEvent(b, &leave);
                QCOMPARE(b->Appearance(), 0);
            } else {
                QCOMPARE(b->objectName(), QStringLiteral("s27"));
                QVERIFY(QLatin1String(name) != QLatin1String("Tafm"));
                // Beneath s9: the place of s27 belongs to s9.
                QCOMPARE(p->file->childAt(b->geometry().center())->objectName(), QStringLiteral("s9"));
            }
        }
    }
    QCOMPARE(lit, 104);
}

void tst_station_selection::selectionSwitchesWithoutStop()
{
    World w;
    Panel *p = w.open(QStringLiteral("Tafm"));
    ScriptedStationEngine *e = World::engine(p);
    QVERIFY(p->StationName.isEmpty());
    click(p->stationButton(QStringLiteral("s2")));
    QCOMPARE(e->calls, QStringList{"URL=http://stations.invalid/radio"});
    QCOMPARE(p->StationName, QStringLiteral("Express Tamil Fm"));
    QVERIFY(p->sts->Enabled());
    QVERIFY(p->scr1->Enabled());
    QCOMPARE(p->fNameLeft(), 10320.0);
    w.ticks(1);
    QCOMPARE(p->cptn->text(), QStringLiteral("Connecting......."));
    e->state = 3;
    w.ticks(1);
    QCOMPARE(p->cptn->text(), QStringLiteral("Playing  Express Tamil Fm"));

    // Another station while one plays: a new URL, no stop. The trailing
    // blank of the display name reaches the status text.
    e->calls.clear();
    click(p->stationButton(QStringLiteral("s3")));
    w.ticks(1);
    QCOMPARE(e->calls, QStringList{"URL=http://stations.invalid:8000/"});
    QCOMPARE(p->cptn->text(), QStringLiteral("Playing  Tarnelith Fm "));
    QCOMPARE(p->fName->text(), p->cptn->text());

    // The same station twice hands the URL over again; s4's blank goes as is.
    click(p->stationButton(QStringLiteral("s3")));
    click(p->stationButton(QStringLiteral("s4")));
    QCOMPARE(e->calls.mid(1), (QStringList{"URL=http://stations.invalid:8000/", "URL=http://stations.invalid/fm/Isaitamil Fm.asx"}));

    // Stop, then the name stays; only the button plays again.
    p->stop_Click();
    QCOMPARE(e->calls.last(), QStringLiteral("stop"));
    QCOMPARE(p->StationName, QStringLiteral("Isai Tamilan Fm"));
    w.ticks(2);
    QCOMPARE(p->cptn->text(), QStringLiteral("Connecting......."));

    // Afm's S14 goes with the blank before its scheme.
    Panel *afm = w.open(QStringLiteral("Afm"));
    click(afm->stationButton(QStringLiteral("S14")));
    QCOMPARE(World::engine(afm)->calls, QStringList{"URL= http://stations.invalid:8132"});
}

void tst_station_selection::s31MuteRuleCarriesOver()
{
    World w;
    Panel *p = w.open(QStringLiteral("Tafm"));
    ScriptedStationEngine *e = World::engine(p);
    QVERIFY(!p->Timer1->Enabled());
    QCOMPARE(p->Timer1->Interval(), 10000);
    click(p->stationButton(QStringLiteral("s31")));
    QCOMPARE(e->calls, (QStringList{"URL=http://stations.invalid:9342", "mute=1"}));
    QCOMPARE(p->StationName, QStringLiteral("K.D.Morvan Collections"));
    QVERIFY(p->Timer1->Enabled());

    // A second click on s31 doesn't restart Timer1's count.
    w.sp.clock.advance(5000);
    click(p->stationButton(QStringLiteral("s31")));
    e->state = 3;
    w.sp.clock.advance(4990);
    QVERIFY(e->muted);
    w.sp.clock.advance(20);
    QVERIFY(!e->muted);

    // Later stations fall under the rule: silenced on a tick that finds
    // them buffering, back on the first that finds them playing.
    click(p->stationButton(QStringLiteral("s2")));
    QVERIFY(!e->muted);
    e->state = 6;
    w.sp.clock.advance(10000);
    QVERIFY(e->muted);
    e->state = 3;
    w.sp.clock.advance(10000);
    QVERIFY(!e->muted);

    // The user's own mute is overridden within ten seconds.
    e->setMute(true);
    w.sp.clock.advance(10000);
    QVERIFY(!e->muted);
    // And Timer1 survives stop and leaving the panel.
    p->stop_Click();
    w.sp.clock.advance(10000);
    QVERIFY(e->muted);
    QVERIFY(p->Timer1->Enabled());
}

void tst_station_selection::noTimer1ElsewhereAndTheKannadaNotice()
{
    World w;
    for (const char *name : {"Afm", "Malfm", "kanna"}) {
        Panel *p = w.open(QLatin1String(name));
        ScriptedStationEngine *e = World::engine(p);
        e->state = 6;
        for (GlowButton *b : p->stationButtons)
            click(b);
        w.sp.clock.advance(30000);
        QVERIFY(!p->Timer1->Enabled());
        QCOMPARE(e->calls.filter(QStringLiteral("mute")), QStringList());
        QCOMPARE(e->calls.size(), p->stationButtons.size());
    }
    // s27 can't be hovered, but a click still selects it.
    QCOMPARE(World::engine(w.open(QStringLiteral("kanna")))->calls.last(), QStringLiteral("URL=http://stations.invalid:8000/"));
    QCOMPARE(w.open(QStringLiteral("kanna"))->StationName, QStringLiteral("Jey Fm "));
    // Tafm, loaded by the icon copy, was never clicked: its Timer1 stays off.
    QVERIFY(!w.sp.forms.get<Panel>(QStringLiteral("Tafm"))->Timer1->Enabled());

    Panel *k = w.open(QStringLiteral("kanna"));
    QCOMPARE(k->Label10->parentWidget(), static_cast<QWidget *>(k->file));
    const QString notice = k->Label10->text();
    QVERIFY(notice.startsWith(QStringLiteral("SORRY FRIENDS I CAN'T ABLE TO FIND LINKS FOR YOUR LANGUAGE IF YOU HAVE ANY "
                                             "LINK PLEASE SHARE WITH ME AT ")
                              + QLatin1String(product::MaintainersMail)));
    QVERIFY(notice.endsWith(QStringLiteral("   THANKS")));
    QVERIFY(QString::fromLatin1(product::MaintainersMail).endsWith(QLatin1String(".invalid")));
    // Tafm keeps Label10 as the minimise spot on the skin, with no text.
    QVERIFY(w.open(QStringLiteral("Tafm"))->Label10->text().isEmpty());
}

QTEST_MAIN(tst_station_selection)
#include "tst_station_selection.moc"
