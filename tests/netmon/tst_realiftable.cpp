// The reader on the kernel's own tables: this machine's interfaces against
// `ip -s link` and /sys/class/net, loopback traffic the test sends, and a
// network namespace of its own with 39 and then 41 interfaces.

#include "doubles/ScriptedPlatform.h"
#include "netmon/CIpHelper.h"
#include "platform/RealInterfaceTable.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryFile>
#include <QTest>

#include <cstdio>
#include <cstring>

#include <arpa/inet.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int ChildFrames = 5;
constexpr int ChildFrameSize = 1000;

// Runs a command, bounded in time; its standard output, or a null array
// when it failed.
QByteArray run(const QString &program, const QStringList &args, const QProcessEnvironment &env = {},
               QString *errors = nullptr)
{
    QProcess p;
    if (!env.isEmpty())
        p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished();
        return {};
    }
    if (errors)
        *errors = QString::fromLocal8Bit(p.readAllStandardError());
    if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return {};
    QByteArray out = p.readAllStandardOutput();
    return out.isNull() ? QByteArray("") : out;
}

QJsonArray ipLinks(const QStringList &prefix = {})
{
    return QJsonDocument::fromJson(run(QStringLiteral("ip"), prefix + QStringList{"-s", "-s", "-j", "link"})).array();
}

QJsonObject recordJson(const CInterface &i)
{
    return QJsonObject{
        {"description", i.InterfaceDescription()},
        {"name", i.InterfaceName()},
        {"index", i.InterfaceIndex()},
        {"type", i.InterfaceType()},
        {"mtu", i.MaximumTransmissionUnit()},
        {"speed", i.Speed()},
        {"address", i.AdapterAddress()},
        {"admin", i.AdminStatus()},
        {"oper", i.OperationalStatus()},
        {"lastChange", i.LastChange()},
        {"inOctets", i.OctetsReceived()},
        {"inUcast", i.UnicastPacketsReceived()},
        {"inNUcast", i.NonunicastPacketsReceived()},
        {"inDiscards", i.DiscardedIncomingPackets()},
        {"inErrors", i.IncomingErrors()},
        {"inUnknown", i.UnknownProtocolPackets()},
        {"outOctets", i.OctetsSent()},
        {"outUcast", i.UnicastPacketsSent()},
        {"outNUcast", i.NonunicastPacketsSent()},
        {"outDiscards", i.DiscardedOutgoingPackets()},
        {"outErrors", i.OutgoingErrors()},
        {"outQLen", i.OutputQueueLength()},
    };
}

