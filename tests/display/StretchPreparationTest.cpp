#include "zelto/display/StretchPreparation.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/display/RasterHistogram.h"

#include "tests/display/ShownRaster.h"
#include "tests/support/RecordingProgress.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numeric>

using namespace zelto::test;

namespace {

using Setting = CStretchPreparation::Setting;

/// 16-bit values 0 … 99 in a row of pixels of one ground unit, from x = 0.
ShownRaster Ramp(int type = GDT_UInt16) {
    return {{.width = 100,
             .height = 1,
             .type = static_cast<GDALDataType>(type),
             .geoTransform = NorthUp(0, 1, 1)},
            {MakePixels(100, 1, [](int column, int) { return column; })}};
}

/// The reds of the picture.
Bytes Reds(ShownRaster& source) {
    const Bytes picture = source.Interleaved();
    Bytes reds;
    for (std::size_t i = 2; i < picture.size(); i += 4)
        reds.push_back(picture[i]);
    return reds;
}

/// What the linear stretch makes of 0 … 99 between two values.
Bytes LinearBetween(double low, double high) {
    Bytes bytes;
    for (int value = 0; value < 100; ++value)
        bytes.push_back(static_cast<unsigned char>(
            std::clamp((value - low) / (high - low) * 255.0, 0.0, 255.0)));
    return bytes;
}

/// Prepares a stretch that must succeed.
void Prepare(CStretchPreparation& stretch, const std::string& name) {
    ASSERT_TRUE(stretch.SetStretch(name));
    ASSERT_EQ(stretch.Apply(nullptr), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
}

/// Three bands of a file that is no longer there.
ShownRaster Unreadable(const TemporaryFolder& folder, const std::string& type) {
    const std::string file = folder.File("gone.tif");
    WriteRaster(file, {.width = 10, .height = 10}, std::vector<Pixels>(3, Pixels(100, 7.0)));
    std::string xml = "<VRTDataset rasterXSize='10' rasterYSize='10'>"
                      "<GeoTransform>0,1,0,10,0,-1</GeoTransform>";
    for (int band = 1; band <= 3; ++band)
        xml += "<VRTRasterBand dataType='" + type + "' band='" + std::to_string(band) +
               "'><SimpleSource><SourceFilename>" + file + "</SourceFilename><SourceBand>" +
               std::to_string(band) +
               "</SourceBand><SourceProperties RasterXSize='10' RasterYSize='10' "
               "DataType='Byte'/></SimpleSource></VRTRasterBand>";
    std::filesystem::remove(file);
    return ShownRaster(xml + "</VRTDataset>");
}

std::unique_ptr<CAOISource> Triangle(CPoint2D a, CPoint2D b, CPoint2D c) {
    auto area = std::make_unique<CAOISource>();
    auto polygon = std::make_unique<CDrawPolygon>();
    for (const CPoint2D& point : {a, b, c})
        polygon->AddVertex(point);
    polygon->m_complete = true;
    EXPECT_TRUE(area->AddDrawShape(polygon.get()));
    polygon.release();
    return area;
}

} // namespace

TEST(StretchPreparation, NamesTheTenTypesInTheirOrder) {
    const auto names = CStretchPreparation::GetStretchNames();
    ASSERT_EQ(names.size(), 12U);
    for (int type = StretchNone; type <= StretchCustomHistEqualize; ++type)
        EXPECT_EQ(CStretchPreparation::GetStretchName(static_cast<StretchType>(type)),
                  names[static_cast<std::size_t>(type)]);
    EXPECT_EQ(CStretchPreparation::GetStretchName(static_cast<StretchType>(77)), "linear");
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    EXPECT_FALSE(stretch.SetStretch("loud"));
    EXPECT_EQ(stretch.GetStretch(), "auto");
}

TEST(StretchPreparation, PercentShowsBetweenTheInterpolatedPercentiles) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetClip(10, 95));
    Prepare(stretch, "percent");
    EXPECT_EQ(source.GetStretchType(), StretchLinear);
    ASSERT_EQ(stretch.GetBands().size(), 1U);
    EXPECT_DOUBLE_EQ(stretch.GetBands()[0].range.low, 9.9);    // 99 × 10 / 100
    EXPECT_DOUBLE_EQ(stretch.GetBands()[0].range.high, 94.05); // 99 × 95 / 100
    EXPECT_EQ(stretch.GetBands()[0].count, 100);
    EXPECT_FALSE(stretch.IsSampled());
    EXPECT_EQ(Reds(source), LinearBetween(9.9, 94.05));
}

