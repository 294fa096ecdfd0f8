#include "music/MusicList.h"

#include "basic/Checked.h"
#include "basic/NumberText.h"
#include "music/CommonDialog.h"
#include "music/FileList.h"
#include "music/MusicHost.h"
#include "platform/AnimationSurface.h"
#include "platform/AppInfo.h"
#include "platform/Dialogs.h"
#include "platform/ErrorBoundary.h"
#include "platform/Forms.h"
#include "platform/LocalEngine.h"
#include "platform/Platform.h"
#include "platform/Twips.h"
#include "widgets/Picture.h"
#include "widgets/zzSlider.h"

#include <QFrame>
#include <QIcon>
#include <QLabel>
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

MusicList::MusicList(Platform &platform, QWidget *panel, MusicHost &host)
    : QObject(panel)
    , m_platform(platform)
    , m_host(host)
{
    const AppInfo &app = platform.app;
    files = listButton(panel, app, "files", QString(), QStringLiteral("Add Files"), "files.svg");
    flder = listButton(panel, app, "flder", QString(), QStringLiteral("Add Folder"), "flder.svg");
    // Its caption starts empty and nothing sets it, so a click does nothing:
    // kept as it stands.
    Command3 = listButton(panel, app, "Command3", QString(), QStringLiteral("Get From Cd"), "cd.svg");
    Command4 = listButton(panel, app, "Command4", QStringLiteral("Clear List"), QStringLiteral("Clear list"), nullptr);
}

MusicList::~MusicList() = default;

template <class Sender, class Signal, class Handler>
void MusicList::on(Sender *sender, Signal signal, Handler handler)
{
    connect(sender, signal, this, [this, handler] { boundary::run(m_platform.dialogs, m_platform.process, handler); });
}

void MusicList::keepFolderButton()
{
    on(flder, &QPushButton::clicked, [this] { flder_Click(); });
}

FileList *MusicList::makeList(QFrame *file, QWidget *invisibles, const PlaybackDisplay &display)
{
    m_display = display;
    m_fileList = new FileList(file->parentWidget());
    m_fileList->setGeometry(file->geometry());
    m_fileList->setFixedSize(twips::toPixels(Mp3ListWidth), file->height());
    m_fileList->stackUnder(files);
    delete file;
    m_cmn = std::make_shared<CommonDialog>(m_fileList->parentWidget());

    clk = new QPushButton(QStringLiteral("Command6"), invisibles);
    clk->setObjectName(QStringLiteral("clk"));

    on(m_fileList, &FileList::Click, [this] { file_Click(); });
    on(clk, &QPushButton::clicked, [this] { clk_Click(); });
    on(files, &QPushButton::clicked, [this] { files_Click(); });
    keepFolderButton();
    on(Command3, &QPushButton::clicked, [this] { Command3_Click(); });
    on(Command4, &QPushButton::clicked, [this] { Command4_Click(); });
    return m_fileList;
}

// ---- The list and its buttons ----

void MusicList::placeButtons(double listHeight)
{
    const int top = twips::toPixels(listHeight + 15);
    int left = ListLeft;
    for (QPushButton *b : {files, flder, Command3, Command4}) {
        b->move(twips::toPixels(left), top);
        left += static_cast<int>(twips::fromPixels(b->width())) + ListButtonGap;
    }
}

void MusicList::file_Click()
{
    m_host.playLight().Stop();
    if (m_fileList->ListIndex() < 0)
        return;
    LocalEngine &player = m_host.localEngine();
    player.Stop();
    // Joined without looking: at a root the path holds the separator twice.
    // ShowSelectedTag looks; this does not. Both kept as they stand.
    player.setFileName(m_fileList->Path() + QLatin1Char('/') + m_fileList->List(m_fileList->ListIndex()));
    player.Play();
    m_host.resetTitle();
    clk_Click();
}

void MusicList::clk_Click()
{
    ShowSelectedTag();
    // An engine not yet playing leaves the title as it was; no retry.
    if (m_host.localEngine().PlayState() == 2)
        m_host.showTitle(m_fileList->FileName());
}

void MusicList::ShowSelectedTag()
{
    QString path = m_fileList->Path();
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    SelectedPath = path + m_fileList->List(m_fileList->ListIndex());
    m_host.showTag();
}

QString MusicList::FileTail(const QString &path)
{
    const int at = path.lastIndexOf(QLatin1Char('/'));
    return at < 0 ? QString() : path.mid(at);
}

void MusicList::files_Click()
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
    m_host.localEngine().setFileName(cmn.FileName());
    m_fileList->setFileName(cmn.FileName());
    m_fileList->Refresh();
}

