// Property values of the simulated WMI and their VARIANT form.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "machine/State.h"

namespace machine::wmi {

// Null, boolean, any whole number of up to 32 bits, text, list of texts.
using Value = std::variant<std::monostate, bool, std::int32_t, std::string, TextList>;

enum class Type { Boolean, UInt16, UInt32, SInt32, Text, Texts, UInt16s };

struct Property {
    std::string name;
    Type type;
    Value value = {};
};

using Properties = std::vector<Property>;

// Null when there is none of this name; names compare without regard to case.
const Property* FindProperty(const Properties& properties, std::string_view name);
Property* FindProperty(Properties& properties, std::string_view name);

CIMTYPE CimTypeOf(Type type);

// The VARIANT that Windows delivers for the value: whole numbers as VT_I4 whatever their sign,
// nulls as VT_NULL. The caller owns it. Gives E_OUTOFMEMORY when a text cannot be made.
HRESULT ToVariant(const Value& value, VARIANT& variant);

// The value of a VARIANT put into a property of the type; nothing when its type does not fit.
std::optional<Value> FromVariant(const VARIANT& variant, Type type);

// For the trace.
std::string Describe(const Value& value);

}  // namespace machine::wmi
