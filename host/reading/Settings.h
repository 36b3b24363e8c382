// What a configuration file asks for, setting by setting.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/reading/File.h"

namespace host::reading {

/// A key of the file.
struct KeyPlace {
    std::string section;
    std::string key;
    Place place;       ///< of the key
    Place valuePlace;  ///< of its value, on the same line
};

/// One value that a setting asks for. Where several pieces make it up it stands where the first is.
struct Value {
    std::string text;
    Place place;
};

/// One thing that the file asks for. Texts are in the system code page.
struct Setting {
    enum class Kind {
        kAdapter,  ///< an adapter section; its description is a label and no wish
        kDhcp,
        kAddresses,
        kGateways,
        kDnsServers,
        kDnsSuffixes,
        kRoutes,
        kWorkgroup,
        kDomain,
        kUnit,
        kComputerName,
        kAccount,  ///< the enciphered account; its values are never kept here
        kRestartAnswer,
        kUnused,  ///< keys that the module does not read, or reads in vain
    };

    Kind kind{};
    std::size_t order = 0;  ///< position in the order in which the module makes commands of them
    /// Which of the adapter sections it belongs to, counted from 0 over those that the module makes
    /// an adapter of.
    std::optional<std::size_t> adapter;
    KeyPlace at;                 ///< the key that carries the value
    std::vector<KeyPlace> keys;  ///< all keys that lead to it, `at` among them, by line
    std::vector<Value> wanted;
    bool leftAlone = false;          ///< the file says that the machine keeps what it has
    std::vector<std::string> notes;  ///< what a reader of the file might not expect
};

/// The texts of the values alone.
std::vector<std::string> WantedTexts(const Setting& setting);

/// The settings of the file by line. A file that cannot be read has none; one that the module
/// refuses has those that it came to.
std::vector<Setting> SettingsOf(const File& file);

/// "10.0.0.0 mask 255.0.0.0 via 10.1.1.1 metric 5"
std::string RouteText(const std::string& destination, const std::string& mask,
                      const std::string& gateway, std::int32_t metric);

}  // namespace host::reading
