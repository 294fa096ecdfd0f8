// The five panels loaded and hidden, nothing else on screen: their timers
// run as in the program, the window icons swinging on the shared tick.
// Prints the CPU of the process as a share of one core over two halves of
// the window: with icntimer running, then with it stopped in every panel,
// so the icons' own share shows.
//   bench_icons [seconds]     needs an X display; 30 s by default

#include "SoundServer.h"
#include "Usage.h"
#include "panel/Panel.h"
#include "platform/Clock.h"
#include "platform/ErrorBoundary.h"
#include "platform/GuardedApplication.h"
#include "app/RealPlatform.h"
#include "shell/ShellForms.h"

#include <QDir>
#include <QTimer>

namespace {
const char *const Names[] = {"Tafm", "Afm", "Malfm", "kanna", "Mp3"};
}

int main(int argc, char **argv)
{
    const int seconds = argc > 1 ? std::max(2, std::atoi(argv[1])) : 30;
    const auto pulse = soundServerForTheMixer();
    int qtArgc = 1;
    char *qtArgv[] = {argv[0], nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false);
    RealPlatform real;
    real.app.Path = QDir(real.app.Path).filePath(QStringLiteral(".."));
    application.setBoundary(real.dialogs, real.process);
    defineForms(real.platform);

    boundary::run(real.dialogs, real.process, [&] {
        // Shown once and hidden, as a user leaves them: each has a real window.
        for (const char *name : Names) {
            real.forms.Show(QLatin1String(name));
            real.forms.Hide(QLatin1String(name));
        }
    });
    auto frames = [&] {
        int sum = 0;
        for (const char *name : Names)
            sum += real.forms.get<Panel>(QLatin1String(name))->iconFrame();
        return sum;
    };

    const int half = seconds * 500;
    double cpu0 = 0, wall0 = 0, swinging = 0;
    int frameSum = 0;
    bool moved = false;
    QTimer::singleShot(2000, [&] {
        cpu0 = cpuSeconds();
        wall0 = wallSeconds();
        frameSum = frames();
    });
    QTimer::singleShot(2000 + half, [&] {
        swinging = 100.0 * (cpuSeconds() - cpu0) / (wallSeconds() - wall0);
        moved = frames() != frameSum;
        for (const char *name : Names)
            real.forms.get<Panel>(QLatin1String(name))->icntimer->setEnabled(false);
        cpu0 = cpuSeconds();
        wall0 = wallSeconds();
    });
    QTimer::singleShot(2000 + 2 * half, [&] {
        const double still = 100.0 * (cpuSeconds() - cpu0) / (wallSeconds() - wall0);
        std::printf("five panels loaded and hidden, %d s each: CPU %.2f %% of one core with the icons swinging%s, "
                    "%.2f %% with icntimer stopped\n",
                    half / 1000, swinging, moved ? "" : " (they did NOT move)", still);
        std::printf("  mixer: %s\n", pulse ? "PulseAudio null sink through ALSA default" : "the first sound card");
        std::fflush(stdout);
        std::_Exit(0);
    });
    return application.exec();
}
