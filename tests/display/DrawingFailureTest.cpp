#include "zelto/display/ComposedRaster.h"

#include "tests/display/ShownRaster.h"
#include "tests/support/Text.h"

#include <filesystem>

using namespace zelto::test;

namespace {

const RasterSpec GROUND = {.width = 10, .height = 10, .geoTransform = NorthUp(0, 10, 1)};

/// Draws 4 × 4 pixels of a box.
bool Draw(CRasterSource& source, CBoundingBox box) {
    Bytes image(64);
    return source.GetShowData(&box, 4, 4, image.data(), false);
}

bool DrawPlanes(CRasterSource& source, CBoundingBox box) {
    Bytes plane(16);
    unsigned char* planes[] = {plane.data()};
    return source.GetShowData(&box, 4, 4, 1, planes, nullptr, false);
}

void ExpectReason(const CRasterSource& source, const std::string& words) {
    const std::string reason = CGISDataSource::GetLastErrorText();
    EXPECT_EQ(reason.rfind(Narrow(source.GetFilePath()) + ": ", 0), 0U) << reason;
    EXPECT_NE(reason.find(words), std::string::npos) << reason;
}

} // namespace

TEST(DrawingFailure, NamesTheImageAndWhatTheBoxMisses) {
    ShownRaster source(GROUND, {Pixels(100, 7.0)});
    const CBoundingBox elsewhere(500, 510, 510, 500);
    EXPECT_FALSE(Draw(source, elsewhere));
    ExpectReason(source, "misses the image");
    EXPECT_FALSE(DrawPlanes(source, elsewhere));
    ExpectReason(source, "misses the image");
    CBoundingBox box = elsewhere;
    EXPECT_FALSE(source.GetShowData2Cache(&box, 4, 4));
    ExpectReason(source, "misses the image");
    EXPECT_FALSE(source.GetShowData(nullptr, 4, 4, nullptr, false));
    ExpectReason(source, "no box");
    unsigned char r = 0;
    EXPECT_FALSE(source.GetShowValueFormCache(5, 5, r, r, r, r));
    ExpectReason(source, "no value");

    EXPECT_TRUE(Draw(source, source.GetExtent()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "") << "forgotten";
}

TEST(DrawingFailure, NamesABandThatDoesNotExist) {
    ShownRaster source(GROUND, {Pixels(100, 7.0)});
    source.Show({3});
    EXPECT_FALSE(Draw(source, source.GetExtent()));
    ExpectReason(source, "does not exist");
    EXPECT_FALSE(DrawPlanes(source, source.GetExtent()));
    ExpectReason(source, "does not exist");
}

TEST(DrawingFailure, TellsWhatGdalSaysOfPixelsThatCannotBeRead) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("gone.tif"), GROUND, {Pixels(100, 7.0)});
    ShownRaster source("<VRTDataset rasterXSize='10' rasterYSize='10'>"
                       "<GeoTransform>0,1,0,10,0,-1</GeoTransform>"
                       "<VRTRasterBand dataType='Byte' band='1'><SimpleSource><SourceFilename>" +
                       folder.File("gone.tif") +
                       "</SourceFilename><SourceProperties RasterXSize='10' RasterYSize='10' "
                       "DataType='Byte'/></SimpleSource></VRTRasterBand></VRTDataset>");
    source.Close();
    std::filesystem::remove(folder.File("gone.tif"));
    ASSERT_EQ(source.Reopen(GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_FALSE(Draw(source, source.GetExtent()));
    ExpectReason(source, "gone.tif");
    CBoundingBox box = source.GetExtent();
    Bytes plane(16);
    unsigned char* planes[] = {plane.data()};
    EXPECT_FALSE(source.GetShowDataGray(&box, 4, 4, 1, planes, nullptr, false));
    ExpectReason(source, "gone.tif");
}

TEST(DrawingFailure, AViewThatEnlargesAPixelToGigabytesIsRefused) {
    ShownRaster source(GROUND, {Pixels(100, 7.0)});
    // Around a corner of four pixels, which would be read at 80000 × 80000.
    const CBoundingBox box(5.99995, 6.00005, 6.00005, 5.99995);
    EXPECT_FALSE(Draw(source, box));
    ExpectReason(source, "enlarges");
}

TEST(DrawingFailure, AComposedRasterNamesTheSourceThatCannotBeRead) {
    ShownRaster source(GROUND, {Pixels(100, 7.0)});
    CRasterBand* band = source.GetRasterBand(0);
    CComposedRaster composed;
    ASSERT_EQ(composed.CreateRaster(&source, band, &source, band, &source, band), GIS_SUCCESS);
    EXPECT_FALSE(Draw(composed, {5.99995, 6.00005, 6.00005, 5.99995}));
    const std::string reason = CGISDataSource::GetLastErrorText();
    EXPECT_EQ(reason.rfind("RGBComposedFile", 0), 0U) << reason;
    EXPECT_NE(reason.find("scene.tif: the view enlarges"), std::string::npos) << reason;
}

TEST(DrawingFailure, AComposedRasterNamesABandThatDoesNotExist) {
    ShownRaster source(GROUND, {Pixels(100, 7.0)});
    CRasterBand* band = source.GetRasterBand(0);
    CComposedRaster composed;
    ASSERT_EQ(composed.CreateRaster(&source, band, &source, band, &source, band), GIS_SUCCESS);
    int bands[] = {0, 7, 2};
    ASSERT_TRUE(composed.SetShowBandNum(3, bands));
    for (const auto& draw : {Draw, DrawPlanes}) {
        EXPECT_FALSE(draw(composed, composed.GetExtent()));
        const std::string reason = CGISDataSource::GetLastErrorText();
        EXPECT_NE(reason.find("does not exist"), std::string::npos) << reason;
    }
}

TEST(DrawingFailure, SettingsThatAreRefusedSayWhy) {
    ShownRaster source(GROUND, {Pixels(100, 7.0)});
    int bands[4] = {};
    EXPECT_FALSE(source.SetShowBandNum(4, bands));
    ExpectReason(source, "one to three");
    EXPECT_FALSE(source.SetGreenBandNum(0));
    ExpectReason(source, "no such band");
    EXPECT_FALSE(source.ReadWallisColorModel(1));
    ExpectReason(source, "Wallis");
}
