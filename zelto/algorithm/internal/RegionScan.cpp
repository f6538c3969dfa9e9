#include "zelto/algorithm/internal/RegionScan.h"

#include "zelto/algorithm/internal/PreciseMoments.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zelto {

namespace {

constexpr int PROGRESS_TOTAL = 100;

CBoundingBox ExtentOf(const std::vector<CDrawShape*>& shapes) {
    CBoundingBox extent;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        CBoundingBox shape = shapes[i]->m_extent;
        if (i == 0)
            extent = shape;
        else
            extent.Combine(&shape);
    }
    return extent;
}

/// From the pixel that holds `low` to the one that holds `high`, within 0 … size.
std::pair<int, int> PixelRange(double low, double high, int size) {
    const double first = std::clamp(std::floor(low), 0.0, static_cast<double>(size));
    const double last = std::clamp(std::floor(high) + 1.0, 0.0, static_cast<double>(size));
    return {TruncateToInt32(first), std::max(TruncateToInt32(last - first), 0)};
}

/// All pixels whose centre may lie in the box, however the raster is turned.
PixelWindow WindowAround(const CRasterSource& source, const CBoundingBox& box) {
    std::array<double, 4> columns{};
    std::array<double, 4> rows{};
    const std::array<CPoint2D, 4> corners = {box.TopLeft(), box.TopRight(), box.BottomLeft(),
                                             box.BottomRight()};
    for (std::size_t i = 0; i < corners.size(); ++i)
        source.GroundToImage(corners[i].x, corners[i].y, columns[i], rows[i]);
    const auto [left, right] = std::minmax_element(columns.begin(), columns.end());
    const auto [top, bottom] = std::minmax_element(rows.begin(), rows.end());
    const auto [firstColumn, width] = PixelRange(*left, *right, source.GetWidth());
    const auto [firstRow, height] = PixelRange(*top, *bottom, source.GetHeight());
    return {firstColumn, firstRow, width, height};
}

} // namespace

RegionScan::RegionScan(const CRasterSource& source, const std::vector<int>& bands,
                       std::optional<std::span<CDrawShape* const>> shapes,
                       std::optional<std::int64_t> mostSamples, std::optional<RowLimits> rows)
    : m_source(&source) {
    for (const int band : bands)
        m_bands.push_back(source.GetRasterBand(band));
    m_window = {0, 0, source.GetWidth(), source.GetHeight()};
    if (shapes) {
        m_shapes.emplace(shapes->begin(), shapes->end());
        m_window = m_shapes->empty() ? PixelWindow() : WindowAround(source, ExtentOf(*m_shapes));
    }
    if (rows)
        LimitRows(*rows);
    if (IsEmpty())
        return;
    const int bandCount = std::max(static_cast<int>(m_bands.size()), 1);
    m_grid = LimitedGrid(m_window.width, m_window.height,
                         mostSamples.value_or(std::numeric_limits<std::int64_t>::max()));
    m_maximumRows = std::max(READ_BUDGET_SAMPLES / m_window.width / bandCount, 1);
}

void RegionScan::LimitRows(const RowLimits& rows) {
    const std::int64_t end = std::min<std::int64_t>(m_window.top + m_window.height,
                                                    std::int64_t{rows.first} + rows.count);
    m_window.top = std::max(m_window.top, rows.first);
    m_window.height = static_cast<int>(std::max<std::int64_t>(end - m_window.top, 0));
}

std::unique_ptr<RegionRows> RegionScan::MakeRows() const {
    if (!m_shapes)
        return AllRows(m_grid.width);
    return RowsOf(*m_shapes, *m_source, m_window, m_grid, m_grid.step / 2);
}

bool RegionScan::Visit(const wchar_t* title, CDataProgress* progress,
                       const StripVisit& visit) const {
    if (progress != nullptr)
        progress->BeginProgress(title, PROGRESS_TOTAL);
    if (IsEmpty() || m_bands.empty())
        return true;
    const auto region = MakeRows();
    RegionSpans spans;
    return VisitBandStrips(
        m_bands, m_window, m_grid, m_maximumRows,
        [&](std::span<const double*> samples, int firstRow, int rows) {
            spans.Find(*region, firstRow, rows);
            visit(samples, spans);
            const auto percent = std::int64_t{PROGRESS_TOTAL} * (firstRow + rows) / m_grid.height;
            return progress == nullptr || progress->StepProgress(static_cast<int>(percent), title);
        });
}

bool RegionScan::VisitValues(const wchar_t* title, CDataProgress* progress,
                             const ValuesVisit& visit, const StripVisit& visitStrip) const {
    std::vector<ValueFilter> filters;
    for (const CRasterBand* band : m_bands)
        filters.emplace_back(*band);
    const auto visitAll = [&](std::span<const double*> samples, const RegionSpans& spans) {
        spans.Visit(Width(), [&](std::size_t begin, std::size_t count) {
            for (std::size_t b = 0; b < samples.size(); ++b)
                visit(b, filters[b].Select({samples[b] + begin, count}));
        });
        if (visitStrip)
            visitStrip(samples, spans);
    };
    return Visit(title, progress, visitAll);
}

void RegionScan::Mark(int firstRow, std::span<unsigned char> inside) const {
    if (IsEmpty())
        return;
    const auto region = MakeRows();
    const auto rowSize = static_cast<std::size_t>(m_source->GetWidth());
    std::vector<ColumnSpan> spans;
    for (int row = 0; row < m_grid.height; ++row) {
        spans.clear();
        region->AppendSpans(row, spans);
        const auto rowStart = static_cast<std::size_t>(m_window.top + row - firstRow) * rowSize;
        for (const ColumnSpan& span : spans) {
            const auto begin = rowStart + static_cast<std::size_t>(m_window.left + span.begin);
            std::fill_n(inside.begin() + static_cast<std::ptrdiff_t>(begin), span.end - span.begin,
                        1);
        }
    }
}

} // namespace zelto
