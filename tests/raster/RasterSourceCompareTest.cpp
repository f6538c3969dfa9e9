#include "zelto/raster/RasterSource.h"

#include "tests/raster/ExposedRasterSource.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// A geographic system spelled out.
struct Geographic {
    std::string name = "My system";
    std::string datum = "My_datum";
    std::string axis = "6378245";
    std::string flattening = "298.3";
    std::string shift = {}; ///< seven numbers
    std::string meridian = "0";
    std::string unit = "0.0174532925199433";

    std::string Wkt() const {
        return "GEOGCS[\"" + name + "\",DATUM[\"" + datum + "\",SPHEROID[\"My ball\"," + axis +
               "," + flattening + "]" + (shift.empty() ? "" : ",TOWGS84[" + shift + "]") +
               "],PRIMEM[\"Origin\"," + meridian + "],UNIT[\"angle\"," + unit + "]]";
    }
};

std::string Projected(const std::string& projection, const std::string& meridian,
                      const std::string& unit = "1") {
    return "PROJCS[\"My grid\"," + Geographic().Wkt() + ",PROJECTION[\"" + projection +
           "\"],PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\"," + meridian +
           "],PARAMETER[\"scale_factor\",1],PARAMETER[\"false_easting\",500000],"
           "PARAMETER[\"false_northing\",0],UNIT[\"length\"," +
           unit + "]]";
}

/// The unit that ends an angle of a system's text.
const std::string IN_DEGREES = ",ANGLEUNIT[\"degree\",0.0174532925199433]]";

/// A transverse Mercator system with heights above the ellipsoid.
std::string WithHeights(const std::string& meridian, const std::string& axis = "6378137") {
    return "PROJCRS[\"My grid\",BASEGEOGCRS[\"My system\",DATUM[\"My datum\","
           "ELLIPSOID[\"My ball\"," +
           axis +
           ",298.3]]],CONVERSION[\"My way\",METHOD[\"Transverse Mercator\"],"
           "PARAMETER[\"Latitude of natural origin\",0" +
           IN_DEGREES + ",PARAMETER[\"Longitude of natural origin\"," + meridian + IN_DEGREES +
           ",PARAMETER[\"Scale factor at natural origin\",1],"
           "PARAMETER[\"False easting\",500000],PARAMETER[\"False northing\",0]],"
           "CS[Cartesian,3],AXIS[\"e\",east],AXIS[\"n\",north],AXIS[\"h\",up],"
           "LENGTHUNIT[\"metre\",1]]";
}

/// A geographic system around another pole.
std::string WithPole(const std::string& latitude) {
    return "GEOGCRS[\"My poles\",BASEGEOGCRS[\"My system\",DATUM[\"My datum\","
           "ELLIPSOID[\"My ball\",6378137,298.3]]],DERIVINGCONVERSION[\"My way\","
           "METHOD[\"Pole rotation (GRIB convention)\"],PARAMETER[\"Latitude of the southern pole "
           "(GRIB convention)\"," +
           latitude + IN_DEGREES +
           ",PARAMETER[\"Longitude of the southern pole (GRIB convention)\",18" + IN_DEGREES +
           ",PARAMETER[\"Axis rotation (GRIB convention)\",0" + IN_DEGREES +
           "],CS[ellipsoidal,2],AXIS[\"latitude\",north],AXIS[\"longitude\",east]" + IN_DEGREES;
}

bool Same(const std::string& first, const std::string& second, bool vertical = true) {
    CRasterSource a;
    CRasterSource b;
    a.SetProjection(first.c_str());
    b.SetProjection(second.c_str());
    const bool result = CRasterSource::IsSameSpatialReference(&a, &b, vertical);
    EXPECT_EQ(CRasterSource::IsSameSpatialReference(&b, &a, vertical), result) << "not symmetric";
    return result;
}

bool SameAsPlain(const Geographic& other) {
    return Same(Geographic().Wkt(), other.Wkt());
}

} // namespace

