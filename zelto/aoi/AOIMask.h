#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/PlatformTypes.h"

#include <cstdint>
#include <memory>

class CAOISource;
class CDataProgress;
class CRasterSource;
class OGRGeometry;

/// An area of interest burnt into a byte mask over a ground box, so that a question costs a
/// bounds test and one look-up. A pixel is inside when its centre is, or when it touches one
/// that is; the outermost rows and columns are not grown.
///
/// A polygon that crosses itself is inside where CDrawPolygon is: where a line outwards crosses
/// its outline an odd number of times. Shapes that enclose no area mark nothing, and one that
/// GDAL can neither repair nor merge with the others is left out, the reason being told by
/// CGISDataSource::GetLastErrorText(); the other shapes stay.
///
/// Where no mask could be made (the area does not overlap the box in a surface, a grid without
/// pixels, too little memory) the questions are answered from the geometry, which is empty where
/// the area could not be cut to the box. A mask does not change once made; questions may be asked
/// from several threads while it has a mask array.
class ZELTO_API CAOIMask {
  public:
    /// @param width, height grid over `box`, in pixels
    /// @param unused not looked at
    /// @return a new mask owned by the caller; null for a null geometry and when no mask array
    ///         could be made
    static CAOIMask* Create(OGRGeometry* geometry, CBoundingBox box, int width, int height,
                            int unused);

    /// @param aoi not kept. With null every point of the box counts as inside; a source without
    ///        shapes gives an empty mask, which nothing is inside.
    CAOIMask(CAOISource* aoi, CBoundingBox box, int width, int height);
    CAOIMask(const CAOIMask&) = delete;
    CAOIMask& operator=(const CAOIMask&) = delete;
    ~CAOIMask();

    /// Writes the mask of an area on the grid of a raster into the raster's first band, 1 inside
    /// and 0 outside, as the questions of a mask over that grid are answered. Only a few strips
    /// of it are in memory at a time. An addition to the fixed interface.
    /// @param aoi null: every pixel is inside
    /// @param target open for writing, north-up
    /// @param inside receives the number of pixels inside
    /// @param progress steps with the rows done; may be null
    /// @return GIS_NOT_SUPPORTED when the area cannot be cut to the grid; GIS_FAILED when a row
    ///         cannot be burnt or written, when memory is short and when the host cancelled: the
    ///         rows written so far remain
    static GISError WriteRaster(CAOISource* aoi, CRasterSource* target, __int64& inside,
                                CDataProgress* progress);

    /// False outside the grid.
    bool IsPointIn(int column, int row) const;
    /// The same for a ground point.
    bool IsPoint2DIn(double x, double y) const;
    /// Whether there is a mask array. Without one, and with a grid that has pixels, the mask could
    /// not be made.
    bool HasMask() const { return m_mask != nullptr; }
    /// True when the area does not touch the box at all.
    bool IsEmpty() const { return m_empty; }

  protected:
    unsigned char* m_mask = nullptr; ///< owned; rows from the top, 1 inside, 0 outside
    bool m_empty = false;
    CBoundingBox m_box;
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    double m_pixelWidth = 0.0;
    double m_pixelHeight = 0.0;
    OGRGeometry* m_clipped = nullptr; ///< owned; the area cut to the box grown by one pixel

  private:
    /// What an area covers of the grid.
    enum class Coverage { Unknown, All, Nothing, Part };

    CAOIMask() = default;
    void SetGrid(const CBoundingBox& box, int width, int height);
    void SetClipped(std::unique_ptr<OGRGeometry> clipped);
    bool Initialize(OGRGeometry* geometry);
    Coverage Place(OGRGeometry& geometry);
    Coverage PlaceSource(CAOISource* aoi);
    bool AllocateMask();
    bool FillMask(unsigned char value);
    bool BurnMask();
    bool IsOnClipped(double x, double y) const;
};
