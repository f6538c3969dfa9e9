#include "zelto/baselib/internal/BinaryFile.h"

#include "zelto/baselib/CommonFun.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
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

/// Creates an empty file of a new name beside `path`, with the permissions a new file gets.
/// @return its name, empty when the folder does not allow it
std::string CreateTemporaryBeside(const std::string& path) {
    std::string name = path + ".XXXXXX";
    const int file = mkstemp(name.data());
    if (file < 0)
        return {};
    struct stat old {};
    const mode_t mask = umask(0);
    umask(mask);
    const bool replaces = stat(path.c_str(), &old) == 0;
    fchmod(file, replaces ? old.st_mode & 07777U : 0666U & ~mask);
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

ReplacementFile::ReplacementFile(const std::wstring& path) : m_path(CommonFun::U2M(path)) {
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
