#include "host/report/ClassTable.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/report/Csv.h"

#include <charconv>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace zelto::host {

namespace {

using ClassRecord = CClassifiedAssistantFile::ClassRecord;

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
    const std::vector<std::string> fields = CsvFields(line);
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

} // namespace

std::vector<ClassRecord> ReadClassTable(const std::string& path) {
    std::vector<ClassRecord> classes;
    ForEachCsvLine(path, [&](const std::string& line, int number) {
        if (number == 1 && IsCsvHeading(line))
            return;
        const auto record = ParseClass(line);
        if (!record)
            throw Failure(path, "line " + std::to_string(number) +
                                    ": expected value,red,green,blue,name with colours of "
                                    "0 to 255");
        classes.push_back(*record);
    });
    if (classes.empty())
        throw Failure(path, "holds no classes");
    return classes;
}

std::string AssistantOf(const std::string& image) {
    return std::filesystem::path(image).replace_extension("acf").string();
}

} // namespace zelto::host