QString sysSpeed(const QString &name)
{
    QFile f(QStringLiteral("/sys/class/net/%1/speed").arg(name));
    if (!f.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLatin1(f.readAll()).trimmed();
}

// What the address field of a row should read, from ip's "aa:bb:..".
QString expectedAddress(const QString &ipAddress)
{
    if (ipAddress.isEmpty())
        return QString();
    QStringList parts;
    const QStringList bytes = ipAddress.split(QLatin1Char(':'));
    for (qsizetype k = 0; k < bytes.size() && k < 8; ++k) {
        const uint b = bytes[k].toUInt(nullptr, 16);
        parts << (b == 0 ? QStringLiteral("00") : QString::number(b, 16).toUpper());
    }
    return parts.join(QLatin1Char('-'));
}

// A 32-bit counter of ours lies between ip's 64-bit readings before and
// after, modulo 2^32.
bool within(qint64 ours, double before, double after)
{
    const auto b = static_cast<quint64>(before), a = static_cast<quint64>(after);
    const quint32 fromBefore = static_cast<quint32>(ours) - static_cast<quint32>(b);
    return a >= b && fromBefore <= a - b;
}

double stat(const QJsonObject &link, const char *dir, const char *key)
{
    return link[QLatin1String("stats64")][QLatin1String(dir)][QLatin1String(key)].toDouble(0);
}

// Every record against ip's view before and after the read. Empty when all
// agree, else the first disagreement.
QString disagreement(const QJsonArray &records, const QJsonArray &before, const QJsonArray &after,
                     const QJsonObject &speeds)
{
    if (records.size() != before.size() || before.size() != after.size())
        return QStringLiteral("%1 records, ip shows %2 then %3").arg(records.size()).arg(before.size()).arg(after.size());
    for (qsizetype n = 0; n < records.size(); ++n) {
        const QJsonObject r = records[n].toObject();
        const QJsonObject b = before[n].toObject();
        const QJsonObject a = after[n].toObject();
        const QString ifname = b["ifname"].toString();
        auto bad = [&](const QString &what) { return ifname + QStringLiteral(": ") + what; };
        if (r["index"].toInt() != b["ifindex"].toInt() || a["ifindex"].toInt() != b["ifindex"].toInt())
            return bad(QStringLiteral("index or order"));
        if (r["description"].toString() != ifname)
            return bad(QStringLiteral("description ") + r["description"].toString());
        QString wide(512, QChar(0));
        for (qsizetype i = 0; i < ifname.size(); ++i)
            wide[2 * i] = ifname[i];
        if (r["name"].toString() != wide)
            return bad(QStringLiteral("name"));
        if (r["mtu"].toInt() != b["mtu"].toInt())
            return bad(QStringLiteral("mtu"));
        const QString linkType = b["link_type"].toString();
        const int type = linkType == QLatin1String("ether") ? 6 : linkType == QLatin1String("loopback") ? 24
                       : linkType == QLatin1String("ppp")   ? 23 : 1;
        if (r["type"].toInt() != type)
            return bad(QStringLiteral("type %1 for %2").arg(r["type"].toInt()).arg(linkType));
        const QString address = b["address"].toString();
        if (address.count(QLatin1Char(':')) > 0 && r["address"].toString() != expectedAddress(address))
            return bad(QStringLiteral("address ") + r["address"].toString() + QStringLiteral(" for ") + address);
        const QStringList flags = [&] {
            QStringList l;
            for (const QJsonValue &v : b["flags"].toArray())
                l << v.toString();
            return l;
        }();
        const bool up = flags.contains(QLatin1String("UP"));
        if (r["admin"].toInt() != (up ? 1 : 2))
            return bad(QStringLiteral("admin status"));
        const QString state = b["operstate"].toString();
        const int oper = state == QLatin1String("UP") ? 5 : state == QLatin1String("DORMANT") ? 3
                       : state == QLatin1String("LOWERLAYERDOWN") ? 2 : state == QLatin1String("DOWN") ? (up ? 2 : 0)
                       : state == QLatin1String("UNKNOWN") ? (up ? 5 : 0) : 0;
        if (r["oper"].toInt() != oper)
            return bad(QStringLiteral("oper status %1 for %2").arg(r["oper"].toInt()).arg(state));
        const long long mbps = speeds[ifname].toString().toLongLong();
        const qint32 speed = mbps <= 0 ? 0 : mbps > 4294 ? -1 : static_cast<qint32>(static_cast<quint32>(mbps * 1000000));
        if (r["speed"].toInt() != speed)
            return bad(QStringLiteral("speed %1 for sysfs %2").arg(r["speed"].toInt()).arg(speeds[ifname].toString()));
        if (r["lastChange"].toDouble() != 0 || r["outQLen"].toInt() != 0 || r["outNUcast"].toInt() != 0)
            return bad(QStringLiteral("a field that is always 0"));
        struct Counter {
            const char *record;
            const char *dir;
            const char *key;
        };
        const Counter counters[] = {
            {"inOctets", "rx", "bytes"},        {"inNUcast", "rx", "multicast"}, {"inDiscards", "rx", "dropped"},
            {"inErrors", "rx", "errors"},       {"inUnknown", "rx", "nohandler"}, {"outOctets", "tx", "bytes"},
            {"outUcast", "tx", "packets"},      {"outDiscards", "tx", "dropped"}, {"outErrors", "tx", "errors"},
        };
        for (const Counter &c : counters)
            if (!within(r[c.record].toInteger(), stat(b, c.dir, c.key), stat(a, c.dir, c.key)))
                return bad(QStringLiteral("%1 = %2 outside ip's %3..%4")
                               .arg(c.record)
                               .arg(r[c.record].toInteger())
                               .arg(stat(b, c.dir, c.key))
                               .arg(stat(a, c.dir, c.key)));
        const qint64 packets = static_cast<quint32>(r["inUcast"].toInteger() + r["inNUcast"].toInteger());
        if (!within(packets, stat(b, "rx", "packets"), stat(a, "rx", "packets")))
            return bad(QStringLiteral("received packets"));
    }
    return QString();
}

struct RawRow {
    QString name;
    quint32 inOctets, outOctets;
};

// The source's table taken directly, without the reader's limits.
QList<RawRow> rawTable(RealInterfaceTable &table)
{
    std::uint32_t size = 0;
    if (table.GetIfTable(nullptr, &size, false) != InterfaceTable::InsufficientBuffer)
        return {};
    std::vector<std::uint8_t> buffer(size);
    if (table.GetIfTable(buffer.data(), &size, false) != InterfaceTable::NoError)
        return {};
    auto u32 = [&](std::size_t at) {
        std::uint32_t v;
        std::memcpy(&v, buffer.data() + at, 4);
        return v;
    };
    QList<RawRow> rows;
    for (std::uint32_t i = 0; i < u32(0); ++i) {
        const std::size_t at = 4 + i * 860;
        rows.append({QString::fromLatin1(reinterpret_cast<const char *>(buffer.data() + at + 604),
                                         static_cast<qsizetype>(u32(at + 600))),
                     u32(at + 552), u32(at + 576)});
    }
    return rows;
}

// Broadcast frames of an unused ether type out of one interface.
bool sendFrames(const QString &name, int count)
{
    const int fd = ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons(ETH_P_ALL));
    if (fd < 0)
        return false;
    sockaddr_ll to{};
    to.sll_family = AF_PACKET;
    to.sll_ifindex = static_cast<int>(if_nametoindex(name.toLatin1().constData()));
    to.sll_halen = ETH_ALEN;
    std::memset(to.sll_addr, 0xFF, ETH_ALEN);
    unsigned char frame[ChildFrameSize] = {};
    std::memset(frame, 0xFF, ETH_ALEN);
    frame[6] = 0x02;
    frame[12] = 0x88;
    frame[13] = 0xB5;
    bool ok = to.sll_ifindex != 0;
    for (int i = 0; ok && i < count; ++i)
        ok = ::sendto(fd, frame, sizeof frame, 0, reinterpret_cast<sockaddr *>(&to), sizeof to) == sizeof frame;
    ::close(fd);
    return ok;
}

