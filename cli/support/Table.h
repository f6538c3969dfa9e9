#pragma once

#include <string>
#include <vector>

namespace zelto::cli {

/// A table for people: columns as wide as their widest cell, numbers to the right.
class Table {
  public:
    explicit Table(std::vector<std::string> header);
    void AddRow(std::vector<std::string> cells);
    /// Prints to standard output with `indent` blanks before each line.
    void Print(int indent = 0) const;

  private:
    std::vector<std::vector<std::string>> m_rows; ///< the header first
};

} // namespace zelto::cli
