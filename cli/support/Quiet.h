#pragma once

namespace zelto::cli {

/// Keeps standard error silent while it lives. Some format libraries write their diagnostics
/// there on their own; the program tells the reason of a failure itself, in one line.
class QuietStandardError {
  public:
    QuietStandardError();
    ~QuietStandardError();
    QuietStandardError(const QuietStandardError&) = delete;
    QuietStandardError& operator=(const QuietStandardError&) = delete;

  private:
    int m_saved = -1; ///< descriptor of the real standard error
};

} // namespace zelto::cli
