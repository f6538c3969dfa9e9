#include "zelto/baselib/NewFileSet.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/datasource/GISDataSource.h"

#include "tests/baselib/FolderTest.h"
#include "tests/support/CopiedProcess.h"
#include "tests/support/DisturbedProcess.h"
#include "tests/support/NamedPipe.h"
#include "tests/support/SmallDisk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using zelto::test::Contents;
using zelto::test::Disturb;
using zelto::test::Disturbance;
using zelto::test::DisturbedRun;
using Names = std::vector<std::string>;

class NewFileSet : public zelto::test::FolderTest {
  protected:
    /// Writes files into the hidden folder; false when one cannot be written.
    static bool Fill(CNewFileSet& set, const Contents& files) {
        const fs::path folder = fs::path(CommonFun::U2M(set.GetTemporaryPath())).parent_path();
        return std::all_of(files.begin(), files.end(), [&](const auto& file) {
            std::ofstream stream(folder / file.first, std::ios::binary);
            stream << file.second;
            stream.close();
            return static_cast<bool>(stream);
        });
    }
    /// Replaces the set whose main file is "a.shp".
    bool Replace(const Contents& files, const std::vector<std::wstring>& oldFiles = {}) const {
        CNewFileSet set(m_folder.WideFile("a.shp"));
        return set.IsOpen() && Fill(set, files) && set.Commit(oldFiles);
    }
};

const Contents OLD = {{"a.dbf", "old table"}, {"a.prj", "old place"}, {"a.shp", "old shapes"}};
const Contents NEW = {{"a.cpg", "new text"}, {"a.dbf", "new table"}, {"a.shp", "new shapes"}};
const std::vector<std::wstring> OLD_FILES = {L"a.dbf", L"a.prj"};

TEST_F(NewFileSet, ASingleFileTakesThePlaceOfTheOldOne) {
    Write({{"a.shp", "old"}});
    EXPECT_TRUE(Replace({{"a.shp", "new"}}));
    EXPECT_EQ(m_folder.Names(), Names{"a.shp"});
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "new"}}));
}

TEST_F(NewFileSet, SeveralFilesTakeThePlaceOfSeveral) {
    Write(OLD);
    EXPECT_TRUE(Replace(NEW, OLD_FILES));
    EXPECT_EQ(m_folder.Names(), (Names{"a.cpg", "a.dbf", "a.shp"}));
    EXPECT_EQ(Visible(), NEW);
}

TEST_F(NewFileSet, FilesThatAreNotNamedStay) {
    Write({{"a.shp", "old"}, {"a.txt", "mine"}});
    EXPECT_TRUE(Replace(NEW));
    EXPECT_EQ(Visible().at("a.txt"), "mine");
}

TEST_F(NewFileSet, WithoutCommitNothingRemains) {
    Write(OLD);
    {
        CNewFileSet set(m_folder.WideFile("a.shp"));
        ASSERT_TRUE(set.IsOpen());
        Fill(set, NEW);
    }
    EXPECT_EQ(m_folder.Names(), (Names{"a.dbf", "a.prj", "a.shp"}));
    EXPECT_EQ(Visible(), OLD);
}

TEST_F(NewFileSet, AMissingMainFileFailsAndTheOldSetStays) {
    Write(OLD);
    EXPECT_FALSE(Replace({{"a.dbf", "new"}}, OLD_FILES));
    EXPECT_EQ(Visible(), OLD);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_folder.File("a.shp") + ": No such file or directory");
}

TEST_F(NewFileSet, FilesKeepThePermissionsOfTheOldOnes) {
    Write({{"a.dbf", "x"}, {"a.shp", "x"}});
    chmod(m_folder.File("a.dbf").c_str(), 0640);
    chmod(m_folder.File("a.shp").c_str(), 0600);
    const mode_t mask = umask(022);
    EXPECT_TRUE(Replace(NEW, {L"a.dbf"}));
    umask(mask);
    const auto mode = [&](const char* name) {
        struct stat status {};
        stat(m_folder.File(name).c_str(), &status);
        return status.st_mode & 07777U;
    };
    EXPECT_EQ(mode("a.dbf"), 0640U);
    EXPECT_EQ(mode("a.shp"), 0600U);
    EXPECT_EQ(mode("a.cpg"), 0644U);
}

