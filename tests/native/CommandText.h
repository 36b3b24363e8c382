#pragma once

#include <string>

#include "common/config/command/IConfigureCommand.h"

namespace fake {

/// A command list as text: what each command changes when it is executed, whether needed or not,
/// in the words of the machine's record; its class where that is nothing. "; " stands between
/// commands, and an adapter's are bracketed behind its place and its index (n when there is none):
///
///     ConfigureNic 2/1/0 index 7 {enableDhcp(7); Pause(8000)}; Reboot
///
/// An error shows as "SetStatic threw SetStatic:62(2) Static IP addresses/masks list empty".
/// Executes the commands of adapters without an index as on index 99.
std::string TextOf(const config::command::CommandList& commands);

/// "source:line(code) message" of the error in flight, which must be of the module's family; other
/// errors are thrown on.
std::string ErrorText();

}  // namespace fake
