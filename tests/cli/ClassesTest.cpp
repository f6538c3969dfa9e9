#include "zelto/classify/ClassifiedAssistantFile.h"

#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using Json = nlohmann::json;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

const char* const TABLE = "value,red,green,blue,name\n"
                          "1,0,0,255,水体\n"
                          "\n"
                          " 2 , 34 ,139,34, forest \r\n"
                          "-3,255,255,0,\"dry, \"\"bare\"\" soil\"\n";

} // namespace

TEST(ClassesCommand, WritesATableAndShowsItAgain) {
    const TemporaryFolder folder;
    WriteFile(folder.File("classes.csv"), TABLE);
    const std::string acf = folder.File("land.acf");
    const auto written = RunZelto({"classes", "write", folder.File("classes.csv"), acf});
    EXPECT_EQ(written.exitStatus, 0) << written.errors;
    EXPECT_EQ(written.output, acf + ": 3 classes\n");
    const auto shown = RunZelto({"classes", "show", "--json", acf});
    EXPECT_EQ(Json::parse(shown.output)["classes"],
              (Json{{{"value", 1.0}, {"color", {0, 0, 255}}, {"name", "水体"}},
                    {{"value", 2.0}, {"color", {34, 139, 34}}, {"name", "forest"}},
                    {{"value", -3.0}, {"color", {255, 255, 0}}, {"name", "dry, \"bare\" soil"}}}));
    EXPECT_NE(RunZelto({"classes", "show", acf}).output.find("forest"), std::string::npos);
}

TEST(ClassesCommand, WritesBesideAnImageAndChecksIt) {
    const TemporaryFolder folder;
    WriteFile(folder.File("classes.csv"), TABLE);
    WriteRaster(folder.File("land.tif"), {.width = 2, .height = 1}, {{1, 2}});
    const std::string image = folder.File("land.tif");
    const auto run = RunZelto({"classes", "write", folder.File("classes.csv"), "--image", image});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"classes.csv", "land.acf", "land.tif"}));
    EXPECT_EQ(RunZelto({"classes", "check", image}).output, image + ": opens with 3 classes\n");
}

TEST(ClassesCommand, AFileOfAnotherNameDoesNotBelongToTheImage) {
    const TemporaryFolder folder;
    WriteFile(folder.File("classes.csv"), TABLE);
    WriteRaster(folder.File("land.tif"), {.width = 2, .height = 1}, {{1, 2}});
    const auto run = RunZelto({"classes", "write", folder.File("classes.csv"),
                               folder.File("other.acf"), "--image", folder.File("land.tif")});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_NE(run.errors.find("takes its classes from"), std::string::npos) << run.errors;
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"classes.csv", "land.tif"}));
    // Also where the image has classes of its own.
    ASSERT_EQ(RunZelto({"classes", "write", folder.File("classes.csv"), folder.File("land.acf")})
                  .exitStatus,
              0);
    EXPECT_EQ(RunZelto({"classes", "write", folder.File("classes.csv"), folder.File("other.acf"),
                        "--image", folder.File("land.tif")})
                  .exitStatus,
              2);
}

TEST(ClassesCommand, TheTableItPrintsCanBeWrittenAgain) {
    const TemporaryFolder folder;
    WriteFile(folder.File("classes.csv"), TABLE);
    const std::string acf = folder.File("a.acf");
    ASSERT_EQ(RunZelto({"classes", "write", folder.File("classes.csv"), acf}).exitStatus, 0);
    WriteFile(folder.File("again.csv"), RunZelto({"classes", "show", acf, "--csv"}).output);
    const std::string again = folder.File("b.acf");
    ASSERT_EQ(RunZelto({"classes", "write", folder.File("again.csv"), again}).exitStatus, 0);
    EXPECT_EQ(zelto::test::ReadFile(acf), zelto::test::ReadFile(again));
}

TEST(ClassesCommand, BadLinesAreNamed) {
    const TemporaryFolder folder;
    const std::string csv = folder.File("classes.csv");
    for (const char* line : {"1,0,0,256,too blue", "1,0,0,-1,too dark", "1,0,0,0", "1,0,0,0,a,b",
                             "1.5,0,0,0,half", "x,0,0,0,letters", "99999999999,0,0,0,large"}) {
        WriteFile(csv, std::string("1,2,3,4,good\n") + line + "\n");
        const auto run = RunZelto({"classes", "write", csv, folder.File("out.acf")});
        EXPECT_EQ(run.exitStatus, 1) << line;
        EXPECT_NE(run.errors.find(csv + ": line 2: "), std::string::npos) << run.errors;
    }
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"classes.csv"}));
}

TEST(ClassesCommand, MissingAndForeignFilesFail) {
    const TemporaryFolder folder;
    WriteFile(folder.File("text.acf"), "not an assistant file");
    WriteFile(folder.File("empty.csv"), "value,red,green,blue,name\n");
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"classes", "show", folder.File("text.acf")},
             {"classes", "show", folder.File("missing.acf")},
             {"classes", "check", folder.File("missing.tif")},
             {"classes", "write", folder.File("missing.csv"), folder.File("out.acf")},
             {"classes", "write", folder.File("empty.csv"), folder.File("out.acf")}}) {
        const auto run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
    }
    EXPECT_EQ(RunZelto({"classes", "write", folder.File("empty.csv")}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"classes"}).exitStatus, 2);
}
