// Mp3's list, transport, time display, tag editor and folder chooser, on
// scripted engines and a scripted clock, with real folders and files.
#include "TagFiles.h"
#include "doubles/ScriptedPlatform.h"
#include "music/CommonDialog.h"
#include "music/DrivePaths.h"
#include "music/FileList.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "music/Form1.h"
#include "music/cIDV3.h"
#include "panel/Panel.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"
#include "widgets/zzSlider.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

namespace {

struct World {
    ScriptedPlatform sp;
    QTemporaryDir dir;
    Panel *mp3 = nullptr;

    // A panel whose list shows three songs of a folder of its own.
    World()
    {
        defineForms(sp.platform);
        for (const char *name : {"b.mp3", "a.mp3", "C.MP3", "notes.txt"})
            tagfiles::write(dir.path(), QLatin1String(name), tagfiles::filler(600));
        QDir(dir.path()).mkdir(QStringLiteral("sub.mp3"));
        sp.forms.Show(QStringLiteral("Mp3"));
        mp3 = sp.forms.get<Panel>(QStringLiteral("Mp3"));
        list()->setPath(dir.path());
    }
    FileList *list() { return mp3->music()->fileList(); }
    ScriptedLocalEngine *engine() { return static_cast<ScriptedLocalEngine *>(mp3->Player()); }
    ScriptedAnimation *light() { return static_cast<ScriptedAnimation *>(mp3->pstate()); }
    QStringList prompts() const
    {
        QStringList all;
        for (const ShownBox &b : sp.dialogs.shown)
            all << b.prompt;
        return all;
    }
    QString song(const char *name) const { return dir.path() + QLatin1Char('/') + QLatin1String(name); }
};

} // namespace

class tst_mp3_panel : public QObject {
    Q_OBJECT
private slots:
    void listShowsAFolder();
    void drivePathsMapToRoles();
    void selectionStartsATrack();
    void playPauseStop();
    void nextAndPrevious();
    void timeDisplayAndSeek();
    void listButtons();
    void editorLoadsAndSaves();
    void editorIsInertInStationPanels();
    void folderChooser();
};

