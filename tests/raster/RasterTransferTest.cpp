// Rasters that move and are copied with all the files that belong to them.

#include "zelto/datasource/GISDataSource.h"
#include "zelto/raster/RasterFiles.h"

#include "tests/support/RasterFile.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WithoutPrivileges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <unistd.h>

using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

constexpr auto WORLD_FILE = "1\n0\n0\n-1\n100.5\n99.5\n";

class RasterTransfer : public testing::Test {
  protected:
    RasterTransfer() {
        CGISDataSource::RegisterGDAL();
        fs::create_directory(m_folder.Path() / "to");
    }
    ~RasterTransfer() override { CGISDataSource::DestroyGDAL(); }

    void WriteImage(const std::string& name, double value, const char* driver = "GTiff") const {
        WriteRaster(File(name), {.width = 4, .height = 1, .driver = driver}, {Pixels(4, value)});
    }
    /// An image whose header names the file of its pixels.
    void WriteImageOfTwoFiles(const std::string& header, const std::string& pixels) const {
        WriteImage(header, 5.0, "ERS");
        fs::path made = m_folder.Path() / header;
        made.replace_extension();
        fs::rename(made, m_folder.Path() / pixels);
        std::string text = ReadFile(m_folder.Path() / header);
        text.insert(text.rfind("DatasetHeader End"), "\tDataFile\t= \"" + pixels + "\"\n");
        WriteFile(m_folder.Path() / header, text);
    }
    GISError Move(const std::string& from, const std::string& to, bool overwrite = false) const {
        return CRasterFiles::Move(Path(from).c_str(), Path(to).c_str(), overwrite);
    }
    GISError Copy(const std::string& from, const std::string& to, bool overwrite = false) const {
        return CRasterFiles::Copy(Path(from).c_str(), Path(to).c_str(), overwrite);
    }
    void ExpectReason(const std::string& file, const std::string& reason) const {
        EXPECT_EQ(CGISDataSource::GetLastErrorText(), File(file) + ": " + reason);
    }
    Pixels PixelsOf(const std::string& name) const { return ReadBand(File(name), 1); }
    Names NamesIn(const std::string& folder) const {
        Names names;
        for (const auto& entry : fs::directory_iterator(m_folder.Path() / folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string File(const std::string& name) const { return m_folder.File(name); }
    std::wstring Path(const std::string& name) const { return m_folder.WideFile(name); }

    TemporaryFolder m_folder;
};

} // namespace

TEST_F(RasterTransfer, GoesToANewNameWithTheSideFiles) {
    WriteImage("a.dat", 1.0, "ENVI");
    EXPECT_EQ(Copy("a.dat", "b.dat"), GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), (Names{"a.dat", "a.hdr", "b.dat", "b.hdr", "to"}));
    EXPECT_EQ(Move("b.dat", "to/c.dat"), GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), (Names{"a.dat", "a.hdr", "to"}));
    EXPECT_EQ(NamesIn("to"), (Names{"c.dat", "c.hdr"}));
    EXPECT_EQ(PixelsOf("to/c.dat"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, WithinAFileSystemAMoveCopiesNoPixels) {
    WriteImage("a.tif", 1.0);
    const fs::path image = File("a.tif");
    fs::create_hard_link(image, File("same"));
    EXPECT_EQ(Move("a.tif", "to/a.tif"), GIS_SUCCESS);
    EXPECT_TRUE(fs::equivalent(File("to/a.tif"), File("same")));
}

TEST_F(RasterTransfer, ALinkMovesAsWhatItLeadsTo) {
    WriteImage("a.tif", 1.0);
    fs::create_symlink(File("a.tif"), File("link.tif"));
    EXPECT_EQ(Move("link.tif", "b.tif"), GIS_SUCCESS);
    EXPECT_FALSE(fs::is_symlink(File("b.tif")));
    EXPECT_EQ(PixelsOf("b.tif"), Pixels(4, 1.0));
    EXPECT_EQ(m_folder.Names(), (Names{"a.tif", "b.tif", "to"}));
}

TEST_F(RasterTransfer, AnotherFileSystemGetsACopy) {
    const zelto::test::SmallDisk disk(m_folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount";
    WriteImage("a.tif", 1.0);
    EXPECT_EQ(Move("a.tif", "disk/b.tif"), GIS_SUCCESS);
    EXPECT_EQ(PixelsOf("disk/b.tif"), Pixels(4, 1.0));
    EXPECT_EQ(m_folder.Names(), (Names{"disk", "to"}));
}

TEST_F(RasterTransfer, AFullDiskLeavesTheOriginAndWhatStandsThere) {
    const zelto::test::SmallDisk disk(m_folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount";
    WriteRaster(File("a.tif"), {.width = 2000, .height = 1000}, {Pixels(2'000'000, 1.0)});
    WriteImage("disk/b.tif", 2.0);
    EXPECT_EQ(Move("a.tif", "disk/b.tif", true), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText().find(File("disk/b.tif") + ": "), 0U);
    EXPECT_EQ(PixelsOf("a.tif"), Pixels(2'000'000, 1.0));
    EXPECT_EQ(PixelsOf("disk/b.tif"), Pixels(4, 2.0));
    EXPECT_EQ(NamesIn("disk"), Names{"b.tif"});
}

TEST_F(RasterTransfer, WhatExistsIsReplacedWhereThatIsWantedOnly) {
    WriteImage("a.tif", 1.0);
    WriteImage("b.tif", 2.0);
    EXPECT_EQ(Copy("a.tif", "b.tif"), GIS_FAILED);
    ExpectReason("b.tif", "it exists");
    EXPECT_EQ(PixelsOf("b.tif"), Pixels(4, 2.0));
    EXPECT_EQ(Copy("a.tif", "b.tif", true), GIS_SUCCESS);
    EXPECT_EQ(PixelsOf("b.tif"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, ASideFileThatExistsCountsAsWell) {
    WriteImage("a.tif", 1.0);
    WriteFile(File("a.tfw"), WORLD_FILE);
    WriteFile(File("b.tfw"), "somebody's");
    EXPECT_EQ(Move("a.tif", "b.tif"), GIS_FAILED);
    ExpectReason("b.tfw", "it exists");
    EXPECT_EQ(ReadFile(File("b.tfw")), "somebody's");
    EXPECT_EQ(Move("a.tif", "b.tif", true), GIS_SUCCESS);
    EXPECT_EQ(ReadFile(File("b.tfw")), WORLD_FILE);
}

TEST_F(RasterTransfer, WhatIsNoRasterIsReplacedAlone) {
    WriteImage("a.tif", 1.0);
    WriteFile(File("b.tif"), "some text");
    WriteFile(File("b.txt"), "stays");
    EXPECT_EQ(Copy("a.tif", "b.tif", true), GIS_SUCCESS);
    EXPECT_EQ(PixelsOf("b.tif"), Pixels(4, 1.0));
    EXPECT_EQ(m_folder.Names(), (Names{"a.tif", "b.tif", "b.txt", "to"}));
}

TEST_F(RasterTransfer, AWorldFileThatIsNotNeededGoesAlong) {
    WriteRaster(File("a.tif"),
                {.width = 4, .height = 1, .geoTransform = zelto::test::NorthUp(10.0, 20.0, 1.0)},
                {Pixels(4, 1.0)});
    WriteFile(File("a.tfw"), WORLD_FILE);
    EXPECT_EQ(Move("a.tif", "to/b.tif"), GIS_SUCCESS);
    EXPECT_EQ(NamesIn("to"), (Names{"b.tfw", "b.tif"}));
    EXPECT_EQ(m_folder.Names(), Names{"to"});
}

TEST_F(RasterTransfer, AnUnknownOriginIsNotSupportedAndNullPathsFail) {
    WriteFile(File("a.txt"), "some text");
    EXPECT_EQ(Copy("a.txt", "b.txt"), GIS_NOT_SUPPORTED);
    EXPECT_EQ(Move("missing.tif", "b.tif"), GIS_NOT_SUPPORTED);
    const std::wstring path = Path("a.txt");
    EXPECT_EQ(CRasterFiles::Move(nullptr, path.c_str(), true), GIS_FAILED);
    EXPECT_EQ(CRasterFiles::Copy(path.c_str(), nullptr, true), GIS_FAILED);
    EXPECT_EQ(m_folder.Names(), (Names{"a.txt", "to"}));
}

TEST_F(RasterTransfer, ADamagedOriginIsToldInTheDriversWords) {
    WriteImage("a.tif", 1.0);
    fs::resize_file(File("a.tif"), 30);
    EXPECT_EQ(Copy("a.tif", "b.tif"), GIS_FAILED);
    const std::string reason = CGISDataSource::GetLastErrorText();
    EXPECT_EQ(reason.find(File("a.tif") + ": "), 0U);
    EXPECT_EQ(reason.find("cannot be opened"), std::string::npos) << reason;
    EXPECT_EQ(m_folder.Names(), (Names{"a.tif", "to"}));
}

TEST_F(RasterTransfer, AMissingFolderIsToldByItsName) {
    WriteImage("a.tif", 1.0);
    EXPECT_EQ(Copy("a.tif", "missing/b.tif"), GIS_FAILED);
    ExpectReason("missing/b.tif", "No such file or directory");
    EXPECT_EQ(Move("a.tif", "missing/b.tif"), GIS_FAILED);
    EXPECT_EQ(PixelsOf("a.tif"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, AFolderThatCannotBeLeftKeepsItsRaster) {
    WriteImage("a.tif", 1.0);
    fs::permissions(m_folder.Path(), fs::perms(0555));
    fs::permissions(m_folder.Path() / "to", fs::perms(0777));
    {
        const zelto::test::WithoutPrivileges unprivileged;
        EXPECT_EQ(Move("a.tif", "to/b.tif"), GIS_FAILED);
        ExpectReason("a.tif", "Permission denied");
        EXPECT_EQ(NamesIn("to"), Names{});
        EXPECT_EQ(Copy("a.tif", "to/b.tif"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    }
    fs::permissions(m_folder.Path(), fs::perms(0755));
    EXPECT_EQ(PixelsOf("to/b.tif"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, AnOriginThatCannotBeRemovedIsAFailure) {
    if (geteuid() != 0)
        GTEST_SKIP() << "no file here is another user's";
    WriteImage("a.tif", 1.0);
    fs::permissions(m_folder.Path(), fs::perms(01777)); // only its owner may remove a file
    fs::permissions(m_folder.Path() / "to", fs::perms(0777));
    {
        const zelto::test::WithoutPrivileges unprivileged;
        EXPECT_EQ(Move("a.tif", "to/b.tif"), GIS_FAILED);
        ExpectReason("a.tif", "Operation not permitted");
    }
    EXPECT_EQ(PixelsOf("a.tif"), Pixels(4, 1.0));
    EXPECT_EQ(PixelsOf("to/b.tif"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, AVirtualRasterStaysBesideWhatItReads) {
    WriteImage("a.tif", 1.0);
    {
        const GDALDatasetUniquePtr image(GDALDataset::Open(File("a.tif").c_str()));
        const GDALDatasetUniquePtr view(GetGDALDriverManager()->GetDriverByName("VRT")->CreateCopy(
            File("v.vrt").c_str(), image.get(), FALSE, nullptr, nullptr, nullptr));
        ASSERT_NE(view, nullptr);
    }
    EXPECT_EQ(Copy("v.vrt", "to/v.vrt"), GIS_FAILED);
    ExpectReason("v.vrt", "what it reads is told by paths from its own folder");
    EXPECT_EQ(Move("v.vrt", "w.vrt"), GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), (Names{"a.tif", "to", "w.vrt"}));
    EXPECT_EQ(PixelsOf("w.vrt"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, AVirtualRasterThatReadsByFullPathsGoesAnywhereWithoutWhatItReads) {
    WriteImage("a.tif", 1.0);
    {
        const GDALDatasetUniquePtr image(GDALDataset::Open(File("a.tif").c_str()));
        const GDALDatasetUniquePtr view(GetGDALDriverManager()->GetDriverByName("VRT")->CreateCopy(
            File("to/v.vrt").c_str(), image.get(), FALSE, nullptr, nullptr, nullptr));
        ASSERT_NE(view, nullptr);
    }
    EXPECT_EQ(Copy("to/v.vrt", "w.vrt"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(m_folder.Names(), (Names{"a.tif", "to", "w.vrt"}));
    EXPECT_EQ(PixelsOf("w.vrt"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, ThePyramidAndTheMasksOfAVirtualRasterGoAlong) {
    WriteRaster(File("a.tif"), {.width = 64, .height = 64}, {Pixels(64 * 64, 1.0)});
    const auto makeView = [&](const char* byStem) {
        const CPLConfigOptionSetter kind("USE_RRD", byStem, false);
        const GDALDatasetUniquePtr image(GDALDataset::Open(File("a.tif").c_str()));
        const GDALDatasetUniquePtr view(GetGDALDriverManager()->GetDriverByName("VRT")->CreateCopy(
            File("v.vrt").c_str(), image.get(), FALSE, nullptr, nullptr, nullptr));
        int level = 2;
        ASSERT_EQ(view->BuildOverviews("NEAREST", 1, &level, 0, nullptr, nullptr, nullptr),
                  CE_None);
    };
    makeView("NO");
    ASSERT_EQ(m_folder.Names(), (Names{"a.tif", "to", "v.vrt", "v.vrt.ovr"}));
    EXPECT_EQ(Move("v.vrt", "w.vrt"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(m_folder.Names(), (Names{"a.tif", "to", "w.vrt", "w.vrt.ovr"}));
    makeView("YES");
    fs::copy_file(File("a.tif"), File("v.vrt.msk"));
    EXPECT_EQ(Move("v.vrt", "x.vrt"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(m_folder.Names(),
              (Names{"a.tif", "to", "w.vrt", "w.vrt.ovr", "x.aux", "x.rrd", "x.vrt", "x.vrt.msk"}));
}

TEST_F(RasterTransfer, NamesWithoutAFolderAreThoseOfTheWorkingFolder) {
    WriteImage("a.tif", 1.0);
    WriteFile(File("a.tfw"), WORLD_FILE);
    const fs::path former = fs::current_path();
    fs::current_path(m_folder.Path());
    const GISError copied = CRasterFiles::Copy(L"a.tif", L"b.tif", false);
    const GISError moved = CRasterFiles::Move(L"b.tif", L"to/c.tif", false);
    fs::current_path(former);
    EXPECT_EQ(copied, GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(moved, GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(m_folder.Names(), (Names{"a.tfw", "a.tif", "to"}));
    EXPECT_EQ(NamesIn("to"), (Names{"c.tfw", "c.tif"}));
    EXPECT_EQ(PixelsOf("to/c.tif"), Pixels(4, 1.0));
}

TEST_F(RasterTransfer, AFileOfAnotherNameKeepsItInAnotherFolderAndStopsANewName) {
    WriteImageOfTwoFiles("a.ers", "pixels.dat");
    EXPECT_EQ(Copy("a.ers", "to/b.ers"), GIS_FAILED);
    ExpectReason("a.ers", File("pixels.dat") + " belongs to it, but has another name");
    EXPECT_EQ(Copy("a.ers", "to/a.ers"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(NamesIn("to"), (Names{"a.ers", "pixels.dat"}));
    EXPECT_EQ(PixelsOf("to/a.ers"), Pixels(4, 5.0));
}

TEST_F(RasterTransfer, AFileInAnotherFolderStopsItAndIsNotReplaced) {
    WriteImageOfTwoFiles("a.ers", "to/a.dat");
    EXPECT_EQ(Copy("a.ers", "b.ers"), GIS_FAILED);
    ExpectReason("a.ers", File("to/a.dat") + " belongs to it, but has another name");
    WriteImage("c.ers", 7.0, "ERS");
    EXPECT_EQ(Copy("c.ers", "a.ers", true), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(PixelsOf("a.ers"), Pixels(4, 7.0));
    EXPECT_EQ(NamesIn("to"), Names{"a.dat"});
}

TEST_F(RasterTransfer, FilesThatNameEachOtherAreCopiedInTheFormatsOwnWay) {
    WriteRaster(File("a.img"),
                {.width = 4, .height = 1, .driver = "HFA", .options = {"USE_SPILL=YES"}},
                {Pixels(4, 3.0)});
    ASSERT_EQ(m_folder.Names(), (Names{"a.ige", "a.img", "to"}));
    EXPECT_EQ(Copy("a.img", "b.img"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    fs::rename(File("a.ige"), File("to/kept.ige")); // the copy reads its own
    EXPECT_EQ(PixelsOf("b.img"), Pixels(4, 3.0));
    fs::rename(File("to/kept.ige"), File("a.ige"));
    EXPECT_EQ(Move("a.img", "to/c.img"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(m_folder.Names(), (Names{"b.ige", "b.img", "to"}));
    EXPECT_EQ(PixelsOf("to/c.img"), Pixels(4, 3.0));
}

TEST_F(RasterTransfer, ALinkToTheImageLeavesItItsWorldFile) {
    WriteRaster(File("a.tif"),
                {.width = 4, .height = 1, .geoTransform = zelto::test::NorthUp(10.0, 20.0, 1.0)},
                {Pixels(4, 1.0)});
    WriteFile(File("a.tfw"), WORLD_FILE);
    fs::create_symlink(File("a.tif"), File("a.tiff"));
    EXPECT_EQ(Copy("a.tif", "b.tif"), GIS_SUCCESS);
    EXPECT_EQ(ReadFile(File("b.tfw")), WORLD_FILE);
    fs::remove(File("a.tiff"));
    WriteImage("a.tiff", 2.0);
    EXPECT_EQ(Copy("a.tif", "c.tif"), GIS_SUCCESS);
    EXPECT_FALSE(fs::exists(File("c.tfw"))) << "it may be that of the other image";
}
