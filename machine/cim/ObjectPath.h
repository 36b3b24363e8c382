// What a WMI object path names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "machine/cim/Schema.h"

namespace machine::cim {

/// "Win32_ComputerSystem.Name=\"PC1\"" and its like; a class name alone names the class itself.
struct ObjectPath {
    std::string className;
    bool isClass = true;
    std::string keyName;  ///< may be empty: the class's only key
    Value key;
};

/// False when the text is no object path.
bool ParseObjectPath(std::string_view text, ObjectPath& path);

/// The row of the class that the path names; nothing when the machine has none.
std::optional<Properties> FindObject(const State& state, const Class& definition,
                                     const ObjectPath& path);

inline constexpr std::uint32_t kNotFound = 0x80041002;       ///< WBEM_E_NOT_FOUND
inline constexpr std::uint32_t kInvalidMethod = 0x8004102E;  ///< WBEM_E_INVALID_METHOD

/// Whether the method can be called on what the path names: 0, or one of the codes above.
std::uint32_t CheckTarget(const State& state, const Class& definition, const Method& method,
                          const ObjectPath& path);

}  // namespace machine::cim