TEST(CompareReferences, IdenticalTextsAreTheSame) {
    EXPECT_TRUE(Same("EPSG:4326", "EPSG:4326"));
    EXPECT_TRUE(Same("", ""));
    EXPECT_TRUE(Same("no reference at all", "no reference at all"));
    EXPECT_TRUE(Same("no reference at all", "none either"));
    EXPECT_FALSE(Same("EPSG:4326", ""));
    CRasterSource source;
    EXPECT_FALSE(CRasterSource::IsSameSpatialReference(&source, nullptr, true));
    EXPECT_FALSE(CRasterSource::IsSameSpatialReference(nullptr, &source, true));
}

TEST(CompareReferences, NamesOfSystemsDoNotCountButDatumNamesDo) {
    EXPECT_TRUE(SameAsPlain({.name = "Another name"}));
    EXPECT_TRUE(SameAsPlain({.datum = "MY_DATUM"}));
    EXPECT_FALSE(SameAsPlain({.datum = "Your_datum"}));
    EXPECT_FALSE(Same("EPSG:4326", "EPSG:4490"));
    EXPECT_FALSE(Same("EPSG:4214", "EPSG:4610"));
}

TEST(CompareReferences, DatumShiftsAgreeWithinOneHundredThousandth) {
    const Geographic shifted = {.shift = "22,-118,30.5,0,0,0,0"};
    EXPECT_FALSE(SameAsPlain(shifted));
    EXPECT_TRUE(SameAsPlain({.shift = "0,0,0,0,0,0,0"}));
    EXPECT_TRUE(Same(shifted.Wkt(), Geographic{.shift = "22.000009,-118,30.5,0,0,0,0"}.Wkt()));
    EXPECT_FALSE(Same(shifted.Wkt(), Geographic{.shift = "22.00002,-118,30.5,0,0,0,0"}.Wkt()));
    EXPECT_FALSE(Same(shifted.Wkt(), Geographic{.shift = "22,-118,30.5,0,0,0,0.1"}.Wkt()));
}

TEST(CompareReferences, PrimeMeridiansAgreeExactly) {
    EXPECT_TRUE(SameAsPlain({.meridian = "0.0"}));
    EXPECT_FALSE(SameAsPlain({.meridian = "2.33722917"}));
}

TEST(CompareReferences, AngularUnitsAgreeWithinOneHundredMillionth) {
    EXPECT_TRUE(SameAsPlain({.unit = "0.0174532925"}));
    EXPECT_FALSE(SameAsPlain({.unit = "0.0174533925199433"}));
    EXPECT_FALSE(SameAsPlain({.unit = "0.0157079632679489"}));
}

TEST(CompareReferences, SpheroidsAgreeWithinTheirTolerances) {
    EXPECT_TRUE(SameAsPlain({.axis = "6378245.009"}));
    EXPECT_FALSE(SameAsPlain({.axis = "6378245.02"}));
    EXPECT_TRUE(SameAsPlain({.flattening = "298.30009"}));
    EXPECT_FALSE(SameAsPlain({.flattening = "298.3002"}));
}

TEST(CompareReferences, TransverseMercatorAndGaussKrugerAreOneProjection) {
    EXPECT_TRUE(Same(Projected("Transverse_Mercator", "117"), Projected("Gauss_Kruger", "117")));
    EXPECT_FALSE(Same(Projected("Transverse_Mercator", "117"), Projected("Mercator_1SP", "117")));
    // GDAL leaves the name as it is where parameters are missing.
    const auto bare = [](const std::string& projection, const std::string& meridian) {
        return "PROJCS[\"My grid\"," + Geographic().Wkt() + ",PROJECTION[\"" + projection +
               "\"],PARAMETER[\"central_meridian\"," + meridian + "],UNIT[\"length\",1]]";
    };
    EXPECT_TRUE(Same(bare("Gauss_Kruger", "117"), bare("GAUSS_KRUGER", "117.0")));
    EXPECT_FALSE(Same(bare("Gauss_Kruger", "117"), bare("Gauss_Kruger", "120")));
    EXPECT_FALSE(Same(bare("Gauss_Kruger", "117"), bare("Transverse_Mercator", "117")))
        << "whose scale is 1 then";
}

