#include "ShellWorld.h"
#include "shell/Mainmap.h"

namespace {

struct MapWorld : ShellWorld {
    Mainmap *map = show<Mainmap>(QStringLiteral("Mainmap"));
    QStringList boxes; // prompt|style|title|whether the map showed under it
    MapWorld()
    {
        map->move(100, 100);
        sp.dialogs.onShow = [this](const ShownBox &b) {
            boxes << QStringLiteral("%1|%2|%3|%4").arg(b.prompt).arg(b.style).arg(b.title).arg(map->isVisible());
        };
    }
    // A click where the window system delivers it: to the topmost child under the point.
    QString clickAt(QPoint at)
    {
        QWidget *on = map->childAt(at) ? map->childAt(at) : map;
        QTest::mouseClick(on, Qt::LeftButton, {}, on->mapFrom(map, at));
        return on->objectName();
    }
};

} // namespace

class tst_mainmap : public QObject {
    Q_OBJECT
private slots:
    void regionsAndButtons()
    {
        // Where areas overlap, the upper row of the table wins (kal over Tn1).
        // With no connection the map hides under two boxes and comes back.
        const struct { QPoint at; const char *label, *panel; bool online; } clicks[] = {
            {{240, 200}, "kal", "kanna", true}, {{210, 260}, "Tn2", "Tafm", true},   {{212, 300}, "Tn3", "Tafm", true},
            {{270, 250}, "Tn1", "Tafm", true},  {{330, 60}, "Andrha", "Afm", true}, {{200, 330}, "Kll", "Malfm", true},
            {{190, 12}, "GlowButton1", "Mp3", true}, {{270, 250}, "Tn1", "Tafm", false}};
        for (const auto &c : clicks) {
            MapWorld w;
            w.sp.connection.connectedAnswer = c.online;
            QCOMPARE(w.clickAt(c.at), QLatin1String(c.label));
            QCOMPARE(w.boxes, (c.online ? QStringList() : QStringList{
                "You Dont have internet Connection to Continue|16|Connection Problem|0",
                "Please check your connection and try again|64|Connection Problem|0"}));
            QVERIFY(w.map->isVisible() != c.online && w.shown(QLatin1String(c.panel)) == c.online);
            QVERIFY(!w.map->Dragging && w.map->pos() == QPoint(100, 100)); // a press on a region is not the form's
            QCOMPARE(w.sp.connection.connectedCalls, c.panel == QLatin1String("Mp3") ? 0 : 1); // files need none
        }
    }

    void offTheRegionsDragAndExit()
    {
        MapWorld w;
        QCOMPARE(w.clickAt(QPoint(180, 50)), QStringLiteral("Mainmap")); // on the picture, in no area
        // Either button drags, the press point the anchor of every move; a left release
        // over the form is a click as well.
        for (Qt::MouseButton b : {Qt::LeftButton, Qt::RightButton}) {
            mouse(w.map, QEvent::MouseButtonPress, QPoint(450, 200), b);
            mouse(w.map, QEvent::MouseMove, QPoint(460, 230), b);
            QCOMPARE(w.map->pos(), QPoint(110, 130));
            mouse(w.map, QEvent::MouseMove, QPoint(440, 190), b);
            mouse(w.map, QEvent::MouseButtonRelease, QPoint(440, 190), b);
            mouse(w.map, QEvent::MouseMove, QPoint(470, 230), Qt::NoButton);
            QVERIFY(!w.map->Dragging && w.map->pos() == QPoint(100, 120));
            w.map->move(100, 100);
        }
        QCOMPARE(w.boxes, QStringList(2, QStringLiteral("Please Select Appropriate Place|0||1")));
        QCOMPARE(w.clickAt(QPoint(380, 12)), QStringLiteral("GlowButton2"));
        QCOMPARE(w.sp.process.ends, 1);
    }
};

QTEST_MAIN(tst_mainmap)
#include "tst_mainmap.moc"
