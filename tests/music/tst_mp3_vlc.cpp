// Mp3 on real libvlc, decoded sound going to a counter, with encoded tones.
#include "TagFiles.h"
#include "doubles/ScriptedPlatform.h"
#include "music/FileList.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "panel/Panel.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcLocalEngine.h"
#include "shell/ShellForms.h"
#include "widgets/GlowButton.h"
#include "widgets/zzSlider.h"

#include <QtTest>
#include <QtWidgets>

class tst_mp3_vlc : public QObject {
    Q_OBJECT
private slots:
    void playThroughThePanel()
    {
        const QTemporaryDir dir;
        for (const auto &[name, seconds] : {std::pair{"1-short.mp3", 3}, std::pair{"2-long.mp3", 8}}) {
            QProcess ff;
            ff.start("ffmpeg", {"-nostdin", "-loglevel", "error", "-f", "lavfi", "-i", QString("sine=d=%1").arg(seconds),
                                "-ac", "2", "-ar", "44100", "-c:a", "libmp3lame", "-b:a", "128k", dir.filePath(name)});
            QVERIFY2(ff.waitForFinished(30000) && ff.exitCode() == 0, "ffmpeg could not encode a tone");
        }
        ScriptedPlatform sp;
        RealMedia media({"--aout=dummy", "--quiet"});
        Forms forms;
        Platform platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, forms, sp.tray, sp.interfaces, media};
        defineForms(platform);
        forms.Show("Mp3");
        auto *p = forms.get<Panel>("Mp3");
        LocalEngine *player = p->Player();
        dynamic_cast<VlcLocalEngine &>(*player).countDecodedAudio();
        FileList *list = p->music()->fileList();
        list->setPath(dir.path());

        // Read with no turn of the event loop: named only if it plays at once.
        const auto named = [&] { return QString("%1|%2|%3").arg(p->windowTitle(), p->fName->text()).arg(player->PlayState()); };
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(0, 0)).center());
        QCOMPARE(named(), QString(" 1-short.mp3|1-short.mp3|2"));
        QVERIFY(p->tagEditor()->lblInfo->text().contains("44100hz"));
        p->tagEditor()->txtTitle->setText("Tone");
        p->tagEditor()->cboGenre->setCurrentIndex(8);
        p->tagEditor()->cmdsave->Click();
        QCOMPARE(sp.dialogs.shown.value(0).prompt + QString::number(player->PlayState()), QString("Tag Saved Success Fully2"));
        QCOMPARE(tagfiles::read(dir.filePath("1-short.mp3")).right(128), tagfiles::block("TAG", "Tone", "", "", "", "", 8));
        p->music()->localNext_Click();
        QCOMPARE(named(), QString(" 2-long.mp3|2-long.mp3|2"));
        p->music()->localPrevious_Click();
        QCOMPARE(named(), QString(" 1-short.mp3|1-short.mp3|2"));

        list->setListIndex(1);
        QTRY_VERIFY_WITH_TIMEOUT(player->PlayState() == 2 && player->Duration() > 0, 5000);
        QVERIFY(player->FileName() == dir.filePath("2-long.mp3") && qAbs(player->Duration() - 8) < 0.5);
        sp.clock.advance(25);
        QCOMPARE(p->dur2->text().left(4) + p->dur3->text(), QString("00:0"));
        p->Slider1->setValue(5.0f);
        emit p->Slider1->SliderScroll();
        QTRY_VERIFY(player->CurrentPosition() >= 4.9);
        QVERIFY(player->CurrentPosition() < 6.5);
        p->music()->localPausel_Click();
        QTRY_COMPARE(player->PlayState(), 1);
        const double held = player->CurrentPosition();
        QTest::qWait(400);
        QVERIFY(qAbs(player->CurrentPosition() - held) < 0.1);
        p->music()->localPlay_Click();
        QTRY_VERIFY(player->PlayState() == 2 && player->CurrentPosition() > held + 0.2);
        // At the natural end nothing starts the next track.
        QTRY_COMPARE_WITH_TIMEOUT(player->PlayState(), 0, 8000);
        QTest::qWait(300);
        QCOMPARE(QString("%1 %2 ").arg(player->PlayState()).arg(list->ListIndex()) + player->FileName(), "0 1 " + dir.filePath("2-long.mp3"));
        p->music()->localPlay_Click();
        QTRY_COMPARE(player->PlayState(), 2);
        p->music()->localStop_Click();
        QTRY_COMPARE(player->PlayState(), 6);
        p->music()->localPlay_Click();
        QCOMPARE(sp.dialogs.shown.last().prompt + QString::number(sp.dialogs.shown.size()), QString("Please Choose a song to play2"));
    }
};

QTEST_MAIN(tst_mp3_vlc)
#include "tst_mp3_vlc.moc"
