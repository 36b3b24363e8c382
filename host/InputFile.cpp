#include "host/InputFile.h"

#include <windows.h>

#include "common/lang/Handle.h"
#include "host/Files.h"
#include "host/HostError.h"
#include "host/Text.h"
#include "host/configure/PrivateFolder.h"

namespace host {

namespace {

constexpr std::size_t kMostOfConfiguration = 16 << 20;
constexpr const char* kStandardInput = "-";

[[noreturn]] void Refuse(const std::string& name, const std::string& reason) {
    throw HostError("cannot read " + name + ": " + reason, kBadInput);
}

[[noreturn]] void RefuseSize(const std::string& name) {
    Refuse(name, "it is larger than 16 MB, which no configuration is");
}

}  // namespace

InputFile::InputFile(const std::string& named)
    : name_(named == kStandardInput ? "standard input" : named), path_(named) {
    lang::FileHandle opened;
    HANDLE file = GetStdHandle(STD_INPUT_HANDLE);
    if (named != kStandardInput) {
        opened = OpenToRead(named);
        if (!opened) {
            Refuse(name_, DescribeSystemError(GetLastError()));
        }
        file = opened.Get();
        const DWORD type = GetFileType(file);
        LARGE_INTEGER size{};
        if (type == FILE_TYPE_DISK) {
            if (GetFileSizeEx(file, &size) != 0 &&
                static_cast<std::size_t>(size.QuadPart) > kMostOfConfiguration) {
                RefuseSize(name_);
            }
            opened.Reset();
            static_cast<void>(ReadWholeFile(named));  // says why where it cannot be read
            return;
        }
        if (type != FILE_TYPE_PIPE) {
            Refuse(name_, "it is a device");
        }
    }
    const std::optional<std::string> text = ReadToEnd(file, kMostOfConfiguration);
    if (!text) {
        Refuse(name_, DescribeSystemError(GetLastError()));
    }
    if (text->size() > kMostOfConfiguration) {
        RefuseSize(name_);
    }
    folder_ = std::make_unique<configure::PrivateFolder>();
    path_ = folder_->Path() + "\\input.ini";
    WriteWholeFile(path_, *text);
}

InputFile::~InputFile() = default;

}  // namespace host
