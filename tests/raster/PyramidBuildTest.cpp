#include "zelto/raster/internal/PyramidBuild.h"

#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/internal/PyramidRun.h"

#include "tests/raster/BareDataset.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

using zelto::PyramidOrder;
using zelto::test::BareDataset;
using zelto::test::Pixels;
using zelto::test::ReadFile;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

namespace {

const PyramidOrder TWO_LEVELS = {.resampling = "NEAREST", .levels = {2, 4}, .bands = {}};

class BuiltPyramid : public testing::Test {
  protected:
    BuiltPyramid() { GDALAllRegister(); }

    std::string Write(const std::string& name, const std::vector<int>& levels,
                      const std::string& driver = "GTiff") const {
        return zelto::test::WriteRaster(
            m_folder.File(name),
            {.width = 256, .height = 256, .driver = driver, .overviews = levels},
            {zelto::test::MakePixels(256, 256, [](int x, int y) { return (x * y) % 251; })});
    }
    static GDALDatasetUniquePtr Open(const std::string& path, unsigned access = GDAL_OF_READONLY) {
        return GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | access));
    }

    const TemporaryFolder m_folder;
};

} // namespace

TEST_F(BuiltPyramid, IsWholeWithEveryLevelThatWasOrdered) {
    EXPECT_TRUE(zelto::IsPyramidInFile(Write("a.tif", {2, 4}), TWO_LEVELS));
    EXPECT_TRUE(zelto::IsPyramidInFile(Write("b.tif", {2, 4, 8}), TWO_LEVELS));
    const std::string path = Write("c.tif", {2});
    EXPECT_FALSE(zelto::IsPyramidInFile(path, TWO_LEVELS));
    EXPECT_EQ(zelto::LastError(), path + ": its pyramid is not complete");
}

TEST_F(BuiltPyramid, OfABandThatIsNotThereIsNotComplete) {
    const std::string path = Write("a.tif", {2, 4});
    PyramidOrder order = TWO_LEVELS;
    order.bands = {1};
    EXPECT_TRUE(zelto::IsPyramidWhole(*Open(path), order, path));
    order.bands = {2};
    EXPECT_FALSE(zelto::IsPyramidWhole(*Open(path), order, path));
    EXPECT_EQ(zelto::LastError().find(path + ": "), 0U) << zelto::LastError();
}

TEST_F(BuiltPyramid, WhoseLastPixelsAreLostIsToldInGdalsWords) {
    const std::string path = Write("a.tif", {2, 4});
    std::string bytes = ReadFile(path);
    const auto image = Open(path);
    const char* const place =
        image->GetRasterBand(1)->GetOverview(1)->GetMetadataItem("BLOCK_OFFSET_0_0", "TIFF");
    ASSERT_NE(place, nullptr);
    WriteFile(path, bytes.substr(0, std::stoul(place) + 10));
    const auto cut = Open(path);
    ASSERT_NE(cut, nullptr);
    EXPECT_FALSE(zelto::IsPyramidWhole(*cut, TWO_LEVELS, path));
    EXPECT_EQ(zelto::LastError().find(path + ": "), 0U) << zelto::LastError();
    EXPECT_EQ(zelto::LastError().find("not complete"), std::string::npos) << zelto::LastError();
}

TEST_F(BuiltPyramid, OfAFileThatCannotBeOpenedIsNone) {
    const std::string path = m_folder.File("a.tif");
    WriteFile(path, "no image");
    EXPECT_FALSE(zelto::IsPyramidInFile(path, TWO_LEVELS));
    EXPECT_EQ(zelto::LastError(), path + ": it cannot be opened with its pyramid");
    EXPECT_TRUE(zelto::IsPyramidInFile(m_folder.File("missing"), TWO_LEVELS))
        << "what is no file is not looked into";
}

TEST_F(BuiltPyramid, InsideAFileIsRemovedFromIt) {
    const std::string path = Write("a.tif", {2, 4});
    zelto::RemovePyramidInside(path);
    EXPECT_EQ(Open(path)->GetRasterBand(1)->GetOverviewCount(), 0);
    const std::string without = ReadFile(path);
    zelto::RemovePyramidInside(path);
    EXPECT_EQ(ReadFile(path), without);
    WriteFile(path, "no image");
    zelto::RemovePyramidInside(path);
    EXPECT_EQ(ReadFile(path), "no image");
}

TEST_F(BuiltPyramid, WhoseIndexIsPartOfTheFileComesBackWithACopyOnly) {
    const auto needsCopy = [&](const char* name, const char* driver, unsigned access,
                               const std::vector<int>& levels) {
        const std::string path = Write(name, levels, driver);
        return zelto::NeedsCopyToRebuild(*Open(path, access));
    };
    EXPECT_TRUE(needsCopy("a.img", "HFA", GDAL_OF_UPDATE, {2}));
    EXPECT_TRUE(needsCopy("a.pix", "PCIDSK", GDAL_OF_UPDATE, {2}));
    EXPECT_FALSE(needsCopy("a.tif", "GTiff", GDAL_OF_UPDATE, {2}));
    EXPECT_FALSE(needsCopy("b.img", "HFA", GDAL_OF_READONLY, {2}));
    EXPECT_FALSE(needsCopy("c.img", "HFA", GDAL_OF_UPDATE, {}));
}

TEST_F(BuiltPyramid, AFormatOfTheHostsOwnKeepsNoneInItsFile) {
    BareDataset image(300, 300, 1);
    EXPECT_FALSE(zelto::HasPyramidInside(image));
    EXPECT_TRUE(zelto::CanRemovePyramid(image));
    EXPECT_FALSE(zelto::NeedsCopyToRebuild(image));
    BareDataset empty(300, 300, 0);
    EXPECT_FALSE(zelto::HasPyramidInside(empty));
    EXPECT_TRUE(zelto::IsBuiltInside(empty));
}
