// Every way of the command line to write a file, with a failing call or the end of the process at
// every step of it: the old or the new files are whole, success is told of the new ones only, and
// nothing stays that the next save does not remove.
//
// ctest takes a few of the steps, ./dev faults as many as it is told, or all.

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/NewFileSet.h"
#include "zelto/datasource/GISDataSource.h"

#include "tests/faults/Meaning.h"
#include "tests/faults/Operations.h"
#include "tests/faults/ProgramRun.h"
#include "tests/faults/Tally.h"
#include "tests/support/DisturbedProcess.h"
#include "tests/support/SmallDisk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace zelto::test;
using Meanings = std::vector<std::string>;

/// Bytes from which an allocation counts: smaller ones are texts and names.
constexpr std::size_t LARGE = 1024;

/// Steps to take of so many: all, or some from the first to the last.
std::set<int> Steps(int count) {
    const int most = std::max(MostSteps(), 2);
    std::set<int> steps;
    for (int i = 0; i < std::min(count, most); ++i)
        steps.insert(count <= most ? i + 1 : 1 + int(std::int64_t{count - 1} * i / (most - 1)));
    return steps;
}

class FaultedOperation : public testing::TestWithParam<Operation> {
  protected:
    FaultedOperation() {
        CGISDataSource::RegisterGDAL();
        m_program = std::make_unique<ProgramRun>(WordsIn(GetParam(), Folder()));
        Prepare();
        m_before = Results();
        m_pixels = PixelsOfResults();
        const ProgramEnd end = m_program->Run();
        EXPECT_EQ(end.exitStatus, 0) << end.errors;
        m_after = Results();
        EXPECT_NE(m_before, m_after);
        m_seconds = end.seconds;
    }
    ~FaultedOperation() override { CGISDataSource::DestroyGDAL(); }

    std::string Folder() const { return m_folder.Path().string(); }
    void Prepare() const { Originals::Get().Prepare(GetParam(), Folder()); }

    Meanings Results() const {
        Meanings meanings;
        for (const std::string& name : GetParam().results)
            meanings.push_back(MeaningOf(m_folder.File(name)));
        return meanings;
    }
    Meanings PixelsOfResults() const {
        Meanings pixels;
        for (const std::string& name : GetParam().results)
            pixels.push_back(PixelsOf(m_folder.File(name)));
        return pixels;
    }

    /// What must hold after a run that was disturbed.
    void Check(int exitStatus) {
        SaveAnother();
        for (const std::string& name : m_folder.Names())
            EXPECT_NE(name.front(), '.') << name;
        const Meanings now = Results();
        const bool isNew = now == m_after;
        EXPECT_TRUE(isNew || exitStatus != 0) << "success without the new files";
        if (isNew)
            return;
        if (GetParam().change == Operation::Change::InPlace) {
            EXPECT_EQ(PixelsOfResults(), m_pixels);
            return;
        }
        if (GetParam().change == Operation::Change::Each) {
            for (std::size_t i = 0; i < now.size(); ++i)
                EXPECT_TRUE(now[i] == m_before[i] || now[i] == m_after[i]) << now[i];
            return;
        }
        EXPECT_EQ(now, m_before);
        for (const auto& [name, original] : GetParam().inputs)
            EXPECT_EQ(ReadFile(m_folder.File(name)), ReadFile(Originals::Get().File(original)))
                << name;
    }

    /// The next save into the folder, of something else.
    void SaveAnother() const {
        CNewFileSet other(m_folder.WideFile("other.txt"));
        std::ofstream(CommonFun::U2M(other.GetTemporaryPath())) << "new";
        EXPECT_TRUE(other.Commit());
        std::filesystem::remove(m_folder.File("other.txt"));
    }

    /// Leaves so much room on the disk of the folder.
    void FillDisk(int kilobytes) const {
        const std::uintmax_t room = std::filesystem::space(m_folder.Path()).available;
        const std::uintmax_t left = std::uintmax_t(kilobytes) << 10;
        const int file = open(m_folder.File("filling").c_str(), O_WRONLY | O_CREAT, 0600);
        EXPECT_TRUE(room < left || posix_fallocate(file, 0, off_t(room - left)) == 0);
        close(file);
    }

    void RefuseEvery(FailingCall call, const char* name) {
        Fault counting = {.call = call, .smallest = LARGE};
        Prepare();
        m_program->Run(counting);
        for (const int step : Steps(counting.seen)) {
            SCOPED_TRACE(std::string(name) + ' ' + std::to_string(step) + " of " +
                         std::to_string(counting.seen));
            Prepare();
            Fault fault = {.call = call, .number = step, .smallest = LARGE};
            const ProgramEnd end = m_program->Run(fault);
            SCOPED_TRACE(end.errors);
            EXPECT_TRUE(end.exitStatus == 0 || end.exitStatus == 1)
                << end.exitStatus << ", signal " << end.endSignal;
            Check(end.exitStatus);
            Count(name);
        }
    }

