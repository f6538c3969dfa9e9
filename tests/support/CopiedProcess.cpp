#include "tests/support/CopiedProcess.h"

#include <csignal>
#include <unistd.h>

/// In builds for coverage only: writes what the process has reached to the disk.
extern "C" __attribute__((weak)) void __gcov_dump();

namespace zelto::test {

namespace {

bool g_stops = false;

} // namespace

void EndCopy(int exitStatus) {
    if (g_stops)
        raise(SIGSTOP);
    if (__gcov_dump != nullptr)
        __gcov_dump();
    _exit(exitStatus);
}

void StopBeforeEnd() {
    g_stops = true;
}

} // namespace zelto::test
