#pragma once

#include "platform/Connection.h"

#include <chrono>

// Sockets for the probe; the kernel's routing table for the connected state.
// The root folder is "/" in the program; tests point it at a fixture tree
// holding proc/net/route and sys/class/net/<name>/flags.
class RealConnection : public Connection {
public:
    explicit RealConnection(QString root = QStringLiteral("/"));

    bool probe(const QString &url) override;
    bool connectedState() override;

    // Bounds of the probe. A name lookup that hangs (a resolver that drops
    // packets) is abandoned after `lookupLimit`; the whole probe never takes
    // longer than `totalLimit`.
    std::chrono::milliseconds lookupLimit{1500};
    std::chrono::milliseconds totalLimit{4000};

private:
    bool hasDefaultRoute(const QString &routeFile, bool ipv6);
    bool interfaceUp(const QString &name);

    QString m_root;
};
