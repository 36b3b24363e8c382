#include "machine/cim/Value.h"

#include <algorithm>

#include "machine/Text.h"

namespace machine::cim {
namespace {

template <typename List>
auto* Find(List& properties, std::string_view name) {
    const auto found = std::ranges::find_if(
        properties, [name](const Property& property) { return EqualNoCase(property.name, name); });
    return found == properties.end() ? nullptr : &*found;
}

}  // namespace

const Property* FindProperty(const Properties& properties, std::string_view name) {
    return Find(properties, name);
}

Property* FindProperty(Properties& properties, std::string_view name) {
    return Find(properties, name);
}

std::string Describe(const Value& value) {
    if (const bool* flag = std::get_if<bool>(&value)) {
        return *flag ? "true" : "false";
    }
    if (const std::int32_t* number = std::get_if<std::int32_t>(&value)) {
        return std::to_string(*number);
    }
    if (const std::string* text = std::get_if<std::string>(&value)) {
        return "\"" + *text + "\"";
    }
    if (const TextList* texts = std::get_if<TextList>(&value)) {
        return "{" + Join(*texts, ", ") + "}";
    }
    return "null";
}

bool IsSecret(std::string_view propertyName) {
    return EqualNoCase(propertyName, "Password");
}

std::string DescribeParameters(const Properties& parameters) {
    std::string text;
    for (const Property& property : parameters) {
        text += text.empty() ? "" : ", ";
        text += std::string(property.name) + "=" +
                (IsSecret(property.name) ? "***" : Describe(property.value));
    }
    return text;
}

}  // namespace machine::cim
