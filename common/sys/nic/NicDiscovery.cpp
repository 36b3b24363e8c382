#include "common/sys/nic/NicDiscovery.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/sys/nic/NicRegistry.h"
#include "common/util/Strings.h"

namespace sys {

namespace {

/// Reads a decimal number from part of a device id; 0 where the part lies past the id's end.
std::uint16_t ReadNumber(const std::string& text, std::size_t start, std::size_t length) {
    return start < text.size()
               ? static_cast<std::uint16_t>(util::StringToInt(text.substr(start, length)))
               : std::uint16_t{0};
}

/// "[00000007] Name" becomes "Name": cut at the first "]" or blank, and two characters after it.
/// The cut is fixed and its position is 32 bits wide, so a caption without either mark loses its
/// first character.
std::string CleanCaption(const std::string& caption) {
    const auto cut = static_cast<std::uint32_t>(caption.find_first_of("] ")) + 2U;
    return caption.substr(std::min<std::size_t>(cut, caption.size()));
}

/// The last three numbers of a text such as "PCI bus 2, device 1, function 0", last one first.
void ReadLocation(const std::string& location, PciLocation& pci) {
    std::uint16_t* const fields[] = {&pci.function, &pci.device, &pci.bus};
    std::size_t found = 0;
    std::string run;
    const auto store = [&] {
        *fields[found++] = static_cast<std::uint16_t>(util::StringToInt(run));
        run.clear();
    };
    for (std::size_t i = location.size(); i-- > 0;) {
        if (util::IsDigit(location[i])) {
            run.insert(run.begin(), location[i]);
        } else if (!run.empty()) {
            store();
            if (found == std::size(fields)) {
                return;
            }
        }
    }
    if (!run.empty()) {
        store();
    }
}

bool HasStaticDns(std::uint32_t adapterIndex) {
    std::string settingId;
    getSettingId(adapterIndex, settingId);
    if (settingId.empty()) {
        return false;
    }
    try {
        return !ReadNameServer(settingId).empty();
    } catch (const RegistryError&) {
        return false;  // no key, no value, no access: nobody set servers by hand
    }
}

}  // namespace

NicAdapter::NicAdapter(std::uint32_t adapterIndex) : index(adapterIndex) {
    std::string pnpDeviceId;
    getPnpDeviceId(index, pnpDeviceId);
    ReadPciLocation(pnpDeviceId);
    if (!isPci) {
        return;
    }
    getDhcpEnabled(index, dhcpEnabled);
    getMacAddress(index, macAddress);
    getAdapterTypeAndManufacturer(index, adapterType, manufacturer);
    std::string fullCaption;
    getCaption(index, fullCaption);
    caption = CleanCaption(fullCaption);

    Add(std::make_unique<IP>(index));
    Add(std::make_unique<Gateway>(index));
    Add(std::make_unique<DNS>(index));
}

void NicAdapter::ReadPciLocation(const std::string& pnpDeviceId) {
    isPci = pnpDeviceId.starts_with("PCI");
    if (!isPci) {
        return;
    }
    const std::size_t vendor = pnpDeviceId.find("VEN_", 4);
    if (vendor != std::string::npos) {
        // The lengths are end positions and the ids are read as decimal, so that 10EC gives 10:
        // whoever compares these numbers has made his own in the same way.
        pciLocation.vendorId = ReadNumber(pnpDeviceId, vendor + 4, vendor + 8);
        pciLocation.deviceId = ReadNumber(pnpDeviceId, vendor + 13, vendor + 17);
    }
    ReadLocation(ReadLocationInformation(pnpDeviceId), pciLocation);
}

IP::IP(std::uint32_t adapterIndex) : address("0.0.0.0"), subnetMask("0.0.0.0") {
    getIpAddressAndMask(adapterIndex, address, subnetMask);
    getDnsDomainAndHostName(adapterIndex, dnsDomain, dnsHostName);
    std::vector<RouteRecord> routes;
    getStaticRoutes(routes);
    for (const RouteRecord& route : routes) {
        Add(std::make_unique<StaticRoute>(route));
    }
}

Gateway::Gateway(std::uint32_t adapterIndex) {
    std::vector<ipc::IPv4Address> gateways;
    getGateways(adapterIndex, gateways);
    for (const ipc::IPv4Address& gateway : gateways) {
        Add(std::make_unique<GatewayEntry>(gateway));
    }
}

DNS::DNS(std::uint32_t adapterIndex) {
    std::vector<ipc::IPv4Address> servers;
    std::vector<std::string> suffixes;
    getDnsServersAndSuffixes(adapterIndex, servers, suffixes);
    // Asked for after the lists, so not in an initializer.
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer)
    hasStaticServers = HasStaticDns(adapterIndex);
    for (const ipc::IPv4Address& server : servers) {
        Add(std::make_unique<DNSServer>(server));
    }
    for (const std::string& suffix : suffixes) {
        Add(std::make_unique<DNSSuffix>(suffix));
    }
}

void fillNicList(NicList& root) {
    std::vector<std::uint32_t> indexes;
    getIpEnabledAdapters(indexes);
    for (const std::uint32_t index : indexes) {
        root.Add(std::make_unique<NicAdapter>(index));
    }
}

NicList& getNicList() {
    // A fill that throws leaves the static unmade.
    static const std::unique_ptr<NicList> kList = [] {
        auto filled = std::make_unique<NicList>();
        fillNicList(*filled);
        return filled;
    }();
    return *kList;
}

std::int32_t findNicIndexByPciLocation(NicList& root, std::uint32_t bus, std::uint32_t device,
                                       std::uint32_t function) {
    const auto found =
        std::find_if(root.BreadthBegin(), root.BreadthEnd(), [&](const util::CompositeNode* node) {
            const auto* const adapter = dynamic_cast<const NicAdapter*>(node);
            return adapter != nullptr && adapter->pciLocation.bus == bus &&
                   adapter->pciLocation.device == device &&
                   adapter->pciLocation.function == function;
        });
    return found == root.BreadthEnd()
               ? -1
               : static_cast<std::int32_t>(static_cast<const NicAdapter*>(*found)->index);
}

}  // namespace sys
