// Replaces functions in the import table of a loaded image.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

struct Hook {
    std::string_view function;
    void* replacement;
    void** original = nullptr;  ///< filled before the first table is patched, where wanted
};

/// A patched image; the destructor puts its table back, provided that the image is still loaded.
/// Its threads may run meanwhile: each reads the one function or the other.
class ImportTable {
public:
    /// Throws std::system_error when the table cannot be written.
    ImportTable(HMODULE image, std::span<const Hook> hooks);
    ~ImportTable();
    ImportTable(ImportTable&& other) noexcept;
    ImportTable& operator=(ImportTable&&) = delete;

    HMODULE Image() const { return image_; }
    /// The image keeps what stands in its table now, as long as it is loaded.
    void Leave() noexcept { replaced_.clear(); }

private:
    struct Slot {
        void** place;
        void* original;
    };

    HMODULE image_;
    std::vector<Slot> replaced_;
};

struct Import {
    std::string library;
    std::string function;  ///< "#52" when imported by number
    void** place;
};

/// Every import of the image, in table order.
std::vector<Import> ListImports(HMODULE image);

}  // namespace machine
