#include "cli/support/Quiet.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace zelto::cli {

QuietStandardError::QuietStandardError() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0)
        return;
    std::fflush(stderr);
    m_saved = dup(STDERR_FILENO);
    if (m_saved >= 0)
        dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

QuietStandardError::~QuietStandardError() {
    if (m_saved < 0)
        return;
    std::fflush(stderr);
    dup2(m_saved, STDERR_FILENO);
    close(m_saved);
}

} // namespace zelto::cli
