#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using Names = std::vector<std::string>;

namespace {

void WriteRow(const TemporaryFolder& folder, const std::string& name, double value,
              const char* driver = "GTiff") {
    zelto::test::RasterSpec spec = {.width = 4, .height = 1};
    spec.driver = driver;
    spec.geoTransform = NorthUp(0.0, 1.0, 1.0);
    if (spec.driver == "GTiff")
        spec.options = {"TFW=YES"};
    zelto::test::WriteRaster(folder.File(name), spec, {Pixels(4, value)});
}

} // namespace

TEST(FileCommand, RemovesRastersWithTheirSideFiles) {
    const TemporaryFolder folder;
    WriteRow(folder, "a.tif", 1.0);
    WriteRow(folder, "b", 2.0, "ENVI");
    ASSERT_EQ(folder.Names(), (Names{"a.tfw", "a.tif", "b", "b.hdr"}));
    const auto run = RunZelto({"file", "rm", folder.File("a.tif"), folder.File("b")});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_TRUE(folder.Names().empty());
}

TEST(FileCommand, RemovesNothingThatIsNoRaster) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "note.txt", "this is no image");
    auto run = RunZelto({"file", "rm", folder.File("note.txt")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + folder.File("note.txt") + ": "), 0U) << run.errors;
    EXPECT_EQ(folder.Names(), Names{"note.txt"});
    run = RunZelto({"file", "rm", folder.File("missing.tif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + folder.File("missing.tif") + ": No such file or directory\n");
}

TEST(FileCommand, MovesToANewName) {
    const TemporaryFolder folder;
    WriteRow(folder, "a.tif", 1.0);
    auto run = RunZelto({"file", "mv", folder.File("a.tif"), folder.File("新.tif")});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(folder.Names(), (Names{"新.tfw", "新.tif"}));
    EXPECT_EQ(ReadBand(folder.File("新.tif"), 1), Pixels(4, 1.0));
}

TEST(FileCommand, MovesAndCopiesIntoAFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "sub");
    WriteRow(folder, "a", 1.0, "ENVI");
    EXPECT_EQ(RunZelto({"file", "cp", folder.File("a"), folder.File("sub")}).exitStatus, 0);
    EXPECT_EQ(ReadBand(folder.File("sub/a"), 1), Pixels(4, 1.0));
    EXPECT_EQ(folder.Names(), (Names{"a", "a.hdr", "sub"}));
    EXPECT_EQ(
        RunZelto({"file", "mv", folder.File("a"), folder.File("sub"), "--overwrite"}).exitStatus,
        0);
    EXPECT_EQ(folder.Names(), Names{"sub"});
}

TEST(FileCommand, CopiesWithTheWorldFile) {
    const TemporaryFolder folder;
    WriteRow(folder, "a.tif", 1.0);
    EXPECT_EQ(RunZelto({"file", "cp", folder.File("a.tif"), folder.File("b.tif")}).exitStatus, 0);
    EXPECT_EQ(folder.Names(), (Names{"a.tfw", "a.tif", "b.tfw", "b.tif"}));
    EXPECT_EQ(ReadBand(folder.File("b.tif"), 1), Pixels(4, 1.0));
}

TEST(FileCommand, OverwritesOnlyWhenTold) {
    const TemporaryFolder folder;
    WriteRow(folder, "a.tif", 1.0);
    WriteRow(folder, "b.tif", 2.0);
    for (const char* command : {"mv", "cp"}) {
        const auto run = RunZelto({"file", command, folder.File("a.tif"), folder.File("b.tif")});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.errors,
                  "zelto: " + folder.File("b.tif") + ": it exists; --overwrite replaces it\n");
    }
    EXPECT_EQ(ReadBand(folder.File("b.tif"), 1), Pixels(4, 2.0));
    EXPECT_EQ(RunZelto({"file", "mv", folder.File("a.tif"), folder.File("b.tif"), "--overwrite"})
                  .exitStatus,
              0);
    EXPECT_EQ(ReadBand(folder.File("b.tif"), 1), Pixels(4, 1.0));
    const auto itself =
        RunZelto({"file", "mv", folder.File("b.tif"), folder.File("b.tif"), "--overwrite"});
    EXPECT_EQ(itself.exitStatus, 1);
    EXPECT_EQ(ReadBand(folder.File("b.tif"), 1), Pixels(4, 1.0));
}

TEST(FileCommand, TheWorldFileOfWhatIsReplacedGoesWithIt) {
    for (const char* command : {"mv", "cp"}) {
        SCOPED_TRACE(command);
        const TemporaryFolder folder;
        WriteRow(folder, "a.tif", 1.0);
        WriteRow(folder, "b.tif", 2.0);
        WriteFile(folder.Path() / "a.tfw", "1\n0\n0\n-1\n100.5\n99.5\n");
        const std::string moved = ReadFile(folder.Path() / "a.tfw");
        EXPECT_EQ(
            RunZelto({"file", command, folder.File("a.tif"), folder.File("b.tif"), "--overwrite"})
                .exitStatus,
            0);
        EXPECT_EQ(ReadFile(folder.Path() / "b.tfw"), moved);
        EXPECT_EQ(folder.Names().size(), command == std::string("mv") ? 2U : 4U);
    }
}

