#pragma once

#include "zelto/aoi/internal/IntervalIndex.h"
#include "zelto/aoi/internal/ShapeRows.h"
#include "zelto/geometry/Point2D.h"

class CDrawPolygon;

namespace zelto {

/// A polygon whose rows are answered from the edges that cross them. Finding the edges costs the
/// logarithm of their number, each crossing the logarithm of the positions.
class PolygonRows : public ShapeRows {
  public:
    explicit PolygonRows(const CDrawPolygon& polygon);

    void Mark(const PositionRow& row, std::span<unsigned char> inside,
              RowScratch& scratch) const override;

  private:
    struct Edge {
        CPoint2D start;
        CPoint2D end;
    };

    void AddEdge(const Edge& edge);
    bool FindCrossings(double y, std::vector<CrossingEdge>& crossings) const;

    std::vector<Edge> m_edges; ///< those the index holds
    IntervalIndex m_index;
    std::vector<Edge> m_hugeEdges; ///< with coordinates too large for monotone comparisons
};

} // namespace zelto
