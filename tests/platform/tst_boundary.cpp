// The shared pieces of src/platform: the error boundary, forms and their key
// preview, the animation surface.
#include "basic/Checked.h"
#include "doubles/ScriptedPlatform.h"
#include "platform/Form.h"
#include "platform/GuardedApplication.h"
#include "platform/MovieAnimation.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMovie>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// A form whose handlers the test connects; it notes what Load saw of itself and the keys it previewed.
struct TestForm : Form {
    TestForm(Platform &p, const QString &name, Forms *forms = nullptr) : Form(p, name), forms(forms) {}
    using Form::on;
    void Load() override { seenSelf = forms && forms->form(objectName()) == this; }
    bool keyPreview(QKeyEvent *e) override { keys << e->key(); return true; }
    Forms *forms;
    bool seenSelf = false;
    QList<int> keys;
};

} // namespace

class tst_boundary : public QObject {
    Q_OBJECT
private slots:
    void handlersStopAtTheFailingStatementAndEndTheProgram()
    {
        ScriptedPlatform sp;
        sp.dialogs.upForMs = 2000; // timers go on ticking under the box
        int endsWhileShown = -1;
        sp.dialogs.onShow = [&](const ShownBox &) { endsWhileShown = sp.process.ends; };
        TestForm form(sp.platform, u"F"_s);
        Timer failing(sp.clock, &form, u"Timer1"_s, 100, true), other(sp.clock, &form, u"Timer2"_s, 100, true);
        QList<int> seen{0, 0, 0}; // failing's ticks, other's ticks, failing's sum
        form.on(&failing, &Timer::tick, [&] {
            seen[2] = basic::add<basic::Integer>(basic::Integer(seen[2]), 16383); // out of 16 bits on the third
            ++seen[0];
        });
        form.on(&other, &Timer::tick, [&] { ++seen[1]; });
        sp.clock.advance(300);
        QCOMPARE(seen, (QList<int>{2, 2, 32766})); // nothing of the program runs after the failure
        QCOMPARE(sp.dialogs.shown.size(), 1);
        const ShownBox &box = sp.dialogs.shown[0]; // critical, and an empty title: the application's
        QCOMPARE((QStringList{box.prompt, QString::number(box.style), box.title}),
                 (QStringList{u"Run-time error '6':\n\nOverflow"_s, QString::number(MsgBox::Critical + MsgBox::OkOnly), QString()}));
        QCOMPARE((QList<int>{endsWhileShown, sp.process.ends}), (QList<int>{0, 1})); // the box, then the end

        // What got past every handler is caught by the application, the same way.
        ScriptedPlatform late;
        qobject_cast<GuardedApplication *>(qApp)->setBoundary(late.dialogs, late.process);
        QMetaObject::invokeMethod(qApp, [] { basic::raise(basic::SubscriptOutOfRange); }, Qt::QueuedConnection);
        QCoreApplication::processEvents();
        QCOMPARE(late.dialogs.shown.value(0).prompt, u"Run-time error '9':\n\nSubscript out of range"_s);
        QCOMPARE(late.process.ends, 1);
    }

    void formsAreMadeOnceAndPreviewTheirKeys()
    {
        ScriptedPlatform sp;
        int made = 0;
        sp.forms.define(u"A"_s, [&] { ++made; return std::make_unique<TestForm>(sp.platform, u"A"_s, &sp.forms); });
        QVERIFY(!sp.forms.isLoaded(u"A"_s));
        sp.forms.Hide(u"A"_s); // touching a form loads it
        auto *a = sp.forms.get<TestForm>(u"A"_s);
        QVERIFY(a->seenSelf); // reading itself while loading hands out the same half-loaded form
        sp.forms.Show(u"A"_s);
        sp.forms.Hide(u"A"_s);
        sp.forms.Show(u"A"_s);
        QVERIFY(made == 1 && a->isVisible() && sp.forms.form(u"A"_s) == a);

        // Its own window's keys come to the form first; another window's do not.
        auto *edit = new QLineEdit(a);
        TestForm other(sp.platform, u"B"_s);
        a->setKeyPreview(true);
        QTest::keyClick(edit, Qt::Key_X);
        QTest::keyClick(&other, Qt::Key_Y);
        QCOMPARE(a->keys, (QList<int>{Qt::Key_X, Qt::Key_X}));
    }

    void animationRunsHoldsStops()
    {
        QWidget parent;
        auto pstate = std::make_unique<MovieAnimation>(&parent);
        auto *label = qobject_cast<QLabel *>(pstate->widget());
        pstate->setFileName(qEnvironmentVariable("ZARVENT_SOURCE_DIR") + u"/img/play.gif"_s);
        QVERIFY(label && label->parentWidget() == &parent && label->movie());
        QList<int> states{pstate->PlayState()};
        pstate->Play();
        QTRY_VERIFY(label->movie()->currentFrameNumber() > 0); // it moves
        // Hold, hold again, play on, play while running, stop, hold while stopped.
        for (auto act : {&MovieAnimation::Pause, &MovieAnimation::Pause, &MovieAnimation::Play, &MovieAnimation::Play,
                         &MovieAnimation::Stop, &MovieAnimation::Pause}) {
            (pstate.get()->*act)();
            states << pstate->PlayState();
        }
        QCOMPARE(states, (QList<int>{0, 1, 1, 2, 2, 0, 0}));
        QCOMPARE(label->movie()->currentFrameNumber(), 0); // back at the first picture
        pstate->setFileName(u"/nonexistent/play.gif"_s); // the old picture goes, nothing shows
        pstate->Play();
        QVERIFY(!label->movie() && pstate->PlayState() == 0);
        pstate.reset(); // the surface takes its label along
        QVERIFY(parent.findChildren<QLabel *>().isEmpty());
    }
};

int main(int argc, char **argv)
{
    GuardedApplication app(argc, argv);
    tst_boundary test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_boundary.moc"
