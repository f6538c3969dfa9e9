#pragma once

#include "tests/support/RasterFile.h"

#include <gdal_priv.h>

#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// @file
/// The statistics of regions, written as plainly as they are defined: a loop over all samples of
/// one read, with every rule as an if.

namespace zelto::test {

constexpr double SMALLEST_POSITIVE = 2.2250738585072014e-308;

struct PlainStatistics {
    std::vector<long long> count;
    std::vector<double> minimum, maximum, mean, deviation;
    std::vector<double> covariance;
};

/// Samples of a window read by GDAL alone; empty when it cannot be read.
inline std::vector<double> ReadPlain(const std::string& path, int band, int left, int top, int w,
                                     int h, int bufW, int bufH, bool asFloat) {
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    if (!dataset || w < 1 || h < 1 || bufW < 1 || bufH < 1)
        return {};
    std::vector<double> samples(static_cast<std::size_t>(bufW) * bufH);
    std::vector<float> floats(asFloat ? samples.size() : 0);
    void* buffer = asFloat ? static_cast<void*>(floats.data()) : samples.data();
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    if (dataset->GetRasterBand(band)->RasterIO(GF_Read, left, top, w, h, buffer, bufW, bufH,
                                               asFloat ? GDT_Float32 : GDT_Float64, 0, 0,
                                               nullptr) != CE_None)
        return {};
    if (asFloat)
        samples.assign(floats.begin(), floats.end());
    return samples;
}

inline bool IsPlainNoData(const std::optional<double>& noData, double v) {
    return noData && std::fabs(v - *noData) < 1e-8;
}

/// Range, mean and count of each band over the samples whose grid position `inside` accepts;
/// `bands` holds one vector of width × height samples per band, empty for an unreadable one.
inline PlainStatistics PlainMoments(const std::vector<std::vector<double>>& bands, int width,
                                    int height, const std::optional<double>& noData,
                                    const std::function<bool(int, int)>& inside) {
    PlainStatistics result;
    double minimum = 0, maximum = 0;
    for (const auto& samples : bands) {
        long long count = 0;
        double sum = 0;
        for (int j = 0; !samples.empty() && j < height; ++j) {
            for (int i = 0; i < width; ++i) {
                const double v = samples[static_cast<std::size_t>(j) * width + i];
                if (IsPlainNoData(noData, v) || !inside(i, j))
                    continue;
                if (count == 0) {
                    minimum = v;
                    maximum = v;
                } else {
                    if (v < minimum)
                        minimum = v;
                    if (v > maximum)
                        maximum = v;
                }
                sum += v;
                ++count;
            }
        }
        result.count.push_back(count);
        result.mean.push_back(count > 0 ? sum / static_cast<double>(count) : -999);
        result.minimum.push_back(minimum);
        result.maximum.push_back(maximum);
    }
    return result;
}

/// Covariances around `mean` of the samples that are inside and data in every band.
inline std::vector<double> PlainCovariance(const std::vector<std::vector<double>>& bands, int width,
                                           int height, const std::optional<double>& noData,
                                           const std::vector<double>& mean,
                                           const std::function<bool(int, int)>& inside) {
    const std::size_t n = bands.size();
    std::vector<double> result(n * n, 0.0);
    double count = 0;
    for (int j = 0; j < height; ++j) {
        for (int i = 0; i < width; ++i) {
            const std::size_t p = static_cast<std::size_t>(j) * width + i;
            bool accepted = inside(i, j);
            for (const auto& samples : bands)
                accepted = accepted && !IsPlainNoData(noData, samples[p]);
            if (!accepted)
                continue;
            ++count;
            for (std::size_t a = 0; a < n; ++a)
                for (std::size_t b = 0; b < n; ++b)
                    result[a * n + b] += (bands[a][p] - mean[a]) * (bands[b][p] - mean[b]);
        }
    }
    for (double& entry : result)
        entry = count > 0 ? entry / count : 0.0;
    return result;
}

} // namespace zelto::test
