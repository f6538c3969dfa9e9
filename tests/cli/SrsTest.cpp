#include "tests/cli/RunZelto.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

using Json = nlohmann::json;
using zelto::test::RunZelto;

namespace {

constexpr const char* XIAN =
    R"(GEOGCS["GCS_Xian_1980",DATUM["D_Xian_1980",SPHEROID["Xian_1980",6378140.0,298.257]],)"
    R"(PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]])";

} // namespace

TEST(SrsCommand, InfoDescribesAGeographicSystem) {
    const auto run = RunZelto({"srs", "info", "EPSG:4326"});
    EXPECT_EQ(run.exitStatus, 0);
    for (const char* line : {"kind                geographic\n", "authority           EPSG:4326\n",
                             "Datum               WGS_1984\n", "Semimajor Axis      6378137\n",
                             "Prime Meridian      Greenwich (0)\n"})
        EXPECT_NE(run.output.find(line), std::string::npos) << line << run.output;
    EXPECT_EQ(run.errors, "");
}

TEST(SrsCommand, InfoListsTheParametersOfAProjection) {
    const Json info = Json::parse(RunZelto({"srs", "info", "EPSG:4548", "--json"}).output);
    EXPECT_EQ(info["kind"], "projected");
    EXPECT_EQ(info["geographicSystem"], "China Geodetic Coordinate System 2000");
    EXPECT_EQ(info["projection"], "Transverse_Mercator");
    EXPECT_EQ(info["central_meridian"], 117.0);
    EXPECT_EQ(info["false_easting"], 500000.0);
    EXPECT_EQ(info["linearUnit"]["name"], "metre");
}

TEST(SrsCommand, InfoOfAnotherKindNamesItSo) {
    const auto run = RunZelto({"srs", "info", "EPSG:5773"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "kind       other\nauthority  EPSG:5773\n");
}

TEST(SrsCommand, AnUnreadableSystemFailsInOneLine) {
    for (const auto& arguments : {std::vector<std::string>{"srs", "info", "junk"},
                                  {"srs", "compare", "EPSG:4326", "junk"},
                                  {"srs", "gk", "junk", "--zone", "39", "--width", "3"}}) {
        const auto run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.errors, "zelto: junk: cannot be read as a spatial reference\n");
    }
}

TEST(SrsCommand, CompareSaysTheSameOfAnotherDialect) {
    const auto run = RunZelto({"srs", "compare", "EPSG:4326", "+proj=longlat +datum=WGS84"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output.substr(0, 16), "the same system\n");
    EXPECT_NE(run.output.find("described differently"), std::string::npos);
    EXPECT_EQ(RunZelto({"srs", "compare", "EPSG:4326", "EPSG:4326"}).output, "the same system\n");
}

TEST(SrsCommand, CompareSaysWhatDiffers) {
    const auto run = RunZelto({"srs", "compare", "EPSG:32650", "EPSG:32651", "--json"});
    EXPECT_EQ(run.exitStatus, 0);
    const Json result = Json::parse(run.output);
    EXPECT_EQ(result["same"], false);
    ASSERT_EQ(result["differences"].size(), 2U);
    EXPECT_EQ(result["differences"][0]["what"], "name");
    EXPECT_EQ(result["differences"][1]["what"], "central_meridian");
    EXPECT_EQ(result["differences"][1]["first"], 117.0);
    EXPECT_EQ(result["differences"][1]["second"], 123.0);
}

TEST(SrsCommand, CompareShowsFactsThatOnlyOneSystemHas) {
    const Json result =
        Json::parse(RunZelto({"srs", "compare", "EPSG:4326", "EPSG:32650", "--json"}).output);
    bool found = false;
    for (const Json& difference : result["differences"]) {
        if (difference["what"] == "projection") {
            found = true;
            EXPECT_TRUE(difference["first"].is_null());
            EXPECT_EQ(difference["second"], "Transverse_Mercator");
        }
    }
    EXPECT_TRUE(found);
}

TEST(SrsCommand, GkPrintsTheSystemOfAZone) {
    const auto run = RunZelto({"srs", "gk", XIAN, "--zone", "39", "--width", "3"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output.substr(0, 44), R"(PROJCS["Xian_1980_3_Degree_GK_CM_117E",GEOGC)");
    EXPECT_EQ(run.output.back(), '\n');
    const Json result =
        Json::parse(RunZelto({"srs", "gk", XIAN, "--zone", "20", "--width", "6", "--json"}).output);
    EXPECT_EQ(result["coordinateName"], "Xian_1980_GK_CM_117E");
    EXPECT_EQ(result["centralMeridian"], 117.0);
}

TEST(SrsCommand, GkSystemIsTheOneOfItsCode) {
    std::string wkt = RunZelto({"srs", "gk", "EPSG:4490", "--zone", "39", "--width", "3"}).output;
    wkt.pop_back();
    const Json result =
        Json::parse(RunZelto({"srs", "compare", wkt, "EPSG:4548", "--json"}).output);
    EXPECT_EQ(result["same"], true);
}

TEST(SrsCommand, GkRefusesZonesAndWidthsThatDoNotExist) {
    const auto status = [](const char* zone, const char* width) {
        return RunZelto({"srs", "gk", "EPSG:4490", "--zone", zone, "--width", width}).exitStatus;
    };
    EXPECT_EQ(status("0", "3"), 2);
    EXPECT_EQ(status("121", "3"), 2);
    EXPECT_EQ(status("61", "6"), 2);
    EXPECT_EQ(status("39", "4"), 2);
    EXPECT_EQ(status("120", "3"), 0);
    EXPECT_EQ(RunZelto({"srs", "gk", "EPSG:4490"}).exitStatus, 2);
}

TEST(SrsCommand, GkNeedsAGeographicSystem) {
    const auto run = RunZelto({"srs", "gk", "EPSG:5773", "--zone", "39", "--width", "3"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: EPSG:5773: has no geographic system to build on\n");
}
