#include "platform/posix/RealConnection.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A listener on 127.0.0.1 for one client, bounded in time, that answers the
// request (or stays silent) and closes.
class OneShotServer {
public:
    explicit OneShotServer(bool answer)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(m_fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
        ::listen(m_fd, 1);
        socklen_t len = sizeof addr;
        ::getsockname(m_fd, reinterpret_cast<sockaddr *>(&addr), &len);
        m_port = ntohs(addr.sin_port);
        m_thread = std::thread([this, answer] {
            pollfd p{m_fd, POLLIN, 0};
            if (::poll(&p, 1, 5000) <= 0)
                return;
            const int client = ::accept(m_fd, nullptr, nullptr);
            if (client < 0)
                return;
            char buf[1024];
            pollfd c{client, POLLIN, 0};
            if (::poll(&c, 1, 5000) > 0) {
                const ssize_t n = ::recv(client, buf, sizeof buf - 1, 0);
                if (n > 0)
                    request.assign(buf, static_cast<size_t>(n));
            }
            if (answer) {
                const char reply[] = "HTTP/1.0 404 Not Found\r\nContent-Length: 0\r\n\r\n";
                (void)::send(client, reply, sizeof reply - 1, MSG_NOSIGNAL);
            } else {
                ::poll(&c, 1, 3000); // silent until the client gives up
            }
            ::close(client);
        });
    }
    ~OneShotServer()
    {
        m_thread.join();
        ::close(m_fd);
    }
    int port() const { return m_port; }
    std::string request;

private:
    int m_fd = -1;
    int m_port = 0;
    std::thread m_thread;
};

int closedPort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
    socklen_t len = sizeof addr;
    ::getsockname(fd, reinterpret_cast<sockaddr *>(&addr), &len);
    ::close(fd); // bound but never listening, then gone: connections are refused
    return ntohs(addr.sin_port);
}

void write(const QString &path, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(text);
}

} // namespace

class tst_connection : public QObject {
    Q_OBJECT
private slots:
    void probeTrueOnAnyAnswer();
    void probeFalseFast();
    void connectedStateFollowsDefaultRoute();
    void connectedStateAgreesWithTheKernel();
};

void tst_connection::probeTrueOnAnyAnswer()
{
    OneShotServer server(true);
    RealConnection c;
    // Even a 404 is an answer.
    QVERIFY(c.probe(QStringLiteral("http://127.0.0.1:%1/").arg(server.port())));
    QVERIFY(server.request.rfind("GET / HTTP/1.", 0) == 0);
    QVERIFY(server.request.find("Host: 127.0.0.1") != std::string::npos);
}

void tst_connection::probeFalseFast()
{
    RealConnection c;
    c.totalLimit = std::chrono::milliseconds(1500);
    QElapsedTimer t;

    t.start();
    QVERIFY(!c.probe(QStringLiteral("http://127.0.0.1:%1/").arg(closedPort())));
    QVERIFY2(t.elapsed() < 2000, qPrintable(QString::number(t.elapsed())));

    t.start();
    QVERIFY(!c.probe(QStringLiteral("http://zarvent-probe.invalid/")));
    QVERIFY2(t.elapsed() < 2000, qPrintable(QString::number(t.elapsed())));

    {
        OneShotServer silent(false);
        t.start();
        QVERIFY(!c.probe(QStringLiteral("http://127.0.0.1:%1/").arg(silent.port())));
        QVERIFY2(t.elapsed() < 2000, qPrintable(QString::number(t.elapsed())));
    }

    QVERIFY(!c.probe(QString()));
    QVERIFY(!c.probe(QStringLiteral("not a url at all")));
}

void tst_connection::connectedStateFollowsDefaultRoute()
{
    QTemporaryDir root;
    const QString r = root.path();
    const QByteArray header = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
    RealConnection c(r);

    QVERIFY(!c.connectedState()); // no table at all

    // Only a local network route: no default route.
    write(r + "/proc/net/route", header + "eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n");
    write(r + "/sys/class/net/eth0/flags", "0x1003\n");
    QVERIFY(!c.connectedState());

    // A default route over an interface that is up.
    write(r + "/proc/net/route", header + "eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n");
    QVERIFY(c.connectedState());

    // The same route over an interface that is down.
    write(r + "/sys/class/net/eth0/flags", "0x1002\n");
    QVERIFY(!c.connectedState());

    // A default route that is not up itself.
    write(r + "/sys/class/net/eth0/flags", "0x1003\n");
    write(r + "/proc/net/route", header + "eth0\t00000000\t0101A8C0\t0002\t0\t0\t100\t00000000\t0\t0\t0\n");
    QVERIFY(!c.connectedState());

    // IPv6 alone will do, but not over loopback.
    write(r + "/proc/net/route", header);
    write(r + "/proc/net/ipv6_route",
          "00000000000000000000000000000000 00 00000000000000000000000000000000 00 fe800000000000000000000000000001 "
          "00000400 00000001 00000000 00000003     eth0\n");
    QVERIFY(c.connectedState());
    write(r + "/proc/net/ipv6_route",
          "00000000000000000000000000000000 00 00000000000000000000000000000000 00 00000000000000000000000000000000 "
          "ffffffff 00000001 00000000 00200201       lo\n");
    QVERIFY(!c.connectedState());
}

void tst_connection::connectedStateAgreesWithTheKernel()
{
    // The kernel's own tables read with a size of 0; a reader that trusts the
    // size sees nothing. Compare with what ip(8) says of this machine.
    QProcess ip;
    ip.start(QStringLiteral("ip"), {QStringLiteral("route"), QStringLiteral("show"), QStringLiteral("default")});
    if (!ip.waitForFinished(5000) || ip.exitCode() != 0)
        QSKIP("ip(8) from iproute2 is not available");
    QProcess ip6;
    ip6.start(QStringLiteral("ip"), {QStringLiteral("-6"), QStringLiteral("route"), QStringLiteral("show"), QStringLiteral("default")});
    ip6.waitForFinished(5000);
    const QString routes = QString::fromLatin1(ip.readAllStandardOutput() + ip6.readAllStandardOutput());
    bool expected = false;
    for (const QString &line : routes.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const qsizetype dev = words.indexOf(QStringLiteral("dev"));
        if (dev < 0 || dev + 1 >= words.size() || words.at(dev + 1) == QLatin1String("lo") || line.contains(QLatin1String("linkdown")))
            continue;
        QFile flags(QStringLiteral("/sys/class/net/") + words.at(dev + 1) + QStringLiteral("/flags"));
        if (flags.open(QIODevice::ReadOnly) && (QString::fromLatin1(flags.readAll()).trimmed().toUInt(nullptr, 16) & 1))
            expected = true;
    }
    RealConnection c;
    QCOMPARE(c.connectedState(), expected);
}

QTEST_GUILESS_MAIN(tst_connection)
#include "tst_connection.moc"
