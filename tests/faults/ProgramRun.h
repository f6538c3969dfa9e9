#pragma once

#include "tests/faults/Shim.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace zelto::test {

/// How the program ended in a copy of this process.
struct ProgramEnd {
    int exitStatus = -1; ///< −1: it did not end by itself
    int endSignal = 0;   ///< what ended it; 0: nothing did
    long mostMemory = 0; ///< resident at one time, KiB
    double seconds = 0;  ///< from begin to end
    double work = 0;     ///< seconds of processors
    std::string errors;  ///< standard error
};

/// Runs the command line in copies of this process, which has set everything up already: thousands
/// of runs in the time that a hundred starts of the program would take. This process must have one
/// thread only.
class ProgramRun {
  public:
    explicit ProgramRun(std::vector<std::string> words);
    ~ProgramRun();
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    /// Runs it under a fault; `seen` in there counts.
    ProgramEnd Run(Fault& fault);
    ProgramEnd Run();
    /// @param circumstances called in the copy before it becomes the program
    ProgramEnd RunUnder(const std::function<void()>& circumstances);
    /// Runs it and kills it after a while.
    ProgramEnd RunAndKill(std::chrono::microseconds after);
    /// In a copy of this process: becomes the program and does not come back.
    [[noreturn]] void Become() const;
    /// What it printed on standard error.
    std::string Errors() const;
    void ForgetErrors() const;

  private:
    /// In a copy of this process: the exit status of the program.
    int RunHere() const;
    ProgramEnd Wait(int child) const;

    std::vector<std::string> m_words;
    int m_nothing;  ///< descriptor to read and write nothing
    int m_errors;   ///< that of the file of standard error
    Fault* m_fault; ///< shared with the copies
};

} // namespace zelto::test
