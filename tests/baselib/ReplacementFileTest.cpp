#include "zelto/baselib/internal/BinaryFile.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

class ReplacementFile : public ::testing::Test {
  protected:
    /// Writes `text` to the file and commits.
    bool Replace(const std::string& name, const std::string& text) {
        zelto::ReplacementFile file(m_folder.WideFile(name));
        file.Stream() << text;
        return file.Commit();
    }
    std::string Content(const std::string& name) {
        return zelto::test::ReadFile(m_folder.File(name));
    }
    mode_t Mode(const std::string& name) {
        struct stat status {};
        stat(m_folder.File(name).c_str(), &status);
        return status.st_mode & 07777U;
    }

    zelto::test::TemporaryFolder m_folder;
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(ReplacementFile, MakesANewFile) {
    EXPECT_TRUE(Replace("新 file", "content"));
    EXPECT_EQ(Content("新 file"), "content");
    EXPECT_EQ(m_folder.Names(), Names{"新 file"});
}

TEST_F(ReplacementFile, ANewFileGetsTheUsualPermissions) {
    const mode_t mask = umask(022);
    EXPECT_TRUE(Replace("file", "x"));
    umask(mask);
    EXPECT_EQ(Mode("file"), 0644U);
}

TEST_F(ReplacementFile, TakesThePlaceAndPermissionsOfTheOldFile) {
    zelto::test::WriteFile(m_folder.File("file"), "a longer old content");
    chmod(m_folder.File("file").c_str(), 0600);
    EXPECT_TRUE(Replace("file", "new"));
    EXPECT_EQ(Content("file"), "new");
    EXPECT_EQ(Mode("file"), 0600U);
}

TEST_F(ReplacementFile, TheOldFileStaysUntilTheCommit) {
    zelto::test::WriteFile(m_folder.File("file"), "old");
    {
        zelto::ReplacementFile file(m_folder.WideFile("file"));
        ASSERT_TRUE(file.IsOpen());
        file.Stream() << "half";
        file.Stream().flush();
        EXPECT_EQ(Content("file"), "old");
    }
    EXPECT_EQ(Content("file"), "old");
    EXPECT_EQ(m_folder.Names(), Names{"file"});
}

TEST_F(ReplacementFile, AFailedWriteLeavesTheOldFile) {
    zelto::test::WriteFile(m_folder.File("file"), "old");
    {
        zelto::ReplacementFile file(m_folder.WideFile("file"));
        file.Stream() << "half";
        file.Stream().setstate(std::ios::badbit); // as a full disk does
        EXPECT_FALSE(file.Commit());
    }
    EXPECT_EQ(Content("file"), "old");
    EXPECT_EQ(m_folder.Names(), Names{"file"});
}

TEST_F(ReplacementFile, ANewFileThatIsGoneLeavesTheOldOne) {
    zelto::test::WriteFile(m_folder.File("file"), "old");
    {
        zelto::ReplacementFile file(m_folder.WideFile("file"));
        file.Stream() << "new";
        for (const std::string& name : m_folder.Names())
            if (name != "file")
                fs::remove_all(m_folder.Path() / name);
        EXPECT_FALSE(file.Commit());
    }
    EXPECT_EQ(Content("file"), "old");
    EXPECT_EQ(m_folder.Names(), Names{"file"});
}

TEST_F(ReplacementFile, FoldersAndMissingFoldersAreRefused) {
    fs::create_directory(m_folder.Path() / "folder");
    EXPECT_FALSE(Replace("folder", "x"));
    EXPECT_FALSE(Replace("missing/file", "x"));
    EXPECT_FALSE(zelto::ReplacementFile(L"").IsOpen());
    EXPECT_EQ(m_folder.Names(), Names{"folder"});
}

TEST_F(ReplacementFile, ALinkStaysALinkAndItsTargetIsReplaced) {
    fs::create_directory(m_folder.Path() / "elsewhere");
    zelto::test::WriteFile(m_folder.File("elsewhere/target"), "old");
    fs::create_symlink("elsewhere/target", m_folder.Path() / "link");
    EXPECT_TRUE(Replace("link", "new"));
    EXPECT_TRUE(fs::is_symlink(m_folder.Path() / "link"));
    EXPECT_EQ(Content("elsewhere/target"), "new");
}

TEST_F(ReplacementFile, TheLongestNamesWork) {
    const std::string name(255, 'n');
    EXPECT_TRUE(Replace(name, "x"));
    EXPECT_EQ(m_folder.Names(), Names{name});
}

TEST_F(ReplacementFile, TwoAtOnceDoNotMeet) {
    zelto::ReplacementFile first(m_folder.WideFile("file"));
    zelto::ReplacementFile second(m_folder.WideFile("file"));
    first.Stream() << "first";
    second.Stream() << "second";
    EXPECT_TRUE(second.Commit());
    EXPECT_TRUE(first.Commit());
    EXPECT_EQ(Content("file"), "first");
    EXPECT_EQ(m_folder.Names(), Names{"file"});
}

TEST_F(ReplacementFile, CommitsOnce) {
    zelto::ReplacementFile file(m_folder.WideFile("file"));
    EXPECT_TRUE(file.Commit());
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ(m_folder.Names(), Names{"file"});
}