TEST(StretchPreparation, PercentIsTwoToNinetyEightUnlessSet) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    Prepare(stretch, "percent");
    EXPECT_DOUBLE_EQ(stretch.GetBands()[0].range.low, 1.98);
    EXPECT_DOUBLE_EQ(stretch.GetBands()[0].range.high, 97.02);
}

TEST(StretchPreparation, LargeImagesAreSampledForPercentilesUnlessTheyAreToBeExact) {
    // More than 2^22 pixels; the value of a pixel is its row.
    ShownRaster source({.width = 1100, .height = 4000, .type = GDT_UInt16},
                       {MakePixels(1100, 4000, [](int, int row) { return row; })});
    CStretchPreparation stretch(&source);
    Prepare(stretch, "percent");
    EXPECT_TRUE(stretch.IsSampled());
    EXPECT_NEAR(stretch.GetBands()[0].range.low, 0.02 * 3999, 4);
    EXPECT_NEAR(stretch.GetBands()[0].range.high, 0.98 * 3999, 4);
    EXPECT_LT(stretch.GetBands()[0].count, 1100 * 4000);
    stretch.SetExact(true);
    Prepare(stretch, "percent");
    EXPECT_FALSE(stretch.IsSampled());
    EXPECT_EQ(stretch.GetBands()[0].count, 1100 * 4000);
    // Between two rows of 1100 pixels: 4,399,999 × 0.02 = 87,999.98, × 0.98 = 4,311,999.02.
    EXPECT_NEAR(stretch.GetBands()[0].range.low, 79.98, 1e-9);
    EXPECT_NEAR(stretch.GetBands()[0].range.high, 3919.02, 1e-9);
}

TEST(StretchPreparation, TheBoundsFollowTheView) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    stretch.SetView({20, 1, 40, 0}); // values 20 … 39
    Prepare(stretch, "linear");
    EXPECT_EQ(stretch.GetBands()[0].count, 20);
    EXPECT_EQ(Reds(source), LinearBetween(20, 39));
    stretch.SetView({50, 1, 61, 0});
    Prepare(stretch, "linear");
    EXPECT_EQ(Reds(source), LinearBetween(50, 60));
    stretch.SetImage();
    Prepare(stretch, "linear");
    EXPECT_EQ(Reds(source), LinearBetween(0, 99)) << "the band's own range is back";
}

TEST(StretchPreparation, TheBoundsComeFromAnArea) {
    ShownRaster source(
        {.width = 4, .height = 4, .type = GDT_Int16, .geoTransform = NorthUp(0, 4, 1)},
        {MakePixels(4, 4, [](int c, int r) { return 10 * r + c - 20; })});
    // The pixels whose centres are left of the diagonal from the top left: c < r.
    const auto area = Triangle({0, 4}, {0, 0}, {4, 0});
    CStretchPreparation stretch(&source);
    stretch.SetArea(area.get());
    Prepare(stretch, "linear");
    EXPECT_GE(stretch.GetBands()[0].count, 6);
    EXPECT_LE(stretch.GetBands()[0].range.low, -10); // row 1, column 0
    EXPECT_GE(stretch.GetBands()[0].range.high, 12); // row 3, column 2
}

TEST(StretchPreparation, DeviationsOfTheViewTakeThePlaceOfTheImages) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    stretch.SetView({0, 1, 10, 0}); // 0 … 9: mean 4.5, deviation √8.25
    Prepare(stretch, "stddev");
    EXPECT_EQ(source.GetStretchType(), StretchStdDev);
    const CRasterBand& band = *source.GetRasterBand(0);
    EXPECT_DOUBLE_EQ(band.GetMean(), 4.5);
    EXPECT_DOUBLE_EQ(band.GetStandardDeviation(), std::sqrt(8.25));
    EXPECT_DOUBLE_EQ(stretch.GetBands()[0].range.low, 0) << "not below the minimum";
    EXPECT_DOUBLE_EQ(stretch.GetBands()[0].range.high, 9);
    stretch.SetImage();
    Prepare(stretch, "stddev");
    EXPECT_DOUBLE_EQ(band.GetMean(), 49.5);
}

