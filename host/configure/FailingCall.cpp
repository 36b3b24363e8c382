#include "host/configure/FailingCall.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>

#include "machine/Text.h"

namespace host::configure {

namespace {

using Calls = std::span<const machine::TraceEntry>;

/// The last call of one of those functions among `calls`, itself or one before it that worked; null
/// for none.
const machine::TraceEntry* LastOf(Calls calls, std::initializer_list<std::string_view> functions) {
    const auto found =
        std::find_if(calls.rbegin(), calls.rend(), [&](const machine::TraceEntry& call) {
            return std::ranges::find(functions, call.function) != functions.end() &&
                   (!call.failed || &call == &calls.back());
        });
    return found == calls.rend() ? nullptr : &*found;
}

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// The number after the last "Index=".
std::optional<std::uint32_t> IndexIn(std::string_view text) {
    constexpr std::string_view kIndex = "Index=";
    const std::size_t at = text.rfind(kIndex);
    std::uint32_t index = 0;
    if (at == std::string_view::npos ||
        std::from_chars(text.data() + at + kIndex.size(), text.data() + text.size(), index).ec !=
            std::errc()) {
        return std::nullopt;
    }
    return index;
}

/// The adapter whose interface or device has a place in that key.
std::optional<std::uint32_t> AdapterOfKey(const machine::State& machine, std::string_view key) {
    const std::string path = machine::LowerCase(key);
    for (const machine::Adapter& adapter : machine.adapters) {
        for (const auto& name : {adapter.settingId, adapter.pnpDeviceId}) {
            if (!name.value_or("").empty() &&
                path.find(machine::LowerCase(*name)) != std::string::npos) {
                return adapter.index;
            }
        }
    }
    return std::nullopt;
}

/// The WMI object or the key that the last of `calls` is about, and its adapter.
FailingCall SubjectOf(Calls calls, const machine::State& machine) {
    const std::string& function = calls.back().function;
    if (function == "ExecQuery" || function == "ExecMethod" || function == "Next" ||
        function == "Get") {
        const machine::TraceEntry* const asked = LastOf(calls, {"ExecQuery", "ExecMethod"});
        if (asked == nullptr) {
            return {};
        }
        if (asked->function == "ExecQuery") {
            const std::string_view query = asked->Argument("query");
            return {Quoted(query), IndexIn(query)};
        }
        const std::string_view path = asked->Argument("path");
        return {std::string(path) + "." + std::string(asked->Argument("method")), IndexIn(path)};
    }
    if (function.starts_with("Reg")) {
        const machine::TraceEntry* const opened =
            LastOf(calls, {"RegOpenKeyExA", "RegCreateKeyExA"});
        if (opened != nullptr) {
            const std::string key(opened->Argument("subkey"));
            return {"HKEY_LOCAL_MACHINE\\" + key, AdapterOfKey(machine, key)};
        }
    }
    return {};
}

/// Tells the last of `calls`, without its result.
FailingCall Describe(Calls calls, const machine::State& machine) {
    FailingCall told = SubjectOf(calls, machine);
    const machine::TraceEntry& call = calls.back();
    const std::string_view name = call.Argument("name");
    std::string text = call.function + (name.empty() ? "" : " " + Quoted(name));
    if (!told.text.empty()) {
        text += (name.empty() && call.function != "Next" ? " " : " of ") + told.text;
    }
    told.text = std::move(text);
    return told;
}

}  // namespace

FailingCall FindFailingCall(const Run& run, std::size_t calls, std::uint32_t code) {
    constexpr std::size_t kCleaningUp = 4;  // calls that may lie between failure and catch
    const Calls all = Calls(run.calls).first(std::min(calls, run.calls.size()));
    std::size_t withCode = 0;  // positions from 1
    std::size_t injected = 0;
    std::size_t late = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!all[i].failed) {
            continue;
        }
        withCode = code != 0 && all[i].code == code ? i + 1 : withCode;
        injected = all[i].injected ? i + 1 : injected;
        late = i + kCleaningUp >= all.size() ? i + 1 : late;
    }
    const std::size_t cause = withCode != 0 ? withCode : injected != 0 ? injected : late;
    if (cause == 0) {
        return {};
    }
    FailingCall told = Describe(all.first(cause), run.before);
    told.text += ": " + all[cause - 1].result;
    return told;
}

FailingCall FindLastRead(const Run& run) {
    const Calls all(run.calls);
    const auto read = std::find_if(all.rbegin(), all.rend(), [](const machine::TraceEntry& call) {
        return call.function == "Get" || call.function == "RegQueryValueExA";
    });
    if (read == all.rend()) {
        return {};
    }
    FailingCall told =
        Describe(all.first(static_cast<std::size_t>(std::distance(read, all.rend()))), run.before);
    told.text += ": " + std::string(read->Argument("value"));
    return told;
}

}  // namespace host::configure
