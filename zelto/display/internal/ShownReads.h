#pragma once

#include "zelto/display/internal/WindowSamples.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace zelto {

/// The samples of the shown bands of a source, for drawing one band after the other: read together
/// where that suits, and else one by one when they are wanted.
class ShownReads {
  public:
    /// @param count of the shown bands, from the first
    ShownReads(const CRasterSource& source, int count, const ReadWindow& window)
        : m_window(window) {
        for (int k = 0; k < count; ++k) {
            const CRasterBand* band = source.GetShownBand(k);
            m_bands.push_back(band != nullptr ? band->GetGDALBand() : nullptr);
        }
    }

    /// @param k number of the shown band, each asked for once
    /// @return as WindowSamples::Read()
    std::optional<WindowSamples> Take(int k) {
        if (k == 0)
            m_together = WindowSamples::ReadTogether(m_bands, m_window);
        const auto band = static_cast<std::size_t>(k);
        if (m_together.empty())
            return WindowSamples::Read(m_bands[band], m_window);
        return std::move(m_together[band]);
    }

  private:
    ReadWindow m_window;
    std::vector<GDALRasterBand*> m_bands;
    std::vector<WindowSamples> m_together;
};

} // namespace zelto
