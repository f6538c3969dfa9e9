#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BlockLimit.h"

#include <gdal_priv.h>

namespace {

struct Block {
    int xOff, yOff, xSize, ySize;
    void* buffer;
    int bufWidth, bufHeight;
    PixelDataType type;
    int pixelSpace, lineSpace;
};

/// Transfers a block; GDAL takes empty windows and buffers for done, callers do not.
GISError TransferBlock(GDALRasterBand* band, GDALRWFlag direction, const Block& block) {
    if (band == nullptr || block.buffer == nullptr || block.xSize < 1 || block.ySize < 1 ||
        block.bufWidth < 1 || block.bufHeight < 1 || block.type < PDT_Unknown ||
        block.type >= static_cast<int>(GDT_TypeCount) || !zelto::CanHoldBlocks(*band))
        return GIS_FAILED;
    const GDALDataType type = block.type == PDT_Unknown ? band->GetRasterDataType()
                                                        : static_cast<GDALDataType>(block.type);
    const CPLErr error = band->RasterIO(direction, block.xOff, block.yOff, block.xSize, block.ySize,
                                        block.buffer, block.bufWidth, block.bufHeight, type,
                                        block.pixelSpace, block.lineSpace, nullptr);
    return error == CE_None ? GIS_SUCCESS : GIS_FAILED;
}

} // namespace

GISError CRasterBand::ReadBlock(int xOff, int yOff, int xSize, int ySize, void* buffer,
                                int bufWidth, int bufHeight, PixelDataType type, int pixelSpace,
                                int lineSpace) {
    const GISError result = TransferBlock(
        m_band, GF_Read,
        {xOff, yOff, xSize, ySize, buffer, bufWidth, bufHeight, type, pixelSpace, lineSpace});
    FlushCache();
    return result;
}

GISError CRasterBand::WriteBlock(int xOff, int yOff, int xSize, int ySize, void* buffer,
                                 int bufWidth, int bufHeight, PixelDataType type, int pixelSpace,
                                 int lineSpace) {
    const GISError result = TransferBlock(
        m_band, GF_Write,
        {xOff, yOff, xSize, ySize, buffer, bufWidth, bufHeight, type, pixelSpace, lineSpace});
    // Blocks reach the file only now, so that this may be where a full disk shows.
    if (m_band != nullptr && m_band->FlushCache() != CE_None)
        return GIS_FAILED;
    return result;
}

GISError CRasterBand::GetPixel(void* value, int col, int row, PixelDataType type) {
    if (col < 0 || col >= m_width || row < 0 || row >= m_height)
        return GIS_FAILED;
    return TransferBlock(m_band, GF_Read, {col, row, 1, 1, value, 1, 1, type, 0, 0});
}

void CRasterBand::FlushCache() {
    if (m_band != nullptr)
        m_band->FlushCache();
}
