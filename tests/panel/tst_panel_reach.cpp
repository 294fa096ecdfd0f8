// Every control a user can see on a panel takes a click at the centre of
// its visible part, in all four shapes of every panel: nothing is hidden
// under something else, and nothing of the list area lies past the window.
#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "platform/Twips.h"
#include "shell/ShellForms.h"

#include <QTest>

namespace {

// Covered on purpose: the skin under everything, the marks under Label2,
// the hover and pressed pictures under the transparent transport spots, and
// s27 of Malfm and kanna, which lies wholly under s9, and Tafm's fm under
// ma, which does the same on the same spot.
bool coveredByDesign(const Panel *p, const QWidget *w)
{
    static const QStringList underneath{"Main", "pls",  "Label6", "Label7", "pre",    "prep", "stp",
                                        "stpp", "ply",  "plyp",   "pause",  "pausep", "nxt",  "nxtp"};
    const QString name = w->objectName();
    if (underneath.contains(name) || (name == QLatin1String("fm") && p->ma))
        return true;
    return name == QLatin1String("s27") && (p->objectName() == QLatin1String("Malfm") || p->objectName() == QLatin1String("kanna"));
}

// The part of w that shows: cut by each parent up to the panel.
QRect visiblePart(const Panel *p, const QWidget *w)
{
    QRect r(w->mapTo(p, QPoint(0, 0)), w->size());
    for (const QWidget *up = w->parentWidget(); up && up != p; up = up->parentWidget())
        r &= QRect(up->mapTo(p, QPoint(0, 0)), up->size());
    return r & p->rect();
}

bool within(const QWidget *ancestor, const QWidget *w)
{
    for (; w; w = w->parentWidget())
        if (w == ancestor)
            return true;
    return false;
}

// The named controls a click at the centre of their visible part misses,
// each with what took the click instead.
QStringList unreachable(Panel *p)
{
    QStringList missed;
    const auto all = p->findChildren<QWidget *>();
    for (QWidget *w : all) {
        if (w->objectName().isEmpty() || !w->isVisibleTo(p) || coveredByDesign(p, w))
            continue;
        const QRect part = visiblePart(p, w);
        if (part.isEmpty())
            continue;
        QWidget *hit = p->childAt(part.center());
        if (!within(w, hit) && !(w->testAttribute(Qt::WA_TransparentForMouseEvents)))
            missed << QStringLiteral("%1 under %2").arg(w->objectName(), hit ? hit->objectName() : QStringLiteral("nothing"));
    }
    return missed;
}

void settle(ScriptedPlatform &sp) { sp.clock.advance(16 * 400); }

} // namespace

class tst_panel_reach : public QObject {
    Q_OBJECT
private slots:
    void everyVisibleControlTakesItsClick();
};

void tst_panel_reach::everyVisibleControlTakesItsClick()
{
    ScriptedPlatform sp;
    defineForms(sp.platform);
    for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"}) {
        sp.forms.Show(QLatin1String(name));
        auto *p = sp.forms.get<Panel>(QLatin1String(name));
        settle(sp);
        const QString folded = QStringLiteral("%1 folded narrow: ").arg(QLatin1String(name));
        QVERIFY2(unreachable(p).isEmpty(), qPrintable(folded + unreachable(p).join(u", ")));

        p->Label1_Click();
        settle(sp);
        QVERIFY(p->Width() >= p->traits().wideWidth);
        const QString wide = QStringLiteral("%1 folded wide: ").arg(QLatin1String(name));
        QVERIFY2(unreachable(p).isEmpty(), qPrintable(wide + unreachable(p).join(u", ")));

        p->Label2_Click();
        settle(sp);
        QVERIFY(p->Height() > Panel::UnfoldLimit);
        const QString open = QStringLiteral("%1 unfolded wide: ").arg(QLatin1String(name));
        QVERIFY2(unreachable(p).isEmpty(), qPrintable(open + unreachable(p).join(u", ")));

        // The list buttons lie inside the widened panel, and so does Mp3's
        // list, scroll bar and all (a station grid may run past the edge).
        QStringList outside;
        for (const char *part : {"files", "flder", "Command3", "Command4", "file"}) {
            auto *w = p->findChild<QWidget *>(QLatin1String(part), Qt::FindDirectChildrenOnly);
            if (w && (!p->isStation() || w != p->file) && w->isVisibleTo(p)
                && !p->rect().contains(QRect(w->mapTo(p, QPoint(0, 0)), w->size())))
                outside << QLatin1String(part);
        }
        QVERIFY2(outside.isEmpty(), qPrintable(open + outside.join(u", ") + " outside"));

        p->Label1_Click();
        settle(sp);
        const QString narrow = QStringLiteral("%1 unfolded narrow: ").arg(QLatin1String(name));
        QVERIFY2(unreachable(p).isEmpty(), qPrintable(narrow + unreachable(p).join(u", ")));
        sp.forms.Hide(QLatin1String(name));
    }
}

QTEST_MAIN(tst_panel_reach)
#include "tst_panel_reach.moc"
