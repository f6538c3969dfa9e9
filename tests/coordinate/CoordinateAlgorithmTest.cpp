#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "tests/coordinate/ReferenceDialects.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using Algorithm = CCoordinateAlgorithm;
using zelto::test::DIALECTS;
using zelto::test::ELLIPSOIDAL_ESRI;
using zelto::test::InDialect;
using zelto::test::VERTICAL_ESRI;

namespace {

constexpr const char* BAD_TEXTS[] = {nullptr, "", "junk", "GEOGCS[", "EPSG:99999999"};

constexpr const char* COMPOUND =
    R"(COMPD_CS["both",PROJCS["mine",GEOGCS["WGS 84",DATUM["WGS_1984",)"
    R"(SPHEROID["WGS 84",6378137,298.257223563]],PRIMEM["Greenwich",0],)"
    R"(UNIT["degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
    R"(PARAMETER["central_meridian",3],UNIT["US survey foot",0.304800609601219]],)"
    R"(VERT_CS["up",VERT_DATUM["sea",2005],UNIT["metre",1]]])";

} // namespace

TEST(CoordinateValidity, EveryDialectIsValid) {
    for (const char* code : {"EPSG:4326", "EPSG:4547"}) {
        EXPECT_TRUE(Algorithm::IsValidCoordinate(code));
        for (const char* dialect : DIALECTS)
            EXPECT_TRUE(Algorithm::IsValidCoordinate(InDialect(code, dialect).c_str())) << dialect;
    }
    EXPECT_TRUE(Algorithm::IsValidCoordinate(VERTICAL_ESRI));
    EXPECT_TRUE(Algorithm::IsValidCoordinate(COMPOUND));
}

TEST(CoordinateValidity, BadTextsAreNothingAtAll) {
    for (const char* bad : BAD_TEXTS) {
        EXPECT_FALSE(Algorithm::IsValidCoordinate(bad));
        EXPECT_FALSE(Algorithm::IsProjected(bad));
        EXPECT_FALSE(Algorithm::IsGeographic(bad));
        EXPECT_EQ(Algorithm::GetCoordinateInfoString(bad), "");
        EXPECT_EQ(Algorithm::GetCoordinateName(bad), "");
        EXPECT_EQ(Algorithm::GetDatum(bad), "");
        EXPECT_EQ(Algorithm::GetUnit(bad), "");
        EXPECT_EQ(Algorithm::CopyGeogCSFrom(bad), "");
        EXPECT_EQ(Algorithm::NewChinaProjCS(bad, 39, 3), "");
    }
}

TEST(CoordinateKind, IsTheSameInEveryDialect) {
    for (const char* dialect : DIALECTS) {
        const std::string geographic = InDialect("EPSG:4490", dialect);
        EXPECT_TRUE(Algorithm::IsGeographic(geographic.c_str())) << dialect;
        EXPECT_FALSE(Algorithm::IsProjected(geographic.c_str())) << dialect;
        const std::string projected = InDialect("EPSG:4547", dialect);
        EXPECT_FALSE(Algorithm::IsGeographic(projected.c_str())) << dialect;
        EXPECT_TRUE(Algorithm::IsProjected(projected.c_str())) << dialect;
    }
    EXPECT_FALSE(Algorithm::IsGeographic(VERTICAL_ESRI));
    EXPECT_FALSE(Algorithm::IsProjected(VERTICAL_ESRI));
}

TEST(SameCoordinate, EveryDialectOfASystemIsTheSame) {
    for (const char* code : {"EPSG:4326", "EPSG:32650", "EPSG:4547"}) {
        for (const char* dialect : DIALECTS) {
            // A PROJ string forgets the datum of all but the best known systems.
            if (std::string(dialect) == "PROJ" && std::string(code) == "EPSG:4547")
                continue;
            EXPECT_TRUE(Algorithm::IsSameCoordinate(code, InDialect(code, dialect).c_str()))
                << code << " " << dialect;
        }
    }
}

