#pragma once

#include "viewer/model/NumberTable.h"
#include "viewer/worker/HistogramWork.h"
#include "viewer/worker/RegionWork.h"

namespace zelto::view {

/// One row per band and region, with a band's covariances in columns of their own.
NumberTable MakeRegionTable(const QString& image, const RegionAnswer& answer);

/// One row per band and bucket.
NumberTable MakeHistogramTable(const QString& image,
                               const std::vector<RegionHistogram>& histograms);

} // namespace zelto::view
