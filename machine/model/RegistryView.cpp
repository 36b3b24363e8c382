#include "machine/model/RegistryView.h"

#include <algorithm>

#include "machine/Text.h"

namespace machine::model {
namespace {

constexpr std::string_view kDeviceKeys = R"(SYSTEM\CurrentControlSet\Enum)";
constexpr std::string_view kInterfaceKeys =
    R"(SYSTEM\CurrentControlSet\Services\Tcpip\Parameters\Interfaces)";

/// What follows the last backslash that does not end the text.
std::string_view LastPart(std::string_view path) {
    while (path.ends_with('\\')) {
        path.remove_suffix(1);
    }
    return path.substr(path.rfind('\\') + 1);
}

/// The keys that adapters have and the one of their suffixes; those of that last part only, if
/// there is one.
std::vector<RegistryKey> DerivedKeys(const State& state, std::string_view lastPart) {
    const auto isWanted = [lastPart](const std::optional<std::string>& name) {
        return name && (lastPart.empty() || EqualNoCase(LastPart(*name), lastPart));
    };
    std::vector<RegistryKey> keys;
    if (isWanted(kParametersKey)) {
        keys.push_back(
            {kParametersKey,
             {RegistryValue::Text("SearchList", machine::Join(state.dnsSuffixes, ","))}});
    }
    for (const Adapter& adapter : state.adapters) {
        if (isWanted(adapter.pnpDeviceId)) {
            RegistryKey key{JoinKeyPath(kDeviceKeys, *adapter.pnpDeviceId), {}};
            if (adapter.pciLocation) {
                key.values.push_back(
                    RegistryValue::Text("LocationInformation", *adapter.pciLocation));
            }
            keys.push_back(std::move(key));
        }
        if (isWanted(adapter.settingId)) {
            keys.push_back(
                {JoinKeyPath(kInterfaceKeys, *adapter.settingId),
                 {RegistryValue::Text("NameServer", machine::Join(adapter.staticDns, ",")),
                  RegistryValue::Number("EnableDHCP",
                                        adapter.dhcpEnabled.value_or(false) ? 1 : 0)}});
        }
    }
    return keys;
}

bool IsSameOrAbove(std::string_view upper, std::string_view path) {
    return path.size() >= upper.size() && EqualNoCase(path.substr(0, upper.size()), upper) &&
           (path.size() == upper.size() || upper.empty() || path[upper.size()] == '\\');
}

const RegistryValue* FindIn(const std::vector<RegistryKey>& keys, std::string_view path,
                            std::string_view name) {
    for (const RegistryKey& key : keys) {
        if (EqualNoCase(JoinKeyPath(key.path, ""), path)) {
            for (const RegistryValue& value : key.values) {
                if (EqualNoCase(value.name, name)) {
                    return &value;
                }
            }
        }
    }
    return nullptr;
}

}  // namespace

std::string JoinKeyPath(std::string_view base, std::string_view below) {
    std::string path;
    for (const std::string_view text : {base, below}) {
        for (const std::string& part : Split(text, '\\')) {
            if (!part.empty()) {
                path += path.empty() ? part : "\\" + part;
            }
        }
    }
    return path;
}

bool KeyExists(const State& state, std::string_view path) {
    const auto holds = [path](const RegistryKey& key) {
        return IsSameOrAbove(path, JoinKeyPath(key.path, ""));
    };
    return path.empty() || std::ranges::any_of(state.registry, holds) ||
           std::ranges::any_of(DerivedKeys(state, LastPart(path)), holds) ||
           std::ranges::any_of(DerivedKeys(state, {}), holds);
}

std::optional<RegistryValue> FindValue(const State& state, std::string_view path,
                                       std::string_view name) {
    if (const RegistryValue* listed = FindIn(state.registry, path, name)) {
        return *listed;
    }
    const auto derived = DerivedKeys(state, LastPart(path));
    if (const RegistryValue* value = FindIn(derived, path, name)) {
        return *value;
    }
    return std::nullopt;
}

void CreateKey(State& state, std::string_view path) {
    if (!KeyExists(state, path)) {
        state.registry.push_back({std::string(path), {}});
    }
}

void ForgetNameServer(State& state, const Adapter& adapter) {
    if (!adapter.settingId) {
        return;
    }
    const std::string path = JoinKeyPath(kInterfaceKeys, *adapter.settingId);
    for (RegistryKey& key : state.registry) {
        if (EqualNoCase(JoinKeyPath(key.path, ""), path)) {
            std::erase_if(key.values, [](const RegistryValue& value) {
                return EqualNoCase(value.name, "NameServer");
            });
        }
    }
}

}  // namespace machine::model