void tst_mp3_panel::listShowsAFolder()
{
    World w;
    FileList *l = w.list();
    QCOMPARE(l->toolTip(), QString("List Of Mp3"));
    QCOMPARE(l->Pattern(), QString("*.mp3"));
    QCOMPARE(l->Path(), QDir(w.dir.path()).absolutePath());
    // MP3 files only, any case, folders left out, in name order.
    QCOMPARE(l->ListCount(), basic::Integer(3));
    QCOMPARE(l->List(0), QString("a.mp3"));
    QCOMPARE(l->List(1), QString("b.mp3"));
    QCOMPARE(l->List(2), QString("C.MP3"));
    QCOMPARE(l->List(-1), QString());
    QCOMPARE(l->ListIndex(), basic::Integer(-1));
    QCOMPARE(l->FileName(), QString());

    QSignalSpy clicks(l, &FileList::Click);
    l->setListIndex(1);
    QCOMPARE(l->FileName(), QString("b.mp3"));
    QCOMPARE(clicks.size(), 1);
    QVERIFY_THROWS_EXCEPTION(basic::RuntimeError, l->setListIndex(3));
    QVERIFY_THROWS_EXCEPTION(basic::RuntimeError, l->setListIndex(-2));
    QCOMPARE(l->ListIndex(), basic::Integer(1));

    // Refresh sees a new file and keeps the selected one.
    tagfiles::write(w.dir.path(), QStringLiteral("0.mp3"), tagfiles::filler(600));
    l->Refresh();
    QCOMPARE(l->ListCount(), basic::Integer(4));
    QCOMPARE(l->FileName(), QString("b.mp3"));

    // A file's path moves the list to its folder; a folder not there raises 76.
    QTemporaryDir other;
    // Selecting runs the tag editor, and a file shorter than a tag block
    // leaves the tag routines' file slot taken for the process (cIDV3's own
    // rule): every song here is longer than that.
    tagfiles::write(other.path(), QStringLiteral("z.mp3"), tagfiles::filler(600));
    l->setFileName(other.path() + QStringLiteral("/z.mp3"));
    QCOMPARE(l->Path(), QDir(other.path()).absolutePath());
    QCOMPARE(l->ListIndex(), basic::Integer(-1));
    try {
        l->setFileName(other.path() + QStringLiteral("/gone"));
        QFAIL("no failure");
    } catch (const basic::RuntimeError &e) {
        QCOMPARE(e.number(), 76);
    }
    QCOMPARE(l->ListCount(), basic::Integer(1));

    // A folder that vanishes under the list reads as empty on Refresh.
    l->setListIndex(0);
    QVERIFY(other.remove());
    l->Refresh();
    QCOMPARE(l->ListCount(), basic::Integer(0));
    QCOMPARE(l->ListIndex(), basic::Integer(-1));
    QCOMPARE(l->FileName(), QString());

    // Ten thousand entries, all of them, in order.
    QTemporaryDir big;
    for (int i = 9999; i >= 0; --i) {
        QFile f(big.path() + QStringLiteral("/t%1.mp3").arg(i, 5, 10, QLatin1Char('0')));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
    l->setPath(big.path());
    QCOMPARE(l->ListCount(), basic::Integer(10000));
    QCOMPARE(l->List(0), QString("t00000.mp3"));
    QCOMPARE(l->List(9999), QString("t09999.mp3"));
}

void tst_mp3_panel::drivePathsMapToRoles()
{
    QCOMPARE(drives::localPath(QStringLiteral("c:\\")), QDir::rootPath());
    QCOMPARE(drives::localPath(QStringLiteral("C:\\My Documents")), drives::documents());
    QCOMPARE(drives::localPath(QStringLiteral("c:\\my documents\\a\\b.mp3")), drives::documents() + "/a/b.mp3");
    QCOMPARE(drives::localPath(QStringLiteral("D:\\")), drives::removable());
    // A path of this system keeps its backslashes: they belong to names here.
    QCOMPARE(drives::localPath(QStringLiteral("/tmp\\x")), QString("/tmp\\x"));
    QCOMPARE(MusicList::FileTail(QStringLiteral("/a/b/c.mp3")), QString("/c.mp3"));
    QCOMPARE(MusicList::FileTail(QStringLiteral("c.mp3")), QString());
    if (drives::removable().isEmpty()) {
        World w;
        try {
            w.list()->setPath(QStringLiteral("D:\\"));
            QFAIL("no failure");
        } catch (const basic::RuntimeError &e) {
            QCOMPARE(e.number(), 68);
        }
    }
}

void tst_mp3_panel::selectionStartsATrack()
{
    World w;
    ScriptedLocalEngine *e = w.engine();
    Panel *p = w.mp3;
    // With nothing selected clk still loads the editor, the folder alone.
    p->music()->clk_Click();
    QCOMPARE(p->music()->SelectedPath, w.list()->Path() + "/");
    QCOMPARE(p->tagEditor()->cboGenre->currentText(), QString("Blues"));

    w.light()->state = 2;
    p->setfNameLeft(5000);
    w.list()->setListIndex(1);
    QCOMPARE(e->calls, QStringList({"Stop", "FileName=" + w.song("b.mp3"), "Play"}));
    QCOMPARE(w.light()->state, 0);
    QCOMPARE(p->fName->text(), QString("b.mp3"));
    QCOMPARE(p->windowTitle(), QString(" b.mp3"));
    QCOMPARE(p->fNameLeft(), 10320.0);
    QVERIFY(p->scr1->Enabled());
    QVERIFY(!p->scr2->Enabled());
    QCOMPARE(p->wdth1->text().toDouble(), 10320 - p->fNameWidth());
    QCOMPARE(p->music()->SelectedPath, w.song("b.mp3"));
    QCOMPARE(p->tagEditor()->txtFilename->text(), w.song("b.mp3"));

    // An engine that has not reached playing leaves title and scroller alone.
    e->calls.clear();
    p->scr1->setEnabled(false);
    e->state = 3;
    p->music()->clk_Click();
    QCOMPARE(p->fName->text(), QString("b.mp3"));
    QVERIFY(!p->scr1->Enabled());

    // Focus and the keyboard start nothing: only a click does, on the
    // highlighted entry as well, so a stopped song starts again.
    FileList *l = w.list();
    l->setListIndex(-1);
    e->calls.clear();
    l->setFocus();
    QFocusEvent tabbedIn(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(l, &tabbedIn);
    QTest::keyClick(l, Qt::Key_Down);
    QTest::keyClick(l, Qt::Key_Down);
    QVERIFY(e->calls.isEmpty());
    QVERIFY(l->ListIndex() >= 0);
    QCOMPARE(int(l->ListIndex()), l->currentIndex().row());
    l->setListIndex(1);
    p->music()->localStop_Click();
    e->calls.clear();
    const QPoint row1 = l->visualRect(l->model()->index(1, 0)).center();
    for (int click = 0; click < 2; ++click)
        QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, row1);
    QCOMPARE(e->calls.count(QStringLiteral("Play")), 2);
    QCOMPARE(e->calls.value(1), "FileName=" + w.song("b.mp3"));
}

void tst_mp3_panel::playPauseStop()
{
    World w;
    ScriptedLocalEngine *e = w.engine();
    Panel *p = w.mp3;
    // Closed: the message, and the narrow panel opens its list.
    p->music()->localPlay_Click();
    QCOMPARE(w.prompts(), QStringList{"Please Choose a song to play"});
    QCOMPARE(w.sp.dialogs.shown.at(0).title, QString());
    QVERIFY(p->Timer3->Enabled());
    e->state = 3;
    p->music()->localPlay_Click();
    QCOMPARE(w.prompts().size(), 2);

    w.list()->setListIndex(0);
    e->calls.clear();
    // Playing: nothing.
    p->music()->localPlay_Click();
    QVERIFY(e->calls.isEmpty());
    QCOMPARE(w.prompts().size(), 2);
    // Pause, and a second Pause does not resume.
    p->music()->localPausel_Click();
    QCOMPARE(e->state, 1);
    QVERIFY(p->play->isEnabled());
    QVERIFY(!p->pause->isEnabled());
    p->music()->localPausel_Click();
    QCOMPARE(e->calls, QStringList{"Pause"});
    // Play from paused leaves the labels as Pause left them.
    p->music()->localPlay_Click();
    QCOMPARE(e->state, 2);
    QVERIFY(p->play->isEnabled());
    QVERIFY(!p->pause->isEnabled());
    // Play from stopped.
    e->state = 0;
    p->music()->localPlay_Click();
    QCOMPARE(e->state, 2);
    QVERIFY(!p->play->isEnabled());
    QVERIFY(p->pause->isEnabled());

    // Stop lets the file go and reloads the light; the rest stays.
    p->dur2->setText(QStringLiteral("00:07"));
    const QString lightFile = w.light()->file;
    w.light()->state = 2;
    e->calls.clear();
    p->music()->localStop_Click();
    QCOMPARE(e->calls, QStringList({"Stop", "FileName="}));
    QCOMPARE(e->state, 6);
    QCOMPARE(w.light()->file, lightFile);
    QCOMPARE(w.light()->state, 0);
    QCOMPARE(p->dur2->text(), QString("00:07"));
    QVERIFY(!p->play->isEnabled());
    QCOMPARE(w.list()->ListIndex(), basic::Integer(0));
    p->music()->localPlay_Click();
    QCOMPARE(w.prompts().last(), QString("Please Choose a song to play"));
}

void tst_mp3_panel::nextAndPrevious()
{
    World w;
    ScriptedLocalEngine *e = w.engine();
    Panel *p = w.mp3;
    // Nothing selected: Next picks entry 0, the start running twice and
    // then Play, as the list's own change runs it too.
    p->music()->localNext_Click();
    QCOMPARE(w.list()->ListIndex(), basic::Integer(0));
    const QStringList start{"Stop", "FileName=" + w.song("a.mp3"), "Play"};
    QCOMPARE(e->calls, start + start + QStringList{"Play"});
    p->music()->localNext_Click();
    p->music()->localNext_Click();
    QCOMPARE(e->file, w.song("C.MP3"));
    // At the end: nothing, and the track plays on.
    e->calls.clear();
    p->music()->localNext_Click();
    QVERIFY(e->calls.isEmpty());
    QCOMPARE(w.list()->ListIndex(), basic::Integer(2));

    // Previous only while playing.
    e->state = 1;
    p->music()->localPrevious_Click();
    QCOMPARE(w.prompts(), QStringList{"Please Add Songs in playlist"});
    e->state = 0;
    p->music()->localPrevious_Click();
    QCOMPARE(w.prompts().size(), 2);
    QCOMPARE(w.list()->ListIndex(), basic::Integer(2));
    e->state = 2;
    p->music()->localPrevious_Click();
    QCOMPARE(w.list()->ListIndex(), basic::Integer(1));
    QCOMPARE(e->file, w.song("b.mp3"));
    p->music()->localPrevious_Click();
    e->calls.clear();
    p->music()->localPrevious_Click(); // entry 0: no wrap
    QVERIFY(e->calls.isEmpty());
    QCOMPARE(w.list()->ListIndex(), basic::Integer(0));

    // An empty list: Next does nothing.
    QTemporaryDir empty;
    w.list()->setPath(empty.path());
    p->music()->localNext_Click();
    QVERIFY(e->calls.isEmpty());
    // Previous from -1 during play asks the list for -2: uncaught, the end.
    e->state = 2;
    emit p->previous->Click();
    QCOMPARE(w.sp.process.ends, 1);
    QVERIFY(w.prompts().last().startsWith("Run-time error '380'"));
}

void tst_mp3_panel::timeDisplayAndSeek()
{
    World w;
    ScriptedLocalEngine *e = w.engine();
    Panel *p = w.mp3;
    auto tick = [&](double position, double duration) {
        e->position = position;
        e->duration = duration;
        w.sp.clock.advance(25);
    };
    tick(3, 0); // length unknown: only the slider and dur1
    QCOMPARE(p->dur2->text(), QString());
    QCOMPARE(p->dur1->text(), QString("0"));
    tick(0.4, 192);
    QCOMPARE(p->dur2->text() + p->dur3->text(), QString("00:00/03:12"));
    QCOMPARE(p->dur1->text(), QString("192"));
    QCOMPARE(p->Slider1->MaxValue(), 192.0f);
    tick(5, 192);
    QCOMPARE(p->dur2->text(), QString("00:05"));
    tick(59.6, 192);
    QCOMPARE(p->dur2->text(), QString("01:00"));
    tick(65, 192);
    QCOMPARE(p->dur2->text() + p->dur3->text(), QString("01:05/03:12"));
    QCOMPARE(p->Slider1->Value(), 65.0f);
    tick(10, 45); // under a minute: dur3 keeps the track before
    QCOMPARE(p->dur3->text(), QString("/03:12"));
    tick(7200, 7200);
    QCOMPARE(p->dur2->text() + p->dur3->text(), QString("120:00/120:00"));

    // The slider drives the light and seeks when dragged.
    e->state = 2;
    tick(20, 192);
    QCOMPARE(w.light()->state, 2);
    e->state = 1;
    tick(20, 192);
    QCOMPARE(w.light()->state, 1);
    p->Slider1->setValue(42.0f);
    emit p->Slider1->SliderScroll();
    QCOMPARE(e->calls.last(), QString("CurrentPosition=42"));

    // Past 32767 seconds the number overflows, uncaught.
    tick(40000, 50000);
    QCOMPARE(w.sp.process.ends, 1);
    QVERIFY(w.prompts().last().startsWith("Run-time error '6'"));
}

void tst_mp3_panel::listButtons()
{
    World w;
    ScriptedLocalEngine *e = w.engine();
    Panel *p = w.mp3;
    // Command3 starts with an empty caption: a click changes nothing.
    const QString before = w.list()->Path();
    p->music()->Command3->click();
    QCOMPARE(p->music()->Command3->text(), QString());
    QCOMPARE(w.list()->Path(), before);
    QVERIFY(e->calls.isEmpty());
    // Had it read "Normal", it would go back to its folder, player closed.
    p->music()->Command3->setText(QStringLiteral("Normal"));
    p->music()->Command3->setProperty("Tag", before);
    w.list()->setPath(QDir::tempPath());
    p->music()->Command3->click();
    QCOMPARE(w.list()->Path(), before);
    QCOMPARE(p->music()->Command3->text(), QString("CD"));
    QCOMPARE(e->calls, QStringList({"Stop", "FileName="}));

    // Clear List points at the root; the track plays on.
    w.list()->setListIndex(0);
    e->calls.clear();
    p->music()->Command4->click();
    QCOMPARE(w.list()->Path(), QDir::rootPath());
    QVERIFY(e->calls.isEmpty());
    QCOMPARE(e->state, 2);

    // Add Files: the list moves to the file's folder, the engine loads it
    // without Play, and cancel later brings the same file back.
    QStringList asked;
    p->music()->CMN()->chooser = [&](const CommonDialog &d) {
        asked << d.InitDir() + "|" + d.Filter() + "|" + d.DialogTitle();
        return asked.size() == 1 ? w.song("a.mp3") : QString();
    };
    p->music()->files->click();
    QCOMPARE(asked.first(), QString("C:\\My Documents|MP3 Files |*.mp3*|Add Song"));
    QCOMPARE(w.list()->Path(), QDir(w.dir.path()).absolutePath());
    QCOMPARE(e->calls.last(), "FileName=" + w.song("a.mp3"));
    QVERIFY(!e->calls.contains("Play"));
    e->calls.clear();
    p->music()->files->click();
    QCOMPARE(e->calls, QStringList{"FileName=" + w.song("a.mp3")});
    QCOMPARE(CommonDialog::qtFilter("MP3 Files |*.mp3*"), QString("MP3 Files (*.mp3*)"));
}

void tst_mp3_panel::editorLoadsAndSaves()
{
    World w;
    ScriptedLocalEngine *e = w.engine();
    Panel *p = w.mp3;
    QByteArray audio = tagfiles::filler(900);
    audio.replace(0, 4, QByteArray::fromHex("fffb9000")); // one frame header, so the analysis runs through
    const QString tagged = tagfiles::write(
        w.dir.path(), "tagged.mp3", audio + tagfiles::block("TAG", "Song", "Singer", "Disc", "1999", "Words", 17));
    const QString bare = w.song("a.mp3");
    e->setFileName(tagged);
    p->tagEditor()->Command5_Click();
    QCOMPARE(p->tagEditor()->txtTitle->text(), QString("Song"));
    QCOMPARE(p->tagEditor()->txtArtist->text(), QString("Singer"));
    QCOMPARE(p->tagEditor()->txtAlbum->text(), QString("Disc"));
    QCOMPARE(p->tagEditor()->txtYear->text(), QString("1999"));
    QCOMPARE(p->tagEditor()->txtComment->text(), QString("Words"));
    QCOMPARE(p->tagEditor()->cboGenre->currentIndex(), 17);
    const QString taggedInfo = p->tagEditor()->lblInfo->text();
    QCOMPARE(taggedInfo, p->tagEditor()->mTag()->InfoString());

    // A file without a tag keeps the old texts, shows Blues and its own info.
    e->setFileName(bare);
    p->tagEditor()->Command5_Click();
    QCOMPARE(p->tagEditor()->txtTitle->text(), QString("Song"));
    QCOMPARE(p->tagEditor()->cboGenre->currentText(), QString("Blues"));
    QCOMPARE(p->tagEditor()->lblInfo->text(), p->tagEditor()->mTag()->InfoString());
    QCOMPARE(p->tagEditor()->txtFilename->text(), bare);

    // Refused when stopped or closed, with only the hidden word.
    e->state = 0;
    p->tagEditor()->cmdsave->Click();
    QCOMPARE(p->tagEditor()->Command5->text(), QString("stoped"));
    e->state = 6;
    p->tagEditor()->cmdsave->Click();
    QCOMPARE(p->tagEditor()->Command5->text(), QString("Clsoed"));
    QVERIFY(w.sp.dialogs.shown.isEmpty());
    QVERIFY(!tagfiles::read(bare).contains("Song"));

    // Paused: the stale texts go into the bare file, genre from the list.
    e->state = 1;
    p->tagEditor()->txtYear->setText(QStringLiteral("20245"));
    QCOMPARE(p->tagEditor()->txtYear->text(), QString("2024"));
    p->tagEditor()->cboGenre->setCurrentIndex(3);
    p->tagEditor()->cmdsave->Click();
    QCOMPARE(w.prompts(), QStringList{"Tag Saved Success Fully"});
    cIDV3 back;
    back.setfilename(bare);
    QVERIFY(back.HasTag());
    QCOMPARE(back.Title(), QString("Song"));
    QCOMPARE(back.Year(), QString("2024"));
    QCOMPARE(back.Genre(), basic::Long(3));

    // Clear removes it; a Save after writes the boxes back.
    p->tagEditor()->cmdremove->Click();
    back.setfilename(bare);
    QVERIFY(!back.HasTag());
    p->tagEditor()->cmdsave->Click();
    back.setfilename(bare);
    QCOMPARE(back.Artist(), QString("Singer"));

    // The file deleted: still announced.
    QFile::remove(bare);
    p->tagEditor()->cmdsave->Click();
    QCOMPARE(w.prompts().size(), 3);
    QCOMPARE(w.prompts().last(), QString("Tag Saved Success Fully"));

    // Cancel All keeps what was typed.
    p->tagEditor()->txtTitle->setText(QStringLiteral("typed"));
    p->tagEditor()->cmdcancel->Click();
    QCOMPARE(w.prompts().last(), QString("Tag Not Saved"));
    QCOMPARE(p->tagEditor()->txtTitle->text(), QString("typed"));
    QCOMPARE(p->tagEditor()->txtTitle->maxLength(), 30);
}

void tst_mp3_panel::editorIsInertInStationPanels()
{
    World w;
    for (const char *name : {"Tafm", "Afm", "Malfm", "kanna"}) {
        Panel *p = w.sp.forms.get<Panel>(QLatin1String(name));
        QVERIFY(!p->tagEditor()->cmdsave->isEnabled());
        QVERIFY(!p->tagEditor()->cmdremove->isEnabled());
        QVERIFY(!p->tagEditor()->cmdcancel->isEnabled());
        QCOMPARE(p->tagEditor()->Frame2->title(), QString("File Info"));
        QCOMPARE(p->tagEditor()->cboGenre->count(), 0);
        QCOMPARE(p->music()->fileList(), nullptr);
    }
    QVERIFY(w.mp3->tagEditor()->cmdsave->isEnabled());
}

void tst_mp3_panel::folderChooser()
{
    World w;
    // Tafm has no flder handler; Afm has, and shows the one Form1.
    w.sp.forms.get<Panel>("Tafm")->music()->flder->click();
    QVERIFY(!w.sp.forms.isLoaded("Form1"));
    w.sp.forms.get<Panel>("Afm")->music()->flder->click();
    auto *f = w.sp.forms.get<Form1>("Form1");
    QVERIFY(f->isVisible());
    QCOMPARE(f->windowTitle(), QString("Choose Directory"));
    QCOMPARE(f->Dir1Path(), QDir::currentPath());

    // A volume not there: the message, the drive kept, the folder not.
    f->Drive1->addItem(QStringLiteral("nodisc"), QStringLiteral("/nonexistent-volume-zarvent"));
    f->Drive1->setCurrentIndex(f->Drive1->count() - 1);
    f->Drive1_Change();
    QCOMPARE(w.sp.dialogs.shown.size(), 1);
    QCOMPARE(w.sp.dialogs.shown[0].prompt, QString("Device Not Ready!"));
    QCOMPARE(w.sp.dialogs.shown[0].title, QString("Oops"));
    QCOMPARE(w.sp.dialogs.shown[0].style, 16);
    QCOMPARE(f->Drive1->currentText(), QString("nodisc"));
    QCOMPARE(f->Dir1Path(), QDir::currentPath());

    // Cancel: hidden, and shown again as it was left.
    f->setDir1Path(QDir::tempPath());
    f->cmdcancel->click();
    QVERIFY(!f->isVisible());
    QCOMPARE(f->txtFinal->text(), QString("CANCEL"));
    QCOMPARE(w.list()->Path(), QDir(w.dir.path()).absolutePath());
    w.mp3->music()->flder->click();
    QCOMPARE(f->Dir1Path(), QDir::tempPath());

    // Choosing the drive already shown leaves the folder; the keyboard moves
    // the result as a click does.
    emit f->Drive1->activated(f->Drive1->currentIndex());
    QCOMPARE(f->Dir1Path(), QDir::tempPath());
    QTemporaryDir chosen;
    QVERIFY(QDir(chosen.path()).mkpath(QStringLiteral("a\\b")));
    f->setDir1Path(chosen.path() + QStringLiteral("/a\\b"));
    f->Dir1->setFocus();
    QTest::keyClick(f->Dir1, Qt::Key_Left); // up to the folder above
    QCOMPARE(f->Dir1Path(), chosen.path());
    f->setDir1Path(chosen.path() + QStringLiteral("/a\\b"));

    // OK moves Mp3's list, backslash and all, and leaves the player; the
    // song there starts under its own name. The next opening is fresh.
    tagfiles::write(chosen.path() + QStringLiteral("/a\\b"), QStringLiteral("x\\y.mp3"), tagfiles::filler(600));
    w.engine()->calls.clear();
    f->cmdOk->click();
    QCOMPARE(w.list()->Path(), QDir(chosen.path()).absolutePath() + QStringLiteral("/a\\b"));
    QVERIFY(w.engine()->calls.isEmpty());
    QVERIFY(!f->isVisible());
    QCOMPARE(f->Dir1Path(), QDir::currentPath());
    w.list()->setListIndex(0);
    QCOMPARE(w.engine()->calls.value(1), "FileName=" + w.list()->Path() + QStringLiteral("/x\\y.mp3"));
}

QTEST_MAIN(tst_mp3_panel)
#include "tst_mp3_panel.moc"
