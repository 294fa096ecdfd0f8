// Mp3's list of a folder and its local playback: the list `file`, the
// buttons that move it, the start of a track, the transport, the time
// display and the seek. The tag editor is in PanelTagEditor.cpp.

#include "panel/Panel.h"

#include "basic/Checked.h"
#include "basic/NumberText.h"
#include "music/CommonDialog.h"
#include "music/FileList.h"
#include "platform/AnimationSurface.h"
#include "platform/AppInfo.h"
#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/Forms.h"
#include "platform/LocalEngine.h"
#include "platform/Twips.h"
#include "widgets/ClickLabel.h"
#include "widgets/Picture.h"
#include "widgets/zzSlider.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using basic::Integer;

namespace {

constexpr double Mp3WideWidth = 17010;

// The list buttons sit in one row just under the list area, and move with
// it as the panel folds: anywhere higher they would cover a row of stations
// (or Mp3's own list) once the panel unfolds. The row fits the narrowest
// widened panel.
constexpr int ListLeft = 13080;
constexpr int ListButtonHeight = 360;
constexpr int PictureButtonWidth = 480;
constexpr int ListButtonGap = 45;
constexpr int ClearListWidth = 1335;
// Mp3's list stops short of its widened edge, so its scroll bar shows.
constexpr int Mp3ListWidth = 3840;

QPushButton *listButton(QWidget *parent, const AppInfo &app, const char *name, const QString &caption,
                        const QString &tip, const char *picture)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    if (!tip.isEmpty())
        b->setToolTip(tip);
    const int width = picture ? PictureButtonWidth : ClearListWidth;
    b->resize(twips::toPixels(width), twips::toPixels(ListButtonHeight));
    if (picture) {
        const QSize inner = b->size() - QSize(6, 4);
        b->setIcon(QIcon(loadPicture(app.file(QStringLiteral("\\img\\panel\\") + QLatin1String(picture)), inner)));
        b->setIconSize(inner);
    }
    b->raise();
    return b;
}

// A position or a length as the time display takes it: whole seconds to the
// nearest by the "###" format, whose empty text for less than a half counts
// as 0, read back as a 16-bit number (above 32767 seconds that overflows).
Integer wholeSeconds(double seconds)
{
    const QString text = basic::formatNumber(seconds, u"###").trimmed();
    return text.isEmpty() ? Integer(0) : basic::CInt(text.toDouble());
}

QString minutesAndSeconds(Integer s)
{
    return basic::formatNumber(s / 60, u"0#") + QLatin1Char(':') + basic::formatNumber(s % 60, u"00");
}

} // namespace

void Panel::buildLocalMusic()
{
    // The four list buttons are drawn in every panel; only Mp3 gives them
    // work, bar flder, which Afm, Malfm and kanna keep as well.
    const AppInfo &app = platform().app;
    files = listButton(this, app, "files", QString(), QStringLiteral("Add Files"), "files.svg");
    flder = listButton(this, app, "flder", QString(), QStringLiteral("Add Folder"), "flder.svg");
    // Its caption starts empty and nothing sets it, so a click does nothing:
    // kept as it stands.
    Command3 = listButton(this, app, "Command3", QString(), QStringLiteral("Get From Cd"), "cd.svg");
    Command4 = listButton(this, app, "Command4", QStringLiteral("Clear List"), QStringLiteral("Clear list"), nullptr);
    placeListButtons();
    buildTagEditor();

    const QString name = objectName();
    if (name == QLatin1String("Afm") || name == QLatin1String("Malfm") || name == QLatin1String("kanna"))
        on(flder, &QPushButton::clicked, [this] { flder_Click(); });
    if (isStation())
        return;

    // Mp3's `file` is the list itself, in the place and with the height of
    // the frame drawn there.
    m_fileList = new FileList(this);
    m_fileList->setGeometry(file->geometry());
    m_fileList->setFixedSize(twips::toPixels(Mp3ListWidth), file->height());
    m_fileList->stackUnder(files);
    delete file;
    file = m_fileList;
    m_cmn = std::make_shared<CommonDialog>(this);

    clk = new QPushButton(QStringLiteral("Command6"), Frame3);
    clk->setObjectName(QStringLiteral("clk"));

    on(m_fileList, &FileList::Click, [this] { file_Click(); });
    on(clk, &QPushButton::clicked, [this] { clk_Click(); });
    on(files, &QPushButton::clicked, [this] { files_Click(); });
    on(flder, &QPushButton::clicked, [this] { flder_Click(); });
    on(Command3, &QPushButton::clicked, [this] { Command3_Click(); });
    on(Command4, &QPushButton::clicked, [this] { Command4_Click(); });
    // After the panel's own Label2 handler, connected earlier.
    on(Label2, &ClickLabel::Click, [this] { clk_Click(); });

    on(play, &ClickLabel::Click, [this] { localPlay_Click(); });
    on(pausel, &ClickLabel::Click, [this] { localPausel_Click(); });
    on(stop, &ClickLabel::Click, [this] { localStop_Click(); });
    on(next, &ClickLabel::Click, [this] { localNext_Click(); });
    on(previous, &ClickLabel::Click, [this] { localPrevious_Click(); });
    on(Timer1, &Timer::tick, [this] { Timer1_Timer(); });
    on(Slider1, &zzSlider::Change, [this] { localSlider1_Change(); });
    on(Slider1, &zzSlider::SliderScroll, [this] { Slider1_SliderScroll(); });
}

