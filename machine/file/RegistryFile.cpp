#include "machine/file/RegistryFile.h"

#include <algorithm>

#include "machine/CodePage.h"
#include "machine/Text.h"

namespace machine::file {
namespace {

struct TypeName {
    std::uint32_t type;
    std::string_view name;
};

constexpr TypeName kTypeNames[] = {
    {0, "REG_NONE"},  {1, "REG_SZ"},       {2, "REG_EXPAND_SZ"}, {3, "REG_BINARY"},
    {4, "REG_DWORD"}, {7, "REG_MULTI_SZ"}, {11, "REG_QWORD"},
};

std::uint32_t ReadType(const Node& node) {
    const std::string name = node.Text();
    const auto* found = std::ranges::find(kTypeNames, name, &TypeName::name);
    if (found == std::end(kTypeNames)) {
        node.Refuse("a registry type such as \"REG_SZ\"");
    }
    return found->type;
}

std::string ReadBytes(const Node& node) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string bytes;
    const std::string text = LowerCase(node.Text());
    for (const std::string& pair : text.empty() ? TextList() : Split(text, ' ')) {
        const auto high = pair.size() == 2 ? kDigits.find(pair[0]) : std::string_view::npos;
        const auto low = pair.size() == 2 ? kDigits.find(pair[1]) : std::string_view::npos;
        if (high == std::string_view::npos || low == std::string_view::npos) {
            node.Refuse("bytes such as \"00 7F FF\"");
        }
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

RegistryValue ReadValue(const Node& node, const std::string& name) {
    const Json& json = node.Value();
    if (json.is_string()) {
        return RegistryValue::Text(name, node.Text());
    }
    if (json.is_number()) {
        return RegistryValue::Number(name, node.WholeNumber<std::uint32_t>());
    }
    if (!json.is_object()) {
        node.Refuse("text, a number, or an object with \"type\" and \"text\" or \"bytes\"");
    }
    node.ExpectObject();
    if (!json.contains("type") || json.size() != 2 ||
        json.contains("text") == json.contains("bytes")) {
        node.Reject("a value has a \"type\" and either \"text\" or \"bytes\"");
    }
    RegistryValue value{name, ReadType(node.Member("type")), {}};
    if (json.contains("text")) {
        value.data = node.Member("text").Text();
        value.data += '\0';
    } else {
        value.data = ReadBytes(node.Member("bytes"));
    }
    return value;
}

/// The terminated text that the data is; nothing when it is none.
std::optional<std::string> AsText(const std::string& data) {
    if (data.empty() || data.find('\0') != data.size() - 1) {
        return std::nullopt;
    }
    const std::string text = data.substr(0, data.size() - 1);
    std::string utf8 = ToUtf8(text);
    return FromUtf8(utf8) == text ? std::optional(std::move(utf8)) : std::nullopt;
}

std::string Bytes(const std::string& data) {
    TextList pairs;
    for (const char c : data) {
        const auto byte = static_cast<unsigned char>(c);
        pairs.push_back({"0123456789ABCDEF"[byte / 16], "0123456789ABCDEF"[byte % 16]});
    }
    return Join(pairs, " ");
}

Json WriteValue(const RegistryValue& value) {
    const auto text = AsText(value.data);
    if (value.type == 1 && text) {
        return *text;
    }
    if (value.type == 4 && value.data.size() == 4) {
        std::uint32_t number = 0;
        for (int i = 3; i >= 0; --i) {
            number =
                number << 8 | static_cast<unsigned char>(value.data[static_cast<std::size_t>(i)]);
        }
        return number;
    }
    const auto* name = std::ranges::find(kTypeNames, value.type, &TypeName::type);
    if (name == std::end(kTypeNames)) {
        throw MachineFileError("registry value \"" + value.name + "\": type " +
                               std::to_string(value.type) + " has no name in a machine file");
    }
    Json json = {{"type", std::string(name->name)}};
    if (value.type == 2 && text) {
        json["text"] = *text;
    } else {
        json["bytes"] = Bytes(value.data);
    }
    return json;
}

}  // namespace

void Read(const Node& node, std::vector<RegistryKey>& keys) {
    node.ExpectObject();
    keys.clear();
    for (const auto& [path, values] : node.Value().items()) {
        const Node keyNode = node.Member(path);
        keyNode.ExpectObject();
        const std::string narrowPath = FromUtf8(path).value_or(path);
        if (std::ranges::any_of(keys, [&narrowPath](const RegistryKey& other) {
                return EqualNoCase(other.path, narrowPath);
            })) {
            keyNode.Reject("the key stands twice: letter case does not count");
        }
        RegistryKey key{narrowPath, {}};
        for (const auto& [name, value] : values.items()) {
            key.values.push_back(ReadValue(keyNode.Member(name), FromUtf8(name).value_or(name)));
        }
        keys.push_back(std::move(key));
    }
}

Json WriteRegistry(const std::vector<RegistryKey>& keys) {
    Json json = Json::object();
    for (const RegistryKey& key : keys) {
        Json values = Json::object();
        for (const RegistryValue& value : key.values) {
            values[ToUtf8(value.name)] = WriteValue(value);
        }
        json[ToUtf8(key.path)] = std::move(values);
    }
    return json;
}

}  // namespace machine::file
