#include "zelto/raster/internal/SampleStatistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

using zelto::SampleStatistics;

namespace {

struct Result {
    double min = -1.0;
    double max = -2.0;
    double mean = -3.0;
    double deviation = -4.0;
};

template <typename Sample>
Result Compute(const std::vector<Sample>& samples, const double* noData = nullptr,
               const double* excluded = nullptr) {
    SampleStatistics statistics(noData, excluded);
    statistics.Add(samples.data(), samples.size());
    Result r;
    statistics.Report(r.min, r.max, r.mean, r.deviation);
    return r;
}

/// One by one, as doubles.
template <typename Sample>
Result Plain(const std::vector<Sample>& samples, const double* noData, const double* excluded) {
    Result r;
    double count = 0.0;
    double sum = 0.0;
    double squares = 0.0;
    for (const Sample sample : samples) {
        const double v = sample;
        if (noData != nullptr && std::fabs(v - *noData) < 1e-8)
            continue;
        if (excluded != nullptr && std::fabs(v - *excluded) < 1e-8)
            continue;
        if (count == 0.0 || v < r.min)
            r.min = v;
        if (count == 0.0 || v > r.max)
            r.max = v;
        count += 1.0;
        sum += v;
        squares += v * v;
    }
    if (count == 0.0)
        return {};
    r.mean = sum / count;
    const double variance = squares / count - r.mean * r.mean;
    r.deviation = variance < 0.0 ? 0.0 : std::sqrt(variance);
    return r;
}

void ExpectSame(const Result& a, const Result& b) {
    EXPECT_EQ(a.min, b.min);
    EXPECT_EQ(a.max, b.max);
    EXPECT_EQ(a.mean, b.mean);
    EXPECT_EQ(a.deviation, b.deviation);
}

template <typename Sample>
class SampleStatisticsOf : public testing::Test {};
using SampleTypes = testing::Types<std::uint8_t, std::uint16_t, std::int16_t, std::uint32_t,
                                   std::int32_t, float, double>;
TYPED_TEST_SUITE(SampleStatisticsOf, SampleTypes);

} // namespace

TYPED_TEST(SampleStatisticsOf, AgreesWithOneByOneOnRandomSamples) {
    std::mt19937_64 random(99);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 99, round " << round);
        const double low =
            std::max(-3000.0, static_cast<double>(std::numeric_limits<TypeParam>::lowest()));
        const double high =
            std::min(60000.0, static_cast<double>(std::numeric_limits<TypeParam>::max()));
        std::uniform_real_distribution<double> value(low, round % 3 == 0 ? low + 5 : high);
        // Some are longer than what is added up at a time.
        std::vector<TypeParam> samples(random() % (round % 10 == 0 ? 50000 : 3000));
        for (TypeParam& sample : samples)
            sample = static_cast<TypeParam>(value(random));
        const double noData = std::floor(low) + 2.0;
        const double excluded = std::floor(low) + 3.0 + 5e-9;
        const double* leftOut[] = {nullptr, round % 2 == 0 ? &noData : nullptr};
        ExpectSame(Compute(samples, leftOut[1]), Plain(samples, leftOut[1], nullptr));
        ExpectSame(Compute(samples, leftOut[1], &excluded), Plain(samples, leftOut[1], &excluded));
    }
}

TEST(SampleStatistics, SquaresBeyondTheExactRangeAreAddedInOrder) {
    // 2^22 squares of nearly 2^32 exceed 2^53: the rounding of each step counts.
    std::vector<std::uint16_t> samples(std::size_t{1} << 22);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::uint16_t>(65535 - i % 7);
    ExpectSame(Compute(samples), Plain(samples, nullptr, nullptr));
}

TEST(SampleStatistics, TheLargestMagnitudesDoNotOverflow) {
    const std::vector<std::int16_t> samples(1000, -32768);
    const Result r = Compute(samples);
    EXPECT_EQ(r.mean, -32768.0);
    EXPECT_EQ(r.deviation, 0.0);
    ExpectSame(Compute(std::vector<std::uint16_t>{65535, 0}), {0.0, 65535.0, 32767.5, 32767.5});
}

TEST(SampleStatistics, ManyLargestMagnitudesDoNotOverflow) {
    constexpr std::size_t COUNT = 50001;
    ExpectSame(Compute(std::vector<std::uint8_t>(COUNT, 255)), {255.0, 255.0, 255.0, 0.0});
    ExpectSame(Compute(std::vector<std::uint16_t>(COUNT, 65535)), {65535.0, 65535.0, 65535.0, 0.0});
    ExpectSame(Compute(std::vector<std::int16_t>(COUNT, -32768)),
               {-32768.0, -32768.0, -32768.0, 0.0});
}

TEST(SampleStatistics, WithoutSamplesNothingIsReported) {
    ExpectSame(Compute(std::vector<std::uint8_t>{}), {});
    const double noData = 4.0;
    ExpectSame(Compute(std::vector<std::uint8_t>{4, 4}, &noData), {});
}

TEST(SampleStatistics, ASecondPartIsAddedToTheFirst) {
    SampleStatistics statistics(nullptr, nullptr);
    const std::uint8_t first[] = {1, 2};
    const std::uint8_t second[] = {9};
    statistics.Add(first, 2);
    statistics.Add(second, 1);
    Result r;
    statistics.Report(r.min, r.max, r.mean, r.deviation);
    EXPECT_EQ(r.max, 9.0);
    EXPECT_EQ(r.mean, 4.0);
}

TEST(SampleStatistics, WholeNumbersAddUpOverSeveralCalls) {
    const std::vector<std::uint8_t> first = {1, 2, 3};
    const std::vector<std::uint8_t> second = {10, 9};
    SampleStatistics statistics(nullptr, nullptr);
    statistics.Add(first.data(), first.size());
    statistics.Add(first.data(), 0);
    statistics.Add(second.data(), second.size());
    Result r;
    statistics.Report(r.min, r.max, r.mean, r.deviation);
    EXPECT_EQ(r.min, 1.0);
    EXPECT_EQ(r.max, 10.0);
    EXPECT_EQ(r.mean, 5.0);
    EXPECT_EQ(r.deviation, std::sqrt(195.0 / 5.0 - 25.0));
}

TEST(SampleStatistics, OfNoSamplesAreNone) {
    const Result r = Compute(std::vector<std::uint8_t>{});
    EXPECT_EQ(r.min, -1.0);
    EXPECT_EQ(r.mean, -3.0);
}

TEST(SampleStatistics, SquaresBeyondWhatADoubleHoldsExactlyAreAddedAsDoubles) {
    // 65,535² · 2,200,000 is more than 2^53, and every sum of doubles on the way is rounded.
    const std::vector<std::uint16_t> samples(2'200'000, 65535);
    const Result r = Compute(samples);
    const Result plain = Plain(samples, nullptr, nullptr);
    EXPECT_EQ(r.mean, 65535.0);
    EXPECT_EQ(r.max, 65535.0);
    EXPECT_EQ(r.deviation, plain.deviation);
}
