#include "zelto/raster/internal/HeaderReader.h"

#include <filesystem>
#include <system_error>

namespace zelto {

HeaderReader::HeaderReader(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return;
    m_stream.open(path, std::ios::binary);
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    m_size = m_stream && !error ? size : 0;
}

std::uint64_t HeaderReader::Integer(int size) {
    const auto bytes = static_cast<std::uint64_t>(size);
    unsigned char field[8] = {};
    Require(bytes, 1);
    // The file may have been cut since it was opened.
    m_good = m_good && m_stream.read(reinterpret_cast<char*>(field), size);
    if (!m_good)
        return 0;
    m_place += bytes;
    std::uint64_t value = 0;
    for (int i = 0; i < size; ++i)
        value = value << 8U | field[m_isBigEndian ? i : size - 1 - i];
    return value;
}

void HeaderReader::Skip(std::uint64_t bytes) {
    Require(bytes, 1);
    if (m_good)
        MoveTo(m_place + bytes);
}

void HeaderReader::MoveTo(std::uint64_t place) {
    m_good = m_good && place <= m_size;
    if (!m_good)
        return;
    m_stream.seekg(static_cast<std::streamoff>(place));
    m_place = place;
}

void HeaderReader::Require(std::uint64_t count, std::uint64_t size) {
    m_good = m_good && count <= Remaining() / size;
}

} // namespace zelto