TEST(FileCommand, AFullDiskLeavesTheOldFile) {
    const TemporaryFolder folder;
    const zelto::test::SmallDisk disk(folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount a small file system";
    zelto::test::WriteRaster(folder.File("a.tif"), {.width = 2000, .height = 2000},
                             {Pixels(4000000, 5.0)});
    const std::string out = folder.File("disk/b.tif");
    zelto::test::WriteRaster(out, {.width = 2, .height = 1}, {{1.0, 2.0}});
    // Moving to another file system is copying, too.
    for (const char* command : {"mv", "cp"}) {
        SCOPED_TRACE(command);
        const auto run = RunZelto({"file", command, folder.File("a.tif"), out, "--overwrite"});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.errors, "zelto: " + out + ": No space left on device\n");
        EXPECT_EQ(ReadBand(out, 1), (Pixels{1.0, 2.0}));
        const std::filesystem::directory_iterator files(folder.Path() / "disk");
        EXPECT_EQ(std::distance(begin(files), end(files)), 1);
        EXPECT_EQ(folder.Names(), (Names{"a.tif", "disk"}));
    }
}

TEST(FileCommand, WhatStandsThereUnderTheNameOfASideFileIsReplacedOnlyWhenTold) {
    const TemporaryFolder folder;
    WriteRow(folder, "a.tif", 1.0);
    WriteFile(folder.File("b.tfw"), "somebody's");
    const auto run = RunZelto({"file", "cp", folder.File("a.tif"), folder.File("b.tif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + folder.File("b.tfw") + ": it exists\n");
    EXPECT_EQ(ReadFile(folder.File("b.tfw")), "somebody's");
    EXPECT_EQ(RunZelto({"file", "cp", "--overwrite", folder.File("a.tif"), folder.File("b.tif")})
                  .exitStatus,
              0);
    EXPECT_EQ(ReadFile(folder.File("b.tfw")), ReadFile(folder.File("a.tfw")));
}

TEST(FileCommand, APyramidFollowsItsImageToAnotherExtension) {
    const TemporaryFolder folder;
    zelto::test::WriteRaster(folder.File("a.tif"), {.width = 4, .height = 1}, {Pixels(4, 1.0)});
    zelto::test::WriteRaster(folder.File("a.tif.ovr"), {.width = 2, .height = 1}, {Pixels(2, 1.0)});
    EXPECT_EQ(RunZelto({"file", "mv", folder.File("a.tif"), folder.File("b.tiff")}).exitStatus, 0);
    EXPECT_EQ(folder.Names(), (Names{"b.tiff", "b.tiff.ovr"}));
}

TEST(FileCommand, AMoveKeepsThePermissionsOfTheFileThatMoves) {
    const TemporaryFolder folder;
    WriteRow(folder, "a.tif", 1.0);
    WriteRow(folder, "b.tif", 2.0);
    using std::filesystem::perms;
    std::filesystem::permissions(folder.Path() / "a.tif", perms(0600));
    std::filesystem::permissions(folder.Path() / "b.tif", perms(0644));
    EXPECT_EQ(RunZelto({"file", "mv", folder.File("a.tif"), folder.File("b.tif"), "--overwrite"})
                  .exitStatus,
              0);
    EXPECT_EQ(std::filesystem::status(folder.Path() / "b.tif").permissions(), perms(0600));
}

TEST(FileCommand, AVirtualRasterLeavesWhatItReads) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "sub");
    WriteRow(folder, "abc.tif", 1.0);
    WriteRow(folder, "other.tif", 2.0);
    const std::string text =
        R"(<VRTDataset rasterXSize="4" rasterYSize="1"><VRTRasterBand dataType="Byte" band="1">)"
        R"(<SimpleSource><SourceFilename relativeToVRT="1">abc.tif</SourceFilename>)"
        R"(</SimpleSource></VRTRasterBand></VRTDataset>)";
    WriteFile(folder.File("a.vrt"), text);
    EXPECT_EQ(RunZelto({"file", "mv", folder.File("a.vrt"), folder.File("b.vrt")}).exitStatus, 0);
    EXPECT_EQ(ReadBand(folder.File("b.vrt"), 1), Pixels(4, 1.0));
    const auto away = RunZelto({"file", "cp", folder.File("b.vrt"), folder.File("sub/b.vrt")});
    EXPECT_EQ(away.exitStatus, 1);
    EXPECT_EQ(away.errors, "zelto: " + folder.File("b.vrt") +
                               ": what it reads is told by paths from its own folder\n");
    EXPECT_EQ(
        RunZelto({"file", "cp", folder.File("other.tif"), folder.File("b.vrt"), "--overwrite"})
            .exitStatus,
        0);
    EXPECT_EQ(ReadBand(folder.File("abc.tif"), 1), Pixels(4, 1.0));
}

TEST(FileCommand, WrongUsageEndsWithTwo) {
    EXPECT_EQ(RunZelto({"file"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"file", "rm"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"file", "mv", "only.tif"}).exitStatus, 2);
}
