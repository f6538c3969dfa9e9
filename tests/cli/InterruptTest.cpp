// Commands that are stopped in the middle: how soon, with which status, and what is left.

#include "tests/cli/RunZelto.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using zelto::test::ReadFile;
using zelto::test::RunResult;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;

namespace {

using Arguments = std::vector<std::string>;

/// The longest a command may go on after a signal: a second, and what a busy machine takes to
/// notice.
constexpr milliseconds LONGEST_STOP(2500);

/// An image that keeps every command busy: noise, which no driver compresses, in one part, and
/// nothing in the rest.
void MakeLargeImage(const std::string& path) {
    constexpr int SIZE = 12000;
    constexpr int NOISY_ROWS = 600;
    GDALAllRegister();
    const char* const options[] = {"SPARSE_OK=TRUE", nullptr};
    const GDALDatasetUniquePtr image(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        path.c_str(), SIZE, SIZE, 3, GDT_Byte, const_cast<char**>(options)));
    ASSERT_NE(image, nullptr);
    double place[6] = {500000, 1, 0, 4000000, 0, -1};
    image->SetGeoTransform(place);
    std::vector<unsigned char> row(SIZE);
    std::uint32_t noise = 1;
    for (int band = 1; band <= 3; ++band)
        for (int y = 0; y < NOISY_ROWS; ++y) {
            for (unsigned char& value : row) {
                noise = noise * 1664525U + 1013904223U;
                value = static_cast<unsigned char>(noise >> 24U);
            }
            ASSERT_EQ(image->GetRasterBand(band)->RasterIO(GF_Write, 0, y, SIZE, 1, row.data(),
                                                           SIZE, 1, GDT_Byte, 0, 0, nullptr),
                      CE_None);
        }
}

/// Names and contents of a folder's files; of folders the names.
std::map<std::string, std::string> Contents(const TemporaryFolder& folder) {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        contents[entry.path().filename().string()] =
            entry.is_regular_file() ? ReadFile(entry.path().string()) : "";
    return contents;
}

struct Stopped {
    RunResult run;
    milliseconds after; ///< from the signal to the end
};

/// Runs a command and sends it a signal a while after it has begun to run.
Stopped StopAfter(milliseconds while_, const Arguments& arguments, int signalNumber = SIGINT,
                  const zelto::test::RunFiles& files = {}) {
    Stopped stopped;
    steady_clock::time_point sent;
    const auto send = [&](pid_t process) {
        zelto::test::WaitUntilItListens(process);
        std::this_thread::sleep_for(while_);
        sent = steady_clock::now();
        kill(process, signalNumber);
    };
    stopped.run = RunZelto(arguments, "", send, files);
    stopped.after = std::chrono::duration_cast<milliseconds>(steady_clock::now() - sent);
    return stopped;
}

/// A pipe whose writer says nothing.
class SilentPipe {
  public:
    SilentPipe() {
        EXPECT_EQ(mkfifo(Path().c_str(), 0600), 0);
        m_writer = open(Path().c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_GE(m_writer, 0);
    }
    ~SilentPipe() { close(m_writer); }
    SilentPipe(const SilentPipe&) = delete;
    SilentPipe& operator=(const SilentPipe&) = delete;

    std::string Path() const { return m_folder.File("pipe"); }

  private:
    TemporaryFolder m_folder;
    int m_writer = -1;
};

const Arguments READS_INPUT = {"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:3857"};

/// A folder with what the commands work on.
class InterruptedCommand : public testing::TestWithParam<Arguments> {
  public:
    static void SetUpTestSuite() {
        s_origin = std::make_unique<TemporaryFolder>();
        MakeLargeImage(s_origin->File("large.tif"));
        zelto::test::WriteFile(
            s_origin->File("area.geojson"),
            R"({"type":"Polygon","coordinates":[[[500000,3988000],[512000,3988000],)"
            R"([512000,4000000],[500000,4000000],[500000,3988000]]]})");
    }
    static void TearDownTestSuite() { s_origin.reset(); }

