#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;
using Names = std::vector<std::string>;

namespace {

/// The operations are static; the drivers live as long as some source or registration does.
class RasterFiles : public testing::Test {
  protected:
    RasterFiles() { CGISDataSource::RegisterGDAL(); }
    ~RasterFiles() override { CGISDataSource::DestroyGDAL(); }

    void WriteImage(const std::string& name, double value, const char* driver = "GTiff") {
        WriteRaster(m_folder.File(name), {.width = 4, .height = 1, .driver = driver},
                    {Pixels(4, value)});
    }
    std::wstring Path(const std::string& name) const { return m_folder.WideFile(name); }

    TemporaryFolder m_folder;
};

} // namespace

TEST_F(RasterFiles, DeletingTakesTheSideFilesAlong) {
    WriteImage("影像.dat", 1.0, "ENVI");
    ASSERT_EQ(m_folder.Names(), (Names{"影像.dat", "影像.hdr"}));
    WriteFile(m_folder.Path() / "note.txt", "stays");
    EXPECT_EQ(CRasterSource::DeleteFileW(Path("影像.dat").c_str()), GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), Names{"note.txt"});
}

TEST_F(RasterFiles, WhatNoRasterDriverRecognisesIsNotDeleted) {
    WriteFile(m_folder.Path() / "note.txt", "this is no image");
    WriteFile(m_folder.Path() / "table.csv", "x,y\n1,2\n");
    WriteFile(m_folder.Path() / "empty.tif", "");
    for (const char* name : {"note.txt", "table.csv", "empty.tif", "missing.tif"})
        EXPECT_EQ(CRasterSource::DeleteFileW(Path(name).c_str()), GIS_NOT_SUPPORTED) << name;
    EXPECT_EQ(CRasterSource::DeleteFileW(m_folder.WideFile("").c_str()), GIS_NOT_SUPPORTED);
    EXPECT_EQ(CRasterSource::DeleteFileW(nullptr), GIS_FAILED);
    EXPECT_EQ(m_folder.Names(), (Names{"empty.tif", "note.txt", "table.csv"}));
}

TEST_F(RasterFiles, ADestinationThatDoesNotExistIsRecognisedByNoDriver) {
    WriteImage("a.tif", 1.0);
    EXPECT_EQ(CRasterSource::RenameFile(Path("a.tif").c_str(), Path("b.tif").c_str()),
              GIS_NOT_SUPPORTED);
    EXPECT_EQ(CRasterSource::CopyFiles(Path("a.tif").c_str(), Path("b.tif").c_str()),
              GIS_NOT_SUPPORTED);
    EXPECT_EQ(m_folder.Names(), Names{"a.tif"});
}

TEST_F(RasterFiles, AnExistingDestinationIsReplaced) {
    WriteImage("a.tif", 1.0);
    WriteImage("b.tif", 2.0);
    EXPECT_EQ(CRasterSource::CopyFiles(Path("a.tif").c_str(), Path("b.tif").c_str()), GIS_SUCCESS);
    EXPECT_EQ(ReadBand(m_folder.File("b.tif"), 1), Pixels(4, 1.0));
    WriteImage("c.tif", 3.0);
    EXPECT_EQ(CRasterSource::RenameFile(Path("c.tif").c_str(), Path("b.tif").c_str()), GIS_SUCCESS);
    EXPECT_EQ(ReadBand(m_folder.File("b.tif"), 1), Pixels(4, 3.0));
    EXPECT_EQ(m_folder.Names(), (Names{"a.tif", "b.tif"}));
}

TEST_F(RasterFiles, AMissingOriginFails) {
    WriteImage("b.tif", 2.0);
    EXPECT_EQ(CRasterSource::RenameFile(Path("a.tif").c_str(), Path("b.tif").c_str()), GIS_FAILED);
    EXPECT_EQ(CRasterSource::CopyFiles(Path("a.tif").c_str(), Path("b.tif").c_str()), GIS_FAILED);
    EXPECT_EQ(ReadBand(m_folder.File("b.tif"), 1), Pixels(4, 2.0));
}

TEST_F(RasterFiles, NullPathsFail) {
    WriteImage("a.tif", 1.0);
    const std::wstring path = Path("a.tif");
    EXPECT_EQ(CRasterSource::RenameFile(path.c_str(), nullptr), GIS_FAILED);
    EXPECT_EQ(CRasterSource::RenameFile(nullptr, path.c_str()), GIS_FAILED);
    EXPECT_EQ(CRasterSource::CopyFiles(path.c_str(), nullptr), GIS_FAILED);
    EXPECT_EQ(CRasterSource::CopyFiles(nullptr, path.c_str()), GIS_FAILED);
}

