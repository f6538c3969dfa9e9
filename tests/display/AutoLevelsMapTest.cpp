#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/display/ComposedRaster.h"
#include "zelto/display/RasterHistogram.h"

#include "tests/display/PlainDisplay.h"
#include "tests/display/ShownRaster.h"

#include <numeric>

using namespace zelto::test;

namespace {

constexpr int WIDTH = 60;

const RasterSpec ONE_ROW = {.width = WIDTH, .height = 1, .geoTransform = NorthUp(0, 1, 1)};

/// Values 1 … 179 with many small ones, so that equalisation and auto levels differ.
Pixels Skewed() {
    Pixels pixels;
    for (int i = 0; i < WIDTH; ++i)
        pixels.push_back(i < 40 ? 1 + i / 8 : 9 * (i - 40) + 8);
    return pixels;
}

/// The plain statement of a band, with a histogram as EnableHistogramEqualize() leaves it.
PlainDisplay PlainOf(CRasterBand& band) {
    PlainDisplay plain;
    plain.isByte = true;
    plain.min = band.GetMinimum();
    plain.max = band.GetMaximum();
    PlainHistogram histogram;
    int buckets = 0;
    const int* counts = band.GetHistogramObject()->GetHistogram(histogram.min, histogram.max,
                                                                buckets, nullptr, nullptr);
    histogram.counts.assign(counts, counts + buckets);
    histogram.SetEqualizationMap();
    plain.histogram = histogram;
    return plain;
}

Bytes Shown(PlainDisplay& plain, int type, const Pixels& pixels) {
    plain.type = type;
    Bytes bytes;
    for (const double value : pixels)
        bytes.push_back(plain.ShowValue(value));
    return bytes;
}

/// Rows of Skewed().
Pixels SkewedRows(int rows) {
    const Pixels row = Skewed();
    return MakePixels(WIDTH, rows,
                      [&](int column, int) { return row[static_cast<std::size_t>(column)]; });
}

/// One band, equalised, its stretch set to auto levels.
struct EqualisedScene {
    ShownRaster source;
    PlainDisplay plain;

    explicit EqualisedScene(int rows = 1)
        : source({.width = WIDTH, .height = rows, .geoTransform = NorthUp(0, rows, 1)},
                 {SkewedRows(rows)}) {
        EXPECT_TRUE(source.EnableHistogramEqualize());
        plain = PlainOf(*source.GetRasterBand(0));
        source.SetStretchType(StretchAutoLevels);
    }
    /// What is drawn as equalised now.
    Bytes Equalised() {
        source.SetStretchType(StretchHistEqualize);
        return source.Planes(1)[0];
    }
    void DrawWithoutShapes() {
        CAOISource shapes;
        CRasterAOI area(&source, &shapes);
        EXPECT_EQ(source.Planes(1, &area)[0], Bytes(WIDTH, 0));
    }
};

} // namespace

TEST(AutoLevelsMap, AnAreaWithoutShapesLeavesTheEqualisationMap) {
    EqualisedScene scene;
    scene.DrawWithoutShapes();
    EXPECT_EQ(scene.Equalised(), Shown(scene.plain, StretchHistEqualize, Skewed()));
}

TEST(AutoLevelsMap, TheFirstSampleShownReplacesTheEqualisationMap) {
    EqualisedScene scene;
    const Bytes equalised = Shown(scene.plain, StretchHistEqualize, Skewed());
    EXPECT_EQ(scene.source.Planes(1)[0], Shown(scene.plain, StretchAutoLevels, Skewed()));
    EXPECT_EQ(scene.Equalised(), Shown(scene.plain, StretchHistEqualize, Skewed()));
    EXPECT_NE(scene.Equalised(), equalised) << "both maps share one place";
}

TEST(AutoLevelsMap, APointQueryThatFailsLeavesTheEqualisationMap) {
    EqualisedScene scene;
    unsigned char byte = 0;
    EXPECT_FALSE(scene.source.GetRasterBand(0)->GetShowValueAt(-5.0, 0.0, &byte));
    EXPECT_EQ(scene.Equalised(), Shown(scene.plain, StretchHistEqualize, Skewed()));
}

TEST(AutoLevelsMap, AnotherThresholdRewritesItWithTheFirstSampleShown) {
    EqualisedScene scene;
    Shown(scene.plain, StretchAutoLevels, Skewed());
    scene.source.Planes(1);
    EXPECT_TRUE(scene.source.EnableHistogramEqualize());
    scene.plain.histogram->SetEqualizationMap();
    scene.source.SetAutoLevelThresold(0.2);
    scene.plain.threshold = 0.2;
    scene.DrawWithoutShapes();
    EXPECT_EQ(scene.Equalised(), Shown(scene.plain, StretchHistEqualize, Skewed()));
    scene.source.SetStretchType(StretchAutoLevels);
    EXPECT_EQ(scene.source.Planes(1)[0], Shown(scene.plain, StretchAutoLevels, Skewed()));
}

TEST(AutoLevelsMap, NoDataIsNoSample) {
    EqualisedScene scene;
    scene.source.SetAllBandNoDataValue(8.0, false);
    // One column of the value 8.
    CBoundingBox box(40.0, 1.0, 41.0, 0.0);
    Bytes image(4);
    EXPECT_TRUE(scene.source.GetShowData(&box, 1, 1, image.data(), false));
    EXPECT_EQ(image, (Bytes{255, 255, 255, 0}));
    scene.source.ClearAllBandNoDataValue(false);
    EXPECT_EQ(scene.Equalised(), Shown(scene.plain, StretchHistEqualize, Skewed()));
}

