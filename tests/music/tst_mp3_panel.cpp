// Mp3's panel parts on scripted engines and clock, with real folders and files.
#include "TagFiles.h"
#include "doubles/ScriptedPlatform.h"
#include "music/ComboList.h"
#include "music/CommonDialog.h"
#include "music/DrivePaths.h"
#include "music/FileList.h"
#include "music/Form1.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "panel/Panel.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"
#include "widgets/zzSlider.h"

#include <QtTest>
#include <QtWidgets>

using tagfiles::errorOf;

namespace {

// Songs longer than a tag block: a shorter one takes cIDV3's slot 1 for good.
struct World {
    ScriptedPlatform sp;
    QTemporaryDir dir;
    Panel *mp3 = nullptr;
    MusicList *music = nullptr;
    FileList *list = nullptr;
    ScriptedLocalEngine *engine = nullptr;

    World()
    {
        defineForms(sp.platform);
        for (const char *name : {"b.mp3", "a.mp3", "C.MP3", "notes.txt"})
            tagfiles::write(dir.path(), name, tagfiles::filler(600));
        QDir(dir.path()).mkdir("sub.mp3");
        sp.forms.Show("Mp3");
        mp3 = sp.forms.get<Panel>("Mp3");
        music = mp3->music();
        list = music->fileList();
        engine = static_cast<ScriptedLocalEngine *>(mp3->Player());
        list->setPath(dir.path());
    }
    QStringList names() const { return static_cast<QStringListModel *>(list->model())->stringList(); }
    ScriptedAnimation *light() const { return static_cast<ScriptedAnimation *>(mp3->pstate()); }
    // Engine calls|engine state|list index|Play, Pause enabled|light state|boxes shown.
    QString step(const std::function<void()> &action)
    {
        engine->calls.clear();
        const qsizetype shown = sp.dialogs.shown.size();
        action();
        QStringList boxes;
        for (const ShownBox &b : sp.dialogs.shown.mid(shown))
            boxes << b.prompt;
        return QString("%1|%2|%3|%4%5|%6|").arg(engine->calls.join(',').replace(dir.path() + '/', QString())).arg(engine->state)
                   .arg(list->ListIndex()).arg(mp3->play->isEnabled()).arg(mp3->pause->isEnabled()).arg(light()->state)
            + boxes.join(',');
    }
};

} // namespace

