#pragma once

// What the station-start benchmarks share: timing on the steady clock and
// cvlc as the reference player, with its command-line interface on a
// loopback port and its sound going to a FIFO, so only open paths compare.

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <chrono>
#include <functional>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace benchref {

using SteadyClock = std::chrono::steady_clock;
constexpr double NoAudio = -1; // a run that never produced sound

inline double msSince(SteadyClock::time_point t0)
{
    return std::chrono::duration<double, std::milli>(SteadyClock::now() - t0).count();
}

inline double msBetween(SteadyClock::time_point t0, qint64 steadyNs)
{
    return static_cast<double>(steadyNs - std::chrono::duration_cast<std::chrono::nanoseconds>(t0.time_since_epoch()).count()) / 1e6;
}

// Waits, with Qt's events running, until done() or the time is up.
inline bool waitFor(const std::function<bool()> &done, int ms)
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

inline int connectLoopback(int port)
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

} // namespace benchref
