#pragma once

#include <nlohmann/json.hpp>

#include <set>
#include <string>

namespace zelto {

/// JSON whose members stay in the order they were written.
using Json = nlohmann::ordered_json;

/// Throws std::runtime_error with the name of a member in front of the reason.
[[noreturn]] void RefuseMember(const std::string& name, const std::string& reason);

/// A number; JSON has none for the special values, which become the strings "NaN", "Infinity" and
/// "-Infinity".
Json JsonNumber(double value);

/// The number that JsonNumber() made. Throws std::runtime_error naming the member.
double NumberOf(const Json& value, const std::string& name);

/// A whole number. Throws std::runtime_error naming the member, also for one beyond the bounds.
int IntegerOf(const Json& value, int lowest, int highest, const std::string& name);

/// Parses a text. Throws std::runtime_error with the place of what is no JSON.
Json ParseJson(const std::string& text);

/// Objects with indents, lists of plain values on one line.
std::string PrintJson(const Json& value);

/// An object of a JSON file, read strictly: everything that is wrong throws std::runtime_error
/// with the name of the member, as in "bands[1].statistics.minimum: it is no number".
class JsonObject {
  public:
    /// @param name by which the object is told; empty for the outermost
    JsonObject(const Json& value, std::string name);

    bool Has(const char* member) const { return m_value.contains(member); }
    const Json& Get(const char* member);
    double Number(const char* member) { return NumberOf(Get(member), NameOf(member)); }
    int Integer(const char* member, int lowest, int highest) {
        return IntegerOf(Get(member), lowest, highest, NameOf(member));
    }
    std::string Text(const char* member);
    /// A list of at most `most` elements.
    const Json& List(const char* member, std::size_t most);
    JsonObject Object(const char* member) { return {Get(member), NameOf(member)}; }

    std::string NameOf(const std::string& member) const;
    /// Throws for a member that was not asked for.
    void RequireNoOthers() const;

  private:
    const Json& m_value;
    std::string m_name;
    std::set<std::string> m_asked;
};

} // namespace zelto
