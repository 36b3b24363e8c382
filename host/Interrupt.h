#pragma once

namespace host {

/// From here on Ctrl-C and its like end the program with a line on standard error and an exit code
/// of their own, and what it has made for itself is removed. `onTerminal`: the line goes to a
/// terminal, where something may stand already.
void EndOnInterrupt(bool onTerminal);

}  // namespace host
