#pragma once

#include "tests/support/TemporaryFolder.h"

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace zelto::test {

/// A command of the program that writes, and what stands there before it.
struct Operation {
    const char* name;
    /// The words of the command line; those that begin with "@" are names in the folder.
    std::vector<std::string> words;
    /// What is there before: names in the folder and of the originals that are copied there.
    std::vector<std::pair<std::string, std::string>> inputs;
    /// Names of the files that are old or new, all of them together.
    std::vector<std::string> results;
    enum class Change {
        Replaces, ///< old files by new ones
        Moves,    ///< the same, and its other inputs are gone when they are new
        Each,     ///< as Replaces, but every file by itself
        InPlace,  ///< part of a file; whatever happens, its pixels stay
    };
    Change change = Change::Replaces;
    bool driverTells = true; ///< of every write that fails
};

void PrintTo(const Operation& operation, std::ostream* out);

/// Every way of the command line to write a file.
const std::vector<Operation>& AllOperations();

/// The command line of an operation in a folder.
std::vector<std::string> WordsIn(const Operation& operation, const std::string& folder);

/// The files that the operations begin with, made once.
class Originals {
  public:
    static const Originals& Get();

    /// Empties the folder, hidden files included, and puts there what the operation begins with.
    void Prepare(const Operation& operation, const std::string& folder) const;
    /// The original of one of the operation's inputs.
    std::string File(const std::string& name) const { return m_folder.File(name); }

  private:
    Originals();

    TemporaryFolder m_folder;
};

} // namespace zelto::test
