#include "zelto/algorithm/internal/PreciseMoments.h"
#include "zelto/algorithm/internal/RankSearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace zelto;

namespace {

double ValueAt(std::int64_t rank, const std::vector<double>& samples, int* passes = nullptr) {
    RankSearch search(rank, *std::min_element(samples.begin(), samples.end()),
                      *std::max_element(samples.begin(), samples.end()));
    for (int pass = 0; !search.IsFound(); ++pass) {
        EXPECT_LT(pass, 80);
        search.BeginPass();
        search.Add(samples);
        search.EndPass();
        if (passes != nullptr)
            *passes = pass + 1;
    }
    return search.Value();
}

} // namespace

TEST(RankSearch, FindsEveryPlaceOfTheSortedSamples) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        std::vector<double> samples(1 + random() % 60);
        for (double& sample : samples) {
            // From sub-normal to huge, with ties.
            const double exponent = static_cast<double>(random() % 600) - 300;
            sample = (random() % 2 == 0 ? -1 : 1) * std::pow(10.0, exponent);
            if (random() % 3 == 0)
                sample = samples.front();
        }
        std::vector<double> sorted = samples;
        std::sort(sorted.begin(), sorted.end());
        for (std::size_t rank = 0; rank < sorted.size(); ++rank)
            EXPECT_EQ(ValueAt(static_cast<std::int64_t>(rank), samples), sorted[rank]);
    }
}

TEST(RankSearch, TheEndsOfTheNumberRangeDoNotOverflow) {
    const double largest = std::numeric_limits<double>::max();
    EXPECT_EQ(ValueAt(1, {largest, -largest, 5}), 5);
    EXPECT_EQ(ValueAt(2, {largest, -largest, 5}), largest);
}

TEST(RankSearch, SamplesOf16BitsTakeAPassOrTwo) {
    std::vector<double> samples;
    for (unsigned i = 0; i < 65536; ++i)
        samples.push_back((i * 40503U) % 65536U);
    int passes = 0;
    EXPECT_EQ(ValueAt(12345, samples, &passes), 12345);
    EXPECT_LE(passes, 2);
}

TEST(PreciseMoments, OfEqualSamplesHaveNoDeviation) {
    PreciseMoments moments;
    for (int i = 0; i < 1000; ++i)
        moments.Add(std::vector<double>(7, 0.1));
    EXPECT_EQ(moments.Count(), 7000);
    EXPECT_NEAR(moments.StandardDeviation(), 0, 1e-15);
    EXPECT_NEAR(moments.Mean(), 0.1, 1e-15);
}

TEST(PreciseMoments, BatchesOfAnySizeMergeToTheSame) {
    std::minstd_rand random(3);
    std::vector<double> samples(1000);
    for (double& sample : samples)
        sample = 1e6 + static_cast<double>(random() % 1000);
    PreciseMoments all;
    all.Add(samples);
    PreciseMoments parts;
    for (std::size_t begin = 0; begin < samples.size();) {
        const std::size_t count = std::min<std::size_t>(random() % 13, samples.size() - begin);
        parts.Add({samples.data() + begin, count});
        begin += count;
    }
    EXPECT_EQ(parts.Count(), all.Count());
    EXPECT_EQ(parts.Minimum(), all.Minimum());
    EXPECT_EQ(parts.Maximum(), all.Maximum());
    EXPECT_EQ(parts.Mean(), all.Mean()); // whole numbers: the sum is exact
    EXPECT_NEAR(parts.StandardDeviation(), all.StandardDeviation(), 1e-10);
}

TEST(RankSearch, EndsWhereTheSamplesAreNotThoseThatWereCounted) {
    const std::vector<double> samples = {1, 2, 3};
    RankSearch search(3, 1, 5);
    search.BeginPass();
    search.Add(samples);
    EXPECT_FALSE(search.EndPass());
    RankSearch last(2, 1, 5);
    last.BeginPass();
    last.Add(samples);
    EXPECT_TRUE(last.EndPass());
    EXPECT_EQ(last.Value(), 3);
}
