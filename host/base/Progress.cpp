#include "host/base/Progress.h"

#include "host/base/Interrupts.h"
#include "host/base/Message.h"
#include "host/base/Printable.h"
#include "host/base/Text.h"

#include <algorithm>
#include <atomic>

namespace zelto::host {

namespace {

constexpr std::chrono::seconds PATIENCE(1);

/// Whether the terminal's present line is a bar.
std::atomic<bool> g_drawn = false; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

/// Whether another thread has the terminal.
thread_local bool t_silent = false;

} // namespace

TerminalProgress::TerminalProgress() : m_onTerminal(IsOnTerminal() && !IsQuiet() && !t_silent) {}

TerminalProgress::~TerminalProgress() {
    if (m_onTerminal)
        EndLine();
}

void TerminalProgress::SilenceThisThread() {
    t_silent = true;
}

void TerminalProgress::EndLine() {
    if (g_drawn.exchange(false))
        PrintOnTerminal("\n");
}

void TerminalProgress::BeginProgress(const wchar_t* title, int total) {
    if (m_onTerminal)
        EndLine();
    m_title = title != nullptr ? Printable(Narrow(title)) : std::string();
    m_total = std::max(total, 1);
    m_shown = -1;
    m_begin = std::chrono::steady_clock::now();
}

bool TerminalProgress::StepProgress(int percent, const wchar_t* /*message*/) {
    const int shown = static_cast<int>(100LL * std::clamp(percent, 0, m_total) / m_total);
    if (m_onTerminal && shown != m_shown && std::chrono::steady_clock::now() - m_begin > PATIENCE)
        Draw(shown);
    return !Interrupted();
}

void TerminalProgress::Draw(int percent) {
    constexpr int WIDTH = 40;
    const int filled = percent * WIDTH / 100;
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                            std::string(static_cast<std::size_t>(WIDTH - filled), '.');
    const std::string number = std::to_string(percent);
    PrintOnTerminal('\r' + m_title + " [" + bar + "] " + std::string(3 - number.size(), ' ') +
                    number + '%');
    g_drawn = true;
    m_shown = percent;
}

} // namespace zelto::host
