#pragma once

#include "host/report/BandHistogram.h"
#include "viewer/worker/RegionWork.h"

namespace zelto::view {

/// How often the values of a band occur in a region.
struct RegionHistogram {
    int band = 0;                  ///< counted from 0
    host::BandHistogram histogram; ///< without buckets where the region holds no value of the band
};

struct RegionHistograms {
    std::vector<RegionHistogram> bands;
    QString reason; ///< why there are none
};

/// Counts every pixel of the request's shapes, taken together. For the thread of long works, which
/// tells what is thrown.
RegionHistograms CountRegion(const RegionRequest& request, CDataProgress& progress);

} // namespace zelto::view
