#include "tests/coordinate/GaussKruger.h"

#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "tests/coordinate/ReferenceDialects.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

using zelto::test::BuildZone;
using zelto::test::InDialect;
using zelto::test::ReadReference;

namespace {

constexpr const char* XIAN =
    R"(GEOGCS["GCS_Xian_1980",DATUM["D_Xian_1980",SPHEROID["Xian_1980",6378140.0,298.257]],)"
    R"(PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]])";
constexpr const char* BEIJING =
    R"(GEOGCS["GCS_Beijing_1954",DATUM["D_Beijing_1954",SPHEROID["Krasovsky_1940",6378245.0,298.3]],)"
    R"(PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]])";

/// Start of the WKT up to the end of the system's name.
std::string Name(const std::string& wkt) {
    return wkt.substr(0, wkt.find(','));
}

struct DestroyTransformation {
    void operator()(OGRCoordinateTransformation* t) const {
        OGRCoordinateTransformation::DestroyCT(t);
    }
};
using OwnedTransformation = std::unique_ptr<OGRCoordinateTransformation, DestroyTransformation>;

OwnedTransformation TransformationBetween(const OGRSpatialReference& from,
                                          const OGRSpatialReference& to) {
    return OwnedTransformation(OGRCreateCoordinateTransformation(&from, &to));
}

struct PlanePosition {
    double x;
    double y;
};

constexpr double RADIANS_OF_A_DEGREE = 3.14159265358979323846 / 180.0;

/// Length of the meridian from the equator by Simpson's rule.
double MeridianArc(double a, double e2, double latitude) {
    constexpr int STEPS = 20000;
    const auto f = [&](double t) { return std::pow(1 - e2 * std::sin(t) * std::sin(t), -1.5); };
    double sum = f(0) + f(latitude);
    for (int i = 1; i < STEPS; ++i)
        sum += (i % 2 == 1 ? 4 : 2) * f(latitude * i / STEPS);
    return a * (1 - e2) * sum * latitude / STEPS / 3;
}

/// The classic Gauss-Kruger series of the textbooks, up to the sixth power of the distance from
/// the central meridian; good to a tenth of a millimetre within three degrees of it.
PlanePosition GaussKruger(double a, double inverseFlattening, double meridian, double longitude,
                          double latitude) {
    const double f = 1 / inverseFlattening;
    const double e2 = f * (2 - f);
    const double phi = latitude * RADIANS_OF_A_DEGREE;
    const double l = (longitude - meridian) * RADIANS_OF_A_DEGREE * std::cos(phi);
    const double t = std::tan(phi);
    const double t2 = t * t;
    const double n2 = e2 / (1 - e2) * std::cos(phi) * std::cos(phi);
    const double n = a / std::sqrt(1 - e2 * std::sin(phi) * std::sin(phi));
    const double l2 = l * l;
    const double east = n * l *
                        (1 + l2 / 6 * (1 - t2 + n2) +
                         l2 * l2 / 120 * (5 - 18 * t2 + t2 * t2 + 14 * n2 - 58 * n2 * t2) +
                         l2 * l2 * l2 / 5040 * (61 - 479 * t2 + 179 * t2 * t2 - t2 * t2 * t2));
    const double north =
        MeridianArc(a, e2, phi) +
        n * t * l2 / 2 *
            (1 + l2 / 12 * (5 - t2 + 9 * n2 + 4 * n2 * n2) +
             l2 * l2 / 360 * (61 - 58 * t2 + t2 * t2 + 270 * n2 - 330 * n2 * t2) +
             l2 * l2 * l2 / 20160 * (1385 - 3111 * t2 + 543 * t2 * t2 - t2 * t2 * t2));
    return {500000.0 + east, north};
}

struct System {
    const char* srs;
    double a;
    double inverseFlattening;
    const char* proj;
};
const std::vector<System> SYSTEMS = {
    {XIAN, 6378140.0, 298.257, "+a=6378140 +rf=298.257"},
    {BEIJING, 6378245.0, 298.3, "+ellps=krass"},
    {"EPSG:4490", 6378137.0, 298.257222101, "+ellps=GRS80"},
    {"EPSG:4326", 6378137.0, 298.257223563, "+ellps=WGS84"},
    {"+proj=longlat +ellps=krass +no_defs", 6378245.0, 298.3, "+ellps=krass"},
};

/// Zones of both widths with their central meridians.
struct Zone {
    int number;
    int width;
    double meridian;
};
const std::vector<Zone> ZONES = {{13, 6, 75.0}, {20, 6, 117.0}, {25, 3, 75.0}, {39, 3, 117.0}};

/// Calls f(longitude, latitude) all over a zone.
template <typename Function>
void ForPointsOf(const Zone& zone, Function f) {
    for (double latitude : {-70.0, -12.5, 0.0, 3.0, 18.0, 40.0, 53.5, 80.0}) {
        for (int i = -4; i <= 4; ++i)
            f(zone.meridian + zone.width * i / 8.0, latitude);
    }
}

} // namespace

