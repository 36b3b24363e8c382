#include "machine/ImportTable.h"

#include <algorithm>
#include <mutex>
#include <system_error>
#include <utility>

#include "machine/LeafLock.h"
#include "machine/Text.h"

namespace machine {
namespace {

template <typename Structure>
Structure* At(HMODULE image, std::uint64_t offset) {
    return reinterpret_cast<Structure*>(reinterpret_cast<std::uintptr_t>(image) + offset);
}

/// Winsock's import library of the platform's own tools names its old functions by number.
std::string NameOfWinsockNumber(std::uint64_t number) {
    switch (number) {
        case 52:
            return "gethostbyname";
        case 111:
            return "WSAGetLastError";
        case 115:
            return "WSAStartup";
        default:
            return "#" + std::to_string(number);
    }
}

constinit LeafLock writing;

/// Writes one slot of a table that the loader left read-only. Gives the Windows error, 0 when done.
DWORD Write(void** place, void* value) noexcept {
    // Two writers of one page would take its protection from each other.
    const std::lock_guard lock(writing);
    DWORD protection = 0;
    if (VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &protection) == FALSE) {
        return GetLastError();
    }
    InterlockedExchangePointer(place, value);
    VirtualProtect(place, sizeof(*place), protection, &protection);
    return 0;
}

}  // namespace

std::vector<Import> ListImports(HMODULE image) {
    std::vector<Import> imports;
    const auto* dos = At<IMAGE_DOS_HEADER>(image, 0);
    const auto* headers = At<IMAGE_NT_HEADERS64>(image, static_cast<std::uint32_t>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) {
        return imports;
    }
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(image, directory.VirtualAddress);
         library->Name != 0; ++library) {
        const std::string libraryName = At<char>(image, library->Name);
        auto* place = At<void*>(image, library->FirstThunk);
        for (auto* name = At<IMAGE_THUNK_DATA64>(image, library->OriginalFirstThunk);
             name->u1.AddressOfData != 0; ++name, ++place) {
            std::string function;
            if (IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal)) {
                const std::uint64_t number = IMAGE_ORDINAL64(name->u1.Ordinal);
                function = EqualNoCase(libraryName, "ws2_32.dll") ? NameOfWinsockNumber(number)
                                                                  : "#" + std::to_string(number);
            } else {
                function = At<IMAGE_IMPORT_BY_NAME>(image, name->u1.AddressOfData)->Name;
            }
            imports.push_back({libraryName, std::move(function), place});
        }
    }
    return imports;
}

ImportTable::ImportTable(HMODULE image, std::span<const Hook> hooks) : image_(image) {
    for (const Import& import : ListImports(image)) {
        const auto hook = std::ranges::find(hooks, import.function, &Hook::function);
        if (hook == hooks.end()) {
            continue;
        }
        if (hook->original != nullptr && *hook->original == nullptr) {
            *hook->original = *import.place;
        }
        replaced_.push_back({import.place, *import.place});
        if (const DWORD error = Write(import.place, hook->replacement); error != 0) {
            replaced_.pop_back();
            for (const Slot& slot : replaced_) {
                Write(slot.place, slot.original);
            }
            throw std::system_error(static_cast<int>(error), std::system_category(),
                                    "cannot patch the import of " + import.function);
        }
    }
}

ImportTable::~ImportTable() {
    for (const Slot& slot : replaced_) {
        Write(slot.place, slot.original);
    }
}

ImportTable::ImportTable(ImportTable&& other) noexcept
    : image_(other.image_), replaced_(std::exchange(other.replaced_, {})) {}

}  // namespace machine
