#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zelto::test {

/// A fresh folder for one test, removed with everything in it at the end.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    /// UTF-8 path of a file in the folder.
    std::string File(const std::string& name) const { return (m_path / name).string(); }
    /// The same as a wide string, as the engine takes it.
    std::wstring WideFile(const std::string& name) const;
    /// Names in the folder, sorted.
    std::vector<std::string> Names() const;

  private:
    std::filesystem::path m_path;
};

/// Bytes of a file; a test failure when it cannot be read.
std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);

} // namespace zelto::test
