// LedProgress drawn to its surface and read back pixel by pixel.
#include "basic/RuntimeError.h"
#include "platform/OleColor.h"
#include "widgets/LedProgress.h"

#include <QSignalSpy>
#include <QTest>

namespace {

const QColor GreenBody(0, 255, 0), GreenStripe(120, 255, 120);
const QColor YellowBody(255, 255, 0), YellowStripe(255, 255, 130);
const QColor RedBody(255, 0, 0), Outline(190, 190, 190);

QColor at(const LedProgress &bar, int x, int y)
{
    return bar.surface().pixelColor(x, y);
}

QColor background()
{
    return oleColor(0x80000009);
}

// The columns (or rows, standing) at the bar's middle line that hold a colour.
int countOf(const LedProgress &bar, const QColor &colour)
{
    int n = 0;
    const QImage &img = bar.surface();
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            n += img.pixelColor(x, y) == colour;
    return n;
}

} // namespace

class tst_ledprogress : public QObject {
    Q_OBJECT
private slots:
    void lyingBarZonesAndCuts();
    void standingBarFillsFromTheBottom();
    void orientationTurnsTheControlEveryTime();
    void letsTellTheHostAndFailLikeTheRuntime();
};

void tst_ledprogress::lyingBarZonesAndCuts()
{
    LedProgress bar;
    bar.resize(100, 20);
    bar.show();
    // Nothing lit: background and outline only.
    QCOMPARE(at(bar, 0, 10), Outline);
    QCOMPARE(at(bar, 50, 10), background());
    QCOMPARE(countOf(bar, GreenBody) + countOf(bar, GreenStripe), 0);

    // At the yellow threshold no yellow; one more is a one-percent tip.
    bar.setValue(70);
    QCOMPARE(countOf(bar, YellowBody), 0);
    QCOMPARE(at(bar, 69, 15), GreenBody);
    QCOMPARE(at(bar, 70, 15), background());
    QCOMPARE(at(bar, 65, 5), GreenStripe); // rows 2 to h / 2.5
    QCOMPARE(at(bar, 65, 8), GreenBody);
    QCOMPARE(at(bar, 61, 15), background()); // a cut every ten pixels from 1
    bar.setValue(71);
    QCOMPARE(at(bar, 70, 15), YellowBody);
    QCOMPARE(at(bar, 70, 5), YellowStripe);
    QCOMPARE(at(bar, 69, 15), GreenBody);

    // 20 pixels at 100: cuts at 1 and 11 only; red from 18, yellow from 14.
    LedProgress narrow;
    narrow.resize(20, 20);
    narrow.setValue(100);
    QCOMPARE(at(narrow, 1, 10), background());
    QCOMPARE(at(narrow, 11, 10), background());
    QCOMPARE(at(narrow, 5, 10), GreenBody);
    QCOMPARE(at(narrow, 13, 10), GreenBody);
    QCOMPARE(at(narrow, 14, 10), YellowBody);
    QCOMPARE(at(narrow, 17, 10), YellowBody);
    QCOMPARE(at(narrow, 18, 10), RedBody);

    // Pixels round half to even: 15 % of 30 is 4.5, so four columns.
    LedProgress even;
    even.resize(30, 20);
    even.setValue(15);
    QCOMPARE(at(even, 3, 10), GreenBody);
    QCOMPARE(at(even, 4, 10), background());

    // Red below yellow: yellow first, red painted over it from its own start.
    LedProgress crossed;
    crossed.resize(100, 20);
    crossed.setZoneYellow(80);
    crossed.setZoneRed(50);
    crossed.setValue(90);
    QCOMPARE(at(crossed, 45, 15), GreenBody);
    QCOMPARE(at(crossed, 55, 15), RedBody);
    QCOMPARE(at(crossed, 85, 15), RedBody);

    // A negative value lights nothing.
    crossed.setValue(-5);
    QCOMPARE(countOf(crossed, GreenBody) + countOf(crossed, RedBody), 0);
}

