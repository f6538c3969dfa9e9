#include "zelto/algorithm/RasterAlgorithm.h"

#include <array>
#include <cmath>

namespace {

/// Properties of one pixel type. Several differ from the natural sizes and ranges; hosts size
/// their buffers and stretches by these figures.
struct PixelTypeRow {
    const wchar_t* name;
    int bytes;
    double maximum;
    double minimum;
};

const std::array<PixelTypeRow, 8> PIXEL_TYPES = {{
    {L"Unknown", 0, 255.0, 0.0},
    {L"Byte", 1, 255.0, 0.0},
    {L"UInt16", 2, std::pow(2.0, 16) - 1.0, 0.0},
    {L"Int16", 4, std::pow(2.0, 15), -std::pow(2.0, 15)},
    {L"UInt32", 4, std::pow(2.0, 32) - 1.0, 0.0},
    {L"Int32", 8, std::pow(2.0, 31), -std::pow(2.0, 31)},
    {L"Float32", 4, std::pow(2.0, 31), -std::pow(2.0, 31)},
    {L"Float64", 8, std::pow(2.0, 63), -std::pow(2.0, 63)},
}};

const PixelTypeRow& RowOf(PixelDataType type) {
    const bool known = type >= PDT_Byte && type <= PDT_Float64;
    return PIXEL_TYPES[static_cast<std::size_t>(known ? type : PDT_Unknown)];
}

} // namespace

void CRasterAlgorithm::GetMaxMinVal(PixelDataType type, double& max, double& min) {
    max = RowOf(type).maximum;
    min = RowOf(type).minimum;
}

int CRasterAlgorithm::ComputeDataTypeByteNum(PixelDataType type) {
    return RowOf(type).bytes;
}

std::wstring CRasterAlgorithm::DataTypeToWstring(PixelDataType type) {
    return RowOf(type).name;
}
