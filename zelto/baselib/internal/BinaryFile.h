#pragma once

#include "zelto/baselib/NewFileSet.h"

#include <bit>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <type_traits>

/// @file
/// Little-endian binary files, field by field. Readers know how many bytes remain, so that a
/// count from a file can be checked before memory is taken for it; writers replace a file only
/// when the new one is complete.

namespace zelto {

/// The unsigned integer type of a size in bytes.
template <std::size_t Size>
using UnsignedOfSize = std::conditional_t<
    Size == 8, std::uint64_t,
    std::conditional_t<Size == 4, std::uint32_t,
                       std::conditional_t<Size == 2, std::uint16_t, std::uint8_t>>>;

/// Converts the bytes of a little-endian field.
template <typename T>
requires std::is_arithmetic_v<T>
    T FromLittleEndian(std::span<const unsigned char, sizeof(T)> bytes);
template <typename T>
requires std::is_arithmetic_v<T>
void ToLittleEndian(T value, std::span<unsigned char, sizeof(T)> bytes);

/// Reads from a stream between its present position and its end.
class BinaryReader {
  public:
    /// @param stream outlives the reader; one that is not open has nothing to read
    explicit BinaryReader(std::istream& stream);

    std::uint64_t BytesRemaining() const { return m_remaining; }
    /// False after a read that asked for more than remained; all later reads fail as well.
    bool IsGood() const { return m_good; }
    /// Whether `count` items of `itemSize` bytes can still be there; false for a negative count.
    bool Holds(std::int64_t count, std::uint64_t itemSize) const;

    /// Reads exactly bytes.size() bytes. On failure `bytes` is unchanged or partly filled.
    bool Read(std::span<unsigned char> bytes);
    /// Reads one field; on failure `value` is unchanged.
    template <typename T>
    requires std::is_arithmetic_v<T>
    bool Read(T& value) {
        unsigned char bytes[sizeof(T)];
        if (!Read(std::span<unsigned char>(bytes)))
            return false;
        value = FromLittleEndian<T>(bytes);
        return true;
    }

  private:
    std::istream& m_stream;
    std::uint64_t m_remaining = 0;
    bool m_good = true;
};

/// Writes fields to a stream; failures stay in the stream's state.
class BinaryWriter {
  public:
    explicit BinaryWriter(std::ostream& stream) : m_stream(stream) {}
    void Write(std::span<const unsigned char> bytes);
    template <typename T>
    requires std::is_arithmetic_v<T>
    void Write(T value) {
        unsigned char bytes[sizeof(T)];
        ToLittleEndian<T>(value, bytes);
        Write(std::span<const unsigned char>(bytes));
    }

  private:
    std::ostream& m_stream;
};

/// A new file, written through a stream, that takes its place only when it is complete; see
/// CNewFileSet. Without Commit() nothing remains of it.
class ReplacementFile {
  public:
    explicit ReplacementFile(const std::wstring& path);

    bool IsOpen() const { return m_stream.is_open(); }
    std::ostream& Stream() { return m_stream; }
    /// Finishes the file and puts it in the place of the old one.
    /// @return false, with the old file as it was, when a write or the renaming failed
    bool Commit();

  private:
    CNewFileSet m_files;
    std::ofstream m_stream;
};

template <typename T>
requires std::is_arithmetic_v<T>
    T FromLittleEndian(std::span<const unsigned char, sizeof(T)> bytes) {
    using Bits = UnsignedOfSize<sizeof(T)>;
    Bits bits = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bits = static_cast<Bits>(bits | static_cast<Bits>(static_cast<Bits>(bytes[i]) << 8U * i));
    return std::bit_cast<T>(bits);
}

template <typename T>
requires std::is_arithmetic_v<T>
void ToLittleEndian(T value, std::span<unsigned char, sizeof(T)> bytes) {
    using Bits = UnsignedOfSize<sizeof(T)>;
    const auto bits = std::bit_cast<Bits>(value);
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bytes[i] = static_cast<unsigned char>((bits >> 8U * i) & 0xFFU);
}

} // namespace zelto