void tst_ledprogress::standingBarFillsFromTheBottom()
{
    LedProgress bar;
    bar.resize(12, 170);
    bar.setOrientation(1); // now 170 wide and 12 high: turn it back
    bar.setOrientation(1);
    QCOMPARE(bar.size(), QSize(12, 170));
    bar.setZoneYellow(60);
    bar.setValue(100);
    // Green up to 60 %, yellow to 90 %, red above; the stripe on the left.
    QCOMPARE(at(bar, 8, 100), GreenBody);
    QCOMPARE(at(bar, 3, 100), GreenStripe);
    QCOMPARE(at(bar, 8, 69), background()); // a cut
    QCOMPARE(at(bar, 8, 68), GreenBody);
    QCOMPARE(at(bar, 8, 67), YellowBody);
    QCOMPARE(at(bar, 8, 66), YellowBody);
    QCOMPARE(at(bar, 8, 16), RedBody);
    QCOMPARE(at(bar, 8, 17), YellowBody);
    QCOMPARE(at(bar, 8, 71), GreenBody);
    QCOMPARE(at(bar, 8, 159), background()); // the cut ten up from the first
    QCOMPARE(at(bar, 8, 149), background());
    QCOMPARE(at(bar, 8, 169), Outline); // drawn last, over the first cut

    bar.setValue(50);
    QCOMPARE(at(bar, 8, 84), background());
    QCOMPARE(at(bar, 8, 86), GreenBody);
    QCOMPARE(countOf(bar, YellowBody) + countOf(bar, RedBody), 0);
}

void tst_ledprogress::orientationTurnsTheControlEveryTime()
{
    LedProgress bar;
    bar.resize(100, 20);
    bar.setOrientation(0);
    QCOMPARE(bar.size(), QSize(20, 100));
    bar.setOrientation(0);
    QCOMPARE(bar.size(), QSize(100, 20));
    QVERIFY(!bar.hasRotatedFont());
    bar.setOrientation(2); // standing, but no turned font for it
    QVERIFY(!bar.hasRotatedFont());
    bar.setOrientation(1);
    QVERIFY(bar.hasRotatedFont());

    // Read back already standing: the font, and no turn.
    LedProgress stored;
    stored.resize(12, 170);
    PropertyBag bag;
    bag.set(QStringLiteral("Orientation"), 1);
    bag.set(QStringLiteral("Value"), 40);
    stored.ReadProperties(bag);
    QCOMPARE(stored.size(), QSize(12, 170));
    QVERIFY(stored.hasRotatedFont());
    QCOMPARE(stored.ZoneYellow(), basic::Integer(70));
    QCOMPARE(at(stored, 8, 150), GreenBody);
}

void tst_ledprogress::letsTellTheHostAndFailLikeTheRuntime()
{
    LedProgress bar;
    bar.resize(100, 20);
    QSignalSpy told(&bar, &LedProgress::PropertyChanged);
    bar.setValue(30);
    bar.setShowText(true);
    bar.setZoneRed(95);
    QCOMPARE(told.size(), 3);
    QCOMPARE(told[0][0].toString(), QString("Value"));
    QCOMPARE(told[2][0].toString(), QString("ZoneRed"));
    QVERIFY(countOf(bar, Qt::black) > 0); // "30 %"

    // The host rewrites the value at every tick: unchanged, nothing is drawn.
    const int drawn = bar.drawings();
    bar.setValue(30);
    QCOMPARE(bar.drawings(), drawn);
    bar.setValue(31);
    QCOMPARE(bar.drawings(), drawn + 1);

    // A zone difference past 16 bits is the runtime's overflow.
    bar.setZoneYellow(-2);
    try {
        bar.setValue(32767);
        QFAIL("no failure");
    } catch (const basic::RuntimeError &e) {
        QCOMPARE(e.number(), 6);
    }
}

QTEST_MAIN(tst_ledprogress)
#include "tst_ledprogress.moc"
