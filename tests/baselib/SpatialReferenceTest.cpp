#include "zelto/baselib/internal/SpatialReference.h"

#include <gtest/gtest.h>

using zelto::ExportToWkt;
using zelto::IsSameReference;
using zelto::LoadSpatialReference;
using zelto::ParseSpatialReference;

namespace {

constexpr const char* VERTICAL_ESRI = R"(VERTCS["EGM96_Geoid",VDATUM["EGM96_Geoid"],)"
                                      R"(PARAMETER["Vertical_Shift",0.0],)"
                                      R"(PARAMETER["Direction",1.0],UNIT["Meter",1.0]])";

std::string WktOf(const char* text, const char* format) {
    const auto reference = ParseSpatialReference(text);
    const std::string option = std::string("FORMAT=") + format;
    const char* const options[] = {option.c_str(), nullptr};
    char* wkt = nullptr;
    EXPECT_EQ(reference->exportToWkt(&wkt, options), OGRERR_NONE);
    std::string result = wkt;
    CPLFree(wkt);
    return result;
}

bool IsSameText(const std::string& a, const std::string& b) {
    const auto first = ParseSpatialReference(a.c_str());
    const auto second = ParseSpatialReference(b.c_str());
    EXPECT_TRUE(first && second) << a << "\n" << b;
    return first && second && IsSameReference(*first, *second);
}

} // namespace

TEST(SpatialReferenceText, EveryDialectIsRead) {
    for (const char* format : {"WKT1_GDAL", "WKT1_SIMPLE", "WKT1_ESRI", "WKT2_2015", "WKT2_2019"})
        EXPECT_TRUE(ParseSpatialReference(WktOf("EPSG:4547", format).c_str())) << format;
    for (const char* text : {"EPSG:4326", "ESRI:102100", "WGS84", "+proj=longlat +ellps=krass",
                             "urn:ogc:def:crs:EPSG::4490"})
        EXPECT_TRUE(ParseSpatialReference(text)) << text;
}

TEST(SpatialReferenceText, VerticalSystemOfAProjectionFileIsRead) {
    const auto reference = ParseSpatialReference(VERTICAL_ESRI);
    ASSERT_TRUE(reference);
    EXPECT_TRUE(reference->IsVertical());
}

TEST(SpatialReferenceText, NullEmptyAndNonsenseAreRefused) {
    EXPECT_FALSE(ParseSpatialReference(nullptr));
    EXPECT_FALSE(ParseSpatialReference(""));
    EXPECT_FALSE(ParseSpatialReference("junk"));
    EXPECT_FALSE(ParseSpatialReference("GEOGCS["));
    EXPECT_FALSE(ParseSpatialReference("EPSG:99999999"));
}

TEST(SpatialReferenceText, ARefusedTextEmptiesTheReference) {
    OGRSpatialReference reference;
    for (const char* bad : {"junk", "GEOGCS[", "", static_cast<const char*>(nullptr)}) {
        ASSERT_TRUE(LoadSpatialReference(reference, "EPSG:4326"));
        EXPECT_FALSE(LoadSpatialReference(reference, bad));
        EXPECT_TRUE(reference.IsEmpty());
    }
}

TEST(SpatialReferenceText, LongitudeAndEastingComeFirst) {
    OGRSpatialReference reused;
    ASSERT_TRUE(LoadSpatialReference(reused, "EPSG:4326"));
    EXPECT_EQ(reused.GetAxisMappingStrategy(), OAMS_TRADITIONAL_GIS_ORDER);
    EXPECT_EQ(reused.GetDataAxisToSRSAxisMapping(), (std::vector<int>{2, 1}));
    ASSERT_TRUE(LoadSpatialReference(reused, "EPSG:32650"));
    EXPECT_EQ(reused.GetDataAxisToSRSAxisMapping(), (std::vector<int>{1, 2}));
    ASSERT_TRUE(LoadSpatialReference(reused, "EPSG:4547"));
    EXPECT_EQ(reused.GetDataAxisToSRSAxisMapping(), (std::vector<int>{2, 1}));
}

