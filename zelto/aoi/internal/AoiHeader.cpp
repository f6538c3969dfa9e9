#include "zelto/aoi/internal/AoiHeader.h"

#include "zelto/baselib/internal/Utf16.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zelto {

namespace {

constexpr const wchar_t* TAG = L"ZELTO_AOI";
constexpr std::int32_t VERSION = 101;

using TagField = std::array<unsigned char, 512>;
using WktField = std::array<unsigned char, 1024>;

bool IsContinuationByte(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// The text as a field ending in NUL.
WktField EncodeWkt(std::string_view text) {
    WktField field{};
    std::size_t length = std::min(text.size(), field.size() - 1);
    while (length < text.size() && length > 0 && IsContinuationByte(text[length]))
        --length;
    std::copy_n(text.begin(), length, field.begin());
    return field;
}

} // namespace

bool ReadAoiHeader(BinaryReader& reader, AoiHeader& header) {
    TagField tag{};
    WktField wkt{};
    std::int32_t version = 0;
    std::int32_t padding = 0;
    std::array<double, 4> extent{};
    if (!reader.Read(std::span<unsigned char>(tag)) || !reader.Read(version) ||
        !reader.Read(std::span<unsigned char>(wkt)) || !reader.Read(padding))
        return false;
    for (double& side : extent)
        if (!reader.Read(side))
            return false;
    header.hasTag = DecodeUtf16Field(tag) == TAG;
    header.wkt.assign(wkt.begin(), std::find(wkt.begin(), wkt.end(), 0));
    return reader.Read(header.shapeCount);
}

void WriteAoiHeader(BinaryWriter& writer, const AoiHeader& header) {
    TagField tag{};
    EncodeUtf16Field(TAG, tag);
    writer.Write(std::span<const unsigned char>(tag));
    writer.Write(VERSION);
    writer.Write(std::span<const unsigned char>(EncodeWkt(header.wkt)));
    writer.Write(std::int32_t{0});
    writer.Write(header.extent.m_left);
    writer.Write(header.extent.m_top);
    writer.Write(header.extent.m_right);
    writer.Write(header.extent.m_bottom);
    writer.Write(header.shapeCount);
}

} // namespace zelto
