#include "bench/support/Process.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto::bench {

namespace {

/// What a program is started with instead of this one's standard output and error.
class ThrownAwayOutput {
  public:
    ThrownAwayOutput() {
        posix_spawn_file_actions_init(&m_actions);
        for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&m_actions, descriptor, "/dev/null", O_WRONLY, 0);
    }
    ~ThrownAwayOutput() { posix_spawn_file_actions_destroy(&m_actions); }
    ThrownAwayOutput(const ThrownAwayOutput&) = delete;
    ThrownAwayOutput& operator=(const ThrownAwayOutput&) = delete;

    const posix_spawn_file_actions_t* Actions() const { return &m_actions; }

  private:
    posix_spawn_file_actions_t m_actions{};
};

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

} // namespace

std::string OwnProgram(const std::string& name) {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / name).string();
}

double RunProgram(const std::vector<std::string>& words) {
    std::vector<std::string> copies = words;
    std::vector<char*> arguments;
    for (std::string& word : copies)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const ThrownAwayOutput output;
    pid_t process = 0;
    if (posix_spawnp(&process, arguments[0], output.Actions(), nullptr, arguments.data(),
                     environ) != 0)
        throw std::runtime_error("cannot start " + words[0]);
    int status = 0;
    rusage usage{};
    while (wait4(process, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error("failed: " + Joined(words));
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

} // namespace zelto::bench
