#pragma once

#include "zelto/Export.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/geometry/PlatformTypes.h"

#include <memory>
#include <string>
#include <vector>

class CAOISource;
class CRasterSource;

namespace zelto {
class RasterAoiRows;
class RowMembership;
} // namespace zelto

/// An area of interest on the pixel grid of a raster. Every shape that touches the raster is
/// converted into pixel space, where column c and row r are the point (c, −r); ground points
/// fall on whole pixels, truncated toward zero.
///
/// It refers to the raster and the area without owning them, is initialised on first use (by
/// the getters, by rendering and by statistics; a bare membership question to one that is not
/// answers false) and must be made anew when shapes change. After that, membership questions may
/// be asked from several threads.
class ZELTO_API CRasterAOI {
  public:
    CRasterAOI(CRasterSource* raster, CAOISource* aoi);
    /// Copies the shapes in pixel space; the temporary raster stays with the original.
    CRasterAOI(const CRasterAOI& other);
    CRasterAOI& operator=(const CRasterAOI& other);
    ~CRasterAOI();

    /// Converts the shapes. Call it once: every call converts them again.
    /// @return false without a raster, an area or memory; there are then no shapes
    bool Initialize();
    bool IsInitialized() const { return m_initialized; }
    /// Initialises if that was not done yet.
    /// @return true
    bool ConvertToRasterMap(const wchar_t* path, CDataProgress* progress);

    CAOISource* GetAOISource() const { return m_aoi; }
    /// Least pixel rectangle around the converted shapes.
    CRect GetRect();
    /// The ground box of GetRect().
    CBoundingBox GetExtent();

    /// Whether the pixel lies in any shape.
    bool IsInAOI(int column, int row) const;
    /// The same for a position between pixels.
    bool IsdfInAOI(double column, double row) const;
    /// First relation other than TOPO_DISJOINT that a shape has to a box in pixel space, in
    /// list order.
    SpatialTopoRelation TopoRelationWithBoundingBox(CBoundingBox* box) const;
    /// The same for a block of the raster, columns x … x + width and rows y … y + height.
    /// TOPO_CONTAIN means that the whole block lies inside.
    SpatialTopoRelation ReadCacheAoiBuffer(int x, int y, int width, int height) const;

  private:
    friend class CRasterAlgorithm;
    friend class zelto::RasterAoiRows;

    void CopyFrom(const CRasterAOI& other);
    bool ConvertShapes();
    CDrawShape* ConvertToRasterDrawShape(CDrawShape* shape);
    CDrawShape* ConvertPolygon(const std::vector<CPoint2D>& vertices);
    bool IsInDrawShapes(int column, int row) const;
    bool IsInDrawShapes(const CPoint2D& p) const;
    /// Writes 1 for pixels in any shape and 0 for others, w × h bytes row by row from the pixel
    /// rectangle's top-left corner.
    /// @return false when the host cancelled, and for a null buffer
    bool RasterizeAoiToBuffer(unsigned char* buffer, int width, int height,
                              CDataProgress* progress) const;
    /// The same into a new Byte GeoTIFF of one band over GetExtent(), which is deleted with this
    /// object.
    bool RasterizeAoiToFile(const wchar_t* path, int width, int height, CDataProgress* progress);
    bool WriteFile(const wchar_t* path, int width, int height, CDataProgress* progress);
    void SetPixelBox();
    bool IsOverPixelRect(double column, double row) const;
    SpatialTopoRelation FirstRelation(CBoundingBox& box) const;
    void ResetRows();
    void DeleteTemporaryRaster();

    CRasterSource* m_raster = nullptr;
    CAOISource* m_aoi = nullptr;
    std::vector<std::unique_ptr<CDrawShape>> m_rasterShapes;
    bool m_initialized = false;
    CRect m_pixelRect;
    CBoundingBox m_pixelBox; ///< the rectangle with negated rows
    std::unique_ptr<CRasterSource> m_temporaryRaster;
    std::wstring m_temporaryPath;
    /// The shapes prepared for rows of pixels; copies of this object share it.
    std::shared_ptr<const zelto::RowMembership> m_rows;
};
