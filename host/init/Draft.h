// A description tried on a machine before it is told: what the module fails at is set aside.
#pragma once

#include <string>

#include "host/configure/Passes.h"
#include "host/init/Description.h"

namespace host::init {

struct Draft {
    Description description;  ///< with what the module failed at set aside
    std::string text;
    configure::Outcome outcome;  ///< of the text on a copy of the machine
};

/// Writes the file and lets the module run it, with the restarts that it asks for when `untilDone`.
Draft Try(const std::string& module, Description description, const Texts& heading,
          const machine::State& machine, bool untilDone);

}  // namespace host::init
