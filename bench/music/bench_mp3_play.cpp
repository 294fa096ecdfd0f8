// CPU of the process while Mp3 plays a local file with its time display
// running (Timer1 at 25 ms, the real clock), decoding included, beside cvlc
// playing the same file for the same time. Both use libvlc's dummy sound
// output, so the figure is the same on a machine without a sound card.
//   bench_mp3_play [seconds]
// Needs ffmpeg (with LAME) to make the file, and cvlc, run as nobody since it
// refuses root.

#include "doubles/ScriptedPlatform.h"
#include "music/FileList.h"
#include "music/MusicList.h"
#include "music/TagEditor.h"
#include "panel/Panel.h"
#include "platform/LocalEngine.h"
#include "platform/qtdesktop/RealClock.h"
#include "platform/vlc/RealMedia.h"
#include "shell/ShellForms.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>

namespace {

double cpuSeconds(int who)
{
    rusage u{};
    getrusage(who, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 20;

    QTemporaryDir dir;
    QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther
                                          | QFile::ExeOther | QFile::ReadGroup | QFile::ExeGroup);
    const QString song = dir.filePath(QStringLiteral("song.mp3"));
    QProcess ff;
    ff.start(QStringLiteral("ffmpeg"), {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                        QStringLiteral("sine=frequency=440:duration=%1").arg(seconds + 10), "-ac",
                                        "2", "-ar", "44100", "-c:a", "libmp3lame", "-b:a", "192k", song});
    if (!ff.waitForFinished(120000) || ff.exitCode() != 0) {
        std::fprintf(stderr, "ffmpeg failed\n");
        return 1;
    }

    double ours = 0;
    {
        ScriptedPlatform sp;
        RealClock clock;
        RealMedia media({QStringLiteral("--aout=dummy"), QStringLiteral("--quiet")});
        Forms forms;
        Platform platform{sp.app,  sp.dialogs, sp.connection, sp.shell,      sp.process,
                          clock,   forms,      sp.tray,       sp.interfaces, media};
        defineForms(platform);
        forms.Show(QStringLiteral("Mp3"));
        auto *p = forms.get<Panel>(QStringLiteral("Mp3"));
        p->music()->fileList()->setPath(dir.path());
        QTest::qWait(1500); // the panel settles its folds and width
        p->music()->fileList()->setListIndex(0);
        QElapsedTimer wait;
        wait.start();
        while (p->Player()->PlayState() != 2 && wait.elapsed() < 5000)
            QTest::qWait(10);
        const double cpu0 = cpuSeconds(RUSAGE_SELF);
        QElapsedTimer wall;
        wall.start();
        QTest::qWait(seconds * 1000);
        ours = (cpuSeconds(RUSAGE_SELF) - cpu0) / (wall.nsecsElapsed() / 1e9) * 100;
        std::printf("Mp3 playing, time display on: %5.2f %% of one core over %d s (dur2 reads %s)\n", ours, seconds,
                    qPrintable(p->dur2->text()));
    }

    const double before = cpuSeconds(RUSAGE_CHILDREN);
    QElapsedTimer wall;
    wall.start();
    QProcess vlc;
    vlc.start(QStringLiteral("runuser"), {"-u", "nobody", "--", "cvlc", "--quiet", "--aout=dummy", "--play-and-exit",
                                          "--run-time", QString::number(seconds), song});
    if (!vlc.waitForFinished((seconds + 30) * 1000)) {
        std::fprintf(stderr, "cvlc did not finish\n");
        return 1;
    }
    const double theirs = (cpuSeconds(RUSAGE_CHILDREN) - before) / (wall.nsecsElapsed() / 1e9) * 100;
    std::printf("cvlc playing the same file:    %5.2f %% of one core over %.1f s (start-up included)\n", theirs,
                wall.nsecsElapsed() / 1e9);
    std::printf("target: Mp3 at most 5 %%\n");
    return 0;
}
