#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WithoutPrivileges.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RecordingLog;
using zelto::test::SmallDisk;
using zelto::test::TemporaryFolder;
using zelto::test::WithoutPrivileges;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

namespace fs = std::filesystem;

GISError CreateTiff(CRasterSource& source, const std::wstring& path, int width = 4,
                    int height = 4) {
    return source.CreateRaster(RDF_GTiff, path.c_str(), width, height, 1, PDT_Byte, nullptr,
                               nullptr, nullptr);
}

void ExpectDeletionMessage(const RecordingLog& log, const wchar_t* function,
                           const std::wstring& path) {
    ASSERT_EQ(log.m_records.size(), 1U);
    EXPECT_EQ(log.m_records[0].level, 2);
    EXPECT_EQ(log.m_records[0].file, L"RasterSource");
    EXPECT_EQ(log.m_records[0].function, function);
    EXPECT_EQ(log.m_records[0].message,
              L"删除已存在的文件失败: " + path + L"，可能文件已经打开，或者无权限删除文件！");
}

} // namespace

TEST(CreationFaults, AFileThatGdalCannotDeleteStaysAndIsNamed) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 1.0)});
    const std::string cut = ReadFile(folder.Path() / "a.tif").substr(0, 30);
    WriteFile(folder.Path() / "a.tif", cut);
    for (const bool general : {false, true}) {
        const RecordingLog log;
        CRasterSource source;
        EXPECT_EQ(source.CreateRaster(general ? RDF_HFA : RDF_GTiff,
                                      folder.WideFile("a.tif").c_str(), 4, 4, 1, PDT_Byte, nullptr,
                                      nullptr, nullptr),
                  GIS_FAILED);
        ExpectDeletionMessage(
            log, general ? L"CRasterSource::CreateRaster" : L"CRasterSource::CreateGTiffRaster",
            folder.WideFile("a.tif"));
        EXPECT_EQ(ReadFile(folder.Path() / "a.tif"), cut);
    }
}

TEST(CreationFaults, AFolderWithoutTheRightToWriteKeepsItsFile) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 1.0)});
    const std::string bytes = ReadFile(folder.Path() / "a.tif");
    fs::permissions(folder.Path(), fs::perms(0555));
    {
        const CRasterSource keepsGdalAlive;
        const WithoutPrivileges unprivileged;
        const RecordingLog log;
        CRasterSource source;
        EXPECT_EQ(CreateTiff(source, folder.WideFile("a.tif")), GIS_FAILED);
        ExpectDeletionMessage(log, L"CRasterSource::CreateGTiffRaster", folder.WideFile("a.tif"));
        EXPECT_EQ(CreateTiff(source, folder.WideFile("new.tif")), GIS_FAILED);
        EXPECT_EQ(CRasterSource::DeleteFileW(folder.WideFile("a.tif").c_str()), GIS_FAILED);
        // Unreadable and unwritable files open as far as the rights go.
        EXPECT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
        EXPECT_EQ(source.GetAccess(), GIS_READONLY);
    }
    fs::permissions(folder.Path(), fs::perms(0755));
    EXPECT_EQ(ReadFile(folder.Path() / "a.tif"), bytes);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
}

TEST(OpeningFaults, AFileWithoutTheRightToReadFailsToOpen) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 1.0)});
    fs::permissions(folder.Path(), fs::perms(0755));
    fs::permissions(folder.Path() / "a.tif", fs::perms(0));
    const CRasterSource keepsGdalAlive;
    const WithoutPrivileges unprivileged;
    for (const GISDataAccess access : {GIS_READONLY, GIS_UPDATE}) {
        CRasterSource source;
        EXPECT_EQ(source.Open(folder.WideFile("a.tif").c_str(), access, true), GIS_OPEN_FAILED);
        EXPECT_FALSE(source.IsOpened());
    }
}

TEST(CreationFaults, AMissingFolderFails) {
    const TemporaryFolder folder;
    CRasterSource source;
    EXPECT_EQ(CreateTiff(source, folder.WideFile("missing/a.tif")), GIS_FAILED);
    EXPECT_FALSE(source.IsOpened());
    EXPECT_TRUE(folder.Names().empty());
}

TEST(CreationFaults, AFileOpenElsewhereIsReplacedAndTheOtherSourceReadsOn) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 1.0)});
    CRasterSource reader;
    ASSERT_EQ(reader.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    CRasterSource writer;
    EXPECT_EQ(CreateTiff(writer, folder.WideFile("a.tif"), 8, 8), GIS_SUCCESS);
    unsigned char value = 0;
    EXPECT_EQ(reader.GetPixel(&value, 3, 3, PDT_Byte), GIS_SUCCESS);
    EXPECT_EQ(value, 1);
    writer.Close();
    ASSERT_EQ(reader.Reopen(GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(reader.GetWidth(), 8);
}

TEST(CreationFaults, AFullDiskMakesWritingFail) {
    const TemporaryFolder folder;
    const SmallDisk disk(folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount a small file system";
    CRasterSource source;
    ASSERT_EQ(CreateTiff(source, folder.WideFile("disk/a.tif"), 2000, 2000), GIS_SUCCESS);
    std::vector<unsigned char> pixels(4000000, 5);
    EXPECT_EQ(source.GetRasterBand(0)->WriteBlock(0, 0, 2000, 2000, pixels.data(), 2000, 2000,
                                                  PDT_Byte, 0, 0),
              GIS_FAILED);
    source.Close();
    EXPECT_FALSE(source.IsOpened());
}

TEST(CreationFaults, AFullDiskMakesAPyramidFailAndTheImageStaysWhole) {
    const TemporaryFolder folder;
    const SmallDisk disk(folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount a small file system";
    WriteRaster(folder.File("disk/a.tif"), {.width = 950, .height = 1000}, {Pixels(950000, 3.0)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("disk/a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_FAILED);
    source.Close();
    EXPECT_EQ(ReadBand(folder.File("disk/a.tif"), 1), Pixels(950000, 3.0));
}
