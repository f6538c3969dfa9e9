#pragma once

#include "zelto/Export.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/vector/VectorSource.h"

#include <memory>
#include <vector>

class OGRLinearRing;

/// An area of interest: a set of closed shapes (rectangles, ellipses, polygons) that together
/// mark a part of the ground. It is read from and written to the engine's own file (extension
/// "aif") or a polygon shapefile; every other vector file OGR opens can be read as well.
///
/// The shapes belong to the source, which deletes them. The extent covers all shapes; it is not
/// reset when the last one goes.
///
/// The file, little-endian: a header of 1584 bytes (the tag "ZELTO_AOI" as 256 UTF-16 units, the
/// version 101 as int32, 1024 bytes of WKT ending in NUL, 4 bytes of padding, the extent as four
/// doubles left, top, right, bottom, and the number of shapes as int64), then per shape one byte
/// of ShapeKind and, for rectangles and ellipses, top-left x and y, width and height as doubles;
/// for polygons the number of vertices as int32 and x and y of each as doubles.
class ZELTO_API CAOISource : public CVectorSource {
  public:
    CAOISource();
    /// The shapes and the temporary file have one owner.
    CAOISource(const CAOISource&) = delete;
    CAOISource& operator=(const CAOISource&) = delete;

    /// Closes, and deletes the file of a temporary source that was not saved.
    ~CAOISource() override;
    using CVectorSource::Open;
    /// Opens a file of areas of interest (extension "aif" exactly) or any vector file, whose
    /// polygon rings each become a draw polygon, holes included. The source starts empty.
    /// @param access GIS_UPDATE opens vector files for writing
    /// @param allowWarp not used
    /// @return GIS_FAILED when the file cannot be opened, when GDAL reports an error while it
    ///         reads a vector file's features, and without memory; GIS_NOT_SUPPORTED for an "aif"
    ///         file without the tag. The source is then empty. An "aif" file cut short gives the
    ///         shapes it holds whole and succeeds; GetLastErrorText() then tells how many are
    ///         missing.
    GISError Open(const wchar_t* path, GISDataAccess access, bool allowWarp) override;
    /// Deletes all shapes and closes the vector file. The extent stays.
    void Close() override;
    /// Stores the flag here and in every shape.
    void SetVisible(bool visible) override;
    void CopyDisplaySetting(CGISDataSource* other) override;
    /// Writes the shapes to a new file; an existing one is replaced when that is complete.
    /// @return GIS_FAILED for an unknown format or a file that cannot be written, and without
    ///         memory
    virtual GISError SaveAs(const wchar_t* path, VectorDataFormat format);

    /// A new source, owned by the caller, with one draw polygon per polygon ring of `geometry`;
    /// null when it has none, an empty source for a null geometry.
    static CAOISource* Create(OGRGeometry* geometry);

    /// As Open(), with the shapes transformed into the system `targetWkt` where the file's own
    /// differs; the stored WKT becomes the target's. Rectangles and ellipses stay parallel to
    /// the axes: two opposite corners are transformed.
    /// @param targetWkt any form GDAL takes; null: as Open()
    /// @return GIS_OPEN_FAILED when there is no transformation; the shapes are then as read
    GISError OpenAndWarped(const wchar_t* path, GISDataAccess access, const char* targetWkt);

    /// Transforms the shapes into the system `targetWkt` as OpenAndWarped() does. The file that
    /// they were read from stays open as it is. An addition to the fixed interface.
    /// @param targetWkt any form GDAL takes, not null
    /// @return GIS_OPEN_FAILED when there is no transformation: the shapes stay as they are;
    ///         GIS_FAILED without memory: the source is then closed
    GISError TransformTo(const char* targetWkt);

