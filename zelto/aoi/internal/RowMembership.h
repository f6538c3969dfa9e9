#pragma once

#include "zelto/aoi/internal/IntervalIndex.h"
#include "zelto/aoi/internal/ShapeRows.h"

#include <memory>
#include <span>
#include <vector>

class CDrawShape;

namespace zelto {

/// Positions along a row and what is known of their order. Made once where many rows ask for the
/// same positions, which must outlive it.
class RowPositions {
  public:
    RowPositions(std::span<const double> xs);
    RowPositions(const std::vector<double>& xs) : RowPositions(std::span(xs)) {}

    std::span<const double> Values() const { return m_xs; }
    /// Whether they never decrease and are moderate; see MONOTONE_LIMIT.
    bool AreMonotone() const { return m_monotone; }

  private:
    std::span<const double> m_xs;
    bool m_monotone;
};

/// Answers for whole rows of positions which lie in a set of shapes, exactly as the single test
/// `TopoRelationWithPoint((x, y), 0.0, 1) == TOPO_CONTAIN` of any of them would, to the last
/// bit: both evaluate the same comparisons. Positions are in the shapes' own coordinates
/// (ground units, or pixel space for the shapes of a raster AOI, where the row r is y = −r).
///
/// A row costs about the edges that cross it plus its positions; n vertices are prepared once
/// in n log n. A grid therefore costs edges plus pixels, not edges times pixels.
///
/// The shapes are copied when this is constructed. Shapes whose test is not known here (points,
/// lines, classes of the host) are asked one position after the other; only these must outlive
/// this object. As the single test does, construction forgets the selected point of rectangles
/// and polygons.
///
/// Const and free of shared state: several threads may ask, each with its own scratch.
class RowMembership {
  public:
    using Scratch = RowScratch;

    /// @param shapes null entries are skipped
    explicit RowMembership(std::span<CDrawShape* const> shapes);

    /// Sets every `inside[i]` to 1 when (xs[i], y) lies in a shape, else to 0.
    /// @param xs in any order; rows that never decrease are the fast ones, others cost the
    ///        crossing edges once per position
    /// @param inside as long as `xs`
    void Row(double y, const RowPositions& xs, std::span<unsigned char> inside,
             Scratch& scratch) const;

    /// Whether no shape has to be asked one position after the other.
    bool KnowsAllShapes() const { return m_others.empty(); }

    /// The answer for a single position, from the edges that cross its row.
    bool Holds(double x, double y, Scratch& scratch) const;

  private:
    void Add(CDrawShape& shape);
    void MarkShape(const ShapeRows& shape, const PositionRow& row, std::span<unsigned char> inside,
                   Scratch& scratch) const;

    std::vector<std::unique_ptr<ShapeRows>> m_shapes;
    IntervalIndex m_index;             ///< of m_shapes by the y range of their extents
    std::vector<CDrawShape*> m_others; ///< asked one by one
};

} // namespace zelto
