// The kernel's table against `ip -s -s -j link` and sysfs, then the reader in a namespace of 39 and 41 interfaces.

#include "doubles/ScriptedPlatform.h"
#include "netmon/CIpHelper.h"
#include "platform/MibIfRow.h"
#include "platform/rtnetlink/RealInterfaceTable.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>
#include <QtEndian>

#include <arpa/inet.h>
#include <unistd.h>

namespace {

// A command, bounded in time: its exit code (-1 when it hung or crashed) and its standard output.
std::pair<int, QByteArray> run(const QStringList &command, const QByteArray &input = {})
{
    QProcess p;
    p.start(command[0], command.mid(1));
    p.write(input), p.closeWriteChannel();
    if (!p.waitForFinished(60000))
        p.kill(), p.waitForFinished();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput()};
}

std::vector<MIB_IFROW> fill(RealInterfaceTable &table)
{
    std::uint32_t size = 0;
    std::vector<std::uint8_t> buffer;
    if (table.GetIfTable(nullptr, &size, false) != InterfaceTable::InsufficientBuffer
        || (buffer.resize(size), table.GetIfTable(buffer.data(), &size, false)) != InterfaceTable::NoError)
        return {};
    std::vector<MIB_IFROW> rows((size - 4) / sizeof(MIB_IFROW));
    std::memcpy(rows.data(), buffer.data() + 4, rows.size() * sizeof(MIB_IFROW));
    return rows;
}

QString nameOf(const MIB_IFROW &r) { return QString::fromUtf16(reinterpret_cast<const char16_t *>(r.wszName)); }

// One fill between two looks of ip; where a row and ip's view of its link disagree, empty when none does.
QString checkAgainstIp(RealInterfaceTable &table, std::vector<MIB_IFROW> &rows)
{
    const QJsonArray before = QJsonDocument::fromJson(run({"ip", "-s", "-s", "-j", "link"}).second).array();
    rows = fill(table);
    const QJsonArray after = QJsonDocument::fromJson(run({"ip", "-s", "-s", "-j", "link"}).second).array();
    if (before.isEmpty() || rows.size() != size_t(before.size()) || after.size() != before.size())
        return QString("%1 rows, ip shows %2 then %3").arg(rows.size()).arg(before.size()).arg(after.size());
    for (size_t n = 0; n < rows.size(); ++n) {
        const MIB_IFROW &r = rows[n];
        const QJsonObject b = before[n].toObject(), a = after[n].toObject();
        const QString name = b["ifname"].toString(), state = b["operstate"].toString(), type = b["link_type"].toString();
        const bool up = b["flags"].toArray().contains(QJsonValue("UP"));
        QFile speed("/sys/class/net/" + name + "/speed");
        const long long mbps = speed.open(QIODevice::ReadOnly) ? speed.readAll().trimmed().toLongLong() : 0;
        // ip writes link-layer addresses as hex pairs; other forms (tunnels) are not compared.
        const QString ours = QByteArray(reinterpret_cast<const char *>(r.bPhysAddr), qMin(r.dwPhysAddrLen, 8u)).toHex(':');
        const QString address = b["address"].toString(), pairs = QByteArray::fromHex(address.toLatin1()).toHex(':');
        const auto text = [](auto... v) { return QStringList{QVariant(v).toString()...}.join(' '); };
        // Index, name, description, type, MTU, address, admin and oper status, speed, and three fields always 0.
        const QString got = text(r.dwIndex, nameOf(r), QByteArray(reinterpret_cast<const char *>(r.bDescr), qMin(r.dwDescrLen, 256u)),
                                 r.dwType, r.dwMtu, ours, r.dwAdminStatus, r.dwOperStatus, r.dwSpeed, r.dwLastChange,
                                 r.dwOutQLen, r.dwOutNUcastPkts);
        const QString want = text(b["ifindex"].toInt(), name, name, type == "ether" ? 6 : type == "loopback" ? 24 : type == "ppp" ? 23 : 1,
                                  b["mtu"].toInt(), pairs == address ? pairs.left(23) : ours, up ? 1 : 2,
                                  state == "UP" ? 5 : state == "DORMANT" ? 3 : state == "LOWERLAYERDOWN" ? 2 : state == "DOWN" ? 2 * up
                                      : state == "UNKNOWN" ? 5 * up : 0,
                                  mbps <= 0 ? 0u : mbps > 4294 ? 0xFFFFFFFFu : quint32(mbps * 1000000), 0, 0, 0);
        if (got != want || a["ifindex"] != b["ifindex"])
            return got + " | ip: " + want;
        // A 32-bit counter lies between ip's 64-bit readings before and after, modulo 2^32.
        const std::tuple<quint32, const char *, const char *> counters[] = {
            {r.dwInOctets, "rx", "bytes"}, {r.dwInUcastPkts + r.dwInNUcastPkts, "rx", "packets"},
            {r.dwInNUcastPkts, "rx", "multicast"}, {r.dwInDiscards, "rx", "dropped"}, {r.dwInErrors, "rx", "errors"},
            {r.dwInUnknownProtos, "rx", "nohandler"}, {r.dwOutOctets, "tx", "bytes"}, {r.dwOutUcastPkts, "tx", "packets"},
            {r.dwOutDiscards, "tx", "dropped"}, {r.dwOutErrors, "tx", "errors"}};
        for (const auto &[value, dir, key] : counters) {
            const auto at = [&](const QJsonObject &o) { return quint64(o["stats64"][QLatin1String(dir)][QLatin1String(key)].toDouble()); };
            if (quint32(value - quint32(at(b))) > at(a) - at(b))
                return QString("%1: %2 %3 = %4 outside ip's %5..%6").arg(name, dir, key).arg(value).arg(at(b)).arg(at(a));
        }
    }
    return {};
}

