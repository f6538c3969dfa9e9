#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace zelto::test {

/// Checks a value against a schema of docs/schema. It knows the words that those schemas use: type,
/// enum, anyOf, required, properties, additionalProperties, items, minItems, maxItems, minimum,
/// maximum and $ref; an unknown one is a mistake.
/// @param name of the schema's file without ".schema.json"
/// @return what is wrong and where; empty when the value is as it should be
std::string Mismatch(const nlohmann::json& value, const std::string& name);

} // namespace zelto::test
