// The files that the command line names: read and written whole, and never one over another.
#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/lang/Handle.h"

namespace host {

/// Refuses an empty name: an unset shell variable would otherwise pass for an option that was not
/// given.
const CLI::Validator& NotEmpty();

/// With drive and folder. The file need not be there.
std::string FullPath(const std::string& path);

/// An option, or with a bare name an argument, that takes a file's name; an empty one is refused.
CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& file,
                     const std::string& description);

/// Opens the file for reading while others may do with it what they like; null and the last error
/// when that fails.
lang::FileHandle OpenToRead(const std::string& path);

/// What the file holds. Throws HostError (bad input) with the system's reason, and for a file of
/// more than 64 MB: what has no end is no input either.
std::string ReadWholeFile(const std::string& path);

/// Everything up to the end of an open file or pipe; nothing, and the last error, when that fails.
/// Stops when it has more than `most` bytes.
std::optional<std::string> ReadToEnd(void* file, std::size_t most);

/// Writes the text into the file, or the device, of that name, which keeps its identity and its
/// rights. Throws HostError with the system's reason; a file is then as it was before.
void WriteWholeFile(const std::string& path, std::string_view text);

/// A file of the command line: how people call it ("the configuration file", "--trace") and its
/// path; without a path it is none.
struct NamedFile {
    std::string name;
    std::string path;
};

/// Throws HostError (wrong usage) when `output` is one of the others, whatever their paths look
/// like.
void RefuseToOverwrite(const NamedFile& output, const std::vector<NamedFile>& others);

}  // namespace host
