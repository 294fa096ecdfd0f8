// What a station click does in the four station panels, their tables as shipped,
// on a scripted engine and a manual clock.
#include "catalogue/Product.h"
#include "panel/PanelWorld.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QTest>

class tst_stations : public QObject {
    Q_OBJECT
    static void click(QWidget *w) { QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(2, 2)); }

private slots:
    void everyButtonAndTheKannadaNotice()
    {
        PanelWorld w;
        QStringList unlit, calls;
        for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"}) {
            Panel *p = w.open(QLatin1String(name));
            for (GlowButton *b : p->stationButtons) {
                QMouseEvent move(QEvent::MouseMove, QPointF(2, 2), b->mapToGlobal(QPointF(2, 2)), Qt::NoButton, {}, {});
                QApplication::sendEvent(b, &move);
                if (b->Appearance() != 1)
                    unlit << p->objectName() + '.' + b->objectName();
                click(b);
            }
            calls += p->stationButtons.isEmpty() ? QStringList() : PanelWorld::engine(p)->calls;
        }
        QCOMPARE(unlit, (QStringList{"Malfm.s27", "kanna.s27"})); // beneath s9: no hover, yet a click reaches them
        // A button for every row (Mp3 has none), the shipped hosts point nowhere, only Tafm's s31 mutes.
        QCOMPARE(calls.filter(QStringLiteral("://stations.invalid")).size(), 62 + 12 + 16 + 16);
        QCOMPARE(calls.filter(QStringLiteral("mute")), QStringList{"mute=1"});
        // Blanks, the doubled port, mms on 80 and the misspelt scheme go as written.
        for (const char *url : {"http://stations.invalid/fm/Isaitamil Fm.asx", "http://stations.invalid:8058",
                                "http://stations.invalid/rmirchi?play=968771965 ", " http://stations.invalid:8132",
                                "http://stations.invalid:82:82/ramgen/yr6rjur/t/f/fools/tannulu_thinte.rm",
                                "mms://stations.invalid:80/malayalam", "hhttp://stations.invalid/listen",
                                "http://stations.invalid/stream/radio/kannada/radiospice.asx "})
            QVERIFY2(calls.contains("URL=" + QLatin1String(url)), url);
        Panel *k = w.open(QStringLiteral("kanna"));
        QCOMPARE(k->Label10->text(), "SORRY FRIENDS I CAN'T ABLE TO FIND LINKS FOR YOUR LANGUAGE IF YOU HAVE ANY LINK PLEASE "
                                     "SHARE WITH ME AT " + QLatin1String(product::MaintainersMail) + "          THANKS");
        QVERIFY(k->Label10->parentWidget() == k->file && w.open(QStringLiteral("Tafm"))->Label10->text().isEmpty());
    }

    void switchingAndTheS31Rule()
    {
        PanelWorld w;
        Panel *p = w.open(QStringLiteral("Tafm"));
        ScriptedStationEngine *e = PanelWorld::engine(p);
        // The URL goes over again for the same station, and with no stop between.
        e->state = 3;
        for (const char *button : {"s2", "s3", "s3"})
            click(p->stationButton(QLatin1String(button)));
        QCOMPARE(e->calls, (QStringList{"URL=http://stations.invalid/radio", "URL=http://stations.invalid:8000/",
                                        "URL=http://stations.invalid:8000/"}));
        QVERIFY(p->StationName == QLatin1String("Tarnelith Fm ") && p->sts->Enabled() && !p->Timer1->Enabled());
        // s31 mutes and starts Timer1; a second click doesn't restart its ten seconds.
        click(p->stationButton(QStringLiteral("s31")));
        QCOMPARE(e->calls.mid(3), (QStringList{"URL=http://stations.invalid:9342", "mute=1"}));
        w.sp.clock.advance(5000);
        click(p->stationButton(QStringLiteral("s31")));
        w.sp.clock.advance(4990);
        QVERIFY(e->muted);
        w.sp.clock.advance(20);
        QVERIFY(!e->muted);
        // Later stations, the user's own mute and a stop all fall under it, tick by tick.
        click(p->stationButton(QStringLiteral("s2")));
        auto tick = [&] { return w.sp.clock.advance(10000), e->muted; };
        e->state = 6;
        QVERIFY(tick());
        e->state = 3;
        QVERIFY(!tick());
        e->setMute(true);
        QVERIFY(!tick());
        p->stop_Click();
        QVERIFY(tick() && p->Timer1->Enabled() && p->StationName == QLatin1String("Express Tamil Fm"));
    }
};

QTEST_MAIN(tst_stations)
#include "tst_stations.moc"
