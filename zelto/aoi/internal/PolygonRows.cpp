#include "zelto/aoi/internal/PolygonRows.h"

#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/internal/HitPredicates.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace zelto {

namespace {

constexpr std::size_t MANY_BOUNDARIES = 24;

bool IsModerate(const CPoint2D& p) {
    return std::fabs(p.x) <= MONOTONE_LIMIT && std::fabs(p.y) <= MONOTONE_LIMIT;
}

/// Whether the position has the crossing strictly to its right.
bool IsLeftOf(double x, const CrossingEdge& edge) {
    return CrossesRightOf(edge.startX, edge.startAbove, edge.endX, edge.endAbove, x);
}

/// The position near which the crossing should be, were the positions evenly spaced.
std::size_t GuessBoundary(const CrossingEdge& edge, std::span<const double> xs) {
    const double alongEdge = edge.startAbove / (edge.startAbove - edge.endAbove);
    const double crossing = edge.startX + (edge.endX - edge.startX) * alongEdge;
    const double share = (crossing - xs.front()) / (xs.back() - xs.front());
    const auto last = static_cast<double>(xs.size() - 1);
    // A single position gives no number, which counts as the first.
    return share > 0 ? static_cast<std::size_t>(std::min(share, 1.0) * last) : 0;
}

/// Number of positions, from the left, that have the crossing to their right. With moderate
/// coordinates every step of the comparison keeps the order of the positions under rounding,
/// so that the first refusal is the last change and may be searched for: outwards from the
/// guess in growing steps, then by halves.
std::size_t PositionsLeftOf(const CrossingEdge& edge, std::span<const double> xs) {
    const auto isLeft = [&](std::size_t i) { return IsLeftOf(xs[i], edge); };
    // Positions before `low` are left of the crossing, those from `high` on are not.
    std::size_t low = 0;
    std::size_t high = xs.size();
    const auto narrow = [&](std::size_t probe) {
        const bool left = isLeft(probe);
        if (left)
            low = probe + 1;
        else
            high = probe;
        return left;
    };
    const bool upwards = narrow(GuessBoundary(edge, xs));
    for (std::size_t step = 1; step <= high - low; step *= 2)
        if (narrow(upwards ? low + step - 1 : high - step) != upwards)
            break;
    while (low < high)
        narrow(low + (high - low) / 2);
    return low;
}

/// Marks the positions left of an odd number of boundaries, in one pass over all of them.
void FillAlong(RowScratch& scratch, std::span<unsigned char> inside) {
    scratch.turns.assign(inside.size() + 1, 0);
    for (const std::size_t boundary : scratch.boundaries)
        scratch.turns[boundary] ^= 1;
    unsigned char marked = 0;
    for (std::size_t i = inside.size(); i-- > 0;) {
        marked ^= scratch.turns[i + 1];
        inside[i] |= marked;
    }
}

/// The same span by span.
void FillBetween(std::vector<std::size_t>& boundaries, std::span<unsigned char> inside) {
    std::sort(boundaries.begin(), boundaries.end(), std::greater<>());
    if (boundaries.size() % 2 == 1)
        boundaries.push_back(0);
    for (std::size_t i = 0; i < boundaries.size(); i += 2) {
        const auto span = inside.subspan(boundaries[i + 1], boundaries[i] - boundaries[i + 1]);
        std::fill(span.begin(), span.end(), 1);
    }
}

} // namespace

PolygonRows::PolygonRows(const CDrawPolygon& polygon) : ShapeRows(polygon.m_extent) {
    const auto& vertices = polygon.m_vertices;
    if (vertices.size() < 3)
        return;
    for (std::size_t i = 0; i < vertices.size(); ++i)
        AddEdge({vertices[i], vertices[i + 1 < vertices.size() ? i + 1 : 0]});
    std::vector<IntervalIndex::Interval> intervals;
    intervals.reserve(m_edges.size());
    for (const auto& [start, end] : m_edges)
        intervals.push_back({std::min(start.y, end.y), std::max(start.y, end.y)});
    m_index = IntervalIndex(intervals);
}

void PolygonRows::AddEdge(const Edge& edge) {
    if (!IsModerate(edge.start) || !IsModerate(edge.end))
        m_hugeEdges.push_back(edge);
    else if (edge.start.y != edge.end.y)
        m_edges.push_back(edge);
}

/// @return whether all crossings are monotone
bool PolygonRows::FindCrossings(double y, std::vector<CrossingEdge>& crossings) const {
    crossings.clear();
    const auto add = [&](const Edge& edge) {
        const double a = edge.start.y - y;
        const double b = edge.end.y - y;
        if (EdgeCrossesRow(a, b))
            crossings.push_back({edge.start.x, a, edge.end.x, b});
    };
    m_index.Visit(y, [&](std::uint32_t position) { add(m_edges[position]); });
    const std::size_t monotone = crossings.size();
    std::for_each(m_hugeEdges.begin(), m_hugeEdges.end(), add);
    return crossings.size() == monotone;
}

void PolygonRows::Mark(const PositionRow& row, std::span<unsigned char> inside,
                       RowScratch& scratch) const {
    const bool monotone = FindCrossings(row.y, scratch.crossings) && row.monotone;
    if (monotone) {
        scratch.boundaries.clear();
        for (const CrossingEdge& edge : scratch.crossings)
            scratch.boundaries.push_back(PositionsLeftOf(edge, row.xs));
        // Sorting many boundaries costs more than looking at every position.
        if (scratch.boundaries.size() > MANY_BOUNDARIES)
            FillAlong(scratch, inside);
        else
            FillBetween(scratch.boundaries, inside);
        return;
    }
    for (std::size_t i = 0; i < row.xs.size(); ++i) {
        const auto count =
            std::count_if(scratch.crossings.begin(), scratch.crossings.end(),
                          [&](const CrossingEdge& edge) { return IsLeftOf(row.xs[i], edge); });
        inside[i] |= static_cast<unsigned char>(count % 2);
    }
}

} // namespace zelto