TEST(GaussKruger, ThreeDegreeZoneIsNamedAfterItsMeridian) {
    const std::string wkt = BuildZone(XIAN, 39, 3);
    EXPECT_EQ(Name(wkt), R"(PROJCS["Xian_1980_3_Degree_GK_CM_117E")");
    EXPECT_EQ(ReadReference(wkt).GetProjParm("central_meridian"), 117.0);
    EXPECT_EQ(Name(BuildZone(BEIJING, 39, 3)), R"(PROJCS["Beijing_1954_3_Degree_GK_CM_117E")");
}

TEST(GaussKruger, SixDegreeZoneIsNamedAfterItsMeridian) {
    const std::string wkt = BuildZone(XIAN, 20, 6);
    EXPECT_EQ(Name(wkt), R"(PROJCS["Xian_1980_GK_CM_117E")");
    EXPECT_EQ(ReadReference(wkt).GetProjParm("central_meridian"), 117.0);
}

TEST(GaussKruger, FirstSixDegreeZoneLiesAtThreeDegrees) {
    const std::string wkt = BuildZone(XIAN, 1, 6);
    EXPECT_EQ(Name(wkt), R"(PROJCS["Xian_1980_GK_CM_3E")");
    EXPECT_EQ(ReadReference(wkt).GetProjParm("central_meridian"), 3.0);
}

TEST(GaussKruger, OtherWidthsKeepTheBareNameAndMeridianZero) {
    for (int width : {4, 0, -6, 1}) {
        const std::string wkt = BuildZone(XIAN, 39, width);
        EXPECT_EQ(Name(wkt), R"(PROJCS["Xian_1980")") << width;
        EXPECT_EQ(ReadReference(wkt).GetProjParm("central_meridian", -1.0), 0.0) << width;
    }
}

TEST(GaussKruger, NamesOfOtherFormsOfTextAreThoseOfTheReference) {
    EXPECT_EQ(Name(BuildZone("EPSG:4610", 39, 3)), R"(PROJCS["Xian 1980_3_Degree_GK_CM_117E")");
    EXPECT_EQ(Name(BuildZone(InDialect("EPSG:4490", "WKT2_2019").c_str(), 20, 6)),
              R"(PROJCS["China Geodetic Coordinate System 2000_GK_CM_117E")");
    EXPECT_EQ(Name(BuildZone(InDialect("EPSG:4490", "WKT1_ESRI").c_str(), 20, 6)),
              R"(PROJCS["China_Geodetic_Coordinate_System_2000_GK_CM_117E")");
}