TEST_F(NewFileSet, ProtectedFilesFoldersAndMissingFoldersAreRefusedWithAReason) {
    fs::create_directory(m_folder.Path() / "folder");
    EXPECT_FALSE(CNewFileSet(m_folder.WideFile("folder")).IsOpen());
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), m_folder.File("folder") + ": Is a directory");
    EXPECT_FALSE(CNewFileSet(m_folder.WideFile("missing/a")).IsOpen());
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_folder.File("missing/a") + ": No such file or directory");
    EXPECT_FALSE(CNewFileSet(L"").IsOpen());
    if (geteuid() == 0)
        GTEST_SKIP() << "nothing is protected from this user";
    Write({{"a.shp", "x"}});
    chmod(m_folder.File("a.shp").c_str(), 0400);
    EXPECT_FALSE(CNewFileSet(m_folder.WideFile("a.shp")).IsOpen());
}

TEST_F(NewFileSet, LeftoversOfProcessesThatAreGoneAreRemoved) {
    fs::create_directory(m_folder.Path() / ".zelto-AbCdEf");
    Write({{".zelto-AbCdEf/big", "half a file"}});
    EXPECT_TRUE(Replace({{"a.shp", "new"}}));
    EXPECT_EQ(m_folder.Names(), Names{"a.shp"});
}

TEST_F(NewFileSet, FoldersOfLivingOwnersStay) {
    CNewFileSet first(m_folder.WideFile("b.shp"));
    Fill(first, {{"b.shp", "first"}});
    EXPECT_TRUE(Replace({{"a.shp", "second"}}));
    EXPECT_TRUE(first.Commit());
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "second"}, {"b.shp", "first"}}));
}

TEST_F(NewFileSet, AFullDiskLeavesTheOldSet) {
    const zelto::test::SmallDisk disk(m_folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount";
    Write({{"disk/a.shp", "old"}});
    {
        CNewFileSet set(m_folder.WideFile("disk/a.shp"));
        const std::string megabytes(std::size_t{2} << 20, 'x');
        std::FILE* file = std::fopen(CommonFun::U2M(set.GetTemporaryPath()).c_str(), "wb");
        EXPECT_LT(std::fwrite(megabytes.data(), 1, megabytes.size(), file), megabytes.size());
        std::fclose(file);
    }
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("disk/a.shp")), "old");
}

/// A replacement that is disturbed at each of its steps in turn.
struct DisturbedReplacement {
    std::function<void()> prepare;
    std::function<bool()> replace; ///< to be done
    std::function<Contents()> visible;
    std::function<Names()> names;
    Contents before;
    Contents after;
    std::wstring mainFile;

    /// At every moment the old or the new set is whole under its names, or the main file is
    /// missing and the next opening puts the old set back; the next save leaves nothing hidden.
    void KillAtEveryStep() const {
        int number = 0;
        for (auto ending = DisturbedRun::Ending::Disturbed;
             ending == DisturbedRun::Ending::Disturbed;) {
            prepare();
            ending = Disturb(++number, Disturbance::Kill, [this] { replace(); }).ending;
            if (ending == DisturbedRun::Ending::CannotWatch)
                GTEST_SKIP() << "this user may not watch processes";
            SCOPED_TRACE("killed before change " + std::to_string(number));
            const Contents seen = visible();
            EXPECT_TRUE(seen.count("a.shp") == 0 || seen == before || seen == after);
            CNewFileSet::Restore(mainFile);
            const Contents restored = visible();
            EXPECT_TRUE(restored == before || restored == after);
            EXPECT_TRUE(replace());
            EXPECT_EQ(visible(), after);
            ExpectNothingHidden();
        }
        EXPECT_GT(number, 5);
    }

