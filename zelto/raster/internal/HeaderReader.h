#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace zelto {

/// Reads integers of any size and byte order from the front of a regular file, without taking
/// memory for anything in it. What is not a regular file, or cannot be opened, is empty.
class HeaderReader {
  public:
    explicit HeaderReader(const std::string& path);

    /// Little-endian until this is called.
    void UseBigEndian() { m_isBigEndian = true; }
    /// False after more was read or required than there is.
    bool IsGood() const { return m_good; }

    /// An unsigned integer of so many bytes, 8 at most; 0 where it is not there.
    std::uint64_t Integer(int size);
    /// Moves on by so many bytes.
    void Skip(std::uint64_t bytes);
    /// Moves to a place, counted from the file's beginning.
    void MoveTo(std::uint64_t place);
    /// Requires that `count` items of `size` bytes remain.
    void Require(std::uint64_t count, std::uint64_t size);

  private:
    std::uint64_t Remaining() const { return m_size - m_place; }

    std::ifstream m_stream;
    std::uint64_t m_size = 0;
    std::uint64_t m_place = 0; ///< never beyond the size
    bool m_isBigEndian = false;
    bool m_good = true;
};

} // namespace zelto