TEST(SameCoordinate, DifferentSystemsDiffer) {
    EXPECT_FALSE(Algorithm::IsSameCoordinate("EPSG:4326", "EPSG:4490"));
    EXPECT_FALSE(Algorithm::IsSameCoordinate("EPSG:4326", "EPSG:32650"));
    EXPECT_FALSE(Algorithm::IsSameCoordinate("EPSG:32650", "EPSG:32651"));
}

TEST(SameCoordinate, NothingIsTheSameAsABadText) {
    for (const char* bad : BAD_TEXTS) {
        EXPECT_FALSE(Algorithm::IsSameCoordinate(bad, bad));
        EXPECT_FALSE(Algorithm::IsSameCoordinate("EPSG:4326", bad));
        EXPECT_FALSE(Algorithm::IsSameCoordinate(bad, "EPSG:4326"));
    }
}

TEST(CoordinateName, IsChosenByTheFirstKeywordOfTheText) {
    const std::string projected = InDialect("EPSG:4547", "WKT1_GDAL");
    EXPECT_EQ(Algorithm::GetCoordinateName(projected.c_str()),
              "CGCS2000 / 3-degree Gauss-Kruger CM 114E");
    const std::string geographic = InDialect("EPSG:4490", "WKT1_GDAL");
    EXPECT_EQ(Algorithm::GetCoordinateName(geographic.c_str()),
              "China Geodetic Coordinate System 2000");
    EXPECT_EQ(Algorithm::GetCoordinateName(COMPOUND), "mine");
    EXPECT_EQ(Algorithm::GetCoordinateName(VERTICAL_ESRI), "EGM96_Geoid");
}

TEST(CoordinateName, OfAReadableTextWithoutKeywordIsUnknow) {
    EXPECT_EQ(Algorithm::GetCoordinateName("EPSG:4326"), "Unknow");
    for (const char* dialect : {"WKT2_2019", "PROJ"})
        EXPECT_EQ(Algorithm::GetCoordinateName(InDialect("EPSG:4547", dialect).c_str()), "Unknow");
}

TEST(CoordinateDatum, IsTheDatumOfTheGeographicSystem) {
    EXPECT_EQ(Algorithm::GetDatum(InDialect("EPSG:4490", "WKT1_GDAL").c_str()), "China_2000");
    EXPECT_EQ(Algorithm::GetDatum(InDialect("EPSG:2432", "WKT1_GDAL").c_str()), "Beijing_1954");
    EXPECT_EQ(Algorithm::GetDatum(COMPOUND), "WGS_1984");
}

TEST(CoordinateDatum, OfAVerticalSystemIsItsVerticalOrItsOtherDatum) {
    EXPECT_EQ(Algorithm::GetDatum(VERTICAL_ESRI), "EGM96_Geoid");
    EXPECT_EQ(Algorithm::GetDatum(ELLIPSOIDAL_ESRI), "D_WGS_1984");
}

TEST(CoordinateDatum, IsEmptyWithoutAKeyword) {
    EXPECT_EQ(Algorithm::GetDatum("EPSG:4326"), "");
    EXPECT_EQ(Algorithm::GetDatum(InDialect("EPSG:5773", "WKT1_GDAL").c_str()), "");
    EXPECT_EQ(Algorithm::GetDatum("VERTCRS[\"VERTCS\",VRF[\"mean sea level\"],CS[vertical,1],"
                                  "AXIS[\"up\",up],LENGTHUNIT[\"metre\",1]]"),
              "");
}

TEST(CoordinateUnit, IsLinearWhereTheTextHasAProjectedSystem) {
    EXPECT_EQ(Algorithm::GetUnit(InDialect("EPSG:4547", "WKT1_GDAL").c_str()), "metre");
    EXPECT_EQ(Algorithm::GetUnit(COMPOUND), "US survey foot");
}

