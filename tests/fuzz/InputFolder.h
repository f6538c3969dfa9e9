#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zelto::fuzz {

/// A folder for the files of one process, in memory where the system has a place for that. It goes
/// with the process.
class InputFolder {
  public:
    static const InputFolder& Get();

    /// UTF-8 path of a file in the folder.
    std::string File(const std::string& name) const { return m_path + '/' + name; }
    std::wstring WideFile(const std::string& name) const;
    /// Writes a file, in place where it exists.
    void Write(const std::string& name, const void* data, std::size_t size) const;
    std::string Read(const std::string& name) const;

    ~InputFolder();
    InputFolder(const InputFolder&) = delete;
    InputFolder& operator=(const InputFolder&) = delete;

  private:
    InputFolder();

    std::string m_path;
};

} // namespace zelto::fuzz