TEST(StretchPreparation, RangesAreGivenForAllBandsOrForEach) {
    const Pixels values = {0, 50, 100};
    ShownRaster source({.width = 3, .height = 1, .type = GDT_UInt16}, {values, values, values});
    source.Show({0, 1, 2});
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetRanges({{0, 100}}));
    Prepare(stretch, "linear");
    EXPECT_EQ(source.Interleaved(), (Bytes{0, 0, 0, 255, 127, 127, 127, 255, 255, 255, 255, 255}));
    ASSERT_TRUE(stretch.SetRanges({{0, 100}, {0, 50}, {50, 100}}));
    Prepare(stretch, "linear");
    EXPECT_EQ(source.Interleaved(), (Bytes{0, 0, 0, 255, 0, 255, 127, 255, 255, 255, 255, 255}));
    ASSERT_TRUE(stretch.SetRanges({{0, 100}, {0, 50}}));
    EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED) << "two for three bands";
    EXPECT_FALSE(stretch.SetRanges({{5, 5}}));
    EXPECT_FALSE(stretch.SetRanges({{0, NAN}}));
}

TEST(StretchPreparation, GivenRangesNeedNoStatisticsOfTheBand) {
    ShownRaster source = Ramp();
    CRasterBand& band = *source.GetRasterBand(0);
    EXPECT_TRUE(band.ReplaceStatistics(1, 2, 1.5, 0.25));
    EXPECT_EQ(band.GetMinimum(), 1);
    EXPECT_EQ(band.GetMaximum(), 2);
    EXPECT_EQ(band.GetMean(), 1.5);
    EXPECT_TRUE(band.ReplaceStatistics(3, 4, 3.5, 0.25));
    EXPECT_EQ(band.GetStdDevLowerBound(), 3);
    band.RestoreStatistics();
    EXPECT_EQ(band.GetMinimum(), 0);
    EXPECT_EQ(band.GetMaximum(), 99);
    band.RestoreStatistics();
    EXPECT_EQ(band.GetMean(), 49.5);
    EXPECT_TRUE(band.ReplaceStatistics(1, 2, 1.5, 0.25)) << "known by now";
    band.RestoreStatistics();
    EXPECT_EQ(band.GetMaximum(), 99);
}

TEST(StretchPreparation, GammaBendsWhatTheStretchShows) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetGamma({2.0}));
    for (const char* name : {"linear", "percent", "stddev"}) {
        ShownRaster straight = Ramp();
        CStretchPreparation without(&straight);
        Prepare(without, name);
        Bytes expected = Reds(straight);
        const bool inner = std::string(name) == "stddev";
        for (unsigned char& byte : expected)
            byte =
                static_cast<unsigned char>(std::clamp(std::lround(255.0 * std::sqrt(byte / 255.0)),
                                                      inner ? 1L : 0L, inner ? 254L : 255L));
        Prepare(stretch, name);
        const Bytes found = Reds(source);
        for (std::size_t i = 0; i < found.size(); ++i) {
            // The standard deviation cuts at 1 and 254 before the curve, the curve after it.
            const bool atEnd = inner && (i == 0 || i == found.size() - 1);
            EXPECT_NEAR(found[i], expected[i], atEnd ? 16 : 0) << name << " " << i;
        }
    }
}

TEST(StretchPreparation, TheTableIsACurveOfItsOwnUnlessGammaIsSet) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    Prepare(stretch, "table");
    EXPECT_EQ(Reds(source)[50],
              static_cast<unsigned char>(
                  std::lround(255.0 * std::pow(std::floor(50 / 99.0 * 255.0) / 255.0, 1 / 1.5))));
    ASSERT_TRUE(stretch.SetGamma({1.0}));
    Prepare(stretch, "table");
    EXPECT_EQ(Reds(source), LinearBetween(0, 99));
}

