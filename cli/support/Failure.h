#pragma once

#include <stdexcept>
#include <string>

namespace zelto::cli {

/// The work failed: which file, and why. The program prints it as one line and exits with 1.
class Failure : public std::runtime_error {
  public:
    Failure(const std::string& file, const std::string& reason)
        : std::runtime_error(file + ": " + reason) {}
    /// @param line names the file already, as CGISDataSource::GetLastErrorText() does
    explicit Failure(const std::string& line) : std::runtime_error(line) {}
};

/// The options make no sense together; the program prints it and exits with 2.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace zelto::cli