class tst_mp3_panel : public QObject {
    Q_OBJECT
private slots:
    void listAndItsButtons()
    {
        World w;
        FileList *l = w.list;
        QCOMPARE(l->Path() + '|' + w.names().join(','), QDir(w.dir.path()).absolutePath() + "|a.mp3,b.mp3,C.MP3");
        QCOMPARE(l->List(-1) + l->List(3) + l->FileName(), QString());
        QSignalSpy clicks(l, &FileList::Click);
        l->setListIndex(1);
        l->setListIndex(1); // no change, no click
        QCOMPARE(l->FileName() + QString::number(clicks.size()), QString("b.mp31"));
        QCOMPARE(errorOf([&] { l->setListIndex(3); }) + errorOf([&] { l->setListIndex(-2); }), 2 * 380);
        tagfiles::write(w.dir.path(), "0.mp3", tagfiles::filler(600));
        l->Refresh();
        QCOMPARE(QString::number(w.names().size()) + l->FileName(), QString("4b.mp3"));
        QTemporaryDir other;
        l->setFileName(tagfiles::write(other.path(), "z.mp3", tagfiles::filler(600)));
        QCOMPARE(l->Path() + QString::number(l->ListIndex()), QDir(other.path()).absolutePath() + "-1");
        QCOMPARE(errorOf([&] { l->setFileName(other.path() + "/gone"); }), 76);

        // Command3's caption starts empty and nothing sets it: kept as it stands.
        QPushButton *cd = w.music->Command3;
        QCOMPARE(w.step([cd] { cd->click(); }), QString("|2|-1|11|0|"));
        cd->setText("Normal");
        cd->setProperty("Tag", w.dir.path());
        QCOMPARE(w.step([cd] { cd->click(); }), QString("Stop,FileName=|6|-1|11|0|"));
        QCOMPARE(cd->text() + w.list->Path(), "CD" + w.dir.path());
        w.list->setListIndex(0);
        QCOMPARE(w.step([&] { w.music->Command4->click(); }), QString("|2|-1|11|0|"));
        QCOMPARE(l->Path(), QDir::rootPath());
        // Add Files loads without Play; a cancel brings the last file back.
        QStringList asked;
        w.music->CMN()->chooser = [&](const CommonDialog &d) {
            asked << d.InitDir() + "|" + d.Filter() + "|" + d.DialogTitle();
            return asked.size() == 1 ? w.dir.filePath("a.mp3") : QString();
        };
        for (int i = 0; i < 2; ++i)
            QCOMPARE(w.step([&] { w.music->files->click(); }), QString("FileName=a.mp3|2|-1|11|0|"));
        QCOMPARE(l->Path(), w.dir.path());
        QCOMPARE(asked, QStringList(2, "C:\\My Documents|MP3 Files |*.mp3*|Add Song"));
        QCOMPARE(CommonDialog::qtFilter("MP3 Files |*.mp3*|All|*|odd"), QString("MP3 Files (*.mp3*);;All (*)"));
        // This system's own paths keep their backslashes: they belong to names.
        QStringList mapped;
        for (const char *path : {"c:\\", "C:\\My Documents", "c:\\my documents\\a\\b.mp3", "D:\\", "/tmp\\x"})
            mapped << drives::localPath(path);
        const QString docs = drives::documents();
        QCOMPARE(mapped, QStringList({QDir::rootPath(), docs, docs + "/a/b.mp3", drives::removable(), "/tmp\\x"}));
        QCOMPARE(MusicList::FileTail("/a/b/c.mp3") + MusicList::FileTail("c.mp3"), QString("/c.mp3"));
        if (drives::removable().isEmpty())
            QCOMPARE(errorOf([&] { w.list->setPath("D:\\"); }), 68);

        // Tafm has no flder handler; Afm has.
        w.sp.forms.get<Panel>("Tafm")->music()->flder->click();
        QVERIFY(!w.sp.forms.isLoaded("Form1"));
        w.sp.forms.get<Panel>("Afm")->music()->flder->click();
        auto *f = w.sp.forms.get<Form1>("Form1");
        QCOMPARE(QString::number(f->isVisible()) + f->Dir1Path(), "1" + QDir::currentPath());
        f->Drive1->addItem("nodisc", "/nonexistent-volume-zarvent");
        f->Drive1->setCurrentIndex(f->Drive1->count() - 1);
        f->Drive1_Change();
        const ShownBox &box = w.sp.dialogs.shown.value(0);
        QCOMPARE(QString("%1|%2|%3").arg(box.prompt, box.title).arg(box.style), QString("Device Not Ready!|Oops|16"));
        QCOMPARE(f->Drive1->currentText() + '|' + f->Dir1Path(), "nodisc|" + QDir::currentPath());
        f->setDir1Path(QDir::tempPath());
        f->cmdcancel->click();
        QCOMPARE(QString::number(f->isVisible()) + f->txtFinal->text() + w.list->Path(), "0CANCEL" + w.dir.path());
        w.music->flder->click();
        emit f->Drive1->activated(f->Drive1->currentIndex());
        QCOMPARE(f->Dir1Path(), QDir::tempPath());
        QTemporaryDir chosen;
        const QString odd = chosen.path() + "/a\\b";
        QVERIFY(QDir().mkpath(odd));
        f->setDir1Path(odd);
        f->Dir1->setFocus();
        QTest::keyClick(f->Dir1, Qt::Key_Left); // up to the folder above
        QCOMPARE(f->Dir1Path(), chosen.path());
        f->setDir1Path(odd);
        tagfiles::write(odd, "x\\y.mp3", tagfiles::filler(600));
        QCOMPARE(w.step([f] { f->cmdOk->click(); }), QString("|2|-1|11|0|"));
        QCOMPARE(QString::number(f->isVisible()) + w.list->Path() + '|' + f->Dir1Path(), "0" + odd + '|' + QDir::currentPath());
        QCOMPARE(w.step([&] { w.list->setListIndex(0); }).section(',', 1, 1), "FileName=" + odd + "/x\\y.mp3");
        // Previous from -1 while playing asks the list for -2, uncaught: the end.
        QCOMPARE(w.step([&] { l->setListIndex(-1); emit w.mp3->previous->Click(); }).section('|', 1, 2), QString("2|-1"));
        QVERIFY(w.sp.process.ends == 1 && w.sp.dialogs.shown.last().prompt.startsWith("Run-time error '380'"));
    }

