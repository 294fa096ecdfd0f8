// The level bars and the "VU Meter" frame of a panel, on the scripted mixer.
#include "panel/PanelWorld.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "panel/Panel.h"
#include "panel/VuDisplay.h"
#include "shell/ShellForms.h"
#include "widgets/LedProgress.h"

#include <QGroupBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QTest>

namespace {

const QColor Yellow(255, 255, 0), Red(255, 0, 0), Green(0, 255, 0);

struct World : PanelWorld {
    void tick() { ticks(1); }
};

QList<int> values(const VuDisplay *d)
{
    QList<int> all;
    for (int strip : {0, 2, 3, 5, 7, 10, 11})
        all << d->Led[strip]->Value();
    return all;
}

} // namespace

class tst_vu_display : public QObject {
    Q_OBJECT
private slots:
    void barsFollowTheFadersNotTheSound();
    void barsWithoutAMixerOrALine();
    void theMeterStandsStill();
};

void tst_vu_display::barsFollowTheFadersNotTheSound()
{
    World w;
    Panel *p = w.open(QStringLiteral("Tafm"));
    VuDisplay *d = p->display();
    MixerSection *m = p->mixer();
    QCOMPARE(d->Led[1], nullptr);
    QCOMPARE(d->Led[0]->toolTip(), QString("Master Level"));
    QCOMPARE(d->Led[0]->Orientation(), 1);
    QCOMPARE(d->Led[10]->Orientation(), 0); // tall, and filling across all the same
    QCOMPARE(d->Led[11]->ZoneYellow(), basic::Integer(70));
    QVERIFY(d->Led[0]->height() > d->Led[0]->width());

    // The master fader at its top: full, yellow above 60 and red above 90
    // at the next tick.
    m->VolumeControl[0]->setSliderPosition(0);
    QCOMPARE(m->txtvolumecontrol[0]->text(), QString("65535"));
    w.tick();
    LedProgress *led = d->Led[0];
    QCOMPARE(led->Value(), basic::Integer(100));
    const int h = led->height();
    const QImage &bar = led->surface();
    QCOMPARE(bar.pixelColor(8, h * 5 / 100), Red);
    QCOMPARE(bar.pixelColor(8, h * 25 / 100), Yellow);
    QCOMPARE(bar.pixelColor(8, h * 75 / 100), Green);
    // Raw 32768 is 50 (655.35 to the percent, halves to even).
    m->txtvolumecontrol[5]->setText(QStringLiteral("32768"));
    m->txtvolumecontrol[7]->setText(QStringLiteral("1638")); // 2.4995...
    m->txtvolumecontrol[2]->setText(QStringLiteral("983"));  // 1.49996...: 1
    w.tick();
    QCOMPARE(d->Led[5]->Value(), basic::Integer(50));
    QCOMPARE(d->Led[7]->Value(), basic::Integer(2));
    QCOMPARE(d->Led[2]->Value(), basic::Integer(1));

    // Playing, paused or stopped, the bars stand the same, and an unchanged
    // bar is not drawn again.
    const QList<int> before = values(d);
    const int drawn = led->drawings();
    auto *engine = static_cast<ScriptedStationEngine *>(p->player());
    for (int state : {3, 2, 1}) {
        engine->state = state;
        w.sp.clock.advance(500);
        QCOMPARE(values(d), before);
    }
    QCOMPARE(led->drawings(), drawn);

    // ctrlled2 would stop the refresh, had anything started it.
    QVERIFY(!d->ctrlled2->Enabled());
    d->ctrlled2_Timer();
    QVERIFY(!d->ctrlled->Enabled());
    m->txtvolumecontrol[0]->setText(QStringLiteral("0"));
    w.tick();
    QCOMPARE(led->Value(), basic::Integer(100));
}

void tst_vu_display::barsWithoutAMixerOrALine()
{
    // No mixer: the raw fields stay at 32768, so every bar stands at 50.
    World none;
    none.sp.mixer.openResult = mixer::BadDeviceId;
    Panel *p = none.open(QStringLiteral("Mp3"));
    none.tick();
    QCOMPARE(values(p->display()), QList<int>({50, 50, 50, 50, 50, 50, 50}));

    // A line the machine lacks hides its strip, and its bar at the next tick.
    World partial;
    partial.sp.mixer.removeLine(mixer::LineSource);
    Panel *q = partial.open(QStringLiteral("kanna"));
    partial.tick();
    QVERIFY(q->display()->Led[2]->isHidden());
    QVERIFY(!q->display()->Led[0]->isHidden());
}

void tst_vu_display::theMeterStandsStill()
{
    World w;
    Panel *p = w.open(QStringLiteral("Malfm"));
    VuDisplay *d = p->display();
    QCOMPARE(d->Frame1->title(), QString("VU Meter"));
    w.sp.clock.advance(1000);
    for (QProgressBar *bar : {d->ProgressBar1, d->ProgressBar2}) {
        QCOMPARE(bar->maximum(), 3275);
        QCOMPARE(bar->value(), 0);
    }
    QCOMPARE(d->VuLeftLevel->text(), QString("32768"));
    QCOMPARE(d->VuRightLevel->text(), QString("32768"));
    QVERIFY(!d->sbm->isRunning() && !d->vctrl->isRunning());

    // sbm, called by hand: the flag plus 200, and a found meter takes over
    // the master record.
    MixerSection *m = p->mixer();
    d->sbm_Timer();
    QCOMPARE(d->ProgressBar1->value(), 200);
    QCOMPARE(d->ProgressBar2->value(), 200);
    w.sp.mixer.addLine(mixer::Speakers, 2, {mixer::SignedMeter}, 0);
    d->sbm_Timer();
    QCOMPARE(d->ProgressBar1->value(), 199);
    QCOMPARE(d->ProgressBar2->value(), 199);
    QCOMPARE(m->lineRecord[0].dwControlType, mixer::SignedMeter);
}

QTEST_MAIN(tst_vu_display)
#include "tst_vu_display.moc"
