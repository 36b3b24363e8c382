// The record of every platform call that a simulated machine served.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace machine {

struct TraceEntry {
    std::uint64_t number = 0;  ///< position in the trace, from 1
    std::uint64_t faultPoint =
        0;  ///< position among the calls that can fail, from 1; 0: cannot fail
    std::uint64_t startedAt = 0;  ///< virtual time in milliseconds
    std::uint64_t endedAt = 0;
    std::uint32_t thread = 0;
    std::string object;    ///< interface of the object called, empty for a plain function
    std::string function;  ///< "ExecQuery", "RegOpenKeyExA"
    std::vector<std::pair<std::string, std::string>> arguments;  ///< secrets masked
    std::string result;      ///< "S_OK", "0x80041002 (WBEM_E_NOT_FOUND)", "FALSE, error 2"
    std::uint32_t code = 0;  ///< the result as a number: an HRESULT, a Windows error
    /// What came of what the call ran: a method's ReturnValue, a program's exit code.
    std::optional<std::uint32_t> outcome;
    bool failed = false;
    bool injected = false;  ///< the fault plan made it fail

    /// Empty when there is none of that name.
    std::string_view Argument(std::string_view name) const;
};

/// How the ledger names the call as the origin of something: "CreatePipe, call 12, read end".
std::string OriginOf(const TraceEntry& call, std::string_view detail = {});

class Trace {
public:
    const std::vector<TraceEntry>& Entries() const { return entries_; }
    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }
    std::size_t Size() const { return entries_.size(); }

    /// How often the function was called.
    std::size_t Count(std::string_view function) const;

    TraceEntry& Append();
    TraceEntry& At(std::size_t position) { return entries_[position]; }
    void Clear() { entries_.clear(); }

    /// One JSON object a line.
    void WriteJsonLines(std::ostream& out) const;
    /// The format that chrome://tracing and Perfetto open.
    void WriteChromeTrace(std::ostream& out) const;
    /// For a file of that name: ".trace.json" asks for the Chrome format, anything else for JSON
    /// lines.
    void WriteFor(const std::string& file, std::ostream& out) const;

private:
    std::vector<TraceEntry> entries_;
};

}  // namespace machine
