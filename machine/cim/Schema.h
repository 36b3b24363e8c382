// The WMI classes that the simulated machine has in root\cimv2, with their rows and methods.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "machine/State.h"
#include "machine/cim/Value.h"

namespace machine::cim {

/// What a method works on: the machine and, for a method of an instance, the instance's key.
struct Target {
    State& state;
    Value key;
    std::uint64_t& milliseconds;  ///< 0 at first: how long the method works before it answers
};

struct Method {
    std::string_view name;
    bool isStatic;
    Properties inParameters;
    /// Gives the "ReturnValue".
    std::uint32_t (*run)(const Target& target, const Properties& in);
};

using OptionalIndex = std::optional<std::uint32_t>;

struct Class {
    std::string_view name;
    std::string_view key;   ///< the property that object paths name
    Properties properties;  ///< names and types
    /// With an index only those of adapters of that index, in a class of adapters.
    std::vector<Properties> (*rows)(const State& state, OptionalIndex index);
    std::vector<Method> methods;
};

/// The index that rows must have whose property has that value, where it is "Index": asking a
/// machine of many adapters for one must not make the rows of all.
OptionalIndex IndexOf(std::string_view property, const Value& value);

/// Null when the namespace has no such class.
const Class* FindClass(std::string_view name);
const Method* FindMethod(const Class& definition, std::string_view name);

/// The methods of the two classes that have some.
std::vector<Method> AdapterMethods();
std::vector<Method> ComputerMethods();

}  // namespace machine::cim
