#include "catalogue/Product.h"
#include "doubles/ScriptedPlatform.h"
#include "platform/Clock.h"
#include "shell/ShellForms.h"
#include "shell/Snow.h"
#include "shell/frmMain.h"
#include "widgets/ClickLabel.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include <deque>
#include <random>

namespace {

constexpr std::int32_t Black = 0, Red = 255, White = 0xFFFFFF;

struct About {
    ScriptedPlatform sp;
    frmMain *fm;
    std::deque<float> script; // Rnd answers; 0.5 (no wander) once they run out
    About()
    {
        defineForms(sp.platform);
        fm = sp.forms.get<frmMain>(QStringLiteral("frmMain"));
        fm->setRnd([this] {
            if (script.empty())
                return 0.5f;
            const float r = script.front();
            script.pop_front();
            return r;
        });
    }
    // A small surface with every flake but the first parked at (x, 0): they
    // fall as one, well away from the first.
    void small(int w, int h, int parkX)
    {
        fm->surface().setSize(w, h);
        for (Particle &p : Snow)
            p = Particle{static_cast<basic::Integer>(parkX), 0, 0, 0, 0};
    }
    std::int32_t at(int x, int y) { return fm->surface().Point(x, y); }
    int whiteIn(QRect r)
    {
        int n = 0;
        for (int y = r.top(); y <= r.bottom(); ++y)
            for (int x = r.left(); x <= r.right(); ++x)
                n += at(x, y) == White;
        return n;
    }
};

void mouse(QWidget *w, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held)
{
    QMouseEvent e(type, QPointF(at), w->mapToGlobal(QPointF(at)), button, held, Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}

} // namespace

class tst_about : public QObject {
    Q_OBJECT
private slots:
    void flakeStep_data();
    void flakeStep();
    void wanderChances();
    void framesOnASmallSurface();
    void titleAndLinesAreObstacles();
    void timerOnceAndCloseAfterOneFrame();
    void windowLabelsAndForum();
};

void tst_about::flakeStep_data()
{
    QTest::addColumn<QList<QPoint>>("obstacles");
    QTest::addColumn<QList<int>>("start"); // X, Y, Stuck
    QTest::addColumn<QList<float>>("rnd");
    QTest::addColumn<QList<int>>("end"); // X, Y, Stuck, OldX, OldY
    // A 5 x 5 surface.
    QTest::newRow("falls straight") << QList<QPoint>{} << QList<int>{2, 1, 0} << QList<float>{0.5f, 0.5f}
                                    << QList<int>{2, 2, 0, 2, 1};
    QTest::newRow("wanders right") << QList<QPoint>{} << QList<int>{2, 1, 0} << QList<float>{0.5f, 0.1f}
                                   << QList<int>{3, 2, 0, 2, 1};
    QTest::newRow("wanders left") << QList<QPoint>{} << QList<int>{2, 1, 0} << QList<float>{0.1f, 0.9f}
                                  << QList<int>{1, 2, 0, 2, 1};
    QTest::newRow("clamped at column 0") << QList<QPoint>{} << QList<int>{0, 1, 0} << QList<float>{0.1f, 0.9f}
                                         << QList<int>{0, 2, 0, 0, 1};
    QTest::newRow("clamped at the last column") << QList<QPoint>{} << QList<int>{4, 1, 0} << QList<float>{0.9f, 0.1f}
                                                << QList<int>{4, 2, 0, 4, 1};
    QTest::newRow("held up, counts") << QList<QPoint>{{2, 2}} << QList<int>{2, 1, 3} << QList<float>{0.5f, 0.5f}
                                     << QList<int>{2, 1, 4, 2, 1};
    // The target is what is read: a free pixel straight below doesn't help.
    QTest::newRow("target taken, below free") << QList<QPoint>{{3, 2}} << QList<int>{2, 1, 0}
                                              << QList<float>{0.5f, 0.1f} << QList<int>{2, 1, 1, 2, 1};
    // Target 1 is taken, 3 is free: the slide goes from X, to the right.
    QTest::newRow("slides from X, not the target") << QList<QPoint>{{1, 2}, {2, 2}} << QList<int>{2, 1, 10}
                                                   << QList<float>{0.1f, 0.9f} << QList<int>{3, 2, 0, 2, 1};
    QTest::newRow("slides left") << QList<QPoint>{{2, 2}, {3, 2}} << QList<int>{2, 1, 10} << QList<float>{0.5f, 0.5f}
                                 << QList<int>{1, 2, 0, 2, 1};
    // Left of column 0 lies outside: occupied. Restart at Int(0.7 * 5).
    QTest::newRow("column 0 comes to rest") << QList<QPoint>{{0, 2}, {1, 2}} << QList<int>{0, 1, 10}
                                            << QList<float>{0.1f, 0.9f, 0.7f} << QList<int>{3, 0, 0, 0, 0};
    QTest::newRow("bottom row, held") << QList<QPoint>{} << QList<int>{2, 4, 9} << QList<float>{0.5f, 0.5f}
                                      << QList<int>{2, 4, 10, 2, 4};
    // A flake below the surface (placed there) is held, then sent back up.
    QTest::newRow("below the surface") << QList<QPoint>{} << QList<int>{2, 5, 0} << QList<float>{0.5f, 0.5f, 0.9f}
                                       << QList<int>{4, 0, 0, 0, 0};
    QTest::newRow("bottom row, at rest") << QList<QPoint>{} << QList<int>{2, 4, 10} << QList<float>{0.5f, 0.5f, 0.1f}
                                         << QList<int>{0, 0, 0, 0, 0};
}

void tst_about::flakeStep()
{
    QFETCH(QList<QPoint>, obstacles);
    QFETCH(QList<int>, start);
    QFETCH(QList<float>, rnd);
    QFETCH(QList<int>, end);
    About a;
    a.small(5, 5, 0);
    for (QPoint o : obstacles)
        a.fm->surface().PSet(o.x(), o.y(), White);
    Snow[0] = Particle{static_cast<basic::Integer>(start[0]), static_cast<basic::Integer>(start[1]), 9, 9,
                       static_cast<basic::Integer>(start[2])};
    a.script.assign(rnd.begin(), rnd.end());
    a.fm->flakeStep(0);
    QVERIFY(a.script.empty());
    const Particle &p = Snow[0];
    QCOMPARE((QList<int>{p.X, p.Y, p.Stuck, p.OldX, p.OldY}), end);
}

void tst_about::wanderChances()
{
    About a;
    std::mt19937 generator(20260101);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    a.fm->setRnd([&] { return unit(generator); });
    a.small(101, 20, 0);
    int moves[3] = {0, 0, 0};
    const int trials = 8000;
    for (int n = 0; n < trials; ++n) {
        Snow[0] = Particle{50, 5, 0, 0, 0};
        a.fm->flakeStep(0);
        QVERIFY(Snow[0].X >= 49 && Snow[0].X <= 51);
        ++moves[Snow[0].X - 49];
    }
    // A quarter, a half, a quarter (a fair three-way pick would give thirds).
    QVERIFY2(qAbs(moves[0] - trials / 4) < trials / 25, qPrintable(QString::number(moves[0])));
    QVERIFY2(qAbs(moves[1] - trials / 2) < trials / 25, qPrintable(QString::number(moves[1])));
    QVERIFY2(qAbs(moves[2] - trials / 4) < trials / 25, qPrintable(QString::number(moves[2])));

    // The fields are 16-bit and checked.
    Snow[0] = Particle{32767, 5, 0, 0, 0};
    a.fm->setRnd([n = 0]() mutable { return ++n == 1 ? 0.9f : 0.1f; });
    QVERIFY_THROWS_EXCEPTION(basic::RuntimeError, a.fm->flakeStep(0));
}

void tst_about::framesOnASmallSurface()
{
    About a;
    a.small(40, 10, 39);
    // The corner, white before the first frame, is cleared by it: every
    // flake was last drawn at (0, 0).
    a.fm->surface().PSet(0, 0, White);
    Snow[0] = Particle{3, 9, 0, 0, 0};
    a.fm->frame();
    QCOMPARE(a.at(0, 0), Black);
    QCOMPARE(a.at(3, 9), White);

    // On the bottom row: nine more frames held, still there...
    for (int n = 0; n < 9; ++n)
        a.fm->frame();
    QCOMPARE(Snow[0].Y, basic::Integer(9));
    QCOMPARE(Snow[0].Stuck, basic::Integer(10));
    // ...then at rest, back at the top, Int(0.5 * 40).
    a.fm->frame();
    QCOMPARE(Snow[0].X, basic::Integer(20));
    QCOMPARE(Snow[0].Y, basic::Integer(0));
    a.fm->frame();
    a.fm->frame();
    // It left one white pixel where it rested, and the parked flakes stayed
    // in their column.
    QCOMPARE(a.at(3, 9), White);
    QCOMPARE(a.whiteIn(QRect(0, 0, 19, 10)), 1);
    QCOMPARE(a.whiteIn(QRect(20, 0, 1, 10)), 1); // the restarted flake, one row down
    QCOMPARE(Snow[0].Y, basic::Integer(2));
}

void tst_about::titleAndLinesAreObstacles()
{
    About a;
    DrawingSurface &s = a.fm->surface();
    QCOMPARE(s.ScaleWidth(), 764);
    QCOMPARE(s.ScaleHeight(), 414);
    QCOMPARE(s.ForeColor, std::uint32_t(White));

    // The printed title and version lines: red-ish pixels in two bands
    // around the middle, and nothing else on the surface yet.
    QList<int> rows;
    for (int y = 0; y < s.ScaleHeight(); ++y)
        for (int x = 0; x < s.ScaleWidth(); ++x)
            if (a.at(x, y) != Black) {
                rows << y;
                break;
            }
    QVERIFY(!rows.isEmpty());
    QVERIFY(rows.first() > 150 && rows.last() < 300);
    // The version line was printed twice: its edges are heavier than one print.
    DrawingSurface once;
    once.Font = s.Font;
    once.setSize(s.ScaleWidth(), s.ScaleHeight());
    once.ForeColor = Red;
    const QString version = QStringLiteral("VERSION 3.0");
    once.CurrentX = (once.ScaleWidth() - once.TextWidth(version)) / 2;
    once.CurrentY = once.ScaleHeight() / 2.0 + once.TextHeight(version) + 2;
    once.Print(version);
    int heavier = 0, differs = 0;
    for (int y = 0; y < s.ScaleHeight(); ++y)
        for (int x = 0; x < s.ScaleWidth(); ++x)
            if (once.Point(x, y) != Black) {
                heavier += (a.at(x, y) & 0xFF) > (once.Point(x, y) & 0xFF);
                differs += (a.at(x, y) & 0xFF) < (once.Point(x, y) & 0xFF);
            }
    QVERIFY(heavier > 0);
    QCOMPARE(differs, 0);

    // A flake right above a letter is held from the first frame on.
    QPoint top;
    for (int y = 1; y < s.ScaleHeight() && top.isNull(); ++y)
        for (int x = 0; x < s.ScaleWidth(); ++x)
            if (a.at(x, y) != Black && a.at(x, y - 1) == Black) {
                top = QPoint(x, y);
                break;
            }
    for (Particle &p : Snow)
        p = Particle{700, 0, 700, 0, 0};
    Snow[0] = Particle{static_cast<basic::Integer>(top.x()), static_cast<basic::Integer>(top.y() - 1), 0, 0, 0};
    a.fm->frame();
    QCOMPARE(Snow[0].Y, basic::Integer(top.y() - 1));
    QCOMPARE(Snow[0].Stuck, basic::Integer(1));

    // A line drawn with any button is red, three pixels wide, and catches
    // snow; the press itself sets one pixel in the snow's colour.
    a.small(40, 12, 39);
    a.fm->Show();
    mouse(a.fm, QEvent::MouseButtonPress, QPoint(5, 2), Qt::RightButton, Qt::RightButton);
    QCOMPARE(a.at(5, 2), White);
    QVERIFY(a.fm->Drawing);
    mouse(a.fm, QEvent::MouseMove, QPoint(10, 6), Qt::NoButton, Qt::RightButton);
    mouse(a.fm, QEvent::MouseMove, QPoint(30, 6), Qt::NoButton, Qt::RightButton);
    mouse(a.fm, QEvent::MouseButtonRelease, QPoint(30, 6), Qt::RightButton, Qt::NoButton);
    QVERIFY(!a.fm->Drawing);
    QCOMPARE(QPointF(a.fm->PenX, a.fm->PenY), QPointF(30, 6));
    for (int y : {5, 6, 7})
        QCOMPARE(a.at(20, y), Red);
    QCOMPARE(a.at(20, 4), Black);
    QCOMPARE(a.at(20, 8), Black);
    QCOMPARE(s.ForeColor, std::uint32_t(White));
    QCOMPARE(s.DrawWidth, 1);
    // Moves with no line tool draw nothing.
    const QImage drawn = s.image().copy();
    mouse(a.fm, QEvent::MouseMove, QPoint(20, 10), Qt::NoButton, Qt::NoButton);
    QCOMPARE(s.image(), drawn);

    Snow[0] = Particle{20, 0, 0, 0, 0};
    for (int n = 0; n < 8; ++n)
        a.fm->frame();
    QCOMPARE(Snow[0].Y, basic::Integer(4));
    QVERIFY(Snow[0].Stuck > 0);
}

void tst_about::timerOnceAndCloseAfterOneFrame()
{
    About a;
    QVERIFY(a.fm->Running);
    QCOMPARE(a.fm->Timer1->Interval(), 500);
    int yields = 0;
    a.fm->setBetweenFrames([&] {
        ++yields;
        a.fm->close();
    });
    a.fm->Show();
    a.sp.clock.advance(499);
    QCOMPARE(a.fm->frameCount(), 0);
    a.sp.clock.advance(1);
    // One frame, then the close request ended the loop.
    QCOMPARE(a.fm->frameCount(), 1);
    QCOMPARE(yields, 1);
    QVERIFY(!a.fm->Running);
    QVERIFY(!a.fm->isVisible());
    QVERIFY(!a.fm->Timer1->Enabled());
    a.sp.clock.advance(2000);
    QCOMPARE(a.fm->frameCount(), 1);

    // Shown again: loaded afresh. X and Y are placed again, the rest of the
    // table stays as the last frame left it, and so does Drawing.
    a.fm->Drawing = true;
    const Particle before = Snow[7];
    a.script.assign({0.25f, 0.75f});
    a.fm->Show();
    QVERIFY(a.fm->Running);
    QVERIFY(a.fm->Timer1->Enabled());
    QVERIFY(a.fm->Drawing);
    QCOMPARE(Snow[0].X, basic::Integer(764 / 4));
    QCOMPARE(Snow[0].Y, basic::Integer(414 * 3 / 4));
    QCOMPARE(Snow[7].OldX, before.OldX);
    QCOMPARE(Snow[7].OldY, before.OldY);
    QCOMPARE(Snow[7].Stuck, before.Stuck);

    // A frame loop that keeps running until told to.
    int frames = 0;
    a.fm->setBetweenFrames([&] {
        if (++frames == 3)
            a.fm->Running = false;
    });
    a.sp.clock.advance(500);
    QCOMPARE(a.fm->frameCount(), 4);
}

void tst_about::windowLabelsAndForum()
{
    About a;
    // Reading Tafm's icon loaded Tafm, hidden.
    QVERIFY(a.sp.forms.isLoaded(QStringLiteral("Tafm")));
    QWidget *tafm = a.sp.forms.form(QStringLiteral("Tafm"));
    QVERIFY(!tafm->isVisible());
    QCOMPARE(a.fm->windowIcon().cacheKey(), tafm->windowIcon().cacheKey());
    QCOMPARE(a.fm->windowTitle(), QStringLiteral("About"));
    QCOMPARE(a.fm->size(), QSize(764, 414));

    struct Expect {
        ClickLabel *label;
        QRect at;
        QString text;
        QColor colour;
    };
    const Expect all[] = {
        {a.fm->Label2, {80, 280, 553, 33}, "If You Have More Links Please Share At", QColor()},
        {a.fm->Label1, {0, 320, 753, 49}, QLatin1String(product::MaintainersMail), QColor(255, 0, 0)},
        {a.fm->Label3, {40, 360, 697, 41}, "OR Join Here " + QLatin1String(product::ForumName), QColor(0, 255, 0)},
    };
    for (const Expect &e : all) {
        QCOMPARE(e.label->geometry(), e.at);
        QCOMPARE(e.label->text(), e.text);
        if (e.colour.isValid())
            QCOMPARE(e.label->palette().color(QPalette::WindowText), e.colour);
        // A label takes its own clicks: no line starts under it.
        a.fm->Drawing = false;
        mouse(e.label, QEvent::MouseButtonPress, QPoint(3, 3), Qt::LeftButton, Qt::LeftButton);
        mouse(e.label, QEvent::MouseButtonRelease, QPoint(3, 3), Qt::LeftButton, Qt::NoButton);
        QVERIFY(!a.fm->Drawing);
    }
    QCOMPARE(a.sp.shell.executed.size(), 1); // the click on Label3
    const ScriptedShell::Call &forum = a.sp.shell.executed.first();
    QCOMPARE(forum.verb, QStringLiteral("open"));
    QCOMPARE(forum.file, QLatin1String(product::ForumPage));
    QVERIFY(QString::fromLatin1(product::ForumPage).contains(QLatin1String(".invalid")));
}

QTEST_MAIN(tst_about)
#include "tst_about.moc"
