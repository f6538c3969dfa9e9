#include "zelto/display/internal/JsonObject.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

namespace zelto {

namespace {

bool IsPlainList(const Json& value) {
    return value.is_array() && std::none_of(value.begin(), value.end(),
                                            [](const Json& each) { return each.is_structured(); });
}

void Append(std::string& text, const Json& value, const std::string& indent) {
    const auto plain = [](const Json& each, bool) {
        return each.dump(-1, ' ', false, Json::error_handler_t::replace);
    };
    if (!value.is_structured() || value.empty()) {
        text += plain(value, true);
        return;
    }
    const bool isList = value.is_array();
    const bool inLine = IsPlainList(value);
    const std::string inner = indent + "  ";
    text += isList ? "[" : "{";
    bool isFirst = true;
    for (const auto& [name, each] : value.items()) {
        text += isFirst ? "" : inLine ? ", " : ",";
        isFirst = false;
        if (!inLine)
            text += "\n" + inner;
        if (!isList)
            text += plain(Json(name), true) + ": ";
        Append(text, each, inner);
    }
    if (!inLine)
        text += "\n" + indent;
    text += isList ? "]" : "}";
}

} // namespace

void RefuseMember(const std::string& name, const std::string& reason) {
    throw std::runtime_error(name.empty() ? reason : name + ": " + reason);
}

Json JsonNumber(double value) {
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value > 0 ? "Infinity" : "-Infinity";
    return value;
}

double NumberOf(const Json& value, const std::string& name) {
    if (value.is_number())
        return value.get<double>();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (value == "NaN")
        return std::numeric_limits<double>::quiet_NaN();
    if (value == "Infinity")
        return infinity;
    if (value == "-Infinity")
        return -infinity;
    RefuseMember(name, "it is no number");
}

int IntegerOf(const Json& value, int lowest, int highest, const std::string& name) {
    // A number beyond 64 bits is read as a real one.
    const bool fits = value.is_number_integer() &&
                      !(value.is_number_unsigned() &&
                        value.get<std::uint64_t>() > std::numeric_limits<std::int32_t>::max()) &&
                      value.get<std::int64_t>() >= lowest && value.get<std::int64_t>() <= highest;
    if (!fits)
        RefuseMember(name, "it is no whole number from " + std::to_string(lowest) + " to " +
                               std::to_string(highest));
    return value.get<int>();
}

Json ParseJson(const std::string& text) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        const auto end =
            text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
        const auto line = std::count(text.begin(), end, '\n') + 1;
        throw std::runtime_error("it is no JSON from line " + std::to_string(line) + " on");
    }
}

std::string PrintJson(const Json& value) {
    std::string text;
    Append(text, value, "");
    return text + "\n";
}

JsonObject::JsonObject(const Json& value, std::string name)
    : m_value(value), m_name(std::move(name)) {
    if (!value.is_object())
        RefuseMember(m_name, "it is no object");
}

std::string JsonObject::NameOf(const std::string& member) const {
    return m_name.empty() ? member : m_name + "." + member;
}

const Json& JsonObject::Get(const char* member) {
    m_asked.insert(member);
    const auto found = m_value.find(member);
    if (found == m_value.end())
        RefuseMember(NameOf(member), "it is missing");
    return *found;
}

std::string JsonObject::Text(const char* member) {
    const Json& value = Get(member);
    if (!value.is_string())
        RefuseMember(NameOf(member), "it is no text");
    return value.get<std::string>();
}

const Json& JsonObject::List(const char* member, std::size_t most) {
    const Json& value = Get(member);
    if (!value.is_array() || value.size() > most)
        RefuseMember(NameOf(member),
                     "it is no list of at most " + std::to_string(most) + " elements");
    return value;
}

void JsonObject::RequireNoOthers() const {
    for (const auto& [name, value] : m_value.items())
        if (m_asked.count(name) == 0)
            RefuseMember(NameOf(name), "a recipe has no such member");
}

} // namespace zelto
