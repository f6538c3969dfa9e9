#include "zelto/display/internal/SourceView.h"

#include "zelto/raster/RasterSource.h"

#include <algorithm>

namespace zelto {

RasterGrid GridOf(const CRasterSource& source) {
    RasterGrid grid;
    grid.width = source.GetWidth();
    grid.height = source.GetHeight();
    source.ImageToGround(0.0, 0.0, grid.origin.x, grid.origin.y);
    grid.pixelWidth = source.GetXResolution();
    grid.pixelHeight = source.GetYResolution();
    std::copy_n(source.GetInverseGeoTransform(), 6, grid.inverseGeoTransform.begin());
    grid.extent = source.GetExtent();
    return grid;
}

std::wstring NameOf(const CRasterSource& source) {
    const std::wstring path = source.GetFilePath();
    return path.empty() ? source.GetFileName() : path;
}

OutputGrid OutputOf(const CRasterSource& source, const CBoundingBox& box, const ViewWindow& view,
                    int w, double anchor) {
    OutputGrid output;
    output.left = box.m_left;
    output.top = box.m_top;
    output.pixelWidth = view.pixelWidth;
    output.pixelHeight = view.pixelHeight;
    output.anchor = anchor;
    output.width = w;
    std::copy_n(source.GetInverseGeoTransform(), 6, output.inverseGeoTransform.begin());
    return output;
}

} // namespace zelto