TEST(CompareReferences, EveryProjectionParameterCounts) {
    EXPECT_TRUE(
        Same(Projected("Transverse_Mercator", "117"), Projected("Transverse_Mercator", "117.0")));
    EXPECT_FALSE(
        Same(Projected("Transverse_Mercator", "117"), Projected("Transverse_Mercator", "120")));
    EXPECT_FALSE(Same("EPSG:32650", "EPSG:32651"));
    EXPECT_FALSE(Same("EPSG:32650", "EPSG:4326"));
}

TEST(CompareReferences, LinearUnitsMayDifferByABillionth) {
    const std::string metre = Projected("Transverse_Mercator", "117");
    EXPECT_TRUE(Same(metre, Projected("Transverse_Mercator", "117", "1.00000000001")));
    EXPECT_FALSE(Same(metre, Projected("Transverse_Mercator", "117", "1.00000001")));
    EXPECT_FALSE(Same(metre, Projected("Transverse_Mercator", "117", "0.3048")));
}

TEST(CompareReferences, LocalSystemsDifferByTheirUnit) {
    const std::string metre = "LOCAL_CS[\"Site\",UNIT[\"metre\",1]]";
    EXPECT_TRUE(Same(metre, "LOCAL_CS[\"Another site\",UNIT[\"metre\",1.0]]"));
    EXPECT_FALSE(Same(metre, "LOCAL_CS[\"Site\",UNIT[\"foot\",0.3048]]"));
    EXPECT_FALSE(Same(metre, "EPSG:4326"));
}

TEST(CompareReferences, VerticalSystemsCountAndOnRequestTheLackOfOne) {
    EXPECT_TRUE(Same("EPSG:32650+5773", "EPSG:32650+5773"));
    EXPECT_FALSE(Same("EPSG:32650+5773", "EPSG:32650+5703"));
    EXPECT_FALSE(Same("EPSG:32650+5773", "EPSG:32650"));
    EXPECT_TRUE(Same("EPSG:32650+5773", "EPSG:32650", false));
    EXPECT_FALSE(Same("EPSG:32650+5773", "EPSG:32650+5703", false));
    EXPECT_FALSE(Same("EPSG:5773", "EPSG:5703", false));
}

TEST(CompareReferences, TwoSourcesCompareTheirHandles) {
    CRasterSource a;
    CRasterSource b;
    EXPECT_FALSE(a.IsSameSpatialReference(&b)) << "two empties";
    EXPECT_FALSE(a.IsSameSpatialReference(nullptr));
    a.SetProjection("EPSG:4547");
    b.SetProjection("EPSG:4547");
    EXPECT_TRUE(a.IsSameSpatialReference(&b));
    EXPECT_TRUE(a.IsSameSpatialReference(&a));
    b.SetProjection("EPSG:4548");
    EXPECT_FALSE(a.IsSameSpatialReference(&b));
    b.SetProjection("");
    EXPECT_FALSE(a.IsSameSpatialReference(&b));
}

TEST(CompareReferences, SourcesWithoutAPlaceForAReferenceHaveTheSameTextOnly) {
    zelto::test::ExposedRasterSource none;
    none.GiveUpReference();
    EXPECT_EQ(none.SetProjection("EPSG:4547"), GIS_SUCCESS);
    CRasterSource some;
    some.SetProjection("EPSG:4547");
    EXPECT_FALSE(none.IsSameSpatialReference(&some));
    EXPECT_FALSE(some.IsSameSpatialReference(&none));
    EXPECT_TRUE(CRasterSource::IsSameSpatialReference(&none, &some, true));
    some.SetProjection("EPSG:4548");
    EXPECT_FALSE(CRasterSource::IsSameSpatialReference(&none, &some, true));
    EXPECT_FALSE(CRasterSource::IsSameSpatialReference(&some, &none, true));
}

