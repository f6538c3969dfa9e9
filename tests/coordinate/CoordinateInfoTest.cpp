#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "tests/coordinate/ReferenceDialects.h"

#include <cpl_conv.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using zelto::test::InDialect;

namespace {

/// The lines of a summary; fails the test when one does not end in CR LF.
std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = text.find("\r\n", begin);
        if (end == std::string::npos) {
            ADD_FAILURE() << "no line end after " << text.substr(begin);
            break;
        }
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 2;
    }
    return lines;
}

std::vector<std::string> InfoLines(const std::string& srs) {
    return Lines(CCoordinateAlgorithm::GetCoordinateInfoString(srs.c_str()));
}

/// The number after `label`, which the line must start with.
double NumberAfter(const std::string& line, const std::string& label) {
    EXPECT_EQ(line.substr(0, label.size()), label);
    return CPLAtof(line.c_str() + label.size());
}

} // namespace

TEST(CoordinateInfo, GeographicSystemNamesDatumSpheroidUnitAndMeridian) {
    const auto lines = InfoLines("EPSG:4326");
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines[0], "Name: WGS 84");
    EXPECT_EQ(lines[1], "Datum: WGS_1984");
    EXPECT_EQ(lines[2], "  Spheroid: WGS 84");
    EXPECT_EQ(lines[3], "    Semimajor Axis: 6378137");
    EXPECT_NEAR(NumberAfter(lines[4], "    Semiminor Axis: "), 6356752.314245179, 1e-6);
    EXPECT_NEAR(NumberAfter(lines[5], "    Inverse Flattening: "), 298.257223563, 1e-9);
    EXPECT_NEAR(NumberAfter(lines[6], "Angular Unit: degree("), 0.0174532925199433, 1e-15);
    EXPECT_EQ(lines[6].back(), ')');
    EXPECT_EQ(lines[7], "Prime Meridian: Greenwich(0)");
}

TEST(CoordinateInfo, ProjectedSystemAddsItsGeographicSystemAndItsProjection) {
    const auto lines = InfoLines("EPSG:2432");
    ASSERT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[0], "Name: Beijing 1954 / 3-degree Gauss-Kruger CM 105E");
    EXPECT_EQ(lines[1], "  GCSName: Beijing 1954");
    EXPECT_EQ(lines[2], "  Datum: Beijing_1954");
    EXPECT_EQ(lines[3], "    Spheroid: Krassowsky 1940");
    EXPECT_EQ(lines[4], "      Semimajor Axis: 6378245");
    EXPECT_NEAR(NumberAfter(lines[5], "      Semiminor Axis: "), 6356863.018773047, 1e-6);
    EXPECT_NEAR(NumberAfter(lines[6], "      Inverse Flattening: "), 298.3, 1e-9);
    EXPECT_NEAR(NumberAfter(lines[7], "  Angular Unit: degree("), 0.0174532925199433, 1e-15);
    EXPECT_EQ(lines[8], "  Prime Meridian: Greenwich(0)");
    EXPECT_EQ(lines[9], "Projection: Transverse_Mercator");
}

TEST(CoordinateInfo, OtherMeridiansAndUnitsAreNamed) {
    const auto lines = InfoLines("EPSG:4807");
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_NEAR(NumberAfter(lines[6], "Angular Unit: grad("), 0.015707963267949, 1e-15);
    EXPECT_NEAR(NumberAfter(lines[7], "Prime Meridian: Paris("), 2.33722917, 1e-8);
}

TEST(CoordinateInfo, NodesThatTheOldTextDoesNotHaveStayEmpty) {
    const auto lines =
        InfoLines("+proj=ob_tran +o_proj=longlat +o_lon_p=0 +o_lat_p=39 +lon_0=18 +ellps=krass");
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines[0], "Name: ");
    EXPECT_EQ(lines[3], "    Semimajor Axis: 6378245");
    EXPECT_NEAR(NumberAfter(lines[6], "Angular Unit: degree("), 0.0174532925199433, 1e-15);
}

TEST(CoordinateInfo, IsTheSameInEveryDialectOfWellKnownText) {
    const auto expected = CCoordinateAlgorithm::GetCoordinateInfoString("EPSG:32650");
    for (const char* dialect : {"WKT1_GDAL", "WKT1_SIMPLE", "WKT2_2015", "WKT2_2019"}) {
        const std::string text = InDialect("EPSG:32650", dialect);
        EXPECT_EQ(CCoordinateAlgorithm::GetCoordinateInfoString(text.c_str()), expected) << dialect;
    }
}

TEST(CoordinateInfo, OtherKindsAreUnknown) {
    for (const char* text : {"EPSG:5773", "EPSG:4978", "LOCAL_CS[\"here\",UNIT[\"metre\",1]]"})
        EXPECT_EQ(CCoordinateAlgorithm::GetCoordinateInfoString(text), "Unknown") << text;
}
