#pragma once

#include "zelto/datasource/DataProgress.h"

#include <string>

namespace zelto::cli {

/// Makes Ctrl-C and a termination request end long work at its next progress step.
void CatchInterrupts();

/// Whether the user asked to stop.
bool Interrupted();

/// A progress bar on standard error where that is a terminal, silent elsewhere; cancels the
/// work when the user asked to stop.
class TerminalProgress : public CDataProgress {
  public:
    TerminalProgress();
    ~TerminalProgress() override;

    void HostPrepare() override {}
    void BeginProgress(const wchar_t* title, int total) override;
    bool StepProgress(int percent, const wchar_t* message) override;
    void HostFinish() override {}
    void HostShow() override {}
    void HostHide() override {}

  private:
    void Draw(int percent);

    bool m_onTerminal;
    bool m_drawn = false;
    std::string m_title;
    int m_total = 100;
    int m_shown = -1;
};

} // namespace zelto::cli
