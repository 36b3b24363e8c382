#include "host/Files.h"

#include <windows.h>

#include <algorithm>
#include <optional>

#include "common/lang/Handle.h"
#include "common/util/FileUtils.h"
#include "host/HostError.h"
#include "host/Text.h"

namespace host {

namespace {

using lang::FileHandle;

constexpr std::size_t kMostBytes = 64 << 20;
constexpr DWORD kPiece = 1 << 20;
// Most files are small, and touching a megabyte for one costs more than reading it.
constexpr DWORD kFirstPiece = 16 << 10;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Of the last Windows error. To be asked before anything else calls Windows.
std::string Reason() {
    return DescribeSystemError(GetLastError());
}

bool WriteAll(HANDLE file, std::string_view text) {
    while (!text.empty()) {
        const auto piece = static_cast<DWORD>(std::min<std::size_t>(text.size(), kPiece));
        DWORD written = 0;
        if (WriteFile(file, text.data(), piece, &written, nullptr) == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

/// In place of what the file holds.
bool Replace(HANDLE file, std::string_view text) {
    return SetFilePointer(file, 0, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER &&
           WriteAll(file, text) && SetEndOfFile(file) != 0;
}

[[noreturn]] void RefuseToWrite(const std::string& path, const std::string& reason) {
    throw HostError("cannot write " + path + ": " + reason);
}

}  // namespace

std::string FullPath(const std::string& path) {
    const DWORD size = GetFullPathNameA(path.c_str(), 0, nullptr, nullptr);
    std::string full(size + 1U, '\0');
    const DWORD length = GetFullPathNameA(path.c_str(), size, full.data(), nullptr);
    return length == 0 || length >= size ? path : full.substr(0, length);
}

std::optional<std::string> ReadToEnd(void* file, std::size_t most) {
    std::string text;
    DWORD piece = kFirstPiece;
    for (DWORD count = 1; count != 0 && text.size() <= most; piece = std::min(2 * piece, kPiece)) {
        const std::size_t before = text.size();
        text.resize(before + piece);
        const bool isRead = ReadFile(file, text.data() + before, piece, &count, nullptr) != 0;
        if (!isRead && GetLastError() == ERROR_BROKEN_PIPE) {
            count = 0;  // its writer has gone: the end
        } else if (!isRead) {
            return std::nullopt;
        }
        text.resize(before + count);
    }
    return text;
}

const CLI::Validator& NotEmpty() {
    static const CLI::Validator kNotEmpty(
        [](const std::string& text) {
            return std::string(text.empty() ? "must not be empty" : "");
        },
        "");
    return kNotEmpty;
}

CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& file,
                     const std::string& description) {
    return command.add_option(name, file, description)->type_name("FILE")->check(NotEmpty());
}

FileHandle OpenToRead(const std::string& path) {
    return FileHandle(CreateFileA(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::string ReadWholeFile(const std::string& path) {
    const FileHandle file = OpenToRead(path);
    std::optional<std::string> text;
    if (file) {
        text = ReadToEnd(file.Get(), kMostBytes);
    }
    if (!text) {
        throw HostError("cannot read " + path + ": " + Reason(), kBadInput);
    }
    if (text->size() > kMostBytes) {
        throw HostError("cannot read " + path + ": it holds more than 64 MB", kBadInput);
    }
    return std::move(*text);
}

void WriteWholeFile(const std::string& path, std::string_view text) {
    FileHandle file(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr,
                                OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const bool isNew = GetLastError() != ERROR_ALREADY_EXISTS;
    if (!file) {
        RefuseToWrite(path, Reason());
    }
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) {
        if (!WriteAll(file.Get(), text)) {
            RefuseToWrite(path, Reason());
        }
        return;
    }
    const std::optional<std::string> before = ReadToEnd(file.Get(), kMostBytes);
    if (Replace(file.Get(), text)) {
        return;
    }
    const std::string reason = Reason();
    if (isNew) {
        file.Reset();
        DeleteFileA(path.c_str());
    } else if (before && before->size() <= kMostBytes) {
        Replace(file.Get(), *before);  // the room that it takes is still its own
    }
    RefuseToWrite(path, reason);
}

void RefuseToOverwrite(const NamedFile& output, const std::vector<NamedFile>& others) {
    for (const NamedFile& other : others) {
        if (!output.path.empty() && !other.path.empty() &&
            util::IsSameFile(output.path, other.path)) {
            throw HostError(output.name + " " + output.path + " would overwrite " + other.name,
                            kWrongUsage);
        }
    }
}

}  // namespace host
