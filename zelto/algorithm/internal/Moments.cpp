#include "zelto/algorithm/internal/Moments.h"

#include "zelto/algorithm/internal/SampleReader.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/VirtualBand.h"

#include <array>
#include <limits>

namespace zelto {

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
/// Whole numbers up to here are doubles without gaps.
constexpr double LARGEST_WHOLE = 9007199254740992.0;

/// Four moments side by side, so that additions need not wait for each other. Samples are
/// whole numbers; `counts` are too.
struct Lanes {
    static constexpr std::size_t WIDTH = 4;

    std::array<double, WIDTH> sums{};
    std::array<double, WIDTH> counts{};
    std::array<double, WIDTH> minima;
    std::array<double, WIDTH> maxima;

    Lanes() {
        minima.fill(INFINITE);
        maxima.fill(-INFINITE);
    }

    void AddAll(const double* samples) {
        for (std::size_t k = 0; k < WIDTH; ++k) {
            sums[k] += samples[k];
            minima[k] = samples[k] < minima[k] ? samples[k] : minima[k];
            maxima[k] = samples[k] > maxima[k] ? samples[k] : maxima[k];
        }
    }

    void AddValid(const double* samples, double noData) {
        for (std::size_t k = 0; k < WIDTH; ++k) {
            const bool valid = !(std::fabs(samples[k] - noData) < 1e-8);
            sums[k] += valid ? samples[k] : 0.0;
            counts[k] += valid ? 1.0 : 0.0;
            const double low = valid ? samples[k] : INFINITE;
            const double high = valid ? samples[k] : -INFINITE;
            minima[k] = low < minima[k] ? low : minima[k];
            maxima[k] = high > maxima[k] ? high : maxima[k];
        }
    }

    void AddTo(Moments& moments, std::int64_t count) const {
        if (count == 0)
            return;
        if (moments.count == 0) {
            moments.minimum = INFINITE;
            moments.maximum = -INFINITE;
        }
        for (std::size_t k = 0; k < WIDTH; ++k) {
            moments.sum += sums[k];
            moments.minimum = minima[k] < moments.minimum ? minima[k] : moments.minimum;
            moments.maximum = maxima[k] > moments.maximum ? maxima[k] : moments.maximum;
        }
        moments.count += count;
    }

    std::int64_t ValidCount() const {
        double count = 0.0;
        for (const double laneCount : counts)
            count += laneCount;
        return static_cast<std::int64_t>(count);
    }
};

void AddInOrder(Moments& moments, std::span<const double> samples, const NoDataRule& noData) {
    for (const double sample : samples)
        if (!noData.Holds(sample))
            moments.Add(sample);
}

void AddSideBySide(Moments& moments, std::span<const double> samples, const NoDataRule& noData) {
    Lanes lanes;
    const std::size_t whole = samples.size() - samples.size() % Lanes::WIDTH;
    if (noData.exists) {
        for (std::size_t i = 0; i < whole; i += Lanes::WIDTH)
            lanes.AddValid(samples.data() + i, noData.value);
        lanes.AddTo(moments, lanes.ValidCount());
    } else {
        for (std::size_t i = 0; i < whole; i += Lanes::WIDTH)
            lanes.AddAll(samples.data() + i);
        lanes.AddTo(moments, static_cast<std::int64_t>(whole));
    }
    AddInOrder(moments, samples.subspan(whole), noData);
}

} // namespace

NoDataRule NoDataRule::Of(const CRasterBand& band) {
    return {band.IsHaveNoData(), band.GetNoDataValue()};
}

bool HasSmallWholeNumbers(const CRasterBand& band) {
    const PixelDataType type = band.GetDataType();
    const bool small = type == PDT_Byte || type == PDT_UInt16 || type == PDT_Int16;
    return small && !IsVirtual(band.GetGDALBand());
}

MomentsAdder::MomentsAdder(const CRasterBand& band)
    : m_noData(NoDataRule::Of(band)), m_wholeNumbers(HasSmallWholeNumbers(band)) {}

void MomentsAdder::Add(Moments& moments, std::span<const double> samples) const {
    if (m_wholeNumbers)
        AddSideBySide(moments, samples, m_noData);
    else
        AddInOrder(moments, samples, m_noData);
}

void MomentsAdder::AddRepeated(Moments& moments, double sample, std::int64_t times) const {
    if (times < 1 || m_noData.Holds(sample))
        return;
    moments.Add(sample);
    --times;
    const double total = sample * static_cast<double>(times);
    const bool exact = m_wholeNumbers && std::fabs(moments.sum) + std::fabs(total) < LARGEST_WHOLE;
    if (exact)
        moments.sum += total;
    else
        for (std::int64_t i = 0; i < times; ++i)
            moments.sum += sample;
    moments.count += times;
}

} // namespace zelto
