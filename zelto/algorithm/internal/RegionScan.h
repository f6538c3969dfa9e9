#pragma once

#include "zelto/algorithm/internal/RegionRows.h"
#include "zelto/algorithm/internal/SampleReader.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

class CDataProgress;

namespace zelto {

/// Rows first … first + count − 1 of a raster.
struct RowLimits {
    int first = 0;
    int count = 0;
};

/// Reads the pixels of a region, strip by strip and as often as asked, with progress.
class RegionScan {
  public:
    /// @param bands counted from 0, valid ones
    /// @param shapes the region; nothing: the whole raster
    /// @param mostSamples of a band, beyond which a regular sample is read; nothing: every pixel
    /// @param rows what lies in other rows is left out; nothing: no row is
    RegionScan(const CRasterSource& source, const std::vector<int>& bands,
               std::optional<std::span<CDrawShape* const>> shapes,
               std::optional<std::int64_t> mostSamples,
               std::optional<RowLimits> rows = std::nullopt);

    const std::vector<CRasterBand*>& Bands() const { return m_bands; }
    bool IsEmpty() const { return m_window.width < 1 || m_window.height < 1; }
    bool IsSampled() const { return m_grid.step != 1.0; }
    std::size_t Width() const { return static_cast<std::size_t>(m_grid.width); }

    /// Calls visit(samples per band, accepted spans) for every strip.
    /// @return false when a band cannot be read, without memory, or when cancelled
    using StripVisit =
        std::function<void(std::span<const double*> samples, const RegionSpans& spans)>;
    bool Visit(const wchar_t* title, CDataProgress* progress, const StripVisit& visit) const;

    /// Calls visit(position of the band, its values that count) for every accepted span.
    /// @param visitStrip called for every strip besides, may be empty
    using ValuesVisit = std::function<void(std::size_t band, std::span<const double> values)>;
    bool VisitValues(const wchar_t* title, CDataProgress* progress, const ValuesVisit& visit,
                     const StripVisit& visitStrip = {}) const;

    /// Sets the region's pixels in `inside` to 1, without reading any.
    /// @param inside the raster's rows from `firstRow` on, full rows from left to right
    void Mark(int firstRow, std::span<unsigned char> inside) const;

  private:
    void LimitRows(const RowLimits& rows);
    std::unique_ptr<RegionRows> MakeRows() const;

    const CRasterSource* m_source;
    std::vector<CRasterBand*> m_bands;
    std::optional<std::vector<CDrawShape*>> m_shapes;
    PixelWindow m_window;
    SampleGrid m_grid;
    int m_maximumRows = 1;
};

} // namespace zelto
