#pragma once

#include <cstddef>
#include <span>
#include <string>

/// @file
/// Fixed text fields of files: UTF-16LE code units, ended by a zero unit, padded with zeros.

namespace zelto {

/// Text of a field, up to its first zero unit or its end. A surrogate without its partner
/// becomes U+FFFD; an odd last byte is ignored.
std::wstring DecodeUtf16Field(std::span<const unsigned char> field);

/// Fills the whole field. A text that does not fit is cut on a character boundary so that the
/// ending zero unit fits; values that are no characters become U+FFFD.
void EncodeUtf16Field(const std::wstring& text, std::span<unsigned char> field);

} // namespace zelto
