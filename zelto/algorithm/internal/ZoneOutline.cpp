#include "zelto/algorithm/internal/ZoneOutline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zelto {

namespace {

/// A share of a pixel that rounding may have made of nothing, or of the whole.
constexpr double NEARLY_NOTHING = 1e-12;

/// Twice the area, positive where the points run clockwise as seen, rows being counted downwards.
/// Taken around the first point: far from the origin products of coordinates lose what matters.
double DoubleArea(const std::vector<PixelPoint>& points) {
    double sum = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const PixelPoint& a = points[i];
        const PixelPoint& b = points[(i + 1) % points.size()];
        sum += (a.column - points[0].column) * (b.row - points[0].row) -
               (b.column - points[0].column) * (a.row - points[0].row);
    }
    return sum;
}

double Share(double sum) {
    if (sum < NEARLY_NOTHING)
        return 0.0;
    return sum > 1.0 - NEARLY_NOTHING ? 1.0 : sum;
}

/// Appends a span unless it is empty; one of the same weight is lengthened.
void Append(std::vector<ZoneSpan>& spans, int begin, int end, double weight) {
    if (begin >= end || weight == 0.0)
        return;
    if (!spans.empty() && spans.back().end == begin && spans.back().weight == weight)
        spans.back().end = end;
    else
        spans.push_back({begin, end, weight});
}

} // namespace

void ZoneOutline::AddRing(const std::vector<PixelPoint>& points, bool isHole) {
    if (points.empty())
        return;
    const double area = DoubleArea(points);
    if (area == 0.0)
        return;
    const bool isReversed = (area < 0.0) != isHole;
    for (std::size_t i = 0; i < points.size(); ++i)
        AddSide(points[i], points[(i + 1) % points.size()], isReversed);
}

/// Of a ring that runs clockwise the inside lies to the right of the sides that rise.
void ZoneOutline::AddSide(PixelPoint from, PixelPoint to, bool isReversed) {
    if (from.row == to.row)
        return;
    const bool rises = to.row < from.row;
    if (rises)
        std::swap(from, to);
    m_sides.push_back({from, to, rises != isReversed ? 1.0 : -1.0});
}

void ZoneOutline::Finish(int width, int height) {
    m_width = width;
    std::sort(m_sides.begin(), m_sides.end(),
              [](const Side& a, const Side& b) { return a.top.row < b.top.row; });
    constexpr double infinity = std::numeric_limits<double>::infinity();
    PixelPoint low = {infinity, infinity};
    PixelPoint high = {-infinity, -infinity};
    for (const Side& side : m_sides) {
        low.row = std::min(low.row, side.top.row);
        high.row = std::max(high.row, side.bottom.row);
        low.column = std::min({low.column, side.top.column, side.bottom.column});
        high.column = std::max({high.column, side.top.column, side.bottom.column});
    }
    const auto within = [](double value, int limit) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(limit)));
    };
    if (m_sides.empty())
        return;
    m_firstRow = within(std::floor(low.row), height);
    m_endRow = within(std::ceil(high.row), height);
    m_firstColumn = within(std::floor(low.column), width);
    m_endColumn = within(std::ceil(high.column), width);
    if (m_firstColumn == m_endColumn)
        m_endRow = m_firstRow;
}

void ZoneOutline::Rewind() {
    m_next = 0;
    m_active.clear();
}

/// Keeps the sides that meet the row.
void ZoneOutline::Activate(int row) {
    for (; m_next < m_sides.size() && m_sides[m_next].top.row < row + 1.0; ++m_next)
        m_active.push_back(m_next);
    m_active.erase(std::remove_if(m_active.begin(), m_active.end(),
                                  [&](std::size_t i) { return m_sides[i].bottom.row <= row; }),
                   m_active.end());
}

/// From the upper end whatever way the ring runs, so that neighbours agree on a side they share.
double ZoneOutline::Side::ColumnAt(double row) const {
    if (row <= top.row)
        return top.column;
    if (row >= bottom.row)
        return bottom.column;
    return top.column + (row - top.row) * ((bottom.column - top.column) / (bottom.row - top.row));
}

void ZoneOutline::FindCenters(int row, std::vector<ZoneSpan>& spans) {
    spans.clear();
    Activate(row);
    m_crossings.clear();
    const double center = row + 0.5;
    for (const std::size_t i : m_active)
        if (m_sides[i].top.row <= center && center < m_sides[i].bottom.row)
            m_crossings.push_back(m_sides[i].ColumnAt(center));
    std::sort(m_crossings.begin(), m_crossings.end());
    const auto firstCenterFrom = [&](double column) {
        return static_cast<int>(
            std::ceil(std::clamp(column - 0.5, 0.0, static_cast<double>(m_width))));
    };
    for (std::size_t i = 0; i + 1 < m_crossings.size(); i += 2)
        Append(spans, firstCenterFrom(m_crossings[i]), firstCenterFrom(m_crossings[i + 1]), 1.0);
}

void ZoneOutline::FindCoverage(int row, std::vector<ZoneSpan>& spans) {
    spans.clear();
    Activate(row);
    m_cells.clear();
    for (const std::size_t i : m_active)
        CutSide(m_sides[i], row);
    std::sort(m_cells.begin(), m_cells.end(),
              [](const Cell& a, const Cell& b) { return a.column < b.column; });
    double cover = 0.0; // of all the pixels from here on
    for (std::size_t i = 0; i < m_cells.size();) {
        const int column = m_cells[i].column;
        double area = 0.0;
        const double before = cover;
        for (; i < m_cells.size() && m_cells[i].column == column; ++i) {
            area += m_cells[i].area;
            cover += m_cells[i].cover;
        }
        if (column >= 0)
            Append(spans, column, column + 1, Share(before + area));
        Append(spans, column + 1, i < m_cells.size() ? m_cells[i].column : m_width, Share(cover));
    }
}

/// Adds the part of a side that lies in a row, pixel by pixel.
void ZoneOutline::CutSide(const Side& side, int row) {
    const double top = std::max(side.top.row, static_cast<double>(row));
    const double bottom = std::min(side.bottom.row, row + 1.0);
    const double from = side.ColumnAt(top);
    const double to = side.ColumnAt(bottom);
    double reached = top;
    double at = from;
    const auto passTo = [&](double column) {
        // The rows come in order, whatever the rounding of the share.
        const double share = (column - from) / (to - from);
        const double next = std::clamp(top + share * (bottom - top), reached, bottom);
        AddPiece(at, column, next - reached, side.direction);
        reached = next;
        at = column;
    };
    // What lies beside the raster is not cut.
    const double width = m_width;
    for (double column = std::max(std::floor(from) + 1.0, 0.0); column < std::min(to, width + 1.0);
         ++column)
        passTo(column);
    for (double column = std::min(std::ceil(from) - 1.0, width); column > std::max(to, -1.0);
         --column)
        passTo(column);
    AddPiece(at, to, bottom - reached, side.direction);
}

/// A piece that lies in one column, or beside the raster.
void ZoneOutline::AddPiece(double from, double to, double height, double direction) {
    const double middle = from / 2 + to / 2;
    if (height == 0.0 || middle >= m_width)
        return;
    // To the left of the raster only what lies to the right of the piece matters.
    const double column = std::max(std::floor(middle), -1.0);
    const double cover = direction * height;
    m_cells.push_back(
        {static_cast<int>(column), cover, column < 0.0 ? 0.0 : cover * (1.0 - (middle - column))});
}

} // namespace zelto
