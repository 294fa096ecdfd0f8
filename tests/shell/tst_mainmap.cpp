#include "doubles/ScriptedPlatform.h"
#include "shell/Mainmap.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

namespace {

struct MapWorld {
    ScriptedPlatform sp;
    Mainmap *map = nullptr;
    MapWorld()
    {
        defineForms(sp.platform);
        sp.forms.Show(QStringLiteral("Mainmap"));
        map = sp.forms.get<Mainmap>(QStringLiteral("Mainmap"));
        map->move(100, 100);
    }
};

void mouse(QWidget *w, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held)
{
    QMouseEvent e(type, QPointF(at), w->mapToGlobal(QPointF(at)), button, held, Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}

// Press and release where the window system would deliver them: to the
// topmost child under the point, or the form itself.
QWidget *clickAt(Mainmap *map, QPoint at)
{
    QWidget *target = map->childAt(at);
    if (!target)
        target = map;
    const QPoint local = target->mapFrom(map, at);
    mouse(target, QEvent::MouseButtonPress, local, Qt::LeftButton, Qt::LeftButton);
    mouse(target, QEvent::MouseButtonRelease, local, Qt::LeftButton, Qt::NoButton);
    return target;
}

} // namespace

class tst_mainmap : public QObject {
    Q_OBJECT
private slots:
    void regionsByTheirOrder_data();
    void regionsByTheirOrder();
    void noConnectionGivesTwoBoxesAndTheMapBack();
    void clickOutsideTheAreasAndDragging();
    void buttonsAndOutline();
};

void tst_mainmap::regionsByTheirOrder_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("panel");
    // Points in pixels; where areas overlap the upper row of the table wins.
    QTest::newRow("kal over Tn1") << QPoint(240, 200) << "kal" << "kanna";
    QTest::newRow("kal over Kll") << QPoint(150, 230) << "kal" << "kanna";
    QTest::newRow("Tn2 over Kll") << QPoint(210, 260) << "Tn2" << "Tafm";
    QTest::newRow("Tn3 over Kll") << QPoint(212, 300) << "Tn3" << "Tafm";
    QTest::newRow("Tn1 alone") << QPoint(270, 250) << "Tn1" << "Tafm";
    QTest::newRow("Andhra") << QPoint(330, 60) << "Andrha" << "Afm";
    QTest::newRow("Kerala") << QPoint(200, 330) << "Kll" << "Malfm";
}

void tst_mainmap::regionsByTheirOrder()
{
    QFETCH(QPoint, at);
    QFETCH(QString, label);
    QFETCH(QString, panel);
    MapWorld w;
    w.sp.connection.connectedAnswer = true;
    QCOMPARE(clickAt(w.map, at)->objectName(), label);
    QCOMPARE(w.sp.connection.connectedCalls, 1);
    QVERIFY(!w.map->isVisible());
    QVERIFY(w.sp.forms.isLoaded(panel));
    QVERIFY(w.sp.forms.form(panel)->isVisible());
    QCOMPARE(w.sp.forms.form(panel)->windowTitle(), QStringLiteral("FM"));
    QVERIFY(w.sp.dialogs.shown.isEmpty());
    QVERIFY(!w.map->Dragging); // a press on a region is not the form's
    QCOMPARE(w.map->pos(), QPoint(100, 100));
}

void tst_mainmap::noConnectionGivesTwoBoxesAndTheMapBack()
{
    MapWorld w;
    w.map->move(160, 120);
    QList<bool> mapVisibleDuringBox;
    w.sp.dialogs.onShow = [&](const ShownBox &) { mapVisibleDuringBox << w.map->isVisible(); };
    clickAt(w.map, QPoint(270, 250));
    QCOMPARE(w.sp.dialogs.shown.size(), 2);
    QCOMPARE(w.sp.dialogs.shown[0].prompt, QStringLiteral("You Dont have internet Connection to Continue"));
    QCOMPARE(w.sp.dialogs.shown[0].style, int(MsgBox::Critical));
    QCOMPARE(w.sp.dialogs.shown[0].title, QStringLiteral("Connection Problem"));
    QCOMPARE(w.sp.dialogs.shown[1].prompt, QStringLiteral("Please check your connection and try again"));
    QCOMPARE(w.sp.dialogs.shown[1].style, int(MsgBox::Information));
    QCOMPARE(w.sp.dialogs.shown[1].title, QStringLiteral("Connection Problem"));
    QCOMPARE(mapVisibleDuringBox, (QList<bool>{false, false}));
    QVERIFY(w.map->isVisible());
    QCOMPARE(w.map->pos(), QPoint(160, 120));
    QVERIFY(!w.sp.forms.isLoaded(QStringLiteral("Tafm")));
    QCOMPARE(w.sp.connection.connectedCalls, 1);
}

