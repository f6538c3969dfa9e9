#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/internal/RankSearch.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionScan.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <span>
#include <vector>

namespace {

constexpr const wchar_t* PERCENTILES_TITLE = L"计算百分位数";
constexpr double NO_PERCENTILE = std::numeric_limits<double>::quiet_NaN();

/// The two sorted values around a percentile and how far it lies between them.
class Percentile {
  public:
    Percentile(double percent, std::int64_t count, double minimum, double maximum)
        : m_position(static_cast<double>(count - 1) * std::clamp(percent, 0.0, 100.0) / 100),
          m_below(static_cast<std::int64_t>(m_position), minimum, maximum),
          m_above(std::min(static_cast<std::int64_t>(m_position) + 1, count - 1), minimum,
                  maximum) {}

    std::array<zelto::RankSearch*, 2> Searches() { return {&m_below, &m_above}; }
    double Value() const {
        const double below = m_below.Value();
        return below + (m_above.Value() - below) * (m_position - std::floor(m_position));
    }

  private:
    double m_position;
    zelto::RankSearch m_below;
    zelto::RankSearch m_above;
};

/// The percentiles of one band; none for a band without values.
class BandPercentiles {
  public:
    BandPercentiles(const CRegionStatistics::Band& band, double low, double high)
        : m_count(band.count) {
        if (band.count < 1)
            return;
        for (const double percent : {low, high})
            m_percentiles.emplace_back(percent, band.count, band.minimum, band.maximum);
    }

    /// @return whether there is anything left to search
    bool BeginPass() {
        m_seen = 0;
        m_open.clear();
        for (Percentile& percentile : m_percentiles)
            for (zelto::RankSearch* search : percentile.Searches())
                if (!search->IsFound())
                    m_open.push_back(search);
        for (zelto::RankSearch* search : m_open)
            search->BeginPass();
        return !m_open.empty();
    }
    void Add(std::span<const double> values) {
        m_seen += std::ssize(values);
        for (zelto::RankSearch* search : m_open)
            search->Add(values);
    }
    /// @return false when the values were not those that have been counted
    bool EndPass() {
        return m_seen == m_count &&
               std::all_of(m_open.begin(), m_open.end(),
                           [](zelto::RankSearch* search) { return search->EndPass(); });
    }
    double Low() const { return m_percentiles.empty() ? NO_PERCENTILE : m_percentiles[0].Value(); }
    double High() const { return m_percentiles.empty() ? NO_PERCENTILE : m_percentiles[1].Value(); }

  private:
    std::int64_t m_count;    ///< of the band's values
    std::int64_t m_seen = 0; ///< in the present pass
    std::vector<Percentile> m_percentiles;
    std::vector<zelto::RankSearch*> m_open;
};

} // namespace

GISError CRegionStatistics::ComputePercentiles(double low, double high, CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        if (std::isnan(low) || std::isnan(high)) {
            zelto::Refuse(*m_source, "a percentage is not a number");
            return GIS_FAILED;
        }
        const zelto::RegionScan scan = MakeScan();
        std::vector<BandPercentiles> bands;
        for (const Band& band : m_bands)
            bands.emplace_back(band, low, high);
        const auto add = [&](std::size_t b, std::span<const double> values) {
            bands[b].Add(values);
        };
        const auto beginPass = [&] {
            // All bands, not the first one that has something left.
            return std::count_if(bands.begin(), bands.end(),
                                 [](BandPercentiles& band) { return band.BeginPass(); }) > 0;
        };
        const auto visitValues = [&] {
            if (m_values.empty())
                return scan.VisitValues(PERCENTILES_TITLE, progress, add);
            for (std::size_t b = 0; b < m_values.size(); ++b)
                add(b, m_values[b]);
            return true;
        };
        while (beginPass()) {
            if (!visitValues())
                return GIS_FAILED;
            if (!std::all_of(bands.begin(), bands.end(),
                             [](BandPercentiles& band) { return band.EndPass(); })) {
                zelto::Refuse(*m_source, "the region has other values than were counted");
                return GIS_FAILED;
            }
        }
        for (std::size_t b = 0; b < bands.size(); ++b) {
            m_bands[b].lowPercentile = bands[b].Low();
            m_bands[b].highPercentile = bands[b].High();
        }
        return GIS_SUCCESS;
    });
}
