#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using zelto::test::ExposedRasterSource;
using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;
using GeoTransform = std::array<double, 6>;

namespace {

constexpr GeoTransform ROTATED = {1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0};

/// Opens a 10 × 10 image for update.
void OpenPlaced(CRasterSource& source, const TemporaryFolder& folder, const std::string& name,
                std::optional<GeoTransform> geoTransform, const char* driver = "GTiff") {
    WriteRaster(folder.File(name),
                {.width = 10, .height = 10, .driver = driver, .geoTransform = geoTransform},
                {Pixels(100, 7.0), Pixels(100, 8.0)});
    ASSERT_EQ(source.Open(folder.WideFile(name).c_str(), GIS_UPDATE, true), GIS_SUCCESS);
}

GeoTransform InFile(const std::string& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    GeoTransform geoTransform = {};
    dataset->GetGeoTransform(geoTransform.data());
    return geoTransform;
}

} // namespace

TEST(GetGeoTransform, GivesTheMembersUnlessTheFileIsAsked) {
    const TemporaryFolder folder;
    CRasterSource source;
    GeoTransform read = {};
    EXPECT_TRUE(source.GetGeoTransform(read.data(), true)) << "nothing is open";
    EXPECT_EQ(read, (GeoTransform{0.0, 1.0, 0.0, 0.0, 0.0, -1.0}));
    OpenPlaced(source, folder, "a.tif", NorthUp(100.0, 200.0, 5.0));
    EXPECT_TRUE(source.GetGeoTransform(read.data(), false));
    EXPECT_EQ(read, NorthUp(100.0, 200.0, 5.0));
    EXPECT_FALSE(source.GetGeoTransform(nullptr, false));
    EXPECT_FALSE(source.GetGeoTransform(nullptr, true));
}

TEST(GetGeoTransform, AskingTheFileAnswersTrueExactlyWhenItHasNone) {
    const TemporaryFolder folder;
    CRasterSource source;
    GeoTransform read = {};
    OpenPlaced(source, folder, "with.tif", NorthUp(100.0, 200.0, 5.0));
    EXPECT_FALSE(source.GetGeoTransform(read.data(), true));
    EXPECT_EQ(read, NorthUp(100.0, 200.0, 5.0));
    OpenPlaced(source, folder, "without.tif", std::nullopt);
    EXPECT_TRUE(source.GetGeoTransform(read.data(), true));
}

TEST(GetGeoTransform, OfAWarpedViewAsksTheFileBehindIt) {
    const TemporaryFolder folder;
    ExposedRasterSource source;
    OpenPlaced(source, folder, "a.tif", ROTATED);
    ASSERT_TRUE(source.HasBase());
    GeoTransform read = {};
    EXPECT_FALSE(source.GetGeoTransform(read.data(), true));
    EXPECT_EQ(read, ROTATED);
    EXPECT_TRUE(source.GetGeoTransform(read.data(), false));
    EXPECT_EQ(read[2], 0.0);
}

TEST(SetGeoTransform, ChangesGridAndExtentInMemory) {
    const TemporaryFolder folder;
    ExposedRasterSource source;
    OpenPlaced(source, folder, "a.tif", NorthUp(100.0, 200.0, 5.0));
    GeoTransform moved = NorthUp(1000.0, 2000.0, 2.0);
    EXPECT_EQ(source.SetGeoTransform(moved.data(), false), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), moved);
    EXPECT_EQ(source.GetRight(), 1020.0);
    EXPECT_EQ(source.GetBottom(), 1980.0);
    int col = 0;
    int row = 0;
    source.GroundToImage(1006.0, 1990.0, col, row);
    EXPECT_EQ(col, 3);
    EXPECT_EQ(row, 5);
    source.Close();
    EXPECT_EQ(InFile(folder.File("a.tif")), NorthUp(100.0, 200.0, 5.0));
}

TEST(SetGeoTransform, ReachesTheFileWhenAsked) {
    const TemporaryFolder folder;
    CRasterSource source;
    OpenPlaced(source, folder, "a.tif", NorthUp(100.0, 200.0, 5.0));
    GeoTransform moved = NorthUp(1000.0, 2000.0, 2.0);
    EXPECT_EQ(source.SetGeoTransform(moved.data(), true), GIS_SUCCESS);
    EXPECT_EQ(InFile(folder.File("a.tif")), moved);
}

