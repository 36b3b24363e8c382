// Reads typed values out of JSON; what does not fit is reported with its place.
#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "machine/MachineFile.h"

namespace machine::file {

using Json = nlohmann::ordered_json;

/// Parses JSON text. Throws MachineFileError with line and column, also for a member that stands
/// twice.
Json ParseJson(std::string_view text);

/// A value and its place, written as a JSON pointer.
class Node {
public:
    Node(const Json& json, std::string place) : json_(json), place_(std::move(place)) {}

    const Json& Value() const { return json_; }

    /// A text in the ANSI code page.
    std::string Text() const;
    /// The same; what the code page lacks stands as ShownText has it.
    std::string TextToShow() const;
    bool Boolean() const;

    template <typename Number>
    Number WholeNumber() const {
        static_assert(sizeof(Number) <= sizeof(std::int32_t));
        constexpr std::int64_t kLeast = std::numeric_limits<Number>::min();
        constexpr std::int64_t kMost = std::numeric_limits<Number>::max();
        return static_cast<Number>(WholeNumber(kLeast, kMost));
    }

    Node Member(const std::string& name) const;
    Node Element(std::size_t position) const;
    void ExpectObject() const;
    void ExpectList() const;

    /// "/adapters/0/index: expected a whole number, found \"one\""
    [[noreturn]] void Refuse(std::string_view expected) const;
    /// "/adapters/1/index: there is another adapter 1"
    [[noreturn]] void Reject(std::string_view why) const;

private:
    std::int64_t WholeNumber(std::int64_t least, std::int64_t most) const;

    const Json& json_;
    std::string place_;
};

/// How a value of each type is read; the types of a machine's state add theirs.
inline void Read(const Node& node, std::string& text) {
    text = node.Text();
}
inline void Read(const Node& node, bool& flag) {
    flag = node.Boolean();
}
inline void Read(const Node& node, std::int32_t& number) {
    number = node.WholeNumber<std::int32_t>();
}
inline void Read(const Node& node, std::uint32_t& number) {
    number = node.WholeNumber<std::uint32_t>();
}

template <typename Value>
void Read(const Node& node, std::optional<Value>& value);
template <typename Value>
void Read(const Node& node, std::vector<Value>& list);

/// The members of an object: each is taken by name, and Finish refuses those that nobody took.
class Members {
public:
    explicit Members(const Node& node) : node_(node) { node.ExpectObject(); }

    bool Has(const std::string& name) const { return node_.Value().contains(name); }

    /// Reads the member when it is there; otherwise the target keeps what it holds.
    template <typename Target>
    bool Optional(const std::string& name, Target& target) {
        known_.insert(name);
        if (!Has(name)) {
            return false;
        }
        Read(node_.Member(name), target);
        return true;
    }

    /// The same for a text that is only shown.
    void Shown(const std::string& name, std::string& text) {
        known_.insert(name);
        if (Has(name)) {
            text = node_.Member(name).TextToShow();
        }
    }

    template <typename Target>
    void Required(const std::string& name, Target& target) {
        if (!Optional(name, target)) {
            node_.Reject("the member \"" + name + "\" is missing");
        }
    }

    void Finish() const;

private:
    const Node& node_;
    std::set<std::string> known_;
};

template <typename Value>
void Read(const Node& node, std::optional<Value>& value) {
    if (node.Value().is_null()) {
        value.reset();
    } else {
        Read(node, value.emplace());
    }
}

template <typename Value>
void Read(const Node& node, std::vector<Value>& list) {
    node.ExpectList();
    list.clear();
    for (std::size_t i = 0; i < node.Value().size(); ++i) {
        Read(node.Element(i), list.emplace_back());
    }
}

}  // namespace machine::file