    void selectionTransportAndTime()
    {
        World w;
        Panel *p = w.mp3;
        MusicList *m = w.music;
        FileList *l = w.list;
        m->clk_Click();
        QCOMPARE(m->SelectedPath + p->tagEditor()->cboGenre->currentText(), l->Path() + "/Blues");
        w.light()->state = 2;
        p->setfNameLeft(5000);
        QCOMPARE(w.step([l] { l->setListIndex(1); }), QString("Stop,FileName=b.mp3,Play|2|1|11|0|"));
        QCOMPARE(QString("%1|%2|%3|%4").arg(p->fName->text(), p->windowTitle()).arg(p->fNameLeft()).arg(p->scr1->Enabled()),
                 QString("b.mp3| b.mp3|10320|1"));
        QCOMPARE(m->SelectedPath + '|' + p->tagEditor()->txtFilename->text(), w.dir.filePath("b.mp3") + '|' + w.dir.filePath("b.mp3"));
        // Not yet playing: the title is left as it was, with no retry.
        p->scr1->setEnabled(false);
        w.engine->state = 3;
        m->clk_Click();
        QVERIFY(!p->scr1->Enabled());
        // Only a click starts a song, the highlighted one too; focus and keys do not.
        l->setListIndex(-1);
        const QString keys = w.step([l] {
            l->setFocus();
            QFocusEvent tabbedIn(QEvent::FocusIn, Qt::TabFocusReason);
            QApplication::sendEvent(l, &tabbedIn);
            QTest::keyClick(l, Qt::Key_Down);
            QTest::keyClick(l, Qt::Key_Down);
        });
        QVERIFY(keys.startsWith('|') && l->ListIndex() == l->currentIndex().row() && l->ListIndex() >= 0);
        l->setListIndex(1);
        m->localStop_Click();
        const QPoint row1 = l->visualRect(l->model()->index(1, 0)).center();
        const auto click = [&] { QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, row1); };
        QCOMPARE(w.step([&] { click(); click(); }), QString("Stop,FileName=b.mp3,Play,Stop,FileName=b.mp3,Play|2|1|11|0|"));

