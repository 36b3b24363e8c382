// Property values of the simulated WMI.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "machine/State.h"

namespace machine::cim {

/// Null, boolean, any whole number of up to 32 bits, text, list of texts.
using Value = std::variant<std::monostate, bool, std::int32_t, std::string, TextList>;

enum class Type { kBoolean, kUInt16, kUInt32, kSInt32, kText, kTexts, kUInt16s };

struct Property {
    std::string_view name;  ///< of a table that lives on
    Type type;
    Value value = {};
};

using Properties = std::vector<Property>;

/// Null when there is none of this name; names compare without regard to case.
const Property* FindProperty(const Properties& properties, std::string_view name);
Property* FindProperty(Properties& properties, std::string_view name);

/// For the trace.
std::string Describe(const Value& value);
/// Whether the trace must not show what a property of this name holds.
bool IsSecret(std::string_view propertyName);
/// "Name="PC2", Password=***"
std::string DescribeParameters(const Properties& parameters);

}  // namespace machine::cim