TEST(GaussKruger, ZonesAndOtherWidthsAreTheSameInEveryDialect) {
    for (const char* dialect : zelto::test::DIALECTS) {
        const std::string beijing = InDialect("EPSG:4214", dialect);
        const std::string first = BuildZone(beijing.c_str(), 1, 6);
        EXPECT_NE(Name(first).find("_GK_CM_3E\""), std::string::npos) << dialect;
        EXPECT_EQ(ReadReference(first).GetProjParm("central_meridian"), 3.0) << dialect;
        EXPECT_EQ(ReadReference(first).GetSemiMajor(), 6378245.0) << dialect;
        const std::string other = BuildZone(beijing.c_str(), 1, 4);
        EXPECT_EQ(Name(other).find("_CM_"), std::string::npos) << dialect;
        EXPECT_EQ(ReadReference(other).GetProjParm("central_meridian", -1.0), 0.0) << dialect;
    }
}

TEST(GaussKruger, OnlyWhatFollowsTheFirstPrefixIsKept) {
    const std::string text =
        R"(GEOGCS["My_GCS_Own_GCS_Name",DATUM["D",SPHEROID["S",6378137.0,298.0]],)"
        R"(PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]])";
    EXPECT_EQ(Name(BuildZone(text.c_str(), 1, 6)), R"(PROJCS["Own_GCS_Name_GK_CM_3E")");
}

TEST(GaussKruger, MeridianTextHasThreeCharacters) {
    EXPECT_EQ(Name(BuildZone(XIAN, 333, 3)), R"(PROJCS["Xian_1980_3_Degree_GK_CM_999E")");
    EXPECT_EQ(Name(BuildZone(XIAN, 334, 3)), R"(PROJCS["Xian_1980_3_Degree_GK_CM_100E")");
    EXPECT_EQ(Name(BuildZone(XIAN, 0, 6)), R"(PROJCS["Xian_1980_GK_CM_-3E")");
    EXPECT_EQ(Name(BuildZone(XIAN, 0, 3)), R"(PROJCS["Xian_1980_3_Degree_GK_CM_0E")");
}

TEST(GaussKruger, ParametersAreTheNationalOnes) {
    const OGRSpatialReference system = ReadReference(BuildZone(XIAN, 39, 3));
    EXPECT_EQ(system.GetProjParm("latitude_of_origin", -1.0), 0.0);
    EXPECT_EQ(system.GetProjParm("scale_factor", -1.0), 1.0);
    EXPECT_EQ(system.GetProjParm("false_easting", -1.0), 500000.0);
    EXPECT_EQ(system.GetProjParm("false_northing", -1.0), 0.0);
    EXPECT_EQ(system.GetLinearUnits(), 1.0);
}

TEST(GaussKruger, TextNamesTheProjectionGaussKruger) {
    const std::string wkt = BuildZone("EPSG:4490", 39, 3);
    EXPECT_NE(wkt.find(R"(PROJECTION["Gauss_Kruger"])"), std::string::npos);
    EXPECT_NE(wkt.find(R"(UNIT["Meter",1])"), std::string::npos);
    EXPECT_EQ(wkt.find("Transverse_Mercator"), std::string::npos);
}

TEST(GaussKruger, ProjectedInputLendsItsGeographicSystemOnly) {
    const std::string fromUtm = BuildZone("EPSG:32650", 20, 6);
    EXPECT_EQ(Name(fromUtm), R"(PROJCS["WGS 84_GK_CM_117E")");
    EXPECT_TRUE(CCoordinateAlgorithm::IsSameCoordinate(fromUtm.c_str(),
                                                       BuildZone("EPSG:4326", 20, 6).c_str()));
    EXPECT_EQ(fromUtm.find("32650"), std::string::npos);
}

TEST(GaussKruger, SystemIsReadBackWithItsName) {
    for (const System& system : SYSTEMS) {
        const std::string wkt = BuildZone(system.srs, 39, 3);
        const OGRSpatialReference back = ReadReference(wkt);
        EXPECT_EQ(Name(wkt), "PROJCS[\"" + std::string(back.GetAttrValue("PROJCS")) + "\"");
        EXPECT_TRUE(CCoordinateAlgorithm::IsSameCoordinate(wkt.c_str(), wkt.c_str()));
        EXPECT_TRUE(CCoordinateAlgorithm::IsProjected(wkt.c_str()));
    }
}