TEST(StretchPreparation, EqualizesByTheHistogramOfTheView) {
    // Half of the view's values are 10, a quarter 20, a quarter 30; the rest of the image is
    // brighter.
    const Pixels values = {10, 10, 20, 30, 100, 100, 100, 200};
    ShownRaster source({.width = 8, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {values});
    CStretchPreparation stretch(&source);
    stretch.SetView({0, 1, 4, 0});
    Prepare(stretch, "equalize");
    const Bytes reds = Reds(source);
    EXPECT_EQ(reds[0], 127); // 255 × 2 / 4
    EXPECT_EQ(reds[2], 191); // 255 × 3 / 4
    EXPECT_EQ(reds[3], 255);
    stretch.SetImage();
    Prepare(stretch, "equalize");
    EXPECT_LT(Reds(source)[3], 255) << "the histogram of the whole band is counted anew";
}

TEST(StretchPreparation, AutoLevelsAreFoundAnewAfterAnEqualisation) {
    ShownRaster fresh = Ramp(GDT_Byte);
    CStretchPreparation alone(&fresh);
    Prepare(alone, "autolevels");
    const Bytes expected = Reds(fresh);
    ShownRaster source = Ramp(GDT_Byte);
    CStretchPreparation stretch(&source);
    for (const char* name : {"autolevels", "equalize", "autolevels"}) {
        Prepare(stretch, name);
        Reds(source);
    }
    EXPECT_EQ(Reds(source), expected);
}

TEST(StretchPreparation, WallisStartsFromADrawingOfTheWholeImageWhateverWasDrawnBefore) {
    const auto pixels = [](double scale) {
        return MakePixels(20, 20, [=](int c, int r) { return scale * (c + 5 * r); });
    };
    const auto make = [&] {
        return ShownRaster({.width = 20, .height = 20, .geoTransform = NorthUp(0, 20, 1)},
                           {pixels(1.0), pixels(0.5), pixels(1.5)});
    };
    ShownRaster fresh = make();
    CStretchPreparation alone(&fresh);
    Prepare(alone, "wallis");
    ShownRaster source = make();
    CBoundingBox corner(0, 20, 3, 17);
    Bytes picture(3 * 3 * 4);
    ASSERT_TRUE(source.GetShowData(&corner, 3, 3, picture.data(), false));
    CStretchPreparation stretch(&source);
    Prepare(stretch, "wallis");
    EXPECT_EQ(source.Interleaved(), fresh.Interleaved());
    Prepare(stretch, "wallis");
    EXPECT_EQ(source.Interleaved(), fresh.Interleaved()) << "prepared twice";
    source.Show({0});
    EXPECT_FALSE(stretch.SuitsShownBands());
    EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED);
}

TEST(StretchPreparation, AutoLeavesBytesPalettesAndClassesAsTheyAre) {
    ShownRaster bytes = Ramp(GDT_Byte);
    CStretchPreparation stretch(&bytes);
    Prepare(stretch, "auto");
    EXPECT_EQ(stretch.GetAppliedStretch(), "none");
    EXPECT_EQ(Reds(bytes)[77], 77);
    ShownRaster sixteen = Ramp();
    CStretchPreparation percent(&sixteen);
    Prepare(percent, "auto");
    EXPECT_EQ(percent.GetAppliedStretch(), "percent");
    EXPECT_EQ(Reds(sixteen), LinearBetween(1.98, 97.02));
    CClassifyDisplayTable classes = TwoClasses();
    sixteen.SetClassifyDisplayTable(&classes);
    sixteen.SetDisplayType(DISPLAY_CLASSIFIED);
    Prepare(percent, "auto");
    EXPECT_EQ(percent.GetAppliedStretch(), "none");
}

TEST(StretchPreparation, AutoWithGammaBendsBytesOverTheirWholeRange) {
    ShownRaster source = Ramp(GDT_Byte);
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetGamma({0.5}));
    Prepare(stretch, "auto");
    EXPECT_EQ(Reds(source)[99], std::lround(255.0 * std::pow(99 / 255.0, 2.0)));
}

