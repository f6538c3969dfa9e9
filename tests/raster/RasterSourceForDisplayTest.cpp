#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/classify/ClassifiedAssistantFile.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using zelto::test::ExposedRasterSource;
using zelto::test::Pixels;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

std::vector<int> ShownBands(int bandCount) {
    ExposedRasterSource source;
    source.SetUpDisplayBands(bandCount);
    EXPECT_EQ(source.GetShowBandCount(), static_cast<int>(source.GetShowBandArray().size()));
    return source.GetShowBandArray();
}

} // namespace

TEST(DisplayBands, FollowTheNumberOfBands) {
    EXPECT_EQ(ShownBands(0), std::vector<int>{});
    EXPECT_EQ(ShownBands(1), std::vector<int>{0});
    EXPECT_EQ(ShownBands(2), (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(ShownBands(3), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(ShownBands(4), (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(ShownBands(5), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(ShownBands(224), (std::vector<int>{0, 1, 2}));
}

TEST(DisplayBands, WithoutBandsTheSelectionStays) {
    ExposedRasterSource source;
    source.SetUpDisplayBands(4);
    source.SetUpDisplayBands(0);
    EXPECT_EQ(source.GetShowBandArray(), (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(source.GetShowBandCount(), 3);
}

TEST(DisplayBands, AreSetUpOnlyForDisplay) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1},
                std::vector<Pixels>(4, Pixels{1.0, 2.0}));
    const std::wstring path = folder.WideFile("a.tif");
    CRasterSource plain;
    ASSERT_EQ(plain.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(plain.GetShowBandCount(), 0);
    CRasterSource shown;
    shown.SetForDisplay(true);
    ASSERT_EQ(shown.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(shown.GetShowBandArray(), (std::vector<int>{2, 1, 0}));
    ASSERT_EQ(shown.OpenSimple(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(shown.GetShowBandCount(), 3);
}

TEST(ClassifiedDisplay, TheAssistantFileBesideTheImageSwitchesToIt) {
    const TemporaryFolder folder;
    for (const char* name : {"类.tif", "plain.tif"})
        WriteRaster(folder.File(name), {.width = 2, .height = 1}, {{1.0, 2.0}});
    CClassifiedAssistantFile file;
    ASSERT_TRUE(file.WriteClssifiedAssistantFile(folder.WideFile("类.acf")));

    CRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(folder.WideFile("plain.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetDisplayType(), DISPLAY_DEFAULT);
    EXPECT_EQ(source.GetClassifyDisplayTable(), nullptr);
    ASSERT_EQ(source.Open(folder.WideFile("类.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetDisplayType(), DISPLAY_CLASSIFIED);
    EXPECT_NE(source.GetClassifyDisplayTable(), nullptr);
    source.Close();
    EXPECT_EQ(source.GetClassifyDisplayTable(), nullptr);
}

TEST(ClassifiedDisplay, NeedsASourceForDisplay) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1}, {{1.0, 2.0}});
    CClassifiedAssistantFile file;
    ASSERT_TRUE(file.WriteClssifiedAssistantFile(folder.WideFile("a.acf")));
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetDisplayType(), DISPLAY_DEFAULT);
    EXPECT_EQ(source.GetClassifyDisplayTable(), nullptr);
}

TEST(ClassifiedDisplay, AFileThatIsNoAssistantFileChangesNothing) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1}, {{1.0, 2.0}});
    zelto::test::WriteFile(folder.Path() / "a.acf", "something else");
    CRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetDisplayType(), DISPLAY_DEFAULT);
    EXPECT_EQ(source.GetClassifyDisplayTable(), nullptr);
}
