#pragma once

#include "zelto/Export.h"
#include "zelto/baselib/RgbaColor.h"
#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/Point2D.h"

#include <cstdint>
#include <string>
#include <vector>

/// Kind of a shape; the values are stored in files. 0 stands for a shape without a kind.
enum ShapeKind : int {
    SHAPE_POINT = 1,
    SHAPE_LINE = 2,
    SHAPE_MULTILINE = 3,
    SHAPE_RECTANGLE = 4,
    SHAPE_ELLIPSE = 5,
    SHAPE_POLYGON = 6,
};

/// Answer of a hit test.
enum SpatialTopoRelation : int {
    TOPO_DISJOINT = 0,
    /// The box and the shape overlap without either containing the other; box tests only.
    TOPO_INTERSECT = 1,
    /// The point lies on a vertex or a handle, or a four-vertex polygon coincides with the box.
    TOPO_TOUCH = 2,
    /// The point lies in the shape, the point shape in the box, or the box in the shape.
    TOPO_CONTAIN = 3,
};

/// How a shape is being drawn; its values belong to the host, which starts at 0.
enum DrawModelType : int {};

/// What state of drawing a shape is in; its values belong to the host, which starts at 0.
enum DrawModelState : int {};

/// Value of CDrawShape::m_useMark for shapes of an area of interest.
inline constexpr std::int32_t USE_MARK_AOI = 4;
/// Value of CDrawShape::m_useMark for control points.
inline constexpr std::int32_t USE_MARK_CONTROL_POINT = 5;

/// A geometry that the user digitises on top of a view: a point, a line, several line
/// segments, a rectangle, an ellipse or a polygon. All coordinates are ground units with y
/// pointing up; copies are deep.
///
/// The host feeds vertices with AddVertex() while the user draws, sets m_complete for the kinds
/// that cannot tell themselves, and hit-tests the shape against the cursor and against boxes.
///
/// Threads: containment tests (a mode other than 0) of one shape may run concurrently. They
/// store −1 into m_selectedPointIndex, always as an atomic store.
class ZELTO_API CDrawShape {
  public:
    std::int32_t m_identifier = 0; ///< running number of a control point
    CRgbaColor m_firstColor{0, 0, 0, 255};
    std::int32_t m_firstColorStyle = 0; ///< travels with the first colour; the host's
    std::wstring m_firstText;           ///< the host's
    std::int32_t m_firstValue = 1;      ///< the host's
    CRgbaColor m_secondColor{255, 255, 0, 100};
    std::int32_t m_secondColorStyle = 0; ///< travels with the second colour; the host's
    std::wstring m_secondText;           ///< the host's
    ShapeKind m_shapeKind = ShapeKind(0);
    /// What the shape is used for: USE_MARK_AOI, USE_MARK_CONTROL_POINT or 0.
    std::int32_t m_useMark = 0;
    std::vector<CPoint2D> m_vertices;
    /// Least box around the shape, kept up by AddVertex() and by the operations that say so.
    CBoundingBox m_extent;
    /// The shape has enough vertices to be a geometry. AddVertex() of points, lines and
    /// rectangles sets it; for the others the host does when the user has finished.
    bool m_complete = false;
    bool m_selected = false;
    /// Vertex or handle that the last hit test found, −1 for none.
    std::int32_t m_selectedPointIndex = -1;
    bool m_visible = true;
    std::int32_t m_userValue = 0; ///< the host's
    DrawModelType m_drawModelType = DrawModelType(0);
    DrawModelState m_drawModelState = DrawModelState(0);

    CDrawShape() = default;
    CDrawShape(const CDrawShape&) = default;
    CDrawShape& operator=(const CDrawShape&) = default;
    virtual ~CDrawShape();

    /// Appends `p` to the vertices and updates the extent and the shape's own fields.
    /// @return the new number of vertices
    virtual int AddVertex(CPoint2D p) = 0;

    /// Drops the last vertex, if there is one; extent and own fields stay.
    /// @return the new number of vertices
    virtual int RemoveLastVertex();

    /// Hit test of a point.
    /// @param tolerance half side of the square around a vertex, a handle, a point or (for
    ///        lines, measured along y) a position on the line; inclusive
    /// @param mode 0 to find vertices and handles for editing, which sets m_selectedPointIndex
    ///        and answers TOPO_TOUCH; any other value for containment alone
    virtual SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) = 0;

    /// Hit test of a box; TOPO_DISJOINT for null.
    virtual SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox* box) = 0;

    /// Moves vertices, extent and own fields by (dx, dy).
    virtual void SetOffset(double dx, double dy);

    /// Moves the vertex numbered m_selectedPointIndex to `p` and recomputes the extent; nothing
    /// when there is no such vertex.
    virtual void UpdateSelectPoint(CPoint2D p);

    /// Sets the extent from the vertices; without vertices it stays.
    virtual void RecomputeExtent();

    /// @name Hooks for the host; they do nothing here
    /// @{
    virtual void Check();
    virtual void Delete();
    virtual void SetDrawModelState(DrawModelState state);
    virtual void Update();
    /// @return true
    virtual bool Validate();
    /// @}

    /// Sets both colours, opaque.
    /// @param first, second 0x00BBGGRR
    virtual void SetColor(unsigned long first, unsigned long second);

    DrawModelType GetDrawModelType() const { return m_drawModelType; }
    DrawModelState GetDrawModelState() const { return m_drawModelState; }

    /// A new shape of the same kind with all fields copied, owned by the caller; null for null,
    /// for a kind outside 1 … 6, for a shape that is not of the class that its kind promises, and
    /// without memory.
    static CDrawShape* CreateCopy(CDrawShape* shape);
};