void MusicList::flder_Click()
{
    // Not modal: the panel goes on, and OK fills Mp3's list whoever opened it.
    m_platform.forms.Show(QStringLiteral("Form1"));
}

void MusicList::Command4_Click()
{
    // The list is emptied by pointing it at the root; the track plays on.
    m_fileList->setFileName(QStringLiteral("c:\\"));
    m_fileList->Refresh();
}

void MusicList::Command3_Click()
{
    const QString caption = Command3->text();
    LocalEngine &player = m_host.localEngine();
    if (caption == QLatin1String("CD")) {
        Command3->setProperty("Tag", m_fileList->Path());
        player.Stop();
        m_fileList->setFileName(QString());
        m_fileList->setPath(QStringLiteral("D:\\"));
        m_fileList->Refresh();
        Command3->setText(QStringLiteral("Normal"));
    } else if (caption == QLatin1String("Normal")) {
        player.Stop();
        player.setFileName(QString());
        m_fileList->setPath(Command3->property("Tag").toString());
        m_fileList->Refresh();
        Command3->setText(QStringLiteral("CD"));
    }
}

// ---- Transport ----

void MusicList::localPlay_Click()
{
    LocalEngine &player = m_host.localEngine();
    switch (player.PlayState()) {
    case 0:
        player.Play();
        m_display.play->setEnabled(false);
        m_display.pause->setEnabled(true);
        break;
    case 1: player.Play(); break; // the labels stay as Pause left them
    case 3:
    case 6: m_platform.dialogs.MsgBox(QStringLiteral("Please Choose a song to play")); break;
    default: break;
    }
    if (m_host.panelWidth() < Mp3WideWidth)
        m_host.openList();
}

void MusicList::localPausel_Click()
{
    // A second click does not resume.
    LocalEngine &player = m_host.localEngine();
    if (player.PlayState() == 2) {
        player.Pause();
        m_display.play->setEnabled(true);
        m_display.pause->setEnabled(false);
    }
}

void MusicList::localStop_Click()
{
    // The file is let go: Play then asks for a song until one is chosen.
    LocalEngine &player = m_host.localEngine();
    player.Stop();
    player.setFileName(QString());
    AnimationSurface &light = m_host.playLight();
    light.setFileName(light.FileName());
}

void MusicList::localNext_Click()
{
    // No wrap; an empty list stops here too, as -1 is at or above -1.
    if (m_fileList->ListIndex() >= basic::sub<Integer>(m_fileList->ListCount(), 1))
        return;
    // The list runs the start of a track on the change as well.
    m_fileList->setListIndex(basic::add<Integer>(m_fileList->ListIndex(), 1));
    file_Click();
    m_host.localEngine().Play();
}

void MusicList::localPrevious_Click()
{
    // Plus 1 on purpose: this bound never holds. Kept as it stands.
    if (m_fileList->ListIndex() >= basic::add<Integer>(m_fileList->ListCount(), 1))
        return;
    if (m_fileList->ListIndex() == 0)
        return;
    // Paused or stopped, the songs are said to be missing, whatever the list holds.
    if (m_host.localEngine().PlayState() != 2) {
        m_platform.dialogs.MsgBox(QStringLiteral("Please Add Songs in playlist"));
        return;
    }
    // From -1 this asks for -2, which the list refuses.
    m_fileList->setListIndex(basic::sub<Integer>(m_fileList->ListIndex(), 1));
    file_Click();
    m_host.localEngine().Play();
}

// ---- Time display and seek ----

void MusicList::Timer1_Timer()
{
    const LocalEngine &player = m_host.localEngine();
    m_display.Slider1->setValue(static_cast<float>(player.CurrentPosition()));
    m_display.Slider1->setMaxValue(static_cast<float>(player.Duration()));
    m_display.dur1->setText(basic::generalText(player.Duration()));
    if (!(player.Duration() > 0))
        return;
    const Integer p = wholeSeconds(player.CurrentPosition());
    if (p > 59)
        m_display.dur2->setText(minutesAndSeconds(p));
    else if (p >= 0)
        m_display.dur2->setText(QStringLiteral("00:") + basic::formatNumber(p, u"0#"));
    const Integer d = wholeSeconds(player.Duration());
    // A track of a minute or less leaves the length of the one before.
    if (d > 59)
        m_display.dur3->setText(QLatin1Char('/') + minutesAndSeconds(d));
}

void MusicList::localSlider1_Change()
{
    // Keeps the play-state light running.
    const int state = m_host.localEngine().PlayState();
    if (state == 2)
        m_host.playLight().Play();
    if (state == 1)
        m_host.playLight().Pause();
}

void MusicList::Slider1_SliderScroll()
{
    m_host.localEngine().setCurrentPosition(static_cast<double>(basic::CSng(m_display.Slider1->Value())));
}
