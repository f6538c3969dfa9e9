// Stands between a program and the system's C library and lets one call fail: the n-th allocation
// from a size on, or the n-th write, rename, fsync or close of a file.

#include "tests/faults/Shim.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

using zelto::test::FailingCall;
using zelto::test::Fault;

Fault* g_fault = nullptr;

/// Shows who made the call that fails, where ZELTO_FAULT_TRACE names a file.
void TellWho() {
    const char* const path = std::getenv("ZELTO_FAULT_TRACE");
    const int file = path != nullptr ? open(path, O_WRONLY | O_CREAT | O_APPEND, 0600) : -1;
    if (file < 0)
        return;
    void* frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), file);
    dprintf(file, "\n");
    close(file);
}

/// Whether this call is the one that fails.
bool Fails(FailingCall call) {
    Fault* const fault = g_fault;
    const bool fails = fault != nullptr && fault->call == call &&
                       __atomic_add_fetch(&fault->seen, 1, __ATOMIC_RELAXED) == fault->number;
    if (fails)
        TellWho();
    return fails;
}

/// Whether an address is in the library or the program, rather than in what they use.
bool IsOurs(const void* address) {
    Dl_info object = {};
    if (dladdr(address, &object) == 0 || object.dli_fname == nullptr)
        return false;
    const char* const slash = std::strrchr(object.dli_fname, '/');
    const char* const name = slash != nullptr ? slash + 1 : object.dli_fname;
    return std::strncmp(name, "libzelto.so", 11) == 0 || std::strncmp(name, "zelto", 5) == 0;
}

/// @param caller where the allocation returns to
bool AllocationFails(size_t size, const void* caller) {
    return g_fault != nullptr && g_fault->call == FailingCall::Allocation &&
           size >= g_fault->smallest && IsOurs(caller) && Fails(FailingCall::Allocation);
}

void* Allocate(size_t size) {
    return __libc_malloc(size != 0 ? size : 1);
}

void* AllocateOrThrow(size_t size, const void* caller) {
    void* const memory = AllocationFails(size, caller) ? nullptr : Allocate(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void* NoMemory() {
    errno = ENOMEM;
    return nullptr;
}

bool IsSame(const struct stat& a, int descriptor) {
    struct stat b {};
    return fstat(descriptor, &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// A file of the program's work, rather than a stream that it was given.
bool IsWork(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) && !IsSame(status, STDOUT_FILENO) &&
           !IsSame(status, STDERR_FILENO);
}

/// Closing what was only read says nothing about a disk.
bool IsWritten(int descriptor) {
    return (fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDONLY;
}

/// A descriptor's call fails with the reason.
bool Fails(FailingCall call, int descriptor, int reason) {
    if (g_fault == nullptr)
        return false;
    const int former = errno;
    const bool counts = IsWork(descriptor) && (call != FailingCall::Close || IsWritten(descriptor));
    const bool fails = counts && Fails(call);
    errno = fails ? reason : former;
    return fails;
}

/// The system's own function of a name.
template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Reads what the environment says to a program that knows nothing of the shim.
__attribute__((constructor)) void ReadEnvironment() {
    const char* const text = std::getenv("ZELTO_FAULT");
    if (text == nullptr)
        return;
    static Fault fault;
    char word[8] = {};
    if (std::sscanf(text, "%7[a-z]:%d:%zu", word, &fault.number, &fault.smallest) < 2)
        return;
    const struct {
        const char* name;
        FailingCall call;
    } calls[] = {{"alloc", FailingCall::Allocation},
                 {"write", FailingCall::Write},
                 {"rename", FailingCall::Rename},
                 {"fsync", FailingCall::Sync},
                 {"close", FailingCall::Close}};
    for (const auto& known : calls)
        if (std::strcmp(word, known.name) == 0)
            fault.call = known.call;
    zelto_obey_fault(&fault);
}

} // namespace

extern "C" {

void zelto_obey_fault(Fault* fault) {
    g_fault = fault;
}

void* malloc(size_t size) {
    return AllocationFails(size, __builtin_return_address(0)) ? NoMemory() : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return AllocationFails(count * size, __builtin_return_address(0)) ? NoMemory()
                                                                      : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size) {
    return AllocationFails(size, __builtin_return_address(0)) ? NoMemory()
                                                              : __libc_realloc(memory, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return AllocationFails(size, __builtin_return_address(0)) ? NoMemory()
                                                              : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    if (AllocationFails(size, __builtin_return_address(0)))
        return ENOMEM;
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}

ssize_t write(int descriptor, const void* data, size_t size) {
    static auto* const real = Real<ssize_t(int, const void*, size_t)>("write");
    return Fails(FailingCall::Write, descriptor, ENOSPC) ? -1 : real(descriptor, data, size);
}

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
    static auto* const real = Real<ssize_t(int, const void*, size_t, off_t)>("pwrite");
    return Fails(FailingCall::Write, descriptor, ENOSPC) ? -1
                                                         : real(descriptor, data, size, offset);
}

ssize_t pwrite64(int descriptor, const void* data, size_t size, off64_t offset) {
    static auto* const real = Real<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
    return Fails(FailingCall::Write, descriptor, ENOSPC) ? -1
                                                         : real(descriptor, data, size, offset);
}

ssize_t writev(int descriptor, const iovec* parts, int count) {
    static auto* const real = Real<ssize_t(int, const iovec*, int)>("writev");
    return Fails(FailingCall::Write, descriptor, ENOSPC) ? -1 : real(descriptor, parts, count);
}

int rename(const char* from, const char* to) {
    static auto* const real = Real<int(const char*, const char*)>("rename");
    if (Fails(FailingCall::Rename)) {
        errno = EIO;
        return -1;
    }
    return real(from, to);
}

int fsync(int descriptor) {
    static auto* const real = Real<int(int)>("fsync");
    return Fails(FailingCall::Sync, descriptor, EIO) ? -1 : real(descriptor);
}

int fdatasync(int descriptor) {
    static auto* const real = Real<int(int)>("fdatasync");
    return Fails(FailingCall::Sync, descriptor, EIO) ? -1 : real(descriptor);
}

// A close that fails has closed: what it tells is that earlier writes are lost.

int close(int descriptor) {
    static auto* const real = Real<int(int)>("close");
    const bool fails = Fails(FailingCall::Close, descriptor, EIO);
    const int answer = real(descriptor);
    if (!fails)
        return answer;
    errno = EIO;
    return -1;
}

int fclose(FILE* file) {
    static auto* const real = Real<int(FILE*)>("fclose");
    const bool fails = Fails(FailingCall::Close, fileno(file), EIO);
    const int answer = real(file);
    if (!fails)
        return answer;
    errno = EIO;
    return EOF;
}
}

// The standard library's own stand between the engine and malloc.

void* operator new(size_t size) {
    return AllocateOrThrow(size, __builtin_return_address(0));
}

void* operator new[](size_t size) {
    return AllocateOrThrow(size, __builtin_return_address(0));
}

void* operator new(size_t size, const std::nothrow_t& /*how*/) noexcept {
    return AllocationFails(size, __builtin_return_address(0)) ? nullptr : Allocate(size);
}

void* operator new[](size_t size, const std::nothrow_t& /*how*/) noexcept {
    return AllocationFails(size, __builtin_return_address(0)) ? nullptr : Allocate(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, size_t /*size*/) noexcept {
    std::free(memory);
}
