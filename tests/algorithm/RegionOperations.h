#pragma once

#include "zelto/algorithm/ImgSamplePixels.h"
#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/raster/RasterSource.h"

#include <functional>
#include <string>
#include <vector>

namespace zelto::test {

/// An operation on a raster that asks one area for everything: one of its shapes, its box, or
/// all of it.
struct RegionOperation {
    std::string name;
    /// Whether it was done.
    std::function<bool(CRasterSource*, CAOISource&)> run;
};

/// Room for the results of rasters of up to three bands.
struct RegionResults {
    __int64 count = 0;
    double min[3] = {}, max[3] = {}, mean[3] = {}, deviation[3] = {}, covariance[9] = {};
    double low = 0, high = 1e300;
    int histogram[256] = {};
    int* histograms[3] = {};
};

/// Every operation on rasters; those that answer false when they are done are asked with a
/// covariance, whose answer they then give.
inline std::vector<RegionOperation> RegionOperations() {
    using A = CRasterAlgorithm;
    std::vector<RegionOperation> operations;
    const auto add = [&](const std::string& name, auto run) {
        operations.push_back({name, [run](CRasterSource* source, CAOISource& area) {
                                  RegionResults r;
                                  CBoundingBox box = area.GetExtent();
                                  CRasterAOI rasterAoi(source, &area);
                                  return run(source, area, *area.GetDrawShape(0), rasterAoi, box,
                                             r);
                              }});
    };
    for (const bool approx : {false, true}) {
        const std::string kind = approx ? ", approximate" : "";
        add("AOI" + kind, [approx](auto* s, auto&, auto&, auto& aoi, auto&, auto& r) {
            return A::ComputeStaticsFromAOI(s, &aoi, r.count, r.min, r.max, r.mean, r.covariance,
                                            approx, nullptr);
        });
        add("whole raster" + kind, [approx](auto* s, auto&, auto&, auto&, auto&, auto& r) {
            return A::ComputeStaticsFromAOI(s, nullptr, r.count, r.min, r.max, r.mean, nullptr,
                                            approx, nullptr);
        });
        add("range of the whole raster" + kind,
            [approx](auto* s, auto&, auto&, auto&, auto&, auto& r) {
                return A::ComputeStaticsFromAOI(s, nullptr, r.count, r.min, r.max, nullptr, nullptr,
                                                approx, nullptr);
            });
        add("covariance of an AOI" + kind,
            [approx](auto* s, auto&, auto&, auto& aoi, auto&, auto& r) {
                return A::ComputeCovarianceFromAOI(s, &aoi, r.mean, r.covariance, approx, nullptr);
            });
        add("covariance of the whole raster" + kind, [approx](auto* s, auto&, auto&, auto&, auto&,
                                                              auto& r) {
            return A::ComputeCovarianceFromAOI(s, nullptr, r.mean, r.covariance, approx, nullptr);
        });
    }
    add("shape", [](auto* s, auto&, auto& shape, auto&, auto&, auto& r) {
        return A::ComputeStaticsFromDrawshape(s, &shape, r.count, r.min, r.max, r.mean,
                                              r.covariance, nullptr);
    });
    add("no shape", [](auto* s, auto&, auto&, auto&, auto&, auto& r) {
        return A::ComputeStaticsFromDrawshape(s, nullptr, r.count, r.min, r.max, r.mean, nullptr,
                                              nullptr);
    });
    add("covariance of a shape", [](auto* s, auto&, auto& shape, auto&, auto&, auto& r) {
        return A::ComputeCovarianceFromDrawshape(s, &shape, r.mean, r.covariance, nullptr);
    });
    add("area", [](auto* s, auto& area, auto&, auto&, auto&, auto& r) {
        return A::ComputeStaticsFromAOI2(s, &area, r.count, r.min, r.max, r.mean, r.deviation,
                                         false, nullptr);
    });
    add("area without zeros", [](auto* s, auto& area, auto&, auto&, auto&, auto& r) {
        return A::ComputeStaticsFromAOI2(s, &area, r.count, r.min, r.max, r.mean, r.deviation, true,
                                         nullptr);
    });
    add("box", [](auto* s, auto&, auto&, auto&, auto& box, auto& r) {
        return A::ComputeStaticsFromBox2(s, &box, r.count, r.min, r.max, r.mean, r.deviation,
                                         nullptr, nullptr, true, nullptr);
    });
    add("histograms", [](auto* s, auto&, auto&, auto&, auto& box, auto& r) {
        return A::ComputeHistogramFromBox(s, &box, r.histograms, r.min, r.max, r.mean, nullptr,
                                          nullptr, nullptr, nullptr, r.count, true, nullptr);
    });
    add("histogram", [](auto* s, auto&, auto&, auto&, auto& box, auto& r) {
        return A::ComputeBandHistogramFromBox(s, 0, &box, r.histogram, 256, r.min[0], r.max[0],
                                              r.mean[0], r.deviation[0], r.deviation[1], r.low,
                                              r.high, r.count, true, nullptr);
    });
    add("samples", [](auto* s, auto&, auto& shape, auto&, auto&, auto&) {
        CImgSamplePixels samples(1);
        return A::GetSamplePixelFromDrawShape(s, &shape, &samples);
    });
    return operations;
}

} // namespace zelto::test
