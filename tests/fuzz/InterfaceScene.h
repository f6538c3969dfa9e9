#pragma once

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/ControlPoints.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/display/ComposedRaster.h"
#include "zelto/raster/RasterSource.h"

#include "tests/fuzz/InputBytes.h"

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace zelto::fuzz {

/// The objects that a sequence of calls works on. What refers to another object goes before it.
struct Scene {
    CRasterSource sources[2];
    CAOISource area;
    CControlPoints controlPoints;
    std::unique_ptr<CDrawShape> shape; ///< being drawn; may be null
    CComposedRaster composed;
    std::unique_ptr<CRasterAOI> region; ///< of the area on a source; may be null

    CRasterSource& Source(InputBytes& bytes) { return sources[bytes.Below(2)]; }
    /// A source or the composed raster.
    CRasterSource& Raster(InputBytes& bytes);
    /// A band of a source; null where that has none of the number.
    CRasterBand* Band(InputBytes& bytes);
    /// Call before a source closes or opens.
    void ForgetSources();
    /// Call before the area changes.
    void ForgetRegion() { region.reset(); }
};

/// One call of the engine, with arguments from the input.
using Operation = void (*)(Scene& scene, InputBytes& bytes);

// What can be done, by subject. The corpus goes by the order of the operations: new ones are
// appended.
std::span<const Operation> SourceOperations();
std::span<const Operation> DisplayOperations();
std::span<const Operation> BandOperations();
std::span<const Operation> ShapeOperations();
std::span<const Operation> RegionOperations();

/// A path of one of the small rasters, made on first use, or of none; "" sometimes.
std::wstring RasterPath(InputBytes& bytes);
/// A raster that may be changed, as it was made.
std::wstring ScratchRasterPath();

/// A box, around the raster mostly; none stands for a null pointer.
std::optional<CBoundingBox> ReadBox(InputBytes& bytes, const CGISDataSource& source);
inline CBoundingBox* PointerTo(std::optional<CBoundingBox>& box) {
    return box ? &*box : nullptr;
}

/// Size of a picture. Sides without pixels may be any number; the others are small.
struct PictureSize {
    int width = 0;
    int height = 0;
    std::size_t Pixels() const;
};
PictureSize ReadSize(InputBytes& bytes);

} // namespace zelto::fuzz
