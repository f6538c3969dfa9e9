#include "tests/support/TemporaryFolder.h"

#include "tests/support/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <stdlib.h>

namespace zelto::test {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zelto-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("cannot create a temporary folder like " + pattern);
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::wstring TemporaryFolder::WideFile(const std::string& name) const {
    return Wide(File(name));
}

std::vector<std::string> TemporaryFolder::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << "cannot read " << path;
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
    // File systems flush a file that takes the place of another one; tests write many.
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    std::ofstream stream(path, std::ios::binary);
    stream << bytes;
    stream.flush();
    EXPECT_TRUE(stream) << "cannot write " << path;
}

} // namespace zelto::test
