#pragma once

#include "zelto/baselib/internal/BinaryFile.h"
#include "zelto/baselib/internal/Utf16.h"

#include <array>
#include <cstdint>
#include <string>

/// @file
/// Fields of the header blocks that both classification files keep and write as one unit, so
/// that bytes without a meaning here are carried unchanged. The blocks agree in their first
/// fields.

namespace zelto {

/// Text fields of both files: 128 UTF-16 units, the last of them zero.
inline constexpr std::size_t CLASSIFY_TEXT_SIZE = 256;
using ClassifyTextField = std::array<unsigned char, CLASSIFY_TEXT_SIZE>;

/// @name Offsets in the header blocks
/// @{
inline constexpr std::size_t HEADER_VERSION = 256;
inline constexpr std::size_t HEADER_CLASS_COUNT = 288;
/// @}

inline std::int32_t GetInt32(std::span<const unsigned char> block, std::size_t offset) {
    return FromLittleEndian<std::int32_t>(block.subspan(offset).first<sizeof(std::int32_t)>());
}

inline void SetInt32(std::span<unsigned char> block, std::size_t offset, std::int32_t value) {
    ToLittleEndian(value, block.subspan(offset).first<sizeof(std::int32_t)>());
}

/// The tag at the block's start.
inline std::wstring GetTag(std::span<const unsigned char> block) {
    return DecodeUtf16Field(block.first(CLASSIFY_TEXT_SIZE));
}

inline void SetTag(std::span<unsigned char> block, const std::wstring& tag) {
    EncodeUtf16Field(tag, block.first(CLASSIFY_TEXT_SIZE));
}

} // namespace zelto
