#pragma once

#include <cstddef>
#include <vector>

namespace zelto {

/// Columns begin … end − 1 of a row, of which a zone covers the same share each.
struct ZoneSpan {
    int begin = 0;
    int end = 0;
    double weight = 0.0;
};

/// A position in pixels: columns to the right, rows downwards, whole numbers at pixel corners.
struct PixelPoint {
    double column = 0.0;
    double row = 0.0;
};

/// The sides of a zone's polygons on a grid of pixels, and what rows of the grid have of them.
/// The rings of valid polygons cut the plane into inside and outside; every side knows by its
/// direction on which side of it the inside lies.
class ZoneOutline {
  public:
    /// Adds a ring.
    /// @param points closed or not, finite
    /// @param isHole whether the zone lies outside of it
    void AddRing(const std::vector<PixelPoint>& points, bool isHole);
    /// To be called once all rings have been added.
    /// @param width,height size of the raster; what lies beside it is left out
    void Finish(int width, int height);

    /// First row and column of the raster that the zone meets, and the ones after the last; no row
    /// where it meets none.
    int FirstRow() const { return m_firstRow; }
    int EndRow() const { return m_endRow; }
    int FirstColumn() const { return m_firstColumn; }
    int EndColumn() const { return m_endColumn; }

    /// Begins a visit of rows, which then come in ascending order.
    void Rewind();
    /// Sets the spans of pixels whose centres lie inside, from left to right.
    void FindCenters(int row, std::vector<ZoneSpan>& spans);
    /// Sets the spans of pixels that the zone covers in part or whole.
    void FindCoverage(int row, std::vector<ZoneSpan>& spans);

  private:
    /// A side that is not level, from its upper to its lower end.
    struct Side {
        PixelPoint top;
        PixelPoint bottom;
        /// 1 where the inside lies to the right of it, −1 where to the left.
        double direction = 0.0;

        double ColumnAt(double row) const;
    };

    /// What sides do to the pixels of one row: `cover` is the height that lies beside them, with
    /// the direction, for all pixels to the right; `area` what of it lies in the pixel itself.
    struct Cell {
        int column = 0;
        double cover = 0.0;
        double area = 0.0;
    };

    void Activate(int row);
    void AddSide(PixelPoint from, PixelPoint to, bool isReversed);
    void CutSide(const Side& side, int row);
    void AddPiece(double from, double to, double height, double direction);

    std::vector<Side> m_sides; ///< by their upper ends
    std::size_t m_next = 0;
    std::vector<std::size_t> m_active;
    std::vector<Cell> m_cells;
    std::vector<double> m_crossings;
    int m_width = 0;
    int m_firstRow = 0;
    int m_endRow = 0;
    int m_firstColumn = 0;
    int m_endColumn = 0;
};

} // namespace zelto
