#pragma once

#include "zelto/display/StretchPreparation.h"
#include "zelto/raster/internal/BandSampling.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

/// The engine's type behind the name of a stretch, which it must be.
StretchType TypeOfStretch(const std::string& name);

/// Counts of a band's values in equal buckets of a range.
struct BucketCounts {
    CStretchPreparation::Range range;
    std::array<int, 256> counts{};
};

/// What a stretch will set on a band.
struct BandPlan {
    int index = 0;
    CRasterBand* band = nullptr;
    std::optional<BandSummary> statistics; ///< in place of the band's own
    __int64 count = 0;                     ///< of the values they were found from
    std::optional<BucketCounts> histogram; ///< in place of one of the whole band
    double gamma = 1.0;
};

/// All values that 8-bit bands have, and pictures.
inline constexpr CStretchPreparation::Range BYTE_RANGE = {0.0, 255.0};

bool IsByteBand(const CRasterBand& band);

/// Whether the picture has its colours from a table that no stretch changes.
bool HasColorsOfItsOwn(const CRasterSource& source);

/// Whether a stretch goes by a histogram.
bool IsHistogramType(StretchType type);

/// The bounds of a histogram where they are not given.
CStretchPreparation::Range BoundsOfHistogram(const BandPlan& plan, std::optional<double> low,
                                             std::optional<double> high);

} // namespace zelto

/// A stretch with all that is found before anything is set.
struct CStretchPreparation::Plan {
    std::string name; ///< never `auto`
    StretchType type = StretchLinear;
    std::vector<zelto::BandPlan> bands;
    bool isPercent = false;
    bool isSampled = false;
};
