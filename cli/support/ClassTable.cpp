#include "cli/support/ClassTable.h"

#include "cli/support/Failure.h"
#include "cli/support/Open.h"
#include "cli/support/Text.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <optional>

namespace zelto::cli {

namespace {

using ClassRecord = CClassifiedAssistantFile::ClassRecord;

std::string Trim(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// A field in double quotes, from its opening quote on; a doubled quote stands for one.
std::string QuotedField(const std::string& line, std::size_t& position) {
    std::string field;
    for (++position; position < line.size(); ++position) {
        if (line[position] != '"') {
            field += line[position];
        } else if (position + 1 < line.size() && line[position + 1] == '"') {
            field += line[position++];
        } else {
            position = line.find(',', position);
            break;
        }
    }
    return field;
}

std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t position = 0;
    while (position != std::string::npos && position <= line.size()) {
        if (position < line.size() && line[position] == '"') {
            fields.push_back(QuotedField(line, position));
        } else {
            const std::size_t end = line.find(',', position);
            fields.push_back(Trim(line.substr(position, end - position)));
            position = end;
        }
        if (position != std::string::npos)
            ++position;
    }
    return fields;
}

std::optional<int> Integer(const std::string& text, int low, int high) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end || value < low || value > high)
        return std::nullopt;
    return value;
}

/// Null where the line is no class.
std::optional<ClassRecord> ParseClass(const std::string& line) {
    const std::vector<std::string> fields = Fields(line);
    if (fields.size() != 5)
        return std::nullopt;
    const auto value = Integer(fields[0], INT32_MIN, INT32_MAX);
    const auto red = Integer(fields[1], 0, 255);
    const auto green = Integer(fields[2], 0, 255);
    const auto blue = Integer(fields[3], 0, 255);
    if (!value || !red || !green || !blue)
        return std::nullopt;
    ClassRecord record;
    record.m_value = *value;
    record.m_color = {static_cast<unsigned char>(*red), static_cast<unsigned char>(*green),
                      static_cast<unsigned char>(*blue), 255};
    record.SetName(Wide(fields[4]));
    return record;
}

/// Whether a line holds column names: its first field starts with a letter.
bool IsHeading(const std::string& line) {
    const std::string first = Fields(line).front();
    return !first.empty() && std::isalpha(static_cast<unsigned char>(first.front())) != 0;
}

} // namespace

std::vector<ClassRecord> ReadClassTable(const std::string& path) {
    RequireNoPipe(path);
    std::ifstream stream(path);
    if (!stream)
        throw Failure(path, std::strerror(errno));
    std::vector<ClassRecord> classes;
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number) {
        if (number == 1 && line.rfind("\xEF\xBB\xBF", 0) == 0)
            line.erase(0, 3); // byte-order mark
        if (Trim(line).empty() || (number == 1 && IsHeading(line)))
            continue;
        const auto record = ParseClass(line);
        if (!record)
            throw Failure(path, "line " + std::to_string(number) +
                                    ": expected value,red,green,blue,name with colours of "
                                    "0 to 255");
        classes.push_back(*record);
    }
    if (classes.empty())
        throw Failure(path, "holds no classes");
    return classes;
}

} // namespace zelto::cli
