#include "common/sys/nic/NicInfo.h"

namespace sys {

namespace {

template <typename Node>
void* Dispatch(util::CompositeVisitor& visitor, void* (NicInfoVisitor::*visit)(Node&), Node& node) {
    auto* const nicVisitor = dynamic_cast<NicInfoVisitor*>(&visitor);
    return nicVisitor != nullptr ? (nicVisitor->*visit)(node) : nullptr;
}

}  // namespace

void* NicList::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitNicList, *this);
}
void* NicAdapter::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitNicAdapter, *this);
}
void* IP::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitIP, *this);
}
void* Gateway::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitGateway, *this);
}
void* DNS::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitDNS, *this);
}
void* GatewayEntry::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitGatewayEntry, *this);
}
void* DNSServer::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitDNSServer, *this);
}
void* DNSSuffix::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitDNSSuffix, *this);
}
void* StaticRoute::Accept(util::CompositeVisitor& visitor) {
    return Dispatch(visitor, &NicInfoVisitor::VisitStaticRoute, *this);
}

}  // namespace sys
