// The probe on real sockets against peers on 127.0.0.1; the default route in
// tables laid out under a root of the test's own, and in the kernel's.
#include "../vlc/ServicePeer.h"
#include "platform/posix/RealConnection.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <arpa/inet.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class tst_connection : public QObject {
    Q_OBJECT
private slots:
    void probeTrueOnAnyAnswerFalseFast()
    {
        if (!ServicePeer::haveTool(u"python3"_s))
            QSKIP("python3 is not installed (see scripts/debian-packages.txt)");
        QTemporaryDir files;
        ServicePeer http(u"http.sh"_s, {files.path()}, 30);
        QVERIFY2(http.ok(), qPrintable(http.error()));
        RealConnection c;
        QVERIFY(c.probe(u"http://127.0.0.1:%1/none"_s.arg(http.port()))); // even a 404 is an answer
        QVERIFY(http.file(u"http.log"_s).contains(u"\"GET /none HTTP/1.0\" 404"_s));

        c.totalLimit = std::chrono::milliseconds(1500);
        const int silent = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); // listening, never served
        sockaddr_in at{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t len = sizeof at;
        ::bind(silent, reinterpret_cast<sockaddr *>(&at), len);
        ::getsockname(silent, reinterpret_cast<sockaddr *>(&at), &len);
        ::listen(silent, 1);
        for (const QString &url : {u"http://127.0.0.1:%1/"_s.arg(ServicePeer::closedPort()), u"http://zarvent-probe.invalid/"_s,
                                   u"http://127.0.0.1:%1/"_s.arg(ntohs(at.sin_port)), QString(), u"not a url"_s}) {
            QElapsedTimer t;
            t.start();
            QVERIFY2(!c.probe(url) && t.elapsed() < 2000, qPrintable(u"%1: %2 ms"_s.arg(url).arg(t.elapsed())));
        }
        ::close(silent);
    }

    void connectedStateFollowsDefaultRoute()
    {
        QTemporaryDir root;
        const auto write = [&](const QString &name, const QByteArray &text) {
            QDir().mkpath(QFileInfo(root.filePath(name)).path());
            QFile f(root.filePath(name));
            return f.open(QIODevice::WriteOnly) && f.write(text) == text.size();
        };
        RealConnection c(root.path());
        QVERIFY(!c.connectedState()); // no tables at all
        const QByteArray header = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
        const QByteArray v4 = "eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n";
        const QByteArray v6 = "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                              "fe800000000000000000000000000001 00000400 00000001 00000000 00000003 ";
        const struct { QByteArray route, ipv6, flags; } cases[] = {
            {"eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n", "", "0x1003"}, // a local network only
            {v4, "", "0x1003"},                                                         // a default route, up
            {v4, "", "0x1002"},                                                         // over an interface that is down
            {QByteArray(v4).replace("0003", "0002"), "", "0x1003"},                     // a route that is not up
            {"", v6 + "eth0\n", "0x1003"},                                              // IPv6 alone will do
            {"", v6 + "lo\n", "0x1003"},                                                // but not over loopback
        };
        QList<bool> got;
        for (const auto &k : cases) {
            QVERIFY(write(u"proc/net/route"_s, header + k.route) && write(u"proc/net/ipv6_route"_s, k.ipv6)
                    && write(u"sys/class/net/eth0/flags"_s, k.flags) && write(u"sys/class/net/lo/flags"_s, k.flags));
            got << c.connectedState();
        }
        QCOMPARE(got, (QList<bool>{false, true, false, false, true, false}));
    }

    void connectedStateAgreesWithTheKernel()
    {
        // The kernel's tables read with a size of 0: a reader that trusts the
        // size sees nothing. ip(8) lists the default routes this machine has.
        if (!ServicePeer::haveTool(u"ip"_s))
            QSKIP("ip(8) from iproute2 is not available");
        QProcess ip;
        ip.start(u"sh"_s, {u"-c"_s, u"{ ip route show default; ip -6 route show default; } | grep -v -e ' dev lo' -e linkdown"_s});
        QVERIFY(ip.waitForFinished(5000));
        QCOMPARE(RealConnection().connectedState(), !ip.readAllStandardOutput().trimmed().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_connection)
#include "tst_connection.moc"
