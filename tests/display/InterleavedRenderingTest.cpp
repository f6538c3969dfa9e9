#include "tests/display/ShownRaster.h"
#include "tests/support/BlockCacheOf.h"
#include "tests/support/LimitedMemory.h"

#include <gdal.h>
#include <omp.h>

#include <cmath>
#include <limits>
#include <sys/resource.h>

using namespace zelto::test;

namespace {

/// A virtual byte band over a file of the values 0 … 5 with a palette of partly transparent
/// colours.
std::string PaletteOver(const std::string& file) {
    return R"(<VRTDataset rasterXSize="6" rasterYSize="1">
  <GeoTransform>0, 1, 0, 1, 0, -1</GeoTransform>
  <VRTRasterBand dataType="Byte" band="1">
    <ColorInterp>Palette</ColorInterp>
    <ColorTable>
      <Entry c1="10" c2="20" c3="30" c4="255"/>
      <Entry c1="11" c2="21" c3="31" c4="100"/>
      <Entry c1="12" c2="22" c3="32" c4="0"/>
    </ColorTable>
    <SimpleSource>
      <SourceFilename>)" +
           file + R"(</SourceFilename><SourceBand>1</SourceBand>
    </SimpleSource>
  </VRTRasterBand>
</VRTDataset>)";
}

/// A file of some hundred bytes whose only tile takes more than a gibibyte.
void WriteVastTile(const std::string& path) {
    GDALAllRegister();
    CPLStringList options;
    options.SetNameValue("SPARSE_OK", "TRUE");
    options.SetNameValue("TILED", "YES");
    options.SetNameValue("BLOCKXSIZE", "32768");
    options.SetNameValue("BLOCKYSIZE", "32784");
    const GDALDatasetUniquePtr dataset(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        path.c_str(), 8, 8, 1, GDT_Byte, options.List()));
    ASSERT_NE(dataset, nullptr);
}

Bytes Transparent() {
    return {255, 255, 255, 0};
}

} // namespace

TEST(InterleavedRendering, StandsInBlueGreenRedAlpha) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 2}, {11, 12}, {21, 22}});
    EXPECT_EQ(source.Interleaved(), (Bytes{21, 11, 1, 255, 22, 12, 2, 255}));
}

TEST(InterleavedRendering, TwoShownBandsLeaveBlueWhite) {
    ShownRaster source({.width = 1, .height = 1}, {{1}, {11}, {21}});
    source.Show({2, 0});
    EXPECT_EQ(source.Interleaved(), (Bytes{255, 1, 21, 255}));
}

TEST(InterleavedRendering, ABoxOutsideAnswersFalseAndLeavesTheBuffer) {
    ShownRaster source({.width = 2, .height = 2, .geoTransform = NorthUp(100, 200, 1)},
                       {{1, 2, 3, 4}});
    CBoundingBox box(300, 200, 310, 190);
    Bytes image(4 * 9, 91);
    EXPECT_FALSE(source.GetShowData(&box, 3, 3, image.data(), true));
    EXPECT_EQ(image, Bytes(4 * 9, 91));
}

TEST(InterleavedRendering, APixelMissingInTheFirstBandStaysTransparent) {
    ShownRaster source({.width = 2, .height = 1, .noData = 0.0}, {{0, 2}, {11, 12}, {21, 22}});
    Bytes expected = Transparent();
    expected.insert(expected.end(), {22, 12, 2, 255});
    EXPECT_EQ(source.Interleaved(), expected);
}

TEST(InterleavedRendering, APixelMissingInALaterBandKeepsWhatWasDrawn) {
    ShownRaster source({.width = 1, .height = 1, .noData = 0.0}, {{5}, {0}, {7}});
    EXPECT_EQ(source.Interleaved(), (Bytes{255, 255, 5, 0}));
}

