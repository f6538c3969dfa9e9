// Every command on every damaged file: one line that says why, or success, with little memory and
// in little time.

#include "tests/cli/RunZelto.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <future>
#include <sstream>

using zelto::test::RunResult;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using zelto::test::TestDataFile;

namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

constexpr std::chrono::seconds LONGEST(20);
constexpr long MOST_MEMORY = 1L << 20; // KiB

/// What a sanitizer takes for itself is none of the program's.
constexpr bool MEASURES_MEMORY =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    false;
#else
    true;
#endif

struct Case {
    const char* name;
    const char* data;    ///< folder of the damaged files
    Arguments arguments; ///< FILE stands for one of them, OUT begins the name of a new file
};

void PrintTo(const Case& which, std::ostream* out) {
    *out << testing::PrintToString(which.arguments);
}

std::string NameOf(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

Arguments For(const Case& which, const fs::path& file, const TemporaryFolder& made) {
    Arguments arguments;
    for (const std::string& word : which.arguments) {
        if (word.rfind("FILE", 0) == 0)
            arguments.push_back(file.string() + word.substr(4));
        else if (word.rfind("OUT", 0) == 0)
            arguments.push_back(made.File(word));
        else if (word == "SCENE")
            arguments.push_back(zelto::test::SampleScene());
        else
            arguments.push_back(word);
    }
    return arguments;
}

void CheckRun(const RunResult& run, const Arguments& arguments) {
    SCOPED_TRACE(testing::PrintToString(arguments) + " printed\n" + run.errors);
    EXPECT_TRUE(run.exitStatus == 0 || run.exitStatus == 1)
        << run.exitStatus << ", signal " << run.endSignal;
    std::istringstream lines(run.errors);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_EQ(line.rfind("zelto: ", 0), 0U) << line;
    EXPECT_TRUE(run.exitStatus == 0 || count == 1);
    EXPECT_LT(run.duration, LONGEST);
    EXPECT_TRUE(!MEASURES_MEMORY || run.mostMemory < MOST_MEMORY) << run.mostMemory << " KiB";
}

class DamagedFiles : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(DamagedFiles, AreDoneOrToldInOneLine) {
    ZELTO_REQUIRE_TEST_DATA();
    // Some commands change or remove the file.
    const TemporaryFolder folder;
    fs::copy(TestDataFile(GetParam().data), folder.Path(), fs::copy_options::recursive);
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path())) {
        fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    const TemporaryFolder made;
    constexpr std::size_t AT_A_TIME = 2;
    for (std::size_t first = 0; first < files.size(); first += AT_A_TIME) {
        std::vector<std::pair<Arguments, std::future<RunResult>>> runs;
        for (std::size_t i = first; i < std::min(first + AT_A_TIME, files.size()); ++i) {
            // New files of runs at the same time must not meet.
            fs::create_directories(made.File(std::to_string(i)));
            Arguments arguments = For(GetParam(), files[i], made);
            for (std::string& word : arguments)
                if (word.rfind(made.File("OUT"), 0) == 0)
                    word = made.File(std::to_string(i) + "/" + fs::path(word).filename().string());
            runs.emplace_back(arguments, std::async(std::launch::async,
                                                    [arguments] { return RunZelto(arguments); }));
        }
        for (auto& [arguments, run] : runs)
            CheckRun(run.get(), arguments);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rasters, DamagedFiles,
    testing::Values(
        Case{"Info", "raster/corrupt", {"info", "FILE"}},
        Case{"InfoStats", "raster/corrupt", {"info", "--stats", "--json", "FILE"}},
        Case{"Stats", "raster/corrupt", {"stats", "FILE"}},
        Case{"StatsOfABox", "raster/corrupt", {"stats", "FILE", "--box", "0,10,10,0"}},
        Case{"Histogram", "raster/corrupt", {"histogram", "FILE"}},
        Case{"Render", "raster/corrupt", {"render", "FILE", "OUT.png"}},
        Case{"RenderSheet", "raster/corrupt", {"render", "--contact-sheet", "FILE", "OUT.png"}},
        Case{"Compose", "raster/corrupt", {"compose", "FILE:1", "FILE:1", "FILE:1", "OUT.tif"}},
        Case{"Copy", "raster/corrupt", {"copy", "FILE", "OUT.tif", "--window", "0,0,20,20"}},
        Case{"CreateLike", "raster/corrupt", {"create", "OUT.tif", "--like", "FILE"}},
        Case{"Georef", "raster/corrupt", {"georef", "FILE", "--srs", "EPSG:4326"}},
        Case{"Polygonize", "raster/corrupt", {"polygonize", "FILE", "OUT.gpkg"}},
        Case{"PolygonizeEight", "raster/corrupt", {"polygonize", "--eight", "FILE", "OUT.shp"}},
        Case{"PyramidsBuild", "raster/corrupt", {"pyramids", "build", "FILE"}},
        Case{"PyramidsCheck", "raster/corrupt", {"pyramids", "check", "FILE"}},
        Case{"FileCopy", "raster/corrupt", {"file", "cp", "FILE", "OUT.tif"}},
        Case{"FileMove", "raster/corrupt", {"file", "mv", "FILE", "OUT.tif"}},
        Case{"FileRemove", "raster/corrupt", {"file", "rm", "FILE"}},
        Case{"ClassesCheck", "raster/corrupt", {"classes", "check", "FILE"}},
        Case{"ReprojectGrid",
             "raster/corrupt",
             {"reproject", "grid", "FILE", "--srs", "EPSG:4326"}}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Vectors, DamagedFiles,
    testing::Values(
        Case{"VectorInfo", "vector/corrupt", {"vector", "info", "FILE"}},
        Case{"AoiInfo", "vector/corrupt", {"aoi", "info", "FILE"}},
        Case{"AoiHit", "vector/corrupt", {"aoi", "hit", "FILE", "1,1"}},
        Case{"AoiConvert", "vector/corrupt", {"aoi", "convert", "FILE", "OUT.aif"}},
        Case{"AoiMask", "vector/corrupt", {"aoi", "mask", "FILE", "SCENE", "OUT.tif"}},
        Case{"StatsOfAnArea", "vector/corrupt", {"stats", "SCENE", "--aoi", "FILE"}},
        Case{"Samples", "vector/corrupt", {"samples", "collect", "SCENE", "--aoi", "FILE"}},
        Case{"RenderAnArea", "vector/corrupt", {"render", "SCENE", "OUT.png", "--aoi", "FILE"}}),
    NameOf);

TEST(DamagedFilesAsGrids, AreRefusedWhereTheMaskCannotBeMade) {
    ZELTO_REQUIRE_TEST_DATA();
    const TemporaryFolder folder;
    zelto::test::WriteFile(folder.File("area.geojson"),
                           R"({"type":"Polygon","coordinates":[[[0,0],[9,0],[9,9],[0,0]]]})");
    const std::string huge = TestDataFile("raster/corrupt/huge_dims.tif");
    const auto run =
        RunZelto({"aoi", "mask", folder.File("area.geojson"), huge, folder.File("mask.tif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors,
              "zelto: " + huge + ": has too many pixels for a mask: 2147483647 x 2147483647\n");
    EXPECT_LT(run.duration, std::chrono::seconds(5));
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"area.geojson"});
}
