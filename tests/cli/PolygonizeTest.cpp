#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

using namespace zelto::test;

namespace {

class PolygonizeCommand : public testing::Test {
  protected:
    PolygonizeCommand() {
        RasterSpec spec;
        spec.width = spec.height = 3;
        spec.geoTransform = NorthUp(500000, 4430000, 10);
        spec.srs = "EPSG:32650";
        spec.noData = 0;
        m_image = WriteRaster(m_folder.File("image.tif"), spec,
                              {{1, 1, 2, 0, 1, 2, 0, 2, 1}, {0, 0, 1, 0, 0, 1, 0, 1, 0}});
    }

    /// Value and area of every polygon, by value.
    std::vector<std::pair<int, double>> Read(const std::string& name, const char* field = "value") {
        std::vector<std::pair<int, double>> areas;
        GDALAllRegister();
        GDALDatasetUniquePtr dataset(
            GDALDataset::Open(m_folder.File(name).c_str(), GDAL_OF_VECTOR));
        EXPECT_NE(dataset, nullptr);
        if (!dataset)
            return areas;
        for (const auto& feature : *dataset->GetLayer(0))
            areas.emplace_back(feature->GetFieldAsInteger(field),
                               feature->GetGeometryRef()->toPolygon()->get_Area());
        std::sort(areas.begin(), areas.end());
        return areas;
    }

    using Areas = std::vector<std::pair<int, double>>;

    TemporaryFolder m_folder;
    std::string m_image;
};

} // namespace

TEST_F(PolygonizeCommand, MakesAPolygonPerAreaInTheImagesPlace) {
    const RunResult run = RunZelto({"polygonize", m_image, m_folder.File("out.gpkg")});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, m_folder.File("out.gpkg") + ": 4 polygons\n");
    // No-data areas are left out.
    EXPECT_EQ(Read("out.gpkg"), (Areas{{1, 100}, {1, 300}, {2, 100}, {2, 200}}));
    GDALDatasetUniquePtr dataset(
        GDALDataset::Open(m_folder.File("out.gpkg").c_str(), GDAL_OF_VECTOR));
    OGREnvelope envelope;
    ASSERT_EQ(dataset->GetLayer(0)->GetExtent(&envelope), OGRERR_NONE);
    EXPECT_EQ(envelope.MinX, 500000);
    EXPECT_EQ(envelope.MaxY, 4430000);
    EXPECT_STREQ(dataset->GetLayer(0)->GetSpatialRef()->GetAuthorityCode(nullptr), "32650");
    dataset.reset();
    EXPECT_EQ(m_folder.Names(), (std::vector<std::string>{"image.tif", "out.gpkg"}));
}

TEST_F(PolygonizeCommand, TakesBandMaskConnectednessAndFieldName) {
    const std::string out = m_folder.File("out.shp");
    ASSERT_EQ(RunZelto({"polygonize", m_image, out, "--mask", "2", "--field", "klasse"}).exitStatus,
              0);
    EXPECT_EQ(Read("out.shp", "klasse"), (Areas{{2, 100}, {2, 200}}));
    ASSERT_EQ(RunZelto({"polygonize", m_image, out, "--eight", "--overwrite"}).exitStatus, 0);
    EXPECT_EQ(Read("out.shp"), (Areas{{1, 400}, {2, 300}})); // joined at corners
    ASSERT_EQ(RunZelto({"polygonize", m_image, out, "--nodata", "--overwrite"}).exitStatus, 0);
    EXPECT_EQ(Read("out.shp").front(), (std::pair<int, double>{0, 200}));
    ASSERT_EQ(RunZelto({"polygonize", m_image, out, "--band", "2", "--overwrite"}).exitStatus, 0);
    EXPECT_EQ(Read("out.shp"), (Areas{{1, 100}, {1, 200}}));
}

TEST_F(PolygonizeCommand, FractionsAreRemarkedOn) {
    RasterSpec spec;
    spec.width = 2;
    spec.type = GDT_Float32;
    const std::string image = WriteRaster(m_folder.File("float.tif"), spec, {{1.2, 1.4}});
    const RunResult run = RunZelto({"polygonize", image, m_folder.File("out.geojson")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, m_folder.File("out.geojson") + ": 1 polygon\n");
    EXPECT_NE(run.errors.find("whole parts"), std::string::npos);
    EXPECT_EQ(Read("out.geojson").size(), 1U);
}

TEST_F(PolygonizeCommand, AFailureLeavesTheOldFile) {
    WriteFile(m_folder.File("out.gpkg"), "precious");
    EXPECT_EQ(RunZelto({"polygonize", m_image, m_folder.File("out.gpkg"), "--field", "fid",
                        "--overwrite"})
                  .exitStatus,
              1);
    EXPECT_EQ(ReadFile(m_folder.File("out.gpkg")), "precious");
    EXPECT_EQ(m_folder.Names(), (std::vector<std::string>{"image.tif", "out.gpkg"}));
}

TEST_F(PolygonizeCommand, WrongUsageIsToldApartFromFailure) {
    EXPECT_EQ(RunZelto({"polygonize", m_image, m_folder.File("out.xyz123")}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"polygonize", m_image, m_folder.File("out")}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"polygonize", m_image, m_folder.File("out.shp"), "--band", "3"}).exitStatus,
              2);
    EXPECT_EQ(
        RunZelto({"polygonize", m_folder.File("none.tif"), m_folder.File("out.shp")}).exitStatus,
        1);
    EXPECT_EQ(RunZelto({"polygonize", m_image, m_folder.File("none/out.shp")}).exitStatus, 1);
    EXPECT_EQ(m_folder.Names(), std::vector<std::string>{"image.tif"});
}

TEST_F(PolygonizeCommand, AFullDiskIsToldOfTheFileThatIsWritten) {
    const SmallDisk disk(m_folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount a small file system";
    std::vector<double> checkered(300 * 300);
    for (std::size_t i = 0; i < checkered.size(); ++i)
        checkered[i] = static_cast<double>(i % 7 + 1);
    const std::string image = WriteRaster(
        m_folder.File("checkered.tif"),
        {.width = 300, .height = 300, .geoTransform = NorthUp(10, 50, 0.001)}, {checkered});
    for (const char* name : {"a.geojson", "a.gml", "a.gpkg", "a.shp"}) {
        const std::string out = m_folder.File(std::string("disk/") + name);
        const auto run = RunZelto({"polygonize", image, out});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.errors.rfind("zelto: " + out + ": ", 0), 0U) << run.errors;
        EXPECT_NE(run.errors.find(name == std::string("a.shp") ? "No space left" : "disk is full"),
                  std::string::npos)
            << run.errors;
        EXPECT_TRUE(std::filesystem::is_empty(m_folder.Path() / "disk"));
    }
}
