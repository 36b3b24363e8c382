// The registry of the simulated machine under HKEY_LOCAL_MACHINE: the keys that the state lists,
// and those that follow from its adapters.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "machine/State.h"

namespace machine::model {

// Where the suffix search lists stand, the one set by hand and the one of a policy, both in the
// value SearchList.
inline constexpr char kParametersKey[] = R"(SYSTEM\CurrentControlSet\Services\Tcpip\Parameters)";
inline constexpr char kDnsPolicyKey[] = R"(SOFTWARE\Policies\Microsoft\Windows NT\DNSClient)";

/// The path of a key below another one; either may be empty, and blunders of "\" at the ends do not
/// matter.
std::string JoinKeyPath(std::string_view base, std::string_view below);

bool KeyExists(const State& state, std::string_view path);

/// The value of the key, listed or derived; a listed one comes first.
std::optional<RegistryValue> FindValue(const State& state, std::string_view path,
                                       std::string_view name);

/// Adds the key unless it exists.
void CreateKey(State& state, std::string_view path);

/// Drops a listed "NameServer" of the adapter's interface key: the adapter's own servers rule
/// again.
void ForgetNameServer(State& state, const Adapter& adapter);

}  // namespace machine::model
