#include "zelto/algorithm/internal/Moments.h"

#include "zelto/raster/RasterBand.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace zelto;

namespace {

/// A band of one pixel, for its type and no-data value.
struct OneBand {
    OneBand(GDALDataType type, std::optional<double> noData) {
        GDALAllRegister();
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("MEM");
        dataset.reset(driver->Create("", 1, 1, 1, type, nullptr));
        if (noData)
            dataset->GetRasterBand(1)->SetNoDataValue(*noData);
        band = std::make_unique<CRasterBand>(dataset->GetRasterBand(1), false, false);
    }

    GDALDatasetUniquePtr dataset;
    std::unique_ptr<CRasterBand> band;
};

void ExpectEqual(const Moments& a, const Moments& b) {
    EXPECT_EQ(a.count, b.count);
    EXPECT_EQ(a.sum, b.sum);
    EXPECT_EQ(a.minimum, b.minimum);
    EXPECT_EQ(a.maximum, b.maximum);
}

} // namespace

TEST(MomentsAdder, SideBySideSumsEqualThoseInOrder) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        const GDALDataType types[] = {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_Float32, GDT_Float64};
        std::optional<double> noData;
        if (seed % 2 == 0)
            noData = 3;
        const OneBand one(types[seed % 5], noData);
        const MomentsAdder adder(*one.band);
        Moments fast, plain;
        for (int part = 0; part < 5; ++part) {
            std::vector<double> samples(random() % 23);
            for (double& sample : samples)
                sample = static_cast<double>(random() % 8) - (seed % 3 == 0 ? 4 : 0);
            adder.Add(fast, samples);
            for (const double sample : samples)
                if (!noData || sample != *noData)
                    plain.Add(sample);
            ExpectEqual(fast, plain);
        }
    }
}

TEST(MomentsAdder, SamplesAllNoDataChangeNothing) {
    const OneBand one(GDT_Byte, 3.0);
    Moments moments;
    moments.minimum = 17;
    moments.maximum = 18;
    MomentsAdder(*one.band).Add(moments, std::vector<double>(10, 3.0));
    EXPECT_EQ(moments.count, 0);
    EXPECT_EQ(moments.minimum, 17);
    EXPECT_EQ(moments.maximum, 18);
}

TEST(MomentsAdder, RepeatedSamplesAddUpAsOneByOne) {
    for (const GDALDataType type : {GDT_UInt16, GDT_Float64}) {
        const OneBand one(type, 9.0);
        const MomentsAdder adder(*one.band);
        const double value = type == GDT_UInt16 ? 60001.0 : 0.1;
        Moments fast, plain;
        fast.Add(5);
        plain.Add(5);
        adder.AddRepeated(fast, value, 1000);
        for (int i = 0; i < 1000; ++i)
            plain.Add(value);
        adder.AddRepeated(fast, value, 0);
        adder.AddRepeated(fast, 9.0, 50);
        ExpectEqual(fast, plain);
    }
}

TEST(SeededMoments, OfNegativeSamplesKeepTheSmallestPositiveMaximum) {
    SeededMoments moments;
    moments.Add(-3);
    moments.Add(-1);
    EXPECT_EQ(moments.minimum, -3);
    EXPECT_EQ(moments.maximum, 2.2250738585072014e-308);
    EXPECT_EQ(moments.Mean(), -2);
    EXPECT_EQ(moments.StandardDeviation(), 1);
}

TEST(NoDataRule, HoldsWithin1e8AndOnlyWhereThereIsOne) {
    EXPECT_TRUE((NoDataRule{true, 5.0}.Holds(5.0 + 9e-9)));
    EXPECT_FALSE((NoDataRule{true, 5.0}.Holds(5.0 + 2e-8)));
    EXPECT_FALSE((NoDataRule{false, 5.0}.Holds(5.0)));
    const OneBand one(GDT_Byte, 3.0);
    EXPECT_TRUE(NoDataRule::Of(*one.band).Holds(3.0));
}

TEST(MomentsAdder, RepeatedSamplesAddUpAsOneByOneWhereDoublesHaveGaps) {
    const OneBand one(GDT_Byte, {});
    Moments moments;
    moments.Add(9007199254740990.0); // 2^53 − 2
    MomentsAdder(*one.band).AddRepeated(moments, 1, 5);
    EXPECT_EQ(moments.count, 6);
    // One more than 2^53 is rounded down to it again; 2^53 − 1 + 4 would have been rounded up.
    EXPECT_EQ(moments.sum, 9007199254740992.0);
}

TEST(MomentsAdder, BandsThatAreAssembledMayHaveFractionsWhateverTheirType) {
    const OneBand stored(GDT_Byte, {});
    EXPECT_TRUE(HasSmallWholeNumbers(*stored.band));
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("VRT");
    const GDALDatasetUniquePtr assembled(driver->Create("", 1, 1, 1, GDT_Byte, nullptr));
    const CRasterBand band(assembled->GetRasterBand(1), false, false);
    EXPECT_FALSE(HasSmallWholeNumbers(band));
    Moments moments;
    MomentsAdder(band).AddRepeated(moments, 0.1, 3);
    EXPECT_EQ(moments.sum, 0.1 + 0.1 + 0.1);
}
