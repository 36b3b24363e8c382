#include "common/config/Analyzer.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
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
#include "common/sys/nic/NicDiscovery.h"

namespace config {

namespace {

using command::CommandList;
using command::ConfigureNic;
using command::IConfigureCommand;
using command::kNotSet;

constexpr std::uint32_t kPauseAfterStaticMilliseconds = 8000;

template <typename Command>
Command* As(const std::unique_ptr<IConfigureCommand>& command) {
    return dynamic_cast<Command*>(command.get());
}

template <typename Command>
CommandList::iterator FindFirst(CommandList& commands) {
    return std::ranges::find_if(commands, As<Command>);
}

/// Gives each section its adapter on the machine.
class AdapterBinding {
public:
    AdapterBinding() { ++node_; }  // the list itself comes first

    void Bind(ConfigureNic& nic) {
        std::uint32_t index = kNotSet;
        if (nic.Bus() != kNotSet && nic.Device() != kNotSet && nic.Function() != kNotSet) {
            index = static_cast<std::uint32_t>(
                sys::findNicIndexByPciLocation(adapters_, nic.Bus(), nic.Device(), nic.Function()));
        }
        nic.SetNicIndex(index != kNotSet ? index : FirstFreePciAdapter());
        used_.push_back(nic.NicIndex());
    }

private:
    /// In the tree's order. What was passed over for one section is no choice for the next either.
    std::uint32_t FirstFreePciAdapter() {
        for (; node_ != end_; ++node_) {
            const auto* const adapter = dynamic_cast<const sys::NicAdapter*>(*node_);
            if (adapter == nullptr) {
                break;  // the adapters are the first level; below it lie their settings
            }
            if (adapter->isPci && std::ranges::find(used_, adapter->index) == used_.end()) {
                return adapter->index;
            }
        }
        return kNotSet;
    }

    sys::NicList& adapters_ = sys::getNicList();
    util::breadth_iterator node_ = adapters_.BreadthBegin();
    const util::breadth_iterator end_ = adapters_.BreadthEnd();
    std::vector<std::uint32_t> used_;
};

void BindAdapters(CommandList& commands) {
    std::optional<AdapterBinding> binding;  // nothing is asked of the machine before it is needed
    for (const auto& command : commands) {
        if (auto* const nic = As<ConfigureNic>(command)) {
            if (!binding) {
                binding.emplace();
            }
            binding->Bind(*nic);
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
    if (std::ranges::any_of(commands,
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
    auto* const workgroup = dynamic_cast<command::JoinWorkgroup*>(&command);
    return workgroup != nullptr && workgroup->LeavesDomain();
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
