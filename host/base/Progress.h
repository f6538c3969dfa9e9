#pragma once

#include "host/base/HostProgress.h"

#include <chrono>
#include <string>

namespace zelto::host {

/// A progress bar on standard error where that is a terminal and the work takes longer than a
/// second, silent elsewhere; cancels the work when the user asked to stop.
class TerminalProgress : public HostProgress {
  public:
    TerminalProgress();
    ~TerminalProgress() override;

    void BeginProgress(const wchar_t* title, int total) override;
    bool StepProgress(int percent, const wchar_t* message) override;

    /// Leaves the terminal to another thread: objects made on this one from now on show nothing.
    static void SilenceThisThread();
    /// Ends the line of the bar that is on the terminal, if there is one.
    static void EndLine();

  private:
    void Draw(int percent);

    bool m_onTerminal;
    std::string m_title;
    int m_total = 100;
    int m_shown = -1;
    std::chrono::steady_clock::time_point m_begin;
};

} // namespace zelto::host
