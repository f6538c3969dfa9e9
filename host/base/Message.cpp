#include "host/base/Message.h"

#include "host/base/Printable.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <string_view>
#include <unistd.h>

/// There in a program that is built with a sanitizer: where its reports go.
extern "C" void __sanitizer_set_report_fd(void* descriptor) __attribute__((weak));

namespace zelto::host {

namespace {

/// Of the program's messages.
int g_messages = STDERR_FILENO; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
bool g_quiet = false;           // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

bool IsOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

/// Puts something in the places of closed streams that can neither be read nor written usefully.
void FillClosedStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (!IsOpen(descriptor))
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace

bool IsDebugging() {
    const char* const debug = std::getenv("CPL_DEBUG");
    return debug != nullptr && *debug != '\0' && std::string_view(debug) != "OFF";
}

int MessageDescriptor() {
    return g_messages;
}

void TakeStandardStreams() {
    FillClosedStreams();
    if (IsDebugging())
        return;
    const int kept = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (kept >= 0 && nowhere >= 0) {
        dup2(nowhere, STDERR_FILENO);
        g_messages = kept;
    }
    if (nowhere >= 0)
        close(nowhere);
    if (__sanitizer_set_report_fd != nullptr)
        __sanitizer_set_report_fd(reinterpret_cast<void*>(std::intptr_t{g_messages}));
}

void GiveBackStandardError() {
    if (g_messages != STDERR_FILENO)
        dup2(g_messages, STDERR_FILENO);
}

void PrintOnTerminal(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = write(g_messages, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR)
            return;
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
}

void Tell(const std::string& line) {
    PrintOnTerminal("zelto: " + Printable(line) + '\n');
}

void BeQuiet() {
    g_quiet = true;
}

bool IsQuiet() {
    return g_quiet;
}

void Remark(const std::string& line) {
    if (!g_quiet)
        Tell(line);
}

void Confirm(const std::string& line) {
    if (!g_quiet)
        std::cout << Printable(line) << '\n';
}

bool IsOnTerminal() {
    return isatty(g_messages) == 1;
}

} // namespace zelto::host
