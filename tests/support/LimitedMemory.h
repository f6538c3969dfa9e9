#pragma once

#include "tests/support/CopiedProcess.h"

#include <omp.h>

#include <fstream>
#include <functional>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto::test {

/// Whether a process may be short of memory here: sanitizers take more than can be limited.
constexpr bool CanLimitMemory() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    return true;
#endif
}

/// How a body that ran in a process of its own ended.
enum class Ending { ANSWERED_TRUE, ANSWERED_FALSE, DIED };

/// Runs `body` in a copy of this process that may take only `bytes` more than it has. An
/// exception that leaves it is the end of that process.
inline Ending RunWithMemory(std::size_t bytes, const std::function<bool()>& body) {
    const pid_t child = fork();
    if (child == 0) {
        // The threads of this process are not in its copy.
        omp_set_num_threads(1);
        // What was freed before would be memory beyond the limit.
        malloc_trim(0);
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlim_t limit = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + bytes;
        const rlimit limits = {limit, limit};
        setrlimit(RLIMIT_AS, &limits);
        const auto run = [&]() noexcept { return body() ? 0 : 1; };
        EndCopy(run());
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFEXITED(status))
        return Ending::DIED;
    return WEXITSTATUS(status) == 0 ? Ending::ANSWERED_TRUE : Ending::ANSWERED_FALSE;
}

} // namespace zelto::test
