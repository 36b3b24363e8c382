#include "common/config/ConfigBuilder.h"

#include <optional>
#include <utility>

#include "common/config/command/CommandLog.h"
#include "common/config/command/ConfigureNic.h"
#include "common/config/command/Reboot.h"
#include "common/err/GeneralError.h"
#include "common/logging/Phrases.h"
#include "common/util/Strings.h"

namespace config {

namespace {

constexpr const char* kSource = "common\\config\\ConfigBuilder";

}  // namespace

ConfigBuilder::ConfigBuilder(logging::ILogSink& log) : log_(log) {
    OpenScope<DefaultRule>();
}

ConfigBuilder::~ConfigBuilder() {
    for (std::unique_ptr<command::IConfigureCommand>& command : commands_) {
        command.reset();
    }
    while (!rules_.empty()) {
        rules_.pop_back();
    }
}

void ConfigBuilder::ConfigEvent(std::uint32_t kind, std::uint32_t type, std::string value) {
    std::optional<util::SecretGuard> erase;
    if (kind == Event::DOMAIN_PASSWORD) {
        erase.emplace(value);
    }
    if (type == Event::BEGIN && kind == Event::NIC) {
        AppendCommand(std::make_unique<command::ConfigureNic>(log_));
        OpenScope<NicRule>();
    } else if (type == Event::BEGIN && kind == Event::IP_INTERFACE) {
        OpenScope<IpInterfaceRule>();
    } else if (type == Event::BEGIN && kind == Event::STATIC_ROUTE) {
        OpenScope<StaticRouteRule>();
    } else if (type == Event::END) {
        CloseScope();
    } else if (rules_.empty()) {
        throw ConfigError(kSource, "Event::VALUE called with no matching Event::BEGIN", 97,
                          ErrorKind::kUnexpectedEvent);
    } else {
        rules_.back()->HandleEvent(kind, value);
    }
}

template <typename Rule>
void ConfigBuilder::OpenScope() {
    rules_.push_back(std::make_unique<Rule>(*this));
}

void ConfigBuilder::CloseScope() {
    if (rules_.empty()) {
        throw ConfigError(kSource, "Event::END scope called with no matching Event::BEGIN", 86,
                          ErrorKind::kUnexpectedEvent);
    }
    // The END's kind is not looked at: it closes what is on top, the DefaultRule included.
    const std::unique_ptr<BuilderRule> rule = std::move(rules_.back());
    rules_.pop_back();
    rule->Finish();
}

void ConfigBuilder::AppendCommand(std::unique_ptr<command::IConfigureCommand> command) {
    commands_.push_back(std::move(command));
}

command::IConfigureCommand* ConfigBuilder::LastCommand() const {
    return commands_.empty() ? nullptr : commands_.back().get();
}

bool ConfigBuilder::RunConfig(bool& reboot) {
    for (const std::unique_ptr<command::IConfigureCommand>& command : commands_) {
        if (dynamic_cast<command::Reboot*>(command.get()) != nullptr) {
            reboot = true;
            return false;
        }
        command::LogExecution(log_, logging::kRunsCommand, *command);
        command->Execute();
    }
    reboot = false;
    return true;
}

}  // namespace config
