#include "platform/posix/RealConnection.h"

#include <QFile>
#include <QRegularExpression>
#include <QUrl>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include <cerrno>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

struct AddrInfoDeleter {
    void operator()(addrinfo *a) const { if (a) freeaddrinfo(a); }
};
using AddrInfoPtr = std::unique_ptr<addrinfo, AddrInfoDeleter>;

struct Fd {
    int fd = -1;
    explicit Fd(int f) : fd(f) {}
    ~Fd() { if (fd >= 0) ::close(fd); }
    Fd(const Fd &) = delete;
    Fd &operator=(const Fd &) = delete;
};

// getaddrinfo has no time limit of its own; run it aside and stop waiting
// when the limit passes. The thread owns its result until someone takes it.
AddrInfoPtr resolve(const std::string &host, const std::string &port, std::chrono::milliseconds limit)
{
    struct Lookup {
        std::mutex m;
        std::condition_variable cv;
        bool done = false;
        bool abandoned = false;
        addrinfo *result = nullptr;
    };
    auto lookup = std::make_shared<Lookup>();
    std::thread([lookup, host, port] {
        addrinfo hints{};
        hints.ai_family = AF_UNSPEC;
        hints.ai_socktype = SOCK_STREAM;
        addrinfo *res = nullptr;
        if (getaddrinfo(host.c_str(), port.c_str(), &hints, &res) != 0)
            res = nullptr;
        std::lock_guard lock(lookup->m);
        if (lookup->abandoned) {
            if (res)
                freeaddrinfo(res);
        } else {
            lookup->result = res;
        }
        lookup->done = true;
        lookup->cv.notify_all();
    }).detach();

    std::unique_lock lock(lookup->m);
    if (!lookup->cv.wait_for(lock, limit, [&] { return lookup->done; })) {
        lookup->abandoned = true;
        return nullptr;
    }
    AddrInfoPtr out(lookup->result);
    lookup->result = nullptr;
    return out;
}

int remainingMs(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

bool waitFor(int fd, short events, Clock::time_point deadline)
{
    for (;;) {
        pollfd p{fd, events, 0};
        const int r = ::poll(&p, 1, remainingMs(deadline));
        if (r < 0 && errno == EINTR)
            continue;
        return r > 0 && (p.revents & (events | POLLHUP | POLLERR));
    }
}

bool askOne(const addrinfo *a, const QByteArray &request, Clock::time_point deadline)
{
    Fd sock(::socket(a->ai_family, a->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, a->ai_protocol));
    if (sock.fd < 0)
        return false;
    if (::connect(sock.fd, a->ai_addr, a->ai_addrlen) != 0) {
        if (errno != EINPROGRESS)
            return false;
        if (!waitFor(sock.fd, POLLOUT, deadline))
            return false;
        int err = 0;
        socklen_t len = sizeof err;
        if (::getsockopt(sock.fd, SOL_SOCKET, SO_ERROR, &err, &len) != 0 || err != 0)
            return false;
    }
    qsizetype sent = 0;
    while (sent < request.size()) {
        const ssize_t n = ::send(sock.fd, request.constData() + sent, static_cast<size_t>(request.size() - sent), MSG_NOSIGNAL);
        if (n > 0) {
            sent += n;
        } else if (n < 0 && (errno == EAGAIN || errno == EINTR)) {
            if (!waitFor(sock.fd, POLLOUT, deadline))
                return false;
        } else {
            return false;
        }
    }
    if (!waitFor(sock.fd, POLLIN, deadline))
        return false;
    char byte;
    return ::recv(sock.fd, &byte, 1, 0) == 1;
}

} // namespace

RealConnection::RealConnection(QString root)
    : m_root(std::move(root))
{
}

bool RealConnection::probe(const QString &urlText)
{
    const auto deadline = Clock::now() + totalLimit;
    const QUrl url(urlText);
    if (!url.isValid() || url.host().isEmpty())
        return false;
    const QString scheme = url.scheme().toLower();
    const int port = url.port(scheme == QLatin1String("https") ? 443 : 80);

    AddrInfoPtr addresses = resolve(url.host(QUrl::FullyEncoded).toStdString(), std::to_string(port),
                                    std::min(lookupLimit, totalLimit));
    if (!addresses)
        return false;

    const QString path = url.path(QUrl::FullyEncoded).isEmpty() ? QStringLiteral("/") : url.path(QUrl::FullyEncoded);
    const QByteArray request = "GET " + path.toLatin1() + " HTTP/1.0\r\nHost: " + url.host(QUrl::FullyEncoded).toLatin1()
        + "\r\nUser-Agent: Zarvent\r\nConnection: close\r\n\r\n";
    for (const addrinfo *a = addresses.get(); a; a = a->ai_next) {
        if (remainingMs(deadline) == 0)
            break;
        if (askOne(a, request, deadline))
            return true;
    }
    return false;
}

bool RealConnection::connectedState()
{
    return hasDefaultRoute(m_root + QStringLiteral("/proc/net/route"), false)
        || hasDefaultRoute(m_root + QStringLiteral("/proc/net/ipv6_route"), true);
}

bool RealConnection::hasDefaultRoute(const QString &routeFile, bool ipv6)
{
    QFile f(routeFile);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    // The kernel's tables report a size of 0: read to the end, not to the size.
    const QList<QByteArray> lines = f.readAll().split('\n');
    bool first = true;
    for (const QByteArray &line : lines) {
        const QStringList cols = QString::fromLatin1(line).split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
        if (!ipv6 && first) { // IPv4 table has a header line
            first = false;
            continue;
        }
        bool ok = false;
        if (ipv6) {
            // dest prefixlen src srcprefix nexthop metric refcnt use flags iface
            if (cols.size() < 10)
                continue;
            const uint flags = cols.at(8).toUInt(&ok, 16);
            if (ok && cols.at(0) == QString(32, QLatin1Char('0')) && cols.at(1) == QLatin1String("00") && (flags & 0x1)
                && cols.at(9) != QLatin1String("lo") && interfaceUp(cols.at(9)))
                return true;
        } else {
            // Iface Destination Gateway Flags ...
            if (cols.size() < 4)
                continue;
            const uint flags = cols.at(3).toUInt(&ok, 16);
            if (ok && cols.at(1) == QLatin1String("00000000") && (flags & 0x1) && interfaceUp(cols.at(0)))
                return true;
        }
    }
    return false;
}

bool RealConnection::interfaceUp(const QString &name)
{
    if (name.contains(QLatin1Char('/')) || name.startsWith(QLatin1Char('.')))
        return false;
    QFile f(m_root + QStringLiteral("/sys/class/net/") + name + QStringLiteral("/flags"));
    if (!f.open(QIODevice::ReadOnly))
        return false;
    bool ok = false;
    const uint flags = QString::fromLatin1(f.readAll()).trimmed().toUInt(&ok, 16);
    return ok && (flags & 0x1); // IFF_UP
}
