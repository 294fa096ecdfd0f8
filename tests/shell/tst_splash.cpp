#include "ShellWorld.h"
#include "shell/frmSplash.h"
#include "widgets/zzSlider.h"

#include <QLabel>

// Start-up on a driven clock: ticks, the probe in the last one, its route, and early ends.
class tst_splash : public QObject {
    Q_OBJECT
private slots:
    void ticksProbeAndRoute()
    {
        for (bool answer : {true, false}) {
            ShellWorld s;
            s.sp.connection.probeAnswer = answer;
            auto *f = s.show<frmSplash>(QStringLiteral("frmSplash"));
            s.sp.clock.advance(399);
            QStringList texts{f->sts->text()};
            for (int tick = 0; tick < 11; ++tick) {
                s.sp.clock.advance(tick ? 400 : 1);
                const float step = 10.0f * tick;
                QCOMPARE((QList<float>{f->s1->Value(), f->s2->Value(), f->s3->Value(), f->s4->Value(), float(f->SplashStep)}),
                         (QList<float>{step, 100 - step, 100 - step, step, step + 10}));
                texts << f->sts->text();
            }
            const QString program = "Loading Program...";
            QCOMPARE(texts, (QStringList{"", "Loading Files...", "Loading Files...", "Checking Windows Version...",
                                         "Checking Windows Version...", "Checking Sound hardware...",
                                         "Checking Sound hardware...", "Checking Internal memory...",
                                         "Checking Internal memory...", "Checking Internet Connection...", program, program}));
            // The twelfth tick hands over; the splash stays up, frozen, while the probe blocks.
            s.sp.connection.duringProbe = [&] { QVERIFY(f->isVisible() && f->sts->text() == program); };
            s.sp.clock.advance(399);
            QVERIFY(!s.sp.forms.isLoaded(QStringLiteral("Form2")) && !f->Timer2->Enabled());
            s.sp.clock.advance(1);
            QCOMPARE(s.sp.connection.probed, QStringList{QStringLiteral("http://example.com/")});
            QVERIFY(!f->Timer1->Enabled() && f->Timer2->Enabled() && !f->isVisible());
            // Offline goes to Mp3, whose Load hides (and so loads) the map.
            QVERIFY(s.shown(answer ? "Mainmap" : "Mp3") && !s.shown(answer ? "Mp3" : "Mainmap") && !s.shown("Form2"));
            s.sp.clock.advance(5000); // offline says nothing, and later ticks do nothing
            QCOMPARE(s.sp.connection.probed.size() + s.sp.process.ends + s.sp.dialogs.shown.size(), 1);
        }
    }

    void keyOrCloseEndsBeforeAnythingElse()
    {
        for (bool byKey : {true, false}) {
            ShellWorld s;
            auto *f = s.show<frmSplash>(QStringLiteral("frmSplash"));
            s.sp.clock.advance(400 * 5);
            QTest::keyClick(f, Qt::Key_Left); // arrows and lone modifiers type nothing
            QTest::keyClick(f, Qt::Key_Shift);
            QCOMPARE(s.sp.process.ends, 0);
            f->s1->setFocus(); // a key that types ends it, even on a bar; so does the window manager's close
            byKey ? QTest::keyClick(f->s1, Qt::Key_Q) : void(f->close());
            QCOMPARE((QList<int>{s.sp.process.ends, s.sp.process.lastExitCode}), (QList<int>{1, 0}));
            s.sp.clock.advance(400 * 12);
            QVERIFY(!f->isVisible() && !s.sp.forms.isLoaded(QStringLiteral("Form2")) && s.sp.dialogs.shown.isEmpty());
        }
    }
};

QTEST_MAIN(tst_splash)
#include "tst_splash.moc"
