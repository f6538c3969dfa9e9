#include "cli/reproject/PointColumns.h"

#include "host/base/Failure.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace zelto::cli {

namespace {

using Span = PointLine::Span;

/// A column's number; 0 for a name.
std::size_t ColumnNumber(const std::string& text) {
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? number : 0;
}

std::string Without(const std::string& text, const char* ends) {
    const std::size_t first = text.find_first_not_of(ends);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(ends) - first + 1);
}

char SeparatorOf(const std::string& line) {
    bool quoted = false;
    for (const char c : line) {
        quoted = quoted != (c == '"');
        if (!quoted && (c == ',' || c == ';' || c == '\t'))
            return c;
    }
    return ' ';
}

/// The number in a field, with its place in the line.
std::optional<double> NumberIn(const std::string& line, Span& span) {
    while (span.first < span.end && (line[span.first] == ' ' || line[span.first] == '"'))
        ++span.first;
    while (span.first < span.end &&
           (line[span.end - 1] == ' ' || line[span.end - 1] == '"' || line[span.end - 1] == '\r'))
        --span.end;
    const char* at = line.data() + span.first;
    const char* const end = line.data() + span.end;
    if (at != end && *at == '+')
        ++at;
    double value = 0.0;
    const auto parsed = std::from_chars(at, end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end)
        return std::nullopt;
    return value;
}

} // namespace

std::string PointLine::With(const std::string& newX, const std::string& newY) const {
    std::string line = text;
    const bool xComesFirst = xPlace.first < yPlace.first;
    const auto replace = [&line](const Span& span, const std::string& by) {
        line.replace(span.first, span.end - span.first, by);
    };
    // From the right, so that the other place stays where it is.
    replace(xComesFirst ? yPlace : xPlace, xComesFirst ? newY : newX);
    replace(xComesFirst ? xPlace : yPlace, xComesFirst ? newX : newY);
    return line;
}

PointColumns::PointColumns(const std::string& columns) {
    const std::size_t comma = columns.find(',');
    m_names[0] = Without(columns.substr(0, comma), " ");
    m_names[1] = comma == std::string::npos ? "" : Without(columns.substr(comma + 1), " ");
    if (m_names[0].empty() || m_names[1].empty() || m_names[0] == m_names[1])
        throw host::UsageError("--columns: give two columns, as 3,4 or lon,lat");
    for (int i = 0; i < 2; ++i)
        m_columns[i] = ColumnNumber(m_names[i]);
}

std::vector<Span> PointColumns::Split(const std::string& line) const {
    const bool byBlanks = m_separator == ' ';
    const auto parts = [&](char c) { return byBlanks ? c == ' ' || c == '\r' : c == m_separator; };
    std::vector<Span> fields;
    Span field;
    bool quoted = false;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        if (i < line.size()) {
            quoted = quoted != (line[i] == '"');
            if (quoted || !parts(line[i]))
                continue;
        }
        field.end = i;
        // Several blanks part as one does.
        if (!byBlanks || field.end > field.first)
            fields.push_back(field);
        field.first = i + 1;
    }
    return fields;
}

/// Learns from the first line what parts the columns and, where they have names, which they are.
void PointColumns::TakeFirst(const std::string& line, const std::string& where) {
    m_separator = SeparatorOf(line);
    const std::vector<Span> fields = Split(line);
    for (int i = 0; i < 2; ++i) {
        for (std::size_t k = 0; k < fields.size() && m_columns[i] == 0; ++k)
            if (Without(line.substr(fields[k].first, fields[k].end - fields[k].first), " \"\r") ==
                m_names[i])
                m_columns[i] = k + 1;
        if (m_columns[i] == 0)
            throw host::Failure(where, "no column is called '" + m_names[i] + "'");
    }
    if (m_columns[0] == m_columns[1])
        throw host::Failure(where, m_names[0] + " and " + m_names[1] + " are the same column");
}

PointLine PointColumns::Parse(const std::string& line, const std::string& where) {
    PointLine point;
    point.text = line;
    const std::size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos || line[first] == '#')
        return point;
    const bool isFirst = m_separator == '\0';
    if (isFirst)
        TakeFirst(line, where);
    const std::vector<Span> fields = Split(line);
    std::optional<double> x;
    std::optional<double> y;
    if (std::max(m_columns[0], m_columns[1]) <= fields.size()) {
        point.xPlace = fields[m_columns[0] - 1];
        point.yPlace = fields[m_columns[1] - 1];
        x = NumberIn(line, point.xPlace);
        y = NumberIn(line, point.yPlace);
    }
    point.isPoint = x && y;
    if (!point.isPoint && !isFirst)
        throw host::Failure(where, "'" + line + "' has no numbers in the columns " + m_names[0] +
                                       " and " + m_names[1]);
    point.x = x.value_or(0.0);
    point.y = y.value_or(0.0);
    return point;
}

} // namespace zelto::cli
