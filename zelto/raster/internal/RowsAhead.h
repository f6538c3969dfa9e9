#pragma once

#include "zelto/raster/internal/ThreadedReader.h"

#include <array>
#include <cstddef>
#include <future>
#include <memory>
#include <vector>

namespace zelto {

/// The rows of a window from top to bottom, in the bands' own type. Batches of them are decoded on
/// several threads, the next one while the caller works on the ones before.
class RowsAhead {
  public:
    /// @param window stored pixels, inside the bands
    /// @param mostRows that the caller takes at once
    /// @return null for small windows and where there is no ThreadedReader
    static std::unique_ptr<RowsAhead> Of(const std::vector<GDALRasterBand*>& bands,
                                         const PixelBox& window, int mostRows);

    /// Waits for rows of the window, and lets the batch after them begin.
    /// @param firstRow where the rows before have ended, 0 at first
    /// @return false when they cannot be read
    bool Prepare(int firstRow, int rows);
    /// Copies the rows that were prepared last, as doubles and packed.
    /// @param band position among the bands
    void Copy(std::size_t band, int firstRow, int rows, double* samples) const;

  private:
    struct Batch {
        PixelBox box;
        std::vector<std::byte> samples;

        int End() const { return box.top + box.height; }
    };

    RowsAhead(std::unique_ptr<ThreadedReader> reader, const PixelBox& window, int batchRows);

    /// The batch that a row of the image stands in.
    PixelBox BatchOf(int imageRow) const;
    /// Begins to read a batch into m_next.
    void Begin(int imageRow);
    /// Makes the batch that was begun the last of those at hand.
    bool Finish();
    /// Copies what a batch holds of the rows, which may be nothing.
    void CopyFrom(const Batch& batch, std::size_t band, int firstRow, int rows,
                  double* samples) const;

    std::unique_ptr<ThreadedReader> m_reader;
    PixelBox m_window;
    int m_batchRows; ///< at least as many as are taken at once, which so stand in two batches
    std::array<Batch, 2> m_atHand;
    Batch m_next;
    std::future<bool> m_reading; ///< of m_next; waits when it is destroyed, before what it uses is
};

} // namespace zelto
