#pragma once

#include "zelto/raster/RasterSource.h"

#include "host/report/StatisticsReport.h"
#include "viewer/worker/Requests.h"

#include <QString>
#include <memory>
#include <string>
#include <vector>

namespace zelto::view {

/// Numbers wanted of an image.
struct RegionRequest {
    QString path;
    std::string reference; ///< system that the shapes are in; empty: the image's own
    Shapes shapes;         ///< empty: the whole image
    bool eachShape = false;
};

struct RegionAnswer {
    std::vector<host::RegionReport> reports; ///< of shapes told apart, numbered from 1, or one
    QString reason;                          ///< why there are none
};

/// Opens the image for numbers: on its own grid, or in the system of the shapes where that is
/// another one.
/// @return null with the reason
std::unique_ptr<CRasterSource> OpenForNumbers(const QString& path, const std::string& reference,
                                              QString& reason);

/// Statistics, percentiles and covariance. For the thread of long works.
RegionAnswer ComputeRegions(const RegionRequest& request, CDataProgress& progress);

} // namespace zelto::view
