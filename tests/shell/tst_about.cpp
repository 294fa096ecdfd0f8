#include "ShellWorld.h"
#include "catalogue/Product.h"
#include "shell/Snow.h"
#include "shell/frmMain.h"
#include "widgets/ClickLabel.h"

namespace {

constexpr int Black = 0, Red = 255, White = 0xFFFFFF;
using I = QList<int>;

struct About : ShellWorld {
    frmMain *fm = sp.forms.get<frmMain>(QStringLiteral("frmMain"));
    QList<float> rnd; // Rnd's answers; 0.5 (no wander) once they run out
    About() { fm->setRnd([this] { return rnd.isEmpty() ? 0.5f : rnd.takeFirst(); }); }
    // A w x h surface with every flake but the first parked at (parkX, 0).
    void small(int w, int h, int parkX)
    {
        fm->surface().setSize(w, h);
        Snow.fill(Particle{basic::Integer(parkX), 0, 0, 0, 0});
    }
    int at(int x, int y) { return fm->surface().Point(x, y); }
    static I flake(int i) { return {Snow[i].X, Snow[i].Y, Snow[i].Stuck, Snow[i].OldX, Snow[i].OldY}; }
};

} // namespace

class tst_about : public QObject {
    Q_OBJECT
private slots:
    void flakeStep()
    {
        // From X, Y, Stuck to X, Y, Stuck, OldX, OldY on 5 x 5; two coins make -1, 0 or +1.
        const struct { const char *name; QList<QPoint> taken; I start; QList<float> rnd; I end; } rows[] = {
            {"falls straight", {}, {2, 1, 0}, {0.5f, 0.5f}, {2, 2, 0, 2, 1}},
            {"both coins", {}, {2, 1, 0}, {0.9f, 0.9f}, {2, 2, 0, 2, 1}},
            {"wanders right", {}, {2, 1, 0}, {0.5f, 0.1f}, {3, 2, 0, 2, 1}},
            {"wanders left", {}, {2, 1, 0}, {0.1f, 0.9f}, {1, 2, 0, 2, 1}},
            {"clamped at column 0", {}, {0, 1, 0}, {0.1f, 0.9f}, {0, 2, 0, 0, 1}},
            {"clamped at the last", {}, {4, 1, 0}, {0.9f, 0.1f}, {4, 2, 0, 4, 1}},
            // The target is what is read: a free pixel straight below doesn't help.
            {"target taken", {{3, 2}}, {2, 1, 0}, {0.5f, 0.1f}, {2, 1, 1, 2, 1}},
            // Held ten frames, it slides, from X rather than from the target.
            {"slides from X", {{1, 2}, {2, 2}}, {2, 1, 10}, {0.1f, 0.9f}, {3, 2, 0, 2, 1}},
            {"slides left", {{2, 2}, {3, 2}}, {2, 1, 10}, {0.5f, 0.5f}, {1, 2, 0, 2, 1}},
            // Outside the surface reads as taken; at rest, it restarts at Int(Rnd * 5).
            {"column 0 rests", {{0, 2}, {1, 2}}, {0, 1, 10}, {0.1f, 0.9f, 0.7f}, {3, 0, 0, 0, 0}},
            {"last column rests", {{4, 2}, {3, 2}}, {4, 1, 10}, {0.9f, 0.1f, 0.7f}, {3, 0, 0, 0, 0}},
            {"bottom row, held", {}, {2, 4, 9}, {0.5f, 0.5f}, {2, 4, 10, 2, 4}},
            {"below the surface", {}, {2, 5, 0}, {0.5f, 0.5f, 0.9f}, {4, 0, 0, 0, 0}},
        };
        About a;
        for (const auto &r : rows) {
            a.small(5, 5, 0);
            for (QPoint o : r.taken)
                a.fm->surface().PSet(o.x(), o.y(), White);
            Snow[0] = Particle{basic::Integer(r.start[0]), basic::Integer(r.start[1]), 9, 9, basic::Integer(r.start[2])};
            a.rnd = r.rnd;
            a.fm->flakeStep(0);
            QVERIFY2(About::flake(0) == r.end && a.rnd.isEmpty(), r.name);
        }
    }

