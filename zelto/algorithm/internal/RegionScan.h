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

/// Reads the pixels of a region, strip by strip and as often as asked, with progress.
class RegionScan {
  public:
    /// @param bands counted from 0, valid ones
    /// @param shapes the region; nothing: the whole raster
    /// @param mostSamples of a band, beyond which a regular sample is read; nothing: every pixel
    RegionScan(const CRasterSource& source, const std::vector<int>& bands,
               std::optional<std::span<CDrawShape* const>> shapes,
               std::optional<std::int64_t> mostSamples);

    const std::vector<CRasterBand*>& Bands() const { return m_bands; }
    bool IsEmpty() const { return m_window.width < 1 || m_window.height < 1; }
    bool IsSampled() const { return m_grid.step != 1.0; }
    std::size_t Width() const { return static_cast<std::size_t>(m_grid.width); }

    /// Calls visit(samples per band, accepted spans) for every strip.
    /// @return false when a band cannot be read, without memory, or when cancelled
    bool Visit(const wchar_t* title, CDataProgress* progress,
               const std::function<void(std::span<const double*> samples,
                                        const RegionSpans& spans)>& visit) const;

    /// Calls visit(position of the band, its values that count) for every accepted span.
    bool VisitValues(
        const wchar_t* title, CDataProgress* progress,
        const std::function<void(std::size_t band, std::span<const double> values)>& visit) const;

  private:
    std::unique_ptr<RegionRows> MakeRows() const;

    const CRasterSource* m_source;
    std::vector<CRasterBand*> m_bands;
    std::optional<std::vector<CDrawShape*>> m_shapes;
    PixelWindow m_window;
    SampleGrid m_grid;
    int m_maximumRows = 1;
};

} // namespace zelto
