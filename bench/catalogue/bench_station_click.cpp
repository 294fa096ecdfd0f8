// A station click to the first decoded audio, median of 10: from the
// button's click through the panel, the catalogue's URL and the real
// engine, on the local Icecast stream (Tafm s1, whose .asx names the mount),
// beside cvlc given the same URL in the same run. Runs itself in a network
// namespace of its own, where the catalogue's port 80 on 127.0.0.1 is free;
// its catalogue points every row at 127.0.0.1.

#include "ServicePeer.h"
#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "platform/Platform.h"
#include "platform/RealMedia.h"
#include "platform/VlcStationEngine.h"
#include "shell/ShellForms.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr double NoAudio = -1;

double msSince(SteadyClock::time_point t0)
{
    return std::chrono::duration<double, std::milli>(SteadyClock::now() - t0).count();
}

double msBetween(SteadyClock::time_point t0, qint64 steadyNs)
{
    return static_cast<double>(steadyNs - std::chrono::duration_cast<std::chrono::nanoseconds>(t0.time_since_epoch()).count()) / 1e6;
}

// Waits, with Qt's events running, until done() or the time is up.
bool waitFor(const std::function<bool()> &done, int ms)
{
    const auto t0 = SteadyClock::now();
    while (!done()) {
        if (msSince(t0) > ms)
            return false;
        QCoreApplication::processEvents();
        QThread::usleep(500);
    }
    return true;
}

int connectLoopback(int port)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<uint16_t>(port));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

