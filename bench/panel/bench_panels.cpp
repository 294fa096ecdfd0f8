// The program at rest: the map shown and all five panels loaded and hidden,
// their timers running as they do in the program. Prints the CPU the process
// used over the window (user + system, as a share of one core) and its peak
// resident memory.
//   bench_panels [seconds] [url]     needs an X display
// With a URL, Tafm is shown instead, tuned to that stream by the same steps
// a station click takes (URL, StationName, sts, stss), its title scrolling.
//   bench_panels fader [moves]       needs an X display
// Moves Tafm's master fader and times each move until the sound server
// reports its sink changed (pactl subscribe, a client of its own): median
// and spread, beside the time the move itself took in the handler.
//   bench_panels unfolded [seconds]  needs an X display
// Tafm shown and unfolded, its level bars ticking, no fader moving.
//   bench_panels bars [moves]        needs an X display
// Moves Tafm's master fader and times each move until its level bar is
// drawn anew (the bars refresh on the shared 16 ms tick).
// On a machine with no sound card the panels' mixer is the sound server
// through ALSA's "default": a PulseAudio null sink is started for the run
// (scripts/services/pulse.sh), so that no panel stops at the no-mixer box.

#include "SoundServer.h"
#include "Usage.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "panel/Panel.h"
#include "panel/VuDisplay.h"
#include "platform/ErrorBoundary.h"
#include "platform/GuardedApplication.h"
#include "app/RealPlatform.h"
#include "platform/StationEngine.h"
#include "shell/ShellForms.h"
#include "widgets/LedProgress.h"

#include <QDir>
#include <QGroupBox>
#include <QThread>
#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <vector>

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>