TEST(StretchPreparation, RefusesSettingsThatTheStretchDoesNotTake) {
    ShownRaster source = Ramp();
    const auto refuses = [&](const std::string& name, auto set) {
        CStretchPreparation stretch(&source);
        EXPECT_TRUE(stretch.SetStretch(name));
        set(stretch);
        EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED);
        return CGISDataSource::GetLastErrorText();
    };
    const std::string file = std::string(refuses("none", [](auto& s) { s.SetClip(1, 99); }));
    EXPECT_NE(file.find("scene.tif: the stretch 'none' takes no percentages"), std::string::npos);
    refuses("stddev", [](auto& s) { s.SetRanges({{0, 1}}); });
    refuses("equalize", [](auto& s) { s.SetGamma({2}); });
    refuses("wallis", [](auto& s) { s.SetView({0, 1, 1, 0}); });
    refuses("linear", [](auto& s) { s.SetBounds(0, {}); });
    refuses("linear", [](auto& s) { s.SetBounds({}, 1); });
    refuses("linear", [](auto& s) { s.SetThreshold(0.1); });
    refuses("linear", [](auto& s) { s.SetWallisModel(1); });
    refuses("none", [](auto& s) { s.SetExact(true); });
    refuses("linear", [](auto& s) {
        s.SetRanges({{0, 1}});
        s.SetView({0, 1, 1, 0});
    });
    EXPECT_TRUE(CStretchPreparation::Takes("auto", Setting::Clip));
    EXPECT_FALSE(CStretchPreparation::Takes("loud", Setting::Clip));
}

TEST(StretchPreparation, ARegionWithoutValuesLeavesTheFormerStretch) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    stretch.SetView({20, 1, 40, 0});
    Prepare(stretch, "linear");
    stretch.SetView({200, 1, 240, 0});
    EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED);
    EXPECT_EQ(Reds(source), LinearBetween(20, 39));
    RecordingProgress cancelling(0);
    stretch.SetView({50, 1, 61, 0});
    EXPECT_EQ(stretch.Apply(&cancelling), GIS_FAILED);
    EXPECT_EQ(Reds(source), LinearBetween(20, 39));
}

TEST(StretchPreparation, ARegionOfOneValueIsDark) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    stretch.SetView({42, 1, 43, 0});
    for (const char* name : {"linear", "percent"}) {
        Prepare(stretch, name);
        EXPECT_EQ(Reds(source)[42], 0) << name;
        EXPECT_EQ(Reds(source)[44], 255) << name;
    }
}

TEST(StretchPreparation, MostlyEqualValuesAreShownFromMinimumToMaximum) {
    Pixels values(100, 7.0);
    values[99] = 200;
    ShownRaster source({.width = 100, .height = 1, .type = GDT_UInt16}, {values});
    CStretchPreparation stretch(&source);
    Prepare(stretch, "percent");
    EXPECT_EQ(stretch.GetBands()[0].range.low, 7);
    EXPECT_EQ(stretch.GetBands()[0].range.high, 200);
}

TEST(StretchPreparation, RefusesClosedSourcesAndBandsThatAreNotThere) {
    CStretchPreparation nothing(nullptr);
    EXPECT_EQ(nothing.Apply(nullptr), GIS_FAILED);
    EXPECT_TRUE(nothing.SuitsShownBands());
    ASSERT_TRUE(nothing.SetStretch("wallis"));
    EXPECT_FALSE(nothing.SuitsShownBands());
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    source.Show({3});
    EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED);
    source.Close();
    EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED);

    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 1, .height = 1}, {{5}});
    CRasterSource hidden; // not for display
    ASSERT_EQ(hidden.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    CStretchPreparation ofNone(&hidden);
    EXPECT_EQ(ofNone.Apply(nullptr), GIS_FAILED);
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("a.tif: it shows no band"), std::string::npos)
        << CGISDataSource::GetLastErrorText();
}

