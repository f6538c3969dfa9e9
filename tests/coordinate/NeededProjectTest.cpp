#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/datasource/GISDataSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class NeededProject : public testing::Test {
  protected:
    NeededProject() { CGISDataSource::RegisterGDAL(); }
    ~NeededProject() override { CGISDataSource::DestroyGDAL(); }

    std::wstring Raster(const std::string& name, const std::string& srs,
                        const std::string& driver = "GTiff") {
        zelto::test::RasterSpec spec = {.width = 2, .height = 2, .driver = driver, .srs = srs};
        spec.geoTransform = zelto::test::NorthUp(500000, 4400000, 10);
        zelto::test::WriteRaster(m_folder.File(name), spec, {{0, 1, 2, 3}});
        return m_folder.WideFile(name);
    }

    /// −1: false; else the answer.
    static int Answer(const std::wstring& a, const std::wstring& b) {
        bool needed = true;
        const bool known = CCoordinateAlgorithm::IsNeededProject(a.c_str(), b.c_str(), needed);
        return known ? static_cast<int>(needed) : -1;
    }

    zelto::test::TemporaryFolder m_folder;
};

} // namespace

TEST_F(NeededProject, IsFalseForTheSameSystem) {
    EXPECT_EQ(Answer(Raster("a.tif", "EPSG:32650"), Raster("b.tif", "EPSG:32650")), 0);
}

TEST_F(NeededProject, IsFalseForTheSameSystemReadBackFromAnotherFormat) {
    // The format keeps the system without its axes and its code.
    EXPECT_EQ(Answer(Raster("a.tif", "EPSG:4547"), Raster("b.img", "EPSG:4547", "HFA")), 0);
}

TEST_F(NeededProject, IsTrueForDifferentSystems) {
    EXPECT_EQ(Answer(Raster("a.tif", "EPSG:32650"), Raster("b.tif", "EPSG:32651")), 1);
    EXPECT_EQ(Answer(Raster("a.tif", "EPSG:4547"), Raster("b.tif", "EPSG:4548")), 1);
}

TEST_F(NeededProject, IsFalseForTwoRastersWithoutASystem) {
    EXPECT_EQ(Answer(Raster("a.tif", ""), Raster("b.tif", "")), 0);
}

TEST_F(NeededProject, HasNoAnswerForOneRasterWithoutASystem) {
    EXPECT_EQ(Answer(Raster("a.tif", "EPSG:32650"), Raster("b.tif", "")), -1);
    EXPECT_EQ(Answer(Raster("a.tif", ""), Raster("b.tif", "EPSG:32650")), -1);
    bool needed = true;
    EXPECT_FALSE(CCoordinateAlgorithm::IsNeededProject(Raster("a.tif", "EPSG:32650").c_str(),
                                                       Raster("b.tif", "").c_str(), needed));
    EXPECT_FALSE(needed);
}

TEST_F(NeededProject, LeavesTheAnswerAloneWhenAFileDoesNotOpen) {
    const std::wstring good = Raster("a.tif", "EPSG:32650");
    const std::wstring missing = m_folder.WideFile("missing.tif");
    bool needed = true;
    EXPECT_FALSE(CCoordinateAlgorithm::IsNeededProject(good.c_str(), missing.c_str(), needed));
    EXPECT_FALSE(CCoordinateAlgorithm::IsNeededProject(missing.c_str(), good.c_str(), needed));
    EXPECT_FALSE(CCoordinateAlgorithm::IsNeededProject(nullptr, good.c_str(), needed));
    EXPECT_FALSE(CCoordinateAlgorithm::IsNeededProject(good.c_str(), nullptr, needed));
    EXPECT_TRUE(needed);
}
