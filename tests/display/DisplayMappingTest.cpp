#include "zelto/display/internal/DisplayMapping.h"

#include "zelto/display/RasterHistogram.h"

#include "tests/display/PlainDisplay.h"
#include "tests/raster/TestBand.h"

#include <array>
#include <limits>
#include <random>
#include <thread>

using zelto::DisplayMapping;
using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::PlainDisplay;
using zelto::test::PlainHistogram;
using zelto::test::PlainObject;
using zelto::test::TestBand;

namespace {

using Random = std::mt19937_64;

constexpr std::array TYPES = {GDT_Byte,  GDT_UInt16,  GDT_Int16,  GDT_UInt32,
                              GDT_Int32, GDT_Float32, GDT_Float64};

double Uniform(Random& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}
bool Chance(Random& random, double probability) {
    return Uniform(random, 0, 1) < probability;
}

/// Pixels over a random part of the type's range.
Pixels RandomPixels(Random& random, GDALDataType type, int count) {
    double low = 0.0;
    double high = 255.0;
    if (type == GDT_UInt16 || type == GDT_UInt32)
        high = 5000.0;
    if (type == GDT_Int16 || type == GDT_Int32 || type >= GDT_Float32)
        low = -3000.0;
    const double a = Uniform(random, low, high);
    const double b = Chance(random, 0.1) ? a + 0.5 : Uniform(random, low, high);
    Pixels pixels;
    for (int i = 0; i < count; ++i) {
        const double value = Uniform(random, std::min(a, b), std::max(a, b));
        pixels.push_back(type >= GDT_Float32 ? value : std::floor(value));
    }
    return pixels;
}

PlainHistogram Plain(CRasterHistogram& histogram) {
    PlainHistogram plain;
    int buckets = 0;
    const int* counts = histogram.GetHistogram(plain.min, plain.max, buckets, nullptr, nullptr);
    plain.counts.assign(counts, counts + buckets);
    return plain;
}

/// Gives band and plain statement the same random display state.
void SetRandomHistograms(Random& random, CRasterBand& band, PlainDisplay& plain) {
    if (Chance(random, 0.7) && band.EnableHistogramEqualize()) {
        plain.histogram = Plain(*band.GetHistogramObject());
        plain.histogram->SetEqualizationMap();
    } else if (Chance(random, 0.5)) {
        std::array<int, 37> counts{};
        if (band.GetHistogram(plain.min - 1, plain.max + 1, 37, counts.data(), false, false,
                              nullptr))
            plain.histogram = Plain(*band.GetHistogramObject());
    }
    if (Chance(random, 0.7)) {
        PlainHistogram custom;
        custom.min = Chance(random, 0.5) ? 0.0 : Uniform(random, -100, 100);
        custom.max = Chance(random, 0.1) ? custom.min : custom.min + Uniform(random, 0, 1000);
        custom.counts.resize(static_cast<std::size_t>(Uniform(random, 0, 300)));
        for (int& count : custom.counts)
            count = Chance(random, 0.2) ? 0 : static_cast<int>(Uniform(random, 0, 10000));
        custom.SetEqualizationMap();
        ASSERT_TRUE(
            band.SetCustomHistogram(custom.min, custom.max, custom.Size(), custom.counts.data()));
        plain.custom = custom;
    }
}

void SetRandomState(Random& random, CRasterBand& band, PlainDisplay& plain) {
    if (Chance(random, 0.3)) {
        const double low = Uniform(random, -10, 500);
        band.StoreMinMax(low, Chance(random, 0.1) ? low : low + Uniform(random, -5, 2000));
    }
    plain.isByte = band.GetDataType() == PDT_Byte;
    plain.isSinglePixel = band.GetWidth() == 1 && band.GetHeight() == 1;
    plain.min = band.GetMinimum();
    plain.max = band.GetMaximum();
    plain.mean = band.GetMean();
    plain.deviation = band.GetStandardDeviation();
    plain.lower = band.GetStdDevLowerBound();
    plain.upper = band.GetStdDevUpperBound();
    SetRandomHistograms(random, band, plain);
    plain.threshold = Chance(random, 0.5) ? 0.01 : Uniform(random, 0, 0.6);
    band.SetAutoLevelThresold(plain.threshold);
    if (Chance(random, 0.6)) {
        PlainObject object{static_cast<int>(Uniform(random, 6, 9)), {}};
        for (double& a : object.a)
            a = Uniform(random, -50, 300);
        band.SetStretchData(static_cast<StretchType>(object.kind), object.a[0], object.a[1],
                            object.a[2], object.a[3], object.a[4], object.a[5]);
        plain.object = object;
    }
    if (Chance(random, 0.5)) {
        std::vector<unsigned char> table(256);
        for (unsigned char& byte : table)
            byte = static_cast<unsigned char>(random());
        ASSERT_TRUE(band.SetEnhancedData(table.data(), HistogramLineStraight, nullptr, 0));
        plain.table = table;
    }
}

Pixels Samples(Random& random, const PlainDisplay& plain) {
    constexpr double INF = std::numeric_limits<double>::infinity();
    Pixels samples = {0.0,
                      -0.0,
                      1.0,
                      -1.0,
                      0.5,
                      254.0,
                      254.999,
                      255.0,
                      256.0,
                      300.0,
                      plain.min,
                      plain.max,
                      plain.mean,
                      plain.lower,
                      plain.upper,
                      plain.mean + 2.0 * plain.deviation,
                      plain.mean - 2.0 * plain.deviation,
                      1e18,
                      1e19,
                      -1e19,
                      1e300,
                      -1e300,
                      INF,
                      -INF,
                      std::numeric_limits<double>::quiet_NaN(),
                      std::numeric_limits<double>::denorm_min()};
    for (int i = 0; i < 200; ++i)
        samples.push_back(Uniform(random, plain.min - 300, plain.max + 300));
    for (int i = 0; i < 50; ++i)
        samples.push_back(std::floor(Uniform(random, -10, 300)));
    return samples;
}

} // namespace

