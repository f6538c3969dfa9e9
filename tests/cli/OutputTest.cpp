#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

using namespace zelto::test;

namespace {

using Arguments = std::vector<std::string>;

/// Has a variable of the environment for as long as it lives.
class Variable {
  public:
    Variable(const char* name, const char* value) : m_name(name) {
        if (const char* const old = std::getenv(name))
            m_old = old;
        value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    }
    ~Variable() { m_old ? setenv(m_name, m_old->c_str(), 1) : unsetenv(m_name); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* m_name;
    std::optional<std::string> m_old;
};

/// A folder with an image, an area and a table of classes, and commands that read them.
class NewFiles : public testing::TestWithParam<Arguments> {
  protected:
    NewFiles() {
        RasterSpec spec = {.width = 4, .height = 4, .geoTransform = NorthUp(0, 4, 1)};
        const Pixels pixels(16, 7.0);
        WriteRaster(m_folder.File("in.tif"), spec, {pixels, pixels, pixels});
        WriteFile(m_folder.File("in.csv"), "1,2,3,4,name\n");
        WriteFile(m_folder.File("samples.csv"), "1,name,2,3\n");
        WriteFile(m_folder.File("in.geojson"),
                  R"({"type":"Polygon","coordinates":[[[1,1],[1,3],[3,3],[1,1]]]})");
    }

    /// The words with paths for those that begin with "in" or "new".
    Arguments Line() const {
        Arguments line;
        for (const std::string& word : GetParam())
            line.push_back(word.rfind("in.", 0) == 0 || word.rfind("new.", 0) == 0 ||
                                   word == "samples.csv"
                               ? m_folder.File(word)
                               : word);
        return line;
    }
    std::string NewFile() const {
        for (const std::string& word : GetParam())
            if (word.rfind("new.", 0) == 0)
                return m_folder.File(word);
        return {};
    }

    TemporaryFolder m_folder;
};

} // namespace

TEST_P(NewFiles, TakeNoOldOnesPlaceUnlessTold) {
    WriteFile(NewFile(), "precious");
    Arguments line = Line();
    const auto refused = RunZelto(line);
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_EQ(refused.errors, "zelto: " + NewFile() + ": it exists; --overwrite replaces it\n");
    EXPECT_EQ(ReadFile(NewFile()), "precious");
    line.emplace_back("--overwrite");
    const auto done = RunZelto(line);
    EXPECT_EQ(done.exitStatus, 0) << done.errors;
    EXPECT_NE(ReadFile(NewFile()), "precious");
}

TEST_P(NewFiles, AreMadeWithoutAWordWhenQuiet) {
    Arguments line = Line();
    line.emplace_back("--quiet");
    const auto run = RunZelto(line);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    if (GetParam().front() != "samples" && GetParam().front() != "histogram") {
        EXPECT_EQ(run.output, "");
    }
    EXPECT_TRUE(std::filesystem::exists(NewFile()));
}

INSTANTIATE_TEST_SUITE_P(
    AllCommands, NewFiles,
    testing::Values(
        Arguments{"aoi", "new", "new.aif", "--rect", "0,1,1,0"},
        Arguments{"aoi", "convert", "in.geojson", "new.gpkg"},
        Arguments{"aoi", "mask", "in.geojson", "in.tif", "new.tif"},
        Arguments{"classes", "write", "in.csv", "new.acf"},
        Arguments{"compose", "in.tif:1", "in.tif:2", "in.tif:3", "new.png"},
        Arguments{"copy", "in.tif", "new.tif"}, Arguments{"create", "new.tif", "--size", "2x2"},
        Arguments{"histogram", "in.tif", "--png", "new.png"},
        Arguments{"polygonize", "in.tif", "new.geojson"}, Arguments{"render", "in.tif", "new.png"},
        Arguments{"samples", "collect", "in.tif", "--aoi", "in.geojson", "-o", "new.smp"},
        Arguments{"samples", "import", "samples.csv", "new.smp"}),
    [](const testing::TestParamInfo<Arguments>& tested) {
        return tested.param[0] + std::to_string(tested.index);
    });

TEST(NewFile, IsNeverOneThatTheCommandReads) {
    const TemporaryFolder folder;
    const std::string in =
        WriteRaster(folder.File("q.tif"),
                    {.width = 64, .height = 64, .options = {"COMPRESS=LZW"}, .overviews = {2}},
                    {Pixels(64 * 64, 3.0)});
    const std::string before = ReadFile(in);
    std::filesystem::create_symlink(in, folder.File("link.tif"));
    for (const Arguments& line :
         {Arguments{"copy", in, in, "--overwrite"},
          Arguments{"copy", in, folder.File("link.tif"), "--overwrite"},
          Arguments{"render", in, in, "--overwrite"},
          Arguments{"create", in, "--like", in, "--overwrite"},
          Arguments{"compose", in + ":1", in + ":1", in + ":1", in, "--overwrite"}}) {
        const auto run = RunZelto(line);
        EXPECT_EQ(run.exitStatus, 1) << line.front();
        EXPECT_NE(run.errors.find("it is what the command reads"), std::string::npos) << run.errors;
    }
    EXPECT_EQ(ReadFile(in), before);
}

TEST(NewFile, OfAFormatWithoutShapesIsRefused) {
    const TemporaryFolder folder;
    const std::string in = WriteRaster(folder.File("in.tif"), {}, {{1}});
    const auto run = RunZelto({"polygonize", in, folder.File("out.csv")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_NE(run.errors.find(folder.File("out.csv") + ": files of the format CSV hold no shapes"),
              std::string::npos)
        << run.errors;
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"in.tif"});
}

TEST(NewFile, HasNoCreationOptionThatItsDriverDoesNotKnow) {
    const TemporaryFolder folder;
    const std::string in = WriteRaster(folder.File("in.tif"), {}, {{1}});
    for (const char* option : {"NO_SUCH=1", "COMPRESS=NO_SUCH"}) {
        const auto run = RunZelto({"copy", in, folder.File("out.tif"), "--co", option});
        EXPECT_EQ(run.exitStatus, 2) << option;
        EXPECT_NE(run.errors.find("NO_SUCH"), std::string::npos) << run.errors;
    }
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"in.tif"});
}