TEST(StretchPreparation, RefusesValuesThatMeanNothing) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    const double nan = std::nan("");
    const auto reason = [] { return CGISDataSource::GetLastErrorText(); };
    EXPECT_FALSE(stretch.SetClip(-1, 98));
    EXPECT_FALSE(stretch.SetClip(98, 2));
    EXPECT_FALSE(stretch.SetClip(2, 101));
    EXPECT_FALSE(stretch.SetClip(2, nan));
    EXPECT_EQ(reason(), "percentages are 0 to 100, the low one first");
    EXPECT_FALSE(stretch.SetRanges({{1, 2}, {3, 3}}));
    EXPECT_FALSE(stretch.SetRanges({{1, HUGE_VAL}}));
    EXPECT_FALSE(stretch.SetRanges({{-HUGE_VAL, 1}}));
    EXPECT_EQ(reason(), "the low end of a range is less than its high one");
    EXPECT_FALSE(stretch.SetGamma({1, 0}));
    EXPECT_FALSE(stretch.SetGamma({HUGE_VAL}));
    EXPECT_EQ(reason(), "gamma is a number above 0");
    EXPECT_FALSE(stretch.SetBounds(nan, {}));
    EXPECT_FALSE(stretch.SetBounds({}, HUGE_VAL));
    EXPECT_FALSE(stretch.SetBounds(5, 5));
    EXPECT_EQ(reason(), "the low bound is less than the high one");
    EXPECT_TRUE(stretch.SetBounds({}, {}));
    EXPECT_FALSE(stretch.SetThreshold(-0.1));
    EXPECT_FALSE(stretch.SetThreshold(0.5));
    EXPECT_EQ(reason(), "the threshold is a fraction below a half");
    EXPECT_FALSE(stretch.SetWallisModel(-1));
    EXPECT_FALSE(stretch.SetWallisModel(3));
    EXPECT_EQ(reason(), "the Wallis model is 0, 1 or 2");
    // Nothing of this was taken.
    ASSERT_TRUE(stretch.SetStretch("none"));
    EXPECT_EQ(stretch.Apply(nullptr), GIS_SUCCESS) << reason();
}

TEST(StretchPreparation, BoundsOfAHistogramThatDoNotIncreaseAreRefused) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetStretch("equalize"));
    ASSERT_TRUE(stretch.SetBounds(200, {})); // above the largest value
    EXPECT_NE(stretch.Apply(nullptr), GIS_SUCCESS);
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
}

TEST(StretchPreparation, ValuesTooCloseForAHistogramAreNotSupported) {
    ShownRaster source({.width = 4, .height = 1, .type = GDT_Float32}, {{1, 1.25, 1.5, 1.9375}});
    source.SetStretchType(StretchStdDev);
    for (const char* name : {"equalize", "autolevels"}) {
        CStretchPreparation stretch(&source);
        ASSERT_TRUE(stretch.SetStretch(name));
        EXPECT_EQ(stretch.Apply(nullptr), GIS_NOT_SUPPORTED) << name;
        EXPECT_NE(CGISDataSource::GetLastErrorText().find(
                      "scene.tif: the values of a band lie too close together for a histogram"),
                  std::string::npos)
            << CGISDataSource::GetLastErrorText();
        EXPECT_EQ(source.GetStretchType(), StretchStdDev) << "the former one";
    }
}

TEST(StretchPreparation, ACancelledHistogramIsNoMatterOfItsValues) {
    ShownRaster source({.width = 4, .height = 1, .type = GDT_Float32}, {{1, 1.25, 1.5, 1.9375}});
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetStretch("custom-equalize"));
    RecordingProgress counting(0);
    EXPECT_EQ(stretch.Apply(&counting), GIS_FAILED);
    EXPECT_EQ(source.GetRasterBand(0)->GetCustomHistogramObject(), nullptr);
    ASSERT_TRUE(stretch.SetStretch("equalize"));
    stretch.SetExact(true);
    RecordingProgress reading(0);
    EXPECT_EQ(stretch.Apply(&reading), GIS_FAILED);
    EXPECT_EQ(source.GetStretchType(), StretchNone);
}

