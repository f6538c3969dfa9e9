#include "zelto/aoi/internal/RasterAoiRows.h"

#include "zelto/aoi/RasterAOI.h"

#include <algorithm>

namespace zelto {

const CRect& RasterAoiRows::PixelRect() const {
    return m_aoi.m_pixelRect;
}

void RasterAoiRows::Row(double row, std::span<const double> columns,
                        std::span<unsigned char> inside, Scratch& scratch) const {
    const CRect& rect = m_aoi.m_pixelRect;
    if (m_aoi.m_rows == nullptr || !(row >= rect.top && row <= rect.bottom)) {
        std::fill(inside.begin(), inside.end(), 0);
        return;
    }
    m_aoi.m_rows->Row(-row, columns, inside, scratch);
    const double left = rect.left;
    const double right = rect.right;
    for (std::size_t i = 0; i < columns.size(); ++i)
        inside[i] &= static_cast<unsigned char>(columns[i] >= left && columns[i] <= right);
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