    /// A refused step is a failure that leaves the old set, or a success with the new one.
    void RefuseEveryStep(Disturbance how) const {
        int number = 0;
        for (DisturbedRun run{DisturbedRun::Ending::Disturbed};
             run.ending == DisturbedRun::Ending::Disturbed;) {
            prepare();
            run = Disturb(++number, how, [this] { zelto::test::EndCopy(replace() ? 0 : 1); });
            if (run.ending == DisturbedRun::Ending::CannotWatch)
                GTEST_SKIP() << "this user may not watch processes";
            SCOPED_TRACE("refused change " + std::to_string(number));
            CNewFileSet::Restore(mainFile);
            EXPECT_NE(run.exitStatus, -1);
            EXPECT_TRUE(visible() == after || (run.exitStatus == 1 && visible() == before));
            EXPECT_TRUE(replace());
            ExpectNothingHidden();
        }
        EXPECT_GT(number, 5);
    }

  private:
    void ExpectNothingHidden() const {
        for (const std::string& name : names())
            EXPECT_NE(name.front(), '.') << name;
    }
};

class DisturbedFileSet : public NewFileSet {
  protected:
    DisturbedReplacement File() {
        return {[this] {
                    Write({{"a.shp", "old"}});
                },
                [this] {
                    return Replace({{"a.shp", "new"}});
                },
                [this] { return Visible(); },
                [this] { return m_folder.Names(); },
                {{"a.shp", "old"}},
                {{"a.shp", "new"}},
                m_folder.WideFile("a.shp")};
    }
    DisturbedReplacement Set() {
        return {[this] {
                    fs::remove(m_folder.File("a.cpg"));
                    Write(OLD);
                },
                [this] { return Replace(NEW, OLD_FILES); },
                [this] { return Visible(); },
                [this] { return m_folder.Names(); },
                OLD,
                NEW,
                m_folder.WideFile("a.shp")};
    }
};

TEST_F(DisturbedFileSet, AKillAtAnyStepLeavesTheOldOrTheNewFile) {
    File().KillAtEveryStep();
}

TEST_F(DisturbedFileSet, AKillAtAnyStepLeavesTheOldOrTheNewSet) {
    Set().KillAtEveryStep();
}

TEST_F(DisturbedFileSet, ARefusedStepLeavesTheOldFileOrSucceeds) {
    File().RefuseEveryStep(Disturbance::FullDisk);
    File().RefuseEveryStep(Disturbance::BrokenDisk);
}

TEST_F(DisturbedFileSet, ARefusedStepLeavesTheOldSetOrSucceeds) {
    Set().RefuseEveryStep(Disturbance::FullDisk);
    Set().RefuseEveryStep(Disturbance::BrokenDisk);
}

TEST_F(NewFileSet, ABackupWithoutAListOrWithForeignNamesHarmsNothing) {
    fs::create_directory(m_folder.Path() / ".zelto-old-a.shp");
    Write({{"b.txt", "mine"}});
    CNewFileSet::Restore(m_folder.WideFile("a.shp"));
    fs::create_directory(m_folder.Path() / "sub");
    fs::create_directory(m_folder.Path() / "sub/.zelto-old-a.shp");
    Write({{"sub/.zelto-old-a.shp/.zelto-set", "a.shp\n../b.txt\n"},
           {"sub/.zelto-old-a.shp/a.shp", "old"}});
    CNewFileSet::Restore(m_folder.WideFile("sub/a.shp"));
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("b.txt")), "mine");
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("sub/a.shp")), "old");
}

