#include "machine/cim/ObjectPath.h"

#include <algorithm>
#include <charconv>

#include "machine/Text.h"

namespace machine::cim {
namespace {

bool IsName(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
               (c >= 'A' && c <= 'Z');
    });
}

bool ParseKeyValue(std::string_view text, Value& value) {
    const bool quoted = text.size() >= 2 && text.front() == text.back() &&
                        (text.front() == '"' || text.front() == '\'');
    if (quoted) {
        value = std::string(text.substr(1, text.size() - 2));
        return true;
    }
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    value = static_cast<std::int32_t>(number);
    return error == std::errc() && end == text.data() + text.size();
}

bool IsKey(const Value& value, const Value& wanted) {
    const auto* text = std::get_if<std::string>(&value);
    const auto* wantedText = std::get_if<std::string>(&wanted);
    return text != nullptr && wantedText != nullptr ? EqualNoCase(*text, *wantedText)
                                                    : value == wanted;
}

}  // namespace

bool ParseObjectPath(std::string_view text, ObjectPath& path) {
    if (text.starts_with(R"(\\)")) {
        const auto colon = text.find(':');
        if (colon == std::string_view::npos) {
            return false;
        }
        text = text.substr(colon + 1);
    }
    const auto end = std::min(text.find_first_of(".="), text.size());
    path.className = text.substr(0, end);
    path.isClass = end == text.size();
    if (!IsName(path.className) || path.isClass) {
        return path.isClass && IsName(path.className);
    }
    const auto equals = text.find('=', end);
    if (equals == std::string_view::npos) {
        return false;
    }
    if (text[end] == '.') {
        path.keyName = text.substr(end + 1, equals - end - 1);
        if (!IsName(path.keyName)) {
            return false;
        }
    }
    return ParseKeyValue(text.substr(equals + 1), path.key);
}

std::optional<Properties> FindObject(const State& state, const Class& definition,
                                     const ObjectPath& path) {
    if (!path.keyName.empty() && !EqualNoCase(path.keyName, definition.key)) {
        return std::nullopt;
    }
    auto rows = definition.rows(state, IndexOf(definition.key, path.key));
    const auto found = std::ranges::find_if(rows, [&](const Properties& row) {
        return IsKey(FindProperty(row, definition.key)->value, path.key);
    });
    return found == rows.end() ? std::nullopt : std::optional(std::move(*found));
}

std::uint32_t CheckTarget(const State& state, const Class& definition, const Method& method,
                          const ObjectPath& path) {
    if (path.isClass) {
        return method.isStatic ? 0 : kInvalidMethod;
    }
    return FindObject(state, definition, path) ? 0 : kNotFound;
}

}  // namespace machine::cim
