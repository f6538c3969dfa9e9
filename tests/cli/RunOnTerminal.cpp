#include "tests/cli/RunOnTerminal.h"

#include "tests/cli/RunZelto.h"

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto::test {

std::string RunOnTerminal(const std::vector<std::string>& arguments) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0)
        BecomeZelto(arguments);
    // Reading fails once the program has ended.
    std::string shown;
    char text[4096];
    for (ssize_t size = 0; (size = read(terminal, text, sizeof text)) > 0;)
        shown.append(text, static_cast<std::size_t>(size));
    close(terminal);
    waitpid(child, nullptr, 0);
    return shown;
}

} // namespace zelto::test
