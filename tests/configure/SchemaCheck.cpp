#include "tests/configure/SchemaCheck.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace configure_tests {

namespace {

using Json = nlohmann::json;
using Texts = std::vector<std::string>;

bool HasType(const Json& value, const std::string& type) {
    return (type == "object" && value.is_object()) || (type == "array" && value.is_array()) ||
           (type == "string" && value.is_string()) || (type == "boolean" && value.is_boolean()) ||
           (type == "integer" && value.is_number_integer()) || (type == "null" && value.is_null());
}

bool HasAnyType(const Json& value, const Json& types) {
    if (types.is_string()) {
        return HasType(value, types.get<std::string>());
    }
    return std::any_of(types.begin(), types.end(),
                       [&](const Json& type) { return HasType(value, type.get<std::string>()); });
}

class Check {
public:
    explicit Check(const Json& root) : root_(root) {}

    Texts Run(const Json& schema, const Json& value, const std::string& place) const {
        RefuseUnknownWords(schema);
        Texts faults;
        const auto add = [&](const Texts& more) {
            faults.insert(faults.end(), more.begin(), more.end());
        };
        if (schema.contains("$ref")) {
            const std::string reference = schema.at("$ref");
            add(Run(root_.at(Json::json_pointer(reference.substr(1))), value, place));
        }
        if (schema.contains("type") && !HasAnyType(value, schema.at("type"))) {
            add({place + ": not of type " + schema.at("type").dump()});
        }
        const auto& allowed = schema.contains("enum") ? schema.at("enum") : Json::array({value});
        if (std::find(allowed.begin(), allowed.end(), value) == allowed.end()) {
            add({place + ": " + value.dump() + " is none of " + allowed.dump()});
        }
        for (const auto& [word, least, most] :
             {std::tuple{"anyOf", 1, 1000}, std::tuple{"oneOf", 1, 1}}) {
            const auto matches = schema.contains(word) ? CountMatches(schema.at(word), value) : 1;
            if (matches < least || matches > most) {
                add({place + ": matches " + std::to_string(matches) + " of " + word});
            }
        }
        if (value.is_object()) {
            add(CheckMembers(schema, value, place));
        }
        if (value.is_array()) {
            add(CheckItems(schema, value, place));
        }
        return faults;
    }

private:
    static void RefuseUnknownWords(const Json& schema) {
        static const std::set<std::string> known = {
            "$schema",    "$defs",       "$ref",
            "title",      "description", "type",
            "properties", "required",    "additionalProperties",
            "items",      "minItems",    "enum",
            "anyOf",      "oneOf"};
        for (const auto& [word, value] : schema.items()) {
            if (!known.contains(word)) {
                throw std::logic_error("this check does not know the schema's word " + word);
            }
        }
    }

    int CountMatches(const Json& schemas, const Json& value) const {
        return static_cast<int>(
            std::count_if(schemas.begin(), schemas.end(),
                          [&](const Json& schema) { return Run(schema, value, "").empty(); }));
    }

    Texts CheckMembers(const Json& schema, const Json& value, const std::string& place) const {
        Texts faults;
        for (const Json& name : schema.value("required", Json::array())) {
            if (!value.contains(name.get<std::string>())) {
                faults.push_back(place + ": lacks " + name.dump());
            }
        }
        const Json properties = schema.value("properties", Json::object());
        const Json others = schema.value("additionalProperties", Json(true));
        for (const auto& [name, member] : value.items()) {
            const bool named = properties.contains(name);
            if (!named && others == false) {
                faults.push_back(place + ": has an unknown member " + name);
            }
            const Json& rule = named ? properties.at(name) : others;
            if (rule.is_object()) {
                const Texts more = Run(rule, member, place + "/" + name);
                faults.insert(faults.end(), more.begin(), more.end());
            }
        }
        return faults;
    }

    Texts CheckItems(const Json& schema, const Json& value, const std::string& place) const {
        Texts faults;
        if (value.size() < schema.value("minItems", std::size_t{0})) {
            faults.push_back(place + ": too few items");
        }
        for (std::size_t i = 0; schema.contains("items") && i < value.size(); ++i) {
            const Texts more = Run(schema.at("items"), value[i], place + "/" + std::to_string(i));
            faults.insert(faults.end(), more.begin(), more.end());
        }
        return faults;
    }

    const Json& root_;
};

}  // namespace

Texts CheckSchema(const Json& schema, const Json& document) {
    return Check(schema).Run(schema, document, "");
}

}  // namespace configure_tests
