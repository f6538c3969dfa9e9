#include "viewer/worker/Mailbox.h"

#include <utility>

namespace zelto::view {

void Mailbox::Post(Job job) {
    const std::lock_guard lock(m_mutex);
    m_jobs.push_back(std::move(job));
    m_changed.notify_one();
}

void Mailbox::PostLatest(Latest kind, Job job) {
    const std::lock_guard lock(m_mutex);
    m_latest[static_cast<std::size_t>(kind)] = std::move(job);
    m_changed.notify_one();
}

void Mailbox::PostUnlessWaiting(Latest kind, Job job) {
    const std::lock_guard lock(m_mutex);
    Job& waiting = m_latest[static_cast<std::size_t>(kind)];
    if (!waiting && !m_stopped)
        waiting = std::move(job);
    m_changed.notify_one();
}

std::optional<Mailbox::Job> Mailbox::Take() {
    std::unique_lock lock(m_mutex);
    std::optional<Job> next;
    m_changed.wait(lock, [&] { return m_stopped || (next = Next()).has_value(); });
    return next;
}

std::optional<Mailbox::Job> Mailbox::Next() {
    if (!m_jobs.empty()) {
        Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        return job;
    }
    for (Job& waiting : m_latest)
        if (waiting)
            return std::exchange(waiting, nullptr);
    return std::nullopt;
}

bool Mailbox::IsWaiting(Latest kind) const {
    const std::lock_guard lock(m_mutex);
    return static_cast<bool>(m_latest[static_cast<std::size_t>(kind)]);
}

void Mailbox::Stop() {
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
    m_jobs.clear();
    m_latest = {};
    m_changed.notify_all();
}

} // namespace zelto::view
