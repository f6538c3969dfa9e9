#pragma once

#include "viewer/views/StatisticsPanel.h"
#include "viewer/worker/RegionWork.h"

namespace zelto::view {

/// One row per band and region, with a band's covariances in columns of their own.
StatisticsTable MakeRegionTable(const QString& image, const RegionAnswer& answer);

} // namespace zelto::view
