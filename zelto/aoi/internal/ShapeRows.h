#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

class CDrawShape;

namespace zelto {

/// An edge that crosses the row being asked.
struct CrossingEdge {
    double startX = 0.0;
    double startAbove = 0.0; ///< the start's y minus the row's
    double endX = 0.0;
    double endAbove = 0.0; ///< the end's y minus the row's
};

/// Working memory of one thread, kept from row to row so that no row allocates.
struct RowScratch {
    std::vector<CrossingEdge> crossings;
    std::vector<std::size_t> boundaries;
    std::vector<unsigned char> turns; ///< whether the answer turns at a position
};

/// One row of positions.
struct PositionRow {
    double y = 0.0;
    std::span<const double> xs;
    /// The positions never decrease and stay where sums and products cannot overflow, so that
    /// every comparison changes its answer at most once along the row.
    bool monotone = false;
};

/// A shape prepared for asking rows of positions; it keeps copies of all it needs.
class ShapeRows {
  public:
    virtual ~ShapeRows() = default;

    const CBoundingBox& Extent() const { return m_extent; }

    /// Sets `inside[i]` to 1 for every position in the shape and leaves the others alone. All
    /// positions lie in the extent.
    virtual void Mark(const PositionRow& row, std::span<unsigned char> inside,
                      RowScratch& scratch) const = 0;

    /// Null for a shape whose containment test is not known here: a point, a line, or a class
    /// of the host's own.
    static std::unique_ptr<ShapeRows> Create(const CDrawShape& shape);

  protected:
    explicit ShapeRows(const CBoundingBox& extent) : m_extent(extent) {}

  private:
    CBoundingBox m_extent;
};

/// Coordinates beyond this are asked one by one: products of their differences may overflow,
/// and what follows is no longer monotone.
inline constexpr double MONOTONE_LIMIT = 1e150;

} // namespace zelto
