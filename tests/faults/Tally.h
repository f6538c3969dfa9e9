#pragma once

namespace zelto::test {

/// How many steps of each kind are to be taken: a few, the number in ZELTO_FAULTS, or without a
/// limit where that is "all".
int MostSteps();

/// Whether this is one of the long runs, which ZELTO_FAULTS asks for.
bool IsLongRun();

/// Counts one that was survived, in the file that ZELTO_FAULTS_TALLY names, if any: a line of the
/// kind for each.
void Count(const char* kind);

} // namespace zelto::test
