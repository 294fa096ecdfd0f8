// The program at rest: the map shown and all five panels loaded and hidden,
// their timers running as they do in the program. Prints the CPU the process
// used over the window (user + system, as a share of one core) and its peak
// resident memory.
//   bench_panels [seconds] [url]     needs an X display
// With a URL, Tafm is shown instead, tuned to that stream by the same steps
// a station click takes (URL, StationName, sts, stss), its title scrolling.

#include "panel/Panel.h"
#include "platform/ErrorBoundary.h"
#include "platform/GuardedApplication.h"
#include "platform/RealPlatform.h"
#include "platform/StationEngine.h"
#include "shell/ShellForms.h"

#include <QDir>
#include <QLabel>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
#include <time.h>

namespace {

double cpuSeconds()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

double wallSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec + t.tv_nsec / 1e9;
}

} // namespace

int main(int argc, char **argv)
{
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    const QString url = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    int qtArgc = 1;
    char *qtArgv[] = {argv[0], nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false);
    RealPlatform real;
    real.app.Path = QDir(real.app.Path).filePath(QStringLiteral("..")); // img/ sits beside the program, one up
    application.setBoundary(real.dialogs, real.process);
    defineForms(real.platform);

    boundary::run(real.dialogs, real.process, [&] {
        for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"})
            real.forms.Hide(QLatin1String(name));
        if (url.isEmpty()) {
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
                    url.isEmpty() ? "map shown, five panels loaded and hidden" : "Tafm shown, tuned and scrolling",
                    wall, 100.0 * cpu / wall, u.ru_maxrss / 1024.0);
        if (!url.isEmpty()) // what the status line said at the end, so a stalled stream is not taken for a quiet one
            std::printf("  status: \"%s\"\n", qPrintable(real.forms.get<Panel>(QStringLiteral("Tafm"))->cptn->text()));
        std::fflush(stdout);
        std::_Exit(0);
    });
    return application.exec();
}
