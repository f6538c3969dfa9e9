#pragma once

#include "zelto/display/internal/SamplePositions.h"

#include <cstddef>
#include <span>
#include <vector>

class CRasterAOI;

namespace zelto {

/// Leaves out the pixels of a view that lie outside an area of interest. Which those are is found
/// once for all the bands of the view, row by row, and kept as a byte per pixel. Const after
/// construction, for use by several threads.
class ViewMask {
  public:
    /// Nothing is left out.
    ViewMask() = default;

    /// Throws std::bad_alloc where the memory cannot be had.
    /// @param output on the grid of the area's raster
    /// @param height rows of the output
    /// @param aoi initialised here if that was not done yet; null: nothing is left out
    ViewMask(const OutputGrid& output, int height, CRasterAOI* aoi);

    /// Whether anything may be left out.
    bool IsActive() const { return !m_inside.empty(); }

    /// 1 for every output pixel inside the area and 0 for the others, row by row; empty where
    /// nothing is left out.
    std::span<const unsigned char> Inside() const { return m_inside; }

    /// Replaces the entries of output pixels (firstColumn … + count − 1, row) outside the area.
    template <typename Entry>
    void Apply(int row, int firstColumn, int count, Entry* entries, Entry missing) const {
        if (!IsActive())
            return;
        const unsigned char* inside = m_inside.data() + static_cast<std::size_t>(row) * m_width +
                                      static_cast<std::size_t>(firstColumn);
        for (int i = 0; i < count; ++i)
            entries[i] = inside[i] != 0 ? entries[i] : missing;
    }

  private:
    std::size_t m_width = 0;
    std::vector<unsigned char> m_inside; ///< empty: no mask
};

} // namespace zelto
