// LedProgress drawn to its surface and read back pixel by pixel.
#include "basic/RuntimeError.h"
#include "platform/OleColor.h"
#include "widgets/LedProgress.h"

#include <QTest>

class tst_ledprogress : public QObject {
    Q_OBJECT
private slots:
    void zonesCutsAndRounding()
    {
        const QColor G(0, 255, 0), Gs(120, 255, 120), Y(255, 255, 0), Ys(255, 255, 130), R(255, 0, 0); // s: stripe
        const QColor Rs(255, 120, 120), Back = oleColor(0x80000009), Outline(190, 190, 190);
        struct Case { int w, h, orientation, yellow, red, value; QList<std::tuple<int, int, QColor>> probes; };
        const Case cases[] = {
            {100, 20, 0, 70, 90, 0, {{0, 10, Outline}, {99, 10, Outline}, {2, 10, Back}}},
            // At the yellow threshold no yellow; the stripe on rows 2 to h / 2.5, a cut every ten pixels from 1.
            {100, 20, 0, 70, 90, 70, {{69, 15, G}, {70, 15, Back}, {65, 2, Gs}, {65, 1, G}, {65, 8, G}, {61, 15, Back}}},
            {100, 20, 0, 70, 90, 71, {{70, 15, Y}, {70, 5, Ys}, {69, 15, G}}}, // one more: a one-percent tip
            {20, 20, 0, 70, 90, 100, {{1, 10, Back}, {11, 10, Back}, {13, 10, G}, {14, 10, Y}, {17, 10, Y}, {18, 10, R},
                                      {18, 5, Rs}}},
            // Red below yellow: yellow first, red painted over it from its own start.
            {100, 20, 0, 80, 50, 90, {{45, 15, G}, {55, 15, R}, {55, 2, Rs}, {85, 15, R}}},
            {100, 20, 0, 80, 50, -5, {{45, 15, Back}}}, {30, 20, 0, 70, 90, 15, {{3, 10, G}, {4, 10, Back}}}, // 4.5 px: even 4
            // Standing: from the bottom, the stripe on the left, the outline drawn last over the first cut.
            {12, 170, 1, 60, 90, 100, {{8, 100, G}, {2, 100, Gs}, {1, 100, G}, {8, 69, Back}, {8, 68, G}, {8, 67, Y}, {2, 67, Ys},
                                       {8, 17, Y}, {8, 16, R}, {2, 16, Rs}, {8, 159, Back}, {8, 149, Back}, {8, 169, Outline}}},
            {12, 170, 1, 70, 90, 50, {{8, 84, Back}, {8, 86, G}, {8, 20, Back}}},
            {12, 170, 2, 70, 90, 40, {{8, 150, G}, {8, 100, Back}}}, // any vertical value stands
        };
        for (const Case &c : cases) {
            LedProgress source, bar; // one writes, the other reads: defaults left out come back
            source.setZoneYellow(c.yellow), source.setZoneRed(c.red), source.setOrientation(c.orientation);
            PropertyBag bag;
            source.setValue(c.value), source.WriteProperties(bag);
            bar.resize(c.w, c.h), bar.ReadProperties(bag);
            // Stored already turned: no turn, and the font that orientation 1 needs.
            QCOMPARE(std::pair(bar.size(), bar.hasRotatedFont()), std::pair(QSize(c.w, c.h), c.orientation == 1));
            for (const auto &[x, y, colour] : c.probes)
                QCOMPARE(std::tuple(c.value, x, y, bar.surface().pixelColor(x, y)), std::tuple(c.value, x, y, colour));
        }
    }

    void letsTurnAndFail()
    {
        LedProgress bar;
        bar.resize(100, 20);
        bar.setValue(30);
        const QImage plain = bar.surface();
        bar.setShowText(true);
        QVERIFY(bar.surface() != plain); // "30 %"
        const int drawn = bar.drawings();
        for (basic::Integer value : {30, 31}) // the host rewrites the value at every tick: unchanged, nothing is drawn
            bar.setValue(value);
        QCOMPARE(bar.drawings(), drawn + 1);
        // Every write turns the control, the same value included; only 1 has a turned font.
        for (int orientation : {0, 0, 2})
            bar.setOrientation(orientation);
        QCOMPARE(std::pair(bar.size(), bar.hasRotatedFont()), std::pair(QSize(20, 100), false));
        bar.setOrientation(1);
        QCOMPARE(std::pair(bar.size(), bar.hasRotatedFont()), std::pair(QSize(100, 20), true));
        bar.setZoneYellow(-2); // a zone difference past 16 bits is the runtime's overflow
        QVERIFY_THROWS_EXCEPTION(basic::RuntimeError, bar.setValue(32767));
    }
};

QTEST_MAIN(tst_ledprogress)
#include "tst_ledprogress.moc"
