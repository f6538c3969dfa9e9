#pragma once

#include <cstddef>

namespace zelto::test {

/// Calls that can be made to fail. Allocations are those that the library and the program make
/// themselves: some that other libraries make end the process when they fail. Writes are those of
/// descriptors: what goes through the C library's buffers is written out of the shim's reach.
enum class FailingCall { None, Allocation, Write, Rename, Sync, Close };

/// What the shim shall do, and what it has seen. Lies in memory that a process shares with its
/// children.
struct Fault {
    FailingCall call = FailingCall::None;
    int number = 0;           ///< which of them fails, from 1; 0: none
    std::size_t smallest = 0; ///< bytes from which an allocation counts
    int seen = 0;             ///< how many there have been
};

} // namespace zelto::test

extern "C" {

/// From now on the calls of this process obey `fault`, in shared memory; null: nothing fails.
/// Calls on the standard streams' files and on what is no file do not count, nor does closing what
/// was only read.
/// The library that defines this stands before the system's own in a program that links it. It
/// can be preloaded into other programs (LD_PRELOAD), where ZELTO_FAULT says the same: the word
/// alloc, write, rename, fsync or close, a colon, the number and, for alloc, a colon and the
/// smallest size. ZELTO_FAULT_TRACE may name a file for the stack of the failing call.
void zelto_obey_fault(zelto::test::Fault* fault);
}