void tst_mainmap::clickOutsideTheAreasAndDragging()
{
    MapWorld w;
    const QPoint land(180, 50); // on the picture, in no area
    QVERIFY(w.map->mask().contains(land));
    QVERIFY(!w.map->childAt(land));
    QCOMPARE(clickAt(w.map, land), static_cast<QWidget *>(w.map));
    QCOMPARE(w.sp.dialogs.shown.size(), 1);
    QCOMPARE(w.sp.dialogs.shown[0].prompt, QStringLiteral("Please Select Appropriate Place"));
    QCOMPARE(w.sp.dialogs.shown[0].style, 0);
    QVERIFY(w.sp.dialogs.shown[0].title.isEmpty());

    // Dragged by its picture: every move shifts the window by the distance
    // from the press point, which stays the anchor.
    mouse(w.map, QEvent::MouseButtonPress, QPoint(450, 200), Qt::LeftButton, Qt::LeftButton);
    QVERIFY(w.map->Dragging);
    QCOMPARE(w.map->DragX, qint16(450 * 15));
    QCOMPARE(w.map->DragY, qint16(200 * 15));
    mouse(w.map, QEvent::MouseMove, QPoint(460, 230), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(w.map->pos(), QPoint(110, 130));
    mouse(w.map, QEvent::MouseMove, QPoint(440, 190), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(w.map->pos(), QPoint(100, 120));
    // The release over the form completes a click: the message again.
    mouse(w.map, QEvent::MouseButtonRelease, QPoint(440, 190), Qt::LeftButton, Qt::NoButton);
    QVERIFY(!w.map->Dragging);
    QCOMPARE(w.sp.dialogs.shown.size(), 2);
    mouse(w.map, QEvent::MouseMove, QPoint(470, 230), Qt::NoButton, Qt::NoButton);
    QCOMPARE(w.map->pos(), QPoint(100, 120));

    // A press on a region label is the label's: the window stays.
    ClickLabel *kal = w.map->kal;
    mouse(kal, QEvent::MouseButtonPress, QPoint(5, 5), Qt::LeftButton, Qt::LeftButton);
    mouse(kal, QEvent::MouseMove, QPoint(40, 60), Qt::NoButton, Qt::LeftButton);
    QVERIFY(!w.map->Dragging);
    QCOMPARE(w.map->pos(), QPoint(100, 120));
    mouse(kal, QEvent::MouseButtonRelease, QPoint(200, 400), Qt::LeftButton, Qt::NoButton); // released off the label
    QCOMPARE(w.sp.connection.connectedCalls, 0);
    QCOMPARE(w.sp.dialogs.shown.size(), 2);

    // The right button drags too but clicks nothing.
    mouse(w.map, QEvent::MouseButtonPress, QPoint(450, 200), Qt::RightButton, Qt::RightButton);
    mouse(w.map, QEvent::MouseMove, QPoint(455, 200), Qt::NoButton, Qt::RightButton);
    mouse(w.map, QEvent::MouseButtonRelease, QPoint(455, 200), Qt::RightButton, Qt::NoButton);
    QCOMPARE(w.map->pos(), QPoint(105, 120));
    QCOMPARE(w.sp.dialogs.shown.size(), 2);
}

void tst_mainmap::buttonsAndOutline()
{
    MapWorld w;
    QCOMPARE(w.map->size(), QSize(529, 429));
    QCOMPARE(w.map->GlowButton1->Caption(), QStringLiteral("MP3"));
    QCOMPARE(w.map->GlowButton2->Caption(), QStringLiteral("EXIT"));
    QCOMPARE(w.map->GlowButton1->geometry(), QRect(152, 0, 89, 25));

    // The window is the outline: the southern tip and the northern edge are
    // in, the corners and the seas are out.
    const QRegion mask = w.map->mask();
    QVERIFY(mask.contains(QPoint(220, 370)));
    QVERIFY(mask.contains(QPoint(300, 10)));
    QVERIFY(!mask.contains(QPoint(5, 5)));
    QVERIFY(!mask.contains(QPoint(520, 420)));
    QVERIFY(!mask.contains(QPoint(100, 300))); // Arabian sea
    QVERIFY(!mask.contains(QPoint(400, 300))); // Bay of Bengal

    // MP3 needs no connection.
    clickAt(w.map, QPoint(190, 12));
    QCOMPARE(w.sp.connection.connectedCalls, 0);
    QVERIFY(!w.map->isVisible());
    QVERIFY(w.sp.forms.form(QStringLiteral("Mp3"))->isVisible());
    QCOMPARE(w.sp.process.ends, 0);

    w.map->Show();
    clickAt(w.map, QPoint(380, 12));
    QCOMPARE(w.sp.process.ends, 1);
    QVERIFY(w.sp.dialogs.shown.isEmpty());
}

QTEST_MAIN(tst_mainmap)
#include "tst_mainmap.moc"
