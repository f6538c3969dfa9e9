#pragma once

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace zelto::test {

/// Texts of files by their names.
using Contents = std::map<std::string, std::string>;

/// A test of what becomes of the files of a folder.
class FolderTest : public testing::Test {
  protected:
    void Write(const Contents& files) const {
        for (const auto& [name, text] : files)
            WriteFile(m_folder.File(name), text);
    }
    /// What stands in the folder under the names that are not hidden.
    Contents Visible() const {
        Contents files;
        for (const std::string& name : m_folder.Names())
            if (name.front() != '.')
                files[name] = ReadFile(m_folder.File(name));
        return files;
    }

    TemporaryFolder m_folder;
};

} // namespace zelto::test
