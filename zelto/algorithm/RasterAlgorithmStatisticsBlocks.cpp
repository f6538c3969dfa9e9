#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionMoments.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>

namespace {

using zelto::Moments;
using zelto::PixelWindow;

/// The blocks of an area too large to be read at once.
class AoiBlocks {
  public:
    AoiBlocks(CRasterAOI& aoi, int rasterHeight)
        : m_window(zelto::WindowOf(aoi.GetRect())),
          m_blockRows(zelto::AoiStatisticsBlockRows(m_window.width, m_window.height)) {
        const auto region = zelto::RowsOf(
            aoi, m_window,
            {1.0, m_window.width, m_window.height, std::int64_t{m_window.width} * m_window.height});
        zelto::RegionSpans spans;
        for (int row = 0; row < m_window.height; row += m_blockRows) {
            m_accepted.push_back(0);
            // The read of a block that leaves the raster ends the work: nobody asks what it or
            // a later one holds, and an area may have rows without end.
            if (RowsFrom(row) > rasterHeight - row)
                break;
            // Row by row, so that a block's spans need not be held all at once.
            for (int r = row; r < row + RowsFrom(row); ++r) {
                spans.Find(*region, r, 1);
                spans.Visit(0, [&](std::size_t, std::size_t length) {
                    m_accepted.back() += static_cast<std::int64_t>(length);
                });
            }
        }
    }

    std::int64_t Capacity() const { return std::int64_t{m_blockRows} * m_window.width; }

    /// Reads and adds all blocks of a band.
    bool Add(CRasterBand& band, double* samples, Moments& moments) const {
        const zelto::MomentsAdder adder(band);
        for (std::size_t k = 0; k < m_accepted.size(); ++k) {
            const int firstRow = static_cast<int>(k) * m_blockRows;
            const int rows = RowsFrom(firstRow);
            // The windows start in the raster's corner, not in the area's.
            const PixelWindow block = {0, firstRow, m_window.width, rows};
            const bool read =
                zelto::ReadSamples(band.GetGDALBand(), block, block.width, rows, samples);
            if (!read)
                return false;
            // All pixels of block k take the first sample of its row k. A last block with fewer
            // rows finds there what the block before left; beyond the buffer there is nothing.
            if (k < static_cast<std::size_t>(m_blockRows))
                adder.AddRepeated(moments, samples[k * static_cast<std::size_t>(block.width)],
                                  m_accepted[k]);
        }
        return true;
    }

  private:
    int RowsFrom(int firstRow) const { return std::min(m_blockRows, m_window.height - firstRow); }

    PixelWindow m_window;
    int m_blockRows;
    std::vector<std::int64_t> m_accepted; ///< pixels of each block in the region
};

} // namespace

bool CRasterAlgorithm::ComputeStaticsFormAOIByBlock(CRasterSource* source, CRasterAOI* aoi,
                                                    __int64& count, double* min, double* max,
                                                    double* mean, CDataProgress* /*progress*/) {
    const PixelWindow window = zelto::WindowOf(aoi->GetRect());
    count = 0;
    // The rectangle of an area wholly off the raster has negative sides.
    if (window.width < 1 || window.height < 1)
        return zelto::Refuse(*source, zelto::NO_PIXELS);
    // No block that wide can be read; its columns may be more than there is memory for.
    if (window.width > source->GetWidth())
        return zelto::Refuse(*source, "the area is wider than the raster");
    const AoiBlocks blocks(*aoi, source->GetHeight());
    const auto samples = zelto::AllocateSamples<double>(blocks.Capacity());
    if (!samples)
        return zelto::Refuse(*source, zelto::NO_MEMORY);
    std::vector<Moments> moments;
    for (CRasterBand* band : zelto::BandsOf(*source)) {
        moments.emplace_back();
        const bool read = blocks.Add(*band, samples.get(), moments.back());
        band->FlushCache();
        count = moments.back().count;
        if (!read)
            return false;
        zelto::WriteMoments(moments, {min, max, mean});
    }
    return true;
}
