#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/PlatformTypes.h"

#include <string>

class CCoordinateTransformation;
class CGISDataSource;
class CGeoGrid;
class CRasterSource;
struct tagImageInfo;

/// Binds a data source to a target reference system: maps boxes between the two systems, finds
/// the part of the image that a target box needs, and maps target ground points to image
/// positions, directly or through a polynomial grid (CGeoGrid).
///
/// Image positions are asked of rasters with an affine geotransform
/// (CRasterSource::GetGeoreferencingKind() 1). Of every other source the image positions are the
/// ground coordinates themselves.
class ZELTO_API CReproject {
  public:
    CReproject(const CReproject&) = delete;
    CReproject& operator=(const CReproject&) = delete;
    ~CReproject();

    /// @param source an open source with a spatial reference; must outlive the object
    /// @param targetSrs any form GDAL's user-input parser takes
    /// @param srcParams,dstParams seven parameters each, stored with the transformation from and
    ///        to the source and not applied; may be null
    /// @return null when the source's coordinates cannot be transformed to the target system;
    ///         else an object to be deleted. The way back may be missing: what needs it answers
    ///         false.
    static CReproject* Create(CGISDataSource* source, const char* targetSrs, double* srcParams,
                              double* dstParams);

    /// Height in metres, above the target's spheroid, of every point that GetSrcPos() and
    /// CreateGrid() transform; 0 at first.
    void SetMeanElevation(double elevation) { m_meanElevation = elevation; }

    /// Maps a box by transforming points along its edges and taking their extremes.
    /// @param stepX,stepY distance of the points in ground units, their sign ignored; with one
    ///        below 1e-10 every edge is sampled at its ends only
    /// @param ct what transforms the points, unless a ready grid of an affine raster does
    /// @return false, with the outputs unchanged, when ct is null, the box is empty or inverted,
    ///         a step is as large as its side (step + 1e-10 is greater than the side), or there
    ///         would be more than MAX_EDGE_POINTS points. Otherwise whether any point could be
    ///         transformed; points that could not make the outputs infinite.
    bool BoxTansform(double left, double top, double right, double bottom, double& outLeft,
                     double& outTop, double& outRight, double& outBottom, double stepX,
                     double stepY, CCoordinateTransformation* ct);
    static constexpr int MAX_EDGE_POINTS = 1 << 22;

    /// BoxTansform() from the target system to the source's.
    bool Dest2SrcBox(CBoundingBox& targetBox, CBoundingBox& sourceBox, double stepX, double stepY);
    /// BoxTansform() from the source's system to the target.
    bool Src2DestBox(CBoundingBox& sourceBox, CBoundingBox& targetBox, double stepX, double stepY);

    /// The window of a north-up source image that a target box needs: the box's source position,
    /// its corners truncated to pixels, widened by 5 pixels on every side and clipped to the image.
    /// @param stepX,stepY see BoxTansform()
    /// @return false when the source is not an affine raster with a band, the box cannot be
    ///         mapped or it lies beside the image
    bool GetInImgEnveFromGeoOut(double left, double top, double right, double bottom, long& x,
                                long& y, long& width, long& height, double stepX, double stepY);
    bool GetInImgEnveFromGeoOut(CBoundingBox& targetBox, CRect* rect, double stepX, double stepY);

    /// The same for images that lie in any way on the ground, rotated and south-up ones
    /// included: the window around the image positions of points along the box's edges, widened
    /// by 5 pixels and clipped. For north-up images it is that of GetInImgEnveFromGeoOut(),
    /// whose two corners do not name the pixels of others.
    /// @return false as there, and when any of the points has no position
    bool FindSourceWindow(const CBoundingBox& targetBox, CRect& window, double stepX, double stepY);

    /// Fits a grid that maps target ground points in `box` to source positions; it replaces any
    /// former one. The points are nx × ny (GetGirdNum()), from the box's top-left corner on, but
    /// only the first ny × ny are transformed to the source's system. Choose steps that give at
    /// least as many rows as columns.
    /// @param stepX,stepY distance of the points in ground units, their sign ignored
    /// @param order of the polynomial, 1 to 3; any other: bilinear interpolation
    /// @return false, without a ready grid, when the points cannot be transformed, do not
    ///         determine the polynomial or are more than CGeoGrid::MAX_POSITIONS
    bool CreateGrid(CBoundingBox& box, double stepX, double stepY, unsigned int order);

    /// Number of grid points for the box, steps and order of the last CreateGrid(): as many
    /// steps as fit, and one more. With fewer points than the order needs 4 × 3 points, with a
    /// step below 1e-10 10 × 10 points; the steps then become the matching part of the box.
    void GetGirdNum(int& nx, int& ny);

    /// Source image positions of target ground points: through the grid where one is ready. A
    /// bilinear grid counts x from its left and y from its top downwards, not from the ground's
    /// origin.
    /// Without one x and y themselves are transformed in place to the source's system, and for
    /// a source that is no affine raster col and row stay as they are.
    /// @return with a grid whether the last point has a position, else whether any point could
    ///         be transformed; false for a null array or a count below 1
    bool GetSrcPos(double* x, double* y, double* col, double* row, int count);

    /// The fitted grid, null without a ready one; owned by this object.
    CGeoGrid* GetGrid() const { return m_gridReady ? m_grid : nullptr; }

    /// Lays out an image in another reference system: north up, square pixels of the mean area
    /// that the source's pixels have there, covering all of `source` that has a position there.
    /// The ground is sampled in 21 × 21 points spread over the source, edges included.
    /// @param source size, geotransform and system given; its extent is filled in
    /// @param target its system given; size, geotransform and extent are filled in
    /// @return false, with the target unchanged, for a source without pixels or size on the
    ///         ground, when a system cannot be read, when no point can be transformed, or when
    ///         the image would have more rows or columns than an int counts
    static bool GetExtent(tagImageInfo& source, tagImageInfo& target);

    /// Transforms `count` points in place from one system to another.
    /// @param srcToWgs84,dstToWgs84 seven parameters to go by, see CCoordinateTransformation;
    ///        with both null the way is the projection library's
    /// @return as CCoordinateTransformation::Transform(); false when the systems cannot be
    ///         connected
    static bool CoorTransform(double* x, double* y, int count, std::string src, std::string dst,
                              double* srcToWgs84 = nullptr, double* dstToWgs84 = nullptr);

  private:
    CReproject() = default;
    const CRasterSource* GetAffineRaster() const;
    bool TransformEdges(double* x, double* y, int count, CCoordinateTransformation* ct);
    bool FindWindow(const CBoundingBox& sourceBox, CRect& window) const;
    bool FillGrid(int nx, int ny, CGeoGrid& grid);
    void ToSourcePositions(const double* x, const double* y, double* col, double* row,
                           int count) const;

    CGISDataSource* m_source = nullptr;
    CCoordinateTransformation* m_targetToSource = nullptr; ///< owned, may be null
    CCoordinateTransformation* m_sourceToTarget = nullptr; ///< owned
    CGeoGrid* m_grid = nullptr;                            ///< owned
    bool m_gridReady = false;
    unsigned int m_order = 0;
    double m_gridLeft = 0.0;
    double m_gridTop = 0.0;
    double m_gridRight = 0.0;
    double m_gridBottom = 0.0;
    double m_gridStepX = 0.0;
    double m_gridStepY = 0.0;
    unsigned int m_minimumPointCount = 0;
    double m_meanElevation = 0.0;
};