// ---- The list and its buttons ----

void Panel::placeListButtons()
{
    const int top = twips::toPixels(m_fileHeight + 15);
    int left = ListLeft;
    for (QPushButton *b : {files, flder, Command3, Command4}) {
        b->move(twips::toPixels(left), top);
        left += static_cast<int>(twips::fromPixels(b->width())) + ListButtonGap;
    }
}

void Panel::file_Click()
{
    m_pstate->Stop();
    if (m_fileList->ListIndex() < 0)
        return;
    LocalEngine &player = *m_localPlayer;
    player.Stop();
    // Joined without looking: at a root the path holds the separator twice.
    // ShowSelectedTag looks; this does not. Both kept as they stand.
    player.setFileName(m_fileList->Path() + QLatin1Char('/') + m_fileList->List(m_fileList->ListIndex()));
    player.Play();
    scr1->setEnabled(false);
    scr2->setEnabled(false);
    setfNameLeft(ScrollOrigin);
    clk_Click();
}

void Panel::clk_Click()
{
    ShowSelectedTag();
    // An engine not yet playing leaves the title as it was; no retry.
    if (m_localPlayer->PlayState() == 2) {
        const QString before = fName->text();
        setTitle(m_fileList->FileName());
        if (fName->text() != before)
            fName_Change();
        wdth1->setText(basic::generalText(fNameWidth()));
        storeTurningPoint();
        scr1->setEnabled(true);
    }
}

void Panel::ShowSelectedTag()
{
    QString path = m_fileList->Path();
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    SelectedPath = path + m_fileList->List(m_fileList->ListIndex());
    Command5_Click();
}

void Panel::fName_Change()
{
    setWindowTitle(QLatin1Char(' ') + fName->text());
    scr1->setEnabled(true);
}

QString Panel::FileTail(const QString &path)
{
    const int at = path.lastIndexOf(QLatin1Char('/'));
    return at < 0 ? QString() : path.mid(at);
}

void Panel::files_Click()
{
    CommonDialog &cmn = *m_cmn;
    cmn.setInitDir(QStringLiteral("C:\\My Documents"));
    cmn.setFilter(QStringLiteral("MP3 Files |*.mp3*"));
    cmn.setDialogTitle(QStringLiteral("Add Song"));
    cmn.ShowOpen(); // cancel keeps the last choice, which then starts again
    m_fileList->Refresh();
    if (cmn.FileName().isEmpty())
        return;
    // Both read and thrown away, as they always were.
    m_fileList->Refresh();
    (void)m_fileList->Path();
    (void)FileTail(cmn.FileName());
    // Loading starts it: Play is not called, and the title stays.
    m_localPlayer->setFileName(cmn.FileName());
    m_fileList->setFileName(cmn.FileName());
    m_fileList->Refresh();
}

void Panel::flder_Click()
{
    // Not modal: the panel goes on, and OK fills Mp3's list whoever opened it.
    platform().forms.Show(QStringLiteral("Form1"));
}

void Panel::Command4_Click()
{
    // The list is emptied by pointing it at the root; the track plays on.
    m_fileList->setFileName(QStringLiteral("c:\\"));
    m_fileList->Refresh();
}

