#include "host/base/Interrupts.h"

#include "zelto/baselib/NewFileSet.h"

#include "host/base/Message.h"
#include "host/base/Progress.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <ctime>
#include <mutex>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace zelto::host {

namespace {

constexpr std::array SIGNALS = {SIGINT, SIGTERM, SIGHUP};

/// Time for work to reach its next progress step; all is over within a second.
constexpr timespec GRACE = {0, 600'000'000};

/// What the listener shares with the program. It has no destructor to run while the listener
/// still waits.
struct Shared {
    std::atomic<bool> interrupted = false;
    std::mutex mutex; ///< of what follows
    std::condition_variable changed;
    int changesInPlace = 0;
    bool atEnd = false;
};

Shared& State() {
    static auto* const state = new Shared; // NOLINT(cppcoreguidelines-owning-memory)
    return *state;
}

__attribute__((no_sanitize("address", "thread", "undefined"))) sigset_t AllSignals() {
    sigset_t all;
    sigemptyset(&all);
    for (const int number : SIGNALS)
        sigaddset(&all, number);
    return all;
}

/// Those that the caller of the program does not want ignored, or the others.
sigset_t SignalsThatAre(bool ignored) {
    sigset_t found;
    sigemptyset(&found);
    for (const int number : SIGNALS) {
        struct sigaction present = {};
        sigaction(number, nullptr, &present);
        if ((present.sa_handler == SIG_IGN) == ignored)
            sigaddset(&found, number);
    }
    return found;
}

/// Ends the program where it is.
void EndNow() {
    std::unique_lock lock(State().mutex);
    State().changed.wait(lock, [] { return State().changesInPlace == 0; });
    if (State().atEnd)
        return;
    CNewFileSet::AbandonAll();
    TerminalProgress::EndLine();
    Tell(Interruption().what());
    _exit(EXIT_INTERRUPTED);
}

void Listen(sigset_t heeded) {
    while (sigwaitinfo(&heeded, nullptr) < 0) {
        if (errno != EINTR)
            return; // nothing to wait for
    }
    State().interrupted = true;
    sigtimedwait(&heeded, nullptr, &GRACE);
    EndNow();
}

} // namespace

__attribute__((no_sanitize("address", "thread", "undefined"))) void HoldSignals() {
    const sigset_t all = AllSignals();
    sigprocmask(SIG_BLOCK, &all, nullptr);
}

void ListenForInterrupts() {
    const sigset_t all = AllSignals();
    const sigset_t ignored = SignalsThatAre(true);
    HoldSignals();
    sigprocmask(SIG_UNBLOCK, &ignored, nullptr);
    try {
        State();
        std::thread(Listen, SignalsThatAre(false)).detach();
    } catch (const std::system_error&) {
        // Without a listener a request ends the program as it would any other.
        sigprocmask(SIG_UNBLOCK, &all, nullptr);
    }
}

void StopListening() {
    const std::lock_guard lock(State().mutex);
    State().atEnd = true;
}

bool Interrupted() {
    return State().interrupted;
}

void EndIfInterrupted() {
    if (Interrupted())
        throw Interruption();
}

ChangeInPlace::ChangeInPlace() {
    EndIfInterrupted();
    const std::lock_guard lock(State().mutex);
    ++State().changesInPlace;
}

ChangeInPlace::~ChangeInPlace() {
    const std::lock_guard lock(State().mutex);
    --State().changesInPlace;
    State().changed.notify_all();
}

} // namespace zelto::host
