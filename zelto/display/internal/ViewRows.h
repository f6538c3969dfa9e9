#pragma once

#include "zelto/display/internal/SampleLookup.h"
#include "zelto/display/internal/ViewMask.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace zelto {

/// The buffers that a drawing writes, all with rows of the same length. A row that shows the
/// same as the one above it is copied from there instead of drawn.
struct RowBuffers {
    std::span<unsigned char* const> buffers; ///< none: every row is drawn
    std::size_t bytesPerRow = 0;
    /// One mark per row where several drawings go into the same buffers: whether the row has
    /// been the same as the one above it so far. Null: this drawing is the only one.
    unsigned char* sameAsAbove = nullptr;

    /// Makes a row equal to the one above it.
    void RepeatRow(int row) const {
        for (unsigned char* buffer : buffers) {
            unsigned char* line = buffer + static_cast<std::size_t>(row) * bytesPerRow;
            std::memcpy(line, line - bytesPerRow, bytesPerRow);
        }
    }

    /// Whether a row may be repeated, given that this drawing writes the same into both.
    bool MayRepeat(int row, bool isSame) const {
        if (buffers.empty())
            return false;
        if (sameAsAbove == nullptr)
            return isSame;
        sameAsAbove[row] = isSame && sameAsAbove[row] != 0 ? 1 : 0;
        return sameAsAbove[row] != 0;
    }
};

/// What a view of w × h output pixels shows of a band.
template <typename Entry>
struct BandView {
    int w;
    int h;
    const SamplePositions& positions;
    const SampleLookup<Entry>& lookup;
    const ViewMask& mask;
};

template <typename Entry>
BandView(int, int, const SamplePositions&, const SampleLookup<Entry>&, const ViewMask&)
    -> BandView<Entry>;

/// Whether an output row certainly shows the same as the one above it, as most do in an enlarged
/// view: it shows the same line of samples, or GDAL enlarged the view and repeated the line.
template <typename Entry>
bool ShowsSameAsRowAbove(const BandView<Entry>& view, int row) {
    if (view.mask.IsActive() || !view.positions.IsAxisParallel())
        return false;
    const std::ptrdiff_t above = view.positions.LineOf(row - 1);
    const std::ptrdiff_t line = view.positions.LineOf(row);
    if (above == line)
        return true;
    return above != SamplePositions::outside && line != SamplePositions::outside &&
           view.lookup.AreSame(above, line, view.positions.LineLength());
}

/// Calls `use(pixel, count, entries)` for the runs of output pixels that make up a row.
template <typename Entry, typename Use>
void VisitRow(const BandView<Entry>& view, int row, const Use& use) {
    SamplePositions::Scratch scratch;
    std::array<Entry, SamplePositions::chunk> entries;
    for (int column = 0; column < view.w; column += SamplePositions::chunk) {
        const int count = std::min(SamplePositions::chunk, view.w - column);
        view.lookup.Get(view.positions.RunOf(row, column, count, scratch), entries.data());
        view.mask.Apply(row, column, count, entries.data(), view.lookup.Missing());
        use(static_cast<std::size_t>(row) * static_cast<std::size_t>(view.w) +
                static_cast<std::size_t>(column),
            count, entries.data());
    }
}

/// Draws a row, `rowBefore` being the one that this thread has drawn just now: calls `draw(row)`
/// unless `isSame(row)` says that it shows the same as the row above.
template <typename IsSame, typename Draw>
void DrawOrRepeat(int row, int rowBefore, const RowBuffers& written, const IsSame& isSame,
                  const Draw& draw) {
    // A thread's first row is drawn: the one above may not be finished.
    const bool isBelow = row > 0 && rowBefore == row - 1;
    if (written.MayRepeat(row, isBelow && isSame(row)))
        written.RepeatRow(row);
    else
        draw(row);
}

/// Calls `draw(row)` for the rows of an image of w × h output pixels, divided evenly among the
/// threads, but for those that `isSame(row)` says show the same as the row above.
template <typename IsSame, typename Draw>
void ForEachRow(int w, int h, const RowBuffers& written, const IsSame& isSame, const Draw& draw) {
    // Starting threads costs more than a thumbnail.
    const bool isLarge = static_cast<std::int64_t>(w) * h >= 128 * 128;
#pragma omp parallel if (isLarge)
    {
        int rowBefore = -1; // drawn by this thread just now
#pragma omp for schedule(static)
        for (int row = 0; row < h; ++row) {
            DrawOrRepeat(row, rowBefore, written, isSame, draw);
            rowBefore = row;
        }
    }
}

/// Calls `draw(pixel, count, entries)` for runs of output pixels that together make up the whole
/// image: `pixel` is the index of the run's first one. Each row is one thread's own.
template <typename Entry, typename Draw>
void DrawRows(const BandView<Entry>& view, const RowBuffers& written, const Draw& draw) {
    ForEachRow(
        view.w, view.h, written, [&](int row) { return ShowsSameAsRowAbove(view, row); },
        [&](int row) { VisitRow(view, row, draw); });
}

} // namespace zelto
