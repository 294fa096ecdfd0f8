#include "platform/rtnetlink/RealInterfaceTable.h"
#include "platform/MibIfRow.h"

#include <QString>

#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A file descriptor that closes itself.
class Fd {
public:
    explicit Fd(int fd) : m_fd(fd) {}
    ~Fd()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Fd(const Fd &) = delete;
    Fd &operator=(const Fd &) = delete;
    int get() const { return m_fd; }
    int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd;
};

// Offsets of the row's fields, from the one layout the reader uses too.
namespace row {
constexpr std::size_t wszName = offsetof(MIB_IFROW, wszName);
constexpr std::size_t dwIndex = offsetof(MIB_IFROW, dwIndex);
constexpr std::size_t dwType = offsetof(MIB_IFROW, dwType);
constexpr std::size_t dwMtu = offsetof(MIB_IFROW, dwMtu);
constexpr std::size_t dwSpeed = offsetof(MIB_IFROW, dwSpeed);
constexpr std::size_t dwPhysAddrLen = offsetof(MIB_IFROW, dwPhysAddrLen);
constexpr std::size_t bPhysAddr = offsetof(MIB_IFROW, bPhysAddr);
constexpr std::size_t dwAdminStatus = offsetof(MIB_IFROW, dwAdminStatus);
constexpr std::size_t dwOperStatus = offsetof(MIB_IFROW, dwOperStatus);
constexpr std::size_t dwLastChange = offsetof(MIB_IFROW, dwLastChange);
constexpr std::size_t dwInOctets = offsetof(MIB_IFROW, dwInOctets);
constexpr std::size_t dwInUcastPkts = offsetof(MIB_IFROW, dwInUcastPkts);
constexpr std::size_t dwInNUcastPkts = offsetof(MIB_IFROW, dwInNUcastPkts);
constexpr std::size_t dwInDiscards = offsetof(MIB_IFROW, dwInDiscards);
constexpr std::size_t dwInErrors = offsetof(MIB_IFROW, dwInErrors);
constexpr std::size_t dwInUnknownProtos = offsetof(MIB_IFROW, dwInUnknownProtos);
constexpr std::size_t dwOutOctets = offsetof(MIB_IFROW, dwOutOctets);
constexpr std::size_t dwOutUcastPkts = offsetof(MIB_IFROW, dwOutUcastPkts);
constexpr std::size_t dwOutNUcastPkts = offsetof(MIB_IFROW, dwOutNUcastPkts);
constexpr std::size_t dwOutDiscards = offsetof(MIB_IFROW, dwOutDiscards);
constexpr std::size_t dwOutErrors = offsetof(MIB_IFROW, dwOutErrors);
constexpr std::size_t dwOutQLen = offsetof(MIB_IFROW, dwOutQLen);
constexpr std::size_t dwDescrLen = offsetof(MIB_IFROW, dwDescrLen);
constexpr std::size_t bDescr = offsetof(MIB_IFROW, bDescr);
} // namespace row

void put32(std::uint8_t *row, std::size_t at, std::uint64_t value)
{
    const auto v = static_cast<std::uint32_t>(value); // a counter keeps its low 32 bits
    std::memcpy(row + at, &v, sizeof v);
}

std::uint32_t interfaceType(std::uint16_t arpType)
{
    switch (arpType) {
    case ARPHRD_ETHER: return 6;
    case ARPHRD_LOOPBACK: return 24;
    case ARPHRD_PPP: return 23;
    default: return 1;
    }
}

std::uint32_t operationalStatus(std::uint8_t operState, std::uint32_t flags)
{
    const bool up = flags & IFF_UP;
    switch (operState) {
    case IF_OPER_UP: return 5;
    case IF_OPER_DORMANT: return 3;
    case IF_OPER_LOWERLAYERDOWN: return 2;
    case IF_OPER_DOWN: return up ? 2 : 0;
    case IF_OPER_UNKNOWN: return up ? 5 : 0;
    default: return 0;
    }
}

