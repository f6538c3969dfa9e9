#pragma once

#include "zelto/datasource/DataProgress.h"

#include <QObject>
#include <QString>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace zelto::view {

/// How a long work came out.
struct TaskResult {
    QString reason;                ///< why it failed; empty: it did not
    std::function<void()> deliver; ///< called on the interface's thread after a success
};

/// Work that takes long, on files of its own: it never touches the images that are shown.
struct Task {
    QString title;
    std::function<TaskResult(CDataProgress&)> work;
};

/// Does one long work after the other on a thread of its own, and tells how far it is.
class TaskRunner : public QObject {
    Q_OBJECT

  public:
    explicit TaskRunner(QObject* parent = nullptr);
    /// Cancels what is in work and waits for it.
    ~TaskRunner() override;

    void Start(const Task& task);
    /// The work in progress ends at its next step; those that wait are not begun.
    void CancelAll();
    bool IsBusy() const { return m_unfinished > 0; }

  signals:
    void Began(const QString& title);
    /// @param secondsLeft −1 while it cannot be told
    void Progressed(int percent, int secondsLeft);
    void Failed(const QString& title, const QString& reason);
    void Cancelled(const QString& title);
    /// Whatever the outcome.
    void Ended();

  private:
    class Progress;

    void Run();
    void DoOne(const Task& task);
    void Finish(const QString& title, const TaskResult& result);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Task> m_waiting;
    bool m_stopped = false;
    std::atomic<bool> m_cancelled = false;
    int m_unfinished = 0; ///< the interface thread's
    std::thread m_thread;
};

} // namespace zelto::view
