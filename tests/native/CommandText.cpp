#include "tests/native/CommandText.h"

#include "common/config/command/AddressList.h"
#include "common/config/command/ConfigureNic.h"
#include "common/err/GeneralError.h"
#include "common/lang/ClassName.h"
#include "common/util/Strings.h"
#include "tests/native/FakeMachine.h"

namespace fake {

namespace {

using config::command::ConfigureNic;
using config::command::IConfigureCommand;
using config::command::kNotSet;

constexpr std::uint32_t kAnyIndex = 99;

std::string Number(std::uint32_t number) {
    return number == kNotSet ? "n" : std::to_string(number);
}

std::string ShortClassName(const IConfigureCommand& command) {
    const std::string name = lang::ClassName(typeid(command));
    return name.substr(name.rfind(':') + 1);
}

/// The text of one command that is no ConfigureNic.
std::string TextOf(IConfigureCommand& command) {
    std::vector<std::string> before;
    before.swap(TheMachine().changes);
    std::string error;
    try {
        command.Execute();
    } catch (...) {
        error = " threw " + ErrorText();
    }
    std::string text;
    for (const std::string& change : TheMachine().changes) {
        text += (text.empty() ? "" : "; ") + change;
    }
    before.swap(TheMachine().changes);
    return (text.empty() ? ShortClassName(command) : text) + error;
}

std::string TextOf(ConfigureNic& nic) {
    const std::uint32_t index = nic.NicIndex() == kNotSet ? kAnyIndex : nic.NicIndex();
    for (const auto& command : nic.Commands()) {
        if (auto* const nicCommand = dynamic_cast<config::command::NicCommand*>(command.get())) {
            nicCommand->SetNicIndex(index);
        }
    }
    return "ConfigureNic " + Number(nic.Bus()) + "/" + Number(nic.Device()) + "/" +
           Number(nic.Function()) + " index " + Number(nic.NicIndex()) + " {" +
           fake::TextOf(nic.Commands()) + "}";
}

}  // namespace

std::string TextOf(const config::command::CommandList& commands) {
    std::string text;
    for (const auto& command : commands) {
        auto* const nic = dynamic_cast<ConfigureNic*>(command.get());
        text += (text.empty() ? "" : "; ") + (nic != nullptr ? TextOf(*nic) : TextOf(*command));
    }
    return text;
}

std::string ErrorText() {
    try {
        throw;
    } catch (const err::CGeneralError& error) {
        return util::Format("%s:%d(%d) %s", error.SourceFile(), error.Line(), error.Code(),
                            error.Message());
    }
}

}  // namespace fake