        // Engine state to set (or -1), action, what it did. The start of a track
        // runs twice on Next and Previous, as the list's own change runs it too.
        const auto play = [m] { m->localPlay_Click(); };
        const auto pause = [m] { m->localPausel_Click(); };
        const auto next = [m] { m->localNext_Click(); };
        const auto previous = [m] { m->localPrevious_Click(); };
        const QString ask = "Please Choose a song to play", none = "Please Add Songs in playlist";
        const QString twice = "Stop,FileName=%1,Play,Stop,FileName=%1,Play,Play|2|";
        QTemporaryDir empty;
        const QList<std::tuple<int, std::function<void()>, QString>> story = {
            {6, play, "|6|1|11|0|" + ask}, {3, play, "|3|1|11|0|" + ask}, {2, play, "|2|1|11|0|"},
            {-1, pause, "Pause|1|1|10|0|"}, {-1, pause, "|1|1|10|0|"}, {-1, play, "Play|2|1|10|0|"},
            {0, play, "Play|2|1|01|0|"}, {-1, [&] { w.light()->state = 2; m->localStop_Click(); }, "Stop,FileName=|6|1|01|0|"},
            {-1, play, "|6|1|01|0|" + ask}, {-1, next, twice.arg("C.MP3") + "2|01|0|"},
            {-1, next, "|2|2|01|0|"}, {1, previous, "|1|2|01|0|" + none}, {0, previous, "|0|2|01|0|" + none},
            {2, previous, twice.arg("b.mp3") + "1|01|0|"}, {-1, previous, twice.arg("a.mp3") + "0|01|0|"},
            {-1, previous, "|2|0|01|0|"}, {-1, [l] { l->setListIndex(-1); }, "|2|-1|01|0|"},
            {-1, next, twice.arg("a.mp3") + "0|01|0|"}, {-1, [&] { l->setPath(empty.path()); next(); }, "|2|-1|01|0|"},
        };
        for (const auto &[state, action, did] : story) {
            w.engine->state = state < 0 ? w.engine->state : state;
            QCOMPARE(w.step(action), did);
        }
        QVERIFY(p->Timer3->Enabled() && w.sp.dialogs.shown.last().title.isEmpty()); // the narrow panel opened its list
        auto tick = [&](double position, double duration) {
            w.engine->position = position;
            w.engine->duration = duration;
            w.sp.clock.advance(25);
            return QString("%1 %2%3 %4").arg(p->dur1->text(), p->dur2->text(), p->dur3->text()).arg(p->Slider1->MaxValue());
        };
        QCOMPARE(tick(3, 0), QString("0  0")); // length unknown: only the slider and dur1
        QCOMPARE(tick(0.4, 192), QString("192 00:00/03:12 192"));
        QCOMPARE(tick(5, 192), QString("192 00:05/03:12 192"));
        QCOMPARE(tick(59.6, 192), QString("192 01:00/03:12 192"));
        QCOMPARE(tick(65, 192), QString("192 01:05/03:12 192"));
        QCOMPARE(p->Slider1->Value(), 65.0f);
        // A track of a minute or less keeps the length of the one before.
        QCOMPARE(tick(10, 59), QString("59 00:10/03:12 59"));
        QCOMPARE(tick(10, 60), QString("60 00:10/01:00 60"));
        QCOMPARE(tick(7200, 7200), QString("7200 120:00/120:00 7200"));
        for (int state : {1, 2}) {
            w.engine->state = state;
            QCOMPARE(w.step([&] { tick(20, 192); }).section('|', 4, 4), QString::number(state));
        }
        p->Slider1->setValue(42.0f);
        QCOMPARE(w.step([p] { emit p->Slider1->SliderScroll(); }).section('|', 0, 0), QString("CurrentPosition=42"));
        // Past 32767 seconds the number overflows, uncaught.
        QVERIFY(w.step([&] { tick(40000, 50000); }).section('|', 5).startsWith("Run-time error '6'"));
        QCOMPARE(w.sp.process.ends, 1);
    }

    void editorLoadsAndSaves()
    {
        World w;
        TagEditor *ed = w.mp3->tagEditor();
        const auto boxes = [ed] {
            return QStringList{ed->txtTitle->text(), ed->txtArtist->text(), ed->txtAlbum->text(), ed->txtYear->text(),
                               ed->txtComment->text(), ed->cboGenre->currentText(), ed->lblInfo->text().section("\r\n", 0, 0),
                               ed->Command5->text()}.join('|');
        };
        const QString bare = w.dir.filePath("a.mp3");
        const QByteArray song = tagfiles::framed(900) + tagfiles::block("TAG", "Song", "Singer", "Disc", "1999", "Words", 17);
        w.engine->setFileName(tagfiles::write(w.dir.path(), "tagged.mp3", song));
        ed->Command5_Click();
        QCOMPARE(boxes(), QString("Song|Singer|Disc|1999|Words|Rock|Size: 1028 bytes|Command5"));
        ComboList genres(*ed->cboGenre);
        const auto refused = [&](int index) { return errorOf([&] { genres.setListIndex(index); }); };
        QCOMPARE(refused(148) + refused(-2) + refused(-1), 2 * 380);
        // No tag, no frame: the texts before stay, and a Save writes them here.
        w.engine->setFileName(bare);
        ed->Command5_Click();
        QCOMPARE(boxes() + '|' + ed->txtFilename->text(), "Song|Singer|Disc|1999|Words|Blues|Size: 1028 bytes|Command5|" + bare);
        // Refused words go to a hidden caption, misspelt as they stand.
        const auto save = [ed] { ed->cmdsave->Click(); };
        for (const auto &[state, word] : QList<std::pair<int, QString>>{{0, "stoped"}, {6, "Clsoed"}}) {
            w.engine->state = state;
            QCOMPARE(w.step(save).section('|', 5), QString()); // no box
            QCOMPARE(boxes().section('|', 7), word);
        }
        QCOMPARE(tagfiles::read(bare), tagfiles::filler(600));
        w.engine->state = 1;
        ed->txtYear->setText("20245");
        ed->cboGenre->setCurrentIndex(3);
        QCOMPARE(w.step(save).section('|', 5), QString("Tag Saved Success Fully"));
        QCOMPARE(tagfiles::read(bare).right(128), tagfiles::block("TAG", "Song", "Singer", "Disc", "2024", "Words", 3));
        // Success is announced whatever WriteTag answers.
        ed->cmdremove->Click();
        QCOMPARE(tagfiles::read(bare).right(128), QByteArray(127, 0) + char(3));
        QFile::remove(bare);
        QCOMPARE(w.step(save).section('|', 5), QString("Tag Saved Success Fully"));
        ed->txtTitle->setText("typed");
        QCOMPARE(w.step([ed] { ed->cmdcancel->Click(); }).section('|', 5), QString("Tag Not Saved"));
        QCOMPARE(ed->txtTitle->text(), QString("typed"));
        for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"}) {
            TagEditor *e = w.sp.forms.get<Panel>(name)->tagEditor();
            const bool mp3 = e == ed;
            QVERIFY2(e->cmdsave->isEnabled() == mp3 && e->cmdremove->isEnabled() == mp3 && e->cmdcancel->isEnabled() == mp3, name);
            QCOMPARE(e->cboGenre->count(), mp3 ? 148 : 0);
        }
    }
};

QTEST_MAIN(tst_mp3_panel)
#include "tst_mp3_panel.moc"