TEST(SetGeoTransform, OfAWarpedViewLeavesTheFileBehindIt) {
    const TemporaryFolder folder;
    ExposedRasterSource source;
    OpenPlaced(source, folder, "a.tif", ROTATED);
    ASSERT_TRUE(source.HasBase());
    GeoTransform moved = NorthUp(1000.0, 2000.0, 2.0);
    EXPECT_EQ(source.SetGeoTransform(moved.data(), true), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), moved);
    GeoTransform view = {};
    EXPECT_EQ(source.GetGDALDataset()->GetGeoTransform(view.data()), CE_None);
    EXPECT_EQ(view, moved);
    source.Close();
    EXPECT_EQ(InFile(folder.File("a.tif")), ROTATED);
}

TEST(SetGeoTransform, WithoutADataSetOnlyTheMembersChange) {
    ExposedRasterSource source;
    GeoTransform moved = NorthUp(1000.0, 2000.0, 2.0);
    EXPECT_EQ(source.SetGeoTransform(moved.data(), true), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), moved);
    EXPECT_EQ(source.SetGeoTransform(nullptr, false), GIS_FAILED);
    EXPECT_EQ(source.GeoTransform(), moved);
}

TEST(SetBaseGeoTransform, WritesTheFileAndKeepsTheMembers) {
    const TemporaryFolder folder;
    ExposedRasterSource source;
    GeoTransform moved = NorthUp(1000.0, 2000.0, 2.0);
    EXPECT_EQ(source.SetBaseGeoTransform(moved.data()), GIS_FAILED) << "nothing is open";
    OpenPlaced(source, folder, "a.tif", NorthUp(100.0, 200.0, 5.0));
    EXPECT_EQ(source.SetBaseGeoTransform(moved.data()), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), NorthUp(100.0, 200.0, 5.0));
    EXPECT_EQ(InFile(folder.File("a.tif")), moved);
    EXPECT_EQ(source.SetBaseGeoTransform(nullptr), GIS_FAILED);

    OpenPlaced(source, folder, "rotated.tif", ROTATED);
    const GeoTransform view = source.GeoTransform();
    EXPECT_EQ(source.SetBaseGeoTransform(moved.data()), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), view);
    EXPECT_EQ(InFile(folder.File("rotated.tif")), moved);
}

TEST(ControlPoints, AreCountedAndClearedOnTheFileBehindAView) {
    const TemporaryFolder folder;
    CRasterSource source;
    EXPECT_EQ(source.GetGCPCount(false), 0);
    EXPECT_EQ(source.GetGCPCount(true), 0);
    EXPECT_EQ(source.ClearGCP(true), GIS_FAILED);
    {
        WriteRaster(folder.File("a.tif"), {.width = 10, .height = 10}, {Pixels(100, 7.0)});
        const GDALDatasetUniquePtr dataset(
            GDALDataset::Open(folder.File("a.tif").c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
        const GDAL_GCP points[] = {{nullptr, nullptr, 0, 0, 1000, 2000, 0},
                                   {nullptr, nullptr, 10, 0, 1100, 2000, 0},
                                   {nullptr, nullptr, 10, 10, 1100, 1900, 0}};
        GDAL_GCP copies[3];
        GDALInitGCPs(3, copies);
        for (int i = 0; i < 3; ++i) {
            copies[i].dfGCPPixel = points[i].dfGCPPixel;
            copies[i].dfGCPLine = points[i].dfGCPLine;
            copies[i].dfGCPX = points[i].dfGCPX;
            copies[i].dfGCPY = points[i].dfGCPY;
        }
        ASSERT_EQ(dataset->SetGCPs(3, copies, ""), CE_None);
        GDALDeinitGCPs(3, copies);
    }
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetGCPCount(true), 3);
    EXPECT_EQ(source.GetGCPCount(false), 0) << "the view has none";
    EXPECT_EQ(source.ClearGCP(false), GIS_SUCCESS);
    EXPECT_EQ(source.GetGCPCount(true), 3) << "only the view was asked";
    EXPECT_EQ(source.ClearGCP(true), GIS_SUCCESS);
    EXPECT_EQ(source.GetGCPCount(true), 0);
    source.Close();
    const GDALDatasetUniquePtr dataset(
        GDALDataset::Open(folder.File("a.tif").c_str(), GDAL_OF_RASTER));
    EXPECT_EQ(dataset->GetGCPCount(), 0);
}

TEST(SetProjection, StoresTheTextWhateverTheFileMakesOfIt) {
    const TemporaryFolder folder;
    CRasterSource source;
    OpenPlaced(source, folder, "a.tif", NorthUp(100.0, 200.0, 5.0));
    EXPECT_EQ(source.SetProjection("EPSG:32650"), GIS_SUCCESS);
    EXPECT_EQ(source.GetProjectionWKT(), "EPSG:32650");
    EXPECT_TRUE(source.IsProjected());
    EXPECT_EQ(source.SetProjection("no reference at all"), GIS_SUCCESS);
    EXPECT_EQ(source.GetProjectionWKT(), "no reference at all");
    EXPECT_FALSE(source.IsProjected());
    source.Close();
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetCoordinateName(), L"WGS 84 / UTM zone 50N");

    CRasterSource closed;
    EXPECT_EQ(closed.SetProjection("EPSG:4326"), GIS_SUCCESS);
    EXPECT_TRUE(closed.IsGeographic());
    EXPECT_EQ(closed.SetProjection(nullptr), GIS_SUCCESS);
    EXPECT_EQ(closed.GetProjectionWKT(), "");
    EXPECT_FALSE(closed.IsGeographic());
}

