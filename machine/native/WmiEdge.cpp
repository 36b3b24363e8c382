// Queries and methods of the simulated machine, in the place of a connection to WMI.
#include <stdexcept>
#include <string_view>

#include "common/err/GeneralError.h"
#include "common/sys/Wmi.h"
#include "machine/cim/ObjectPath.h"
#include "machine/cim/Wql.h"
#include "machine/native/Machine.h"

namespace sys {

namespace {

using machine::cim::Properties;
using machine::cim::Value;
using native::Call;
using native::TheMachine;

/// Names are ASCII.
std::string Narrow(std::wstring_view name) {
    return {name.begin(), name.end()};
}

[[noreturn]] void Throw(const WmiFailure& failure, std::uint32_t code) {
    throw CWmiError(failure.message, failure.line, static_cast<std::int32_t>(code), 0);
}

class Row final : public WmiRow {
public:
    explicit Row(const Properties& properties) : properties_(properties) {}

    bool ReadText(const wchar_t* property, std::string& text) override {
        text = Get<std::string>(property);
        return true;
    }
    bool ReadInteger(const wchar_t* property, std::uint32_t& integer) override {
        integer = static_cast<std::uint32_t>(Get<std::int32_t>(property));
        return true;
    }
    void ReadBoolean(const wchar_t* property, bool& flag) override { flag = Get<bool>(property); }
    void ReadTexts(const wchar_t* property, std::vector<std::string>& texts) override {
        const auto list = Get<machine::TextList>(property);
        texts.insert(texts.end(), list.begin(), list.end());
    }
    bool ReadFirstText(const wchar_t* property, std::string& text) override {
        const auto list = Get<machine::TextList>(property);
        if (list.empty()) {
            throw std::invalid_argument("Invalid argument passed to attach()");
        }
        text = list.front();
        return true;
    }

private:
    /// The empty value for null. The module asks for what its queries select, and for the type that
    /// Windows has: anything else throws.
    template <typename Content>
    Content Get(const wchar_t* name) const {
        const auto* const property = FindProperty(properties_, Narrow(name));
        if (property == nullptr) {
            throw std::logic_error("the row has no " + Narrow(name));
        }
        return std::holds_alternative<std::monostate>(property->value)
                   ? Content()
                   : std::get<Content>(property->value);
    }

    const Properties& properties_;
};

class Parameters final : public WmiInParameters {
public:
    explicit Parameters(Properties& properties) : properties_(properties) {}

    void PutText(const wchar_t* name, const std::string& text) override { Put(name, text); }
    void PutSecret(const wchar_t* name, const std::string& text) override {
        TheMachine().lastPassword = text;
        Put(name, text);
    }
    void PutInteger(const wchar_t* name, std::int32_t value) override { Put(name, value); }
    void PutTexts(const wchar_t* name, const std::vector<std::string>& texts) override {
        Put(name, texts);
    }

private:
    void Put(const wchar_t* name, Value value) {
        auto* const property = FindProperty(properties_, Narrow(name));
        if (property == nullptr) {
            throw std::logic_error("the method has no parameter " + Narrow(name));
        }
        property->value = std::move(value);
    }

    Properties& properties_;
};

}  // namespace

Result RunWmiQuery(const WmiQuery& query, const std::string& text, WmiRows rows,
                   const std::function<void(WmiRow&)>& visit) {
    std::vector<Properties> found;
    {
        Call call("ExecQuery", {{"query", text}});
        if (const auto fault = call.Fault()) {
            Throw(query.failure, *fault);
        }
        machine::cim::Query parsed;
        if (!ParseQuery(text, parsed) ||
            RunQuery(TheMachine().state, parsed, found) != machine::cim::QueryAnswer::kRows) {
            throw std::logic_error("the machine cannot answer " + text);
        }
    }
    if (rows == WmiRows::kFirst && found.size() > 1) {
        found.resize(1);
    }
    for (const Properties& properties : found) {
        Row row(properties);
        visit(row);
    }
    return 0;
}

std::uint32_t RunWmiMethod(const WmiMethod& method, const std::string& objectPath,
                           const std::function<void(WmiInParameters&)>& fill) {
    const std::string name = Narrow(method.name);
    const auto* const definition = machine::cim::FindClass(Narrow(method.className));
    const auto* const called = definition == nullptr ? nullptr : FindMethod(*definition, name);
    machine::cim::ObjectPath path;
    if (called == nullptr || !ParseObjectPath(objectPath, path)) {
        throw std::logic_error("the machine cannot call " + name + " on " + objectPath);
    }
    Properties in = called->inParameters;
    if (fill) {
        Parameters parameters(in);
        fill(parameters);
    }
    Call call("ExecMethod",
              {{"path", objectPath}, {"method", name}, {"in", DescribeParameters(in)}});
    if (const auto fault = call.Fault()) {
        Throw(method.failure, *fault);
    }
    machine::State& state = TheMachine().state;
    if (const auto code = CheckTarget(state, *definition, *called, path); code != 0) {
        Throw(method.failure, code);
    }
    const auto forced = call.Outcome(called->name);
    std::uint64_t milliseconds = 0;
    const std::uint32_t returned =
        forced ? *forced : called->run({state, path.key, milliseconds}, in);
    TheMachine().PassTime(milliseconds);
    call.AddArgument("ReturnValue", std::to_string(returned));
    return returned;
}

std::uint32_t RunComputerMethod(const WmiMethod& method,
                                const std::function<void(WmiInParameters&)>& fill) {
    std::string name;
    RunWmiQuery({kComputerNameQuery, method.failure}, kComputerNameQuery, WmiRows::kFirst,
                [&name](WmiRow& row) { row.ReadText(L"Name", name); });
    return RunWmiMethod(method, ComputerPath(name), fill);
}

}  // namespace sys
