#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;

namespace {

using Arguments = std::vector<std::string>;

/// Fails unless a run ended so, with nothing on standard output and one line of the program's own
/// on standard error.
void ExpectOneLine(const zelto::test::RunResult& run, int status) {
    EXPECT_EQ(run.exitStatus, status);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors.rfind("zelto: ", 0), 0U) << run.errors;
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
}

class WrongUsage : public testing::TestWithParam<Arguments> {};
class MissingFile : public testing::TestWithParam<Arguments> {};

const std::vector<Arguments> COMMANDS = {{"aoi", "info"},
                                         {"aoi", "convert"},
                                         {"aoi", "hit"},
                                         {"aoi", "mask"},
                                         {"aoi", "new"},
                                         {"classes", "show"},
                                         {"classes", "write"},
                                         {"classes", "check"},
                                         {"compose"},
                                         {"copy"},
                                         {"create"},
                                         {"file", "rm"},
                                         {"file", "mv"},
                                         {"file", "cp"},
                                         {"georef"},
                                         {"histogram"},
                                         {"info"},
                                         {"polygonize"},
                                         {"pyramids", "build"},
                                         {"pyramids", "check"},
                                         {"render"},
                                         {"reproject", "box"},
                                         {"reproject", "grid"},
                                         {"reproject", "points"},
                                         {"reproject", "window"},
                                         {"samples", "collect"},
                                         {"samples", "show"},
                                         {"samples", "export"},
                                         {"samples", "import"},
                                         {"srs", "info"},
                                         {"srs", "compare"},
                                         {"stats"},
                                         {"vector", "info"},
                                         {"zonal"}};

} // namespace

