#include "tests/support/KilledProcess.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <set>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto::test {

namespace {

/// Whether the system call that the stopped child is about to make changes files.
bool ChangesFiles(const user_regs_struct& registers) {
    static const std::set<unsigned long long> CHANGING = {
        SYS_write,    SYS_pwrite64,  SYS_writev,    SYS_fsync,           SYS_fdatasync, SYS_rename,
        SYS_renameat, SYS_renameat2, SYS_link,      SYS_linkat,          SYS_symlink,   SYS_unlink,
        SYS_unlinkat, SYS_mkdir,     SYS_mkdirat,   SYS_rmdir,           SYS_chmod,     SYS_fchmod,
        SYS_fchmodat, SYS_truncate,  SYS_ftruncate, SYS_copy_file_range, SYS_sendfile};
    if (registers.orig_rax == SYS_openat)
        return (registers.rdx & (O_WRONLY | O_RDWR | O_CREAT)) != 0;
    if (registers.orig_rax == SYS_open)
        return (registers.rsi & (O_WRONLY | O_RDWR | O_CREAT)) != 0;
    return CHANGING.count(registers.orig_rax) != 0;
}

[[noreturn]] void RunChild(const std::function<void()>& work) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        _exit(1);
    raise(SIGSTOP);
    work();
    _exit(0);
}

/// Lets the stopped child go on to the next beginning or end of a system call. False when it
/// has ended.
bool Step(pid_t child, int& status) {
    return ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
           waitpid(child, &status, 0) == child && !WIFEXITED(status) && !WIFSIGNALED(status);
}

} // namespace

Ending KillBeforeSystemCall(int number, const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0)
        RunChild(work);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
        return Ending::CannotWatch;
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    bool isEntry = true; // stops are entries and exits of system calls in turn
    for (int calls = 0; Step(child, status);) {
        if (WSTOPSIG(status) != (SIGTRAP | 0x80))
            continue;
        user_regs_struct registers = {};
        ptrace(PTRACE_GETREGS, child, nullptr, &registers);
        if (isEntry && ChangesFiles(registers) && ++calls == number) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return Ending::Killed;
        }
        isEntry = !isEntry;
    }
    return Ending::Finished;
}

} // namespace zelto::test
