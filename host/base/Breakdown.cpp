#include "host/base/Breakdown.h"

#include "host/base/Message.h"
#include "host/base/Printable.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <unistd.h>

namespace zelto::host {

namespace {

constexpr std::array BREAKDOWNS = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

/// Names beyond this are cut.
constexpr std::size_t LONGEST_NAME = 4096;

// The program may be in any state then: what is to be printed is there before.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
thread_local std::array<char, LONGEST_NAME + 2> t_name;
int g_exitStatus = 1;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

void Print(const char* text) {
    [[maybe_unused]] const ssize_t written = write(MessageDescriptor(), text, std::strlen(text));
}

void EndWithALine(int /*signal*/) {
    Print("zelto: ");
    Print(t_name.data());
    Print("a library broke down; the file may be damaged\n");
    _exit(g_exitStatus);
}

/// Room for EndWithALine() where the stack has run out.
void UseStackOfItsOwn() {
    constexpr std::size_t SIZE = 1U << 16U;
    static std::array<char, SIZE> room;
    stack_t stack = {};
    stack.ss_sp = room.data();
    stack.ss_size = room.size();
    sigaltstack(&stack, nullptr);
}

} // namespace

void TellBreakdowns(int exitStatus) {
    if (IsDebugging())
        return;
    g_exitStatus = exitStatus;
    UseStackOfItsOwn();
    for (const int number : BREAKDOWNS) {
        struct sigaction present = {};
        sigaction(number, nullptr, &present);
        if (present.sa_handler != SIG_DFL)
            continue; // a sanitizer's
        struct sigaction own = {};
        own.sa_handler = EndWithALine;
        own.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND);
        sigaction(number, &own, nullptr);
    }
}

void TellAtWork(const std::string& path) {
    const std::string name = Printable(path).substr(0, LONGEST_NAME - 2) + ": ";
    *std::copy(name.begin(), name.end(), t_name.begin()) = '\0';
}

} // namespace zelto::host