// The child's part, run inside the namespace: traffic out of rows 38 to 41,
// a direct snapshot of the table, then the reader. Prints one JSON object.
int childMain(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    RealInterfaceTable table;
    const QList<RawRow> before = rawTable(table);
    for (qsizetype r = 37; r < before.size() && r < 41; ++r)
        if (!sendFrames(before[r].name, ChildFrames))
            return 3;
    const QList<RawRow> snapshot = rawTable(table);
    qint64 sum39In = 0, sum39Out = 0, sumIn = 0, sumOut = 0;
    QJsonObject speeds;
    for (qsizetype r = 0; r < snapshot.size(); ++r) {
        (r < 39 ? sum39In : sumIn) += snapshot[r].inOctets;
        (r < 39 ? sum39Out : sumOut) += snapshot[r].outOctets;
        speeds[snapshot[r].name] = sysSpeed(snapshot[r].name);
    }
    ScriptedDialogs dialogs;
    CIpHelper helper(table, dialogs);
    int error = 0;
    QJsonArray records;
    try {
        for (const CInterfaces::Record &i : *helper.Interfaces())
            records.append(recordJson(*i));
    } catch (const basic::RuntimeError &e) {
        error = e.number();
    }
    const QJsonObject report{
        {"rows", snapshot.size()},
        {"error", error},
        {"messages", dialogs.shown.size()},
        {"bytesReceived", helper.BytesReceived()},
        {"bytesSent", helper.BytesSent()},
        {"sum39Received", sum39In},
        {"sum39Sent", sum39Out},
        {"sumAllReceived", sum39In + sumIn},
        {"sumAllSent", sum39Out + sumOut},
        {"records", records},
        {"speeds", speeds},
    };
    std::fputs(QJsonDocument(report).toJson(QJsonDocument::Compact).constData(), stdout);
    return 0;
}

// A namespace of the test's own, deleted by name whatever happens.
class Namespace {
public:
    Namespace() : name(QStringLiteral("zarvent-netmon-%1").arg(::getpid()))
    {
        run(QStringLiteral("ip"), {"netns", "del", name}); // a leftover of an earlier run of this pid
        made = !run(QStringLiteral("ip"), {"netns", "add", name}, {}, &why).isNull();
    }
    ~Namespace()
    {
        if (made)
            run(QStringLiteral("ip"), {"netns", "del", name});
    }
    bool ip(const QStringList &args) const { return !run(QStringLiteral("ip"), QStringList{"-n", name} + args).isNull(); }
    bool exec(const QStringList &command) const
    {
        return !run(QStringLiteral("ip"), QStringList{"netns", "exec", name} + command).isNull();
    }
    QString name;
    QString why;
    bool made = false;
};

} // namespace