TEST(InterleavedRendering, PixelsBeyondTheRasterAreTransparent) {
    ShownRaster source({.width = 2, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{7, 9}});
    CBoundingBox box(-2, 1, 4, 0);
    Bytes image(4 * 6);
    ASSERT_TRUE(source.GetShowData(&box, 6, 1, image.data(), false));
    // Column −1 is half open toward zero: truncation puts −0.99 on column 0, but −1 is outside.
    for (int c : {0, 1, 5})
        EXPECT_EQ(Bytes(image.begin() + 4 * c, image.begin() + 4 * c + 4), Transparent()) << c;
    EXPECT_EQ(image[4 * 2], 7);
    EXPECT_EQ(image[4 * 3], 9);
}

TEST(InterleavedRendering, FollowsAGridWhoseRowsAloneAreSheared) {
    // x = column, y = 4 + column − row: the second column lies one unit higher.
    ShownRaster source(
        {.width = 2, .height = 2, .geoTransform = std::array<double, 6>{0, 1, 0, 4, 1, -1}},
        {{1, 2, 3, 4}});
    CBoundingBox box(0, 6, 2, 2);
    Bytes image(32);
    ASSERT_TRUE(source.GetShowData(&box, 2, 4, image.data(), false));
    Bytes reds;
    Bytes alphas;
    for (std::size_t i = 0; i < image.size(); i += 4) {
        reds.push_back(image[i + 2]);
        alphas.push_back(image[i + 3]);
    }
    EXPECT_EQ(reds, (Bytes{255, 255, 255, 2, 1, 4, 3, 255}));
    EXPECT_EQ(alphas, (Bytes{0, 0, 0, 255, 255, 255, 255, 0}));
}

TEST(InterleavedRendering, BandsThatAreReadTogetherShowTheSame) {
    constexpr int WIDE = 300;
    constexpr int HIGH = 200;
    std::vector<Pixels> bands;
    for (int b = 0; b < 3; ++b)
        bands.push_back(MakePixels(WIDE, HIGH, [b](int column, int row) {
            return (7 * column + 13 * row + 50 * b) % 251;
        }));
    ShownRaster source(
        {.width = WIDE, .height = HIGH, .options = {"COMPRESS=LZW", "INTERLEAVE=PIXEL"}}, bands);
    source.Show({0, 1, 2});
    CBoundingBox box = source.GetExtent();
    Bytes expected(std::size_t{60} * 50 * 4);
    ASSERT_TRUE(source.GetShowData(&box, 60, 50, expected.data(), false));
    const zelto::test::BlockCacheOf cache(10'000); // the window is beyond it
    Bytes image(expected.size());
    EXPECT_TRUE(source.GetShowData(&box, 60, 50, image.data(), false));
    EXPECT_EQ(image, expected);
}

TEST(InterleavedRendering, OneBandIsGrey) {
    ShownRaster source({.width = 2, .height = 1, .noData = 9.0}, {{7, 9}});
    Bytes expected{7, 7, 7, 255};
    expected.insert(expected.end(), {255, 255, 255, 0});
    EXPECT_EQ(source.Interleaved(), expected);
}

TEST(InterleavedRendering, OneBandThroughTheRamp) {
    ShownRaster source({.width = 2, .height = 1}, {{100, 9}});
    CColorRamp ramp = DistinctRamp();
    source.SetDisplayType(static_cast<DataDisplayType>(1));
    EXPECT_EQ(source.Interleaved(), (Bytes{100, 100, 100, 255, 9, 9, 9, 255})) << "no ramp yet";
    source.SetColorRamp(&ramp);
    source.m_transparency = 0.5F; // comes after the drawing
    EXPECT_EQ(source.Interleaved(), (Bytes{50, 155, 100, 255, 4, 246, 9, 255}));
}

TEST(InterleavedRendering, OneBandInClasses) {
    ShownRaster source({.width = 4, .height = 1, .noData = 14.0}, {{15, 25, 40, 14}});
    CClassifyDisplayTable table = TwoClasses();
    source.SetDisplayType(DISPLAY_CLASSIFIED);
    source.SetClassifyDisplayTable(&table);
    EXPECT_EQ(source.Interleaved(),
              (Bytes{3, 2, 1, 200, 6, 5, 4, 0, 0, 0, 0, 0, 255, 255, 255, 0}));
    // 200 − 127 is not negative: the class's alpha stays; 200 − 216 is.
    source.m_transparency = 0.5F;
    EXPECT_EQ(source.Interleaved()[3], 200);
    source.m_transparency = 0.85F;
    EXPECT_EQ(source.Interleaved()[3], 0);
}

TEST(InterleavedRendering, PaletteColoursLoseTheTransparencyAndWrap) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("index.tif"), {.width = 6, .height = 1}, {{0, 1, 2, 3, 4, 5}});
    ShownRaster source(PaletteOver(folder.File("index.tif")));
    ASSERT_TRUE(source.GetRasterBand(0)->IsHaveColorTable());
    Bytes image = source.Interleaved();
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 12),
              (Bytes{30, 20, 10, 255, 31, 21, 11, 100, 32, 22, 12, 0}));
    source.m_transparency = 0.5F;
    image = source.Interleaved();
    EXPECT_EQ(image[3], 128);  // 255 − 127
    EXPECT_EQ(image[7], 229);  // 100 − 127 + 256
    EXPECT_EQ(image[11], 129); // 0 − 127 + 256
}