// 200 datagrams of 1200 bytes through the loopback, to a socket of the test's own; how many went.
int loopbackTraffic()
{
    const int rx = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0), tx = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in addr{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t length = sizeof addr;
    char data[1200] = {};
    int sent = 0;
    if (::bind(rx, reinterpret_cast<sockaddr *>(&addr), length) == 0 && ::getsockname(rx, reinterpret_cast<sockaddr *>(&addr), &length) == 0)
        for (int i = 0; i < 200; ++i)
            sent += ::sendto(tx, data, sizeof data, 0, reinterpret_cast<sockaddr *>(&addr), length) == sizeof data,
                (void)::recv(rx, data, sizeof data, MSG_DONTWAIT);
    ::close(tx), ::close(rx);
    return sent;
}

} // namespace

// Inside the namespace that the last test makes, the test runs again, told how many rows it made there.
class tst_realiftable : public QObject {
    Q_OBJECT
    const size_t inNamespace = qEnvironmentVariableIntValue("ZARVENT_NETMON_ROWS");

private slots:
    void sizeFillAndAgreementWithIp()
    {
        RealInterfaceTable table;
        std::uint32_t size = 0, small, larger;
        QCOMPARE(table.GetIfTable(nullptr, &size, false), InterfaceTable::InsufficientBuffer);
        std::vector<std::uint8_t> buffer(size + 860, 0xAB);
        QCOMPARE(table.GetIfTable(buffer.data(), &(small = size - 1), false), InterfaceTable::InsufficientBuffer);
        QCOMPARE(table.GetIfTable(buffer.data(), &(larger = size + 860), true), InterfaceTable::NoError);
        // The count, then 860-byte rows, and nothing written past them.
        QCOMPARE((QList<std::uint32_t>{small, larger, qFromLittleEndian<std::uint32_t>(buffer.data()), (size - 4) % 860, buffer[size]}),
                 (QList<std::uint32_t>{size, size, (size - 4) / 860, 0, 0xAB}));
        // With traffic of the test's own on the loopback, every row as ip sees it.
        std::vector<MIB_IFROW> rows;
        QCOMPARE(loopbackTraffic(), 200);
        const QString diff = checkAgainstIp(table, rows);
        QVERIFY2(diff.isEmpty() && (!inNamespace || rows.size() == inNamespace), qPrintable(diff));
    }

    void readerOnTheRows()
    {
        RealInterfaceTable table;
        const std::vector<MIB_IFROW> rows = fill(table);
        ScriptedDialogs dialogs;
        CIpHelper reader(table, dialogs);
        qint64 error = 0, in = 0, out = 0; // of the first 39 rows
        QSet<quint32> opers;
        for (size_t r = 0; r < std::min<size_t>(39, rows.size()); ++r)
            in += rows[r].dwInOctets, out += rows[r].dwOutOctets, opers << rows[r].dwOperStatus;
        try {
            const std::shared_ptr<CInterfaces> read = reader.Interfaces();
            error = read->Item(read->Count())->InterfaceDescription() != nameOf(rows.back());
        } catch (const basic::RuntimeError &e) {
            error = e.number();
        }
        // 39 rows are read whole, a fortieth overflows; the sums of the 39, only where nothing moves between fills.
        QCOMPARE((QList<qint64>{error, dialogs.shown.size()}), (QList<qint64>{rows.size() > 39 ? basic::Overflow : 0, 0}));
        if (inNamespace)
            QCOMPARE((QList<qint64>{reader.BytesReceived(), reader.BytesSent(), in >= 240000}), (QList<qint64>{in, out, true}));
        // veth's 10000 Mb/s is more than 32 bits hold; in half-down pair 1 one end lacks a carrier (2), one is down (0).
        if (inNamespace == 39)
            QCOMPARE(std::pair(rows[38].dwSpeed, opers), std::pair(0xFFFFFFFFu, QSet<quint32>{0, 2, 5}));
    }

    void namespaceOf39And41Interfaces()
    {
        if (inNamespace)
            return;
        const QString ns = QString("zarvent-netmon-%1").arg(::getpid());
        if (run({"ip", "netns", "add", ns}).first != 0)
            QSKIP("cannot make a network namespace here (ip netns add failed)");
        const std::shared_ptr<void> cleanup(nullptr, [&](void *) { run({"ip", "netns", "del", ns}); });
        // No IPv6 and no addresses: nothing moves on the links but what the test sends. Pair 1 stays half down.
        QCOMPARE(run({"ip", "netns", "exec", ns, "sysctl", "-q", "-w", "net.ipv6.conf.all.disable_ipv6=1",
                      "net.ipv6.conf.default.disable_ipv6=1"}).first, 0);
        QByteArray batch = "link set lo up\n";
        for (int k = 1; k <= 20; ++k) {
            batch += QString("link add va%1 type veth peer name vb%1\nlink set va%1 up\n").arg(k).toLatin1();
            batch += k == 1 ? QByteArray() : QString("link set vb%1 up\n").arg(k).toLatin1();
            if (k < 19)
                continue;
            // 38 veth and the loopback make 39 rows, then 40 veth 41.
            QCOMPARE(run({"ip", "-n", ns, "-batch", "-"}, std::exchange(batch, {})).first, 0);
            qputenv("ZARVENT_NETMON_ROWS", QByteArray::number(2 * k + 1));
            const auto [code, output] = run({"ip", "netns", "exec", ns, QCoreApplication::applicationFilePath()});
            qunsetenv("ZARVENT_NETMON_ROWS");
            QVERIFY2(code == 0, output.constData());
        }
    }
};

QTEST_GUILESS_MAIN(tst_realiftable)
#include "tst_realiftable.moc"
