#include "zelto/datasource/internal/HostModule.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::IsSystemFolder;

TEST(SystemFolder, IsWhateverLiesBelowUsr) {
    EXPECT_TRUE(IsSystemFolder("/usr/bin"));
    EXPECT_TRUE(IsSystemFolder("/usr/local/bin"));
    EXPECT_TRUE(IsSystemFolder("/usr"));
    EXPECT_FALSE(IsSystemFolder("/opt/host/bin"));
    EXPECT_FALSE(IsSystemFolder("/usrs/host"));
    EXPECT_FALSE(IsSystemFolder("/home/usr/bin"));
}

TEST(SystemFolder, IsFoundBehindALink) {
    const zelto::test::TemporaryFolder folder;
    EXPECT_FALSE(IsSystemFolder(folder.Path().string()));
    std::filesystem::create_directory_symlink("/usr/bin", folder.File("bin"));
    EXPECT_TRUE(IsSystemFolder(folder.File("bin")));
}

TEST(SystemFolder, IsTheRootAndNoFolderAtAll) {
    EXPECT_TRUE(IsSystemFolder("/"));
    EXPECT_TRUE(IsSystemFolder(""));
}
