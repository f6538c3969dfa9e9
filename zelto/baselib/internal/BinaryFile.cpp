#include "zelto/baselib/internal/BinaryFile.h"

#include "zelto/baselib/CommonFun.h"

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

ReplacementFile::ReplacementFile(const std::wstring& path) : m_files(path) {
    if (m_files.IsOpen())
        m_stream.open(CommonFun::U2M(m_files.GetTemporaryPath()),
                      std::ios::binary | std::ios::trunc);
}

bool ReplacementFile::Commit() {
    if (!IsOpen())
        return false;
    m_stream.close();
    return m_stream && m_files.Commit();
}

} // namespace zelto
