#include "host/Message.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "common/util/Strings.h"

namespace host {

namespace {

std::string TextOrEmpty(const char* text) {
    return text == nullptr ? std::string() : text;
}

const Field* FindIn(const std::vector<Field>& fields, const std::string& name) {
    const auto found =
        std::ranges::find_if(fields, [&](const Field& field) { return field.name == name; });
    return found == fields.end() ? nullptr : &*found;
}

void WriteTo(std::vector<Field>& fields, const std::string& name,
             std::variant<std::string, std::int32_t> value) {
    const auto found =
        std::ranges::find_if(fields, [&](const Field& field) { return field.name == name; });
    if (found == fields.end()) {
        fields.push_back({name, std::move(value)});
    } else {
        found->value = std::move(value);
    }
}

std::optional<std::int32_t> WholeNumber(const std::string& text) {
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

}  // namespace

std::string Field::Text() const {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? *text : util::IntToString(std::get<std::int32_t>(value));
}

Message::Message(std::string kind, std::string name)
    : kind_(std::move(kind)), name_(std::move(name)) {}

void Message::Add(const std::string& name, const std::string& value) {
    WriteTo(request_, name, value);
}

void Message::WriteInteger(const char* name, std::int32_t value) {
    Write(name, value);
}

void Message::WriteText(const char* name, const char* value) {
    Write(name, TextOrEmpty(value));
}

void Message::SetField(const char* name, const char* value) {
    Write(name, TextOrEmpty(value));
}

const char* Message::GetField(const char* name) {
    const Field* const field = Find(TextOrEmpty(name));
    lent_ = field == nullptr ? std::string() : field->Text();
    return lent_.c_str();
}

void Message::ReadInteger(const char* name, std::int32_t* value) {
    const Field* const field = Find(TextOrEmpty(name));
    if (field == nullptr || value == nullptr) {
        return;
    }
    if (const auto number = WholeNumber(field->Text())) {
        *value = *number;
    }
}

std::string Message::ReplyText(const std::string& name) const {
    const Field* const field = FindIn(reply_, name);
    return field == nullptr ? std::string() : field->Text();
}

const Field* Message::Find(const std::string& name) const {
    const Field* const written = FindIn(reply_, name);
    return written != nullptr ? written : FindIn(request_, name);
}

void Message::Write(const char* name, std::variant<std::string, std::int32_t> value) {
    WriteTo(reply_, TextOrEmpty(name), std::move(value));
}

}  // namespace host
