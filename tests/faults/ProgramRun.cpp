#include "tests/faults/ProgramRun.h"

#include "cli/Program.h"
#include "tests/support/CopiedProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zelto::test {

namespace {

/// Longer than this is a hang.
constexpr unsigned int MOST_SECONDS = 300;

/// One for all: standard error of the runs, and what the copies share.
const TemporaryFolder& Streams() {
    static const TemporaryFolder folder;
    return folder;
}

Fault* SharedFault() {
    static void* const memory =
        mmap(nullptr, sizeof(Fault), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED ? new (memory) Fault : nullptr;
}

} // namespace

ProgramRun::ProgramRun(std::vector<std::string> words)
    : m_words(std::move(words)),
      m_nothing(open("/dev/null", O_RDWR | O_CLOEXEC)),
      m_errors(open(Streams().File("errors").c_str(),
                    O_RDWR | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600)),
      m_fault(SharedFault()) {
    m_words.insert(m_words.begin(), "zelto");
}

ProgramRun::~ProgramRun() {
    close(m_nothing);
    close(m_errors);
}

int ProgramRun::RunHere() const {
    // Opened before, so that only what the program does counts as its own.
    dup2(m_nothing, STDIN_FILENO);
    dup2(m_nothing, STDOUT_FILENO);
    dup2(m_errors, STDERR_FILENO);
    alarm(MOST_SECONDS);
    std::vector<std::string> words = m_words;
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    zelto_obey_fault(m_fault);
    const int exitStatus = cli::RunProgram(static_cast<int>(arguments.size()), arguments.data());
    zelto_obey_fault(nullptr);
    return exitStatus;
}

void ProgramRun::Become() const {
    _exit(RunHere());
}

ProgramEnd ProgramRun::Run(Fault& fault) {
    *m_fault = fault;
    ForgetErrors();
    const pid_t child = fork();
    if (child == 0)
        EndCopy(RunHere());
    const ProgramEnd end = Wait(child);
    fault = *m_fault;
    *m_fault = Fault();
    return end;
}

ProgramEnd ProgramRun::Run() {
    Fault none;
    return Run(none);
}

ProgramEnd ProgramRun::RunUnder(const std::function<void()>& circumstances) {
    ForgetErrors();
    const pid_t child = fork();
    if (child == 0) {
        circumstances();
        Become();
    }
    return Wait(child);
}

ProgramEnd ProgramRun::RunAndKill(std::chrono::microseconds after) {
    ForgetErrors();
    const pid_t child = fork();
    if (child == 0)
        Become();
    std::this_thread::sleep_for(after);
    kill(child, SIGKILL);
    return Wait(child);
}

std::string ProgramRun::Errors() const {
    return ReadFile(Streams().File("errors"));
}

void ProgramRun::ForgetErrors() const {
    EXPECT_EQ(ftruncate(m_errors, 0), 0);
}

ProgramEnd ProgramRun::Wait(int child) const {
    const auto begin = std::chrono::steady_clock::now();
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    ProgramEnd end;
    end.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    for (const timeval& time : {usage.ru_utime, usage.ru_stime})
        end.work += static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    end.mostMemory = usage.ru_maxrss;
    if (WIFEXITED(status))
        end.exitStatus = WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        end.endSignal = WTERMSIG(status);
    end.errors = Errors();
    return end;
}

} // namespace zelto::test