  protected:
    /// The command's words with "<" before names of what is there and ">" before new ones.
    Arguments WithPaths() const {
        Arguments arguments;
        for (const std::string& word : GetParam())
            arguments.push_back(word.front() == '<'   ? s_origin->File(word.substr(1))
                                : word.front() == '>' ? m_folder.File(word.substr(1))
                                                      : word);
        return arguments;
    }

    static std::unique_ptr<TemporaryFolder> s_origin;
    TemporaryFolder m_folder;
};

std::unique_ptr<TemporaryFolder> InterruptedCommand::s_origin;

std::string FirstWords(const testing::TestParamInfo<Arguments>& info) {
    std::string name = std::to_string(info.index);
    for (const char c : info.param[0] + info.param[1])
        if (std::isalnum(static_cast<unsigned char>(c)) != 0)
            name += c;
    return name;
}

} // namespace

TEST_P(InterruptedCommand, EndsWithinASecondAndLeavesWhatWasThere) {
    Arguments arguments = WithPaths();
    if (GetParam().back().front() == '>') {
        zelto::test::WriteFile(arguments.back(), "old");
        arguments.emplace_back("--overwrite");
    }
    const auto before = Contents(m_folder);
    const auto origin = s_origin->Names();
    for (const int wait : {0, 5, 50, 300}) {
        SCOPED_TRACE(testing::PrintToString(arguments) + " after " + std::to_string(wait));
        const Stopped stopped = StopAfter(milliseconds(wait), arguments);
        if (stopped.run.exitStatus == 0)
            continue; // it was done before
        EXPECT_LT(stopped.after, LONGEST_STOP);
        EXPECT_EQ(Contents(m_folder), before);
        EXPECT_EQ(s_origin->Names(), origin);
        EXPECT_EQ(stopped.run.exitStatus, 130);
        EXPECT_EQ(stopped.run.errors, "zelto: interrupted\n");
        EXPECT_EQ(stopped.run.output, "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    AllCommands, InterruptedCommand,
    testing::Values(Arguments{"info", "--stats", "<large.tif"},
                    Arguments{"stats", "--covariance", "<large.tif"},
                    Arguments{"histogram", "<large.tif"},
                    Arguments{"render", "--size", "12000x12000", "--stretch", "wallis",
                              "<large.tif", ">picture.png"},
                    Arguments{"compose", "--size", "12000x12000", "<large.tif:1", "<large.tif:2",
                              "<large.tif:3", ">picture.tif"},
                    Arguments{"samples", "collect", "--aoi", "<area.geojson", "<large.tif"},
                    Arguments{"polygonize", "--nodata", "<large.tif", ">polygons.gpkg"},
                    Arguments{"polygonize", "--nodata", "<large.tif", ">polygons.geojson"},
                    Arguments{"copy", "<large.tif", ">copy.tif"},
                    Arguments{"create", "--size", "30000x30000", "--fill", "7", ">new.tif"},
                    Arguments{"create", "--size", "12000x12000", "--fill", "7", ">new.img"},
                    Arguments{"aoi", "mask", "<area.geojson", "<large.tif", ">mask.tif"}),
    FirstWords);

TEST(Interrupting, ATerminationRequestIsTreatedAlike) {
    const TemporaryFolder folder;
    const Stopped stopped = StopAfter(
        milliseconds(400), {"create", "--size", "30000x30000", "--fill", "1", folder.File("a.tif")},
        SIGTERM);
    EXPECT_EQ(stopped.run.exitStatus, 130);
    EXPECT_EQ(stopped.run.errors, "zelto: interrupted\n");
    EXPECT_TRUE(folder.Names().empty());
}

TEST(Interrupting, AReadThatNeverComesBackIsLeft) {
    const SilentPipe pipe;
    const Stopped stopped =
        StopAfter(milliseconds(300), READS_INPUT, SIGINT, {.input = pipe.Path()});
    EXPECT_EQ(stopped.run.exitStatus, 130);
    EXPECT_EQ(stopped.run.errors, "zelto: interrupted\n");
    EXPECT_LT(stopped.after, LONGEST_STOP);
}

TEST(Interrupting, ASecondRequestEndsAtOnce) {
    const SilentPipe pipe;
    steady_clock::time_point sent;
    const auto sendTwice = [&](pid_t process) {
        zelto::test::WaitUntilItListens(process);
        std::this_thread::sleep_for(milliseconds(300));
        kill(process, SIGINT);
        std::this_thread::sleep_for(milliseconds(50));
        sent = steady_clock::now();
        kill(process, SIGINT);
    };
    const auto run = RunZelto(READS_INPUT, "", sendTwice, {.input = pipe.Path()});
    const auto after = steady_clock::now() - sent;
    EXPECT_EQ(run.exitStatus, 130);
    EXPECT_EQ(run.errors, "zelto: interrupted\n");
    EXPECT_LT(after, milliseconds(500));
}

TEST(BreakingDown, EndsWithALineAndTheStatusOfAFailure) {
    const SilentPipe pipe;
    for (const int signalNumber : {SIGSEGV, SIGBUS, SIGFPE, SIGABRT}) {
        const auto breakDown = [&](pid_t process) {
            zelto::test::WaitUntilItCatches(process, signalNumber);
            kill(process, signalNumber);
        };
        const auto run = RunZelto(READS_INPUT, "", breakDown, {.input = pipe.Path()});
        EXPECT_EQ(run.exitStatus, 1) << signalNumber;
        EXPECT_EQ(run.errors, "zelto: a library broke down; the file may be damaged\n");
    }
}

TEST(Interrupting, ASignalWhileTheProgramIsBeingLoadedLeavesNothing) {
    const TemporaryFolder folder;
    const auto run =
        RunZelto({"create", "--size", "30000x30000", "--fill", "1", folder.File("a.tif")}, "",
                 [](pid_t process) {
                     std::this_thread::sleep_for(milliseconds(5));
                     kill(process, SIGINT);
                 });
    // The system ends it by the signal itself, which a shell calls 130 as well.
    EXPECT_TRUE(run.endSignal == SIGINT || run.exitStatus == 130);
    EXPECT_TRUE(folder.Names().empty());
}

TEST(Interrupting, ASignalThatTheCallerIgnoresStaysIgnored) {
    const TemporaryFolder folder;
    const auto previous = std::signal(SIGINT, SIG_IGN);
    const auto run =
        RunZelto({"create", "--size", "3000x3000", "--fill", "1", folder.File("a.tif")}, "",
                 [](pid_t process) {
                     for (int i = 0; i < 50; ++i) {
                         kill(process, SIGINT);
                         std::this_thread::sleep_for(milliseconds(5));
                     }
                 });
    std::signal(SIGINT, previous);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
}

namespace {

/// A terminal that somebody looks at.
class Terminal {
  public:
    Terminal() : m_screen(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
        EXPECT_EQ(grantpt(m_screen), 0);
        EXPECT_EQ(unlockpt(m_screen), 0);
        // What is printed stays until it is read.
        m_line = open(Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~Terminal() {
        close(m_line);
        close(m_screen);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    std::string Path() const { return ptsname(m_screen); }
    /// What has been printed since the last time.
    std::string Read() const {
        std::string text(1U << 16U, '\0');
        const ssize_t length = read(m_screen, text.data(), text.size());
        text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return text;
    }

  private:
    int m_screen;
    int m_line = -1;
};

} // namespace

TEST(Progress, IsShownOnATerminalAfterASecond) {
    const TemporaryFolder folder;
    const Terminal terminal;
    const Stopped stopped =
        StopAfter(milliseconds(3000),
                  {"create", "--size", "60000x60000", "--fill", "1", folder.File("a.tif")}, SIGINT,
                  {.errors = terminal.Path()});
    EXPECT_EQ(stopped.run.exitStatus, 130);
    const std::string shown = terminal.Read();
    EXPECT_EQ(shown.rfind("\rfilling [", 0), 0U) << shown;
    EXPECT_NE(shown.find("%\r\nzelto: interrupted\r\n"), std::string::npos) << shown;
}

TEST(Progress, OfShortWorkIsNotShown) {
    const TemporaryFolder folder;
    const Terminal terminal;
    const auto run = RunZelto({"create", "--size", "100x100", "--fill", "1", folder.File("a.tif")},
                              "", {}, {.errors = terminal.Path()});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(terminal.Read(), "");
}