/// Whether a log tells of a file.
bool Logged(const std::filesystem::path& log, const std::string& file) {
    return ReadFile(log).find(file) != std::string::npos;
}

TEST(StateFolder, HoldsTheLogAndNothingStandsBesideTheProgram) {
    const TemporaryFolder folder;
    const std::string broken = folder.File("broken.tif");
    {
        const Variable state("XDG_STATE_HOME", folder.File("state").c_str());
        EXPECT_EQ(RunZelto({"--version"}).exitStatus, 0);
        EXPECT_FALSE(std::filesystem::exists(folder.File("state"))) << "nothing to log";
        WriteFile(broken, "II*\0 no image");
        EXPECT_EQ(RunZelto({"info", broken}).exitStatus, 1);
        EXPECT_TRUE(Logged(folder.File("state/zelto/gdal.log"), broken));
    }
    const Variable none("XDG_STATE_HOME", nullptr);
    const Variable home("HOME", folder.File("home").c_str());
    EXPECT_EQ(RunZelto({"info", broken}).exitStatus, 1);
    EXPECT_TRUE(Logged(folder.File("home/.local/state/zelto/gdal.log"), broken));
    // Other programs of the folder may log there.
    const auto beside = std::filesystem::path(ProgramPath()).parent_path() / "logs/gdal.log";
    EXPECT_FALSE(std::filesystem::exists(beside) && Logged(beside, broken));
}

TEST(StateFolder, KeepsALargeLogAsideAndBeginsANewOne) {
    constexpr std::size_t LARGE = 1U << 20;
    const TemporaryFolder folder;
    const std::string broken = folder.File("broken.tif");
    WriteFile(broken, "II*\0 no image");
    const Variable state("XDG_STATE_HOME", folder.File("state").c_str());
    const std::filesystem::path log = folder.File("state/zelto/gdal.log");
    const std::filesystem::path before = folder.File("state/zelto/gdal.log.1");
    std::filesystem::create_directories(log.parent_path());
    WriteFile(log, std::string(LARGE - 1, 'a'));
    EXPECT_EQ(RunZelto({"info", broken}).exitStatus, 1);
    EXPECT_FALSE(std::filesystem::exists(before));
    const std::string grown = ReadFile(log);
    EXPECT_GT(grown.size(), LARGE);
    WriteFile(before, "older");
    EXPECT_EQ(RunZelto({"info", broken}).exitStatus, 1);
    EXPECT_EQ(ReadFile(before), grown);
    EXPECT_TRUE(Logged(log, broken));
    EXPECT_LT(std::filesystem::file_size(log), 10000U);
}

TEST(Encodings, OfAShapefileAreItsOwn) {
    const TemporaryFolder folder;
    // 水 in the field's name and values, as GBK has it.
    const std::string water = "\xCB\xAE";
    WriteVector(folder.File("a.shp"), {.type = wkbPolygon, .fields = {{"aaaa", OFTString}}},
                {"POLYGON ((0 0,0 4,4 4,4 0,0 0))"});
    std::string table = ReadFile(folder.File("a.dbf"));
    table.replace(table.find("aaaa"), 4, water + water);
    table.replace(table.find("0.0"), 3, water + " ");
    WriteFile(folder.File("a.dbf"), table);
    WriteFile(folder.File("a.cpg"), "GBK");
    EXPECT_NE(RunZelto({"vector", "info", folder.File("a.shp")}).output.find("水水 (String)"),
              std::string::npos);
    RasterSpec spec = {.width = 4, .height = 4, .geoTransform = NorthUp(0, 4, 1)};
    const std::string image = WriteRaster(folder.File("in.tif"), spec, {Pixels(16, 7.0)});
    const auto run = RunZelto(
        {"samples", "collect", image, "--aoi", folder.File("a.shp"), "--field", "水水", "--csv"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_NE(run.output.find("\"水\""), std::string::npos) << run.output;
}
