#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>

using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;
using Json = nlohmann::json;

namespace {

/// Images of 20 × 20 pixels of 1, 2, 3 …, the third of which is none.
std::vector<std::string> Images(const TemporaryFolder& folder, int count, bool broken) {
    std::vector<std::string> paths;
    for (int i = 1; i <= count; ++i) {
        paths.push_back(folder.File("image" + std::to_string(i) + ".tif"));
        if (broken && i == 3)
            WriteFile(paths.back(), "nothing");
        else
            WriteRaster(paths.back(),
                        {.width = 20, .height = 20, .geoTransform = NorthUp(0, 20, 1)},
                        {Pixels(400, i)});
    }
    return paths;
}

std::vector<std::string> With(std::vector<std::string> arguments,
                              const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

} // namespace

TEST(ManyFiles, AreToldInTheOrderOfTheCommandLineHoweverManyAtOnce) {
    const TemporaryFolder folder;
    const auto images = Images(folder, 12, false);
    const auto one = RunZelto(With({"info", "--json", "--stats", "--jobs", "1"}, images));
    ASSERT_EQ(one.exitStatus, 0) << one.errors;
    for (const char* jobs : {"2", "5", "40"}) {
        const auto run = RunZelto(With({"info", "--json", "--stats", "--jobs", jobs}, images));
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(run.output, one.output) << jobs;
    }
    const Json json = Json::parse(one.output);
    for (std::size_t i = 0; i < images.size(); ++i)
        EXPECT_EQ(json[i]["path"], images[i]);
}

TEST(ManyFiles, AFileThatFailsIsToldAndTheOthersAreDone) {
    const TemporaryFolder folder;
    const auto images = Images(folder, 5, true);
    for (const auto& command : std::vector<std::vector<std::string>>{
             {"info", "--json"}, {"stats", "--json"}, {"pyramids", "build", "--json"}}) {
        const auto run = RunZelto(With(command, images));
        EXPECT_EQ(run.exitStatus, 1) << command[0];
        EXPECT_EQ(run.errors.find("zelto: " + images[2] + ": "), 0U) << run.errors;
        EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
        const Json json = Json::parse(run.output, nullptr, false);
        ASSERT_EQ(json.size(), 4U) << run.output;
        EXPECT_EQ(json[2]["path"], images[3]) << command[0];
    }
}

TEST(ManyFiles, StatisticsOfSeveralFilesTellTheirPaths) {
    const TemporaryFolder folder;
    const auto images = Images(folder, 2, false);
    const auto run = RunZelto(With({"stats", "--csv"}, images));
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, "path,band,count,minimum,maximum,mean,standardDeviation\n" + images[0] +
                              ",1,400,1,1,1,0\n" + images[1] + ",1,400,2,2,2,0\n");
    EXPECT_EQ(RunZelto(With({"stats", "--csv", "--covariance"}, images)).exitStatus, 2);
}

TEST(ManyFiles, AreDrawnIntoAFolder) {
    const TemporaryFolder folder;
    const auto images = Images(folder, 5, true);
    std::filesystem::create_directory(folder.File("pictures"));
    const auto run = RunZelto(With({"render", "--into", folder.File("pictures"), "--stretch",
                                    "none", "--jobs", "2", "--format", "tif"},
                                   images));
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + images[2] + ": "), 0U) << run.errors;
    std::string lines;
    for (const char* name : {"image1", "image2", "image4", "image5"}) {
        const std::string picture = folder.File("pictures/" + std::string(name) + ".tif");
        lines += picture + ": 20 x 20 pixels\n";
        EXPECT_EQ(zelto::test::ReadBand(picture, 1), Pixels(400, name[5] - '0'));
    }
    EXPECT_EQ(run.output, lines);
    EXPECT_EQ(RunZelto({"render", images[0], images[1], images[2]}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", images[0], folder.File("a.png"), "--jobs", "2"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", "--into", folder.File("nowhere"), images[0]}).exitStatus, 1);
    const auto same = RunZelto({"render", "--into", folder.File("pictures"), images[0], images[0]});
    EXPECT_EQ(same.exitStatus, 2);
    EXPECT_NE(same.errors.find("would both be image1.png"), std::string::npos) << same.errors;
}

TEST(ManyFiles, ABandThatOneFileLacksIsThatFilesFailure) {
    const TemporaryFolder folder;
    auto images = Images(folder, 2, false);
    images.push_back(WriteRaster(folder.File("two.tif"), {.width = 2, .height = 1},
                                 {Pixels(2, 7), Pixels(2, 8)}));
    const auto run = RunZelto(With({"stats", "--csv", "--bands", "2"}, images));
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + images[0] + ": --bands"), 0U) << run.errors;
    EXPECT_NE(run.output.find(images[2] + ",2,2,8,8,8,0\n"), std::string::npos) << run.output;
    EXPECT_EQ(RunZelto({"stats", images[0], "--bands", "2"}).exitStatus, 2) << "alone: wrong usage";
}

TEST(ManyFiles, NoFileIsChangedTwiceAtOnce) {
    const TemporaryFolder folder;
    const auto images = Images(folder, 1, false);
    const auto run = RunZelto({"pyramids", "build", images[0], images[0]});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.errors, "zelto: " + images[0] + " is the same file as " + images[0] + "\n");
}

TEST(ManyFiles, ARequestToStopEndsAll) {
    const TemporaryFolder folder;
    std::vector<std::string> images;
    for (int i = 0; i < 6; ++i)
        images.push_back(WriteRaster(
            folder.File("large" + std::to_string(i) + ".tif"),
            {.width = 3000, .height = 3000, .options = {"COMPRESS=DEFLATE", "TILED=YES"}},
            {MakePixels(3000, 3000, [](int c, int r) { return (c * r) % 251; })}));
    const auto run = RunZelto(With({"stats", "--jobs", "3", "--percentiles", "2,98"}, images), "",
                              [](pid_t process) {
                                  zelto::test::WaitUntilItListens(process);
                                  kill(process, SIGINT);
                              });
    EXPECT_EQ(run.exitStatus, 130) << run.output;
    EXPECT_EQ(run.output, "");
}

TEST(ManyFiles, TheNumberOfJobsIsAtLeastOne) {
    const TemporaryFolder folder;
    const auto images = Images(folder, 2, false);
    EXPECT_EQ(RunZelto(With({"info", "--jobs", "0"}, images)).exitStatus, 2);
}