TEST(InterleavedRendering, ComputedVirtualBandsShowTheirUnroundedValues) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("v.tif"), {.width = 4, .height = 1}, {{0, 1, 2, 100}});
    ShownRaster source(R"(<VRTDataset rasterXSize="4" rasterYSize="1">
  <GeoTransform>0, 1, 0, 1, 0, -1</GeoTransform>
  <VRTRasterBand dataType="Byte" band="1"><ComplexSource>
    <SourceFilename>)" +
                       folder.File("v.tif") + R"(</SourceFilename><SourceBand>1</SourceBand>
    <ScaleOffset>0</ScaleOffset><ScaleRatio>0.9</ScaleRatio>
  </ComplexSource></VRTRasterBand>
</VRTDataset>)");
    // 0.9 and 1.8 are truncated; as bytes GDAL would have rounded them to 1 and 2.
    const Bytes image = source.Interleaved();
    EXPECT_EQ(image[4], 0);
    EXPECT_EQ(image[8], 1);
}

TEST(InterleavedRendering, FreesTheCachesOfTheShownBands) {
    ShownRaster source({.width = 1, .height = 1}, {{5}, {6}});
    source.Show({0});
    for (int i : {0, 1})
        ASSERT_TRUE(source.GetRasterBand(i)->GetData(0, 0, 1, 1, 1, 1));
    source.Interleaved();
    double value = 0.0;
    EXPECT_FALSE(source.GetRasterBand(0)->GetNearestValueAt(0, 0, &value));
    EXPECT_TRUE(source.GetRasterBand(1)->GetNearestValueAt(0, 0, &value)) << "not shown";
}

TEST(InterleavedRendering, ShownBandsThatDoNotExistFail) {
    ShownRaster source({.width = 1, .height = 1}, {{5}, {6}, {7}});
    CBoundingBox box = source.GetExtent();
    Bytes image(4, 91);
    source.Show({9, 0, 1});
    EXPECT_FALSE(source.GetShowData(&box, 1, 1, image.data(), true));
    EXPECT_EQ(image, Bytes(4, 255));
    source.Show({0, -1, 1});
    EXPECT_FALSE(source.GetShowData(&box, 1, 1, image.data(), true));
    EXPECT_EQ(image, (Bytes{255, 255, 5, 255})) << "the bands drawn so far stay";
    EXPECT_EQ(source.GetShowMeans()[0], 5.0) << "and so do their statistics";
    EXPECT_FALSE(source.IsShowStatisticsKnown());
}

