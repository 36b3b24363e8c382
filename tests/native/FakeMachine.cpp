#include "tests/native/FakeMachine.h"

#include "common/util/Strings.h"

namespace fake {

namespace {

void Note(std::vector<std::string>& calls, const std::string& function,
          const std::string& arguments) {
    calls.push_back(function + "(" + arguments + ")");
    if (TheMachine().onEveryCall) {
        TheMachine().onEveryCall();
    }
    const auto planned = TheMachine().onCall.find(function);
    if (planned != TheMachine().onCall.end()) {
        planned->second();
    }
}

}  // namespace

Machine& TheMachine() {
    static Machine machine;
    return machine;
}

Machine& Reset() {
    return TheMachine() = Machine();
}

Adapter PciAdapter(std::uint32_t index, int bus) {
    Adapter adapter;
    adapter.index = index;
    adapter.pnpDeviceId = util::Format("PCI\\VEN_8086&DEV_100E&SUBSYS_1\\%u", index);
    adapter.locationInformation = util::Format("PCI bus %d, device 0, function 0", bus);
    return adapter;
}

sys::RouteRecord Route(const std::string& destination, const std::string& mask,
                       const std::string& nextHop, std::uint32_t metric) {
    return {ipc::IPv4Address(destination), ipc::IPv4Address(mask), ipc::IPv4Address(nextHop),
            metric};
}

void NoteQuery(const std::string& function, const std::string& arguments) {
    Note(TheMachine().queries, function, arguments);
}

void NoteChange(const std::string& function, const std::string& arguments) {
    Note(TheMachine().changes, function, arguments);
}

std::uint32_t ReturnOf(const std::string& function) {
    const auto found = TheMachine().returns.find(function);
    return found == TheMachine().returns.end() ? 0 : found->second;
}

}  // namespace fake