void Panel::Command3_Click()
{
    const QString caption = Command3->text();
    if (caption == QLatin1String("CD")) {
        Command3->setProperty("Tag", m_fileList->Path());
        m_localPlayer->Stop();
        m_fileList->setFileName(QString());
        m_fileList->setPath(QStringLiteral("D:\\"));
        m_fileList->Refresh();
        Command3->setText(QStringLiteral("Normal"));
    } else if (caption == QLatin1String("Normal")) {
        m_localPlayer->Stop();
        m_localPlayer->setFileName(QString());
        m_fileList->setPath(Command3->property("Tag").toString());
        m_fileList->Refresh();
        Command3->setText(QStringLiteral("CD"));
    }
}

// ---- Transport ----

void Panel::localPlay_Click()
{
    LocalEngine &player = *m_localPlayer;
    switch (player.PlayState()) {
    case 0:
        player.Play();
        play->setEnabled(false);
        pause->setEnabled(true);
        break;
    case 1: player.Play(); break; // the labels stay as Pause left them
    case 3:
    case 6: platform().dialogs.MsgBox(QStringLiteral("Please Choose a song to play")); break;
    default: break;
    }
    if (Width() < Mp3WideWidth)
        Label1_Click(); // opens the list
}

void Panel::localPausel_Click()
{
    // A second click does not resume.
    if (m_localPlayer->PlayState() == 2) {
        m_localPlayer->Pause();
        play->setEnabled(true);
        pause->setEnabled(false);
    }
}

void Panel::localStop_Click()
{
    // The file is let go: Play then asks for a song until one is chosen.
    m_localPlayer->Stop();
    m_localPlayer->setFileName(QString());
    m_pstate->setFileName(m_pstate->FileName());
}

void Panel::localNext_Click()
{
    // No wrap; an empty list stops here too, as -1 is at or above -1.
    if (m_fileList->ListIndex() >= basic::sub<Integer>(m_fileList->ListCount(), 1))
        return;
    // The list runs the start of a track on the change as well.
    m_fileList->setListIndex(basic::add<Integer>(m_fileList->ListIndex(), 1));
    file_Click();
    m_localPlayer->Play();
}

void Panel::localPrevious_Click()
{
    // Plus 1 on purpose: this bound never holds. Kept as it stands.
    if (m_fileList->ListIndex() >= basic::add<Integer>(m_fileList->ListCount(), 1))
        return;
    if (m_fileList->ListIndex() == 0)
        return;
    // Paused or stopped, the songs are said to be missing, whatever the list holds.
    if (m_localPlayer->PlayState() != 2) {
        platform().dialogs.MsgBox(QStringLiteral("Please Add Songs in playlist"));
        return;
    }
    // From -1 this asks for -2, which the list refuses.
    m_fileList->setListIndex(basic::sub<Integer>(m_fileList->ListIndex(), 1));
    file_Click();
    m_localPlayer->Play();
}

// ---- Time display and seek ----

void Panel::Timer1_Timer()
{
    const LocalEngine &player = *m_localPlayer;
    Slider1->setValue(static_cast<float>(player.CurrentPosition()));
    Slider1->setMaxValue(static_cast<float>(player.Duration()));
    dur1->setText(basic::generalText(player.Duration()));
    if (!(player.Duration() > 0))
        return;
    const Integer p = wholeSeconds(player.CurrentPosition());
    if (p > 59)
        dur2->setText(minutesAndSeconds(p));
    else if (p >= 0)
        dur2->setText(QStringLiteral("00:") + basic::formatNumber(p, u"0#"));
    const Integer d = wholeSeconds(player.Duration());
    // A track of a minute or less leaves the length of the one before.
    if (d > 59)
        dur3->setText(QLatin1Char('/') + minutesAndSeconds(d));
}

void Panel::localSlider1_Change()
{
    // Keeps the play-state light running.
    if (m_localPlayer->PlayState() == 2)
        m_pstate->Play();
    if (m_localPlayer->PlayState() == 1)
        m_pstate->Pause();
}

void Panel::Slider1_SliderScroll()
{
    m_localPlayer->setCurrentPosition(static_cast<double>(basic::CSng(Slider1->Value())));
}