TEST(CommandLine, HelpExitsWithZeroAndNamesTheConventions) {
    const auto run = RunZelto({"--help"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_NE(run.output.find("Bands are numbered from 1"), std::string::npos);
    EXPECT_EQ(run.errors, "");
}

TEST(CommandLine, VersionIsTheProjects) {
    EXPECT_EQ(RunZelto({"--version"}).output, "zelto 1.0.0\n");
}

TEST(CommandLine, AnUnknownCommandIsWrongUsage) {
    ExpectOneLine(RunZelto({"paint"}), 2);
}

TEST(CommandLine, NoCommandIsWrongUsage) {
    ExpectOneLine(RunZelto({}), 2);
}

TEST(CommandLine, AMistypedWordIsToldWithTheOneItResembles) {
    EXPECT_EQ(RunZelto({"redner", "a.tif", "b.png"}).errors,
              "zelto: unknown command 'redner'; did you mean 'render'?\n");
    EXPECT_EQ(RunZelto({"pyramids", "biuld", "a.tif"}).errors,
              "zelto: pyramids: unknown command 'biuld'; did you mean 'build'?\n");
    EXPECT_EQ(RunZelto({"stats", "a.tif", "--covariances"}).errors,
              "zelto: stats: unknown option '--covariances'; did you mean '--covariance'?\n");
    EXPECT_EQ(RunZelto({"stats", "--jsno", "a.tif"}).errors,
              "zelto: stats: unknown option '--jsno'; did you mean '--json'?\n");
    EXPECT_EQ(RunZelto({"paint"}).errors, "zelto: unknown command 'paint'\n");
}

TEST_P(WrongUsage, UnknownOptionsExitWithTwoAndOneLine) {
    Arguments arguments = GetParam();
    arguments.emplace_back("--no-such-thing");
    const auto run = RunZelto(arguments);
    ExpectOneLine(run, 2);
    EXPECT_NE(run.errors.find("--no-such-thing"), std::string::npos) << run.errors;
}

TEST_P(WrongUsage, TooManyWordsExitWithTwoAndOneLine) {
    Arguments arguments = GetParam();
    if (arguments == Arguments{"info"} || arguments == Arguments{"stats"} ||
        arguments.front() == "pyramids" || arguments == Arguments{"file", "rm"})
        return; // they take any number of files
    for (int i = 0; i < 12; ++i)
        arguments.push_back("w" + std::to_string(i));
    ExpectOneLine(RunZelto(arguments), 2);
}

TEST_P(WrongUsage, HelpIsPrintedWithZero) {
    Arguments arguments = GetParam();
    arguments.emplace_back("--help");
    const auto run = RunZelto(arguments);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_NE(run.output, "");
    EXPECT_EQ(run.errors, "");
}

INSTANTIATE_TEST_SUITE_P(AllCommands, WrongUsage, testing::ValuesIn(COMMANDS));

TEST_P(MissingFile, ExitsWithOneAndNamesIt) {
    const TemporaryFolder folder;
    Arguments arguments;
    for (const std::string& word : GetParam())
        arguments.push_back(word == "MISSING"            ? folder.File("missing.tif")
                            : word == "MISSING:1"        ? folder.File("missing.tif") + ":1"
                            : word.rfind("OUT.", 0) == 0 ? folder.File(word)
                                                         : word);
    const auto run = RunZelto(arguments);
    ExpectOneLine(run, 1);
    EXPECT_EQ(run.errors, "zelto: " + folder.File("missing.tif") + ": No such file or directory\n");
    EXPECT_TRUE(folder.Names().empty());
}

INSTANTIATE_TEST_SUITE_P(
    AllCommands, MissingFile,
    testing::Values(
        Arguments{"aoi", "info", "MISSING"}, Arguments{"aoi", "hit", "MISSING", "1,2"},
        Arguments{"aoi", "convert", "MISSING", "OUT.aif"},
        Arguments{"aoi", "mask", "MISSING", "MISSING", "OUT.tif"},
        Arguments{"classes", "show", "MISSING"},
        Arguments{"classes", "write", "MISSING", "OUT.acf"},
        Arguments{"compose", "MISSING:1", "MISSING:1", "MISSING:1", "OUT.png"},
        Arguments{"copy", "MISSING", "OUT.tif"},
        Arguments{"create", "OUT.tif", "--like", "MISSING"}, Arguments{"file", "rm", "MISSING"},
        Arguments{"file", "mv", "MISSING", "OUT.tif"},
        Arguments{"file", "cp", "MISSING", "OUT.tif"},
        Arguments{"georef", "MISSING", "--srs", "EPSG:4326"}, Arguments{"histogram", "MISSING"},
        Arguments{"info", "MISSING"}, Arguments{"polygonize", "MISSING", "OUT.gpkg"},
        Arguments{"pyramids", "build", "MISSING"}, Arguments{"pyramids", "check", "MISSING"},
        Arguments{"render", "MISSING", "OUT.png"},
        Arguments{"reproject", "points", "MISSING", "--from", "EPSG:4326", "--to", "EPSG:3857"},
        Arguments{"reproject", "grid", "MISSING", "--srs", "EPSG:4326"},
        Arguments{"samples", "show", "MISSING"},
        Arguments{"samples", "collect", "MISSING", "--aoi", "MISSING"},
        Arguments{"samples", "export", "MISSING", "MISSING"}, Arguments{"stats", "MISSING"},
        Arguments{"vector", "info", "MISSING"}, Arguments{"zonal", "MISSING", "MISSING"}));

TEST(StandardOutput, AFullDiskIsAFailure) {
    const TemporaryFolder folder;
    zelto::test::WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1}, {{0, 1}});
    for (const Arguments& arguments :
         {Arguments{"info", folder.File("a.tif")},
          Arguments{"info", "--json", folder.File("a.tif")},
          Arguments{"stats", "--csv", folder.File("a.tif")}, Arguments{"--help"},
          Arguments{"--version"}, Arguments{"render", "--help"}}) {
        const auto run = RunZelto(arguments, "", {}, {.output = "/dev/full"});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.errors, "zelto: standard output: No space left on device\n");
    }
}

namespace {

/// Help into a pipe that nobody reads any more.
zelto::test::RunResult PrintIntoClosedPipe() {
    const TemporaryFolder folder;
    const std::string pipe = folder.File("pipe");
    EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    return RunZelto({"--help"}, "",
                    [reader](pid_t process) {
                        zelto::test::WaitUntilItListens(process);
                        close(reader);
                    },
                    {.output = pipe});
}

} // namespace

TEST(StandardOutput, AClosedPipeEndsTheProgramQuietly) {
    const auto previous = std::signal(SIGPIPE, SIG_DFL);
    const auto run = PrintIntoClosedPipe();
    std::signal(SIGPIPE, previous);
    EXPECT_EQ(run.endSignal, SIGPIPE);
    EXPECT_EQ(run.errors, "");
}

TEST(StandardOutput, AClosedPipeIsToldWhereItsSignalIsIgnored) {
    const auto previous = std::signal(SIGPIPE, SIG_IGN);
    const auto run = PrintIntoClosedPipe();
    std::signal(SIGPIPE, previous);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: standard output: Broken pipe\n");
}

TEST(Cluster, WhatThePackageTellsIsHeard) {
    const auto run = RunZelto({"stats", "--cluster"});
    EXPECT_NE(run.exitStatus, 0);
    EXPECT_NE(run.errors.find("--cluster"), std::string::npos) << run.errors;
}
