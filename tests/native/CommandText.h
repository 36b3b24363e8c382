#pragma once

#include <span>
#include <string>
#include <string_view>

#include "common/config/command/IConfigureCommand.h"
#include "machine/Trace.h"

namespace native {

/// What calls changed, or would have changed, joined by "; ":
///     EnableStatic 7 {10.0.0.1}, {255.0.0.0}; SetDNSSuffixSearchOrder {corp.example}; sleep 8000
///     route DELETE 10.0.0.0; Rename (Name="PC9", Password=***, UserName="joe")
///     bind LDAP://OU=West,DC=corp,DC=example as corp.example\joe; move LDAP://CN=PC1,...
std::string ActionsOf(std::span<const machine::TraceEntry> calls);

/// A command list as text: what each command does when it is executed on a machine whose methods
/// and whose route program do nothing, with the password that it hands on; its class where that is
/// nothing. An adapter's commands are bracketed after its place and its index (n when there is
/// none):
///
///     ConfigureNic 2/1/0 index 7 {EnableDHCP 7; sleep 8000}; Reboot
///
/// An error shows as "SetStatic threw SetStatic:62(2) Static IP addresses/masks list empty".
/// The commands of adapters without an index are executed on index 5.
std::string TextOf(const config::command::CommandList& commands);

/// "source:line(code) message" of the error in flight, which must be of the module's family; other
/// errors are thrown on.
std::string ErrorText();

}  // namespace native
