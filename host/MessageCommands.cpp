#include "host/MessageCommands.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/util/Strings.h"
#include "host/ExitCode.h"
#include "host/HostError.h"
#include "host/Message.h"
#include "host/Module.h"
#include "host/Text.h"

namespace host {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kInternal = "Internal";

void ReportReply(const Message& message, Output& output) {
    Json& reply = output.Document()["reply"] = Json::object();
    for (const Field& field : message.Reply()) {
        output.Line(field.name + ": " + field.Text());
        const auto* const number = std::get_if<std::int32_t>(&field.value);
        reply[ToUtf8(field.name)] = number != nullptr ? Json(*number) : Json(ToUtf8(field.Text()));
    }
}

/// Sends the message and reports its log, its reply fields and the handler's result. The reply is
/// reported too when the module lets an exception escape.
std::int32_t SendAndReport(const Module& module, Message& message, Output& output) {
    output.Document()["log"] = Json::array();
    LogSink log([&](LogLine line) {
        HideAccount(line.text);
        output.Log(line);
    });
    std::int32_t result = 0;
    try {
        result = module.Send(message, log);
    } catch (...) {
        ReportReply(message, output);
        throw;
    }
    ReportReply(message, output);
    output.Line("handler result: " + util::IntToString(result));
    output.Document()["result"] = result;
    return result;
}

int ReportVersion(const CommonOptions& options, Output& output) {
    const Module module(options.module);
    const std::string text = module.GetVersion().Text();
    output.Line("module: " + module.Path());
    output.Line("version: " + text);
    output.Line("interface: " + util::IntToString(module.InterfaceVersion()));
    output.Document() = {{"module", ToUtf8(module.Path())},
                         {"version", text},
                         {"interface", module.InterfaceVersion()}};
    return kDone;
}

int ExitCodeOf(const Message& message, std::int32_t result) {
    const std::string outcome = message.ReplyText("Result");
    if (outcome == "Reboot") {
        return kRestartNeeded;
    }
    return result == 0 || outcome == "Failure" ? kFailure : kDone;
}

int ReportUpdateInfo(const CommonOptions& options, std::int32_t count, Output& output) {
    const Module module(options.module);
    Message message(kInternal, "UpdateInfo");
    if (count != 0) {
        message.Add("Auto-Update-Count", util::IntToString(count));
    }
    const std::int32_t result = SendAndReport(module, message, output);
    return ExitCodeOf(message, result);
}

struct SendArguments {
    std::string kind;
    std::string name;
    std::vector<std::string> fields;
    bool yes = false;
};

int Send(const CommonOptions& options, const SendArguments& arguments, Output& output) {
    if (arguments.kind == kInternal && arguments.name == "Configure" && !arguments.yes) {
        throw HostError(
            "\"Internal Configure\" changes this machine and takes the file away: add --yes to do "
            "that, or see \"configure FILE --this-machine --plan\" for what would change",
            kWrongUsage);
    }
    const Module module(options.module);
    Message message(arguments.kind, arguments.name);
    for (const std::string& field : arguments.fields) {
        const std::size_t equals = field.find('=');
        message.Add(field.substr(0, equals), field.substr(equals + 1));
    }
    const std::int32_t result = SendAndReport(module, message, output);
    return ExitCodeOf(message, result);
}

std::string CheckField(const std::string& field) {
    const std::size_t equals = field.find('=');
    return equals == std::string::npos || equals == 0 ? "\"" + field + "\" is not field=value"
                                                      : std::string();
}

}  // namespace

void AddMessageCommands(CLI::App& app, const CommonOptions& options, Action& action) {
    app.add_subcommand("version", "Print the module's version")->callback([&options, &action] {
        action = [&options](Output& output) { return ReportVersion(options, output); };
    });

    CLI::App* const updateInfo = app.add_subcommand(
        "update-info", "Ask the module for its file name and its update pattern");
    const auto count = std::make_shared<std::int32_t>(0);
    updateInfo->add_option("--count", *count, "How many pairs other modules have added already")
        ->check(CLI::Range(0, 2147483646, "0 to 2147483646"));
    updateInfo->callback([&options, &action, count] {
        action = [&options, count](Output& output) {
            return ReportUpdateInfo(options, *count, output);
        };
    });

    CLI::App* const send = app.add_subcommand(
        "send", "Send any message to the module. It acts on this machine, not on a simulated one");
    const auto arguments = std::make_shared<SendArguments>();
    send->add_option("kind", arguments->kind, "Kind of the message, such as Internal")->required();
    send->add_option("name", arguments->name, "Name of the message, such as UpdateInfo")
        ->required();
    send->add_option("fields", arguments->fields, "Fields of the message, each field=value")
        ->check(CheckField);
    send->add_flag("--yes", arguments->yes, "Yes, let \"Internal Configure\" change this machine");
    send->callback([&options, &action, arguments] {
        action = [&options, arguments](Output& output) {
            return Send(options, *arguments, output);
        };
    });
}

}  // namespace host
