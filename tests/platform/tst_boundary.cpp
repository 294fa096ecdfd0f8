#include "basic/Checked.h"
#include "doubles/ScriptedPlatform.h"
#include "platform/Form.h"
#include "platform/GuardedApplication.h"

#include <QTest>

namespace {

// A form whose timer handler overflows a 16-bit counter on its third tick
// (with steps of 1, never).
class CountingForm : public Form {
public:
    explicit CountingForm(Platform &p, basic::Integer step = 16383)
        : Form(p, QStringLiteral("CountingForm"))
        , timer(p.clock, this, QStringLiteral("Timer1"), 100, true)
    {
        on(&timer, &Timer::tick, [this, step] {
            count = basic::add<basic::Integer>(count, step);
            ++ticks;
        });
    }
    Timer timer;
    basic::Integer count = 0;
    int ticks = 0;
};

// An object whose event handler raises with no guard of its own.
class Raiser : public QObject {
public:
    bool event(QEvent *e) override
    {
        if (e->type() == QEvent::User)
            basic::raise(basic::SubscriptOutOfRange);
        return QObject::event(e);
    }
};

} // namespace

class tst_boundary : public QObject {
    Q_OBJECT
private slots:
    void uncaughtErrorShowsMessageThenEnds();
    void formHandlersStopAtTheFailingStatement();
    void applicationCatchesWhatHandlersMissed();
    void formsAreMadeOnceAndLoadedOnFirstUse();
};

void tst_boundary::uncaughtErrorShowsMessageThenEnds()
{
    ScriptedPlatform sp;
    QStringList order;
    sp.dialogs.onShow = [&](const ShownBox &) { order << QStringLiteral("box"); };
    boundary::run(sp.dialogs, sp.process, [] { basic::raise(basic::DeviceUnavailable); });
    QCOMPARE(sp.dialogs.shown.size(), 1);
    QCOMPARE(sp.dialogs.shown[0].prompt, QStringLiteral("Run-time error '68':\n\nDevice unavailable"));
    QCOMPARE(sp.dialogs.shown[0].style & 0x70, int(MsgBox::Critical));
    QVERIFY(sp.dialogs.shown[0].title.isEmpty()); // the application title
    QCOMPARE(order, QStringList{QStringLiteral("box")});
    QCOMPARE(sp.process.ends, 1); // after the box, not before

    boundary::run(sp.dialogs, sp.process, [] {});
    QCOMPARE(sp.dialogs.shown.size(), 1);
    QCOMPARE(sp.process.ends, 1);
}

void tst_boundary::formHandlersStopAtTheFailingStatement()
{
    ScriptedPlatform sp;
    CountingForm form(sp.platform);
    sp.clock.advance(200);
    QCOMPARE(form.ticks, 2);
    QCOMPARE(sp.process.ends, 0);
    sp.clock.advance(100); // 3 * 16383 leaves the 16-bit range
    QCOMPARE(form.ticks, 2);
    QCOMPARE(form.count, basic::Integer(32766));
    QCOMPARE(sp.dialogs.shown.size(), 1);
    QCOMPARE(sp.dialogs.shown[0].prompt, QStringLiteral("Run-time error '6':\n\nOverflow"));
    QCOMPARE(sp.process.ends, 1);

    // While the box is up, timers go on ticking, but nothing of the program
    // runs: no second failure stacks a second box.
    ScriptedPlatform held;
    held.dialogs.upForMs = 2000;
    CountingForm failing(held.platform);
    CountingForm other(held.platform, 1);
    held.clock.advance(300);
    QCOMPARE(held.dialogs.shown.size(), 1);
    QCOMPARE(failing.ticks, 2);
    QCOMPARE(other.ticks, 2);
    QCOMPARE(held.process.ends, 1);
}

void tst_boundary::applicationCatchesWhatHandlersMissed()
{
    auto *app = qobject_cast<GuardedApplication *>(QCoreApplication::instance());
    QVERIFY(app);
    ScriptedPlatform sp;
    app->setBoundary(sp.dialogs, sp.process);
    Raiser raiser;
    QCoreApplication::postEvent(&raiser, new QEvent(QEvent::User));
    QCoreApplication::processEvents();
    QCOMPARE(sp.dialogs.shown.size(), 1);
    QCOMPARE(sp.dialogs.shown[0].prompt, QStringLiteral("Run-time error '9':\n\nSubscript out of range"));
    QCOMPARE(sp.process.ends, 1);
}

void tst_boundary::formsAreMadeOnceAndLoadedOnFirstUse()
{
    struct Loading : Form {
        Loading(Platform &p, int &loads, Forms &forms) : Form(p, QStringLiteral("A")), loads(loads), forms(forms) {}
        void Load() override
        {
            ++loads;
            // Reading itself while loading hands out the same half-loaded form.
            seenSelf = forms.form(QStringLiteral("A")) == this;
        }
        int &loads;
        Forms &forms;
        bool seenSelf = false;
    };
    ScriptedPlatform sp;
    int made = 0, loads = 0;
    sp.forms.define(QStringLiteral("A"), [&] {
        ++made;
        return std::make_unique<Loading>(sp.platform, loads, sp.forms);
    });
    QVERIFY(!sp.forms.isLoaded(QStringLiteral("A")));
    sp.forms.Hide(QStringLiteral("A")); // touching a form loads it
    QVERIFY(sp.forms.isLoaded(QStringLiteral("A")));
    auto *a = sp.forms.get<Loading>(QStringLiteral("A"));
    QVERIFY(a->seenSelf);
    sp.forms.Show(QStringLiteral("A"));
    QVERIFY(a->isVisible());
    sp.forms.Hide(QStringLiteral("A"));
    sp.forms.Show(QStringLiteral("A"));
    QCOMPARE(made, 1);
    QCOMPARE(loads, 1);
    QCOMPARE(sp.forms.form(QStringLiteral("A")), a);
}

int main(int argc, char **argv)
{
    GuardedApplication app(argc, argv);
    tst_boundary test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_boundary.moc"