/// Ends the process with 0 when an abandoned set cannot take its place and no other can begin.
[[noreturn]] void AbandonAndTryToGoOn(const std::wstring& path) {
    CNewFileSet set(path);
    const fs::path made = CommonFun::U2M(set.GetTemporaryPath());
    // Somebody goes on writing while the folder is removed.
    std::thread([made] {
        for (int i = 0;; ++i)
            std::ofstream(made.string() + std::to_string(i));
    }).detach();
    std::ofstream(made) << "new";
    CNewFileSet::AbandonAll();
    const bool isGone = !fs::exists(made.parent_path());
    const bool ended = !set.Commit() && !CNewFileSet(path).IsOpen();
    zelto::test::EndCopy(isGone && ended ? 0 : 1);
}

TEST_F(NewFileSet, ABackupWithAnEmptyListStays) {
    fs::create_directory(m_folder.Path() / ".zelto-old-a.shp");
    Write({{".zelto-old-a.shp/.zelto-set", "\n.\n..\n"}, {".zelto-old-a.shp/a.dbf", "old"}});
    CNewFileSet::Restore(m_folder.WideFile("a.shp"));
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File(".zelto-old-a.shp/a.dbf")), "old");
}

TEST_F(NewFileSet, ABackupThatCannotBePutBackStaysForTheNextTime) {
    fs::create_directory(m_folder.Path() / ".zelto-old-a.shp");
    Write({{".zelto-old-a.shp/.zelto-set", "a.shp\n"},
           {".zelto-old-a.shp/a.shp", "old"},
           {".zelto-old-a.shp/a.dbf", "old table"}});
    fs::create_directory(m_folder.Path() / "a.dbf"); // in its place
    CNewFileSet::Restore(m_folder.WideFile("a.shp"));
    EXPECT_FALSE(fs::exists(m_folder.File("a.shp")));
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File(".zelto-old-a.shp/a.shp")), "old");
    fs::remove(m_folder.Path() / "a.dbf");
    CNewFileSet::Restore(m_folder.WideFile("a.shp"));
    EXPECT_EQ(Visible(), (Contents{{"a.dbf", "old table"}, {"a.shp", "old"}}));
    EXPECT_EQ(m_folder.Names(), (Names{"a.dbf", "a.shp"}));
}

TEST_F(NewFileSet, ABackupOfASetThatWasNotThereTakesTheHalfNewOneAway) {
    fs::create_directory(m_folder.Path() / ".zelto-old-a.shp");
    Write({{".zelto-old-a.shp/.zelto-set", "a.shp\na.cpg\na.dbf\n"}, {"a.cpg", "new text"}});
    CNewFileSet::Restore(m_folder.WideFile("a.shp"));
    EXPECT_EQ(m_folder.Names(), Names());
}

TEST_F(NewFileSet, AFolderInThePlaceOfASideFileLeavesTheOldSetOrNone) {
    fs::create_directory(m_folder.Path() / "a.dbf");
    Write({{"a.dbf/inside", "mine"}});
    EXPECT_FALSE(Replace({{"a.cpg", "new text"}, {"a.dbf", "new table"}, {"a.shp", "new"}}));
    EXPECT_EQ(m_folder.Names(), Names{"a.dbf"}) << "there was no set";
    Write({{"a.shp", "old"}, {"a.prj", "old place"}});
    EXPECT_FALSE(Replace(NEW, {L"a.prj"}));
    EXPECT_EQ(m_folder.Names(), (Names{"a.dbf", "a.prj", "a.shp"}));
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("a.shp")), "old");
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("a.dbf/inside")), "mine");
}

TEST_F(NewFileSet, ABackupThatAnotherProcessPutsBackIsLeftToIt) {
    fs::create_directory(m_folder.Path() / ".zelto-old-a.shp");
    Write({{".zelto-old-a.shp/.zelto-set", "a.shp\n"}, {".zelto-old-a.shp/a.shp", "old"}});
    const int other = open(m_folder.File(".zelto-old-a.shp").c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
    CNewFileSet::Restore(m_folder.WideFile("a.shp"));
    EXPECT_EQ(Visible(), Contents());
    close(other);
    CNewFileSet::Restore(m_folder.WideFile("a.shp"));
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "old"}}));
}

