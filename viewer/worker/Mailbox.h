#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

namespace zelto::view {

/// What the interface wants of the thread that owns the images. Jobs are done in the order given.
/// Of the kinds that go out of date only the latest one waits: posting another replaces it, so
/// that a view that nobody looks at any more is never drawn.
class Mailbox {
  public:
    using Job = std::function<void()>;

    /// In the order in which they are done, after the jobs.
    enum class Latest : std::size_t { Picture, Reading, Overview, Histograms, Rest };

    void Post(Job job);
    /// Takes the place of a waiting one of the same kind.
    void PostLatest(Latest kind, Job job);
    /// Gives way to a waiting one of the same kind, which is later than this.
    void PostUnlessWaiting(Latest kind, Job job);
    /// Waits for the next; nothing after Stop().
    std::optional<Job> Take();
    /// Whether something waits that makes the one in work not worth finishing.
    bool IsWaiting(Latest kind) const;
    /// Forgets what waits; Take() answers nothing from now on.
    void Stop();

  private:
    static constexpr std::size_t KINDS = 5;

    std::optional<Job> Next();

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Job> m_jobs;
    std::array<Job, KINDS> m_latest;
    bool m_stopped = false;
};

} // namespace zelto::view
