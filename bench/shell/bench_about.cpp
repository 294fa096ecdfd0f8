// The About window snowing, as a panel's Label8 opens it: frmMain shown,
// Tafm loaded hidden by the icon it lends. Prints the frames per second of
// the snow loop (its pacing aims at frmMain::FramesPerSecond), the spread
// of one-second rates, and the CPU of the whole process as a share of one
// core.
//   bench_about [seconds]     needs an X display; 30 s by default

#include "SoundServer.h"
#include "Usage.h"
#include "platform/ErrorBoundary.h"
#include "platform/GuardedApplication.h"
#include "app/RealPlatform.h"
#include "shell/ShellForms.h"
#include "shell/frmMain.h"

#include <QDir>
#include <QTimer>

#include <algorithm>
#include <vector>

int main(int argc, char **argv)
{
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    const auto pulse = soundServerForTheMixer();
    int qtArgc = 1;
    char *qtArgv[] = {argv[0], nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false);
    RealPlatform real;
    real.app.Path = QDir(real.app.Path).filePath(QStringLiteral("..")); // img/ sits beside the program, one up
    application.setBoundary(real.dialogs, real.process);
    defineForms(real.platform);

    frmMain *about = nullptr;
    boundary::run(real.dialogs, real.process, [&] {
        real.forms.Show(QStringLiteral("frmMain"));
        about = real.forms.get<frmMain>(QStringLiteral("frmMain"));
    });
    if (!about)
        return 1;

    // The loop starts 500 ms after the load; measure from 2 s on. The
    // timers below fire between frames, inside the loop.
    double cpu0 = 0, wall0 = 0;
    std::int64_t frames0 = 0, lastFrames = 0;
    std::vector<double> rates;
    QTimer perSecond;
    QObject::connect(&perSecond, &QTimer::timeout, [&] {
        rates.push_back(static_cast<double>(about->frameCount() - lastFrames));
        lastFrames = about->frameCount();
    });
    QTimer::singleShot(2000, [&] {
        cpu0 = cpuSeconds();
        wall0 = wallSeconds();
        frames0 = lastFrames = about->frameCount();
        perSecond.start(1000);
    });
    QTimer::singleShot(2000 + seconds * 1000, [&] {
        const double cpu = cpuSeconds() - cpu0;
        const double wall = wallSeconds() - wall0;
        const double fps = (about->frameCount() - frames0) / wall;
        std::sort(rates.begin(), rates.end());
        std::printf("About window snowing, %.0f s: %.1f frames/s (aim %d; one-second rates %.0f to %.0f), "
                    "CPU %.2f %% of one core\n",
                    wall, fps, frmMain::FramesPerSecond, rates.empty() ? 0.0 : rates.front(),
                    rates.empty() ? 0.0 : rates.back(), 100.0 * cpu / wall);
        std::printf("  mixer: %s\n", pulse ? "PulseAudio null sink through ALSA default" : "the first sound card");
        std::fflush(stdout);
        std::_Exit(0);
    });
    return application.exec();
}
