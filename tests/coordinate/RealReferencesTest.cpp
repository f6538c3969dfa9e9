#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/TestData.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using Algorithm = CCoordinateAlgorithm;
using zelto::test::TestDataFile;
using zelto::test::Wide;

namespace {

std::wstring GkFile(const std::string& name) {
    return Wide(TestDataFile("raster/gk/" + name));
}

/// −1: no answer; else whether reprojection is needed.
int Needed(const std::string& a, const std::string& b) {
    bool needed = true;
    const bool known = Algorithm::IsNeededProject(GkFile(a).c_str(), GkFile(b).c_str(), needed);
    return known ? static_cast<int>(needed) : -1;
}

} // namespace

TEST(RealReferences, OneSystemInSeveralFormatsNeedsNoReprojection) {
    ZELTO_REQUIRE_TEST_DATA();
    EXPECT_EQ(Needed("l7_epsg2360.tif", "l7_epsg2360.hdr"), 0);
    EXPECT_EQ(Needed("l7_epsg2360.tif", "l7_epsg2360.img"), 0);
    EXPECT_EQ(Needed("l7_epsg2360.img", "l7_epsg2360.hdr"), 0);
}

TEST(RealReferences, NeighbouringZonesAndOtherDatumsNeedReprojection) {
    ZELTO_REQUIRE_TEST_DATA();
    EXPECT_EQ(Needed("l7_epsg4513.tif", "l7_epsg4514.tif"), 1);
    EXPECT_EQ(Needed("l7_epsg2437.tif", "l7_epsg4547.tif"), 1);
    EXPECT_EQ(Needed("l7_epsg4513.tif", "l7_epsg4513.tif"), 0);
}

TEST(RealReferences, ProjectionFileHoldsTheSystemOfItsCode) {
    ZELTO_REQUIRE_TEST_DATA();
    const std::string wkt = Algorithm::GetWKTFromPrjFile(GkFile("l7_prj_tfw_esri.prj").c_str());
    EXPECT_TRUE(Algorithm::IsSameCoordinate(wkt.c_str(), "EPSG:2360"));
    EXPECT_EQ(Algorithm::GetUnit(wkt.c_str()), "metre");
    // The file itself may be named where a text is asked for.
    EXPECT_TRUE(Algorithm::IsSameCoordinate(TestDataFile("raster/gk/l7_prj_tfw_esri.prj").c_str(),
                                            "EPSG:2360"));
}

TEST(RealReferences, EverySystemIsReadAndLendsItsGeographicSystemToAZone) {
    ZELTO_REQUIRE_TEST_DATA();
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(TestDataFile("raster/gk"))) {
        CRasterSource raster;
        if (entry.path().extension() != ".tif" ||
            raster.OpenSimple(Wide(entry.path().string()).c_str(), GIS_READONLY, false) !=
                GIS_SUCCESS ||
            raster.GetSpatialReferenceWKT().empty())
            continue;
        ++count;
        const std::string wkt = raster.GetSpatialReferenceWKT();
        const bool geographic =
            entry.path().filename().string().find("geographic") != std::string::npos;
        EXPECT_EQ(Algorithm::IsGeographic(wkt.c_str()), geographic) << entry.path();
        EXPECT_EQ(Algorithm::IsProjected(wkt.c_str()), !geographic) << entry.path();
        const std::string zone = Algorithm::NewChinaProjCS(wkt.c_str(), 39, 3);
        EXPECT_TRUE(Algorithm::IsProjected(zone.c_str())) << entry.path();
        EXPECT_TRUE(Algorithm::IsSameCoordinate(Algorithm::CopyGeogCSFrom(zone.c_str()).c_str(),
                                                Algorithm::CopyGeogCSFrom(wkt.c_str()).c_str()))
            << entry.path();
    }
    EXPECT_GE(count, 8);
}
