#include "common/config/Analyzer.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "common/config/ConfigBuilder.h"
#include "common/config/Factory.h"
#include "common/config/command/ChangeCompName.h"
#include "common/config/command/ConfigureNic.h"
#include "common/config/command/JoinDomain.h"
#include "common/config/command/JoinWorkgroup.h"
#include "common/config/command/Reboot.h"
#include "common/config/command/SetStatic.h"
#include "common/config/command/Sleep.h"
#include "common/sys/Domain.h"
#include "common/sys/NicDiscovery.h"

namespace config {

namespace {

using command::CommandList;
using command::ConfigureNic;
using command::IConfigureCommand;
using command::kNotSet;

constexpr std::uint32_t kPauseAfterStaticMilliseconds = 8000;

template <class Command>
Command* As(const std::unique_ptr<IConfigureCommand>& command) {
    return dynamic_cast<Command*>(command.get());
}

template <class Command>
CommandList::iterator FindFirst(CommandList& commands) {
    return std::find_if(commands.begin(), commands.end(), As<Command>);
}

/// The index of the first PCI adapter, in the tree's order, that no section has taken yet.
std::uint32_t FirstFreePciAdapter(sys::NicList& adapters, const std::vector<std::uint32_t>& used) {
    const auto end = adapters.BreadthEnd();
    auto node = adapters.BreadthBegin();
    ++node;  // the list itself comes first
    for (; node != end; ++node) {
        const auto* const adapter = dynamic_cast<const sys::NicAdapter*>(*node);
        if (adapter == nullptr) {
            break;  // the adapters are the first level; below it lie their settings
        }
        if (adapter->isPci && std::find(used.begin(), used.end(), adapter->index) == used.end()) {
            return adapter->index;
        }
    }
    return kNotSet;
}

std::uint32_t FindAdapter(const ConfigureNic& nic, const std::vector<std::uint32_t>& used) {
    sys::NicList& adapters = sys::getNicList();
    if (nic.Bus() != kNotSet && nic.Device() != kNotSet && nic.Function() != kNotSet) {
        const auto index = static_cast<std::uint32_t>(
            sys::findNicIndexByPciLocation(adapters, nic.Bus(), nic.Device(), nic.Function()));
        if (index != kNotSet) {
            return index;
        }
    }
    return FirstFreePciAdapter(adapters, used);
}

void BindAdapters(CommandList& commands) {
    std::vector<std::uint32_t> used;
    for (const auto& command : commands) {
        if (auto* const nic = As<ConfigureNic>(command)) {
            nic->SetNicIndex(FindAdapter(*nic, used));
            used.push_back(nic->NicIndex());
        }
    }
}

void PauseAfterStaticAddressing(CommandList& commands) {
    for (const auto& command : commands) {
        auto* const nic = As<ConfigureNic>(command);
        if (nic == nullptr) {
            continue;
        }
        const auto setStatic = FindFirst<command::SetStatic>(nic->Commands());
        if (setStatic != nic->Commands().end()) {
            nic->Commands().insert(std::next(setStatic),
                                   std::make_unique<command::Sleep>(kPauseAfterStaticMilliseconds));
        }
    }
}

void RenameBeforeJoin(CommandList& commands) {
    auto join = FindFirst<command::JoinDomain>(commands);
    auto rename = FindFirst<command::ChangeCompName>(commands);
    if (join == commands.end() || rename == commands.end()) {
        return;
    }
    if (join < rename) {
        std::swap(*join, *rename);
        std::swap(join, rename);
    }
    commands.insert(std::next(rename), std::make_unique<command::Reboot>());
}

}  // namespace

void Analyzer::Analyze(CommandList& commands) {
    BeforeAnalyze(commands);
    std::erase_if(commands, [](const auto& command) { return !command->IsNeeded(); });
    BindAdapters(commands);
    AnalyzePlatform(commands);
    if (std::any_of(commands.begin(), commands.end(),
                    [this](const auto& command) { return NeedsRestart(*command); })) {
        commands.push_back(std::make_unique<command::Reboot>());
    }
    AfterAnalyze(commands);
}

bool Analyzer::NeedsRestart(IConfigureCommand& command) {
    bool answer = false;
    if (RequiresReboot(command, answer)) {
        return answer;
    }
    if (dynamic_cast<command::ChangeCompName*>(&command) != nullptr ||
        dynamic_cast<command::JoinDomain*>(&command) != nullptr) {
        return true;
    }
    return dynamic_cast<command::JoinWorkgroup*>(&command) != nullptr &&
           sys::getDomain().IsDomainMember();
}

void DefaultAnalyzer::BeforeAnalyze(CommandList& /*commands*/) {}
void DefaultAnalyzer::AnalyzePlatform(CommandList& /*commands*/) {}
void DefaultAnalyzer::AfterAnalyze(CommandList& /*commands*/) {}
bool DefaultAnalyzer::RequiresReboot(IConfigureCommand& /*command*/, bool& /*answer*/) {
    return false;
}

void WindowsVistaAnalyzer::BeforeAnalyze(CommandList& /*commands*/) {}
void WindowsVistaAnalyzer::AnalyzePlatform(CommandList& commands) {
    PauseAfterStaticAddressing(commands);
    RenameBeforeJoin(commands);
}
void WindowsVistaAnalyzer::AfterAnalyze(CommandList& /*commands*/) {}
bool WindowsVistaAnalyzer::RequiresReboot(IConfigureCommand& /*command*/, bool& /*answer*/) {
    return false;
}

void Analyze(ConfigBuilder& builder) {
    Factory::Select().GetAnalyzer().Analyze(builder.Commands());
}

}  // namespace config