class tst_realiftable : public QObject {
    Q_OBJECT
private slots:
    void sizeAndFillCalls();
    void agreesWithIpAndSysfs();
    void loopbackTrafficCounts();
    void namespaceOf39And41Interfaces();
};

void tst_realiftable::sizeAndFillCalls()
{
    RealInterfaceTable table;
    std::uint32_t size = 0;
    QCOMPARE(table.GetIfTable(nullptr, &size, false), InterfaceTable::InsufficientBuffer);
    QVERIFY(size >= 4 + 860);
    QCOMPARE((size - 4) % 860, 0u);
    std::vector<std::uint8_t> buffer(size + 860);
    std::uint32_t small = size - 1;
    QCOMPARE(table.GetIfTable(buffer.data(), &small, false), InterfaceTable::InsufficientBuffer);
    QCOMPARE(small, size);
    std::uint32_t exact = size;
    QCOMPARE(table.GetIfTable(buffer.data(), &exact, true), InterfaceTable::NoError);
    std::uint32_t count;
    std::memcpy(&count, buffer.data(), 4);
    QCOMPARE(count, (size - 4) / 860);
    std::uint32_t last = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t index;
        std::memcpy(&index, buffer.data() + 4 + i * 860 + 512, 4);
        QVERIFY(index > last); // sorted when asked
        last = index;
    }
}

void tst_realiftable::agreesWithIpAndSysfs()
{
    const QJsonArray before = ipLinks();
    QVERIFY2(!before.isEmpty(), "ip -j -s link gave nothing");
    RealInterfaceTable table;
    ScriptedDialogs dialogs;
    CIpHelper helper(table, dialogs);
    const auto col = helper.Interfaces();
    const QJsonArray after = ipLinks();

    QJsonArray records;
    QJsonObject speeds;
    qint64 in = 0, out = 0;
    for (const CInterfaces::Record &i : *col) {
        records.append(recordJson(*i));
        speeds[i->InterfaceDescription()] = sysSpeed(i->InterfaceDescription());
        in += i->OctetsReceived();
        out += i->OctetsSent();
    }
    const QString diff = disagreement(records, before, after, speeds);
    QVERIFY2(diff.isEmpty(), qPrintable(diff));
    QCOMPARE(helper.BytesReceived(), in);
    QCOMPARE(helper.BytesSent(), out);
    QVERIFY(dialogs.shown.isEmpty());
}

