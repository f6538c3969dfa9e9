#pragma once

namespace zelto::test {

/// Ends a copy of the test process at once: what the original does at its end is not the copy's
/// to do. Builds for coverage write down first what the copy has reached.
[[noreturn]] void EndCopy(int exitStatus);

/// Lets EndCopy() stop the copy by SIGSTOP when its work is done, before that writing.
void StopBeforeEnd();

} // namespace zelto::test
