#include "doubles/ScriptedPlatform.h"
#include "shell/Form2.h"
#include "shell/ShellForms.h"
#include "shell/frmSplash.h"
#include "widgets/zzSlider.h"

#include <QLabel>
#include <QTest>

// Start-up on a driven clock: the splash's ticks, its texts and bars, the
// probe inside the last tick and the route it takes.
class tst_splash : public QObject {
    Q_OBJECT
private slots:
    void ticksTextsAndBars();
    void routeFollowsTheProbe_data();
    void routeFollowsTheProbe();
    void keyPressEndsBeforeAnythingElse();
};

namespace {

struct Started {
    ScriptedPlatform sp;
    frmSplash *splash = nullptr;
    Started()
    {
        defineForms(sp.platform);
        sp.forms.Show(QStringLiteral("frmSplash"));
        splash = sp.forms.get<frmSplash>(QStringLiteral("frmSplash"));
    }
};

} // namespace

void tst_splash::ticksTextsAndBars()
{
    Started s;
    frmSplash *f = s.splash;
    QVERIFY(f->isVisible());
    QCOMPARE(f->size(), QSize(509, 381));
    QCOMPARE(f->lblVersion->text(), QStringLiteral("Version 3.0.0"));
    QCOMPARE(f->lblProductName->text(), QStringLiteral("Zarvent"));
    QVERIFY(s.sp.app.HelpFile.endsWith(QLatin1String("/Help.chm")));

    s.sp.clock.advance(399);
    QCOMPARE(f->sts->text(), QString()); // nothing before the first tick

    const QStringList expected = {
        "Loading Files...",                // 0
        "Loading Files...",                // 10
        "Checking Windows Version...",     // 20
        "Checking Windows Version...",     // 30
        "Checking Sound hardware...",      // 40
        "Checking Sound hardware...",      // 50
        "Checking Internal memory...",     // 60
        "Checking Internal memory...",     // 70
        "Checking Internet Connection...", // 80
        "Loading Program...",              // 90
        "Loading Program...",              // 100
    };
    for (int tick = 1; tick <= 11; ++tick) {
        s.sp.clock.advance(tick == 1 ? 1 : 400);
        const int step = 10 * (tick - 1);
        QCOMPARE(f->sts->text(), expected.at(tick - 1));
        QCOMPARE(f->s1->Value(), float(step));
        QCOMPARE(f->s4->Value(), float(step));
        QCOMPARE(f->s2->Value(), float(100 - step));
        QCOMPARE(f->s3->Value(), float(100 - step));
        QCOMPARE(f->SplashStep, qint16(step + 10));
        QVERIFY(!s.sp.forms.isLoaded(QStringLiteral("Form2")));
    }
    // Full top and left bars, empty bottom and right ones at the eleventh tick.
    QCOMPARE(f->s1->fillWidth(), 6795.0);
    QCOMPARE(f->s3->fillWidth(), 0.0);
    QCOMPARE(f->s2->fillHeight(), 0.0);
    QCOMPARE(f->s4->fillHeight(), 4935.0);

    // The twelfth tick writes 110 and -10, which the bars clamp, then hands over.
    s.sp.connection.duringProbe = [&] {
        QVERIFY(f->isVisible()); // frozen on its last text while the probe blocks
        QCOMPARE(f->sts->text(), QStringLiteral("Loading Program..."));
    };
    s.sp.clock.advance(400);
    QCOMPARE(f->s1->Value(), 100.0f);
    QCOMPARE(f->s2->Value(), 0.0f);
    QCOMPARE(s.sp.connection.probed, QStringList{QStringLiteral("http://example.com/")});
    QVERIFY(!f->Timer1->Enabled());
    QVERIFY(f->Timer2->Enabled());
    QVERIFY(!f->isVisible());
    QVERIFY(s.sp.forms.isLoaded(QStringLiteral("Form2")));
    QVERIFY(!s.sp.forms.form(QStringLiteral("Form2"))->isVisible());

    // Nothing more happens on later ticks: the probe ran once.
    s.sp.clock.advance(5000);
    QCOMPARE(s.sp.connection.probed.size(), 1);
    QCOMPARE(s.sp.process.ends, 0);
    QVERIFY(s.sp.dialogs.shown.isEmpty());
}

void tst_splash::routeFollowsTheProbe_data()
{
    QTest::addColumn<bool>("answer");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("notLoaded");
    QTest::newRow("connected") << true << "Mainmap" << "Mp3";
    QTest::newRow("offline") << false << "Mp3" << "Mainmap";
}

void tst_splash::routeFollowsTheProbe()
{
    QFETCH(bool, answer);
    QFETCH(QString, shown);
    QFETCH(QString, notLoaded);
    Started s;
    s.sp.connection.probeAnswer = answer;
    s.sp.clock.advance(11 * 400 + 399);
    QVERIFY(s.sp.connection.probed.isEmpty());
    s.sp.clock.advance(1);
    QVERIFY(s.sp.forms.isLoaded(shown));
    QVERIFY(s.sp.forms.form(shown)->isVisible());
    // Mp3's Load hides the map, which loads it; either way it is not shown.
    QVERIFY(!s.sp.forms.isLoaded(notLoaded) || !s.sp.forms.form(notLoaded)->isVisible());
    QVERIFY(!s.splash->isVisible());
    QVERIFY(s.sp.dialogs.shown.isEmpty()); // offline says nothing
    if (shown == QLatin1String("Mp3")) {
        QCOMPARE(s.sp.forms.form(shown)->windowTitle(), QStringLiteral("Mp3 Player"));
        QCOMPARE(s.sp.forms.form(shown)->size(), QSize(856, 320)); // 4800 twips until its first tick folds it
    } else {
        QCOMPARE(s.sp.forms.form(shown)->windowTitle(), QStringLiteral("Form2"));
    }
}

void tst_splash::keyPressEndsBeforeAnythingElse()
{
    Started s;
    s.sp.clock.advance(400 * 5);
    // Arrows and lone modifiers type nothing: no key press.
    QTest::keyClick(s.splash, Qt::Key_Left);
    QTest::keyClick(s.splash, Qt::Key_Shift);
    QCOMPARE(s.sp.process.ends, 0);

    // A key that types, even while a bar has the focus.
    s.splash->s1->setFocus();
    QTest::keyClick(s.splash->s1, Qt::Key_Q);
    QCOMPARE(s.sp.process.ends, 1);
    QCOMPARE(s.sp.process.lastExitCode, 0);
    QVERIFY(s.sp.dialogs.shown.isEmpty());
    s.sp.clock.advance(400 * 12);
    QVERIFY(!s.sp.forms.isLoaded(QStringLiteral("Form2")));
    QVERIFY(s.sp.connection.probed.isEmpty());

    // Closed by the window manager: the same end, and nothing follows.
    Started closed;
    closed.sp.clock.advance(400 * 5);
    QVERIFY(!closed.splash->close());
    QCOMPARE(closed.sp.process.ends, 1);
    closed.sp.clock.advance(400 * 12);
    QVERIFY(!closed.sp.forms.isLoaded(QStringLiteral("Form2")));
    QVERIFY(closed.sp.dialogs.shown.isEmpty());
}

QTEST_MAIN(tst_splash)
#include "tst_splash.moc"
