#pragma once

#include <string>

#include "host/check/Finding.h"
#include "host/reading/File.h"

namespace host::check {

/// A checked configuration file.
struct CheckedFile {
    reading::File file;
    Findings findings;  ///< in the order of the file
};

/// Finds every fault of the file. An error is what makes the module or Windows refuse the
/// configuration, or what cannot have been meant; a warning says what the module will do that a
/// reader of the file might not expect. A file without errors runs without a configuration error on
/// a machine that has its adapters, its domain and the account.
CheckedFile CheckFile(const std::string& path);

}  // namespace host::check