TEST_F(NewFileSet, TheNextSaveIntoTheFolderPutsOtherSetsBack) {
    fs::create_directory(m_folder.Path() / ".zelto-old-b.shp");
    Write({{".zelto-old-b.shp/.zelto-set", "b.shp\nb.cpg\n"},
           {".zelto-old-b.shp/b.shp", "old"},
           {"b.cpg", "half of the new ones"}});
    EXPECT_TRUE(Replace({{"a.shp", "new"}}));
    EXPECT_EQ(m_folder.Names(), (Names{"a.shp", "b.shp"}));
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "new"}, {"b.shp", "old"}}));
}

TEST_F(NewFileSet, ANameWithoutAFolderIsInTheWorkingOne) {
    const fs::path former = fs::current_path();
    fs::current_path(m_folder.Path());
    {
        CNewFileSet set(L"a.shp");
        EXPECT_TRUE(Fill(set, {{"a.shp", "new"}, {"a.dbf", "new"}}));
        EXPECT_TRUE(set.Commit());
    }
    fs::current_path(former);
    EXPECT_EQ(Visible(), (Contents{{"a.dbf", "new"}, {"a.shp", "new"}}));
}

TEST_F(NewFileSet, ALongNameHasItsBackupToo) {
    const std::string name = std::string(240, 'n') + ".shp";
    const auto replace = [&](const std::string& text) {
        CNewFileSet set(m_folder.WideFile(name));
        return set.IsOpen() && Fill(set, {{name, text}, {"n.dbf", text}}) && set.Commit();
    };
    EXPECT_TRUE(replace("old"));
    EXPECT_TRUE(replace("new"));
    EXPECT_EQ(m_folder.Names(), (Names{"n.dbf", name}));
    EXPECT_EQ(Visible(), (Contents{{"n.dbf", "new"}, {name, "new"}}));
}

TEST_F(NewFileSet, ASingleFileThatReplacesASetLeavesNoneOfIt) {
    Write(OLD);
    EXPECT_TRUE(Replace({{"a.shp", "new"}}, OLD_FILES));
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "new"}}));
    EXPECT_TRUE(Replace({{"a.shp", "newer"}}, OLD_FILES)); // there are none by now
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "newer"}}));
}

TEST_F(NewFileSet, AFileWithAnotherNameKeepsItsPermissions) {
    Write({{"a.shp", "old"}, {"mine.shp", "mine"}});
    chmod(m_folder.File("a.shp").c_str(), 0600);
    chmod(m_folder.File("mine.shp").c_str(), 0640);
    CNewFileSet set(m_folder.WideFile("a.shp"));
    fs::create_hard_link(m_folder.File("mine.shp"), CommonFun::U2M(set.GetTemporaryPath()));
    EXPECT_TRUE(set.Commit());
    struct stat status {};
    stat(m_folder.File("a.shp").c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "mine"}, {"mine.shp", "mine"}}));
}

TEST_F(NewFileSet, WhatIsNoFileIsNotReplacedNorAnythingWithoutAName) {
    zelto::test::MakePipe(m_folder.File("pipe"));
    CNewFileSet pipe(m_folder.WideFile("pipe"));
    EXPECT_FALSE(pipe.IsOpen());
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), m_folder.File("pipe") + ": Invalid argument");
    EXPECT_FALSE(pipe.Commit());
    CNewFileSet::Restore(m_folder.WideFile(""));
    EXPECT_EQ(m_folder.Names(), Names{"pipe"});
}

TEST_F(NewFileSet, AbandonedSetsLeaveNothingAndTakeNoPlaceAnyMore) {
    Write({{"a.shp", "old"}});
    EXPECT_EXIT(AbandonAndTryToGoOn(m_folder.WideFile("a.shp")), testing::ExitedWithCode(0), "");
    EXPECT_EQ(m_folder.Names(), Names{"a.shp"});
    EXPECT_EQ(Visible(), (Contents{{"a.shp", "old"}}));
}

} // namespace
