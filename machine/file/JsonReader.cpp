#include "machine/file/JsonReader.h"

#include <set>
#include <vector>

#include "machine/CodePage.h"
#include "machine/file/ShownText.h"

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
        // Messages are in the code page: what that lacks stands as "\u4e2d".
        const auto shown = FromUtf8(json.dump(-1, ' ', false, Json::error_handler_t::replace));
        return shown ? *shown : json.dump(-1, ' ', true, Json::error_handler_t::replace);
    }
    if (json.is_number() || json.is_boolean()) {
        return json.dump();
    }
    if (json.is_null()) {
        return "null";
    }
    return json.is_array() ? "a list" : "an object";
}

/// Refuses a member that stands twice in one object.
class MemberWatch {
public:
    void Take(Json::parse_event_t event, const Json& parsed) {
        using Event = Json::parse_event_t;
        switch (event) {
            case Event::object_start:
            case Event::array_start:
                open_.push_back({event == Event::array_start, {}, {}, 0});
                break;
            case Event::key:
                open_.back().member = parsed.get<std::string>();
                if (!open_.back().members.insert(open_.back().member).second) {
                    throw MachineFileError(Place() + ": the member stands twice in one object");
                }
                break;
            case Event::object_end:
            case Event::array_end:
                open_.pop_back();
                EndElement();
                break;
            case Event::value:
                EndElement();
                break;
        }
    }

private:
    struct Level {
        bool isList;
        std::set<std::string> members;
        std::string member;
        std::size_t element;
    };

    void EndElement() {
        if (!open_.empty() && open_.back().isList) {
            ++open_.back().element;
        }
    }

    std::string Place() const {
        std::string place;
        for (const Level& level : open_) {
            place += "/" + (level.isList ? std::to_string(level.element) : Escaped(level.member));
        }
        return place;
    }

    std::vector<Level> open_;
};

}  // namespace

Json ParseJson(std::string_view text) {
    MemberWatch watch;
    const auto refuseTwins = [&watch](int, Json::parse_event_t event, Json& parsed) {
        watch.Take(event, parsed);
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

std::string Node::TextToShow() const {
    if (json_.is_string() && !FromUtf8(json_.get_ref<const std::string&>())) {
        return ShownText(json_.get_ref<const std::string&>());
    }
    return Text();
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
