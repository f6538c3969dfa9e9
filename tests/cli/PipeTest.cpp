#include "tests/cli/RunZelto.h"
#include "tests/support/NamedPipe.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/wait.h>
#include <thread>

/// Pipes and devices given where a file is read: no command waits for what may never come.

namespace {

using namespace zelto::test;
using Arguments = std::vector<std::string>;

/// Runs the program; one that has not ended after twenty seconds is ended.
RunResult RunOrEnd(const Arguments& arguments) {
    return RunZelto(arguments, "", [](pid_t program) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        siginfo_t state{};
        while (std::chrono::steady_clock::now() < end) {
            waitid(P_PID, static_cast<id_t>(program), &state, WEXITED | WNOHANG | WNOWAIT);
            if (state.si_pid == program)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        kill(program, SIGKILL);
    });
}

std::string Words(const Arguments& arguments) {
    std::string text;
    for (const std::string& word : arguments)
        text += word + " ";
    return text;
}

class PipeAsInput : public testing::Test {
  protected:
    PipeAsInput() {
        for (const char* name : {"pipe", "pipe.tif", "pipe.aif", "pipe.shp", "pipe.geojson",
                                 "pipe.acf", "pipe.csv", "pipe.prj", "pipe.smp"})
            MakePipe(File(name));
    }
    std::string File(const std::string& name) const { return m_folder.File(name); }

    void ExpectRefused(const Arguments& arguments, const std::string& pipe) {
        const RunResult run = RunOrEnd(arguments);
        EXPECT_EQ(run.exitStatus, 1) << Words(arguments) << run.errors;
        EXPECT_EQ(run.errors, "zelto: " + pipe + ": not a regular file\n") << Words(arguments);
    }

    TemporaryFolder m_folder;
};

} // namespace