TEST(CoordinateUnit, IsAngularWhereTheTextHasAGeographicSystemOnly) {
    EXPECT_EQ(Algorithm::GetUnit(InDialect("EPSG:4490", "WKT1_GDAL").c_str()), "degree");
    EXPECT_EQ(Algorithm::GetUnit(InDialect("EPSG:4807", "WKT1_GDAL").c_str()), "grad");
}

TEST(CoordinateUnit, IsLinearForAVerticalSystem) {
    EXPECT_EQ(Algorithm::GetUnit(VERTICAL_ESRI), "metre");
    EXPECT_EQ(Algorithm::GetUnit(ELLIPSOIDAL_ESRI), "foot");
}

TEST(CoordinateUnit, OfASystemWithoutAUnitIsTheOneThatGdalGivesIt) {
    EXPECT_EQ(Algorithm::GetUnit("LOCAL_CS[\"site of no PROJCS\"]"), "metre");
}

TEST(CoordinateUnit, NeedsWellKnownText) {
    EXPECT_EQ(Algorithm::GetUnit("EPSG:4326"), "");
    EXPECT_EQ(Algorithm::GetUnit("+proj=longlat +datum=WGS84"), "");
    EXPECT_EQ(Algorithm::GetUnit(InDialect("EPSG:4326", "WKT2_2019").c_str()), "");
}

TEST(GeographicSystemOf, AProjectedSystemIsTheOneItIsBuiltOn) {
    for (const char* dialect : DIALECTS) {
        const std::string wkt = Algorithm::CopyGeogCSFrom(InDialect("EPSG:32650", dialect).c_str());
        EXPECT_EQ(wkt.substr(0, 7), "GEOGCS[") << dialect;
        EXPECT_TRUE(Algorithm::IsSameCoordinate(wkt.c_str(), "EPSG:4326")) << dialect;
    }
    EXPECT_TRUE(
        Algorithm::IsSameCoordinate(Algorithm::CopyGeogCSFrom(COMPOUND).c_str(), "EPSG:4326"));
}

TEST(GeographicSystemOf, AGeographicSystemIsItself) {
    const std::string wkt = Algorithm::CopyGeogCSFrom("EPSG:4490");
    EXPECT_TRUE(Algorithm::IsSameCoordinate(wkt.c_str(), "EPSG:4490"));
}

TEST(GeographicSystemOf, AVerticalSystemIsEmpty) {
    EXPECT_EQ(Algorithm::CopyGeogCSFrom("EPSG:5773"), "");
}

TEST(ProjectionFile, GivesItsFirstLineUnchecked) {
    const zelto::test::TemporaryFolder folder;
    const auto read = [&](const std::string& bytes) {
        zelto::test::WriteFile(folder.File("投影 é.prj"), bytes);
        return Algorithm::GetWKTFromPrjFile(folder.WideFile("投影 é.prj").c_str());
    };
    EXPECT_EQ(read("GEOGCS[\"a\"]\nsecond"), "GEOGCS[\"a\"]");
    EXPECT_EQ(read("anything goes"), "anything goes");
    EXPECT_EQ(read("dos line\r\nsecond\r\n"), "dos line");
    EXPECT_EQ(read(" a\rb \n"), " a\rb ");
    EXPECT_EQ(read("\nsecond"), "");
    EXPECT_EQ(read(""), "");
}

TEST(ProjectionFile, ThatCannotBeReadIsEmpty) {
    const zelto::test::TemporaryFolder folder;
    EXPECT_EQ(Algorithm::GetWKTFromPrjFile(folder.WideFile("missing.prj").c_str()), "");
    EXPECT_EQ(Algorithm::GetWKTFromPrjFile(folder.WideFile("").c_str()), "");
    EXPECT_EQ(Algorithm::GetWKTFromPrjFile(nullptr), "");
}