// cvlc with its command-line interface on a loopback port and its sound
// going to a FIFO.
class Cvlc {
public:
    bool start(int lifetimeSeconds)
    {
        if (QStandardPaths::findExecutable(QStringLiteral("cvlc")).isEmpty() || !m_dir.isValid())
            return false;
        ::chmod(QFile::encodeName(m_dir.path()).constData(), 0755);
        m_fifo = m_dir.filePath(QStringLiteral("sound"));
        if (::mkfifo(QFile::encodeName(m_fifo).constData(), 0666) != 0)
            return false;
        ::chmod(QFile::encodeName(m_fifo).constData(), 0666);
        m_port = ServicePeer::closedPort();
        QStringList args{QString::number(lifetimeSeconds)};
        if (::getuid() == 0)
            args << QStringLiteral("runuser") << QStringLiteral("-u") << QStringLiteral("nobody") << QStringLiteral("--");
        args << QStringLiteral("cvlc") << QStringLiteral("-I") << QStringLiteral("rc") << QStringLiteral("--rc-host")
             << QStringLiteral("127.0.0.1:%1").arg(m_port) << QStringLiteral("--no-video") << QStringLiteral("--aout")
             << QStringLiteral("afile") << QStringLiteral("--audiofile-file") << m_fifo << QStringLiteral("--no-audiofile-wav");
        m_process.setProgram(QStringLiteral("timeout"));
        m_process.setArguments(args);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.start();
        if (!m_process.waitForStarted(3000))
            return false;
        const auto t0 = SteadyClock::now();
        while ((m_control = connectLoopback(m_port)) < 0 && msSince(t0) < 10000)
            QThread::msleep(50);
        return m_control >= 0;
    }
    ~Cvlc()
    {
        if (m_control >= 0) {
            command("quit");
            ::close(m_control);
        }
        if (m_process.state() != QProcess::NotRunning) {
            m_process.terminate(); // timeout passes it on to cvlc
            if (!m_process.waitForFinished(3000))
                m_process.kill();
            m_process.waitForFinished(1000);
        }
    }
    double startTime(const QString &url)
    {
        const int fd = ::open(QFile::encodeName(m_fifo).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            return NoAudio;
        drain(); // what the interface said so far
        const auto t0 = SteadyClock::now();
        command("add " + url.toUtf8());
        double result = NoAudio;
        bool seen = false;
        while (msSince(t0) < 5000) {
            pollfd p{fd, POLLIN, 0};
            if (::poll(&p, 1, 20) > 0) {
                char buf[65536];
                if (::read(fd, buf, sizeof buf) > 0) {
                    result = msSince(t0);
                    seen = true;
                    break;
                }
            }
        }
        command("stop");
        // Read on until cvlc closes its end, so that it never writes into a
        // pipe nobody reads.
        const auto t1 = SteadyClock::now();
        while (seen && msSince(t1) < 3000) {
            char buf[65536];
            const ssize_t n = ::read(fd, buf, sizeof buf);
            if (n == 0)
                break;
            if (n < 0)
                QThread::msleep(5);
        }
        ::close(fd);
        command("clear");
        QThread::msleep(200);
        return result;
    }

private:
    void command(const QByteArray &line)
    {
        const QByteArray l = line + '\n';
        (void)::send(m_control, l.constData(), static_cast<size_t>(l.size()), MSG_NOSIGNAL);
    }
    void drain()
    {
        char buf[4096];
        while (::recv(m_control, buf, sizeof buf, MSG_DONTWAIT) > 0) {
        }
    }

    QTemporaryDir m_dir;
    QString m_fifo;
    int m_port = 0;
    int m_control = -1;
    QProcess m_process;
};


double median(std::vector<double> v)
{
    v.erase(std::remove(v.begin(), v.end(), NoAudio), v.end());
    if (v.empty())
        return NoAudio;
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

void click(QWidget *w)
{
    const QPointF at(2, 2);
    QMouseEvent down(QEvent::MouseButtonPress, at, w->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent up(QEvent::MouseButtonRelease, at, w->mapToGlobal(at), Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(w, &down);
    QApplication::sendEvent(w, &up);
}

// Into a network namespace of our own, once, with its loopback up.
void enterNamespace(char **argv)
{
    if (std::getenv("ZARVENT_BENCH_NETNS"))
        return;
    ::setenv("ZARVENT_BENCH_NETNS", "1", 1);
    std::vector<char *> args{const_cast<char *>("unshare"), const_cast<char *>("-n"), const_cast<char *>("sh"),
                             const_cast<char *>("-c"), const_cast<char *>("ip link set lo up && exec \"$0\" \"$@\"")};
    for (char **a = argv; *a; ++a)
        args.push_back(*a);
    args.push_back(nullptr);
    ::execvp("unshare", args.data());
    std::fprintf(stderr, "bench_station_click: cannot make a network namespace (needs root)\n");
    std::exit(77);
}

} // namespace

int main(int argc, char **argv)
{
    enterNamespace(argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir files;
    const QString web = files.filePath(QStringLiteral("web"));
    QDir().mkpath(web);
    if (!ServicePeer::run(QStringLiteral("tone.sh"), {files.filePath(QStringLiteral("tone.mp3")), QStringLiteral("6"), QStringLiteral("440")})) {
        std::fprintf(stderr, "no tone (sox, lame)\n");
        return 1;
    }
    ServicePeer icecast(QStringLiteral("icecast.sh"), {files.filePath(QStringLiteral("tone.mp3"))}, 240);
    if (!icecast.ok()) {
        std::fprintf(stderr, "icecast: %s\n", qPrintable(icecast.error()));
        return 1;
    }
    const QString mount = QStringLiteral("http://127.0.0.1:%1%2").arg(icecast.port()).arg(icecast.value(QStringLiteral("MOUNT")));
    QFile asx(web + QStringLiteral("/hi2.asx"));
    if (!asx.open(QIODevice::WriteOnly)
        || asx.write(QStringLiteral("<asx version=\"3.0\"><entry><ref href=\"%1\"/></entry></asx>\n").arg(mount).toUtf8()) <= 0)
        return 1;
    asx.close();
    ServicePeer http(QStringLiteral("http_port.sh"), {web, QStringLiteral("80")}, 240);
    if (!http.ok()) {
        std::fprintf(stderr, "http: %s\n", qPrintable(http.error()));
        return 1;
    }

    std::vector<double> panel, reference;
    {
        RealMedia media{QStringList{QStringLiteral("--quiet")}};
        ScriptedPlatform sp;
        Platform platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, sp.forms, sp.tray, sp.interfaces, media};
        defineForms(platform);
        sp.forms.Show(QStringLiteral("Tafm"));
        auto *p = sp.forms.get<Panel>(QStringLiteral("Tafm"));
        auto *engine = dynamic_cast<VlcStationEngine *>(p->player());
        VlcAudioTap &tap = engine->countDecodedAudio();
        GlowButton *s1 = p->stationButton(QStringLiteral("s1"));
        for (int i = 0; i < 10; ++i) {
            tap.reset();
            const auto t0 = SteadyClock::now();
            click(s1);
            const bool ok = waitFor([&] { return tap.firstAudioNs() != 0; }, 10000);
            panel.push_back(ok ? msBetween(t0, tap.firstAudioNs()) : NoAudio);
            p->stop_Click();
            waitFor([&] { return engine->playState() != 3; }, 2000);
            QThread::msleep(200);
        }
    }
    const QString url = QStringLiteral("http://127.0.0.1/hi2.asx");
    Cvlc cvlc;
    if (cvlc.start(200)) {
        for (int i = 0; i < 10; ++i)
            reference.push_back(cvlc.startTime(url));
    }
    std::printf("station click to first decoded audio, %s via Tafm s1, median of 10\n", qPrintable(url));
    std::printf("  Zarvent panel: %.1f ms (", median(panel));
    for (double v : panel)
        std::printf(" %.0f", v);
    std::printf(" )\n  cvlc:          %.1f ms (", median(reference));
    for (double v : reference)
        std::printf(" %.0f", v);
    std::printf(" )%s\n", reference.empty() ? " not measured: cvlc did not start" : "");
    return 0;
}
