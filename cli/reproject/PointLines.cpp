#include "cli/reproject/PointLines.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <iostream>
#include <optional>

namespace zelto::cli {

namespace {

/// The next number of a line, past blanks and separators; nothing where none stands.
std::optional<double> NextNumber(const char*& at, const char* end) {
    while (at != end && std::strchr(" \t,;+", *at) != nullptr)
        ++at;
    double value = 0.0;
    const auto parsed = std::from_chars(at, end, value);
    const bool whole = parsed.ptr == end || std::strchr(" \t,;\r", *parsed.ptr) != nullptr;
    if (parsed.ec != std::errc() || !whole)
        return std::nullopt;
    at = parsed.ptr;
    return value;
}

} // namespace

LineReader::LineReader(const std::string& file) : m_name(file) {
    if (file == "-") {
        m_name = "standard input";
        return;
    }
    host::RequireNoPipe(file);
    m_file.open(file);
    if (!m_file)
        throw host::Failure(file, std::strerror(errno));
}

bool LineReader::Next(std::string& line) {
    ++m_line;
    return static_cast<bool>(std::getline(m_file.is_open() ? m_file : std::cin, line));
}

Points PointReader::Read(std::size_t most) {
    Points points;
    std::string line;
    while (points.x.size() < most && m_lines.Next(line)) {
        const std::size_t first = line.find_first_not_of(" \t\r");
        if (first == std::string::npos || line[first] == '#')
            continue;
        AddPoint(points, line);
        m_contentSeen = true;
    }
    return points;
}

void PointReader::AddPoint(Points& points, const std::string& line) {
    const char* at = line.data();
    const char* end = at + line.size();
    const auto x = NextNumber(at, end);
    const auto y = x ? NextNumber(at, end) : std::nullopt;
    if (y) {
        points.x.push_back(*x);
        points.y.push_back(*y);
    } else if (m_contentSeen) {
        throw host::Failure(m_lines.Where(), "'" + line + "' does not start with x and y");
    }
}

} // namespace zelto::cli
