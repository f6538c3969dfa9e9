#include "python/src/Call.h"

#include <algorithm>

namespace py = pybind11;

namespace zelto::python {

Turn::Turn(bool& taken, const char* what) : m_taken(taken) {
    if (taken)
        throw std::runtime_error(std::string("this ") + what +
                                 " is in use by another call; each serves one thread at a time");
    taken = true;
}

void CallProgress::BeginProgress(const wchar_t* /*title*/, int total) {
    m_total = std::max(total, 1);
    m_asked = Clock::time_point();
}

bool CallProgress::StepProgress(int percent, const wchar_t* /*message*/) {
    constexpr auto PAUSE = std::chrono::milliseconds(50);
    if (m_stop != nullptr)
        return false;
    const auto now = Clock::now();
    if (percent < m_total && now - m_asked < PAUSE)
        return true;
    m_asked = now;
    return Ask(std::clamp(static_cast<double>(percent) / m_total, 0.0, 1.0));
}

bool CallProgress::Ask(double fraction) {
    const py::gil_scoped_acquire lock;
    try {
        if (PyErr_CheckSignals() != 0)
            throw py::error_already_set();
        if (!m_callable.is_none())
            m_callable(fraction);
        return true;
    } catch (...) {
        m_stop = std::current_exception();
        return false;
    }
}

void CallProgress::ThrowIfStopped() {
    if (m_stop == nullptr)
        return;
    std::rethrow_exception(std::exchange(m_stop, nullptr));
}

} // namespace zelto::python