TEST(InterleavedRendering, ASourceWithoutShownBandsIsWhite) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 1, .height = 1}, {{5}});
    CRasterSource source; // not for display
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    CBoundingBox box = source.GetExtent();
    Bytes image(4, 91);
    EXPECT_TRUE(source.GetShowData(&box, 1, 1, image.data(), true));
    EXPECT_EQ(image, Bytes(4, 255));
}

TEST(InterleavedRendering, AClosedSourceAnswersFalse) {
    ShownRaster source({.width = 1, .height = 1}, {{5}});
    CBoundingBox box = source.GetExtent();
    source.Close();
    Bytes image(4, 91);
    EXPECT_FALSE(source.GetShowData(&box, 1, 1, image.data(), true));
    CRasterSource never;
    EXPECT_FALSE(never.GetShowData(&box, 1, 1, image.data(), true));
}

TEST(InterleavedRendering, BandsWhoseBlocksNoMemoryShouldHoldAreNotRead) {
    const TemporaryFolder folder;
    WriteVastTile(folder.File("vast.tif"));
    CRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(folder.WideFile("vast.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    CBoundingBox box = source.GetExtent();
    Bytes image(4 * 64, 91);
    EXPECT_FALSE(source.GetShowData(&box, 8, 8, image.data(), false));
    EXPECT_EQ(image, Bytes(4 * 64, 255)) << "as when a band cannot be read";
    Bytes plane(64, 91);
    unsigned char* planes[] = {plane.data()};
    EXPECT_FALSE(source.GetShowData(&box, 8, 8, 1, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowData2Cache(&box, 8, 8));
}

TEST(InterleavedRendering, BadArgumentsAnswerFalse) {
    ShownRaster source({.width = 2, .height = 2}, {{5, 6, 7, 8}});
    CBoundingBox box = source.GetExtent();
    Bytes image(16, 91);
    EXPECT_FALSE(source.GetShowData(nullptr, 2, 2, image.data(), true));
    EXPECT_FALSE(source.GetShowData(&box, 2, 2, nullptr, true));
    for (int size : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_FALSE(source.GetShowData(&box, size, 2, image.data(), true));
        EXPECT_FALSE(source.GetShowData(&box, 2, size, image.data(), true));
    }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (double bad : {nan, infinity, -infinity, 1e300}) {
        for (CBoundingBox broken :
             {CBoundingBox(bad, 2, 2, 0), CBoundingBox(0, bad, 2, 0), CBoundingBox(0, 2, bad, 0),
              CBoundingBox(0, 2, 2, bad), CBoundingBox(bad, bad, bad, bad)})
            EXPECT_FALSE(source.GetShowData(&broken, 2, 2, image.data(), true));
    }
    CBoundingBox point(1, 1, 1, 1);
    EXPECT_FALSE(source.GetShowData(&point, 2, 2, image.data(), true));
    EXPECT_EQ(image, Bytes(16, 91));
}

TEST(InterleavedRendering, APictureWithoutColumnsTakesNoMemoryForItsRows) {
    const auto peakKilobytes = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    ShownRaster source({.width = 2, .height = 2}, {{5, 6, 7, 8}});
    CBoundingBox box = source.GetExtent();
    Bytes image(16, 91);
    const long before = peakKilobytes();
    EXPECT_FALSE(source.GetShowData(&box, 0, std::numeric_limits<int>::max(), image.data(), true));
    EXPECT_LT(peakKilobytes() - before, 100'000);
}

TEST(InterleavedRendering, ABoxFarLargerThanTheImageTakesNoMoreMemory) {
    if (!CanLimitMemory())
        GTEST_SKIP() << "a sanitizer takes more memory than can be limited";
    ShownRaster source({.width = 400, .height = 300, .geoTransform = NorthUp(0, 300, 1)},
                       {Pixels(120'000, 5), Pixels(120'000, 6), Pixels(120'000, 7)});
    Bytes image(std::size_t{4} * 64 * 48, 91);
    for (const double side : {1e4, 1e7, 1e10, 1e15})
        for (CBoundingBox box :
             {CBoundingBox(-side, side, side, -side), CBoundingBox(-side, 200, side, 100),
              CBoundingBox(100, side, 200, -side), CBoundingBox(0, 300, side, 300 - side)}) {
            SCOPED_TRACE(side);
            constexpr std::size_t LITTLE = 32U << 20U;
            const auto ending = RunWithMemory(LITTLE, [&] {
                source.GetShowData(&box, 64, 48, image.data(), true);
                return true;
            });
            EXPECT_EQ(ending, Ending::ANSWERED_TRUE);
        }
}

TEST(ShowStatistics, AreTheDisplayedBytesPerShownBand) {
    ShownRaster source({.width = 2, .height = 2}, {{1, 2, 3, 6}, {10, 10, 10, 10}, {0, 0, 0, 9}});
    EXPECT_FALSE(source.IsShowStatisticsKnown());
    source.Interleaved();
    EXPECT_TRUE(source.IsShowStatisticsKnown());
    EXPECT_EQ(source.GetShowMeans()[0], 3.0);
    EXPECT_EQ(source.GetShowStandardDeviations()[0], std::sqrt(50.0 / 4.0 - 9.0));
    EXPECT_EQ(source.GetShowMeans()[1], 10.0);
    EXPECT_EQ(source.GetShowStandardDeviations()[1], 0.0);
    EXPECT_EQ(source.GetShowMeans()[2], 2.25);
}

TEST(ShowStatistics, AreComputedOnceForASource) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 3}, {5, 5}, {5, 5}});
    source.Interleaved();
    source.Show({1, 1, 1});
    source.Interleaved();
    EXPECT_EQ(source.GetShowMeans()[0], 2.0);
}

TEST(ShowStatistics, StayUnknownWhileTheFirstMeanIsZero) {
    ShownRaster source({.width = 2, .height = 1}, {{0, 0}, {5, 5}, {5, 7}});
    source.Interleaved();
    EXPECT_FALSE(source.IsShowStatisticsKnown());
    EXPECT_EQ(source.GetShowMeans()[1], 5.0);
    source.Show({2, 1, 0});
    source.Interleaved();
    EXPECT_TRUE(source.IsShowStatisticsKnown());
    EXPECT_EQ(source.GetShowMeans()[0], 6.0);
}

TEST(ShowStatistics, OfNothingCountedStayZeroAndUnknown) {
    ShownRaster single({.width = 2, .height = 1}, {{1, 3}});
    single.Interleaved();
    ShownRaster empty({.width = 2, .height = 1, .noData = 3.0}, {{3, 3}, {3, 3}, {3, 3}});
    empty.Interleaved();
    for (const ShownRaster* source : {&single, &empty}) {
        EXPECT_FALSE(source->IsShowStatisticsKnown());
        for (int k = 0; k < 3; ++k) {
            EXPECT_EQ(source->GetShowMeans()[k], 0.0);
            EXPECT_EQ(source->GetShowStandardDeviations()[k], 0.0);
        }
    }
}

TEST(ShowStatistics, AreTheSameForEveryNumberOfThreads) {
    const int w = 311, h = 157;
    const Pixels pixels = MakePixels(w, h, [](int c, int r) { return (c * 37 + r * 101) % 256; });
    const int before = omp_get_max_threads();
    std::vector<double> deviations;
    for (int threads : {1, 2, 3, 4, 7}) {
        omp_set_num_threads(threads);
        ShownRaster source({.width = w, .height = h}, {pixels, pixels, pixels});
        source.Interleaved();
        deviations.push_back(source.GetShowStandardDeviations()[0]);
    }
    omp_set_num_threads(before);
    for (double deviation : deviations)
        EXPECT_EQ(deviation, deviations.front());
}

TEST(InterleavedRendering, LargeViewsAreTheSameForEveryNumberOfThreads) {
    // With more than one thread a band is drawn while the next one is read. Rows repeat, and some
    // pixels have no value.
    const int w = 900, h = 700;
    const auto band = [&](int seed) {
        return MakePixels(w, h, [&](int c, int r) { return (c * 37 + r / 3 * 101 + seed) % 251; });
    };
    const int before = omp_get_max_threads();
    for (const StretchType stretch : {StretchStdDev, StretchHistEqualize, StretchAutoLevels}) {
        std::vector<unsigned char> first;
        double deviation = 0.0;
        for (int threads : {1, 2, 5}) {
            omp_set_num_threads(threads);
            ShownRaster source({.width = w, .height = h, .noData = 7.0},
                               {band(0), band(90), band(200)});
            source.SetStretchType(stretch);
            const auto counted = source.Interleaved();
            const auto again = source.Interleaved(); // nothing is counted any more
            EXPECT_EQ(counted, again);
            if (threads == 1) {
                first = counted;
                deviation = source.GetShowStandardDeviations()[2];
            }
            EXPECT_EQ(counted, first) << threads << " threads";
            EXPECT_EQ(source.GetShowStandardDeviations()[2], deviation);
        }
    }
    omp_set_num_threads(before);
}

TEST(InterleavedRendering, RowsThatRepeatInOneBandAreNotRepeatedInAnother) {
    // The second and third band are the same everywhere, the first changes from row to row.
    const int w = 150, h = 200;
    ShownRaster source({.width = w, .height = h}, {MakePixels(w, h, [](int, int r) { return r; }),
                                                   Pixels(w * h, 40.0), Pixels(w * h, 50.0)});
    source.Interleaved(); // statistics are known from now on
    const Bytes image = source.Interleaved();
    for (int r = 0; r < h; ++r)
        for (int c = 0; c < w; ++c)
            ASSERT_EQ(image[4 * (r * w + c) + 2], r);
}

TEST(InterleavedRendering, APaletteThatTheFileHasLostShowsNothing) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("index.tif"), {.width = 6, .height = 1}, {{0, 1, 2, 3, 4, 5}});
    ShownRaster source(PaletteOver(folder.File("index.tif")));
    GDALRasterBand& stored = *source.GetRasterBand(0)->GetGDALBand();
    ASSERT_EQ(stored.SetColorTable(nullptr), CE_None);
    ASSERT_EQ(stored.GetColorTable(), nullptr);
    Bytes nothing;
    for (int pixel = 0; pixel < 6; ++pixel)
        nothing.insert(nothing.end(), {255, 255, 255, 0});
    EXPECT_EQ(source.Interleaved(), nothing);
}

TEST(InterleavedRendering, WithRedFirstEveryAdjustmentOfColoursCounts) {
    for (float CRasterSource::*const adjustment :
         {&CRasterSource::m_hue, &CRasterSource::m_intensity, &CRasterSource::m_saturation,
          &CRasterSource::m_contrast}) {
        ShownRaster source({.width = 2, .height = 1}, {{10, 200}, {90, 20}, {200, 90}});
        source.*adjustment = 0.25F;
        Bytes expected = source.Interleaved(true);
        EXPECT_NE(expected, source.Interleaved(false));
        for (std::size_t pixel = 0; pixel < expected.size(); pixel += 4)
            std::swap(expected[pixel], expected[pixel + 2]);
        CBoundingBox box = source.GetExtent();
        Bytes redFirst(expected.size());
        EXPECT_TRUE(source.GetShowDataRedFirst(&box, 2, 1, redFirst.data(), true));
        EXPECT_EQ(redFirst, expected);
    }
}
