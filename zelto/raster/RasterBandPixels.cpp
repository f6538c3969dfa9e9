#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/LastWindow.h"

#include <gdal_priv.h>

#include <algorithm>

namespace {

struct Block {
    int xOff, yOff, xSize, ySize;
    void* buffer;
    int bufWidth, bufHeight;
    PixelDataType type;
    int pixelSpace, lineSpace;
};

/// Whether a block can be transferred; GDAL takes empty windows and buffers for done, callers do
/// not.
bool IsTransferable(GDALRasterBand* band, const Block& block) {
    if (band == nullptr)
        return zelto::FailWith(false, L"", "the band is not open");
    if (block.buffer == nullptr || block.xSize < 1 || block.ySize < 1 || block.bufWidth < 1 ||
        block.bufHeight < 1 || block.type < PDT_Unknown ||
        block.type >= static_cast<int>(GDT_TypeCount))
        return zelto::FailWith(false, L"", "no such block");
    return zelto::HoldsBlocks(*band);
}

CPLErr TransferBlock(GDALRasterBand& band, GDALRWFlag direction, const Block& block) {
    const GDALDataType type = block.type == PDT_Unknown ? band.GetRasterDataType()
                                                        : static_cast<GDALDataType>(block.type);
    return band.RasterIO(direction, block.xOff, block.yOff, block.xSize, block.ySize, block.buffer,
                         block.bufWidth, block.bufHeight, type, block.pixelSpace, block.lineSpace,
                         nullptr);
}

GISError ReadOneBlock(GDALRasterBand* band, const Block& block) {
    const zelto::OperationScope scope;
    if (!IsTransferable(band, block))
        return GIS_FAILED;
    return zelto::Reads(*band, [&] { return TransferBlock(*band, GF_Read, block); }) ? GIS_SUCCESS
                                                                                     : GIS_FAILED;
}

} // namespace

GISError CRasterBand::ReadBlock(int xOff, int yOff, int xSize, int ySize, void* buffer,
                                int bufWidth, int bufHeight, PixelDataType type, int pixelSpace,
                                int lineSpace) {
    const GISError result = ReadOneBlock(m_band, {xOff, yOff, xSize, ySize, buffer, bufWidth,
                                                  bufHeight, type, pixelSpace, lineSpace});
    FlushCache();
    return result;
}

GISError CRasterBand::WriteBlock(int xOff, int yOff, int xSize, int ySize, void* buffer,
                                 int bufWidth, int bufHeight, PixelDataType type, int pixelSpace,
                                 int lineSpace) {
    const zelto::OperationScope scope;
    const Block block{xOff,     yOff,      xSize, ySize,      buffer,
                      bufWidth, bufHeight, type,  pixelSpace, lineSpace};
    const bool transferable = IsTransferable(m_band, block);
    if (m_band == nullptr)
        return GIS_FAILED;
    const bool written = zelto::Writes(*m_band, [&] {
        const CPLErr answer = transferable ? TransferBlock(*m_band, GF_Write, block) : CE_None;
        // Blocks reach the file only now, so that this may be where a full disk shows.
        return std::max(answer, m_band->FlushCache());
    });
    return transferable && written ? GIS_SUCCESS : GIS_FAILED;
}

GISError CRasterBand::GetPixel(void* value, int col, int row, PixelDataType type) {
    if (col < 0 || col >= m_width || row < 0 || row >= m_height)
        return GIS_FAILED;
    return ReadOneBlock(m_band, {col, row, 1, 1, value, 1, 1, type, 0, 0});
}

void CRasterBand::FlushCache() {
    if (m_band == nullptr)
        return;
    m_band->FlushCache();
    const GDALDataset* dataset = m_band->GetDataset();
    const auto file = dataset != nullptr ? zelto::StateAsOpened(*dataset) : std::nullopt;
    if (file)
        zelto::ForgetLastWindow(*file);
}
