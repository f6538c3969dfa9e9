#pragma once

#include "host/base/HostProgress.h"

#include <chrono>
#include <exception>
#include <pybind11/pybind11.h>
#include <string>
#include <utility>

namespace zelto::python {

/// The right to use an engine object, which serves one thread at a time: to be taken and given
/// back while the interpreter's lock is held, and kept while the engine works without it.
class Turn {
  public:
    /// Throws RuntimeError when another call has the turn.
    /// @param what it is the turn of, for the message
    Turn(bool& taken, const char* what);
    ~Turn() { m_taken = false; }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    bool& m_taken;
};

/// Progress of one call of the engine: tells a Python callable how far it is, and ends the work
/// when that raises or the user presses Ctrl-C.
class CallProgress : public host::HostProgress {
  public:
    /// @param callable takes a fraction of 1; None: nothing is told
    explicit CallProgress(pybind11::object callable) : m_callable(std::move(callable)) {}

    void BeginProgress(const wchar_t* title, int total) override;
    bool StepProgress(int percent, const wchar_t* message) override;

    /// Throws what ended the work, if something did. Call it with the interpreter's lock.
    void ThrowIfStopped();

  private:
    using Clock = std::chrono::steady_clock;

    bool Ask(double fraction);

    pybind11::object m_callable;
    int m_total = 100;
    Clock::time_point m_asked;
    std::exception_ptr m_stop;
};

/// Runs work of the engine without the interpreter's lock and throws what stopped it.
/// @return what the work answers
template <typename Work>
auto Run(CallProgress& progress, Work work) {
    try {
        const auto answer = [&] {
            const pybind11::gil_scoped_release released;
            return work();
        }();
        progress.ThrowIfStopped();
        return answer;
    } catch (...) {
        // Why the work was ended says more than that it failed.
        progress.ThrowIfStopped();
        throw;
    }
}

/// The same for work without progress.
template <typename Work>
auto Run(Work work) {
    const pybind11::gil_scoped_release released;
    return work();
}

} // namespace zelto::python
