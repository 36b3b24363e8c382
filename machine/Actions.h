// What a run did to the machine, out of the record of its platform calls.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "machine/Trace.h"

namespace machine {

/// The calls that change something, in order, a line each:
///     EnableStatic on Win32_NetworkAdapterConfiguration.Index=2 (IPAddress={10.0.0.5}, ...) -> 0
///     route -p ADD 10.9.0.0 mask 255.255.0.0 10.0.0.1 METRIC 3 -> 0
///     sleep 8000
///     bind LDAP://OU=West,DC=corp,DC=example as corp.example\joiner -> S_OK
///     move LDAP://CN=PC1,... -> S_OK
/// In-parameters stand in the order in which they were put. A call that did not come as far as to a
/// value ends in what it gave instead: "-> FALSE, error 2".
std::vector<std::string> ListActions(std::span<const TraceEntry> calls);

/// The value of an argument; empty where there is none.
std::string ArgumentOf(const TraceEntry& call, std::string_view name);

}  // namespace machine