// Bits per second from sysfs' Mb/s; 0 where the kernel has no figure. The
// path is walked from /sys/class/net, held open, which halves the lookups.
std::uint32_t speedOf(int classNet, const QByteArray &name)
{
    if (classNet < 0)
        return 0;
    const QByteArray path = name + QByteArrayLiteral("/speed");
    Fd fd(::openat(classNet, path.constData(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0)
        return 0;
    char text[32];
    const ssize_t n = ::read(fd.get(), text, sizeof text - 1);
    if (n <= 0)
        return 0;
    bool ok = false;
    const long long mbps = QByteArray(text, n).trimmed().toLongLong(&ok);
    if (!ok || mbps <= 0)
        return 0;
    constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
    return mbps > static_cast<long long>(most / 1000000) ? most : static_cast<std::uint32_t>(mbps * 1000000);
}

void readStats(RealInterfaceTable::Link &link, const rtnl_link_stats64 &s)
{
    link.rxBytes = s.rx_bytes;
    link.rxPackets = s.rx_packets;
    link.rxMulticast = s.multicast;
    link.rxDropped = s.rx_dropped;
    link.rxErrors = s.rx_errors;
    link.rxNoHandler = s.rx_nohandler;
    link.txBytes = s.tx_bytes;
    link.txPackets = s.tx_packets;
    link.txDropped = s.tx_dropped;
    link.txErrors = s.tx_errors;
}

void readStats(RealInterfaceTable::Link &link, const rtnl_link_stats &s)
{
    link.rxBytes = s.rx_bytes;
    link.rxPackets = s.rx_packets;
    link.rxMulticast = s.multicast;
    link.rxDropped = s.rx_dropped;
    link.rxErrors = s.rx_errors;
    link.rxNoHandler = s.rx_nohandler;
    link.txBytes = s.tx_bytes;
    link.txPackets = s.tx_packets;
    link.txDropped = s.tx_dropped;
    link.txErrors = s.tx_errors;
}

// Attribute payloads are only 4-byte aligned: copy, never cast.
template <class T>
T payload(const rtattr *a)
{
    T value{};
    std::memcpy(&value, RTA_DATA(a), std::min<std::size_t>(sizeof value, RTA_PAYLOAD(a)));
    return value;
}

RealInterfaceTable::Link parseLink(const nlmsghdr *h)
{
    RealInterfaceTable::Link link;
    const auto *info = static_cast<const ifinfomsg *>(NLMSG_DATA(h));
    link.index = static_cast<std::uint32_t>(info->ifi_index);
    link.arpType = info->ifi_type;
    link.flags = info->ifi_flags;
    bool have64 = false;
    int left = static_cast<int>(IFLA_PAYLOAD(h));
    for (auto *a = IFLA_RTA(info); RTA_OK(a, left); a = RTA_NEXT(a, left)) {
        const auto *data = static_cast<const char *>(RTA_DATA(a));
        const int length = static_cast<int>(RTA_PAYLOAD(a));
        switch (a->rta_type) {
        case IFLA_IFNAME:
            link.name = QByteArray(data, static_cast<qsizetype>(::strnlen(data, static_cast<std::size_t>(length))));
            break;
        case IFLA_ADDRESS:
            link.address = QByteArray(data, length);
            break;
        case IFLA_MTU:
            link.mtu = payload<std::uint32_t>(a);
            break;
        case IFLA_OPERSTATE:
            link.operState = payload<std::uint8_t>(a);
            break;
        case IFLA_STATS64:
            readStats(link, payload<rtnl_link_stats64>(a));
            have64 = true;
            break;
        case IFLA_STATS:
            if (!have64)
                readStats(link, payload<rtnl_link_stats>(a));
            break;
        default:
            break;
        }
    }
    return link;
}

} // namespace

RealInterfaceTable::RealInterfaceTable() = default;

RealInterfaceTable::~RealInterfaceTable()
{
    if (m_fd >= 0)
        ::close(m_fd);
    if (m_classNet >= 0)
        ::close(m_classNet);
}

std::uint32_t RealInterfaceTable::GetIfTable(std::uint8_t *buffer, std::uint32_t *size, bool sorted)
{
    if (!size)
        return GeneralFailure;
    if (m_fd < 0) {
        Fd fd(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
        if (fd.get() < 0)
            return NotSupported;
        sockaddr_nl local{};
        local.nl_family = AF_NETLINK;
        if (::bind(fd.get(), reinterpret_cast<const sockaddr *>(&local), sizeof local) < 0)
            return NotSupported;
        m_fd = fd.release();
        m_classNet = ::open("/sys/class/net", O_PATH | O_DIRECTORY | O_CLOEXEC);
    }

    std::vector<Link> links;
    if (!dump(links))
        return GeneralFailure;
    if (sorted)
        std::stable_sort(links.begin(), links.end(), [](const Link &a, const Link &b) { return a.index < b.index; });

    const std::uint64_t needed = 4 + std::uint64_t(RowSize) * links.size();
    if (needed > std::numeric_limits<std::uint32_t>::max())
        return GeneralFailure;
    if (!buffer || *size < needed) {
        *size = static_cast<std::uint32_t>(needed);
        return InsufficientBuffer;
    }
    std::memset(buffer, 0, static_cast<std::size_t>(needed));
    put32(buffer, 0, links.size());
    for (std::size_t i = 0; i < links.size(); ++i)
        pack(links[i], speedOf(m_classNet, links[i].name), buffer + 4 + i * RowSize);
    *size = static_cast<std::uint32_t>(needed);
    return NoError;
}

// A dump that the kernel marks as interrupted (links changed while it ran)
// is taken again, a few times at most.
bool RealInterfaceTable::dump(std::vector<Link> &links)
{
    for (int attempt = 0; attempt < 4; ++attempt) {
        bool interrupted = false;
        links.clear();
        if (!dumpOnce(links, interrupted))
            return false;
        if (!interrupted)
            return true;
    }
    return false;
}

bool RealInterfaceTable::dumpOnce(std::vector<Link> &links, bool &interrupted)
{
    struct {
        nlmsghdr header;
        ifinfomsg info;
    } request{};
    request.header.nlmsg_len = NLMSG_LENGTH(sizeof(ifinfomsg));
    request.header.nlmsg_type = RTM_GETLINK;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.header.nlmsg_seq = ++m_seq;
    request.info.ifi_family = AF_UNSPEC;

    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    ssize_t sent;
    do
        sent = ::sendto(m_fd, &request, request.header.nlmsg_len, 0, reinterpret_cast<const sockaddr *>(&kernel),
                        sizeof kernel);
    while (sent < 0 && errno == EINTR);
    if (sent != static_cast<ssize_t>(request.header.nlmsg_len))
        return false;

    // Big enough for any one datagram of a link dump; aligned for the headers.
    constexpr std::size_t Capacity = 64 * 1024;
    m_space.resize(Capacity / sizeof(std::uint64_t));
    auto *bytes = reinterpret_cast<char *>(m_space.data());
    for (;;) {
        ssize_t got;
        do
            got = ::recv(m_fd, bytes, Capacity, MSG_TRUNC);
        while (got < 0 && errno == EINTR);
        if (got <= 0 || static_cast<std::size_t>(got) > Capacity)
            return false;
        int left = static_cast<int>(got);
        for (auto *h = reinterpret_cast<const nlmsghdr *>(bytes); NLMSG_OK(h, left); h = NLMSG_NEXT(h, left)) {
            if (h->nlmsg_seq != m_seq)
                continue; // the answer to an earlier, abandoned request
            if (h->nlmsg_flags & NLM_F_DUMP_INTR)
                interrupted = true;
            if (h->nlmsg_type == NLMSG_DONE)
                return true;
            if (h->nlmsg_type == NLMSG_ERROR)
                return false;
            if (h->nlmsg_type == RTM_NEWLINK && h->nlmsg_len >= NLMSG_LENGTH(sizeof(ifinfomsg)))
                links.push_back(parseLink(h));
        }
    }
}

void RealInterfaceTable::pack(const Link &link, std::uint32_t speed, std::uint8_t *at)
{
    // wszName: 16-bit characters, little-endian, with room for a terminator.
    const QString wide = QString::fromUtf8(link.name).left(255);
    for (qsizetype i = 0; i < wide.size(); ++i) {
        const char16_t c = wide[i].unicode();
        at[row::wszName + 2 * static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(c & 0xFF);
        at[row::wszName + 2 * static_cast<std::size_t>(i) + 1] = static_cast<std::uint8_t>(c >> 8);
    }
    put32(at, row::dwIndex, link.index);
    put32(at, row::dwType, interfaceType(link.arpType));
    put32(at, row::dwMtu, link.mtu);
    put32(at, row::dwSpeed, speed);
    const auto physLen = static_cast<std::size_t>(std::min<qsizetype>(link.address.size(), 8));
    put32(at, row::dwPhysAddrLen, physLen);
    std::memcpy(at + row::bPhysAddr, link.address.constData(), physLen);
    put32(at, row::dwAdminStatus, (link.flags & IFF_UP) ? 1 : 2);
    put32(at, row::dwOperStatus, operationalStatus(link.operState, link.flags));
    put32(at, row::dwLastChange, 0);
    put32(at, row::dwInOctets, link.rxBytes);
    put32(at, row::dwInUcastPkts, link.rxPackets - std::min(link.rxMulticast, link.rxPackets));
    put32(at, row::dwInNUcastPkts, link.rxMulticast);
    put32(at, row::dwInDiscards, link.rxDropped);
    put32(at, row::dwInErrors, link.rxErrors);
    put32(at, row::dwInUnknownProtos, link.rxNoHandler);
    put32(at, row::dwOutOctets, link.txBytes);
    put32(at, row::dwOutUcastPkts, link.txPackets);
    put32(at, row::dwOutNUcastPkts, 0);
    put32(at, row::dwOutDiscards, link.txDropped);
    put32(at, row::dwOutErrors, link.txErrors);
    put32(at, row::dwOutQLen, 0);
    const auto descrLen = static_cast<std::size_t>(std::min<qsizetype>(link.name.size(), 256));
    put32(at, row::dwDescrLen, descrLen);
    std::memcpy(at + row::bDescr, link.name.constData(), descrLen);
}
