#include "tests/datasource/PlainDataSource.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <clocale>

using zelto::test::PlainDataSource;

TEST(CoordinateName, WithoutAReferenceEverythingIsEmpty) {
    PlainDataSource source;
    source.InitCoordinateName();
    EXPECT_EQ(source.GetCoordinateName(), L"");
    EXPECT_EQ(source.GetCoordinateNameNew(), L"");
    EXPECT_EQ(source.GetDatumName(), L"");
    EXPECT_EQ(source.GetAngularUnits(true), L"");
    EXPECT_EQ(source.GetLinearUnits(true), L"");
    EXPECT_EQ(source.GetUnitName(true), L"");
    EXPECT_FALSE(source.IsGeographic());
    EXPECT_FALSE(source.IsProjected());
}

TEST(CoordinateName, GeographicNameCarriesDatumAndSpheroid) {
    const PlainDataSource source("EPSG:4326");
    EXPECT_TRUE(source.IsGeographic());
    EXPECT_FALSE(source.IsProjected());
    EXPECT_EQ(source.GetCoordinateName(), L"WGS 84");
    EXPECT_EQ(source.GetCoordinateNameNew(), L"WGS 84 (WGS_1984/WGS 84)");
    EXPECT_EQ(source.GetDatumName(), L"WGS_1984");
}

TEST(CoordinateName, ProjectedNameCarriesProjectionAndSpheroid) {
    const PlainDataSource source("EPSG:32650");
    EXPECT_FALSE(source.IsGeographic());
    EXPECT_TRUE(source.IsProjected());
    EXPECT_EQ(source.GetCoordinateName(), L"WGS 84 / UTM zone 50N");
    EXPECT_EQ(source.GetCoordinateNameNew(), L"WGS 84 / UTM zone 50N (Transverse_Mercator/WGS 84)");
    EXPECT_EQ(source.GetDatumName(), L"WGS_1984");
}

TEST(CoordinateName, OnlyThePartBehindAnEqualsSignIsShown) {
    const PlainDataSource source(
        "GEOGCS[\"name=My own\",DATUM[\"My_datum\",SPHEROID[\"My_ball\",6378137,298]],"
        "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]");
    EXPECT_EQ(source.GetCoordinateName(), L"name=My own");
    EXPECT_EQ(source.GetCoordinateNameNew(), L"My own (My_datum/My_ball)");
}

TEST(CoordinateName, ChineseNamesArriveAsWideText) {
    const PlainDataSource source(
        "GEOGCS[\"独立坐标系\",DATUM[\"My_datum\",SPHEROID[\"My_ball\",6378137,298]],"
        "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]");
    EXPECT_EQ(source.GetCoordinateName(), L"独立坐标系");
}

TEST(CoordinateName, AReferenceThatIsNeitherKindHasNoName) {
    const PlainDataSource source("LOCAL_CS[\"site\",UNIT[\"metre\",1]]");
    EXPECT_EQ(source.GetCoordinateNameNew(), L"");
    EXPECT_EQ(source.GetUnitName(false), L"");
}

TEST(CoordinateName, ARefusedTextLeavesNoEarlierReferenceBehind) {
    PlainDataSource source("EPSG:4326");
    source.SetReference("no reference at all");
    EXPECT_FALSE(source.IsGeographic());
    EXPECT_EQ(source.GetCoordinateNameNew(), L"");
    source.SetReference("");
    EXPECT_FALSE(source.IsGeographic());
}

TEST(CoordinateName, AngularUnitsShowTheFactorWithEighteenDecimals) {
    const PlainDataSource source("EPSG:4326");
    EXPECT_EQ(source.GetAngularUnits(false), L"degree");
    EXPECT_EQ(source.GetAngularUnits(true), L"degree(0.017453292519943295)");
    EXPECT_EQ(source.GetLinearUnits(true), L"");
    EXPECT_EQ(source.GetUnitName(true), L"degree(0.017453292519943295)");
    EXPECT_EQ(source.GetUnitName(false), L"degree");
}

TEST(CoordinateName, LinearUnitsShowTheFactorWithEighteenDecimals) {
    const PlainDataSource source("EPSG:32650");
    EXPECT_EQ(source.GetLinearUnits(false), L"metre");
    EXPECT_EQ(source.GetLinearUnits(true), L"metre(1.000000000000000000)");
    EXPECT_EQ(source.GetAngularUnits(true), L"");
    EXPECT_EQ(source.GetUnitName(true), L"metre(1.000000000000000000)");
}

TEST(CoordinateName, ACommaLocaleDoesNotReachTheFactor) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr)
        GTEST_SKIP() << "no locale with a decimal comma here";
    const PlainDataSource source("EPSG:4326");
    EXPECT_EQ(source.GetAngularUnits(true), L"degree(0.017453292519943295)");
    std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(CoordinateName, TheReferenceTakesEastBeforeNorth) {
    const PlainDataSource source("EPSG:4326");
    EXPECT_EQ(source.Reference()->GetAxisMappingStrategy(), OAMS_TRADITIONAL_GIS_ORDER);
}

TEST(CoordinateName, WithoutAPlaceForTheReferenceEverythingIsEmptyToo) {
    PlainDataSource source("EPSG:4326");
    source.GiveUpReference();
    source.InitCoordinateName();
    EXPECT_EQ(source.GetCoordinateName(), L"");
    EXPECT_EQ(source.GetCoordinateNameNew(), L"");
    EXPECT_EQ(source.GetDatumName(), L"");
    EXPECT_EQ(source.GetUnitName(true), L"");
    EXPECT_FALSE(source.IsGeographic());
    EXPECT_FALSE(source.IsProjected());
    CGISDataSource::RegisterGDAL(); // a copy counts as a source at its end only
    EXPECT_EQ(PlainDataSource(source).Reference(), nullptr);
}

TEST(CoordinateName, AUnitWithoutANameIsEmpty) {
    const PlainDataSource source("LOCAL_CS[\"site\"]");
    EXPECT_EQ(source.GetUnitName(true), L"");
    EXPECT_EQ(source.GetDatumName(), L"");
}