TEST(DisplayMapping, AgreesWithThePlainStatementForEveryStretchAndType) {
    Random random(20240117);
    for (int round = 0; round < 210; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 20240117, round " << round);
        const GDALDataType type = TYPES[static_cast<std::size_t>(round) % TYPES.size()];
        const int side = Chance(random, 0.1) ? 1 : 5;
        TestBand band({.width = side, .height = side, .type = type},
                      RandomPixels(random, type, side * side));
        PlainDisplay plain;
        CPLPushErrorHandler(CPLQuietErrorHandler);
        SetRandomState(random, *band, plain);
        CPLPopErrorHandler();
        const Pixels samples = Samples(random, plain);
        for (const int stretch : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 5, 4, -3}) {
            plain.type = stretch;
            band->SetStretchType(static_cast<StretchType>(stretch));
            const DisplayMapping mapping(*band);
            for (const double sample : samples) {
                const unsigned char expected = plain.ShowValue(sample);
                ASSERT_EQ(band->Convert2ShowValue(sample), expected) << stretch << ": " << sample;
                ASSERT_EQ(mapping(sample), expected) << stretch << ": " << sample;
            }
        }
    }
}

TEST(ShowValue, SeveralThreadsMayConvertAtOnceWhenTheAutoLevelsMapIsStillMissing) {
    TestBand band({.width = 64, .height = 4},
                  MakePixels(64, 4, [](int c, int r) { return c * 4 + r; }));
    ASSERT_TRUE(band->EnableHistogramEqualize());
    PlainDisplay plain;
    plain.type = StretchAutoLevels;
    plain.histogram = Plain(*band->GetHistogramObject());
    band->SetStretchType(StretchAutoLevels);
    for (const double threshold : {0.05, 0.1, 0.2}) {
        band->SetAutoLevelThresold(threshold);
        plain.threshold = threshold;
        std::vector<std::vector<unsigned char>> shown(4, std::vector<unsigned char>(256));
        std::vector<std::thread> threads;
        threads.reserve(shown.size());
        for (auto& bytes : shown) {
            threads.emplace_back([&band, &bytes] {
                for (int value = 0; value < 256; ++value)
                    bytes[static_cast<std::size_t>(value)] = band->Convert2ShowValue(value);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        for (int value = 0; value < 256; ++value) {
            const unsigned char expected = plain.ShowValue(value);
            for (const auto& bytes : shown)
                ASSERT_EQ(bytes[static_cast<std::size_t>(value)], expected) << value;
        }
    }
}
