#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "common/ipc/IpAddress.h"
#include "common/sys/WmiQueries.h"
#include "common/util/CompositeNode.h"

/// The picture of the machine's network adapters. An adapter and the collections below it
/// fill themselves from WMI and the registry in their constructors (errors propagate and leave
/// nothing behind); fillNicList adds the adapters. Nothing is changed afterwards.
namespace sys {

class NicInfoVisitor;

/// The root: one NicAdapter per IP-enabled adapter, in WMI's order.
class NicList : public util::CollectionNode {
public:
    void* Accept(util::CompositeVisitor& visitor) override;
};

struct PciLocation {
    // The decimal digits that an id begins with: 10EC gives 10.
    std::uint16_t vendorId = 0;
    std::uint16_t deviceId = 0;
    std::uint16_t bus = 0;
    std::uint16_t device = 0;
    std::uint16_t function = 0;
};

/// One adapter. A PCI adapter has the children IP, Gateway and DNS; any other keeps its index
/// alone.
class NicAdapter : public util::CollectionNode {
public:
    explicit NicAdapter(std::uint32_t adapterIndex);
    void* Accept(util::CompositeVisitor& visitor) override;

    bool dhcpEnabled = false;
    bool isPci = false;
    std::uint32_t index;  // the key by which every command addresses the adapter
    std::string macAddress;
    std::string caption;  // without the bracketed number in front
    std::string manufacturer;
    std::string adapterType;
    PciLocation pciLocation;

private:
    void ReadPciLocation(const std::string& pnpDeviceId);
};

/// The first address and mask of an adapter. Its children are the machine's persisted routes, the
/// same list under every adapter.
class IP : public util::CollectionNode {
public:
    explicit IP(std::uint32_t adapterIndex);
    void* Accept(util::CompositeVisitor& visitor) override;

    ipc::IPv4Address address;
    ipc::IPv4Address subnetMask;
    std::string dnsDomain;
    std::string dnsHostName;
};

class Gateway : public util::CollectionNode {
public:
    explicit Gateway(std::uint32_t adapterIndex);
    void* Accept(util::CompositeVisitor& visitor) override;
};

/// DNS servers, then suffixes.
class DNS : public util::CollectionNode {
public:
    explicit DNS(std::uint32_t adapterIndex);
    void* Accept(util::CompositeVisitor& visitor) override;

    bool hasStaticServers;  // set by hand rather than handed out by DHCP
};

class GatewayEntry : public util::LeafNode {
public:
    explicit GatewayEntry(const ipc::IPv4Address& gateway) : address(gateway) {}
    void* Accept(util::CompositeVisitor& visitor) override;

    ipc::IPv4Address address;
};

class DNSServer : public util::LeafNode {
public:
    explicit DNSServer(const ipc::IPv4Address& server) : address(server) {}
    void* Accept(util::CompositeVisitor& visitor) override;

    ipc::IPv4Address address;
};

class DNSSuffix : public util::LeafNode {
public:
    explicit DNSSuffix(std::string text) : suffix(std::move(text)) {}
    void* Accept(util::CompositeVisitor& visitor) override;

    std::string suffix;
};

class StaticRoute : public util::LeafNode {
public:
    explicit StaticRoute(const RouteRecord& route)
        : destination(route.destination),
          mask(route.mask),
          nextHop(route.nextHop),
          metric(route.metric) {}
    void* Accept(util::CompositeVisitor& visitor) override;

    ipc::IPv4Address destination;
    ipc::IPv4Address mask;
    ipc::IPv4Address nextHop;
    std::uint32_t metric;
};

/// Visits the nodes of this tree; what a visit returns is what Accept yields. No overloads:
/// compilers disagree on the order of their slots.
class NicInfoVisitor : public util::CompositeVisitor {
public:
    virtual void* VisitGatewayEntry(GatewayEntry& node) = 0;
    virtual void* VisitGateway(Gateway& node) = 0;
    virtual void* VisitDNSSuffix(DNSSuffix& node) = 0;
    virtual void* VisitDNSServer(DNSServer& node) = 0;
    virtual void* VisitDNS(DNS& node) = 0;
    virtual void* VisitStaticRoute(StaticRoute& node) = 0;
    virtual void* VisitIP(IP& node) = 0;
    virtual void* VisitNicAdapter(NicAdapter& node) = 0;
    virtual void* VisitNicList(NicList& node) = 0;
};

}  // namespace sys
