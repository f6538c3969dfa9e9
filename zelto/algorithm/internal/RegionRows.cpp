#include "zelto/algorithm/internal/RegionRows.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/aoi/internal/RasterAoiRows.h"
#include "zelto/aoi/internal/RowMembership.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

namespace zelto {

namespace {

using Mask = std::vector<unsigned char>;

void AppendMaskedSpans(const Mask& inside, std::vector<ColumnSpan>& spans) {
    const unsigned char* const begin = inside.data();
    const unsigned char* const end = begin + inside.size();
    const auto find = [&](const unsigned char* from, int wanted) {
        const void* found =
            from == end ? nullptr : std::memchr(from, wanted, static_cast<std::size_t>(end - from));
        return found == nullptr ? end : static_cast<const unsigned char*>(found);
    };
    for (const unsigned char* first = find(begin, 1); first != end;) {
        const unsigned char* const last = find(first, 0);
        spans.push_back({static_cast<int>(first - begin), static_cast<int>(last - begin)});
        first = find(last, 1);
    }
}

class AllRegionRows : public RegionRows {
  public:
    explicit AllRegionRows(int width) : m_width(width) {}

    void AppendSpans(int /*row*/, std::vector<ColumnSpan>& spans) override {
        if (m_width > 0)
            spans.push_back({0, m_width});
    }

  private:
    int m_width;
};

/// Ground points of the samples of a grid.
class GroundGrid {
  public:
    /// @param offset see RowsOf()
    GroundGrid(const CRasterSource& source, const PixelWindow& window, const SampleGrid& grid,
               double offset)
        : m_step(grid.step), m_left(window.left + offset), m_top(window.top + offset) {
        source.GetGeoTransform(m_geoTransform.data(), false);
    }

    bool ColumnsAreUpright() const { return m_geoTransform[2] == 0.0; }
    bool RowsAreLevel() const { return m_geoTransform[4] == 0.0; }
    double X(std::size_t column, int row) const {
        return m_geoTransform[0] + Column(column) * m_geoTransform[1] +
               Row(row) * m_geoTransform[2];
    }
    double Y(std::size_t column, int row) const {
        return m_geoTransform[3] + Column(column) * m_geoTransform[4] +
               Row(row) * m_geoTransform[5];
    }

  private:
    double Column(std::size_t column) const {
        return static_cast<double>(column) * m_step + m_left;
    }
    double Row(int row) const { return row * m_step + m_top; }

    double m_step;
    double m_left; ///< position of the first column
    double m_top;  ///< position of the first row
    std::array<double, 6> m_geoTransform{};
};

/// Shapes tested at the ground points of the samples.
class GroundRegionRows : public RegionRows {
  public:
    /// @param limits points outside are not in the region whatever the shapes say
    GroundRegionRows(RowMembership shapes, std::optional<CBoundingBox> limits,
                     const GroundGrid& ground, int width)
        : m_shapes(std::move(shapes)),
          m_limits(limits),
          m_ground(ground),
          m_xs(static_cast<std::size_t>(std::max(width, 0))),
          m_inside(m_xs.size()) {
        SetXs(0);
    }

    void AppendSpans(int row, std::vector<ColumnSpan>& spans) override {
        if (!m_ground.ColumnsAreUpright())
            SetXs(row);
        if (m_ground.RowsAreLevel())
            MarkLevelRow(m_ground.Y(0, row));
        else
            MarkPositions(row);
        AppendMaskedSpans(m_inside, spans);
    }

  private:
    void SetXs(int row) {
        for (std::size_t i = 0; i < m_xs.size(); ++i)
            m_xs[i] = m_ground.X(i, row);
    }

    void MarkLevelRow(double y) {
        m_shapes.Row(y, m_xs, m_inside, m_scratch);
        if (!m_limits)
            return;
        const CBoundingBox limits = *m_limits;
        const bool rowAllowed = limits.m_bottom <= y && y <= limits.m_top;
        for (std::size_t i = 0; i < m_xs.size(); ++i)
            m_inside[i] &= static_cast<unsigned char>(rowAllowed && limits.m_left <= m_xs[i] &&
                                                      m_xs[i] <= limits.m_right);
    }

    void MarkPositions(int row) {
        for (std::size_t i = 0; i < m_xs.size(); ++i) {
            const double y = m_ground.Y(i, row);
            const bool allowed = !m_limits || m_limits->IsContain(m_xs[i], y);
            m_inside[i] =
                static_cast<unsigned char>(allowed && m_shapes.Holds(m_xs[i], y, m_scratch));
        }
    }

