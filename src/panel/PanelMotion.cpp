// The three movements of a panel: the bouncing title, the fold of its lower
// part and the widening that shows the list area. The step sizes are the
// design, not the speed: every timer here is a nominal 1 ms one.

#include "panel/Panel.h"

#include "basic/Checked.h"
#include "basic/ErrorStyles.h"
#include "basic/NumberText.h"
#include "platform/Clock.h"
#include "platform/Twips.h"
#include "widgets/ClickLabel.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>

namespace {

constexpr double ScrollStep = 10;
constexpr double FoldStep = 20;

// The hidden box holds its number as text; reading it back is a conversion
// that fails on anything that is not a number.
double numberIn(const QLineEdit *box)
{
    bool ok = false;
    const double v = box->text().trimmed().toDouble(&ok);
    if (!ok)
        basic::raise(basic::TypeMismatch);
    return v;
}

} // namespace

void Panel::setfNameLeft(double tw)
{
    m_fNameLeft = tw;
    fName->move(twips::toPixels(tw), fName->y());
}

double Panel::fNameWidth() const
{
    return twips::fromPixels(fName->width());
}

void Panel::setTitle(const QString &text)
{
    // sts writes the title at every tick; the same text keeps the same size,
    // so only a new text costs a layout.
    if (text == fName->text() && !fName->text().isNull())
        return;
    fName->setText(text);
    fName->adjustSize(); // the label sizes itself to its text, an empty one too
}

void Panel::storeTurningPoint()
{
    wdth1->setText(basic::generalText(ScrollOrigin - fNameWidth()));
}

void Panel::setfileHeight(double tw)
{
    m_fileHeight = tw;
    file->setFixedHeight(twips::toPixels(tw));
    placeListButtons();
}

void Panel::scr1_Timer()
{
    if (numberIn(wdth1) <= m_fNameLeft) {
        scr1->setEnabled(false);
        scr2->setEnabled(true);
    } else {
        setfNameLeft(m_fNameLeft + ScrollStep);
    }
    if (isStation())
        setWindowTitle(StationName);
}

void Panel::scr2_Timer()
{
    // Exact on purpose: every position is 10320 or 1920 give or take whole
    // steps of 10. A title wider than 8400 twips turns at 1920 on every tick.
    if (m_fNameLeft == LeftTurn) {
        scr1->setEnabled(true);
        scr2->setEnabled(false);
    } else {
        setfNameLeft(m_fNameLeft - ScrollStep);
    }
    if (isStation())
        setWindowTitle(StationName);
}

void Panel::hei1_Timer()
{
    basic::ResumeNext next;
    next([&] {
        if (m_height <= FoldLimit)
            setfileHeight(FoldedListHeight);
    });
    next([&] {
        if (m_height <= FoldLimit)
            hei1->setEnabled(false);
    });
    // After the stop test, so the panel rests one step below the limit.
    next([&] { setHeight(m_height - FoldStep); });
    next([&] {
        Label6->show();
        Label7->hide();
    });
}

void Panel::hei2_Timer()
{
    basic::ResumeNext next;
    next([&] {
        if (m_height >= UnfoldLimit)
            setfileHeight(m_traits.unfoldedListHeight);
    });
    next([&] {
        if (m_height >= UnfoldLimit)
            hei2->setEnabled(false);
    });
    next([&] { setHeight(m_height + FoldStep); });
    next([&] {
        Label7->show();
        Label6->hide();
    });
}

void Panel::Label2_Click()
{
    // From the folded rest at 4780 this unfolds; from anywhere else it folds.
    // A second click while unfolding runs both timers, and their steps cancel.
    basic::ResumeNext next;
    next([&] {
        if (m_height >= FoldLimit)
            hei1->setEnabled(true);
    });
    next([&] {
        if (!hei1->Enabled())
            hei2->setEnabled(true);
    });
}

void Panel::Timer3_Timer()
{
    basic::ResumeNext next;
    // Holds only while hei2 passes through 8100: at rest the height is 8120.
    next([&] {
        if (m_height == UnfoldLimit)
            setfileHeight(m_traits.unfoldedListHeight);
    });
    next([&] {
        if (m_width >= m_traits.wideWidth) {
            Timer3->setEnabled(false);
        } else {
            setWidth(m_width + FoldStep);
            pls->show();
        }
    });
}

void Panel::Timer2_Timer()
{
    basic::ResumeNext next;
    next([&] {
        if (m_width <= NarrowLimit) {
            Timer2->setEnabled(false);
        } else {
            setWidth(m_width - FoldStep);
            pls->hide();
        }
    });
}

void Panel::Label1_Click()
{
    basic::ResumeNext next;
    next([&] {
        if (m_width >= m_traits.wideWidth)
            Timer2->setEnabled(true);
        else
            Timer3->setEnabled(true);
    });
}