    /// Appends a complete rectangle, ellipse or polygon and takes ownership.
    /// @return false, ownership staying with the caller, for every other shape, null and without
    ///         memory
    bool AddDrawShape(CDrawShape* shape);
    /// Deletes the shape.
    /// @return false when it is not in the list
    bool RemoveDrawShape(CDrawShape* shape);
    void RemoveAllSelectedDrawShapes();
    int GetDrawShapeCount() const { return static_cast<int>(m_drawShapes.size()); }
    /// Null outside 0 ≤ index < GetDrawShapeCount().
    CDrawShape* GetDrawShape(int index) const;
    /// Appends the selected shapes to `*selected` in list order.
    void GetAllSelectedDrawShapes(std::vector<CDrawShape*>* selected);

    /// Selects visible shapes that hold `p`.
    /// @param mode 0: select the first one and deselect the others; otherwise toggle: the first
    ///        unselected one that is hit becomes selected and ends the walk, selected ones that
    ///        are hit before it are deselected
    /// @return the shape selected by this call, or (toggling) the last one still selected, or
    ///         null
    CDrawShape* GetSelectedDrawShape(CPoint2D p, double tolerance, int mode);
    /// Selects all visible shapes that meet the box.
    /// @param mode 0: deselect the others
    /// @return the last one that meets it, or null
    CDrawShape* GetSelectedDrawShape(CBoundingBox* box, int mode);

    /// TOPO_CONTAIN when a shape holds the point, else TOPO_DISJOINT.
    SpatialTopoRelation TopoRelationWithPoint(double x, double y);
    /// The strongest relation of the box to any shape.
    SpatialTopoRelation GetTopoRelationWithBoundingbox(CBoundingBox* box);

    /// Ground length of the steps by which an ellipse becomes a ring; a step longer than a
    /// fiftieth of the semi-axis is shortened to that.
    ///
    /// The rings of an area, those of one GetOGRGeometries() or SaveAs(), have a limit, because a
    /// step for plans is far too fine for maps: at the default of 0.001 an ellipse of a kilometre
    /// in metres would have two million points. A ring that would have more than 1,000,000 points
    /// takes the coarser step with which it has as many; and where the ellipses together would
    /// have more than 2,000,000, those with most points take as few as make them fit, the same
    /// number of steps for all of these, but not less than 8 a quarter (which takes more than
    /// 50,000 ellipses). All other rings keep their step. The geometry of an area then takes less
    /// than 50 megabytes, and a mask of it less than 1 gigabyte beside its grid.
    void SetResolution(double resolution) { m_resolution = resolution; }
    /// Recomputes every shape's extent from its vertices, then the source's.
    void RecomputeExtent();
    /// Makes this the source of a temporary file, deleted with the source unless it is saved or
    /// another file is opened.
    void SetTempFilePath(const wchar_t* path);
    /// Ignored for null.
    void SetSpatialReferenceWKT(const char* wkt);
    /// True after opening anything but an "aif" file.
    bool IsShapeFile() const { return m_isVectorFile; }
    /// The shapes as one polygon, or as a collection when there are several; null without
    /// shapes and without memory. It is made once, belongs to the source and does not follow later
    /// edits.
    OGRGeometry* GetOGRGeometries();

  protected:
    std::vector<CDrawShape*> m_drawShapes; ///< owned
    double m_resolution = 0.001;
    bool m_temporary = false;
    bool m_isVectorFile = false;
    OGRGeometry* m_geometry = nullptr; ///< owned, made by GetOGRGeometries()

  private:
    GISError OpenEmptied(const wchar_t* path, GISDataAccess access);
    GISError OpenAOIFile(const wchar_t* path);
    GISError OpenVectorFile(const wchar_t* path, GISDataAccess access);
    GISError SaveAsAOIFile(const wchar_t* path);
    GISError SaveAsShapeFile(const wchar_t* path);
    GISError WarpShapes(const char* targetWkt);
    void AddPolygons(const OGRGeometry* geometry);
    void AddRing(const OGRLinearRing& ring);
    void AddOwnShape(std::unique_ptr<CDrawShape> shape);
    void RebuildExtent();
};
