#include "machine/Trace.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace machine {
namespace {

using Json = nlohmann::ordered_json;

/// Names and texts of the machine may hold bytes that are no UTF-8.
std::string Dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string QualifiedName(const TraceEntry& entry) {
    return entry.object.empty() ? entry.function : entry.object + "::" + entry.function;
}

Json Arguments(const TraceEntry& entry) {
    Json arguments = Json::object();
    for (const auto& [name, value] : entry.arguments) {
        arguments[name] = value;
    }
    return arguments;
}

}  // namespace

std::string OriginOf(const TraceEntry& call, std::string_view detail) {
    std::string origin = call.function + ", call " + std::to_string(call.number);
    if (!detail.empty()) {
        origin += ", ";
        origin += detail;
    }
    return origin;
}

std::string_view TraceEntry::Argument(std::string_view name) const {
    const auto found = std::ranges::find(arguments, name, &decltype(arguments)::value_type::first);
    return found == arguments.end() ? std::string_view() : found->second;
}

std::size_t Trace::Count(std::string_view function) const {
    return static_cast<std::size_t>(std::ranges::count(entries_, function, &TraceEntry::function));
}

TraceEntry& Trace::Append() {
    TraceEntry& entry = entries_.emplace_back();
    entry.number = entries_.size();
    return entry;
}

void Trace::WriteJsonLines(std::ostream& out) const {
    for (const TraceEntry& entry : entries_) {
        Json line = {{"call", entry.number}, {"time", entry.startedAt}, {"thread", entry.thread}};
        if (entry.faultPoint != 0) {
            line["faultPoint"] = entry.faultPoint;
        }
        line["function"] = QualifiedName(entry);
        line["arguments"] = Arguments(entry);
        line["result"] = entry.result;
        line["failed"] = entry.failed;
        if (entry.injected) {
            line["injected"] = true;
        }
        out << Dump(line) << '\n';
    }
}

void Trace::WriteChromeTrace(std::ostream& out) const {
    out << "{\"displayTimeUnit\":\"ms\",\"traceEvents\":[\n";
    const char* separator = "";
    // Most calls take no virtual time: the call's number spreads them by a microsecond each, so
    // that a viewer can show them one after the other.
    for (const TraceEntry& entry : entries_) {
        const std::uint64_t began = entry.startedAt * 1000 + entry.number;
        const std::uint64_t took = (entry.endedAt - entry.startedAt) * 1000 + 1;
        Json arguments = Arguments(entry);
        arguments["result"] = entry.result;
        const Json event = {{"name", QualifiedName(entry)},
                            {"cat", entry.injected ? "injected"
                                    : entry.failed ? "failed"
                                                   : "call"},
                            {"ph", "X"},
                            {"ts", began},
                            {"dur", took},
                            {"pid", 1},
                            {"tid", entry.thread},
                            {"args", arguments}};
        out << separator << Dump(event);
        separator = ",\n";
    }
    out << "\n]}\n";
}

void Trace::WriteFor(const std::string& file, std::ostream& out) const {
    if (file.ends_with(".trace.json")) {
        WriteChromeTrace(out);
    } else {
        WriteJsonLines(out);
    }
}

}  // namespace machine