void tst_realiftable::loopbackTrafficCounts()
{
    RealInterfaceTable table;
    ScriptedDialogs dialogs;
    CIpHelper helper(table, dialogs);
    auto loopback = [&]() -> CInterfaces::Record {
        for (const CInterfaces::Record &i : *helper.Interfaces())
            if (i->InterfaceType() == 24)
                return i;
        return nullptr;
    };
    const CInterfaces::Record before = loopback();
    QVERIFY2(before, "no loopback interface in the table");
    QCOMPARE(before->AdminStatus(), 1);

    // Datagrams to a socket of our own on 127.0.0.1.
    const int rx = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const int tx = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    QCOMPARE(::bind(rx, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
    socklen_t len = sizeof addr;
    ::getsockname(rx, reinterpret_cast<sockaddr *>(&addr), &len);
    constexpr int Count = 200, Payload = 1200;
    char data[Payload] = {};
    int sent = 0;
    for (int i = 0; i < Count; ++i) {
        if (::sendto(tx, data, sizeof data, 0, reinterpret_cast<sockaddr *>(&addr), sizeof addr) == Payload)
            ++sent;
        char sink[Payload];
        (void)::recv(rx, sink, sizeof sink, MSG_DONTWAIT);
    }
    ::close(tx);
    ::close(rx);
    QCOMPARE(sent, Count);

    const CInterfaces::Record after = loopback();
    QVERIFY(after);
    auto rise = [](qint32 from, qint32 to) { return static_cast<quint32>(to) - static_cast<quint32>(from); };
    QVERIFY(rise(before->OctetsReceived(), after->OctetsReceived()) >= quint32(Count * Payload));
    QVERIFY(rise(before->OctetsSent(), after->OctetsSent()) >= quint32(Count * Payload));
    QVERIFY(rise(before->UnicastPacketsReceived(), after->UnicastPacketsReceived()) >= quint32(Count));
    QVERIFY(rise(before->UnicastPacketsSent(), after->UnicastPacketsSent()) >= quint32(Count));
}

void tst_realiftable::namespaceOf39And41Interfaces()
{
    Namespace ns;
    if (!ns.made)
        QSKIP(qPrintable(QStringLiteral("cannot make a network namespace here (ip netns add: %1)").arg(ns.why.trimmed())));
    // No IPv6, no addresses: nothing moves on the links but what the child sends.
    QVERIFY(ns.exec({"sysctl", "-q", "-w", "net.ipv6.conf.all.disable_ipv6=1", "net.ipv6.conf.default.disable_ipv6=1"}));

    auto addPairs = [&](int from, int to) {
        QTemporaryFile batch;
        if (!batch.open())
            return false;
        for (int k = from; k <= to; ++k)
            batch.write(QStringLiteral("link add va%1 type veth peer name vb%1\n").arg(k).toLatin1());
        for (int k = from; k <= to; ++k) {
            // Pair 1 stays half down, for the two statuses that gives.
            if (k != 1)
                batch.write(QStringLiteral("link set vb%1 up\n").arg(k).toLatin1());
            batch.write(QStringLiteral("link set va%1 up\n").arg(k).toLatin1());
        }
        batch.close();
        return ns.ip({"-batch", batch.fileName()});
    };
    QVERIFY(ns.ip({"link", "set", "lo", "up"}));
    QVERIFY(addPairs(1, 19));

    auto child = [&](QJsonArray *ipBefore, QJsonArray *ipAfter) {
        if (ipBefore)
            *ipBefore = ipLinks({"-n", ns.name});
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("ZARVENT_NETMON_CHILD"), QStringLiteral("1"));
        QString errors;
        const QByteArray out = run(QStringLiteral("ip"),
                                   {"netns", "exec", ns.name, QCoreApplication::applicationFilePath()}, env, &errors);
        if (ipAfter)
            *ipAfter = ipLinks({"-n", ns.name});
        if (out.isNull())
            qWarning("child failed: %s", qPrintable(errors));
        return QJsonDocument::fromJson(out).object();
    };

    // 38 veth and the loopback: 39 rows, read whole.
    QJsonArray before, after;
    QJsonObject report = child(&before, &after);
    QVERIFY2(!report.isEmpty(), "the child in the namespace gave no report");
    QCOMPARE(report["rows"].toInt(), 39);
    QCOMPARE(report["error"].toInt(), 0);
    QCOMPARE(report["messages"].toInt(), 0);
    const QJsonArray records = report["records"].toArray();
    QCOMPARE(records.size(), 39);
    const QString diff = disagreement(records, before, after, report["speeds"].toObject());
    QVERIFY2(diff.isEmpty(), qPrintable(diff));
    QCOMPARE(report["bytesReceived"].toInteger(), report["sumAllReceived"].toInteger());
    QCOMPARE(report["bytesSent"].toInteger(), report["sumAllSent"].toInteger());
    QVERIFY(report["bytesReceived"].toInteger() >= 2 * ChildFrames * ChildFrameSize);
    // The half-down pair: one end up without a carrier, the other down.
    QSet<int> opers;
    for (const QJsonValue &r : records)
        opers.insert(r.toObject()["oper"].toInt());
    QCOMPARE(opers, (QSet<int>{0, 2, 5}));

    // 40 veth and the loopback: 41 rows, and the reader fails on the
    // fortieth with 39 rows summed.
    QVERIFY(addPairs(20, 20));
    report = child(nullptr, nullptr);
    QVERIFY2(!report.isEmpty(), "the child in the namespace gave no report");
    QCOMPARE(report["rows"].toInt(), 41);
    QCOMPARE(report["error"].toInt(), int(basic::Overflow));
    QCOMPARE(report["bytesReceived"].toInteger(), report["sum39Received"].toInteger());
    QCOMPARE(report["bytesSent"].toInteger(), report["sum39Sent"].toInteger());
    QVERIFY(report["sumAllReceived"].toInteger() >= report["sum39Received"].toInteger() + 2 * ChildFrames * ChildFrameSize);
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("ZARVENT_NETMON_CHILD"))
        return childMain(argc, argv);
    QCoreApplication app(argc, argv);
    tst_realiftable test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_realiftable.moc"