TEST_F(PipeAsInput, IsRefusedByEveryCommandThatReadsARaster) {
    const std::string pipe = File("pipe.tif");
    const std::string scene = SampleScene();
    const std::string out = File("out.tif");
    const std::string area = File("area.aif");
    ASSERT_EQ(RunZelto({"aoi", "new", area, "--rect", "0,1,1,0"}).exitStatus, 0);
    for (const Arguments& arguments : std::vector<Arguments>{
             {"info", pipe},
             {"info", "--json", pipe},
             {"info", "--stats", pipe},
             {"render", pipe, File("out.png")},
             {"render", scene, File("out.png"), "--adjust-from", pipe},
             {"stats", pipe},
             {"histogram", pipe},
             {"create", out, "--like", pipe},
             {"copy", pipe, out},
             {"georef", pipe, "--box", "0,1,1,0"},
             {"pyramids", "build", pipe},
             {"pyramids", "check", pipe},
             {"compose", pipe + ":1", scene + ":1", scene + ":1", File("out.png")},
             {"polygonize", pipe, File("out.shp")},
             {"samples", "collect", pipe, "--aoi", area, "--out", File("s.smp")},
             {"aoi", "mask", area, pipe, out},
             {"reproject", "window", pipe, "--srs", "EPSG:4326", "--box", "0,1,1,0"},
             {"reproject", "grid", pipe, "--srs", "EPSG:4326"},
             {"file", "rm", pipe},
             {"file", "mv", pipe, out},
             {"file", "cp", pipe, out},
             {"file", "cp", scene, pipe, "--overwrite"},
         }) {
        ExpectRefused(arguments, pipe);
    }
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(PipeAsInput, IsRefusedByEveryCommandThatReadsAnArea) {
    const std::string scene = SampleScene();
    for (const std::string& pipe : {File("pipe.aif"), File("pipe.shp"), File("pipe.geojson")}) {
        for (const Arguments& arguments : std::vector<Arguments>{
                 {"aoi", "info", pipe},
                 {"aoi", "hit", pipe, "1,1"},
                 {"aoi", "convert", pipe, File("out.aif")},
                 {"aoi", "mask", pipe, scene, File("out.tif")},
                 {"aoi", "new", File("out.aif"), "--geojson", pipe},
                 {"stats", scene, "--aoi", pipe},
                 {"histogram", scene, "--aoi", pipe},
                 {"render", scene, File("out.png"), "--aoi", pipe},
             })
            ExpectRefused(arguments, pipe);
    }
    ExpectRefused({"vector", "info", File("pipe.shp")}, File("pipe.shp"));
}

TEST_F(PipeAsInput, IsRefusedByEveryCommandThatReadsAnotherFile) {
    ExpectRefused({"reproject", "points", File("pipe"), "--from", "EPSG:4326", "--to", "EPSG:4326"},
                  File("pipe"));
    ExpectRefused({"classes", "show", File("pipe.acf")}, File("pipe.acf"));
    ExpectRefused({"classes", "check", File("pipe.tif")}, File("pipe.acf"));
    ExpectRefused({"classes", "write", File("pipe.csv"), File("o.acf")}, File("pipe.csv"));
    ExpectRefused({"samples", "show", File("pipe.smp")}, File("pipe.smp"));
    const std::string prj = File("pipe.prj");
    for (const Arguments& arguments : std::vector<Arguments>{
             {"srs", "info", prj},
             {"srs", "compare", "EPSG:4326", prj},
             {"srs", "gk", prj, "--zone", "20", "--width", "6"},
             {"reproject", "points", "--from", prj, "--to", "EPSG:4326"},
             {"reproject", "box", "--from", prj, "--to", "EPSG:4326", "--box", "0,1,1,0"},
             {"reproject", "window", SampleScene(), "--srs", prj, "--box", "0,1,1,0"},
         })
        ExpectRefused(arguments, prj);
    // Wrong usage: the option names no reference system.
    EXPECT_EQ(RunOrEnd({"aoi", "new", File("o.aif"), "--rect", "0,1,1,0", "--srs", prj}).exitStatus,
              2);
}

TEST_F(PipeAsInput, DevicesAreRefusedToo) {
    for (const char* device : {"/dev/zero", "/dev/null", "/dev/full"}) {
        ExpectRefused({"info", device}, device);
        ExpectRefused({"vector", "info", device}, device);
        ExpectRefused({"reproject", "points", device, "--from", "EPSG:4326", "--to", "EPSG:4326"},
                      device);
        ExpectRefused({"srs", "info", device}, device);
    }
}

TEST_F(PipeAsInput, StandardInputThatIsAFileIsReadByItsDeviceName) {
    const auto run =
        RunZelto({"reproject", "points", "/dev/stdin", "--from", "EPSG:4326", "--to", "EPSG:32650"},
                 "117 0\n");
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, "500000.0000 0.0000\n");
}

TEST_F(PipeAsInput, BesideAnImageDoesNotHoldItUp) {
    const std::string image =
        WriteRaster(File("image.tif"), {.width = 4, .height = 4}, {Pixels(16, 1.0)});
    // The engine's own file: the image opens without its classes.
    MakePipe(File("image.acf"));
    EXPECT_EQ(RunOrEnd({"info", image}).exitStatus, 0);
    EXPECT_EQ(RunOrEnd({"render", image, File("out.png")}).exitStatus, 0);
    // Without the file that says where it lies the image would lie elsewhere.
    for (const char* name : {"image.tfw", "image.wld", "image.tif.aux.xml", "image.tif.ovr"}) {
        MakePipe(File(name));
        const RunResult run = RunOrEnd({"info", image});
        EXPECT_EQ(run.exitStatus, 1) << name;
        EXPECT_EQ(run.errors, "zelto: " + image + ": " + File(name) + ": not a regular file\n");
        std::filesystem::remove(File(name));
    }
    EXPECT_EQ(RunOrEnd({"info", image}).exitStatus, 0);
}

TEST_F(PipeAsInput, FoldersAreStillOpenedWhereADriverDoes) {
    std::filesystem::create_directory(File("shapes"));
    ASSERT_EQ(RunZelto({"aoi", "new", File("shapes/a.shp"), "--rect", "0,1,1,0"}).exitStatus, 0);
    const RunResult run = RunOrEnd({"vector", "info", File("shapes")});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(RunOrEnd({"info", File("shapes")}).exitStatus, 1);
}
