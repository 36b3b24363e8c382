// What a configuration file asks for, key by key, as the module reads it: the module's own reader
// and its own stream of events say which key means what, so nothing is decided twice.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace host::configure {

/// A line of the configuration file.
struct KeyPlace {
    std::string section;
    std::string key;
    std::size_t line = 0;
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
    std::vector<KeyPlace> keys;  ///< all keys that lead to it, `at` among them
    std::vector<std::string> wanted;
    std::vector<std::string> notes;  ///< what a reader of the file might not expect
};

/// "DNS servers"
const char* Label(Setting::Kind kind);

/// "dns-servers", for programs.
const char* Identifier(Setting::Kind kind);

/// The settings of the file by line. A file that cannot be read has none; one that the module
/// refuses has those that it came to.
std::vector<Setting> ReadSettings(const std::string& path);

}  // namespace host::configure
