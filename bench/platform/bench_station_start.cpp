// Station engine start: from the URL write to the first decoded audio,
// median of 10, on the local Icecast stream and on a one-client ffmpeg
// stream that sends no burst; beside bare libvlc, the server's own first
// audio byte and cvlc.
//   bench_station_start [rounds=10]
//
// The engine and bare libvlc hand their sound to libvlc's audio callbacks;
// the clock stops at the first decoded block. cvlc runs as its user would
// start it (as nobody when we are root: it refuses root), with its
// command-line interface on a loopback port and its sound written to a FIFO
// by the file output: the clock runs from the "add URL" command to the first
// bytes in the FIFO. Both players are started before the clock runs, both
// outputs take the block the moment it is decoded (neither waits for a
// sound card), so the figures compare the open paths alone.

#include "ServicePeer.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcInstance.h"
#include "platform/vlc/VlcStationEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "CvlcReference.h"

namespace {

using namespace benchref;
using Clock = benchref::SteadyClock;

// The server's own first audio byte: connect, ask, wait for the first byte
// after the headers.
double serverFirstByte(int port, const QByteArray &path)
{
    const auto t0 = Clock::now();
    const int fd = connectLoopback(port);
    if (fd < 0)
        return NoAudio;
    const QByteArray request = "GET " + path + " HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n";
    (void)::send(fd, request.constData(), static_cast<size_t>(request.size()), MSG_NOSIGNAL);
    QByteArray got;
    double result = NoAudio;
    pollfd p{fd, POLLIN, 0};
    while (msSince(t0) < 5000 && ::poll(&p, 1, 100) >= 0) {
        char buf[4096];
        const ssize_t n = ::recv(fd, buf, sizeof buf, MSG_DONTWAIT);
        if (n == 0)
            break;
        if (n > 0) {
            got.append(buf, n);
            const qsizetype end = got.indexOf("\r\n\r\n");
            if (end >= 0 && got.size() > end + 4) {
                result = msSince(t0);
                break;
            }
        }
    }
    ::close(fd);
    return result;
}

double engineStart(VlcStationEngine &engine, VlcAudioTap &tap, const QString &url)
{
    tap.reset();
    const auto t0 = Clock::now();
    engine.setURL(url);
    const bool ok = waitFor([&] { return tap.firstAudioNs() != 0; }, 5000);
    const double ms = ok ? msBetween(t0, tap.firstAudioNs()) : NoAudio;
    engine.stop();
    return ms;
}

// A plain libvlc media player on the same instance, libvlc's own defaults.
double bareStart(libvlc_instance_t *instance, const QString &url)
{
    VlcPtr<libvlc_media_player_t> player(libvlc_media_player_new(instance));
    VlcAudioTap tap;
    tap.attach(player.get());
    const auto t0 = Clock::now();
    VlcPtr<libvlc_media_t> media(libvlc_media_new_location(instance, url.toUtf8().constData()));
    libvlc_media_player_set_media(player.get(), media.get());
    libvlc_media_player_play(player.get());
    const bool ok = waitFor([&] { return tap.firstAudioNs() != 0; }, 5000);
    const double ms = ok ? msBetween(t0, tap.firstAudioNs()) : NoAudio;
    libvlc_media_player_stop(player.get());
    return ms;
}


struct Figures {
    std::vector<double> values;
    void add(double v) { values.push_back(v); }
    std::optional<double> median() const
    {
        std::vector<double> ok;
        for (double v : values)
            if (v >= 0)
                ok.push_back(v);
        if (ok.empty())
            return std::nullopt;
        std::sort(ok.begin(), ok.end());
        return ok.size() % 2 ? ok[ok.size() / 2] : (ok[ok.size() / 2 - 1] + ok[ok.size() / 2]) / 2;
    }
    QString text() const
    {
        QStringList all;
        for (double v : values)
            all << (v >= 0 ? QString::number(v, 'f', 0) : QStringLiteral("none"));
        const auto m = median();
        return QStringLiteral("median %1 ms   (%2)").arg(m ? QString::number(*m, 'f', 0) : QStringLiteral("-"), all.join(u' '));
    }
};

void print(const char *what, const Figures &f)
{
    std::printf("  %-34s %s\n", what, qPrintable(f.text()));
}

void ratio(const Figures &engine, const Figures &cvlc)
{
    const auto e = engine.median();
    const auto c = cvlc.median();
    if (e && c && *c > 0)
        std::printf("  engine / cvlc                      %.2f  (target: engine <= 350 ms and <= 0.85 x cvlc)\n", *e / *c);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    for (const char *tool : {"icecast2", "ffmpeg", "sox", "lame"}) {
        if (!ServicePeer::haveTool(QLatin1String(tool))) {
            std::printf("%s is not installed: no figures\n", tool);
            return 1;
        }
    }
    QTemporaryDir files;
    const QString tone = files.filePath(QStringLiteral("tone.mp3"));
    if (!ServicePeer::run(QStringLiteral("tone.sh"), {tone, QStringLiteral("30"), QStringLiteral("440")})) {
        std::printf("could not make the test sound\n");
        return 1;
    }

    RealMedia media({QStringLiteral("--quiet")});
    auto made = media.createStationEngine();
    auto *engine = dynamic_cast<VlcStationEngine *>(made.get());
    if (!media.instance() || !engine) {
        std::printf("libvlc did not start\n");
        return 1;
    }
    VlcAudioTap &tap = engine->countDecodedAudio();
    Cvlc cvlc;
    // Long enough for every round on both streams.
    const bool haveCvlc = cvlc.start(60 + 20 * rounds);
    if (!haveCvlc)
        std::printf("cvlc could not be started: no reference figure\n");

    std::printf("Station engine start, URL write to first decoded audio, %d rounds (network caching %d ms)\n",
                rounds, VlcStationEngine::NetworkCachingMs);

    {
        ServicePeer icecast(QStringLiteral("icecast.sh"), {tone}, 600);
        if (!icecast.ok()) {
            std::printf("Icecast did not start: %s\n", qPrintable(icecast.error()));
            return 1;
        }
        // Icecast's burst on connect is what the source sent in the last
        // 64 KB: give the source 5 s to fill it, as on a station that runs.
        QThread::sleep(5);
        const QString url = QStringLiteral("http://127.0.0.1:%1%2").arg(icecast.port()).arg(icecast.value(QStringLiteral("MOUNT")));
        Figures server, eng, bare, ref;
        const QByteArray mount = icecast.value(QStringLiteral("MOUNT")).toUtf8();
        std::vector<std::function<void()>> subjects{
            [&] { server.add(serverFirstByte(icecast.port(), mount)); },
            [&] { eng.add(engineStart(*engine, tap, url)); },
            [&] { bare.add(bareStart(media.instance().get(), url)); },
        };
        if (haveCvlc)
            subjects.push_back([&] { ref.add(cvlc.startTime(url)); });
        // Icecast hands a new listener its burst on its next read from the
        // source, about every 90 ms here: a listener that connects right
        // after another waits longer. Each measurement starts at a random
        // moment and the order turns each round, so no subject gets a
        // better place in that cycle.
        for (int i = 0; i < rounds; ++i) {
            for (size_t k = 0; k < subjects.size(); ++k) {
                QThread::msleep(100 + QRandomGenerator::global()->bounded(100));
                subjects[(k + static_cast<size_t>(i)) % subjects.size()]();
            }
        }
        std::printf("Local Icecast 2 stream (burst on connect):\n");
        print("server's first audio byte", server);
        print("station engine", eng);
        print("bare libvlc, default caching", bare);
        if (haveCvlc) {
            print("cvlc (rc interface, file output)", ref);
            ratio(eng, ref);
        }
    }

    {
        Figures eng, bare, ref;
        const auto once = [&](const std::function<double(const QString &)> &measure) {
            ServicePeer listen(QStringLiteral("listen.sh"), {tone}, 60);
            if (!listen.ok())
                return NoAudio;
            return measure(QStringLiteral("http://127.0.0.1:%1/").arg(listen.port()));
        };
        for (int i = 0; i < rounds; ++i) {
            eng.add(once([&](const QString &url) { return engineStart(*engine, tap, url); }));
            bare.add(once([&](const QString &url) { return bareStart(media.instance().get(), url); }));
            if (haveCvlc)
                ref.add(once([&](const QString &url) { return cvlc.startTime(url); }));
        }
        std::printf("ffmpeg -listen 1 stream (no burst, sound at its own pace):\n");
        print("station engine", eng);
        print("bare libvlc, default caching", bare);
        if (haveCvlc) {
            print("cvlc (rc interface, file output)", ref);
            ratio(eng, ref);
        }
    }
    return 0;
}
