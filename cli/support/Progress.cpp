#include "cli/support/Progress.h"

#include "cli/support/Text.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace zelto::cli {

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void RememberInterrupt(int signalNumber) {
    g_interrupted = 1;
    // A second request ends the program at once: work without progress steps cannot be asked.
    std::signal(signalNumber, SIG_DFL);
}

} // namespace

void CatchInterrupts() {
    std::signal(SIGINT, RememberInterrupt);
    std::signal(SIGTERM, RememberInterrupt);
}

bool Interrupted() {
    return g_interrupted != 0;
}

TerminalProgress::TerminalProgress() : m_onTerminal(isatty(STDERR_FILENO) == 1) {}

TerminalProgress::~TerminalProgress() {
    if (m_drawn)
        std::fputc('\n', stderr);
}

void TerminalProgress::BeginProgress(const wchar_t* title, int total) {
    if (m_drawn)
        std::fputc('\n', stderr);
    m_drawn = false;
    m_title = title != nullptr ? Narrow(title) : std::string();
    m_total = std::max(total, 1);
    m_shown = -1;
}

bool TerminalProgress::StepProgress(int percent, const wchar_t* /*message*/) {
    const int shown = static_cast<int>(100LL * std::clamp(percent, 0, m_total) / m_total);
    if (m_onTerminal && shown != m_shown)
        Draw(shown);
    m_shown = shown;
    return !Interrupted();
}

void TerminalProgress::Draw(int percent) {
    constexpr int WIDTH = 40;
    const int filled = percent * WIDTH / 100;
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                            std::string(static_cast<std::size_t>(WIDTH - filled), '.');
    std::fprintf(stderr, "\r%s [%s] %3d%%", m_title.c_str(), bar.c_str(), percent);
    std::fflush(stderr);
    m_drawn = true;
}

} // namespace zelto::cli
