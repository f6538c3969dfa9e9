// Texts of files that would steer a terminal, or that are no texts.

#include "tests/cli/RunZelto.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <ogrsf_frmts.h>

using Json = nlohmann::json;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;

namespace {

/// Clears the screen, rings, goes to the line's beginning, ends the line; a C1 escape and a byte
/// that is not UTF-8.
const std::string HOSTILE = "a\x1b[2J\a\rb\nc\x7f\xC2\x9B"
                            "d\xFF"
                            "e";
const std::string ESCAPED = "a\\x1b[2J\\x07\\x0db\\x0ac\\x7f\\x9bd\xEF\xBF\xBD"
                            "e";

/// No control characters but line ends, and only UTF-8.
void ExpectHarmless(const std::string& text) {
    for (const char c : text)
        EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F)) << text;
    EXPECT_EQ(text.find("\xC2\x9B"), std::string::npos) << text;
    EXPECT_EQ(text.find('\xFF'), std::string::npos) << text;
}

/// A class table of one class with that name.
void WriteClasses(const std::string& path, const std::string& name) {
    zelto::test::WriteFile(path, "value,red,green,blue,name\n1,2,3,4," + name + "\n");
}

} // namespace

TEST(HostileText, AFileNameIsEscapedInReasons) {
    const auto run = RunZelto({"stats", "/nowhere/" + HOSTILE});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: /nowhere/" + ESCAPED + ": No such file or directory\n");
}

TEST(HostileText, AnUnknownWordIsEscaped) {
    EXPECT_EQ(RunZelto({"\x1b[2J"}).errors, "zelto: unknown command '\\x1b[2J'\n");
}

TEST(HostileText, SubDataSetDescriptionsAreEscapedInTheTableAndWholeInJson) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.vrt");
    zelto::test::WriteFile(
        path, "<VRTDataset rasterXSize=\"2\" rasterYSize=\"1\"><Metadata domain=\"SUBDATASETS\">"
              "<MDI key=\"SUBDATASET_1_NAME\">x\xFF</MDI>"
              "<MDI key=\"SUBDATASET_1_DESC\">red\x1b[31m\xC2\x9B</MDI></Metadata>"
              "<VRTRasterBand dataType=\"Byte\" band=\"1\"/>"
              "</VRTDataset>");
    const auto table = RunZelto({"info", path});
    EXPECT_EQ(table.exitStatus, 0) << table.errors;
    ExpectHarmless(table.output);
    EXPECT_NE(table.output.find("red\\x1b[31m\\x9b"), std::string::npos) << table.output;
    const auto text = RunZelto({"info", "--json", path});
    EXPECT_EQ(text.exitStatus, 0) << text.errors;
    EXPECT_EQ(Json::parse(text.output)["subdatasets"][0]["description"], "red\x1b[31m\xC2\x9B");
    EXPECT_EQ(Json::parse(text.output)["subdatasets"][0]["name"], "x\xEF\xBF\xBD");
}

TEST(HostileText, LayersFieldsAndValuesOfVectorsAreEscaped) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.geojson");
    zelto::test::WriteFile(
        path,
        R"({"type":"FeatureCollection","name":"lay\u001b[2Jer","features":[{"type":"Feature",)"
        R"("properties":{"fi\u0007eld":"va\u009blue"},"geometry":{"type":"Polygon",)"
        R"("coordinates":[[[0,0],[2,0],[2,2],[0,2],[0,0]]]}}]})");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"vector", "info", path},
          {"aoi", "info", path},
          {"aoi", "hit", path, "1,1"}}) {
        const auto run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        ExpectHarmless(run.output);
    }
    EXPECT_NE(RunZelto({"vector", "info", path}).output.find("lay\\x1b[2Jer"), std::string::npos);
    auto with = std::vector<std::string>{"vector", "info", "--json", path};
    EXPECT_EQ(Json::parse(RunZelto(with).output)["layers"][0]["name"], "lay\x1b[2Jer");
}

TEST(HostileText, ClassNamesAreEscapedInTheTableAndWholeInJson) {
    const TemporaryFolder folder;
    WriteClasses(folder.File("a.csv"), "wa\x1b[2Jter\a");
    const auto made = RunZelto({"classes", "write", folder.File("a.csv"), folder.File("a.acf")});
    ASSERT_EQ(made.exitStatus, 0) << made.errors;
    const auto table = RunZelto({"classes", "show", folder.File("a.acf")});
    EXPECT_NE(table.output.find("wa\\x1b[2Jter\\x07"), std::string::npos) << table.output;
    ExpectHarmless(table.output);
    const auto text = RunZelto({"classes", "show", "--json", folder.File("a.acf")});
    EXPECT_NE(text.output.find("wa\\u001b[2Jter\\u0007"), std::string::npos) << text.output;
}