TEST(GaussKruger, CodeOfTheSameZoneDescribesTheSameSystem) {
    // CGCS2000, Xian 1980 and Beijing 1954, zone of meridian 117 without zone prefix.
    EXPECT_TRUE(
        CCoordinateAlgorithm::IsSameCoordinate(BuildZone("EPSG:4490", 39, 3).c_str(), "EPSG:4548"));
    EXPECT_TRUE(
        CCoordinateAlgorithm::IsSameCoordinate(BuildZone("EPSG:4610", 39, 3).c_str(), "EPSG:2384"));
    EXPECT_TRUE(
        CCoordinateAlgorithm::IsSameCoordinate(BuildZone("EPSG:4214", 39, 3).c_str(), "EPSG:2436"));
}

TEST(GaussKruger, ThereAndBackStaysWithinABillionthOfADegree) {
    for (const System& system : SYSTEMS) {
        const OGRSpatialReference geographic = ReadReference(system.srs);
        for (const Zone& zone : ZONES) {
            const OGRSpatialReference projected =
                ReadReference(BuildZone(system.srs, zone.number, zone.width));
            const auto forward = TransformationBetween(geographic, projected);
            const auto back = TransformationBetween(projected, geographic);
            ForPointsOf(zone, [&](double longitude, double latitude) {
                double x = longitude;
                double y = latitude;
                ASSERT_TRUE(forward->Transform(1, &x, &y));
                ASSERT_TRUE(back->Transform(1, &x, &y));
                EXPECT_NEAR(x, longitude, 1e-9);
                EXPECT_NEAR(y, latitude, 1e-9);
            });
        }
    }
}

TEST(GaussKruger, AgreesWithTheTransverseMercatorOfTheProjectionLibrary) {
    for (const System& system : SYSTEMS) {
        const OGRSpatialReference geographic = ReadReference(system.srs);
        for (const Zone& zone : ZONES) {
            const std::string ellipsoid = std::string(system.proj) + " +no_defs";
            const auto ours = TransformationBetween(
                geographic, ReadReference(BuildZone(system.srs, zone.number, zone.width)));
            const auto theirs = TransformationBetween(
                ReadReference("+proj=longlat " + ellipsoid),
                ReadReference("+proj=tmerc +lat_0=0 +k=1 +x_0=500000 +y_0=0 +lon_0=" +
                              std::to_string(static_cast<int>(zone.meridian)) + " " + ellipsoid));
            ForPointsOf(zone, [&](double longitude, double latitude) {
                double x[] = {longitude, longitude};
                double y[] = {latitude, latitude};
                ASSERT_TRUE(ours->Transform(1, x, y));
                ASSERT_TRUE(theirs->Transform(1, x + 1, y + 1));
                EXPECT_NEAR(x[0], x[1], 1e-3);
                EXPECT_NEAR(y[0], y[1], 1e-3);
            });
        }
    }
}

TEST(GaussKruger, AgreesWithTheClassicSeries) {
    for (const System& system : SYSTEMS) {
        const auto forward = TransformationBetween(ReadReference(system.srs),
                                                   ReadReference(BuildZone(system.srs, 20, 6)));
        for (double latitude : {0.0, 3.0, 18.0, 40.0, 53.5}) {
            for (double longitude : {114.0, 115.5, 117.0, 117.5, 120.0}) {
                double x = longitude;
                double y = latitude;
                ASSERT_TRUE(forward->Transform(1, &x, &y));
                const PlanePosition expected =
                    GaussKruger(system.a, system.inverseFlattening, 117.0, longitude, latitude);
                EXPECT_NEAR(x, expected.x, 1e-3) << longitude << " " << latitude;
                EXPECT_NEAR(y, expected.y, 1e-3) << longitude << " " << latitude;
            }
        }
    }
}
