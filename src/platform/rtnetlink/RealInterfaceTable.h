#pragma once

#include "platform/InterfaceTable.h"

#include <QByteArray>

#include <cstdint>
#include <vector>

// The kernel's interfaces as the classic table: every call takes a fresh
// rtnetlink RTM_GETLINK dump (counters from IFLA_STATS64, else IFLA_STATS)
// and reads each link's speed from /sys/class/net. Linux facts are put into
// the row's own terms:
//   type          ARP hardware type: Ethernet 6, loopback 24, PPP 23, any other 1
//   admin status  IFF_UP: 1 up, 2 down
//   oper status   operstate: up 5, dormant 3 (connecting), lower layer down 2,
//                 down 2 when administratively up (no carrier) else 0; unknown
//                 (loopback, tunnels) 5 when administratively up, else 0;
//                 not present and testing 0
//   speed         Mb/s from sysfs in bits per second, held at 2^32-1 above
//                 that; 0 when the kernel does not know
//   counters      64-bit counters cut to their low 32 bits; non-unicast
//                 received = multicast, unicast received = packets minus
//                 multicast; sent packets all count as unicast (the kernel
//                 keeps no sent multicast count); unknown protocols =
//                 rx_nohandler, the frames no handler took (the kernel
//                 counts a frame of an unknown ether type as dropped)
//   address       the link-layer address, at most the row's 8 bytes
//   name          the interface name as 16-bit characters in wszName, and as
//                 single-byte text in bDescr with dwDescrLen its length
//   queue length  0: the link dump gives only the queue's capacity (txqlen)
//   last change   0: the kernel does not keep it
// NotSupported when no netlink socket can be had; 31 (general failure) when a
// dump fails, leaving *size as it was.
class RealInterfaceTable : public InterfaceTable {
public:
    RealInterfaceTable();
    ~RealInterfaceTable() override;
    RealInterfaceTable(const RealInterfaceTable &) = delete;
    RealInterfaceTable &operator=(const RealInterfaceTable &) = delete;

    std::uint32_t GetIfTable(std::uint8_t *buffer, std::uint32_t *size, bool sorted) override;

    static constexpr std::uint32_t GeneralFailure = 31;

    // One link as the dump reported it, before it is packed into a row.
    struct Link {
        std::uint32_t index = 0;
        std::uint16_t arpType = 0;
        std::uint32_t flags = 0;
        std::uint8_t operState = 0;
        std::uint32_t mtu = 0;
        QByteArray name;
        QByteArray address;
        std::uint64_t rxBytes = 0, rxPackets = 0, rxMulticast = 0, rxDropped = 0, rxErrors = 0, rxNoHandler = 0;
        std::uint64_t txBytes = 0, txPackets = 0, txDropped = 0, txErrors = 0;
    };

private:
    bool dump(std::vector<Link> &links);
    bool dumpOnce(std::vector<Link> &links, bool &interrupted);
    static void pack(const Link &link, std::uint32_t speed, std::uint8_t *row);

    int m_fd = -1;       // the route socket, opened on first use and kept
    int m_classNet = -1; // /sys/class/net, opened with it
    std::uint32_t m_seq = 0;
    std::vector<std::uint64_t> m_space; // receive buffer, kept between dumps
};
