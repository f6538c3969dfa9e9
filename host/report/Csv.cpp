#include "host/report/Csv.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"

#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace zelto::host {

namespace {

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

} // namespace

std::vector<std::string> CsvFields(const std::string& line) {
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

bool IsCsvHeading(const std::string& line) {
    const std::string first = CsvFields(line).front();
    return !first.empty() && std::isalpha(static_cast<unsigned char>(first.front())) != 0;
}

std::string CsvText(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + '"';
}

void ForEachCsvLine(const std::string& path,
                    const std::function<void(const std::string& line, int number)>& use) {
    RequireNoPipe(path);
    std::ifstream stream(path);
    if (!stream)
        throw Failure(path, std::strerror(errno));
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number) {
        if (number == 1 && line.rfind("\xEF\xBB\xBF", 0) == 0)
            line.erase(0, 3); // byte-order mark
        if (!Trim(line).empty())
            use(line, number);
    }
    if (stream.bad())
        throw Failure(path, std::strerror(errno));
}

} // namespace zelto::host
