#pragma once

#include <string>
#include <vector>

namespace zelto::host {

/// Heading and rows of a table, before anybody lays it out; every row has a cell for each column.
struct TableContent {
    std::vector<std::string> columns;
    std::vector<std::vector<std::string>> rows;
};

/// A table for people: columns as wide as their widest cell, numbers to the right.
class Table {
  public:
    explicit Table(std::vector<std::string> header);
    explicit Table(const TableContent& content);
    void AddRow(std::vector<std::string> cells);
    /// Prints to standard output with `indent` blanks before each line.
    void Print(int indent = 0) const;

  private:
    std::vector<std::vector<std::string>> m_rows; ///< the header first
};

} // namespace zelto::host