    RowMembership m_shapes;
    RowMembership::Scratch m_scratch;
    std::optional<CBoundingBox> m_limits;
    GroundGrid m_ground;
    std::vector<double> m_xs;
    Mask m_inside;
};

/// An area of interest asked for one ground point after the other.
class AskedRegionRows : public RegionRows {
  public:
    AskedRegionRows(CAOISource& aoi, const GroundGrid& ground, int width)
        : m_aoi(aoi), m_ground(ground), m_inside(static_cast<std::size_t>(std::max(width, 0))) {}

    void AppendSpans(int row, std::vector<ColumnSpan>& spans) override {
        for (std::size_t i = 0; i < m_inside.size(); ++i)
            m_inside[i] = static_cast<unsigned char>(
                m_aoi.TopoRelationWithPoint(m_ground.X(i, row), m_ground.Y(i, row)) ==
                TOPO_CONTAIN);
        AppendMaskedSpans(m_inside, spans);
    }

  private:
    CAOISource& m_aoi;
    GroundGrid m_ground;
    Mask m_inside;
};

/// Pixels tested in a raster AOI.
class AoiRegionRows : public RegionRows {
  public:
    AoiRegionRows(const CRasterAOI& aoi, const PixelWindow& window, const SampleGrid& grid)
        : m_aoi(aoi),
          m_window(window),
          m_grid(grid),
          m_columns(static_cast<std::size_t>(std::max(grid.width, 0))),
          m_inside(m_columns.size()) {
        for (std::size_t i = 0; i < m_columns.size(); ++i)
            m_columns[i] = TruncateToInt32(static_cast<double>(i) * grid.step + window.left);
    }

    void AppendSpans(int row, std::vector<ColumnSpan>& spans) override {
        const int y = TruncateToInt32(row * m_grid.step + m_window.top);
        m_aoi.Row(y, m_columns, m_inside, m_scratch);
        AppendMaskedSpans(m_inside, spans);
    }

  private:
    RasterAoiRows m_aoi;
    RasterAoiRows::Scratch m_scratch;
    PixelWindow m_window;
    SampleGrid m_grid;
    std::vector<double> m_columns; ///< whole numbers
    Mask m_inside;
};

std::vector<CDrawShape*> ShapesOf(const CAOISource& aoi) {
    std::vector<CDrawShape*> shapes;
    shapes.reserve(static_cast<std::size_t>(aoi.GetDrawShapeCount()));
    for (int i = 0; i < aoi.GetDrawShapeCount(); ++i)
        shapes.push_back(aoi.GetDrawShape(i));
    return shapes;
}

} // namespace

void RegionSpans::Find(RegionRows& region, int firstRow, int rows) {
    m_spans.clear();
    m_ends.clear();
    for (int row = firstRow; row < firstRow + rows; ++row) {
        region.AppendSpans(row, m_spans);
        m_ends.push_back(m_spans.size());
    }
}

std::unique_ptr<RegionRows> AllRows(int width) {
    return std::make_unique<AllRegionRows>(width);
}

std::unique_ptr<RegionRows> RowsOf(CRasterAOI& aoi, const PixelWindow& window,
                                   const SampleGrid& grid) {
    return std::make_unique<AoiRegionRows>(aoi, window, grid);
}

std::unique_ptr<RegionRows> RowsOf(std::span<CDrawShape* const> shapes, const CRasterSource& source,
                                   const PixelWindow& window, const SampleGrid& grid,
                                   double offset) {
    return std::make_unique<GroundRegionRows>(RowMembership(shapes), std::nullopt,
                                              GroundGrid(source, window, grid, offset), grid.width);
}

std::unique_ptr<RegionRows> RowsOf(CDrawShape& shape, const CRasterSource& source,
                                   const PixelWindow& window, const SampleGrid& grid) {
    CDrawShape* const shapes[] = {&shape};
    return RowsOf(shapes, source, window, grid, 0.0);
}

std::unique_ptr<RegionRows> RowsOf(CAOISource& aoi, const CRasterSource& source,
                                   const PixelWindow& window, const SampleGrid& grid) {
    const GroundGrid ground(source, window, grid, 0.0);
    RowMembership shapes(ShapesOf(aoi));
    // A point belongs to what the first shape that answers at all says, and a host's own shape
    // may say something other than inside.
    if (!shapes.KnowsAllShapes())
        return std::make_unique<AskedRegionRows>(aoi, ground, grid.width);
    return std::make_unique<GroundRegionRows>(std::move(shapes), aoi.GetExtent(), ground,
                                              grid.width);
}

} // namespace zelto