TEST(AutoLevelsMap, PixelsThatAnEarlierBandMadeTransparentShowNoSample) {
    const Pixels nothing(WIDTH, 7.0);
    ShownRaster source(ONE_ROW, {nothing, Skewed(), Skewed()});
    source.Show({0, 1, 2});
    CRasterBand& green = *source.GetRasterBand(1);
    ASSERT_TRUE(green.EnableHistogramEqualize());
    PlainDisplay plain = PlainOf(green);
    green.SetStretchType(StretchAutoLevels);
    source.GetRasterBand(0)->SetNoDataValue(7.0, false);
    source.Interleaved();
    source.Show({1});
    green.SetStretchType(StretchHistEqualize);
    EXPECT_EQ(source.Planes(1)[0], Shown(plain, StretchHistEqualize, Skewed()));
}

TEST(AutoLevelsMap, AComposedRasterBuildsItTheSameWay) {
    EqualisedScene scene;
    CRasterSource& source = scene.source;
    CRasterBand* band = source.GetRasterBand(0);
    CComposedRaster composed;
    ASSERT_EQ(composed.CreateRaster(&source, band, &source, band, &source, band), GIS_SUCCESS);
    CAOISource shapes;
    CRasterAOI area(&composed, &shapes);
    CBoundingBox box = composed.GetExtent();
    Bytes plane(WIDTH);
    unsigned char* planes[] = {plane.data()};
    EXPECT_TRUE(composed.GetShowData(&box, WIDTH, 1, 1, planes, &area, false));
    EXPECT_EQ(scene.Equalised(), Shown(scene.plain, StretchHistEqualize, Skewed()));

    source.SetStretchType(StretchAutoLevels);
    EXPECT_TRUE(composed.GetShowData(&box, WIDTH, 1, 1, planes, nullptr, false));
    EXPECT_EQ(plane, Shown(scene.plain, StretchAutoLevels, Skewed()));
}

TEST(AutoLevelsMap, IsBuiltForASampleInAnyOfManyRows) {
    constexpr int ROWS = 3;
    const auto grey = [](const Bytes& values) {
        Bytes image;
        for (const unsigned char v : values)
            image.insert(image.end(), {v, v, v, 255});
        return image;
    };
    {
        EqualisedScene scene(ROWS);
        EXPECT_EQ(scene.source.Planes(1)[0],
                  Shown(scene.plain, StretchAutoLevels, SkewedRows(ROWS)));
    }
    {
        EqualisedScene scene(ROWS);
        EXPECT_EQ(scene.source.Interleaved(),
                  grey(Shown(scene.plain, StretchAutoLevels, SkewedRows(ROWS))));
    }
    for (const bool asPlanes : {false, true}) {
        EqualisedScene scene(ROWS);
        CRasterSource& source = scene.source;
        CRasterBand* band = source.GetRasterBand(0);
        CComposedRaster composed;
        ASSERT_EQ(composed.CreateRaster(&source, band, &source, band, &source, band), GIS_SUCCESS);
        CBoundingBox box = composed.GetExtent();
        const Bytes expected = Shown(scene.plain, StretchAutoLevels, SkewedRows(ROWS));
        Bytes image(static_cast<std::size_t>(WIDTH) * ROWS * (asPlanes ? 1 : 4));
        unsigned char* planes[] = {image.data()};
        if (asPlanes) {
            EXPECT_TRUE(composed.GetShowData(&box, WIDTH, ROWS, 1, planes, nullptr, false));
            EXPECT_EQ(image, expected);
        } else {
            EXPECT_TRUE(composed.GetShowData(&box, WIDTH, ROWS, image.data(), false));
            EXPECT_EQ(image, grey(expected));
        }
    }
}

TEST(AutoLevelsMap, OfAComposedRasterNeedsAPixelThatItsFirstSourceShows) {
    EqualisedScene scene;
    ShownRaster hidden(ONE_ROW, {Pixels(WIDTH, 7.0)});
    hidden.GetRasterBand(0)->SetNoDataValue(7.0, false);
    CRasterBand* band = scene.source.GetRasterBand(0);
    CComposedRaster composed;
    ASSERT_EQ(composed.CreateRaster(&hidden, hidden.GetRasterBand(0), &scene.source, band,
                                    &scene.source, band),
              GIS_SUCCESS);
    CBoundingBox box = composed.GetExtent();
    Bytes image(static_cast<std::size_t>(WIDTH) * 4);
    EXPECT_TRUE(composed.GetShowData(&box, WIDTH, 1, image.data(), false));
    EXPECT_EQ(image[3], 0);
    EXPECT_EQ(scene.Equalised(), Shown(scene.plain, StretchHistEqualize, Skewed()));

    hidden.ClearAllBandNoDataValue(false);
    scene.source.SetStretchType(StretchAutoLevels);
    EXPECT_TRUE(composed.GetShowData(&box, WIDTH, 1, image.data(), false));
    Bytes greens;
    for (std::size_t i = 1; i < image.size(); i += 4)
        greens.push_back(image[i]);
    EXPECT_EQ(greens, Shown(scene.plain, StretchAutoLevels, Skewed()));
}

TEST(AutoLevelsMap, ASinglePixelHasNoUseForIt) {
    ShownRaster source({.width = 1, .height = 1}, {{200}});
    int counts[] = {1, 5, 1, 9};
    ASSERT_TRUE(source.GetRasterBand(0)->SetHistogram(0, 255, 4, counts));
    source.SetStretchType(StretchAutoLevels);
    EXPECT_EQ(source.Interleaved(), (Bytes{200, 200, 200, 255}));
}