TEST(CompareReferences, ParametersThatOneOfThemLacksCountAsZero) {
    // False easting 0 is the same as none, 500000 is not.
    const std::string without = "PROJCS[\"My grid\"," + Geographic().Wkt() +
                                ",PROJECTION[\"Transverse_Mercator\"],"
                                "PARAMETER[\"latitude_of_origin\",0],"
                                "PARAMETER[\"central_meridian\",117],"
                                "PARAMETER[\"scale_factor\",1],UNIT[\"length\",1]]";
    EXPECT_FALSE(Same(Projected("Transverse_Mercator", "117"), without));
}

TEST(CompareReferences, ADatumWithoutANameIsThatOfNoOther) {
    const std::string heights = "VERT_CS[\"Heights\",VERT_DATUM[\"Sea\",2005],UNIT[\"metre\",1]]";
    const std::string others = "VERT_CS[\"Heights\",VERT_DATUM[\"Lake\",2005],UNIT[\"metre\",1]]";
    EXPECT_FALSE(Same(heights, others)) << "neither has a datum of positions";
    EXPECT_TRUE(Same(heights, heights + " ")) << "but the same of heights";
    EXPECT_FALSE(Same(heights, Geographic().Wkt()));
    EXPECT_FALSE(Same(heights, "EPSG:4978")) << "neither has positions on the ellipsoid";
    EXPECT_FALSE(Same(heights, "LOCAL_CS[\"Site\",UNIT[\"metre\",1]]"));
}

TEST(CompareReferences, SpheroidsDifferByTheirFlatteningToo) {
    EXPECT_TRUE(SameAsPlain({.flattening = "298.30009"}));
    EXPECT_FALSE(SameAsPlain({.flattening = "298.3002"}));
    EXPECT_FALSE(SameAsPlain({.axis = "6378245.02"}));
}

TEST(CompareReferences, AParameterThatOnlyOneOfThemHasCountsInBothDirections) {
    const auto grid = [](const std::string& parameter) {
        return "PROJCS[\"My grid\"," + Geographic().Wkt() +
               ",PROJECTION[\"Transverse_Mercator\"],"
               "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",117]," +
               parameter + "PARAMETER[\"false_easting\",0],UNIT[\"length\",1]]";
    };
    EXPECT_TRUE(Same(grid("PARAMETER[\"false_northing\",0],"), grid("")));
    EXPECT_FALSE(Same(grid("PARAMETER[\"false_northing\",9],"), grid("")));
}

TEST(CompareReferences, AProjectedSystemIsNoLocalOne) {
    EXPECT_FALSE(
        Same(Projected("Transverse_Mercator", "117"), "LOCAL_CS[\"Site\",UNIT[\"metre\",1]]"));
    EXPECT_FALSE(Same("EPSG:32650", "EPSG:4978")) << "nor one from the centre of the earth";
}

TEST(CompareReferences, SystemsWithHeightsAboveTheEllipsoidDifferByTheirParameters) {
    EXPECT_TRUE(Same(WithHeights("117"), WithHeights("117.0")));
    EXPECT_FALSE(Same(WithHeights("117"), WithHeights("120")));
    EXPECT_FALSE(Same(WithHeights("117"), WithHeights("117", "6378245")));
    EXPECT_FALSE(Same("EPSG:4979", "EPSG:4937")) << "other datums";
    EXPECT_TRUE(Same("EPSG:4979", "EPSG:4326", false));
    EXPECT_FALSE(Same("EPSG:4979", "EPSG:4326"));
}

TEST(CompareReferences, GeographicSystemsAroundOtherPolesDifferByThem) {
    EXPECT_TRUE(Same(WithPole("-39.25"), WithPole("-39.250")));
    EXPECT_FALSE(Same(WithPole("-39.25"), WithPole("-40")));
    EXPECT_FALSE(Same(WithPole("-39.25"), Geographic{.axis = "6378137"}.Wkt()));
}
