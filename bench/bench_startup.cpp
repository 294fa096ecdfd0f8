// Process start to the splash's first paint, median of runs.
//   bench_startup [runs]       needs an X display
// Each run starts a fresh process (this program in its child role), which
// builds the real platform exactly as the program does, shows the splash and
// writes one byte to a pipe once the splash's first paint is done. The
// figure is fork to that byte: dynamic loading, X connection, pictures and all.

#include "platform/ErrorBoundary.h"
#include "platform/Form.h"
#include "platform/GuardedApplication.h"
#include "app/RealPlatform.h"
#include "shell/ShellForms.h"

#include <QDir>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

class FirstPaint : public QObject {
public:
    explicit FirstPaint(int fd) : m_fd(fd) {}
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_done) {
            m_done = true;
            QTimer::singleShot(0, [fd = m_fd] {
                const char byte = 'p';
                (void)::write(fd, &byte, 1);
                ::_exit(0);
            });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    int m_fd;
    bool m_done = false;
};

int child(char *argv0, int fd)
{
    int qtArgc = 1;
    char *qtArgv[] = {argv0, nullptr};
    GuardedApplication application(qtArgc, qtArgv);
    application.setQuitOnLastWindowClosed(false);
    RealPlatform real;
    real.app.Path = QDir(real.app.Path).filePath(QStringLiteral("..")); // img/ sits beside the program, one up
    application.setApplicationName(real.app.Title);
    application.setBoundary(real.dialogs, real.process);
    defineForms(real.platform);
    FirstPaint watcher(fd);
    boundary::run(real.dialogs, real.process, [&] {
        real.forms.form(QStringLiteral("frmSplash"))->installEventFilter(&watcher);
        real.forms.Show(QStringLiteral("frmSplash"));
    });
    return application.exec();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--child") == 0)
        return child(argv[0], std::atoi(argv[2]));

    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    if (!std::getenv("DISPLAY")) {
        std::fprintf(stderr, "bench_startup: needs an X display\n");
        return 2;
    }
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        int p[2];
        if (::pipe(p) != 0)
            return 1;
        const auto t0 = std::chrono::steady_clock::now();
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(p[0]);
            char fd[16];
            std::snprintf(fd, sizeof fd, "%d", p[1]);
            ::execl("/proc/self/exe", argv[0], "--child", fd, static_cast<char *>(nullptr));
            ::_exit(127);
        }
        ::close(p[1]);
        char byte = 0;
        const bool painted = ::read(p[0], &byte, 1) == 1;
        const auto t1 = std::chrono::steady_clock::now();
        ::close(p[0]);
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        if (!painted) {
            std::fprintf(stderr, "run %d: the splash never painted\n", i + 1);
            return 1;
        }
        ms.push_back(std::chrono::duration<double, std::milli>(t1 - t0).count());
    }
    std::vector<double> sorted = ms;
    std::sort(sorted.begin(), sorted.end());
    const double median = sorted.size() % 2 ? sorted[sorted.size() / 2]
                                            : (sorted[sorted.size() / 2 - 1] + sorted[sorted.size() / 2]) / 2;
    std::printf("process start to splash first paint, %d runs: median %.1f ms, min %.1f ms, max %.1f ms (target <= 300 ms)\n",
                runs, median, sorted.front(), sorted.back());
    return 0;
}
