#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace configure_tests {

/// Where a document breaks a JSON Schema, a line each; none when it is valid. Knows the words that
/// docs/configure.schema.json uses ("type", "properties", "required", "additionalProperties",
/// "items", "minItems", "enum", "anyOf", "oneOf", "$ref" within the schema) and refuses a schema
/// that uses others.
std::vector<std::string> CheckSchema(const nlohmann::json& schema, const nlohmann::json& document);

}  // namespace configure_tests
