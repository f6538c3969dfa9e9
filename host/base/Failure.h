#pragma once

#include <stdexcept>
#include <string>

namespace zelto::host {

/// A reason without the name of the file that the engine puts in front of it.
inline std::string WithoutName(const std::string& file, const std::string& reason) {
    const std::string name = file + ": ";
    return reason.compare(0, name.size(), name) == 0 ? reason.substr(name.size()) : reason;
}

/// The work failed: which file, and why; the reason may begin with the file as well. The command
/// line prints it as one line and exits with 1, Python raises zelto.Error, the viewer shows it in
/// its bar.
class Failure : public std::runtime_error {
  public:
    Failure(const std::string& file, const std::string& reason)
        : std::runtime_error(file + ": " + WithoutName(file, reason)), m_file(file) {}
    /// @param line names the file already, as CGISDataSource::GetLastErrorText() does
    explicit Failure(const std::string& line) : std::runtime_error(line) {}

    /// Empty where the line alone names it.
    const std::string& File() const { return m_file; }

  private:
    std::string m_file;
};

/// What was asked for makes no sense; the command line prints it and exits with 2, Python raises
/// ValueError.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace zelto::host
