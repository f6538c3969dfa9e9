#include "zelto/baselib/internal/BinaryFile.h"

#include "zelto/baselib/CommonFun.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

/// Bytes from the stream's position to its end; the position stays.
std::uint64_t CountRemaining(std::istream& stream) {
    const std::istream::pos_type here = stream.tellg();
    if (!stream || here < 0)
        return 0;
    stream.seekg(0, std::ios::end);
    const std::istream::pos_type end = stream.tellg();
    stream.seekg(here);
    return stream && end > here ? static_cast<std::uint64_t>(end - here) : 0;
}

/// The file a path leads to: links stay links when their target is replaced.
std::string ResolveLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr),
                                                               &std::free);
    return resolved ? resolved.get() : path;
}

/// Creates an empty file of a new name beside `path`, with the permissions of the file there or
/// else those a new file gets.
/// @return its name, empty when the folder does not allow it
std::string CreateTemporaryBeside(const std::string& path) {
    static std::atomic<unsigned> counter = 0;
    // A short name of its own: the file's with something added could be too long.
    const std::string stem =
        path.substr(0, path.rfind('/') + 1) + ".zelto-" + std::to_string(getpid()) + '-';
    std::string name;
    int file = -1;
    do {
        name = stem + std::to_string(counter++);
        file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (file < 0 && errno == EEXIST);
    if (file < 0)
        return {};
    struct stat old {};
    if (stat(path.c_str(), &old) == 0)
        fchmod(file, old.st_mode & 07777U);
    close(file);
    return name;
}

/// Things that are no regular files (a folder, a device) are not replaced.
bool CanBeReplaced(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) != 0 ||
           (S_ISREG(status.st_mode) && access(path.c_str(), W_OK) == 0);
}

} // namespace

BinaryReader::BinaryReader(std::istream& stream)
    : m_stream(stream), m_remaining(CountRemaining(stream)) {}

bool BinaryReader::Holds(std::int64_t count, std::uint64_t itemSize) const {
    return count >= 0 && itemSize > 0 &&
           static_cast<std::uint64_t>(count) <= m_remaining / itemSize;
}

bool BinaryReader::Read(std::span<unsigned char> bytes) {
    if (!m_good || bytes.size() > m_remaining) {
        m_good = false;
        return false;
    }
    m_stream.read(reinterpret_cast<char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    m_good = static_cast<bool>(m_stream);
    m_remaining -= m_good ? bytes.size() : 0;
    return m_good;
}

void BinaryWriter::Write(std::span<const unsigned char> bytes) {
    m_stream.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
}

ReplacementFile::ReplacementFile(const std::wstring& path)
    : m_path(ResolveLinks(CommonFun::U2M(path))) {
    if (m_path.empty() || !CanBeReplaced(m_path))
        return;
    m_temporaryPath = CreateTemporaryBeside(m_path);
    if (!m_temporaryPath.empty())
        m_stream.open(m_temporaryPath, std::ios::binary | std::ios::trunc);
}

ReplacementFile::~ReplacementFile() {
    if (!m_temporaryPath.empty())
        std::remove(m_temporaryPath.c_str());
}

bool ReplacementFile::Commit() {
    if (!IsOpen())
        return false;
    m_stream.close();
    if (!m_stream || std::rename(m_temporaryPath.c_str(), m_path.c_str()) != 0)
        return false;
    m_temporaryPath.clear();
    return true;
}

} // namespace zelto
