#include "zelto/display/internal/ViewMask.h"

#include "zelto/aoi/RasterAOI.h"

namespace zelto {

std::optional<RasterAoiRows> ViewMask::RowsOf(CRasterAOI* aoi) {
    if (aoi == nullptr)
        return std::nullopt;
    if (!aoi->IsInitialized())
        aoi->Initialize();
    return RasterAoiRows(*aoi);
}

void ViewMask::FindInside(int row, int firstColumn, int count, unsigned char* inside) const {
    const double y = m_output.GroundY(row);
    const auto size = static_cast<std::size_t>(count);
    if (m_output.IsAxisParallel()) {
        std::array<double, SamplePositions::chunk> columns;
        for (int i = 0; i < count; ++i)
            columns[i] = m_output.SourceColumn(m_output.GroundX(firstColumn + i), y);
        RasterAoiRows::Scratch scratch;
        m_rows->Row(m_output.SourceRow(m_output.GroundX(firstColumn), y), {columns.data(), size},
                    {inside, size}, scratch);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const double x = m_output.GroundX(firstColumn + i);
        inside[i] = m_aoi->IsdfInAOI(m_output.SourceColumn(x, y), m_output.SourceRow(x, y)) ? 1 : 0;
    }
}

} // namespace zelto
