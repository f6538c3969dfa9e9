#include "zelto/display/internal/ViewMask.h"

#include "zelto/aoi/RasterAOI.h"
#include "zelto/aoi/internal/RasterAoiRows.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <span>

namespace zelto {
namespace {

/// The rows of an output image that lie inside an area.
class MaskRows {
  public:
    MaskRows(const OutputGrid& output, CRasterAOI& aoi)
        : m_output(output),
          m_aoi(aoi),
          m_rows(aoi),
          m_columns(ColumnsOf(output)),
          m_positions(m_columns) {}

    void Find(int row, std::span<unsigned char> inside, RasterAoiRows::Scratch& scratch) const {
        const double y = m_output.GroundY(row);
        if (m_output.IsAxisParallel()) {
            m_rows.Row(m_output.SourceRow(m_output.GroundX(0), y), m_positions, inside, scratch);
            return;
        }
        for (int column = 0; column < m_output.width; ++column) {
            const double x = m_output.GroundX(column);
            const bool isInside =
                m_aoi.IsdfInAOI(m_output.SourceColumn(x, y), m_output.SourceRow(x, y));
            inside[static_cast<std::size_t>(column)] = isInside ? 1 : 0;
        }
    }

  private:
    /// Source positions of the columns; none on rotated grids.
    static std::vector<double> ColumnsOf(const OutputGrid& output) {
        std::vector<double> columns;
        if (!output.IsAxisParallel())
            return columns;
        const double y = output.GroundY(0);
        columns.reserve(static_cast<std::size_t>(output.width));
        for (int column = 0; column < output.width; ++column)
            columns.push_back(output.SourceColumn(output.GroundX(column), y));
        return columns;
    }

    const OutputGrid& m_output;
    CRasterAOI& m_aoi;
    RasterAoiRows m_rows;
    std::vector<double> m_columns;
    RowPositions m_positions; ///< of m_columns
};

} // namespace

ViewMask::ViewMask(const OutputGrid& output, int height, CRasterAOI* aoi)
    : m_width(static_cast<std::size_t>(std::max(output.width, 0))) {
    if (aoi == nullptr)
        return;
    if (!aoi->IsInitialized())
        aoi->Initialize();
    m_inside.resize(m_width * static_cast<std::size_t>(std::max(height, 0)));
    const MaskRows rows(output, *aoi);
    // No exception leaves a parallel loop.
    std::atomic<bool> isShortOfMemory = false;
#pragma omp parallel
    {
        RasterAoiRows::Scratch scratch;
#pragma omp for schedule(static)
        for (int row = 0; row < height; ++row) {
            try {
                rows.Find(row, {m_inside.data() + static_cast<std::size_t>(row) * m_width, m_width},
                          scratch);
            } catch (const std::bad_alloc&) {
                isShortOfMemory = true;
            }
        }
    }
    if (isShortOfMemory)
        throw std::bad_alloc();
}

} // namespace zelto
