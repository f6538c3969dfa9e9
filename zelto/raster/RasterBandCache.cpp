#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/CachedRegion.h"

#include <gdal_priv.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace {

std::size_t SampleCount(int bufWidth, int bufHeight) {
    return static_cast<std::size_t>(bufWidth) * static_cast<std::size_t>(bufHeight);
}

/// A buffer without samples is fine and stays empty; samples of an empty window are not.
bool IsReadable(int xSize, int ySize, int bufWidth, int bufHeight) {
    if (bufWidth < 0 || bufHeight < 0)
        return false;
    return SampleCount(bufWidth, bufHeight) == 0 || (xSize > 0 && ySize > 0);
}

/// Uninitialised doubles: every one is about to be read. Null when there is no room for them.
double* AllocateSamples(int bufWidth, int bufHeight) {
    constexpr std::size_t LIMIT = PTRDIFF_MAX / sizeof(double);
    const std::size_t count = SampleCount(bufWidth, bufHeight);
    if (count > LIMIT)
        return nullptr;
    return new (std::nothrow) double[count];
}

} // namespace

bool CRasterBand::GetData(int xOff, int yOff, int xSize, int ySize, int bufWidth, int bufHeight) {
    if (m_band == nullptr)
        return false;
    ReleaseCache();
    if (bufWidth < 0 || bufHeight < 0)
        return false;
    m_cache = AllocateSamples(bufWidth, bufHeight);
    if (!GetDataToBuffer(xOff, yOff, xSize, ySize, bufWidth, bufHeight, m_cache)) {
        ReleaseCache();
        return false;
    }
    m_cacheWidth = bufWidth;
    m_cacheHeight = bufHeight;
    m_cacheXOff = xOff;
    m_cacheYOff = yOff;
    m_cacheXSize = xSize;
    m_cacheYSize = ySize;
    return true;
}

bool CRasterBand::GetDataToBuffer(int xOff, int yOff, int xSize, int ySize, int bufWidth,
                                  int bufHeight, double* buffer) {
    const zelto::OperationScope scope;
    if (m_band == nullptr || buffer == nullptr || !IsReadable(xSize, ySize, bufWidth, bufHeight) ||
        !zelto::HoldsBlocks(*m_band))
        return false;
    return zelto::Reads(*m_band, [&] {
        return m_band->RasterIO(GF_Read, xOff, yOff, xSize, ySize, buffer, bufWidth, bufHeight,
                                GDT_Float64, 0, 0, nullptr);
    });
}

void CRasterBand::ReleaseCache() {
    delete[] m_cache;
    m_cache = nullptr;
    m_cacheWidth = 0;
    m_cacheHeight = 0;
    m_cacheXOff = 0;
    m_cacheYOff = 0;
    m_cacheXSize = 0;
    m_cacheYSize = 0;
}

double CRasterBand::GetCacheDataMean() const {
    if (m_cache == nullptr)
        return 0.0;
    const std::size_t count = SampleCount(m_cacheWidth, m_cacheHeight);
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i)
        sum += m_cache[i];
    return sum / static_cast<double>(count);
}

bool CRasterBand::GetNearestValueAt(double x, double y, double* value) const {
    return value != nullptr && zelto::CachedRegion(*this).Nearest(x, y, *value);
}

bool CRasterBand::GetBilinearValueAt(double x, double y, double* value) const {
    return value != nullptr && zelto::CachedRegion(*this).Bilinear(x, y, *value);
}
