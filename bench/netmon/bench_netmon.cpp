// The network monitor's costs on this machine.
//   bench_netmon read [reads]      median cost of one Interfaces read
//   bench_netmon window [seconds] [quiet]
//                                  CPU of frmInterfaces at its 200 ms refresh,
//                                  shown and then hidden (tray only), under
//                                  an Xvfb and a tray host it starts itself.
//                                  "quiet" first moves the process into a new
//                                  network namespace of its own (root only),
//                                  where no counter moves: the window's cost
//                                  without the repaints traffic brings
// Build without sanitizers for figures worth quoting.

#include "netmon/CIpHelper.h"
#include "netmon/frmInterfaces.h"
#include "platform/AppInfo.h"
#include "platform/Forms.h"
#include "platform/AnimationSurface.h"
#include "platform/LocalEngine.h"
#include "platform/Media.h"
#include "platform/qtdesktop/RealClock.h"
#include "platform/posix/RealConnection.h"
#include "platform/qtdesktop/RealDialogs.h"
#include "platform/rtnetlink/RealInterfaceTable.h"
#include "platform/qtdesktop/RealProcess.h"
#include "platform/qtdesktop/RealShell.h"
#include "platform/qtdesktop/RealTray.h"
#include "platform/StationEngine.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QSystemTrayIcon>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

class NoMedia : public Media {
public:
    std::unique_ptr<StationEngine> createStationEngine() override { return nullptr; }
    std::unique_ptr<LocalEngine> createLocalEngine() override { return nullptr; }
    std::unique_ptr<AnimationSurface> createAnimationSurface(QWidget *) override { return nullptr; }
};

// The real table, counting its calls.
class CountingTable : public InterfaceTable {
public:
    std::uint32_t GetIfTable(std::uint8_t *buffer, std::uint32_t *size, bool sorted) override
    {
        ++calls;
        return real.GetIfTable(buffer, size, sorted);
    }
    RealInterfaceTable real;
    long calls = 0;
};

double cpuSeconds()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

// CPU seconds another process has used, from /proc.
double cpuSecondsOf(qint64 pid)
{
    QFile f(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!f.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray stat = f.readAll();
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return 0;
    return double(fields[11].toLongLong() + fields[12].toLongLong()) / double(sysconf(_SC_CLK_TCK));
}

int benchRead(int reads)
{
    int argc = 1;
    char program[] = "bench_netmon";
    char *argv[] = {program, nullptr};
    QCoreApplication app(argc, argv);
    RealInterfaceTable table;
    RealDialogs dialogs(QStringLiteral("Zarvent"));
    CIpHelper helper(table, dialogs);
    int rows = 0;
    for (int i = 0; i < 50; ++i) // warm up
        rows = helper.Interfaces()->Count();
    std::vector<double> us;
    us.reserve(static_cast<std::size_t>(reads));
    for (int i = 0; i < reads; ++i) {
        const auto t0 = std::chrono::steady_clock::now();
        helper.Interfaces();
        us.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count());
    }
    std::sort(us.begin(), us.end());
    std::printf("Interfaces read (%d rows, 2 netlink dumps + sysfs speeds): %d reads, median %.1f us, p90 %.1f us, "
                "min %.1f us, max %.1f us; a refresh reads twice\n",
                rows, reads, us[us.size() / 2], us[us.size() * 9 / 10], us.front(), us.back());
    return 0;
}

struct Child {
    QProcess process;
    ~Child()
    {
        if (process.state() != QProcess::NotRunning) {
            process.terminate(); // by its own PID
            if (!process.waitForFinished(3000)) {
                process.kill();
                process.waitForFinished(3000);
            }
        }
    }
};

int freeDisplay()
{
    for (int n = 91; n < 200; ++n)
        if (!QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n)) && !QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(n)))
            return n;
    return -1;
}

