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

TEST_F(BuiltPyramid, IsWholeWithTheLevelsThatWereOrderedAndNoOthers) {
    const std::string path = Write("a.tif", {2, 4});
    const zelto::BlockPlaces places = zelto::PlacesOfLevels(*Open(path));
    EXPECT_EQ(places.size(), 2U) << "128 and 64 squared, a block each";
    EXPECT_TRUE(zelto::IsPyramidInFile(path, TWO_LEVELS, places));
    const std::string less = Write("b.tif", {2});
    EXPECT_FALSE(zelto::IsPyramidInFile(less, TWO_LEVELS, places));
    EXPECT_EQ(zelto::LastError(), less + ": its pyramid is not complete");
    const std::string more = Write("c.tif", {2, 4, 8});
    EXPECT_FALSE(zelto::IsPyramidInFile(more, TWO_LEVELS, places));
    EXPECT_EQ(zelto::LastError(), more + ": levels of its former pyramid are still there");
}

TEST_F(BuiltPyramid, IsNotWholeWhereItsBlocksAreNotWhereTheyWereWritten) {
    const std::string path = Write("a.tif", {2, 4});
    zelto::BlockPlaces places = zelto::PlacesOfLevels(*Open(path));
    places.back() += '0';
    EXPECT_FALSE(zelto::IsPyramidInFile(path, TWO_LEVELS, places));
    EXPECT_EQ(zelto::LastError(), path + ": not all of its pyramid has reached the disk");
}

TEST_F(BuiltPyramid, HasEveryBlockUnlessTheHostLeavesOutEmptyOnes) {
    EXPECT_TRUE(zelto::HasEveryBlock(*Open(Write("a.tif", {2, 4})), "a.tif"));
    EXPECT_TRUE(zelto::HasEveryBlock(*Open(Write("a.img", {2, 4}, "HFA")), "a.img"))
        << "what is no TIFF is not looked into";
    const std::string path = Write("b.tif", {2, 4});
    // The place of the last level's block, as the file holds it in four bytes each.
    const auto image = Open(path);
    GDALRasterBand& level = *image->GetRasterBand(1)->GetOverview(1);
    std::string bytes = ReadFile(path);
    for (const char* const what : {"BLOCK_OFFSET_0_0", "BLOCK_SIZE_0_0"}) {
        const auto value =
            static_cast<std::uint32_t>(std::stoul(level.GetMetadataItem(what, "TIFF")));
        const std::size_t at = bytes.rfind(std::string(reinterpret_cast<const char*>(&value), 4));
        ASSERT_NE(at, std::string::npos);
        bytes.replace(at, 4, 4, '\0');
    }
    WriteFile(path, bytes);
    EXPECT_FALSE(zelto::HasEveryBlock(*Open(path), path));
    EXPECT_EQ(zelto::LastError(), path + ": not all of its pyramid has reached the disk");
    const CPLConfigOptionSetter sparse("SPARSE_OK_OVERVIEW", "YES", false);
    EXPECT_TRUE(zelto::HasEveryBlock(*Open(path), path));
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
    EXPECT_FALSE(zelto::IsPyramidInFile(path, TWO_LEVELS, {}));
    EXPECT_EQ(zelto::LastError(), path + ": it cannot be opened with its pyramid");
    EXPECT_TRUE(zelto::IsPyramidInFile(m_folder.File("missing"), TWO_LEVELS, {}))
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
