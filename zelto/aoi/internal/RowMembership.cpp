#include "zelto/aoi/internal/RowMembership.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/internal/SelectedPoint.h"

#include <algorithm>
#include <cmath>
#include <typeinfo>

namespace zelto {

namespace {

/// Whether the positions never decrease; false when one is not a number.
bool NeverDecrease(std::span<const double> xs) {
    bool ordered = true;
    // Without an early exit, so that the loop runs several comparisons at a time.
    for (std::size_t i = 1; i < xs.size(); ++i)
        ordered &= xs[i - 1] <= xs[i];
    return ordered && !xs.empty() && xs[0] == xs[0];
}

} // namespace

RowPositions::RowPositions(std::span<const double> xs)
    : m_xs(xs),
      m_monotone(NeverDecrease(xs) && std::fabs(xs.front()) <= MONOTONE_LIMIT &&
                 std::fabs(xs.back()) <= MONOTONE_LIMIT) {}

RowMembership::RowMembership(std::span<CDrawShape* const> shapes) {
    for (CDrawShape* shape : shapes)
        if (shape != nullptr)
            Add(*shape);
    std::vector<IntervalIndex::Interval> ranges;
    ranges.reserve(m_shapes.size());
    for (const auto& shape : m_shapes)
        ranges.push_back({shape->Extent().m_bottom, shape->Extent().m_top});
    m_index = IntervalIndex(ranges);
}

void RowMembership::Add(CDrawShape& shape) {
    auto rows = ShapeRows::Create(shape);
    if (rows == nullptr) {
        m_others.push_back(&shape);
        return;
    }
    if (typeid(shape) != typeid(CDrawEllipse))
        StoreSelectedPoint(shape.m_selectedPointIndex, -1);
    // An inverted extent, or one that is not a number, holds no position.
    if (rows->Extent().m_bottom <= rows->Extent().m_top)
        m_shapes.push_back(std::move(rows));
}

void RowMembership::MarkShape(const ShapeRows& shape, const PositionRow& row,
                              std::span<unsigned char> inside, Scratch& scratch) const {
    const CBoundingBox& extent = shape.Extent();
    // The index gives those that end just below as well.
    if (row.y > extent.m_top)
        return;
    if (row.monotone) {
        const auto begin = row.xs.begin();
        const auto first = std::lower_bound(begin, row.xs.end(), extent.m_left) - begin;
        const auto last = std::upper_bound(begin, row.xs.end(), extent.m_right) - begin;
        if (!(extent.m_left <= extent.m_right) || first >= last)
            return;
        const auto offset = static_cast<std::size_t>(first);
        const auto count = static_cast<std::size_t>(last - first);
        shape.Mark({row.y, row.xs.subspan(offset, count), true}, inside.subspan(offset, count),
                   scratch);
        return;
    }
    for (std::size_t i = 0; i < row.xs.size(); ++i)
        if (extent.m_left <= row.xs[i] && row.xs[i] <= extent.m_right)
            shape.Mark({row.y, row.xs.subspan(i, 1), false}, inside.subspan(i, 1), scratch);
}

void RowMembership::Row(double y, const RowPositions& positions, std::span<unsigned char> inside,
                        Scratch& scratch) const {
    std::fill(inside.begin(), inside.end(), 0);
    const std::span<const double> xs = positions.Values();
    const PositionRow row{y, xs, positions.AreMonotone() && std::fabs(y) <= MONOTONE_LIMIT};
    m_index.Visit(
        y, [&](std::uint32_t position) { MarkShape(*m_shapes[position], row, inside, scratch); });
    for (CDrawShape* shape : m_others)
        for (std::size_t i = 0; i < xs.size(); ++i)
            inside[i] |= static_cast<unsigned char>(
                shape->TopoRelationWithPoint({xs[i], y}, 0.0, 1) == TOPO_CONTAIN);
}

bool RowMembership::Holds(double x, double y, Scratch& scratch) const {
    unsigned char inside = 0;
    Row(y, std::span<const double>(&x, 1), std::span(&inside, 1), scratch);
    return inside != 0;
}

} // namespace zelto
