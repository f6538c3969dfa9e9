#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zelto::cli {

/// A line of a table whose columns x and y are to be replaced.
struct PointLine {
    std::string text;
    bool isPoint = false; ///< false for headings, comments and empty lines, which stay
    double x = 0.0;
    double y = 0.0;

    /// The line with other texts in the place of x and y.
    std::string With(const std::string& newX, const std::string& newY) const;

    struct Span {
        std::size_t first = 0;
        std::size_t end = 0;
    };
    Span xPlace;
    Span yPlace;
};

/// Finds two columns in the lines of a table: by their numbers, counted from 1, or by the names
/// of the first line. The first line tells what parts the columns: a comma, a semicolon, a tab or,
/// where it has none of these, blanks. Text between double quotes is not parted.
class PointColumns {
  public:
    /// @param columns "3,4" or "lon,lat". Throws UsageError.
    explicit PointColumns(const std::string& columns);

    /// The next line of the table.
    /// @param where names file and line in the failure of a line without two numbers there
    PointLine Parse(const std::string& line, const std::string& where);

  private:
    void TakeFirst(const std::string& line, const std::string& where);
    std::vector<PointLine::Span> Split(const std::string& line) const;

    std::string m_names[2];
    std::size_t m_columns[2] = {0, 0}; ///< from 1; 0: not found yet
    char m_separator = '\0';           ///< '\0': not known yet, ' ': blanks
};

} // namespace zelto::cli