namespace {

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// Each move of the master fader, timed to the sink's change event.
void faderLatency(Panel &tafm, int moves)
{
    QProcess events;
    events.start(QStringLiteral("stdbuf"), {"-oL", "pactl", "subscribe"});
    events.waitForStarted(5000);
    QThread::msleep(300);
    events.readAllStandardOutput();
    std::vector<double> toServer, inHandler;
    MixerFader *fader = tafm.mixer()->VolumeControl[0];
    for (int i = 0; i < moves; ++i) {
        const int position = i % 2 ? 20000 : 40000 + i; // each move a new level
        QElapsedTimer t;
        t.start();
        fader->setSliderPosition(position);
        inHandler.push_back(t.nsecsElapsed() / 1e6);
        QByteArray seen;
        while (!seen.contains("on sink") && events.waitForReadyRead(2000))
            seen += events.readAllStandardOutput();
        if (!seen.contains("on sink")) {
            std::printf("move %d: the sink never changed\n", i);
            break;
        }
        toServer.push_back(t.nsecsElapsed() / 1e6);
        QThread::msleep(5);
        events.readAllStandardOutput(); // a late duplicate belongs to no move
    }
    events.kill();
    events.waitForFinished(2000);
    if (toServer.empty())
        return;
    std::printf("fader move to the sound server's change, %zu moves: median %.2f ms (min %.2f, max %.2f); "
                "the move in its handler: median %.2f ms\n",
                toServer.size(), median(toServer), *std::min_element(toServer.begin(), toServer.end()),
                *std::max_element(toServer.begin(), toServer.end()), median(inHandler));
}

// Each move of the master fader, timed to the redrawing of its level bar.
void barLatency(Panel &tafm, int moves)
{
    std::vector<double> toBar;
    MixerFader *fader = tafm.mixer()->VolumeControl[0];
    const LedProgress *led = tafm.display()->Led[0];
    for (int i = 0; i < moves; ++i) {
        const int before = led->drawings();
        QElapsedTimer t;
        t.start();
        fader->setSliderPosition(i % 2 ? 20000 : 40000 + i * 100);
        while (led->drawings() == before && t.elapsed() < 1000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        toBar.push_back(t.nsecsElapsed() / 1e6);
        QThread::msleep(7); // moves fall anywhere between two ticks
    }
    std::printf("fader move to its level bar drawn anew, %zu moves: median %.2f ms (min %.2f, max %.2f)\n",
                toBar.size(), median(toBar), *std::min_element(toBar.begin(), toBar.end()),
                *std::max_element(toBar.begin(), toBar.end()));
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray mode = argc > 1 ? QByteArray(argv[1]) : QByteArray();
    const bool fader = mode == "fader";
    const bool bars = mode == "bars";
    const bool unfolded = mode == "unfolded";
    const bool named = fader || bars || unfolded;
    const int seconds = unfolded ? (argc > 2 ? std::max(1, std::atoi(argv[2])) : 30)
                                 : (!named && argc > 1 ? std::max(1, std::atoi(argv[1])) : 30);
    const int moves = (fader || bars) && argc > 2 ? std::max(1, std::atoi(argv[2])) : 200;
    const QString url = !named && argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    std::unique_ptr<ServicePeer> pulse = soundServerForTheMixer(seconds);
    int qtArgc = 1;
    char *qtArgv[] = {argv[0], nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false);
    RealPlatform real;
    real.app.Path = QDir(real.app.Path).filePath(QStringLiteral("..")); // img/ sits beside the program, one up
    application.setBoundary(real.dialogs, real.process);
    defineForms(real.platform);

    if (fader) {
        boundary::run(real.dialogs, real.process, [&] {
            auto *tafm = real.forms.get<Panel>(QStringLiteral("Tafm"));
            real.forms.Show(QStringLiteral("Tafm"));
            faderLatency(*tafm, moves);
        });
        std::fflush(stdout);
        pulse.reset(); // the server goes before the quick exit, which runs no destructor
        std::_Exit(0);
    }

    if (bars) {
        boundary::run(real.dialogs, real.process, [&] {
            auto *tafm = real.forms.get<Panel>(QStringLiteral("Tafm"));
            real.forms.Show(QStringLiteral("Tafm"));
            tafm->Label2_Click();
            QElapsedTimer settle;
            settle.start();
            while (settle.elapsed() < 3000)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            barLatency(*tafm, moves);
        });
        std::fflush(stdout);
        pulse.reset();
        std::_Exit(0);
    }

    boundary::run(real.dialogs, real.process, [&] {
        for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"})
            real.forms.Hide(QLatin1String(name));
        if (unfolded) {
            real.forms.Show(QStringLiteral("Tafm"));
            real.forms.get<Panel>(QStringLiteral("Tafm"))->Label2_Click();
        } else if (url.isEmpty()) {
            real.forms.Show(QStringLiteral("Mainmap"));
        } else {
            auto *tafm = real.forms.get<Panel>(QStringLiteral("Tafm"));
            real.forms.Show(QStringLiteral("Tafm"));
            tafm->player()->setURL(url);
            tafm->StationName = QStringLiteral("Local test stream");
            tafm->sts->setEnabled(true);
            tafm->stss_Click();
        }
    });

    // Let the panels settle, then measure.
    double cpu0 = 0, wall0 = 0;
    QTimer::singleShot(2000, [&] {
        cpu0 = cpuSeconds();
        wall0 = wallSeconds();
    });
    QTimer::singleShot(2000 + seconds * 1000, [&] {
        const double cpu = cpuSeconds() - cpu0;
        const double wall = wallSeconds() - wall0;
        rusage u{};
        getrusage(RUSAGE_SELF, &u);
        std::printf("%s, %.0f s: CPU %.2f %% of one core, peak RSS %.1f MiB\n",
                    unfolded        ? "Tafm shown and unfolded, its level bars ticking, four panels hidden"
                    : url.isEmpty() ? "map shown, five panels loaded and hidden"
                                    : "Tafm shown, tuned and scrolling",
                    wall, 100.0 * cpu / wall, u.ru_maxrss / 1024.0);
        std::printf("  mixer: %s, Master strip %s\n", pulse ? "PulseAudio null sink through ALSA default" : "the first sound card",
                    real.forms.get<Panel>(QStringLiteral("Tafm"))->mixer()->VolFrame[0]->isHidden() ? "missing" : "shown");
        if (!url.isEmpty()) // what the status line said at the end, so a stalled stream is not taken for a quiet one
            std::printf("  status: \"%s\"\n", qPrintable(real.forms.get<Panel>(QStringLiteral("Tafm"))->cptn->text()));
        std::fflush(stdout);
        pulse.reset();
        std::_Exit(0);
    });
    return application.exec();
}
