#include "tests/cli/RunZelto.h"

#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zelto::test {

std::string ProgramPath() {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zelto").string();
}

void BecomeZelto(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {ProgramPath()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
}

namespace {

void Redirect(const std::string& path, int flags, int descriptor) {
    const int file = open(path.c_str(), flags, 0600);
    if (file < 0 || dup2(file, descriptor) < 0)
        _exit(126);
    close(file);
}

/// Whether one of a process's sets of signals, as the system calls them, has a signal.
bool Has(pid_t process, const char* set, int signalNumber) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        std::uint64_t signals = 0;
        if (word == set && status >> std::hex >> signals)
            return (signals >> (signalNumber - 1) & 1U) != 0;
    }
    return false;
}

void WaitUntilItHas(pid_t process, const char* set, int signalNumber) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!Has(process, set, signalNumber) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace

RunResult RunZelto(const std::vector<std::string>& arguments, const std::string& input,
                   const std::function<void(pid_t)>& meanwhile, const RunFiles& files) {
    const TemporaryFolder folder;
    WriteFile(folder.File("in"), input);
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        Redirect(files.input.empty() ? folder.File("in") : files.input, O_RDONLY, STDIN_FILENO);
        Redirect(files.output.empty() ? folder.File("out") : files.output, O_WRONLY | O_CREAT,
                 STDOUT_FILENO);
        Redirect(files.errors.empty() ? folder.File("err") : files.errors, O_WRONLY | O_CREAT,
                 STDERR_FILENO);
        BecomeZelto(arguments);
    }
    if (meanwhile)
        meanwhile(child);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    RunResult result;
    result.duration = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - begin);
    result.mostMemory = usage.ru_maxrss;
    if (WIFEXITED(status))
        result.exitStatus = WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        result.endSignal = WTERMSIG(status);
    if (files.output.empty())
        result.output = ReadFile(folder.File("out"));
    if (files.errors.empty())
        result.errors = ReadFile(folder.File("err"));
    return result;
}

void WaitUntilItListens(pid_t process) {
    WaitUntilItHas(process, "SigBlk:", SIGINT);
}

void WaitUntilItCatches(pid_t process, int signalNumber) {
    WaitUntilItHas(process, "SigCgt:", signalNumber);
}

} // namespace zelto::test
