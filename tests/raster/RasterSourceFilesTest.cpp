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
