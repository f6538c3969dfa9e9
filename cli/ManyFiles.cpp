#include "cli/ManyFiles.h"

#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Interrupts.h"
#include "host/base/Message.h"
#include "host/base/Progress.h"
#include "host/base/Text.h"

#include <CLI/CLI.hpp>
#include <omp.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <iostream>
#include <mutex>
#include <thread>

namespace zelto::cli {

namespace {

using Work = std::function<void(std::size_t, CDataProgress&)>;

/// What is left of the work on one file.
struct Outcome {
    std::string failure; ///< line; empty: none
    std::exception_ptr other;
};

Outcome WorkOn(const std::string& file, std::size_t number, const Work& work,
               CDataProgress& progress) {
    Outcome outcome;
    try {
        work(number, progress);
    } catch (const host::Failure& failure) {
        outcome.failure = failure.what();
    } catch (const host::UsageError& error) {
        // What suits one file need not suit another.
        outcome.failure = file + ": " + error.what();
    } catch (...) {
        outcome.other = std::current_exception();
    }
    return outcome;
}

/// Files that threads take one after the other.
class Queue {
  public:
    Queue(const std::vector<std::string>& files, const Work& work)
        : m_files(files), m_work(work), m_outcomes(files.size()) {}

    /// Works until nothing is left, or something has gone wrong that is no file's fault.
    void Serve(int threads) {
        // A picture is drawn by several threads, which share the processors with those here.
        omp_set_num_threads(threads);
        host::TerminalProgress::SilenceThisThread();
        host::TerminalProgress progress;
        for (std::size_t i = m_next++; i < m_files.size() && !m_stopped; i = m_next++) {
            if (host::Interrupted())
                break;
            m_outcomes[i] = WorkOn(m_files[i], i, m_work, progress);
            m_stopped = m_stopped || m_outcomes[i].other != nullptr;
            const std::lock_guard lock(m_mutex);
            ++m_done;
            m_changed.notify_all();
        }
        const std::lock_guard lock(m_mutex);
        ++m_over;
        m_changed.notify_all();
    }
    /// Shows how many files are done, until all threads are over.
    void Watch(int threads) {
        host::TerminalProgress progress;
        const std::string title = std::to_string(m_files.size()) + " files";
        progress.BeginProgress(host::Wide(title).c_str(), static_cast<int>(m_files.size()));
        std::unique_lock lock(m_mutex);
        while (m_over < threads) {
            m_changed.wait(lock);
            progress.StepProgress(m_done, L"");
        }
    }
    const std::vector<Outcome>& Outcomes() const { return m_outcomes; }

  private:
    const std::vector<std::string>& m_files;
    const Work& m_work;
    std::vector<Outcome> m_outcomes;
    std::atomic<std::size_t> m_next = 0;
    std::atomic<bool> m_stopped = false;
    std::mutex m_mutex; ///< of what follows
    std::condition_variable m_changed;
    int m_done = 0;
    int m_over = 0;
};

std::vector<Outcome> WorkAtOnce(const std::vector<std::string>& files, int jobs, const Work& work) {
    Queue queue(files, work);
    const int threads = std::max(omp_get_num_procs() / jobs, 1);
    std::vector<std::thread> workers;
    try {
        for (int i = 0; i < jobs; ++i)
            workers.emplace_back([&] { queue.Serve(threads); });
    } catch (const std::system_error&) {
        // Those that there are do the work.
    }
    if (workers.empty())
        queue.Serve(threads);
    queue.Watch(std::max(static_cast<int>(workers.size()), 1));
    for (std::thread& worker : workers)
        worker.join();
    return queue.Outcomes();
}

} // namespace

CLI::Option* AddJobsOption(CLI::App& command, int& jobs) {
    return command
        .add_option("--jobs", jobs, "files to work on at once; default: as many as processors")
        ->check(CLI::Range(1, 1024));
}

std::vector<std::string> ForEachFile(const std::vector<std::string>& files, int jobs,
                                     const Work& work) {
    const host::GdalUse drivers; // registered once, not again for every file
    if (files.size() == 1) {
        host::TerminalProgress progress;
        try {
            work(0, progress);
        } catch (const host::Failure& failure) {
            host::EndIfInterrupted();
            return {failure.what()};
        }
        return {};
    }
    const int processors = std::max(omp_get_num_procs(), 1);
    const int atOnce = std::min(jobs > 0 ? jobs : processors, static_cast<int>(files.size()));
    std::vector<std::string> failures;
    for (const Outcome& outcome : WorkAtOnce(files, std::max(atOnce, 1), work)) {
        host::EndIfInterrupted();
        if (outcome.other != nullptr)
            std::rethrow_exception(outcome.other);
        if (!outcome.failure.empty())
            failures.push_back(outcome.failure);
    }
    host::EndIfInterrupted();
    return failures;
}

void TellFailures(const std::vector<std::string>& failures) {
    if (failures.empty())
        return;
    std::cout.flush();
    for (std::size_t i = 0; i + 1 < failures.size(); ++i)
        host::Tell(failures[i]);
    throw host::Failure(failures.back());
}

} // namespace zelto::cli