TEST(StretchPreparation, ABandThatCannotBeReadFails) {
    for (const char* type : {"Byte", "UInt16"}) {
        for (const char* name : {"custom-equalize", "wallis"}) {
            const TemporaryFolder folder;
            ShownRaster source = Unreadable(folder, type);
            source.SetStretchType(StretchStdDev);
            CStretchPreparation stretch(&source);
            ASSERT_TRUE(stretch.SetStretch(name));
            ASSERT_TRUE(std::string(name) == "wallis" || stretch.SetBounds(0, 100));
            EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED) << name;
            EXPECT_NE(CGISDataSource::GetLastErrorText().find("gone.tif"), std::string::npos)
                << name << ": " << CGISDataSource::GetLastErrorText();
            EXPECT_EQ(source.GetStretchType(), StretchStdDev) << "the former one";
        }
    }
}

TEST(StretchPreparation, ABandWhoseHistogramCannotBeCountedFails) {
    const TemporaryFolder folder;
    ShownRaster source = Unreadable(folder, "Byte");
    CStretchPreparation stretch(&source);
    for (const char* name : {"equalize", "autolevels"}) {
        ASSERT_TRUE(stretch.SetStretch(name));
        EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED) << name;
        EXPECT_NE(CGISDataSource::GetLastErrorText().find("gone.tif"), std::string::npos) << name;
    }
}

TEST(StretchPreparation, EqualizesBetweenBoundsByTheHistogramOfTheView) {
    // Of the view's values half are 10, a quarter is 20, a quarter 30.
    const Pixels values = {10, 10, 20, 30, 100, 100, 100, 200};
    ShownRaster source(
        {.width = 8, .height = 1, .type = GDT_UInt16, .geoTransform = NorthUp(0, 1, 1)}, {values});
    CStretchPreparation stretch(&source);
    stretch.SetView({0, 1, 4, 0});
    ASSERT_TRUE(stretch.SetBounds(0, 40));
    Prepare(stretch, "custom-equalize");
    EXPECT_EQ(Reds(source), (Bytes{127, 127, 191, 255, 255, 255, 255, 255}));
    EXPECT_EQ(stretch.GetBands()[0].range.low, 0);
    EXPECT_EQ(stretch.GetBands()[0].range.high, 40);
    EXPECT_EQ(stretch.GetBands()[0].count, 4);
    ASSERT_TRUE(stretch.SetBounds({}, {}));
    Prepare(stretch, "custom-equalize");
    EXPECT_EQ(stretch.GetBands()[0].range.low, 0);
    EXPECT_EQ(stretch.GetBands()[0].range.high, 30) << "the brightest of the view";
    ASSERT_TRUE(stretch.SetBounds(30, {}));
    EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED);
    EXPECT_NE(CGISDataSource::GetLastErrorText().find(
                  "the low bound of the histogram is not less than its high one"),
              std::string::npos);
    EXPECT_EQ(stretch.GetBands()[0].range.high, 30) << "what was applied last";
}

TEST(StretchPreparation, BoundsOfAHistogramWithoutPositiveValuesBeginAtTheLeast) {
    ShownRaster source(
        {.width = 4, .height = 1, .type = GDT_Int16, .geoTransform = NorthUp(0, 1, 1)},
        {{-30, -20, -10, -10}});
    CStretchPreparation stretch(&source);
    Prepare(stretch, "custom-equalize");
    EXPECT_EQ(stretch.GetBands()[0].range.low, -30);
    EXPECT_EQ(stretch.GetBands()[0].range.high, -10);
    stretch.SetView({0, 1, 2, 0});
    Prepare(stretch, "custom-equalize");
    EXPECT_EQ(stretch.GetBands()[0].range.low, -30);
    EXPECT_EQ(stretch.GetBands()[0].range.high, -20);
    EXPECT_EQ(stretch.GetBands()[0].count, 2);
}

TEST(StretchPreparation, AutoLevelsOfAViewAreThoseOfAnImageOfIt) {
    ShownRaster source = Ramp();
    CStretchPreparation stretch(&source);
    stretch.SetView({0, 1, 10, 0});
    Prepare(stretch, "autolevels");
    ShownRaster part({.width = 10, .height = 1, .type = GDT_UInt16},
                     {MakePixels(10, 1, [](int column, int) { return column; })});
    CStretchPreparation ofPart(&part);
    ofPart.SetExact(true);
    Prepare(ofPart, "autolevels");
    EXPECT_EQ(ofPart.GetBands()[0].count, 10);
    Bytes reds = Reds(source);
    reds.resize(10);
    EXPECT_EQ(reds, Reds(part));
    EXPECT_LT(reds.front(), reds.back());
}

