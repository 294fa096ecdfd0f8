// What the MPRIS service costs while a station plays: bench_panels' playing
// figure (all five panels loaded, Tafm shown, tuned to a local Icecast
// stream by a station click's steps, its title scrolling, its sound going
// to a PulseAudio null sink) in alternating runs without and with the
// service, each run a process of its own on a private session bus.
//   bench_mpris [seconds per run] [rounds]     needs an X display
// Prints each run's share of one core and the medians of the two.

#include "ServicePeer.h"
#include "SoundServer.h"
#include "Usage.h"
#include "panel/Panel.h"
#include "panel/PanelNowPlaying.h"
#include "platform/ErrorBoundary.h"
#include "platform/GuardedApplication.h"
#include "app/RealPlatform.h"
#include "platform/StationEngine.h"
#include "platform/qtdesktop/MprisService.h"
#include "shell/ShellForms.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

int child(char *argv0, bool withService, int seconds, const QString &url)
{
    int qtArgc = 1;
    char *qtArgv[] = {argv0, nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false);
    RealPlatform real;
    real.app.Path = QDir(real.app.Path).filePath(QStringLiteral("..")); // img/ sits beside the program, one up
    application.setBoundary(real.dialogs, real.process);
    defineForms(real.platform);
    PanelNowPlaying nowPlaying(real.platform);
    std::unique_ptr<MprisService> service;
    if (withService) {
        service = MprisService::onSessionBus(nowPlaying);
        if (!service) {
            std::printf("the service did not start: no session bus\n");
            return 1;
        }
    }
    boundary::run(real.dialogs, real.process, [&] {
        for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"})
            real.forms.Hide(QLatin1String(name));
        auto *tafm = real.forms.get<Panel>(QStringLiteral("Tafm"));
        real.forms.Show(QStringLiteral("Tafm"));
        tafm->player()->setURL(url);
        tafm->StationName = QStringLiteral("Local test stream");
        tafm->sts->setEnabled(true);
        tafm->stss_Click();
    });
    double cpu0 = 0, wall0 = 0;
    QTimer::singleShot(2000, [&] {
        cpu0 = cpuSeconds();
        wall0 = wallSeconds();
    });
    QTimer::singleShot(2000 + seconds * 1000, [&] {
        const double share = 100.0 * (cpuSeconds() - cpu0) / (wallSeconds() - wall0);
        // A stalled stream is not a quiet one: the state goes with the figure.
        std::printf("%.3f %s\n", share, nowPlaying.status() == NowPlaying::Status::Playing ? "playing" : "not-playing");
        std::fflush(stdout);
        std::_Exit(0);
    });
    return application.exec();
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 5 && std::strcmp(argv[1], "--child") == 0)
        return child(argv[0], std::strcmp(argv[2], "on") == 0, std::atoi(argv[3]), QString::fromLocal8Bit(argv[4]));

    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    QCoreApplication app(argc, argv);
    for (const char *tool : {"icecast2", "ffmpeg", "sox", "lame", "dbus-run-session"}) {
        if (!ServicePeer::haveTool(QLatin1String(tool))) {
            std::printf("%s is not installed: no figures\n", tool);
            return 1;
        }
    }
    const int lifetime = 60 + rounds * 2 * (seconds + 10);
    std::unique_ptr<ServicePeer> pulse = soundServerForTheMixer(lifetime);
    QTemporaryDir files;
    const QString tone = files.filePath(QStringLiteral("tone.mp3"));
    if (!ServicePeer::run(QStringLiteral("tone.sh"), {tone, QStringLiteral("30"), QStringLiteral("440")})) {
        std::printf("could not make the test sound\n");
        return 1;
    }
    ServicePeer icecast(QStringLiteral("icecast.sh"), {tone}, lifetime);
    if (!icecast.ok()) {
        std::printf("Icecast did not start: %s\n", qPrintable(icecast.error()));
        return 1;
    }
    QThread::sleep(5); // the source fills Icecast's burst, as on a station that runs
    const QString url = QStringLiteral("http://127.0.0.1:%1%2").arg(icecast.port()).arg(icecast.value(QStringLiteral("MOUNT")));

    std::printf("Tafm playing a local Icecast stream, %d s a run, %d rounds, each run on a private session bus\n",
                seconds, rounds);
    std::vector<double> off, on;
    for (int round = 0; round < rounds; ++round) {
        for (const char *mode : {"off", "on"}) {
            QProcess run; // the private bus's daemon complains on stderr of limits it may not raise
            run.setStandardErrorFile(QProcess::nullDevice());
            run.start(QStringLiteral("dbus-run-session"),
                      {QStringLiteral("--"), QCoreApplication::applicationFilePath(), QStringLiteral("--child"),
                       QLatin1String(mode), QString::number(seconds), url});
            if (!run.waitForFinished((seconds + 30) * 1000)) {
                run.kill();
                std::printf("run %d %s: did not finish\n", round + 1, mode);
                return 1;
            }
            const QList<QByteArray> words = run.readAllStandardOutput().trimmed().split(' ');
            if (words.size() != 2 || words[1] != "playing") {
                std::printf("run %d %s: no figure (%s)\n", round + 1, mode, words.join(' ').constData());
                return 1;
            }
            const double share = words[0].toDouble();
            (std::strcmp(mode, "on") == 0 ? on : off).push_back(share);
            std::printf("  round %d, service %-3s: CPU %.2f %% of one core\n", round + 1, mode, share);
            std::fflush(stdout);
        }
    }
    std::printf("median without the service %.2f %%, with it %.2f %% (difference %+.2f points)\n", median(off),
                median(on), median(on) - median(off));
    return 0;
}
