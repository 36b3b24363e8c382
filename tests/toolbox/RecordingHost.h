#pragma once

#include <cstdarg>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "common/util/Strings.h"
#include "toolbox/config/HostInterface.h"

namespace toolbox_tests {

/// A host whose message and sink note every call in one list, in the order of the calls. The sink
/// notes finished lines, or what it was handed when `keepFormats` is set.
class RecordingHost final : public IHostMessage, public IHostLogSink {
public:
    RecordingHost(std::string kind, std::string name)
        : kind_(std::move(kind)), name_(std::move(name)) {}

    std::vector<std::string> calls;
    std::map<std::string, std::string> fields;
    bool keepFormats = false;

    void WriteInteger(const char* name, std::int32_t value) override {
        calls.push_back(util::Format("WriteInteger %s=%d", name, value));
    }
    void WriteText(const char* name, const char* value) override {
        calls.push_back(util::Format("WriteText %s=%s", name, value));
    }
    void SetField(const char* name, const char* value) override {
        calls.push_back(util::Format("SetField %s=%s", name, value));
    }
    const char* GetKind() override {
        calls.emplace_back("GetKind");
        return kind_.c_str();
    }
    const char* GetName() override {
        calls.emplace_back("GetName");
        return name_.c_str();
    }
    const char* GetField(const char* name) override {
        calls.push_back(util::Format("GetField %s", name));
        return fields[name].c_str();
    }
    void ReadInteger(const char* name, std::int32_t* value) override {
        calls.push_back(util::Format("ReadInteger %s", name));
        if (onReadInteger != nullptr) {
            onReadInteger();
        }
        if (fields.contains(name)) {
            *value = std::stoi(fields[name]);
        }
    }
    void Log(std::uint32_t level, const char* format, ...) override {
        std::va_list arguments;
        va_start(arguments, format);
        const std::string text = keepFormats ? format : util::FormatV(format, arguments);
        va_end(arguments);
        calls.push_back("Log " + util::IntToString(static_cast<std::int32_t>(level)) + " " + text);
    }

    /// Called by ReadInteger; for what a handler does when the host throws.
    void (*onReadInteger)() = nullptr;

private:
    std::string kind_;
    std::string name_;
};

}  // namespace toolbox_tests
