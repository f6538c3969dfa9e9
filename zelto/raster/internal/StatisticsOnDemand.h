#pragma once

#include "zelto/raster/internal/BandSampling.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace zelto {

/// The statistics of the bands of one data set, taken when something first asks for those of a
/// band. What the outcome depends on is remembered when a band is added, so that it is the same
/// whenever that happens. Bands whose samples a file stores together are sampled together.
/// Several threads may ask at once: one reads, the others wait.
class StatisticsOnDemand {
  public:
    enum class Kind {
        Sampled, ///< as SampleBand() finds them; the range of the type for an unreadable band
        Range    ///< GDAL's approximate minimum and maximum only
    };

    /// @param band not owned; must outlive every call of Of()
    /// @return the number by which Of() knows the band
    std::size_t Add(GDALRasterBand& band, Kind kind);

    BandSummary Of(std::size_t number);
    /// Takes those of every band, before something changes what they would be.
    void TakeAll();

  private:
    struct Member {
        GDALRasterBand* band;
        Kind kind;
        std::optional<double> noData;
        std::optional<BandSummary> found;
    };

    void Take(Member& member);
    void TakeJointly(const Member& wanted);
    /// The bands that are sampled together with the wanted one, and it; empty when it is sampled
    /// alone.
    std::vector<Member*> MembersOfOnePass(const Member& wanted);

    std::mutex m_reading;
    std::vector<Member> m_members;
};

/// Where a band's statistics come from for as long as nothing has asked for them.
struct PendingStatistics {
    std::shared_ptr<StatisticsOnDemand> source;
    std::size_t number = 0;
    std::mutex storing;
    std::atomic<bool> stored{false};
};

/// A band's own statistics while others stand in their place; nothing where they were not taken
/// yet, and are taken when they are wanted back.
struct OwnStatistics {
    std::optional<BandSummary> found;
};

/// GDAL's approximate range of a band; 0 … 0 when there is none.
BandSummary ApproximateRange(GDALRasterBand& band);

/// Samples a band as a source keeps it: when it cannot be read, minimum and maximum are those of
/// its type.
BandSummary SampledOrTypeRange(GDALRasterBand& band, const double* noData);

} // namespace zelto