TEST(SameReference, EveryDialectOfASystemIsTheSame) {
    for (const char* code : {"EPSG:4326", "EPSG:4490", "EPSG:32650", "EPSG:2432", "EPSG:4547"}) {
        for (const char* format : {"WKT1_GDAL", "WKT1_SIMPLE", "WKT1_ESRI", "WKT2_2019"})
            EXPECT_TRUE(IsSameText(code, WktOf(code, format))) << code << " " << format;
    }
    EXPECT_TRUE(IsSameText("EPSG:4326", "+proj=longlat +datum=WGS84 +no_defs"));
}

TEST(SameReference, SystemsOfDifferentDatumDiffer) {
    const char* codes[] = {"EPSG:4326", "EPSG:4490", "EPSG:4214", "EPSG:4610"};
    for (const char* a : codes) {
        for (const char* b : codes)
            EXPECT_EQ(IsSameText(a, b), a == b) << a << " " << b;
    }
}

TEST(SameReference, ZonesDiffer) {
    EXPECT_FALSE(IsSameText("EPSG:32650", "EPSG:32651"));
    EXPECT_FALSE(IsSameText("EPSG:4547", "EPSG:4548"));
    EXPECT_FALSE(IsSameText("EPSG:4326", "EPSG:32650"));
}

TEST(SameReference, AReversedAxisIsNotAnAxisOrder) {
    // The same Krovak projection, counted south and west or east and north.
    EXPECT_FALSE(IsSameText("EPSG:2065", "EPSG:5221"));
    // Mean sea level as height and as depth.
    EXPECT_FALSE(IsSameText("EPSG:5714", "EPSG:5715"));
    EXPECT_TRUE(IsSameText("EPSG:5715", WktOf("EPSG:5715", "WKT1_GDAL")));
}

TEST(SameReference, PolarSystemsSurviveTheProjectionFile) {
    for (const char* code : {"EPSG:3031", "EPSG:3413"})
        EXPECT_TRUE(IsSameText(code, WktOf(code, "WKT1_ESRI"))) << code;
}

TEST(SameReference, ThreeDimensionalSystemsAreCompared) {
    EXPECT_TRUE(IsSameText("EPSG:4979", "EPSG:4979"));
    EXPECT_FALSE(IsSameText("EPSG:4979", "EPSG:4326"));
}

TEST(SameReference, TwoEmptyReferencesAreNotTheSame) {
    const OGRSpatialReference empty;
    EXPECT_FALSE(IsSameReference(empty, empty));
    EXPECT_FALSE(IsSameReference(*ParseSpatialReference("EPSG:4326"), empty));
}

TEST(SpatialReferenceWkt, IsReadBackAsTheSame) {
    const std::string wkt = ExportToWkt(*ParseSpatialReference("EPSG:2432"));
    EXPECT_EQ(wkt.substr(0, 8), "PROJCS[\"");
    EXPECT_TRUE(IsSameText("EPSG:2432", wkt));
}

TEST(SpatialReferenceWkt, OfAnEmptyReferenceIsEmpty) {
    EXPECT_EQ(ExportToWkt(OGRSpatialReference()), "");
}

TEST(SpatialReferenceNode, ValueIsTheOneThatStandsInTheText) {
    const char* wkt = R"(PROJCS["p",GEOGCS["GCS_Xian_1980",DATUM["D",SPHEROID["S",1,2]]]])";
    EXPECT_EQ(zelto::ReadNodeValue(wkt, "PROJCS"), "p");
    EXPECT_EQ(zelto::ReadNodeValue(wkt, "GEOGCS"), "GCS_Xian_1980");
    EXPECT_EQ(zelto::ReadNodeValue(VERTICAL_ESRI, "VDATUM"), "EGM96_Geoid");
    EXPECT_EQ(zelto::ReadNodeValue(wkt, "VERTCS"), "");
}

