#include "zelto/display/ComposedRaster.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/raster/RasterBand.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>

namespace {

/// The first composed raster of the process has a plain name, later ones are numbered.
std::wstring NextName() {
    static std::atomic<int> count = 0;
    const int number = ++count;
    const std::wstring name = L"RGBComposedFile";
    return number == 1 ? name : name + CommonFun::int2wstring(number);
}

/// Pixels that cover a length, rounded.
int PixelCount(double length, double pixelSize) {
    return zelto::TruncateToInt32(std::fabs(length) / std::fabs(pixelSize) + 0.5);
}

} // namespace

CComposedRaster::~CComposedRaster() {
    CComposedRaster::Close();
}

void CComposedRaster::Close() {
    m_components.clear();
    // Borrowed: the base would delete the bands.
    m_bands.clear();
    m_showBands.clear();
    CRasterSource::Close();
}

void CComposedRaster::SetStretchType(StretchType /*type*/) {}

bool CComposedRaster::IsComposedRaster() {
    return true;
}

GISError CComposedRaster::CreateRaster(CRasterSource* redSource, CRasterBand* redBand,
                                       CRasterSource* greenSource, CRasterBand* greenBand,
                                       CRasterSource* blueSource, CRasterBand* blueBand) {
    if (redSource == nullptr || redBand == nullptr || greenSource == nullptr ||
        greenBand == nullptr || blueSource == nullptr || blueBand == nullptr)
        return GIS_FAILED;
    m_components.clear();
    m_showBands.clear();
    m_bands.clear();
    m_fileName = NextName();
    m_description = L"Composed Raster";
    m_filePath.clear();
    m_bandCount = 3;

    CBoundingBox extent = redSource->GetExtent();
    CBoundingBox green = greenSource->GetExtent();
    CBoundingBox blue = blueSource->GetExtent();
    if (!extent.Intersect(&green) || !extent.Intersect(&blue))
        return GIS_FAILED;
    m_wkt = blueSource->GetSpatialReferenceWKT();
    if (m_spatialReference != nullptr)
        zelto::LoadSpatialReference(*m_spatialReference, m_wkt.c_str());
    m_dataType = blueSource->GetRasterDataType();
    if (!SetGrid(extent, redSource->GetXResolution(), redSource->GetYResolution()))
        return GIS_FAILED;

    m_components = {redSource, greenSource, blueSource};
    m_bands = {redBand, greenBand, blueBand};
    m_showBands = {0, 1, 2};
    m_showBandCount = 3;
    m_stretchType = redSource->GetStretchType();
    return GIS_SUCCESS;
}

bool CComposedRaster::SetGrid(const CBoundingBox& extent, double pixelWidth, double pixelHeight) {
    const double width = std::fabs(extent.m_right - extent.m_left);
    const double height = std::fabs(extent.m_top - extent.m_bottom);
    m_width = PixelCount(width, pixelWidth);
    m_height = PixelCount(height, pixelHeight);
    if (m_width <= 0 || m_height <= 0)
        return false;
    const std::array<double, 6> northUp = {extent.m_left, width / m_width,     0.0, extent.m_top,
                                           0.0,           -(height / m_height)};
    std::copy(northUp.begin(), northUp.end(), m_geoTransform);
    InvertGeoTransform();
    m_extent = GetExtentInit();
    return true;
}

bool CComposedRaster::IsPartOfRaster(CRasterSource* source) const {
    return std::find(m_components.begin(), m_components.end(), source) != m_components.end();
}

CRasterSource* CComposedRaster::GetShownSource(int k) const {
    // A shown band that exists has a source beside it.
    return GetShownBand(k) == nullptr
               ? nullptr
               : m_components[static_cast<std::size_t>(m_showBands[static_cast<std::size_t>(k)])];
}

GISError CComposedRaster::GetPixel(void* values, int col, int row, PixelDataType type) {
    if (values == nullptr || col < 0 || col >= m_width || row < 0 || row >= m_height)
        return GIS_FAILED;
    const PixelDataType slotType = type == PDT_Unknown ? m_dataType : type;
    const auto slotSize = static_cast<std::size_t>(GetByteOffset(slotType));
    double x = 0.0;
    double y = 0.0;
    ImageToGround(col, row, x, y);
    for (int k = 0; k < m_showBandCount; ++k) {
        CRasterSource* source = GetShownSource(k);
        if (source == nullptr)
            continue;
        int sourceColumn = 0;
        int sourceRow = 0;
        source->GroundToImage(x, y, sourceColumn, sourceRow);
        // Room for a sample of any GDAL type: the slots are narrower than the complex ones.
        std::array<std::byte, 16> sample = {};
        CRasterBand* band = GetShownBand(k);
        if (band->GetPixel(sample.data(), sourceColumn, sourceRow, slotType) == GIS_SUCCESS)
            std::memcpy(static_cast<std::byte*>(values) + static_cast<std::size_t>(k) * slotSize,
                        sample.data(), slotSize);
        band->FlushCache();
    }
    return GIS_SUCCESS;
}
