// Commands on files that were intact until some of their bytes were changed, cut off or doubled:
// each is done, or told in one line, with little memory and in little time.
//
// ctest takes a hundred such files, ./dev faults two thousand. The
// seed is printed; ZELTO_FAULTS_SEED repeats it.

#include "zelto/datasource/GISDataSource.h"

#include "tests/faults/DamagedCommands.h"
#include "tests/faults/ProgramRun.h"
#include "tests/faults/Tally.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>

namespace {

using namespace zelto::test;
namespace fs = std::filesystem;

constexpr std::uintmax_t LARGEST_FILE = 300'000;
constexpr double LONGEST_SECONDS = 20.0;
constexpr long MOST_MEMORY = 1L << 20; // KiB

unsigned int Seed() {
    const char* const given = std::getenv("ZELTO_FAULTS_SEED");
    return given != nullptr ? static_cast<unsigned int>(std::strtoul(given, nullptr, 10))
                            : std::random_device()();
}

/// Intact files of the test data, small enough to be copied by the thousand.
std::vector<fs::path> IntactFiles(const std::string& kind) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(TestDataFile(kind))) {
        const std::string folder = entry.path().parent_path().filename();
        if (entry.is_regular_file() && folder != "corrupt" && folder != "readonly" &&
            entry.file_size() > 0 && entry.file_size() <= LARGEST_FILE)
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

class Mutations : public testing::TestWithParam<const char*> {
  protected:
    Mutations() : m_seed(Seed()), m_random(m_seed) { CGISDataSource::RegisterGDAL(); }
    ~Mutations() override { CGISDataSource::DestroyGDAL(); }

    std::size_t Below(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random);
    }

    /// Bytes that somebody or something has damaged.
    std::string Damaged(std::string bytes) {
        const std::size_t at = Below(bytes.size());
        const std::size_t length = 1 + Below(std::min<std::size_t>(64, bytes.size() - at));
        switch (Below(6)) {
        case 0:
            return bytes.substr(0, at);
        case 1:
            return bytes.replace(at, length, length, '\xff');
        case 2:
            return bytes.replace(at, length, length, '\0');
        case 3:
            return bytes.insert(at, bytes.substr(at, length));
        case 4:
            return bytes.erase(at, length);
        default:
            for (std::size_t i = 0; i < length; ++i)
                bytes[Below(bytes.size())] = static_cast<char>(Below(256));
            return bytes;
        }
    }

    /// Copies a file with those that go by its stem, and damages one of them; in half of all cases
    /// near its beginning, where headers are.
    fs::path MakeDamaged(const fs::path& original) {
        for (const auto& entry : fs::directory_iterator(m_folder.Path()))
            fs::remove_all(entry.path());
        std::vector<fs::path> copies;
        for (const auto& entry : fs::directory_iterator(original.parent_path()))
            if (entry.is_regular_file() && entry.path().stem() == original.stem() &&
                entry.file_size() <= LARGEST_FILE)
                copies.push_back(m_folder.Path() / entry.path().filename());
        for (const fs::path& copy : copies) {
            fs::copy_file(original.parent_path() / copy.filename(), copy);
            fs::permissions(copy, fs::perms::owner_write, fs::perm_options::add);
        }
        std::sort(copies.begin(), copies.end());
        const fs::path damaged = copies[Below(copies.size())];
        std::string bytes = ReadFile(damaged);
        if (bytes.empty())
            return m_folder.Path() / original.filename();
        constexpr std::size_t HEADER = 512;
        const std::size_t part = Below(2) == 0 ? bytes.size() : std::min(HEADER, bytes.size());
        WriteFile(damaged, Damaged(bytes.substr(0, part)) + bytes.substr(part));
        return m_folder.Path() / original.filename();
    }

    std::vector<std::string> LineFor(const std::vector<std::string>& command,
                                     const fs::path& file) const {
        std::vector<std::string> words;
        for (const std::string& word : command) {
            if (word.rfind("FILE", 0) == 0)
                words.push_back(file.string() + word.substr(4));
            else if (word.rfind("OUT", 0) == 0)
                words.push_back(m_made.File(word));
            else
                words.push_back(word == "SCENE" ? SampleScene() : word);
        }
        return words;
    }

    void Check(const std::vector<std::string>& line) {
        const ProgramEnd end = ProgramRun(line).Run();
        SCOPED_TRACE(testing::PrintToString(line) + " printed\n" + end.errors);
        EXPECT_TRUE(end.exitStatus == 0 || end.exitStatus == 1)
            << end.exitStatus << ", signal " << end.endSignal;
        std::istringstream lines(end.errors);
        int count = 0;
        for (std::string text; std::getline(lines, text); ++count)
            EXPECT_EQ(text.rfind("zelto: ", 0), 0U) << text;
        EXPECT_TRUE(end.exitStatus == 0 || count == 1);
        EXPECT_LT(end.work, LONGEST_SECONDS); // whatever else the machine does
        EXPECT_LT(end.mostMemory, MOST_MEMORY) << "KiB";
        Count("commands on damaged files");
    }

    /// Copies what broke something to a folder of its own in ZELTO_FAULTS_FINDINGS.
    void KeepFinding(int number) {
        const char* const findings = std::getenv("ZELTO_FAULTS_FINDINGS");
        const int failures =
            testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
        if (findings != nullptr && failures > m_failures)
            fs::copy(m_folder.Path(),
                     fs::path(findings) / (std::to_string(m_seed) + '-' + std::to_string(number)),
                     fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        m_failures = failures;
    }

    const unsigned int m_seed;
    int m_failures = 0;
    std::mt19937 m_random;
    const TemporaryFolder m_folder;
    const TemporaryFolder m_made;
};

} // namespace

TEST_P(Mutations, AreDoneOrToldInOneLine) {
    ZELTO_REQUIRE_TEST_DATA();
    SCOPED_TRACE("seed " + std::to_string(m_seed));
    const std::vector<fs::path> files = IntactFiles(GetParam());
    const auto& commands =
        GetParam() == std::string("raster") ? RasterCommands() : VectorCommands();
    const int count = IsLongRun() ? 1000 : 50;
    const int commandsEach = IsLongRun() ? 4 : 1;
    for (int i = 0; i < count; ++i) {
        SCOPED_TRACE("file " + std::to_string(i));
        const fs::path& original = files[Below(files.size())];
        const fs::path file = MakeDamaged(original);
        Count("damaged files");
        // A command may have moved or removed it.
        for (int k = 0; k < commandsEach && fs::exists(file); ++k) {
            const auto& command = commands[Below(commands.size())];
            Check(LineFor(command, file));
            KeepFinding(i);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(TestData, Mutations, testing::Values("raster", "vector"));