TEST(SpatialReferenceNode, TextsThatAreNoWktHaveNoNodes) {
    for (const char* text :
         {"EPSG:4326", "GEOGCS", "GEOGCS[", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(zelto::ReadNodeValue(text, "GEOGCS"), "");
}

TEST(SpatialReferenceNode, ANodeWithoutContentHasNoValue) {
    EXPECT_EQ(zelto::ReadNodeValue(R"(A["x",B])", "B"), "");
    EXPECT_EQ(zelto::ReplaceNodeValue(R"(A["x",B])", "B", "new"), "");
}

TEST(SpatialReferenceText, ThatNamesADeviceIsRefused) {
    OGRSpatialReference reference;
    EXPECT_FALSE(LoadSpatialReference(reference, "/dev/zero"));
    EXPECT_TRUE(reference.IsEmpty());
}

TEST(SameReference, ASystemMayBeNamedLikeAnAxis) {
    const std::string wkt = R"(GEOGCS["AXIS",DATUM["AXIS",SPHEROID["AXIS",6378137,298]],)"
                            R"(PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433],)";
    const std::string east = wkt + R"(AXIS["Longitude",EAST],AXIS["Latitude",NORTH]])";
    const std::string north = wkt + R"(AXIS["Latitude",NORTH],AXIS["Longitude",EAST]])";
    EXPECT_TRUE(IsSameText(east, north));
}

TEST(SameReference, AnAxisThatCountsDownIsNotTakenForNorth) {
    const std::string local = R"(LOCAL_CS["mine",UNIT["metre",1],AXIS["E",EAST],)";
    EXPECT_FALSE(IsSameText(local + R"(AXIS["D",DOWN]])", local + R"(AXIS["N",NORTH]])"));
}

TEST(SpatialReferenceNode, ReplacingChangesTheFirstNodeOnly) {
    EXPECT_EQ(zelto::ReplaceNodeValue(R"(A["x",B["y"],B["z"]])", "B", "new"),
              R"(A["x",B["new"],B["z"]])");
    EXPECT_EQ(zelto::ReplaceNodeValue(R"(A["x"])", "B", "new"), "");
    EXPECT_EQ(zelto::ReplaceNodeValue("A[", "A", "new"), "");
    EXPECT_EQ(zelto::ReplaceNodeValue("", "A", "new"), "");
}

TEST(SpatialReference, DefinitionsOnTheNetworkAreNotFetched) {
    EXPECT_FALSE(zelto::ParseSpatialReference("http://localhost:9/system.wkt"));
    EXPECT_TRUE(zelto::ParseSpatialReference("http://www.opengis.net/def/crs/EPSG/0/4326"))
        << "a name of the registry, known without a network";
}

TEST(SpatialReference, AxesThatCountWestAndSouthAreNotTakenForEastAndNorth) {
    const auto same = [](const char* a, const char* b) {
        return zelto::IsSameReference(*zelto::ParseSpatialReference(a),
                                      *zelto::ParseSpatialReference(b));
    };
    const std::string grid =
        R"(PROJCS["grid",GEOGCS["ball",DATUM["d",SPHEROID["s",6378137,298]],)"
        R"(PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],)"
        R"(PROJECTION["Transverse_Mercator"],PARAMETER["central_meridian",29],)"
        R"(UNIT["metre",1],)";
    const std::string north = grid + R"(AXIS["X",NORTH],AXIS["Y",EAST]])";
    const std::string east = grid + R"(AXIS["E",EAST],AXIS["N",NORTH]])";
    const std::string west = grid + R"(AXIS["Y",WEST],AXIS["X",SOUTH]])";
    EXPECT_TRUE(same(north.c_str(), east.c_str()));
    EXPECT_TRUE(same(west.c_str(), west.c_str()));
    EXPECT_FALSE(same(west.c_str(), east.c_str()));
}

TEST(SpatialReference, OneWithHeightsAboveItsEllipsoidIsNotTheOneWithout) {
    EXPECT_FALSE(zelto::IsSameReference(*zelto::ParseSpatialReference("EPSG:4326"),
                                        *zelto::ParseSpatialReference("EPSG:4979")));
    EXPECT_TRUE(zelto::IsSameReference(*zelto::ParseSpatialReference("EPSG:4979"),
                                       *zelto::ParseSpatialReference("EPSG:4979")));
}
