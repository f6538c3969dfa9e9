#pragma once

#include <bit>
#include <cstdint>
#include <string>

namespace zelto::test {

/// Builds a little-endian file by hand, independent of the engine's own writer.
class Bytes {
  public:
    Bytes& Int(std::int32_t value) { return Append(static_cast<std::uint32_t>(value), 4); }
    Bytes& Long(std::uint64_t value) { return Append(value, 8); }
    Bytes& Double(double value) { return Append(std::bit_cast<std::uint64_t>(value), 8); }
    Bytes& Byte(int value) { return Append(static_cast<std::uint64_t>(value), 1); }
    Bytes& Fill(std::size_t count, char value = '\0') {
        m_bytes.append(count, value);
        return *this;
    }
    /// ASCII text as UTF-16 units in a field of `size` bytes.
    Bytes& Text(const std::string& text, std::size_t size) {
        std::string field;
        for (const char c : text) {
            field += c;
            field += '\0';
        }
        field.resize(size, '\0');
        m_bytes += field;
        return *this;
    }
    /// Overwrites four bytes.
    Bytes& IntAt(std::size_t offset, std::int32_t value) {
        m_bytes.replace(offset, 4, Bytes().Int(value).Str());
        return *this;
    }
    Bytes& operator+=(const Bytes& other) {
        m_bytes += other.m_bytes;
        return *this;
    }
    const std::string& Str() const { return m_bytes; }

  private:
    Bytes& Append(std::uint64_t value, int size) {
        for (int i = 0; i < size; ++i)
            m_bytes += static_cast<char>(value >> 8 * i & 0xFF);
        return *this;
    }

    std::string m_bytes;
};

} // namespace zelto::test