TEST(AllBandNoData, IsSetOnEveryBand) {
    const TemporaryFolder folder;
    CRasterSource source;
    OpenPlaced(source, folder, "a.tif", std::nullopt);
    EXPECT_TRUE(source.SetAllBandNoDataValue(7.0, true));
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(source.GetRasterBand(i)->IsHaveNoData());
        EXPECT_EQ(source.GetRasterBand(i)->GetNoDataValue(), 7.0);
    }
    EXPECT_TRUE(source.SetAllBandNoDataValue(9.0, false));
    EXPECT_EQ(source.GetRasterBand(1)->GetNoDataValue(), 9.0);
    source.Close();
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetNoDataValue(), (std::vector<double>{7.0, 7.0}));
}

TEST(AllBandNoData, ThatTheFileCannotTakeIsTold) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.img"), {.width = 2, .height = 1, .driver = "HFA"}, {{1, 2}, {3, 4}});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.img").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_FALSE(source.SetAllBandNoDataValue(7.0, true));
    EXPECT_FALSE(source.GetRasterBand(1)->IsHaveNoData());
    EXPECT_TRUE(source.SetAllBandNoDataValue(7.0, false));
}

TEST(AllBandNoData, IsClearedInMemoryOnly) {
    const TemporaryFolder folder;
    CRasterSource source;
    OpenPlaced(source, folder, "a.tif", std::nullopt);
    ASSERT_TRUE(source.SetAllBandNoDataValue(7.0, true));
    for (const bool writeToFile : {true, false}) {
        EXPECT_TRUE(source.ClearAllBandNoDataValue(writeToFile));
        EXPECT_FALSE(source.GetRasterBand(0)->IsHaveNoData());
        EXPECT_FALSE(source.GetRasterBand(1)->IsHaveNoData());
        EXPECT_EQ(source.GetRasterBand(1)->GetNoDataValue(), 0.0);
    }
    source.Close();
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_TRUE(source.GetRasterBand(0)->IsHaveNoData());
}

TEST(GetGeoTransform, OfAClosedSourceAreTheMembers) {
    CRasterSource source;
    double set[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(source.SetGeoTransform(set, true), GIS_SUCCESS);
    double found[6] = {};
    EXPECT_TRUE(source.GetGeoTransform(found, true));
    EXPECT_EQ(std::to_array(found), std::to_array(set));
    EXPECT_FALSE(source.GetGeoTransform(nullptr, true));
    EXPECT_EQ(source.SetBaseGeoTransform(set), GIS_FAILED);
}
