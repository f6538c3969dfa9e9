#include "viewer/worker/TaskRunner.h"

#include "zelto/datasource/GISDataSource.h"

#include "host/base/HostProgress.h"

#include <QMetaObject>
#include <algorithm>
#include <exception>

namespace zelto::view {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto REPORT_INTERVAL = std::chrono::milliseconds(80);

} // namespace

/// Passes on how far the work is, seldom enough not to keep the interface busy.
class TaskRunner::Progress : public host::HostProgress {
  public:
    explicit Progress(TaskRunner& runner) : m_runner(runner) {}

    void BeginProgress(const wchar_t*, int total) override {
        m_total = std::max(total, 1);
        m_begin = Clock::now();
    }
    bool StepProgress(int percent, const wchar_t*) override {
        const auto now = Clock::now();
        if (now - m_reported >= REPORT_INTERVAL) {
            m_reported = now;
            Report(std::clamp(percent, 0, m_total), now);
        }
        return !m_runner.m_cancelled;
    }

  private:
    void Report(int done, Clock::time_point now) {
        const double spent = std::chrono::duration<double>(now - m_begin).count();
        int left = -1;
        if (done > 0 && spent > 0.5)
            left = static_cast<int>(spent * (m_total - done) / done + 0.5);
        emit m_runner.Progressed(static_cast<int>(100LL * done / m_total), left);
    }

    TaskRunner& m_runner;
    int m_total = 100;
    Clock::time_point m_begin = Clock::now();
    Clock::time_point m_reported;
};

TaskRunner::TaskRunner(QObject* parent) : QObject(parent) {
    CGISDataSource::RegisterGDAL();
    m_thread = std::thread([this] { Run(); });
}

TaskRunner::~TaskRunner() {
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.clear();
        m_stopped = true;
    }
    m_cancelled = true;
    m_changed.notify_all();
    m_thread.join();
    CGISDataSource::DestroyGDAL();
}

void TaskRunner::Start(const Task& task) {
    ++m_unfinished;
    const std::lock_guard lock(m_mutex);
    if (m_unfinished == 1)
        m_cancelled = false;
    m_waiting.push_back(task);
    m_changed.notify_all();
}

void TaskRunner::CancelAll() {
    m_cancelled = true;
}

void TaskRunner::Run() {
    for (;;) {
        Task task;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_stopped || !m_waiting.empty(); });
            if (m_stopped)
                return;
            task = std::move(m_waiting.front());
            m_waiting.pop_front();
        }
        DoOne(task);
    }
}

void TaskRunner::DoOne(const Task& task) {
    TaskResult result;
    if (!m_cancelled) {
        emit Began(task.title);
        Progress progress(*this);
        try {
            result = task.work(progress);
        } catch (const std::exception& error) {
            result.reason = QString::fromUtf8(error.what());
        }
    }
    QMetaObject::invokeMethod(
        this, [this, title = task.title, result] { Finish(title, result); }, Qt::QueuedConnection);
}

void TaskRunner::Finish(const QString& title, const TaskResult& result) {
    const bool wasCancelled = m_cancelled && (!result.reason.isEmpty() || !result.deliver);
    --m_unfinished;
    if (wasCancelled)
        emit Cancelled(title);
    else if (!result.reason.isEmpty())
        emit Failed(title, result.reason);
    else if (result.deliver)
        result.deliver();
    emit Ended();
}

} // namespace zelto::view