TEST(StretchPreparation, CancellingAtAnyStepLeavesTheFormerStretch) {
    for (const std::string name : {"percent", "equalize", "custom-equalize"}) {
        ShownRaster source = Ramp();
        source.SetStretchType(StretchStdDev);
        CStretchPreparation stretch(&source);
        ASSERT_TRUE(stretch.SetStretch(name));
        stretch.SetExact(true);
        int steps = 0;
        for (GISError error = GIS_FAILED; error != GIS_SUCCESS; ++steps) {
            ASSERT_LT(steps, 1000) << name;
            EXPECT_EQ(source.GetStretchType(), StretchStdDev) << name << " " << steps;
            RecordingProgress cancelling(steps);
            error = stretch.Apply(&cancelling);
            EXPECT_TRUE(error == GIS_SUCCESS || error == GIS_FAILED) << name << " " << steps;
        }
        EXPECT_GT(steps, 2) << name << ": values and histogram are two things to cancel";
        EXPECT_NE(source.GetStretchType(), StretchStdDev) << name;
    }
}

TEST(StretchPreparation, GammaIsGivenForEachBand) {
    const Pixels values = {0, 50, 100};
    ShownRaster source({.width = 3, .height = 1, .type = GDT_UInt16}, {values, values, values});
    source.Show({0, 1, 2});
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetRanges({{0, 100}}));
    ASSERT_TRUE(stretch.SetGamma({1, 2, 0.5}));
    Prepare(stretch, "linear");
    // 127 of 255: 255 · √0.498 = 179.96, 255 · 0.498² = 63.25.
    EXPECT_EQ(source.Interleaved(), (Bytes{0, 0, 0, 255, 63, 180, 127, 255, 255, 255, 255, 255}));
    ASSERT_TRUE(stretch.SetGamma({1, 2}));
    EXPECT_EQ(stretch.Apply(nullptr), GIS_FAILED) << "two for three bands";
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("neither one range and gamma"),
              std::string::npos);
}

TEST(StretchPreparation, ExactReadsEveryValueThoughTheBandHasItsOwnRange) {
    ShownRaster source = Ramp();
    ASSERT_TRUE(source.GetRasterBand(0)->ReplaceStatistics(1, 2, 1.5, 0.25));
    CStretchPreparation stretch(&source);
    stretch.SetExact(true);
    Prepare(stretch, "linear");
    EXPECT_EQ(stretch.GetBands()[0].count, 100);
    EXPECT_FALSE(stretch.IsSampled());
    EXPECT_EQ(Reds(source), LinearBetween(0, 99));
}

TEST(StretchPreparation, AutoLeavesAPaletteAsItIs) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("i.tif"), {.width = 2, .height = 1}, {{0, 1}});
    ShownRaster source(R"(<VRTDataset rasterXSize="2" rasterYSize="1">
  <VRTRasterBand dataType="Byte" band="1"><ColorInterp>Palette</ColorInterp>
    <ColorTable><Entry c1="10" c2="20" c3="30" c4="255"/>
      <Entry c1="11" c2="21" c3="31" c4="255"/></ColorTable>
    <SimpleSource><SourceFilename>)" +
                       folder.File("i.tif") + R"(</SourceFilename><SourceBand>1</SourceBand>
    </SimpleSource></VRTRasterBand>
</VRTDataset>)");
    CStretchPreparation stretch(&source);
    ASSERT_TRUE(stretch.SetGamma({2}));
    Prepare(stretch, "auto");
    EXPECT_EQ(stretch.GetAppliedStretch(), "none");
    EXPECT_EQ(stretch.GetBands()[0].range.high, 0);
    EXPECT_EQ(source.Interleaved(), (Bytes{30, 20, 10, 255, 31, 21, 11, 255}));
}
