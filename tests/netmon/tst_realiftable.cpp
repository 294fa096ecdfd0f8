// The interface table of the real kernel: the netlink source's rows against
// `ip -s link` and /sys/class/net, the reader on them, loopback traffic the
// test sends, and a network namespace of the test's own with 39 and then 41
// interfaces.

#include "IfTableImage.h"
#include "doubles/ScriptedPlatform.h"
#include "netmon/CIpHelper.h"
#include "platform/rtnetlink/RealInterfaceTable.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>

#include <cstdio>
#include <cstring>
#include <limits>

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

QString sysSpeed(const QString &name)
{
    QFile f(QStringLiteral("/sys/class/net/%1/speed").arg(name));
    if (!f.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLatin1(f.readAll()).trimmed();
}

// One fill of the source, decoded here from the row layout, without the
// reader and its limits. Empty when a call failed.
QJsonArray rawRows(RealInterfaceTable &table)
{
    std::uint32_t size = 0;
    if (table.GetIfTable(nullptr, &size, false) != InterfaceTable::InsufficientBuffer)
        return {};
    QByteArray buffer(static_cast<qsizetype>(size), '\0');
    if (table.GetIfTable(reinterpret_cast<std::uint8_t *>(buffer.data()), &size, false) != InterfaceTable::NoError)
        return {};
    IfRow head;
    head.bytes = buffer.left(4) + QByteArray(IfRow::Size - 4, '\0');
    const std::uint32_t count = head.get(IfRow::wszName);
    QJsonArray rows;
    for (std::uint32_t i = 0; i < count && 4 + (i + 1) * 860 <= size; ++i) {
        IfRow r;
        r.bytes = buffer.mid(4 + i * 860, 860);
        QString name;
        for (int c = 0; c < 256; ++c) {
            const char16_t ch = static_cast<char16_t>(static_cast<std::uint8_t>(r.bytes[2 * c])
                                                      | static_cast<std::uint8_t>(r.bytes[2 * c + 1]) << 8);
            if (ch == 0)
                break;
            name += QChar(ch);
        }
        QJsonObject o;
        o["name"] = name;
        o["description"] = QString::fromLatin1(r.bytes.mid(IfRow::bDescr, static_cast<int>(qMin<std::uint32_t>(r.get(IfRow::dwDescrLen), 256))));
        o["address"] = QString::fromLatin1(
            r.bytes.mid(IfRow::bPhysAddr, static_cast<int>(qMin<std::uint32_t>(r.get(IfRow::dwPhysAddrLen), 8))).toHex(':'));
        const std::pair<const char *, IfRow::Offset> fields[] = {
            {"index", IfRow::dwIndex},           {"type", IfRow::dwType},
            {"mtu", IfRow::dwMtu},               {"speed", IfRow::dwSpeed},
            {"physLen", IfRow::dwPhysAddrLen},   {"admin", IfRow::dwAdminStatus},
            {"oper", IfRow::dwOperStatus},       {"lastChange", IfRow::dwLastChange},
            {"inOctets", IfRow::dwInOctets},     {"inUcast", IfRow::dwInUcastPkts},
            {"inNUcast", IfRow::dwInNUcastPkts}, {"inDiscards", IfRow::dwInDiscards},
            {"inErrors", IfRow::dwInErrors},     {"inUnknown", IfRow::dwInUnknownProtos},
            {"outOctets", IfRow::dwOutOctets},   {"outUcast", IfRow::dwOutUcastPkts},
            {"outNUcast", IfRow::dwOutNUcastPkts}, {"outDiscards", IfRow::dwOutDiscards},
            {"outErrors", IfRow::dwOutErrors},   {"outQLen", IfRow::dwOutQLen},
        };
        for (const auto &[key, at] : fields)
            o[QLatin1String(key)] = static_cast<double>(r.get(at));
        rows.append(o);
    }
    return rows;
}

quint32 u32(const QJsonValue &v)
{
    return static_cast<quint32>(v.toDouble());
}

// A 32-bit counter lies between ip's 64-bit readings before and after,
// modulo 2^32.
bool within(quint32 ours, double before, double after)
{
    const auto b = static_cast<quint64>(before), a = static_cast<quint64>(after);
    return a >= b && quint32(ours - static_cast<quint32>(b)) <= a - b;
}

double stat(const QJsonObject &link, const char *dir, const char *key)
{
    return link[QLatin1String("stats64")][QLatin1String(dir)][QLatin1String(key)].toDouble(0);
}

// Every row against ip's view before and after it was taken. Empty when
// all agree, else the first disagreement.
QString disagreement(const QJsonArray &rows, const QJsonArray &before, const QJsonArray &after, const QJsonObject &speeds)
{
    if (rows.size() != before.size() || before.size() != after.size())
        return QStringLiteral("%1 rows, ip shows %2 then %3").arg(rows.size()).arg(before.size()).arg(after.size());
    for (qsizetype n = 0; n < rows.size(); ++n) {
        const QJsonObject r = rows[n].toObject();
        const QJsonObject b = before[n].toObject();
        const QJsonObject a = after[n].toObject();
        const QString ifname = b["ifname"].toString();
        auto bad = [&](const QString &what) { return ifname + QStringLiteral(": ") + what; };
        if (u32(r["index"]) != u32(b["ifindex"]) || u32(a["ifindex"]) != u32(b["ifindex"]))
            return bad(QStringLiteral("index or order"));
        if (r["name"].toString() != ifname || r["description"].toString() != ifname)
            return bad(QStringLiteral("name ") + r["name"].toString() + QStringLiteral(", description ") + r["description"].toString());
        if (u32(r["mtu"]) != u32(b["mtu"]))
            return bad(QStringLiteral("mtu"));
        const QString linkType = b["link_type"].toString();
        const quint32 type = linkType == QLatin1String("ether") ? 6 : linkType == QLatin1String("loopback") ? 24
                           : linkType == QLatin1String("ppp")   ? 23 : 1;
        if (u32(r["type"]) != type)
            return bad(QStringLiteral("type %1 for %2").arg(u32(r["type"])).arg(linkType));
        // ip writes link-layer addresses as hex pairs; other forms (tunnels) are not compared.
        const QString address = b["address"].toString();
        if (QRegularExpression(QStringLiteral("^[0-9a-f]{2}(:[0-9a-f]{2})*$")).match(address).hasMatch()
            && r["address"].toString() != address.left(8 * 3 - 1))
            return bad(QStringLiteral("address ") + r["address"].toString() + QStringLiteral(" for ") + address);
        QStringList flags;
        for (const QJsonValue &v : b["flags"].toArray())
            flags << v.toString();
        const bool up = flags.contains(QLatin1String("UP"));
        if (u32(r["admin"]) != (up ? 1u : 2u))
            return bad(QStringLiteral("admin status"));
        const QString state = b["operstate"].toString();
        const quint32 oper = state == QLatin1String("UP") ? 5 : state == QLatin1String("DORMANT") ? 3
                           : state == QLatin1String("LOWERLAYERDOWN") ? 2 : state == QLatin1String("DOWN") ? (up ? 2 : 0)
                           : state == QLatin1String("UNKNOWN") ? (up ? 5 : 0) : 0;
        if (u32(r["oper"]) != oper)
            return bad(QStringLiteral("oper status %1 for %2").arg(u32(r["oper"])).arg(state));
        const long long mbps = speeds[ifname].toString().toLongLong();
        const quint32 speed = mbps <= 0 ? 0 : mbps > 4294 ? std::numeric_limits<quint32>::max() : quint32(mbps * 1000000);
        if (u32(r["speed"]) != speed)
            return bad(QStringLiteral("speed %1 for sysfs %2").arg(u32(r["speed"])).arg(speeds[ifname].toString()));
        if (u32(r["lastChange"]) != 0 || u32(r["outQLen"]) != 0 || u32(r["outNUcast"]) != 0)
            return bad(QStringLiteral("a field that is always 0"));
        struct Counter {
            const char *row, *dir, *key;
        };
        const Counter counters[] = {
            {"inOctets", "rx", "bytes"},   {"inNUcast", "rx", "multicast"},  {"inDiscards", "rx", "dropped"},
            {"inErrors", "rx", "errors"},  {"inUnknown", "rx", "nohandler"}, {"outOctets", "tx", "bytes"},
            {"outUcast", "tx", "packets"}, {"outDiscards", "tx", "dropped"}, {"outErrors", "tx", "errors"},
        };
        for (const Counter &c : counters)
            if (!within(u32(r[c.row]), stat(b, c.dir, c.key), stat(a, c.dir, c.key)))
                return bad(QStringLiteral("%1 = %2 outside ip's %3..%4")
                               .arg(c.row).arg(u32(r[c.row])).arg(stat(b, c.dir, c.key)).arg(stat(a, c.dir, c.key)));
        if (!within(u32(r["inUcast"]) + u32(r["inNUcast"]), stat(b, "rx", "packets"), stat(a, "rx", "packets")))
            return bad(QStringLiteral("received packets"));
    }
    return QString();
}

QJsonObject speedsOf(const QJsonArray &rows)
{
    QJsonObject speeds;
    for (const QJsonValue &r : rows)
        speeds[r["name"].toString()] = sysSpeed(r["name"].toString());
    return speeds;
}

// The rows, taken between two looks of ip; again while the set of links
// changed under the test's feet (another program adding one).
struct Snapshot {
    QJsonArray before, rows, after;
};
Snapshot snapshot(RealInterfaceTable &table, const QStringList &ipPrefix = {})
{
    Snapshot s;
    for (int attempt = 0; attempt < 3; ++attempt) {
        s.before = ipLinks(ipPrefix);
        s.rows = rawRows(table);
        s.after = ipLinks(ipPrefix);
        if (s.before.size() == s.after.size() && s.rows.size() == s.before.size())
            break;
    }
    return s;
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

// The child's part, run inside the namespace: frames out of rows 38 to 41,
// a direct snapshot of the table, then the reader. Prints one JSON object.
int childMain(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    RealInterfaceTable table;
    const QJsonArray first = rawRows(table);
    for (qsizetype r = 37; r < first.size() && r < 41; ++r)
        if (!sendFrames(first[r]["name"].toString(), ChildFrames))
            return 3;
    const QJsonArray rows = rawRows(table);
    qint64 sum39In = 0, sum39Out = 0, sumIn = 0, sumOut = 0;
    for (qsizetype r = 0; r < rows.size(); ++r) {
        (r < 39 ? sum39In : sumIn) += u32(rows[r]["inOctets"]);
        (r < 39 ? sum39Out : sumOut) += u32(rows[r]["outOctets"]);
    }
    ScriptedDialogs dialogs;
    CIpHelper helper(table, dialogs);
    int error = 0;
    QJsonArray descriptions;
    try {
        const std::shared_ptr<CInterfaces> col = helper.Interfaces();
        for (const CInterfaces::Record &i : *col)
            descriptions.append(i->InterfaceDescription());
    } catch (const basic::RuntimeError &e) {
        error = e.number();
    }
    const QJsonObject report{
        {"rows", rows},
        {"speeds", speedsOf(rows)},
        {"error", error},
        {"messages", dialogs.shown.size()},
        {"descriptions", descriptions},
        {"bytesReceived", helper.BytesReceived()},
        {"bytesSent", helper.BytesSent()},
        {"sum39Received", sum39In},
        {"sum39Sent", sum39Out},
        {"sumAllReceived", sum39In + sumIn},
        {"sumAllSent", sum39Out + sumOut},
    };
    std::fputs(QJsonDocument(report).toJson(QJsonDocument::Compact).constData(), stdout);
    return 0;
}

// A namespace of the test's own, deleted by name whatever the test's end.
class Namespace {
public:
    static constexpr const char *Prefix = "zarvent-netmon-";

    Namespace() : name(QLatin1String(Prefix) + QString::number(::getpid()))
    {
        // Leftovers of runs of this test that died before their cleanup.
        const QRegularExpression ours(QStringLiteral("^%1(\\d+)\\b").arg(QLatin1String(Prefix)));
        for (const QString &line : QString::fromLatin1(run(QStringLiteral("ip"), {"netns", "list"})).split(QLatin1Char('\n'))) {
            const QRegularExpressionMatch m = ours.match(line);
            if (m.hasMatch() && !QFile::exists(QStringLiteral("/proc/") + m.captured(1)))
                run(QStringLiteral("ip"), {"netns", "del", m.captured(0)});
        }
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
    std::vector<std::uint8_t> buffer(size + 860, 0xAB);
    std::uint32_t small = size - 1;
    QCOMPARE(table.GetIfTable(buffer.data(), &small, false), InterfaceTable::InsufficientBuffer);
    QCOMPARE(small, size);
    std::uint32_t larger = size + 860;
    QCOMPARE(table.GetIfTable(buffer.data(), &larger, true), InterfaceTable::NoError);
    QCOMPARE(larger, size);
    QCOMPARE(buffer[size], std::uint8_t(0xAB)); // nothing written past the table
    std::uint32_t count;
    std::memcpy(&count, buffer.data(), 4);
    QCOMPARE(count, (size - 4) / 860);
    std::uint32_t last = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t index;
        std::memcpy(&index, buffer.data() + 4 + i * 860 + 512, 4);
        QVERIFY(index > last); // in index order when asked
        last = index;
    }
}

void tst_realiftable::agreesWithIpAndSysfs()
{
    RealInterfaceTable table;
    const Snapshot s = snapshot(table);
    QVERIFY2(!s.before.isEmpty(), "ip -j -s link gave nothing");
    const QString diff = disagreement(s.rows, s.before, s.after, speedsOf(s.rows));
    QVERIFY2(diff.isEmpty(), qPrintable(diff));
}

void tst_realiftable::loopbackTrafficCounts()
{
    RealInterfaceTable table;
    auto loopback = [&]() {
        for (const QJsonValue &r : rawRows(table))
            if (u32(r["type"]) == 24)
                return r.toObject();
        return QJsonObject();
    };
    const QJsonObject before = loopback();
    QVERIFY2(!before.isEmpty(), "no loopback interface in the table");
    QCOMPARE(u32(before["admin"]), 1u);

    // Datagrams to a socket of the test's own on 127.0.0.1.
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

    const QJsonObject after = loopback();
    auto rise = [&](const char *key) { return quint32(u32(after[QLatin1String(key)]) - u32(before[QLatin1String(key)])); };
    QVERIFY(rise("inOctets") >= quint32(Count * Payload));
    QVERIFY(rise("outOctets") >= quint32(Count * Payload));
    QVERIFY(rise("inUcast") >= quint32(Count));
    QVERIFY(rise("outUcast") >= quint32(Count));
}

void tst_realiftable::namespaceOf39And41Interfaces()
{
    Namespace ns;
    if (!ns.made)
        QSKIP(qPrintable(QStringLiteral("cannot make a network namespace here (ip netns add: %1)").arg(ns.why.trimmed())));
    // No IPv6 and no addresses: nothing moves on the links but what the child sends.
    QVERIFY(ns.exec({"sysctl", "-q", "-w", "net.ipv6.conf.all.disable_ipv6=1", "net.ipv6.conf.default.disable_ipv6=1"}));

    auto addPairs = [&](int from, int to) {
        QTemporaryFile batch;
        if (!batch.open())
            return false;
        for (int k = from; k <= to; ++k)
            batch.write(QStringLiteral("link add va%1 type veth peer name vb%1\n").arg(k).toLatin1());
        for (int k = from; k <= to; ++k) {
            // Pair 1 stays half down, for the statuses that gives.
            if (k != 1)
                batch.write(QStringLiteral("link set vb%1 up\n").arg(k).toLatin1());
            batch.write(QStringLiteral("link set va%1 up\n").arg(k).toLatin1());
        }
        batch.close();
        return ns.ip({"-batch", batch.fileName()});
    };
    QVERIFY(ns.ip({"link", "set", "lo", "up"}));
    QVERIFY(addPairs(1, 19));

    const QStringList inNs{"-n", ns.name};
    auto child = [&] {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("ZARVENT_NETMON_CHILD"), QStringLiteral("1"));
        QString errors;
        const QByteArray out = run(QStringLiteral("ip"),
                                   {"netns", "exec", ns.name, QCoreApplication::applicationFilePath()}, env, &errors);
        if (out.isNull())
            qWarning("the child failed: %s", qPrintable(errors));
        return QJsonDocument::fromJson(out).object();
    };

    // 38 veth and the loopback: 39 rows, read whole.
    const QJsonArray before = ipLinks(inNs);
    QJsonObject report = child();
    const QJsonArray after = ipLinks(inNs);
    QVERIFY2(!report.isEmpty(), "the child in the namespace gave no report");
    const QJsonArray rows = report["rows"].toArray();
    QCOMPARE(rows.size(), 39);
    const QString diff = disagreement(rows, before, after, report["speeds"].toObject());
    QVERIFY2(diff.isEmpty(), qPrintable(diff));
    QCOMPARE(report["error"].toInt(), 0);
    QCOMPARE(report["messages"].toInt(), 0);
    const QJsonArray descriptions = report["descriptions"].toArray();
    QCOMPARE(descriptions.size(), 39);
    for (qsizetype r = 0; r < 39; ++r)
        QCOMPARE(descriptions[r].toString(), before[r]["ifname"].toString());
    QCOMPARE(report["bytesReceived"].toInteger(), report["sumAllReceived"].toInteger());
    QCOMPARE(report["bytesSent"].toInteger(), report["sumAllSent"].toInteger());
    QVERIFY(report["bytesReceived"].toInteger() >= 2 * ChildFrames * ChildFrameSize);
    // veth reports 10000 Mb/s, more than the row's 32 bits hold.
    QCOMPARE(u32(rows[38]["speed"]), std::numeric_limits<quint32>::max());
    // The half-down pair: one end up without a carrier, the other down.
    QSet<quint32> opers;
    for (const QJsonValue &r : rows)
        opers.insert(u32(r["oper"]));
    QCOMPARE(opers, (QSet<quint32>{0, 2, 5}));

    // 40 veth and the loopback: 41 rows, and the reader fails on the
    // fortieth with the 39 rows before it summed.
    QVERIFY(addPairs(20, 20));
    report = child();
    QVERIFY2(!report.isEmpty(), "the child in the namespace gave no report");
    QCOMPARE(report["rows"].toArray().size(), 41);
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
