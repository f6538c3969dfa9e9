#pragma once

#include "zelto/display/internal/ViewWindow.h"

#include <array>
#include <cstddef>
#include <vector>

namespace zelto {

/// Where on the ground the pixels of an output image lie and how ground maps to source pixels.
struct OutputGrid {
    double left = 0.0; ///< ground position of the output's top-left corner
    double top = 0.0;
    double pixelWidth = 0.0; ///< ground size of one output pixel
    double pixelHeight = 0.0;
    double anchor = 0.0; ///< point of a pixel that is looked up: 0 its corner, 0.5 its centre
    int width = 0;       ///< output columns
    std::array<double, 6> inverseGeoTransform{};

    double GroundX(int column) const { return (column + anchor) * pixelWidth + left; }
    double GroundY(int row) const { return top - (row + anchor) * pixelHeight; }
    double SourceColumn(double x, double y) const {
        return inverseGeoTransform[0] + x * inverseGeoTransform[1] + y * inverseGeoTransform[2];
    }
    double SourceRow(double x, double y) const {
        return inverseGeoTransform[3] + x * inverseGeoTransform[4] + y * inverseGeoTransform[5];
    }
    /// Whether the source column depends on the output column alone and the row on the row.
    bool IsAxisParallel() const {
        return inverseGeoTransform[2] == 0.0 && inverseGeoTransform[4] == 0.0;
    }
};

/// The sample of a read window that each output pixel shows: the nearest lookup of
/// CRasterBand::GetNearestValueAt(), answer for answer, with what does not change from pixel to
/// pixel computed once. Const after construction, for use by several threads.
class SamplePositions {
  public:
    static constexpr std::ptrdiff_t outside = -1;
    /// Longest run of columns that RunOf() answers at once.
    static constexpr int chunk = 1024;
    using Scratch = std::array<std::ptrdiff_t, chunk>;

    /// Samples of consecutive output pixels of a row: pixel i shows sample base + offsets[i] of
    /// the window, or none where either is `outside`.
    struct Run {
        std::ptrdiff_t base = outside;
        const std::ptrdiff_t* offsets = nullptr;
        int count = 0;
        bool isInside = false;      ///< whether certainly none of the offsets is `outside`
        bool isConsecutive = false; ///< whether each is besides one more than the one before
    };

    /// @param bandWidth,bandHeight positions beyond them are outside whatever the window holds
    SamplePositions(const OutputGrid& output, const ReadWindow& window, int bandWidth,
                    int bandHeight);

    /// The samples of output pixels firstColumn … firstColumn + count − 1 of a row.
    /// @param count at most `chunk`
    /// @param scratch must live as long as the result is used
    Run RunOf(int row, int firstColumn, int count, Scratch& scratch) const;

    /// Whether each output row shows one line of the window, its samples in the same columns.
    bool IsAxisParallel() const { return m_output.IsAxisParallel(); }
    /// First sample of the line that an output row shows, or `outside`; on such grids.
    std::ptrdiff_t LineOf(int row) const;
    /// Samples of a line.
    int LineLength() const { return m_columnAxis.bufferSize; }

  private:
    /// The lookup along one axis.
    struct Axis {
        int bandSize;
        int offset;
        int size;
        int bufferSize;

        std::ptrdiff_t Index(double position) const;
    };

    OutputGrid m_output;
    Axis m_columnAxis;
    Axis m_rowAxis;
    std::vector<std::ptrdiff_t> m_columns; ///< of every output column; empty on rotated grids
    int m_insideBegin = 0;                 ///< the columns from here on to the end show samples
    int m_insideEnd = 0;
    int m_consecutiveEnd = 0; ///< from m_insideBegin on to the end they show neighbours
};

} // namespace zelto
