#include "machine/file/JsonReader.h"

#include "machine/CodePage.h"

namespace machine::file {
namespace {

/// The pointer's own separator and escape character, as RFC 6901 writes them.
std::string Escaped(const std::string& name) {
    std::string escaped;
    for (const char c : name) {
        if (c == '~') {
            escaped += "~0";
        } else if (c == '/') {
            escaped += "~1";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string Describe(const Json& json) {
    if (json.is_string()) {
        return json.dump(-1, ' ', false, Json::error_handler_t::replace);
    }
    if (json.is_number() || json.is_boolean()) {
        return json.dump();
    }
    if (json.is_null()) {
        return "null";
    }
    return json.is_array() ? "a list" : "an object";
}

}  // namespace

Json ParseJson(std::string_view text) {
    std::vector<std::set<std::string>> open;
    const auto refuseTwins = [&open](int, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start) {
            open.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            open.pop_back();
        } else if (event == Json::parse_event_t::key) {
            const auto name = parsed.get<std::string>();
            if (!open.back().insert(name).second) {
                throw MachineFileError("the member \"" + name + "\" stands twice in one object");
            }
        }
        return true;
    };
    try {
        return Json::parse(text, refuseTwins);
    } catch (const Json::parse_error& error) {
        // Without the library's own label: "[json.exception.parse_error.101] parse error at line 1,
        // ..."
        const std::string_view what = error.what();
        const auto label = what.find("] ");
        throw MachineFileError(
            std::string(label == std::string_view::npos ? what : what.substr(label + 2)));
    }
}

std::string Node::Text() const {
    if (!json_.is_string()) {
        Refuse("text");
    }
    const auto text = FromUtf8(json_.get_ref<const std::string&>());
    if (!text) {
        Refuse("text of this system's code page");
    }
    if (text->find('\0') != std::string::npos) {
        Refuse("text without a zero character");
    }
    return *text;
}

bool Node::Boolean() const {
    if (!json_.is_boolean()) {
        Refuse("true or false");
    }
    return json_.get<bool>();
}

std::int64_t Node::WholeNumber(std::int64_t least, std::int64_t most) const {
    const bool isHuge =
        json_.is_number_unsigned() && json_.get<std::uint64_t>() > static_cast<std::uint64_t>(most);
    const bool fits = json_.is_number_integer() && !isHuge && json_.get<std::int64_t>() >= least &&
                      json_.get<std::int64_t>() <= most;
    if (!fits) {
        Refuse("a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return json_.get<std::int64_t>();
}

Node Node::Member(const std::string& name) const {
    return Node(json_.at(name), place_ + "/" + Escaped(name));
}

Node Node::Element(std::size_t position) const {
    return Node(json_.at(position), place_ + "/" + std::to_string(position));
}

void Node::ExpectObject() const {
    if (!json_.is_object()) {
        Refuse("an object");
    }
}

void Node::ExpectList() const {
    if (!json_.is_array()) {
        Refuse("a list");
    }
}

void Node::Refuse(std::string_view expected) const {
    Reject("expected " + std::string(expected) + ", found " + Describe(json_));
}

void Node::Reject(std::string_view why) const {
    throw MachineFileError((place_.empty() ? "/" : place_) + ": " + std::string(why));
}

void Members::Finish() const {
    for (const auto& [name, value] : node_.Value().items()) {
        if (!known_.contains(name)) {
            node_.Member(name).Reject("no such member");
        }
    }
}

}  // namespace machine::file
