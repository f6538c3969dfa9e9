#include "zelto/baselib/internal/RegularFile.h"

#include "zelto/baselib/internal/LastError.h"

#include "tests/support/NamedPipe.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/resource.h>
#include <utility>

using zelto::test::EndsSoon;
using zelto::test::MakePipe;
using zelto::test::TemporaryFolder;

namespace {

class RegularFile : public testing::Test {
  protected:
    RegularFile() { zelto::ClearLastError(); }

    EndsSoon m_endsSoon;
    TemporaryFolder m_folder;
};

} // namespace

TEST_F(RegularFile, IsOpenedAlsoThroughALink) {
    zelto::test::WriteFile(m_folder.File("a"), "text");
    std::filesystem::create_symlink(m_folder.File("a"), m_folder.File("link"));
    for (const char* name : {"a", "link"}) {
        std::ifstream stream;
        ASSERT_TRUE(zelto::OpenRegularFile(stream, m_folder.File(name))) << name;
        std::string text;
        stream >> text;
        EXPECT_EQ(text, "text");
    }
    EXPECT_EQ(zelto::LastError(), "");
}

TEST_F(RegularFile, IsNeitherAPipeNorADeviceNorAFolder) {
    MakePipe(m_folder.File("pipe"));
    std::filesystem::create_symlink(m_folder.File("pipe"), m_folder.File("link"));
    for (const std::string& path : {m_folder.File("pipe"), m_folder.File("link"),
                                    std::string("/dev/zero"), std::string("/dev/null")}) {
        std::ifstream stream;
        EXPECT_FALSE(zelto::OpenRegularFile(stream, path)) << path;
        EXPECT_EQ(zelto::LastError(), path + ": not a regular file");
        EXPECT_TRUE(zelto::IsPipeOrDevice(path)) << path;
        EXPECT_FALSE(zelto::MayBeOpened(path)) << path;
    }
    std::ifstream stream;
    EXPECT_FALSE(zelto::OpenRegularFile(stream, m_folder.Path().string()));
    EXPECT_EQ(zelto::LastError(), m_folder.Path().string() + ": is a directory");
    EXPECT_FALSE(zelto::OpenRegularFile(stream, m_folder.File("none")));
    EXPECT_EQ(zelto::LastError(), m_folder.File("none") + ": No such file or directory");
}

TEST_F(RegularFile, IsRefusedWithTheSystemsReasonWhereItCannotBeOpened) {
    zelto::test::WriteFile(m_folder.File("a"), "text");
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit none{0, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    std::ifstream stream;
    const bool isOpened = zelto::OpenRegularFile(stream, m_folder.File("a"));
    setrlimit(RLIMIT_NOFILE, &former);
    EXPECT_FALSE(isOpened);
    EXPECT_EQ(zelto::LastError(), m_folder.File("a") + ": Too many open files");
}

TEST_F(RegularFile, FoldersAndNamesThatAreNoFilesAreGdalsAffair) {
    EXPECT_TRUE(zelto::MayBeOpened(m_folder.Path().string()));
    EXPECT_TRUE(zelto::MayBeOpened(m_folder.File("none.tif")));
    EXPECT_TRUE(zelto::MayBeOpened("NETCDF:\"a.nc\":band"));
    EXPECT_TRUE(zelto::MayBeOpened(""));
    EXPECT_EQ(zelto::LastError(), "");
}

TEST_F(RegularFile, HasNoPipeAmongItsSideFiles) {
    zelto::test::WriteFile(m_folder.File("a.tif"), "x");
    EXPECT_TRUE(zelto::MayBeOpened(m_folder.File("a.tif")));
    for (const char* name : {"a.tfw", "a.TFW", "a.tifw", "a.wld", "a.prj", "a.aux", "a.tif.aux.xml",
                             "a.tif.ovr", "a.tif.msk", "a.hdr"}) {
        MakePipe(m_folder.File(name));
        EXPECT_FALSE(zelto::MayBeOpened(m_folder.File("a.tif"))) << name;
        EXPECT_EQ(zelto::LastError(), m_folder.File(name) + ": not a regular file");
        std::filesystem::remove(m_folder.File(name));
    }
    MakePipe(m_folder.File("b.tfw"));
    EXPECT_TRUE(zelto::MayBeOpened(m_folder.File("a.tif")));
}

TEST_F(RegularFile, HasNoPipeAmongItsSideFilesWhateverItsName) {
    std::filesystem::create_directory(m_folder.File("folder.d"));
    zelto::test::WriteFile(m_folder.File("folder.d/a"), "x");
    zelto::test::WriteFile(m_folder.File("a.ti~"), "x");
    const std::pair<const char*, const char*> pairs[] = {
        {"folder.d/a", "folder.d/a.prj"}, {"a.ti~", "a.t~w"}, {"a.ti~", "a.TI~W"}};
    for (const auto& [file, side] : pairs) {
        EXPECT_TRUE(zelto::MayBeOpened(m_folder.File(file)));
        MakePipe(m_folder.File(side));
        EXPECT_FALSE(zelto::MayBeOpened(m_folder.File(file))) << side;
        EXPECT_EQ(zelto::LastError(), m_folder.File(side) + ": not a regular file");
        std::filesystem::remove(m_folder.File(side));
    }
    MakePipe(m_folder.File("folder.prj"));
    EXPECT_TRUE(zelto::MayBeOpened(m_folder.File("folder.d/a"))) << "of the folder's name";
}
