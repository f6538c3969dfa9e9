#include "tests/cli/JsonSchema.h"

#include <algorithm>
#include <fstream>
#include <set>

namespace zelto::test {

namespace {

using Json = nlohmann::json;

Json ReadSchema(const std::string& file) {
    std::ifstream stream(ZELTO_SCHEMA_FOLDER "/" + file);
    return stream ? Json::parse(stream) : Json();
}

/// A schema with the file that its references are in.
struct Place {
    const Json& schema;
    const Json& file;
};

bool IsType(const Json& value, const std::string& type) {
    return (type == "object" && value.is_object()) || (type == "array" && value.is_array()) ||
           (type == "string" && value.is_string()) || (type == "boolean" && value.is_boolean()) ||
           (type == "null" && value.is_null()) || (type == "number" && value.is_number()) ||
           (type == "integer" && value.is_number_integer());
}

std::string Check(const Json& value, const Place& place, const std::string& at);

std::string CheckReference(const Json& value, const Place& place, const std::string& at) {
    const std::string reference = place.schema["$ref"];
    const std::size_t hash = reference.find('#');
    const Json other = hash > 0 ? ReadSchema(reference.substr(0, hash)) : Json();
    const Json& file = hash > 0 ? other : place.file;
    const Json::json_pointer pointer(reference.substr(hash + 1));
    if (!file.contains(pointer))
        return at + ": no schema is at " + reference;
    return Check(value, {file.at(pointer), file}, at);
}

std::string CheckAnyOf(const Json& value, const Place& place, const std::string& at) {
    std::string wrong;
    for (const Json& choice : place.schema["anyOf"]) {
        const std::string mismatch = Check(value, {choice, place.file}, at);
        if (mismatch.empty())
            return {};
        wrong += (wrong.empty() ? "" : "; or ") + mismatch;
    }
    return wrong;
}

std::string CheckObject(const Json& value, const Place& place, const std::string& at) {
    for (const Json& name : place.schema.value("required", Json::array()))
        if (!value.contains(name.get<std::string>()))
            return at + ": lacks " + name.dump();
    const Json properties = place.schema.value("properties", Json::object());
    for (const auto& [name, member] : value.items()) {
        std::string mismatch;
        if (properties.contains(name))
            mismatch = Check(member, {properties[name], place.file}, at + "/" + name);
        else if (const Json others = place.schema.value("additionalProperties", Json(true));
                 others.is_object())
            mismatch = Check(member, {others, place.file}, at + "/" + name);
        else if (others == false)
            mismatch = at + ": has a member " + name;
        if (!mismatch.empty())
            return mismatch;
    }
    return {};
}

std::string CheckArray(const Json& value, const Place& place, const std::string& at) {
    if (value.size() < place.schema.value("minItems", std::size_t{0}) ||
        value.size() > place.schema.value("maxItems", value.size()))
        return at + ": has " + std::to_string(value.size()) + " members";
    for (std::size_t i = 0; i < value.size() && place.schema.contains("items"); ++i)
        if (const std::string mismatch =
                Check(value[i], {place.schema["items"], place.file}, at + "/" + std::to_string(i));
            !mismatch.empty())
            return mismatch;
    return {};
}

std::string CheckValue(const Json& value, const Place& place, const std::string& at) {
    const Json& schema = place.schema;
    if (schema.contains("type")) {
        const Json types = schema["type"].is_array() ? schema["type"] : Json{schema["type"]};
        if (std::none_of(types.begin(), types.end(),
                         [&](const Json& type) { return IsType(value, type); }))
            return at + ": " + value.dump() + " is no " + schema["type"].dump();
    }
    if (schema.contains("enum") &&
        std::find(schema["enum"].begin(), schema["enum"].end(), value) == schema["enum"].end())
        return at + ": " + value.dump() + " is none of " + schema["enum"].dump();
    if (value.is_number() && schema.contains("minimum") && value < schema["minimum"])
        return at + ": " + value.dump() + " is too small";
    if (value.is_number() && schema.contains("maximum") && value > schema["maximum"])
        return at + ": " + value.dump() + " is too large";
    return {};
}

std::string Check(const Json& value, const Place& place, const std::string& at) {
    static const std::set<std::string> known = {
        "$schema",     "$defs",      "$ref",    "title",
        "description", "type",       "enum",    "anyOf",
        "required",    "properties", "items",   "minItems",
        "maxItems",    "minimum",    "maximum", "additionalProperties"};
    for (const auto& member : place.schema.items())
        if (known.count(member.key()) == 0)
            return at + ": the schema has an unknown word " + member.key();
    std::string mismatch = CheckValue(value, place, at);
    if (mismatch.empty() && place.schema.contains("$ref"))
        mismatch = CheckReference(value, place, at);
    if (mismatch.empty() && place.schema.contains("anyOf"))
        mismatch = CheckAnyOf(value, place, at);
    if (mismatch.empty() && value.is_object())
        mismatch = CheckObject(value, place, at);
    if (mismatch.empty() && value.is_array())
        mismatch = CheckArray(value, place, at);
    return mismatch;
}

} // namespace

std::string Mismatch(const nlohmann::json& value, const std::string& name) {
    const Json schema = ReadSchema(name + ".schema.json");
    if (schema.is_null())
        return "there is no schema " + name;
    return Check(value, {schema, schema}, "");
}

} // namespace zelto::test
