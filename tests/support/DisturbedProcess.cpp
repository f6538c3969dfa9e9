#include "tests/support/DisturbedProcess.h"

#include "tests/support/CopiedProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <set>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto::test {

namespace {

constexpr int SYSTEM_CALL_STOP = SIGTRAP | 0x80;

/// Whether the system call that a stopped thread is about to make changes files.
bool ChangesFiles(const user_regs_struct& registers) {
    static const std::set<unsigned long long> ON_DESCRIPTORS = {
        SYS_write,  SYS_pwrite64,  SYS_writev,          SYS_fsync,   SYS_fdatasync,
        SYS_fchmod, SYS_ftruncate, SYS_copy_file_range, SYS_sendfile};
    static const std::set<unsigned long long> ON_NAMES = {
        SYS_rename,  SYS_renameat, SYS_renameat2, SYS_link,    SYS_linkat,
        SYS_symlink, SYS_unlink,   SYS_unlinkat,  SYS_mkdir,   SYS_mkdirat,
        SYS_rmdir,   SYS_chmod,    SYS_fchmodat,  SYS_truncate};
    constexpr unsigned long long CHANGING = O_WRONLY | O_RDWR | O_CREAT;
    switch (registers.orig_rax) {
    case SYS_open:
        return (registers.rsi & CHANGING) != 0;
    case SYS_openat:
        return (registers.rdx & CHANGING) != 0;
    default:
        return ON_NAMES.count(registers.orig_rax) != 0 ||
               (ON_DESCRIPTORS.count(registers.orig_rax) != 0 && registers.rdi > STDERR_FILENO);
    }
}

[[noreturn]] void RunChild(const std::function<void()>& work) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        _exit(1);
    raise(SIGSTOP);
    StopBeforeEnd();
    work();
    EndCopy(0);
}

/// Follows the threads of a child from one stop to the next.
class Watcher {
  public:
    Watcher(pid_t child, int number, Disturbance disturbance)
        : m_child(child), m_number(number), m_disturbance(disturbance) {}

    DisturbedRun Follow() {
        int status = 0;
        if (m_child < 0 || waitpid(m_child, &status, 0) != m_child || !WIFSTOPPED(status))
            return {};
        ptrace(PTRACE_SETOPTIONS, m_child, nullptr,
               PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL | PTRACE_O_TRACECLONE);
        ptrace(PTRACE_SYSCALL, m_child, nullptr, nullptr);
        DisturbedRun run;
        run.ending = DisturbedRun::Ending::Undisturbed;
        for (pid_t thread = 0; (thread = waitpid(-1, &status, __WALL)) > 0;) {
            if (WIFEXITED(status) || WIFSIGNALED(status)) {
                if (thread != m_child)
                    continue;
                run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
                break;
            }
            const int signal = WSTOPSIG(status);
            if (thread == m_child && signal == SIGSTOP) { // its work is done
                ptrace(PTRACE_DETACH, thread, nullptr, 0);
                continue;
            }
            if (signal == SYSTEM_CALL_STOP)
                OnSystemCall(thread, run);
            // Stops of tracing itself are not passed on; signals are.
            const bool own = signal == SYSTEM_CALL_STOP || signal == SIGTRAP || signal == SIGSTOP;
            ptrace(PTRACE_SYSCALL, thread, nullptr, own ? 0 : signal);
        }
        return run;
    }

  private:
    void OnSystemCall(pid_t thread, DisturbedRun& run) {
        bool& isInside = m_isInside[thread]; // stops are beginnings and ends of calls in turn
        isInside = !isInside;
        user_regs_struct registers = {};
        ptrace(PTRACE_GETREGS, thread, nullptr, &registers);
        if (!isInside && thread == m_refused) {
            registers.rax = static_cast<unsigned long long>(-Reason());
            ptrace(PTRACE_SETREGS, thread, nullptr, &registers);
            m_refused = 0;
        }
        if (!isInside || !ChangesFiles(registers) || ++run.calls != m_number)
            return;
        run.ending = DisturbedRun::Ending::Disturbed;
        if (m_disturbance == Disturbance::Kill) {
            kill(m_child, SIGKILL);
            return;
        }
        registers.orig_rax = static_cast<unsigned long long>(-1); // no such call
        ptrace(PTRACE_SETREGS, thread, nullptr, &registers);
        m_refused = thread;
    }

    long Reason() const { return m_disturbance == Disturbance::FullDisk ? ENOSPC : EIO; }

    pid_t m_child;
    int m_number;
    Disturbance m_disturbance;
    std::map<pid_t, bool> m_isInside;
    pid_t m_refused = 0; ///< the thread whose call is being refused
};

} // namespace

DisturbedRun Disturb(int number, Disturbance disturbance, const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0)
        RunChild(work);
    return Watcher(child, number, disturbance).Follow();
}

} // namespace zelto::test
