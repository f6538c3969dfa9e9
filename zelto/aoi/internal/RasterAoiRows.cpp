#include "zelto/aoi/internal/RasterAoiRows.h"

#include "zelto/aoi/RasterAOI.h"

#include <algorithm>

namespace zelto {

const CRect& RasterAoiRows::PixelRect() const {
    return m_aoi.m_pixelRect;
}

namespace {

/// Clears the marks of positions before `left` and behind `right`.
void ClearBeyond(double left, double right, const RowPositions& positions,
                 std::span<unsigned char> inside) {
    const std::span<const double> xs = positions.Values();
    if (positions.AreMonotone()) {
        const auto first = std::lower_bound(xs.begin(), xs.end(), left) - xs.begin();
        const auto last = std::upper_bound(xs.begin(), xs.end(), right) - xs.begin();
        std::fill(inside.begin(), inside.begin() + first, 0);
        std::fill(inside.begin() + last, inside.end(), 0);
        return;
    }
    for (std::size_t i = 0; i < xs.size(); ++i)
        inside[i] &= static_cast<unsigned char>(xs[i] >= left && xs[i] <= right);
}

} // namespace

void RasterAoiRows::Row(double row, const RowPositions& columns, std::span<unsigned char> inside,
                        Scratch& scratch) const {
    const CRect& rect = m_aoi.m_pixelRect;
    if (m_aoi.m_rows == nullptr || !(row >= rect.top && row <= rect.bottom)) {
        std::fill(inside.begin(), inside.end(), 0);
        return;
    }
    m_aoi.m_rows->Row(-row, columns, inside, scratch);
    ClearBeyond(rect.left, rect.right, columns, inside);
}

bool RasterAoiRows::ToBuffer(unsigned char* buffer, int width, int height,
                             CDataProgress* progress) const {
    return m_aoi.RasterizeAoiToBuffer(buffer, width, height, progress);
}

bool RasterAoiRows::ToFile(CRasterAOI& aoi, const wchar_t* path, int width, int height,
                           CDataProgress* progress) {
    return aoi.RasterizeAoiToFile(path, width, height, progress);
}

} // namespace zelto
