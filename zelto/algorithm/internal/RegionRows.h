#pragma once

#include "zelto/algorithm/internal/RegionWindow.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

class CAOISource;
class CDrawShape;
class CRasterAOI;
class CRasterSource;

namespace zelto {

/// Columns begin … end − 1 of one row of a sample grid.
struct ColumnSpan {
    int begin = 0;
    int end = 0;

    bool operator==(const ColumnSpan&) const = default;
};

/// Which samples of a grid lie in a region, asked row by row. Every sample answers as the
/// region's own test of that one position does.
class RegionRows {
  public:
    virtual ~RegionRows() = default;
    /// Appends the spans of the row's samples that lie in the region, from left to right.
    virtual void AppendSpans(int row, std::vector<ColumnSpan>& spans) = 0;
};

/// The accepted samples of some rows, found once and visited for every band.
class RegionSpans {
  public:
    void Find(RegionRows& region, int firstRow, int rows);

    /// Calls visit(begin, count) for every span, in row order, with positions in a buffer of
    /// packed rows `width` wide that starts with the first row found.
    template <typename Visitor>
    void Visit(std::size_t width, Visitor visit) const {
        std::size_t k = 0;
        std::size_t rowStart = 0;
        for (const std::size_t end : m_ends) {
            for (; k < end; ++k) {
                const auto begin = static_cast<std::size_t>(m_spans[k].begin);
                visit(rowStart + begin, static_cast<std::size_t>(m_spans[k].end) - begin);
            }
            rowStart += width;
        }
    }

  private:
    std::vector<ColumnSpan> m_spans;
    std::vector<std::size_t> m_ends; ///< per row, the end of its spans
};

/// All samples of a grid `width` wide.
std::unique_ptr<RegionRows> AllRows(int width);

/// Pixels of a raster AOI: sample positions are truncated to whole pixels, which must lie in its
/// rectangle (all four sides included) and in one of its shapes.
std::unique_ptr<RegionRows> RowsOf(CRasterAOI& aoi, const PixelWindow& window,
                                   const SampleGrid& grid);

/// Ground points of sample positions in any of the shapes.
/// @param offset added to the column and the row of each position (in pixels) before it becomes
///        a ground point: half a step asks for the middle of what a sample stands for
std::unique_ptr<RegionRows> RowsOf(std::span<CDrawShape* const> shapes, const CRasterSource& source,
                                   const PixelWindow& window, const SampleGrid& grid,
                                   double offset);

/// Ground points of sample positions (not truncated) in a shape.
std::unique_ptr<RegionRows> RowsOf(CDrawShape& shape, const CRasterSource& source,
                                   const PixelWindow& window, const SampleGrid& grid);

/// Ground points of sample positions (not truncated) in an area of interest: where
/// CAOISource::TopoRelationWithPoint() answers TOPO_CONTAIN. An area that has a shape of a host's
/// own class is asked point by point.
std::unique_ptr<RegionRows> RowsOf(CAOISource& aoi, const CRasterSource& source,
                                   const PixelWindow& window, const SampleGrid& grid);

} // namespace zelto
