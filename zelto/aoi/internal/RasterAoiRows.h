#pragma once

#include "zelto/aoi/internal/RowMembership.h"
#include "zelto/geometry/PlatformTypes.h"

#include <span>

class CDataProgress;
class CRasterAOI;

namespace zelto {

/// An initialised CRasterAOI for the engine's own loops: its pixel rectangle, and rows of pixels
/// answered at once. Cheap to make; the area must outlive it and stay as it is. Const and free
/// of shared state: several threads may ask, each with its own scratch.
class RasterAoiRows {
  public:
    using Scratch = RowMembership::Scratch;

    /// An area that is not initialised holds nothing.
    explicit RasterAoiRows(const CRasterAOI& aoi) : m_aoi(aoi) {}

    /// The area's pixel rectangle; as a bound of what is inside, right and bottom are included.
    const CRect& PixelRect() const;

    /// Sets every `inside[i]` to 1 where CRasterAOI::IsdfInAOI(columns[i], row), else to 0; see
    /// RowMembership::Row() for the cost. Whole numbers answer as IsInAOI().
    void Row(double row, const RowPositions& columns, std::span<unsigned char> inside,
             Scratch& scratch) const;

    /// As CRasterAOI::RasterizeAoiToBuffer().
    bool ToBuffer(unsigned char* buffer, int width, int height, CDataProgress* progress) const;

    /// As CRasterAOI::RasterizeAoiToFile().
    static bool ToFile(CRasterAOI& aoi, const wchar_t* path, int width, int height,
                       CDataProgress* progress);

  private:
    const CRasterAOI& m_aoi;
};

} // namespace zelto
