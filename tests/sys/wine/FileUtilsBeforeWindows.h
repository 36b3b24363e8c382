#pragma once

#include <string>

namespace sys_tests {

/// The file functions as a source sees them that includes <windows.h> after their header.
void MoveThroughMacros(const std::string& source, const std::string& destination);
void DeleteThroughMacros(const std::string& path);

}  // namespace sys_tests