int benchWindow(int seconds)
{
    const int display = freeDisplay();
    if (display < 0) {
        std::printf("no free X display number\n");
        return 1;
    }
    const QString name = QStringLiteral(":%1").arg(display);
    Child xvfb;
    xvfb.process.start(QStringLiteral("Xvfb"), {name, "-screen", "0", "1024x768x24", "-nolisten", "tcp"});
    if (!xvfb.process.waitForStarted(5000)) {
        std::printf("Xvfb did not start\n");
        return 1;
    }
    for (int i = 0; i < 100 && !QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(display)); ++i)
        QThread::msleep(50);
    qputenv("DISPLAY", name.toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");

    Child trayer;
    const QString trayerPath = QStandardPaths::findExecutable(QStringLiteral("trayer"));
    if (!trayerPath.isEmpty()) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DISPLAY"), name);
        trayer.process.setProcessEnvironment(env);
        trayer.process.start(trayerPath, {});
        trayer.process.waitForStarted(5000);
    }

    int argc = 1;
    char program[] = "bench_netmon";
    char *argv[] = {program, nullptr};
    QApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false);
    QElapsedTimer wait;
    wait.start();
    while (!QSystemTrayIcon::isSystemTrayAvailable() && wait.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
        QThread::msleep(100);
    }
    const bool tray = QSystemTrayIcon::isSystemTrayAvailable();

    AppInfo info = AppInfo::forExecutable();
    RealDialogs dialogs(info.Title);
    RealConnection connection;
    RealShell shell;
    RealProcess process;
    RealClock clock;
    RealTray realTray;
    CountingTable table;
    NoMedia media;
    Forms forms;
    Platform platform{info, dialogs, connection, shell, process, clock, forms, realTray, table, media};
    forms.define(QStringLiteral("frmInterfaces"), [&] { return std::make_unique<frmInterfaces>(platform); });
    forms.Show(QStringLiteral("frmInterfaces"));
    auto *form = forms.get<frmInterfaces>(QStringLiteral("frmInterfaces"));

    auto phase = [&](const char *what) {
        QCoreApplication::processEvents();
        QEventLoop settle; // let the first paints pass
        QTimer::singleShot(1000, &settle, &QEventLoop::quit);
        settle.exec();
        const long calls0 = table.calls;
        const double cpu0 = cpuSeconds();
        const double server0 = cpuSecondsOf(xvfb.process.processId());
        const double trayer0 = trayer.process.state() == QProcess::Running ? cpuSecondsOf(trayer.process.processId()) : 0;
        QElapsedTimer wall;
        wall.start();
        QEventLoop loop;
        QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
        loop.exec();
        const double elapsed = double(wall.nsecsElapsed()) / 1e9;
        const double cpu = cpuSeconds() - cpu0;
        const double server = cpuSecondsOf(xvfb.process.processId()) - server0;
        const double trayerCpu = trayer.process.state() == QProcess::Running
            ? cpuSecondsOf(trayer.process.processId()) - trayer0 : 0;
        std::printf("frmInterfaces %s, %.1f s: %ld refreshes (%.2f/s), program CPU %.3f s = %.2f %% of one core "
                    "(target <= 0.5 %%); Xvfb %.2f %%, trayer %.2f %%\n",
                    what, elapsed, (table.calls - calls0) / 4, double(table.calls - calls0) / 4 / elapsed, cpu,
                    100 * cpu / elapsed, 100 * server / elapsed, 100 * trayerCpu / elapsed);
    };
    double load[3] = {};
    getloadavg(load, 3);
    std::printf("display %s, tray host %s, load average %.2f on %ld cores\n", qPrintable(name),
                tray ? "present" : "absent (icon calls do nothing)", load[0], sysconf(_SC_NPROCESSORS_ONLN));
    phase("shown");
    form->cmdHide->click();
    phase("hidden, tray icon only");
    form->Unload();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray mode = argc > 1 ? QByteArray(argv[1]) : QByteArray("read");
    const int n = argc > 2 ? std::max(1, std::atoi(argv[2])) : 0;
    if (mode == "read")
        return benchRead(n ? n : 2000);
    if (mode == "window") {
        if (argc > 3 && QByteArray(argv[3]) == "quiet") {
            if (::unshare(CLONE_NEWNET) != 0) {
                std::perror("unshare(CLONE_NEWNET)");
                return 1;
            }
            std::printf("in a network namespace of its own (loopback down, nothing moves)\n");
        }
        return benchWindow(n ? n : 30);
    }
    std::printf("usage: bench_netmon read [reads] | window [seconds] [quiet]\n");
    return 2;
}
