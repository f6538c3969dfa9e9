#include "zelto/baselib/internal/FilesAside.h"

#include "zelto/baselib/internal/FilePaths.h"

#include "tests/baselib/FolderTest.h"
#include "tests/support/CopiedProcess.h"
#include "tests/support/DisturbedProcess.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

using zelto::test::Contents;
using zelto::test::Disturb;
using zelto::test::Disturbance;
using zelto::test::DisturbedRun;
using zelto::test::EndCopy;
using Paths = std::vector<fs::path>;

class FilesAside : public zelto::test::FolderTest {
  protected:
    FilesAside() { Write(OLD); }

    /// One of them is named twice, one does not exist.
    Paths Files() const {
        return {m_folder.File("a"), m_folder.File("none"), m_folder.File("b"), m_folder.File("a")};
    }

    /// Runs `work`, which answers whether it succeeded, with each of its changes refused in turn.
    /// @param check of the answer, when it is over
    template <typename Work, typename Check>
    void RefuseEveryChange(const Work& work, const Check& check) {
        int number = 0;
        for (DisturbedRun run{DisturbedRun::Ending::Disturbed};
             run.ending == DisturbedRun::Ending::Disturbed;) {
            for (const fs::directory_entry& entry : fs::directory_iterator(m_folder.Path()))
                fs::remove_all(entry.path());
            Write(OLD);
            run = Disturb(++number, Disturbance::BrokenDisk, [&] { EndCopy(work() ? 0 : 1); });
            if (run.ending == DisturbedRun::Ending::CannotWatch)
                GTEST_SKIP() << "this user may not watch processes";
            SCOPED_TRACE("refused change " + std::to_string(number));
            ASSERT_NE(run.exitStatus, -1);
            check(run.exitStatus == 0);
        }
        EXPECT_GT(number, 3);
    }

    static const Contents OLD;
};

const Contents FilesAside::OLD = {{"a", "first"}, {"b", "second"}, {"c", "third"}};

TEST_F(FilesAside, AreGoneUntilTheyComeBack) {
    zelto::FilesSetAside aside(Files());
    EXPECT_TRUE(aside.Succeeded());
    EXPECT_EQ(Visible(), (Contents{{"c", "third"}}));
    Write({{"a", "made in between"}});
    aside.PutBack();
    EXPECT_EQ(Visible(), OLD);
    aside.PutBack();
    EXPECT_EQ(m_folder.Names().size(), 3U);
}

TEST_F(FilesAside, ThatAreDroppedStayAway) {
    zelto::FilesSetAside(Files()).Drop();
    EXPECT_EQ(m_folder.Names(), std::vector<std::string>{"c"});
}

TEST_F(FilesAside, OfWhichThereAreNoneSucceed) {
    zelto::FilesSetAside aside({m_folder.File("none")});
    EXPECT_TRUE(aside.Succeeded());
    aside.PutBack();
    EXPECT_EQ(Visible(), OLD);
}

TEST_F(FilesAside, StayWhereTheirFolderTakesNoOther) {
    const zelto::FilesSetAside aside({"/proc/self/status"});
    EXPECT_FALSE(aside.Succeeded());
    EXPECT_TRUE(fs::exists("/proc/self/status"));
}

TEST_F(FilesAside, ComeBackWhenOneCannotBeMovedAway) {
    RefuseEveryChange([&] { return zelto::FilesSetAside(Files()).Succeeded(); },
                      [&](bool) {
                          // Where the disk fails while they come back, the next save goes on.
                          const fs::path first = m_folder.File("a");
                          zelto::FileSetBackup::PutBack(zelto::FileSetBackup::PathFor(first));
                          EXPECT_EQ(Visible(), OLD);
                      });
}

TEST_F(FilesAside, AreRestoredFromCopies) {
    zelto::FileCopies copies(m_folder.File("a"), Files());
    ASSERT_TRUE(copies.Succeeded());
    EXPECT_EQ(Visible(), OLD);
    Write({{"a", "changed"}, {"b", "changed"}});
    copies.Restore();
    EXPECT_EQ(Visible(), OLD);
}

TEST_F(FilesAside, AreNotRestoredFromCopiesThatCouldNotBeMade) {
    RefuseEveryChange(
        [&] {
            zelto::FileCopies copies(m_folder.File("a"), Files());
            copies.Restore();
            return copies.Succeeded();
        },
        [&](bool) { EXPECT_EQ(Visible(), OLD); });
    zelto::FileCopies nowhere("/proc/self/status", {"/proc/self/status"});
    EXPECT_FALSE(nowhere.Succeeded());
    nowhere.Restore();
}

TEST_F(FilesAside, CopiesThatCannotBePutBackStay) {
    zelto::FileCopies copies(m_folder.File("a"), Files());
    fs::remove(m_folder.File("a"));
    fs::create_directory(m_folder.File("a")); // in its place
    copies.Restore();
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("b")), "second");
    std::string kept;
    for (const std::string& name : m_folder.Names())
        if (name.front() == '.')
            kept = zelto::test::ReadFile(m_folder.Path() / name / "a");
    EXPECT_EQ(kept, "first");
}

TEST(HiddenFolder, IsTakenOverOnlyWhereThereIsOne) {
    const zelto::test::TemporaryFolder folder;
    EXPECT_FALSE(zelto::TakeOver(folder.Path() / "none").IsMade());
    zelto::test::WriteFile(folder.File("file"), "x");
    EXPECT_FALSE(zelto::TakeOver(folder.Path() / "file").IsMade());
    zelto::HiddenFolder none;
    none.Leave();
    none.Remove();
    EXPECT_FALSE(none.IsMade());
    const zelto::HiddenFolder made(folder.Path());
    EXPECT_TRUE(made.IsMade());
    EXPECT_FALSE(zelto::TakeOver(made.Path()).IsMade()) << "its owner lives";
}

TEST(FilePaths, TheFolderOfANameAloneIsTheWorkingOne) {
    EXPECT_EQ(zelto::FolderOf("a.tif"), ".");
    EXPECT_EQ(zelto::FolderOf("/data/a.tif"), "/data");
    EXPECT_EQ(zelto::FolderOf("data/a.tif"), "data");
}

} // namespace