    void framesLinesAndTheDrift()
    {
        About a;
        a.small(40, 12, 39);
        a.fm->Show(); // already loaded: the surface stays
        // A press sets a pixel in the snow's colour; a line of any button is red, three wide.
        mouse(a.fm, QEvent::MouseButtonPress, QPoint(5, 2), Qt::RightButton);
        QVERIFY(a.at(5, 2) == White && a.fm->Drawing);
        mouse(a.fm, QEvent::MouseMove, QPoint(10, 6), Qt::RightButton);
        mouse(a.fm, QEvent::MouseMove, QPoint(30, 6), Qt::RightButton);
        mouse(a.fm, QEvent::MouseButtonRelease, QPoint(30, 6), Qt::RightButton);
        mouse(a.fm, QEvent::MouseMove, QPoint(20, 10), Qt::NoButton); // no line tool now
        QCOMPARE((I{a.at(20, 4), a.at(20, 5), a.at(20, 6), a.at(20, 7), a.at(20, 8), a.at(20, 9)}),
                 (I{Black, Red, Red, Red, Black, Black}));
        QCOMPARE((I{int(a.fm->surface().ForeColor), a.fm->surface().DrawWidth, a.fm->Drawing}), (I{White, 1, 0}));
        // Every flake was last drawn at (0, 0): the first frame clears it. One flake lands on
        // the line; one rests on the bottom row, leaves its pixel and restarts at Int(0.5 * 40).
        a.fm->surface().PSet(0, 0, White);
        Snow[0] = Particle{20, 0, 0, 0, 0};
        Snow[1] = Particle{3, 11, 0, 0, 0};
        for (int n = 0; n < 11; ++n)
            a.fm->frame();
        QCOMPARE(About::flake(0) + About::flake(1), (I{20, 4, 7, 20, 4} + I{20, 0, 0, 0, 0}));
        QCOMPARE((I{a.at(0, 0), a.at(3, 11)}), (I{Black, White}));
    }

    void forumTimerCloseAndReload()
    {
        About a;
        QVERIFY(a.sp.forms.isLoaded(QStringLiteral("Tafm")) && !a.shown(QStringLiteral("Tafm"))); // its icon
        // Label3 takes its own click (no line starts under it) and opens the forum.
        QTest::mouseClick(a.fm->Label3, Qt::LeftButton, {}, QPoint(3, 3));
        QVERIFY(!a.fm->Drawing && a.sp.shell.executed.size() == 1);
        QCOMPARE(a.sp.shell.executed[0].verb + ' ' + a.sp.shell.executed[0].file, "open " + QLatin1String(product::ForumPage));
        a.fm->setBetweenFrames([&] { a.fm->close(); });
        a.fm->Show();
        a.sp.clock.advance(499);
        QCOMPARE(a.fm->frameCount(), 0);
        a.sp.clock.advance(1); // one frame, then the close ends the loop and takes the timer
        QCOMPARE((I{int(a.fm->frameCount()), a.fm->Running, a.fm->isVisible()}), (I{1, 0, 0}));
        // Loaded afresh: X and Y placed again, the rest of Snow and Drawing left as they were.
        a.fm->Drawing = true;
        const I before = About::flake(7);
        a.rnd = {0.25f, 0.75f};
        a.fm->Show();
        QVERIFY(a.fm->Running && a.fm->Timer1->Enabled() && a.fm->Drawing);
        QCOMPARE(About::flake(0).mid(0, 2) + About::flake(7).mid(2), (I{764 / 4, 414 * 3 / 4} + before.mid(2)));
    }
};

QTEST_MAIN(tst_about)
#include "tst_about.moc"