    /// @param how before each system call that changes files
    void DisturbEvery(Disturbance how, const char* name) {
        Prepare();
        const auto work = [this] { m_program->Become(); };
        const DisturbedRun whole = Disturb(0, how, work);
        if (whole.ending == DisturbedRun::Ending::CannotWatch)
            GTEST_SKIP() << "this user may not watch processes";
        for (const int step : Steps(whole.calls)) {
            SCOPED_TRACE(std::string(name) + " at call " + std::to_string(step) + " of " +
                         std::to_string(whole.calls));
            Prepare();
            m_program->ForgetErrors();
            const DisturbedRun run = Disturb(step, how, work);
            SCOPED_TRACE(m_program->Errors());
            EXPECT_TRUE(how == Disturbance::Kill || run.exitStatus == 0 || run.exitStatus == 1)
                << run.exitStatus;
            Check(run.exitStatus);
            Count(name);
        }
    }

    const TemporaryFolder m_folder;
    std::unique_ptr<ProgramRun> m_program;
    Meanings m_before;
    Meanings m_after;
    Meanings m_pixels;
    double m_seconds = 0.0; ///< of an undisturbed run
};

/// Some drivers of GDAL answer success where a write in the middle of their file has failed.
#define ZELTO_REQUIRE_HONEST_DRIVER()                                                              \
    if (!GetParam().driverTells)                                                                   \
    GTEST_SKIP() << "GDAL's driver does not tell of every write that fails"

std::string NameOf(const testing::TestParamInfo<Operation>& which) {
    return which.param.name;
}

} // namespace

TEST_P(FaultedOperation, SurvivesCallsThatFail) {
    ZELTO_REQUIRE_HONEST_DRIVER();
    RefuseEvery(FailingCall::Allocation, "allocations");
    RefuseEvery(FailingCall::Write, "writes");
    RefuseEvery(FailingCall::Rename, "renames");
    RefuseEvery(FailingCall::Sync, "syncs");
    RefuseEvery(FailingCall::Close, "closes");
}

TEST_P(FaultedOperation, SurvivesSystemCallsThatFail) {
    ZELTO_REQUIRE_HONEST_DRIVER();
    DisturbEvery(Disturbance::FullDisk, "system calls on a full disk");
    if (IsLongRun())
        DisturbEvery(Disturbance::BrokenDisk, "system calls on a broken disk");
}

TEST_P(FaultedOperation, SurvivesTheEndOfTheProcess) {
    DisturbEvery(Disturbance::Kill, "kills before a system call");
}

TEST_P(FaultedOperation, SurvivesKillsAtRandomMoments) {
    const int kills = IsLongRun() ? 1000 / int(AllOperations().size()) + 1 : 2;
    const unsigned int seed = std::random_device()();
    std::mt19937 random(seed);
    for (int i = 0; i < kills; ++i) {
        Prepare();
        const std::chrono::microseconds after(
            std::uniform_int_distribution<int>(0, int(m_seconds * 1.1e6))(random));
        const ProgramEnd end = m_program->RunAndKill(after);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", after " + std::to_string(after.count()) +
                     " microseconds");
        Check(end.exitStatus);
        Count("kills at random moments");
    }
}

TEST_P(FaultedOperation, SurvivesALimitOfTheSizeOfFiles) {
    for (const rlim_t bytes : {2'000, 10'000, 50'000, 250'000, 280'000}) {
        SCOPED_TRACE(std::to_string(bytes) + " bytes");
        Prepare();
        const ProgramEnd end = m_program->RunUnder([bytes] {
            const rlimit limit = {bytes, bytes};
            setrlimit(RLIMIT_FSIZE, &limit);
        });
        SCOPED_TRACE(end.errors);
        EXPECT_TRUE(end.exitStatus == 0 || end.exitStatus == 1)
            << end.exitStatus << ", signal " << end.endSignal;
        Check(end.exitStatus);
        Count("limits of the size of files");
    }
}

TEST_P(FaultedOperation, SurvivesAFolderThatMayNotBeWritten) {
    constexpr uid_t NOBODY = 65534;
    Prepare();
    std::filesystem::permissions(Folder(), std::filesystem::perms(0555));
    const ProgramEnd end = m_program->RunUnder([] {
        if (geteuid() == 0 && seteuid(NOBODY) != 0)
            _exit(126);
    });
    std::filesystem::permissions(Folder(), std::filesystem::perms(0755));
    EXPECT_EQ(end.exitStatus, 1) << end.errors;
    const std::size_t reasons =
        GetParam().change == Operation::Change::Each ? GetParam().results.size() : 1;
    EXPECT_EQ(std::count(end.errors.begin(), end.errors.end(), '\n'), reasons) << end.errors;
    Check(end.exitStatus);
    Count("folders that may not be written");
}

TEST_P(FaultedOperation, SurvivesAFullDisk) {
    const SmallDisk disk(m_folder.Path());
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount a small file system";
    for (int kilobytes = 0; kilobytes <= 320; kilobytes += IsLongRun() ? 8 : 64) {
        SCOPED_TRACE(std::to_string(kilobytes) + " KiB free");
        Prepare();
        FillDisk(kilobytes);
        const ProgramEnd end = m_program->Run();
        std::filesystem::remove(m_folder.File("filling"));
        SCOPED_TRACE(end.errors);
        EXPECT_TRUE(end.exitStatus == 0 || end.exitStatus == 1)
            << end.exitStatus << ", signal " << end.endSignal;
        Check(end.exitStatus);
        Count("full disks");
    }
}

INSTANTIATE_TEST_SUITE_P(CommandLine, FaultedOperation, testing::ValuesIn(AllOperations()), NameOf);
