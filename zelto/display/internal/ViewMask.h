#pragma once

#include "zelto/aoi/internal/RasterAoiRows.h"
#include "zelto/display/internal/SamplePositions.h"

#include <optional>

class CRasterAOI;

namespace zelto {

/// Leaves out the pixels of a view that lie outside an area of interest, whole rows at a time
/// where the grid is not rotated. Const, for use by several threads.
class ViewMask {
  public:
    /// @param aoi initialised here if that was not done yet; null: nothing is left out
    ViewMask(const OutputGrid& output, CRasterAOI* aoi)
        : m_output(output), m_aoi(aoi), m_rows(RowsOf(aoi)) {}

    /// Whether anything may be left out.
    bool IsActive() const { return m_rows.has_value(); }

    /// Replaces the entries of output pixels (firstColumn … + count − 1, row) outside the area.
    /// @param count at most SamplePositions::chunk
    template <typename Entry>
    void Apply(int row, int firstColumn, int count, Entry* entries, Entry missing) const {
        if (!m_rows)
            return;
        std::array<unsigned char, SamplePositions::chunk> inside;
        FindInside(row, firstColumn, count, inside.data());
        for (int i = 0; i < count; ++i)
            entries[i] = inside[i] != 0 ? entries[i] : missing;
    }

  private:
    static std::optional<RasterAoiRows> RowsOf(CRasterAOI* aoi);
    void FindInside(int row, int firstColumn, int count, unsigned char* inside) const;

    OutputGrid m_output;
    CRasterAOI* m_aoi;
    std::optional<RasterAoiRows> m_rows;
};

} // namespace zelto