TEST_F(RasterFiles, AFileIsNeverCopiedOrMovedOntoItself) {
    WriteImage("a.tif", 1.0);
    std::filesystem::create_directory(m_folder.Path() / "sub");
    std::filesystem::create_symlink(m_folder.Path() / "a.tif", m_folder.Path() / "link.tif");
    std::filesystem::create_hard_link(m_folder.Path() / "a.tif", m_folder.Path() / "hard.tif");
    const std::string bytes = ReadFile(m_folder.Path() / "a.tif");
    const Names names = m_folder.Names();
    for (const char* same : {"a.tif", "./a.tif", "sub/../a.tif", "link.tif", "hard.tif"}) {
        SCOPED_TRACE(same);
        EXPECT_EQ(CRasterSource::CopyFiles(Path("a.tif").c_str(), Path(same).c_str()), GIS_FAILED);
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  m_folder.File(same) + ": origin and destination are the same file");
        EXPECT_EQ(CRasterSource::RenameFile(Path("a.tif").c_str(), Path(same).c_str()), GIS_FAILED);
        EXPECT_EQ(CRasterSource::CopyFiles(Path(same).c_str(), Path("a.tif").c_str()), GIS_FAILED);
        EXPECT_EQ(ReadFile(m_folder.Path() / "a.tif"), bytes);
        EXPECT_EQ(m_folder.Names(), names);
    }
}

TEST_F(RasterFiles, SideFilesAreNotCopiedOntoThemselvesEither) {
    WriteImage("a.tif", 1.0);
    WriteImage("a.tiff", 2.0);
    const std::string place = "1\n0\n0\n-1\n100.5\n99.5\n";
    WriteFile(m_folder.Path() / "a.tfw", place); // the only place of both
    EXPECT_EQ(CRasterSource::CopyFiles(Path("a.tif").c_str(), Path("a.tiff").c_str()), GIS_FAILED);
    EXPECT_EQ(ReadFile(m_folder.Path() / "a.tfw"), place);
    EXPECT_EQ(ReadBand(m_folder.File("a.tiff"), 1), Pixels(4, 2.0));
}

TEST_F(RasterFiles, DeletingTakesTheWorldFileAlong) {
    CRasterSource source;
    double place[6] = {100.0, 1.0, 0.0, 200.0, 0.0, -1.0};
    for (const char* name : {"a.tif", "b.tif"}) {
        ASSERT_EQ(source.CreateRaster(RDF_GTiff, Path(name).c_str(), 4, 4, 1, PDT_Byte, place,
                                      nullptr, nullptr),
                  GIS_SUCCESS);
        source.Close();
    }
    WriteImage("b.TIFF", 1.0);
    WriteImage("c.bmp", 1.0, "BMP");
    WriteFile(m_folder.Path() / "c.tfw", "1\n0\n0\n-1\n0\n0\n");
    ASSERT_EQ(m_folder.Names(),
              (Names{"a.tfw", "a.tif", "b.TIFF", "b.tfw", "b.tif", "c.bmp", "c.tfw"}));
    for (const char* name : {"a.tif", "b.tif", "c.bmp"})
        EXPECT_EQ(CRasterSource::DeleteFileW(Path(name).c_str()), GIS_SUCCESS) << name;
    // It may be that of b.TIFF, and that of a bitmap has another name.
    EXPECT_EQ(m_folder.Names(), (Names{"b.TIFF", "b.tfw", "c.tfw"}));
    EXPECT_EQ(CRasterSource::DeleteFileW(Path("b.TIFF").c_str()), GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), Names{"c.tfw"});
}

TEST_F(RasterFiles, NothingOfAReplacedImageGoesOnToCount) {
    for (const bool copies : {false, true}) {
        SCOPED_TRACE(copies ? "copied" : "renamed");
        WriteImage("a.tif", 1.0);
        WriteImage("b.tif", 2.0);
        WriteFile(m_folder.Path() / "b.tfw", "1\n0\n0\n-1\n100.5\n99.5\n");
        WriteImage("b.tif.ovr", 2.0); // a pyramid by its name
        const auto operation = copies ? CRasterSource::CopyFiles : CRasterSource::RenameFile;
        EXPECT_EQ(operation(Path("a.tif").c_str(), Path("b.tif").c_str()), GIS_SUCCESS);
        EXPECT_EQ(ReadBand(m_folder.File("b.tif"), 1), Pixels(4, 1.0));
        EXPECT_EQ(m_folder.Names(), copies ? (Names{"a.tif", "b.tif"}) : Names{"b.tif"});
    }
}

TEST_F(RasterFiles, TheWorldFileGoesToTheNewName) {
    for (const bool copies : {false, true}) {
        SCOPED_TRACE(copies ? "copied" : "renamed");
        WriteImage("a.tif", 1.0);
        WriteImage("b.tif", 2.0);
        const std::string place = "1\n0\n0\n-1\n100.5\n99.5\n";
        WriteFile(m_folder.Path() / "a.tfw", place);
        const auto operation = copies ? CRasterSource::CopyFiles : CRasterSource::RenameFile;
        EXPECT_EQ(operation(Path("a.tif").c_str(), Path("b.tif").c_str()), GIS_SUCCESS);
        EXPECT_EQ(ReadFile(m_folder.Path() / "b.tfw"), place);
        EXPECT_EQ(std::filesystem::exists(m_folder.Path() / "a.tfw"), copies);
    }
}
