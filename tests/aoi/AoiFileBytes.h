#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace zelto::test {

/// Little-endian bytes of a number, as this machine stores them.
template <typename T>
std::string Bytes(T value) {
    std::string bytes(sizeof(T), '\0');
    std::memcpy(bytes.data(), &value, sizeof(T));
    return bytes;
}

/// The text as UTF-16 units, zero-filled to `size` bytes.
inline std::string Utf16Field(const std::string& ascii, std::size_t size) {
    std::string field;
    for (char c : ascii)
        field += std::string{c, '\0'};
    field.resize(size);
    return field;
}

/// A header written by hand, offset by offset.
inline std::string AoiHeaderBytes(std::int64_t count, const std::string& wkt = "",
                                  const std::string& tag = "ZELTO_AOI") {
    std::string bytes = Utf16Field(tag, 512) + Bytes(std::int32_t{101}) + wkt;
    bytes.resize(512 + 4 + 1024 + 4);
    for (double side : {1.0, 2.0, 3.0, 4.0})
        bytes += Bytes(side);
    return bytes + Bytes(count);
}

inline std::string RectangleBytes(char kind, double left, double top, double width, double height) {
    return kind + Bytes(left) + Bytes(top) + Bytes(width) + Bytes(height);
}

/// A polygon record that claims `count` vertices and holds a row of `held` ones.
inline std::string PolygonBytes(std::int32_t count, int held) {
    std::string bytes = '\6' + Bytes(count);
    for (int i = 0; i < held; ++i)
        bytes += Bytes(double(i)) + Bytes(double(i * i));
    return bytes;
}

} // namespace zelto::test
