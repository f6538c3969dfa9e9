#pragma once

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

namespace zelto::cli {

struct Points {
    std::vector<double> x;
    std::vector<double> y;
    std::vector<int> known; ///< as long as the others once they are transformed
};

/// The lines of a file, or of standard input for "-".
class LineReader {
  public:
    /// Throws Failure where the file cannot be opened.
    explicit LineReader(const std::string& file);

    /// Of the file, for messages.
    const std::string& Name() const { return m_name; }
    /// File and number of the line that was read last.
    std::string Where() const { return m_name + ": line " + std::to_string(m_line); }
    /// False at the end.
    bool Next(std::string& line);

  private:
    std::string m_name;
    std::ifstream m_file;
    std::size_t m_line = 0;
};

/// Reads x and y from the lines of a text or CSV file; further columns are ignored, and so are
/// empty lines, comments after '#' and a first line of headings.
class PointReader {
  public:
    /// @param lines outlives the reader
    explicit PointReader(LineReader& lines) : m_lines(lines) {}

    /// Reads up to `most` points; fewer, none at last, at the end. Throws Failure for a line that
    /// does not start with two numbers.
    Points Read(std::size_t most);

  private:
    void AddPoint(Points& points, const std::string& line);

    LineReader& m_lines;
    bool m_contentSeen = false;
};

} // namespace zelto::cli
