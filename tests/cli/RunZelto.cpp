#include "tests/cli/RunZelto.h"

#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto::test {

namespace {

/// The program stands beside the test programs.
std::string ProgramPath() {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zelto").string();
}

void Redirect(const std::string& path, int flags, int descriptor) {
    const int file = open(path.c_str(), flags, 0600);
    if (file < 0 || dup2(file, descriptor) < 0)
        _exit(126);
    close(file);
}

} // namespace

RunResult RunZelto(const std::vector<std::string>& arguments, const std::string& input,
                   const std::function<void(pid_t)>& meanwhile) {
    const TemporaryFolder folder;
    WriteFile(folder.File("in"), input);
    std::vector<std::string> words = {ProgramPath()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        Redirect(folder.File("in"), O_RDONLY, STDIN_FILENO);
        Redirect(folder.File("out"), O_WRONLY | O_CREAT, STDOUT_FILENO);
        Redirect(folder.File("err"), O_WRONLY | O_CREAT, STDERR_FILENO);
        execv(argv[0], argv.data());
        _exit(127);
    }
    if (meanwhile)
        meanwhile(child);
    int status = 0;
    waitpid(child, &status, 0);
    RunResult result;
    if (WIFEXITED(status))
        result.exitStatus = WEXITSTATUS(status);
    result.output = ReadFile(folder.File("out"));
    result.errors = ReadFile(folder.File("err"));
    return result;
}

} // namespace zelto::test
