// What the engines cost: peak resident memory and processor time of a
// process holding five station engines and one local engine, as the
// program makes them (no libvlc options), idle and with one station
// playing the local Icecast stream; beside cvlc playing the same stream.
//   bench_engine_cost [seconds=12]
//
// Processor time is user + system time of all threads over the measured
// span, as a share of one core; the first 3 s of playing (opening, plugin
// loading) are left out on both sides. Sound goes to a counter in the
// engine and to a file in cvlc: neither needs a sound card, both decode and
// convert to 16-bit.

#include "ServicePeer.h"
#include "platform/LocalEngine.h"
#include "platform/vlc/RealMedia.h"
#include "platform/StationEngine.h"
#include "platform/vlc/VlcStationEngine.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double peakMiB()
{
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const auto m = QRegularExpression(QStringLiteral("VmHWM:\\s+(\\d+) kB")).match(QString::fromLatin1(f.readAll()));
    return m.hasMatch() ? m.captured(1).toDouble() / 1024.0 : -1;
}

double cpuSeconds()
{
    rusage u{};
    ::getrusage(RUSAGE_SELF, &u);
    return static_cast<double>(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + static_cast<double>(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

// Runs Qt's event loop for ms milliseconds, as the program would.
void run(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// Share of one core over ms milliseconds of running the event loop.
double cpuShare(int ms)
{
    const double c0 = cpuSeconds();
    const auto t0 = Clock::now();
    run(ms);
    const double wall = std::chrono::duration<double>(Clock::now() - t0).count();
    return 100.0 * (cpuSeconds() - c0) / wall;
}

struct Reference {
    double cpuPercent = -1;
    double peakMiB = -1;
};

// cvlc playing url: its processor share between 3 s and 3 + seconds, and
// its peak memory at the end.
Reference cvlcCost(const QString &url, int seconds)
{
    const QString script = QStringLiteral(
        "cvlc --no-video --aout=afile --audiofile-file=/dev/null '%1' >/dev/null 2>&1 & pid=$!; "
        "sleep 3; a=$(cut -d' ' -f14,15 /proc/$pid/stat); sleep %2; b=$(cut -d' ' -f14,15 /proc/$pid/stat); "
        "echo \"TICKS $a $b $(getconf CLK_TCK)\"; grep VmHWM /proc/$pid/status; kill $pid; wait $pid")
                               .arg(url)
                               .arg(seconds);
    QStringList args;
    QString program = QStringLiteral("bash");
    if (::getuid() == 0) {
        program = QStringLiteral("runuser");
        args << QStringLiteral("-u") << QStringLiteral("nobody") << QStringLiteral("--") << QStringLiteral("bash");
    }
    args << QStringLiteral("-c") << script;
    QProcess p;
    p.start(program, args);
    Reference r;
    if (!p.waitForFinished((seconds + 15) * 1000)) {
        p.kill();
        p.waitForFinished(1000);
        return r;
    }
    const QString out = QString::fromLatin1(p.readAll());
    const auto t = QRegularExpression(QStringLiteral("TICKS (\\d+) (\\d+) (\\d+) (\\d+) (\\d+)")).match(out);
    if (t.hasMatch()) {
        const double before = t.captured(1).toDouble() + t.captured(2).toDouble();
        const double after = t.captured(3).toDouble() + t.captured(4).toDouble();
        r.cpuPercent = 100.0 * (after - before) / t.captured(5).toDouble() / seconds;
    }
    const auto m = QRegularExpression(QStringLiteral("VmHWM:\\s+(\\d+) kB")).match(out);
    if (m.hasMatch())
        r.peakMiB = m.captured(1).toDouble() / 1024.0;
    return r;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(2, std::atoi(argv[1])) : 12;
    const double bare = peakMiB();
    const double loopAlone = cpuShare(2000);

    RealMedia media; // as the program: no options
    std::vector<std::unique_ptr<StationEngine>> stations;
    for (int i = 0; i < 5; ++i)
        stations.push_back(media.createStationEngine());
    auto local = media.createLocalEngine();
    run(500);
    const double created = peakMiB();
    const double idle = cpuShare(seconds * 1000);
    std::printf("Engines' cost, five station engines + one local engine in one process\n");
    std::printf("  peak memory, Qt application alone            %6.1f MiB\n", bare);
    std::printf("  peak memory, engines created                 %6.1f MiB  (+%.1f MiB)\n", created, created - bare);
    std::printf("  processor, engines idle for %2d s             %6.2f %% of a core  (event loop alone %.2f %%)\n", seconds, idle, loopAlone);

    if (!ServicePeer::haveTool(QStringLiteral("icecast2")) || !ServicePeer::haveTool(QStringLiteral("ffmpeg"))) {
        std::printf("  (icecast2 or ffmpeg missing: no playing figures)\n");
        return 0;
    }
    QTemporaryDir files;
    const QString tone = files.filePath(QStringLiteral("tone.mp3"));
    ServicePeer::run(QStringLiteral("tone.sh"), {tone, QStringLiteral("30"), QStringLiteral("440")});
    ServicePeer icecast(QStringLiteral("icecast.sh"), {tone}, 3 * seconds + 60);
    if (!icecast.ok()) {
        std::printf("  Icecast did not start: %s\n", qPrintable(icecast.error()));
        return 1;
    }
    const QString url = QStringLiteral("http://127.0.0.1:%1%2").arg(icecast.port()).arg(icecast.value(QStringLiteral("MOUNT")));
    auto *engine = dynamic_cast<VlcStationEngine *>(stations.front().get());
    VlcAudioTap &tap = engine->countDecodedAudio();
    engine->setURL(url);
    run(3000);
    const double playing = cpuShare(seconds * 1000);
    std::printf("  one station playing the Icecast stream:\n");
    std::printf("    processor over %2d s                        %6.2f %% of a core  (state %d, %.1f s of sound decoded)\n",
                seconds, playing, engine->playState(), static_cast<double>(tap.samples()) / 44100.0);
    std::printf("    peak memory                                %6.1f MiB  (+%.1f MiB over Qt alone)\n", peakMiB(), peakMiB() - bare);
    engine->stop();

    if (!ServicePeer::haveTool(QStringLiteral("cvlc"))) {
        std::printf("  cvlc is not installed: no reference figures\n");
        return 0;
    }
    const Reference ref = cvlcCost(url, seconds);
    std::printf("  cvlc playing the same stream:\n");
    std::printf("    processor over %2d s                        %6.2f %% of a core\n", seconds, ref.cpuPercent);
    std::printf("    peak memory                                %6.1f MiB\n", ref.peakMiB);
    return 0;
}
