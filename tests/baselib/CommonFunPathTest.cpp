#include "zelto/baselib/CommonFun.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

/// The data file found for `header` in a folder that holds `files`, without the folder.
std::wstring DataFileOf(const std::string& header, const std::vector<std::string>& files) {
    const zelto::test::TemporaryFolder folder;
    for (const std::string& file : files)
        zelto::test::WriteFile(folder.File(file), "x");
    const std::wstring found = CommonFun::getEnviDataFilePath(folder.WideFile(header));
    const std::wstring start = folder.WideFile("");
    return found.substr(0, start.size()) == start ? found.substr(start.size()) : found;
}

} // namespace

TEST(PathParts, OfAnOrdinaryPath) {
    const std::wstring path = L"/data/2024/影像.v2.TIF";
    EXPECT_EQ(CommonFun::GetExtensionName(path), L"TIF");
    EXPECT_EQ(CommonFun::GetFileName(path), L"影像.v2");
    EXPECT_EQ(CommonFun::GetFileNameWithExtension(path), L"影像.v2.TIF");
    EXPECT_EQ(CommonFun::GetFileDirectory(path, true), L"/data/2024/");
    EXPECT_EQ(CommonFun::GetFileDirectory(path, false), L"/data/2024");
    EXPECT_EQ(CommonFun::GetFilePahWithoutExtension(path), L"/data/2024/影像.v2");
}

TEST(PathParts, ADotInTheDirectoryIsNoExtension) {
    const std::wstring path = L"/data.2024/image";
    EXPECT_EQ(CommonFun::GetExtensionName(path), L"");
    EXPECT_EQ(CommonFun::GetFileName(path), L"image");
    EXPECT_EQ(CommonFun::GetFilePahWithoutExtension(path), path);
}

TEST(PathParts, OfANameAlone) {
    EXPECT_EQ(CommonFun::GetFileDirectory(L"image.tif", true), L"");
    EXPECT_EQ(CommonFun::GetFileDirectory(L"image.tif", false), L"");
    EXPECT_EQ(CommonFun::GetFileName(L"image.tif"), L"image");
    EXPECT_EQ(CommonFun::GetFilePahWithoutExtension(L"image.tif"), L"image");
}

TEST(PathParts, OfUnusualPaths) {
    EXPECT_EQ(CommonFun::GetFileDirectory(L"/image.tif", false), L"/");
    EXPECT_EQ(CommonFun::GetFileDirectory(L"/image.tif", true), L"/");
    EXPECT_EQ(CommonFun::GetFileNameWithExtension(L"/data/"), L"");
    EXPECT_EQ(CommonFun::GetExtensionName(L"/data/name."), L"");
    EXPECT_EQ(CommonFun::GetExtensionName(L"/data/.hidden"), L"hidden");
    EXPECT_EQ(CommonFun::GetExtensionName(L""), L"");
    EXPECT_EQ(CommonFun::GetFileName(L""), L"");
    // Only '/' separates; everything else belongs to the name.
    EXPECT_EQ(CommonFun::GetFileNameWithExtension(L"C:\\data\\image.tif"), L"C:\\data\\image.tif");
}

TEST(EnviDataFile, IsTheHeadersPathWithoutItsExtension) {
    EXPECT_EQ(DataFileOf("scene.hdr", {"scene.hdr", "scene", "scene.dat"}), L"scene");
    EXPECT_EQ(DataFileOf("scene.dat.hdr", {"scene.dat.hdr", "scene.dat"}), L"scene.dat");
}

TEST(EnviDataFile, HasOneOfTheUsualExtensions) {
    for (const std::string extension : {"dat", "DAT", "img", "IMG", "bsq", "BSQ", "bil", "BIL",
                                        "bip", "BIP", "raw", "RAW", "bin", "BIN"}) {
        const std::string name = "scene." + extension;
        EXPECT_EQ(DataFileOf("scene.hdr", {"scene.hdr", name}),
                  std::wstring(name.begin(), name.end()));
    }
}

TEST(EnviDataFile, TheFirstExtensionOfTheListWins) {
    EXPECT_EQ(DataFileOf("s.hdr", {"s.hdr", "s.bin", "s.img", "s.dat"}), L"s.dat");
    EXPECT_EQ(DataFileOf("s.hdr", {"s.hdr", "s.bin", "s.img"}), L"s.img");
}

TEST(EnviDataFile, IsEmptyWhenThereIsNone) {
    EXPECT_EQ(DataFileOf("scene.hdr", {"scene.hdr", "scene.tif", "scene2.dat"}), L"");
    EXPECT_EQ(DataFileOf("header", {"header"}), L""); // never the header itself
    EXPECT_EQ(CommonFun::getEnviDataFilePath(L""), L"");
}

TEST(EnviDataFile, IsNeverAFolder) {
    const zelto::test::TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "scene");
    zelto::test::WriteFile(folder.File("scene.hdr"), "x");
    zelto::test::WriteFile(folder.File("scene.raw"), "x");
    EXPECT_EQ(CommonFun::getEnviDataFilePath(folder.WideFile("scene.hdr")),
              folder.WideFile("scene.raw"));
}

TEST(FileExists, ForFilesAndFoldersUnderAnyName) {
    const zelto::test::TemporaryFolder folder;
    zelto::test::WriteFile(folder.File("影像"), "x");
    EXPECT_TRUE(CommonFun::IsFileExist(folder.WideFile("影像")));
    EXPECT_TRUE(CommonFun::IsFileExist(folder.WideFile("")));
    EXPECT_FALSE(CommonFun::IsFileExist(folder.WideFile("none")));
    EXPECT_FALSE(CommonFun::IsFileExist(L""));
}

TEST(TemporaryPath, IsNewEachTimeAndInTheTemporaryFolder) {
    const std::wstring first = CommonFun::GetTempFilePath(L"aif");
    const std::wstring second = CommonFun::GetTempFilePath(L"aif");
    EXPECT_NE(first, second);
    EXPECT_FALSE(CommonFun::IsFileExist(first));
    EXPECT_EQ(CommonFun::GetExtensionName(first), L"aif");
    EXPECT_EQ(CommonFun::GetExtensionName(CommonFun::GetTempFilePath(L"")), L"");
    const std::filesystem::path folder = CommonFun::U2M(CommonFun::GetFileDirectory(first, false));
    EXPECT_TRUE(std::filesystem::equivalent(folder, std::filesystem::temp_directory_path()));
}

TEST(TemporaryPath, WithoutATemporaryFolderIsInTheSystems) {
    const char* const set = std::getenv("TMPDIR");
    const std::string former = set != nullptr ? set : "";
    setenv("TMPDIR", "/no/such/folder", 1);
    const std::wstring path = CommonFun::GetTempFilePath(L"aif");
    if (set != nullptr)
        setenv("TMPDIR", former.c_str(), 1);
    else
        unsetenv("TMPDIR");
    EXPECT_EQ(path.rfind(L"/tmp/zelto-", 0), 0U);
}
