#pragma once

#include "zelto/aoi/DrawShape.h"

/// Line segments through the vertices in order. The host sets m_complete.
class ZELTO_API CDrawMultiLine : public CDrawShape {
  public:
    CDrawMultiLine();
    CDrawMultiLine(const CDrawMultiLine&) = default;
    CDrawMultiLine& operator=(const CDrawMultiLine&) = default;
    ~CDrawMultiLine() override;

    int AddVertex(CPoint2D p) override;
    /// TOPO_DISJOINT always: these lines are not hit-tested.
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) override;
    /// TOPO_DISJOINT always.
    SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox* box) override;

    /// Inserts `p` before the vertex numbered `index` and recomputes the extent. An index
    /// outside 0 … count means the nearer end.
    /// @return the new number of vertices
    virtual int InsertVertex(CPoint2D p, int index);
    /// Removes one vertex equal to `p` (CPoint2D's tolerance) and recomputes the extent. When
    /// several are equal the others are closed up and copies of the last vertices fill the
    /// places left at the end, so that the count falls by one only. Without a match the
    /// vertices stay.
    /// @return the new number of vertices
    virtual int RemoveVertex(CPoint2D p);
    /// Sets the extent from the vertices; all zero without any.
    /// @return 0
    virtual int ReComputeExtent();
};
