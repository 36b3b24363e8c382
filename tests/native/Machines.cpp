#include "tests/native/Machines.h"

#include "common/util/Strings.h"

namespace native {

machine::Adapter PciAdapter(std::uint32_t index, int bus) {
    machine::Adapter adapter;
    adapter.index = index;
    adapter.pnpDeviceId = util::Format("PCI\\VEN_8086&DEV_100E&SUBSYS_1\\%u", index);
    adapter.pciLocation = util::Format("PCI bus %d, device 0, function 0", bus);
    adapter.dhcpEnabled = false;
    adapter.ipAddress = adapter.ipSubnet = machine::TextList{"0.0.0.0"};
    return adapter;
}

machine::State FourAdapters() {
    machine::State state;
    state.computerName = state.hostName = "PC1";
    state.adapters = {PciAdapter(5, 0), PciAdapter(7, 2), PciAdapter(9, 3), PciAdapter(4, 0)};
    state.adapters[0].pnpDeviceId = "ROOT\\VIRTUAL\\0000";
    state.adapters[3].pnpDeviceId.reset();
    const machine::OrganizationalUnit sales{"Sales", {}, {}};
    state.domains = {{"corp.example", "CORP", true, {{"joe", "secret"}}, {}, {}}};
    state.domains[0].units = {{"East", {}, {sales}}, {"West", {}, {}}};
    return state;
}

}  // namespace native
