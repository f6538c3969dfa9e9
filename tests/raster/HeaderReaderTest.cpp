#include "zelto/raster/internal/HeaderReader.h"

#include "tests/support/TemporaryFolder.h"
#include "tests/support/WithoutPrivileges.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::HeaderReader;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

TEST(HeaderReader, IntegersAreReadInBothByteOrders) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a", std::string("\1\2\3\1\2", 5));
    HeaderReader file(folder.File("a"));
    EXPECT_EQ(file.Integer(3), 0x030201U);
    file.UseBigEndian();
    EXPECT_EQ(file.Integer(2), 0x0102U);
    EXPECT_TRUE(file.IsGood());
}

TEST(HeaderReader, WhatIsReadOrSkippedBeyondTheEndIsNotThere) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a", std::string("\1\2\3\4", 4));
    HeaderReader read(folder.File("a"));
    EXPECT_EQ(read.Integer(8), 0U);
    EXPECT_FALSE(read.IsGood());
    EXPECT_EQ(read.Integer(1), 0U) << "nothing is read after that";
    HeaderReader skipped(folder.File("a"));
    skipped.Skip(4);
    EXPECT_TRUE(skipped.IsGood());
    skipped.Skip(1);
    EXPECT_FALSE(skipped.IsGood());
    skipped.MoveTo(0);
    EXPECT_FALSE(skipped.IsGood()) << "what failed stays so";
    HeaderReader moved(folder.File("a"));
    moved.MoveTo(4);
    EXPECT_TRUE(moved.IsGood());
    moved.MoveTo(5);
    EXPECT_FALSE(moved.IsGood());
}

TEST(HeaderReader, ItemsThatAreRequiredMustFitIntoWhatRemains) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a", std::string(10, 'x'));
    HeaderReader file(folder.File("a"));
    file.Skip(2);
    file.Require(2, 4);
    EXPECT_TRUE(file.IsGood());
    file.Require(3, 4);
    EXPECT_FALSE(file.IsGood());
}

TEST(HeaderReader, FoldersMissingAndProtectedFilesAreEmpty) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "folder");
    WriteFile(folder.Path() / "protected", "some bytes");
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
    std::filesystem::permissions(folder.Path() / "protected", std::filesystem::perms::none);
    const zelto::test::WithoutPrivileges unprivileged;
    for (const char* name : {"folder", "missing", "protected"}) {
        SCOPED_TRACE(name);
        HeaderReader file(folder.File(name));
        EXPECT_TRUE(file.IsGood());
        EXPECT_EQ(file.Integer(1), 0U);
        EXPECT_FALSE(file.IsGood());
    }
}

TEST(HeaderReader, AFileThatIsCutMeanwhileIsNotGood) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a", "some bytes");
    HeaderReader file(folder.File("a"));
    std::filesystem::resize_file(folder.Path() / "a", 2);
    EXPECT_EQ(file.Integer(4), 0U);
    EXPECT_FALSE(file.IsGood());
}
