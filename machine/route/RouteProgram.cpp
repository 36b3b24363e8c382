// simulated-route.exe: stands for the system's route program on a simulated machine. It works on
// the routes that its parent shares with it and touches nothing of the computer it runs on.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "machine/Text.h"
#include "machine/route/RouteCommand.h"
#include "machine/route/RouteExchange.h"

namespace {

constexpr int notStartedBySimulation = 100;

machine::RouteExchange* OpenExchange(const char* name) {
    const HANDLE mapping = OpenFileMappingA(FILE_MAP_ALL_ACCESS, FALSE, name);
    if (mapping == nullptr) {
        return nullptr;
    }
    void* view = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    CloseHandle(mapping);
    auto* exchange = static_cast<machine::RouteExchange*>(view);
    const bool isOurs =
        exchange != nullptr && exchange->magic == machine::RouteExchange::expectedMagic;
    return isOurs ? exchange : nullptr;
}

void Answer(machine::RouteExchange& exchange, const std::string& text) {
    if (text.size() <= exchange.answerCapacity) {
        std::memcpy(exchange.Answer(), text.data(), text.size());
        exchange.answerSize = static_cast<std::uint32_t>(text.size());
    }
}

}  // namespace

int main(int argc, char** argv) {
    const char* name = std::getenv(machine::routeVariable);
    machine::RouteExchange* exchange = name == nullptr ? nullptr : OpenExchange(name);
    if (exchange == nullptr) {
        std::fputs("simulated-route: only a simulated machine can start this program\n", stderr);
        return notStartedBySimulation;
    }
    std::vector<machine::PersistedRoute> routes;
    const auto orders =
        machine::Split(std::string_view(exchange->Orders(), exchange->ordersSize), '\n');
    for (const std::string& order : orders) {
        if (const auto route = machine::ParseRoute(order)) {
            routes.push_back(*route);
        }
    }
    const std::string& command = orders.front();
    if (command.starts_with("exit ")) {
        return std::atoi(command.c_str() + 5);
    }
    const auto outcome = machine::RunRoute(std::vector<std::string>(argv + 1, argv + argc), routes);
    std::fputs(outcome.output.c_str(), stdout);
    Answer(*exchange, machine::FormatChange(outcome.change));
    return outcome.exitCode;
}
