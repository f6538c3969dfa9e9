#include "tests/datasource/PlainDataSource.h"
#include "tests/support/TemporaryFolder.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <gtest/gtest.h>

#include <cctype>
#include <sstream>

using zelto::test::PlainDataSource;
using zelto::test::ReadFile;
using zelto::test::TemporaryFolder;

namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// Expects `text` behind a date and a time.
void ExpectStampedLine(const std::string& line, const std::string& text) {
    const std::string pattern = "dddd-dd-dd dd:dd:dd ";
    ASSERT_GT(line.size(), pattern.size()) << line;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool isDigit = std::isdigit(static_cast<unsigned char>(line[i])) != 0;
        EXPECT_TRUE(pattern[i] == 'd' ? isDigit : line[i] == pattern[i]) << line;
    }
    EXPECT_EQ(line.substr(pattern.size()), text);
}

int g_hostMessages = 0;

void CPL_STDCALL CountForHost(CPLErr /*severity*/, CPLErrorNum /*number*/,
                              const char* /*message*/) {
    ++*static_cast<int*>(CPLGetErrorHandlerUserData());
}

CPLErrorHandler PresentHandler() {
    void* userData = CPLGetErrorHandlerUserData();
    const CPLErrorHandler present = CPLSetErrorHandlerEx(CPLDefaultErrorHandler, nullptr);
    CPLSetErrorHandlerEx(present, userData);
    return present;
}

} // namespace

TEST(GdalLog, ErrorsAndWarningsAreAppendedBehindATimeStamp) {
    const TemporaryFolder folder;
    const std::string log = folder.File("日志.log");
    zelto::test::WriteFile(log, "earlier\n");
    const PlainDataSource source;
    CPLSetConfigOption("CPL_LOG", log.c_str());
    CPLError(CE_Failure, CPLE_OpenFailed, "cannot open %s", "影像.tif");
    CPLError(CE_Warning, CPLE_AppDefined, "odd");
    const std::vector<std::string> lines = Lines(ReadFile(log));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "earlier");
    ExpectStampedLine(lines[1], "ERROR 4: cannot open 影像.tif");
    ExpectStampedLine(lines[2], "Warning 1: odd");
}

TEST(GdalLog, GoesOnAfterATearDown) {
    const TemporaryFolder folder;
    const std::string log = folder.File("gdal.log");
    for (int cycle = 0; cycle < 3; ++cycle) {
        const PlainDataSource source;
        CPLSetConfigOption("CPL_LOG", log.c_str());
        CPLError(CE_Failure, CPLE_AppDefined, "cycle %d", cycle);
    }
    EXPECT_EQ(Lines(ReadFile(log)).size(), 3U);
}

TEST(GdalLog, IsTakenBackWithTheLastSource) {
    ASSERT_EQ(PresentHandler(), CPLDefaultErrorHandler);
    {
        const PlainDataSource source;
        EXPECT_NE(PresentHandler(), CPLDefaultErrorHandler);
    }
    EXPECT_EQ(PresentHandler(), CPLDefaultErrorHandler);
}

TEST(GdalLog, AHandlerOfTheHostStays) {
    g_hostMessages = 0;
    CPLSetErrorHandlerEx(CountForHost, &g_hostMessages);
    {
        const PlainDataSource source;
        CPLError(CE_Failure, CPLE_AppDefined, "for the host");
    }
    CPLError(CE_Failure, CPLE_AppDefined, "for the host again");
    EXPECT_EQ(g_hostMessages, 2);
    CPLSetErrorHandler(CPLDefaultErrorHandler);
}

TEST(GdalLog, AHandlerTheHostInstallsLaterStaysToo) {
    g_hostMessages = 0;
    {
        const PlainDataSource source;
        CPLSetErrorHandlerEx(CountForHost, &g_hostMessages);
    }
    CPLError(CE_Failure, CPLE_AppDefined, "for the host");
    EXPECT_EQ(g_hostMessages, 1);
    CPLSetErrorHandler(CPLDefaultErrorHandler);
}

TEST(GdalLog, AFileThatCannotBeOpenedIsNotWritten) {
    const TemporaryFolder folder;
    const PlainDataSource source;
    CPLSetConfigOption("CPL_LOG", folder.File("missing/gdal.log").c_str());
    CPLError(CE_Failure, CPLE_AppDefined, "lost");
    CPLSetConfigOption("CPL_LOG", nullptr);
    CPLError(CE_Failure, CPLE_AppDefined, "lost as well");
    EXPECT_TRUE(folder.Names().empty());
}

TEST(GdalLog, AFolderOfTheHostsIsMadeWhenTheFirstErrorComes) {
    const TemporaryFolder folder;
    CGISDataSource::SetLogFolder(folder.File("state/program").c_str());
    {
        const PlainDataSource source;
        EXPECT_TRUE(folder.Names().empty());
        CPLError(CE_Failure, CPLE_AppDefined, "for the log");
        EXPECT_NE(ReadFile(folder.File("state/program/gdal.log")).find("for the log"),
                  std::string::npos);
    }
    CGISDataSource::SetLogFolder("");
    {
        const PlainDataSource source;
        EXPECT_STREQ(CPLGetConfigOption("CPL_LOG", nullptr), "");
        CPLError(CE_Failure, CPLE_AppDefined, "for nobody");
    }
    CGISDataSource::SetLogFolder(nullptr);
}

TEST(GdalLog, DebugMessagesAreNamedAsSuch) {
    const TemporaryFolder folder;
    const PlainDataSource source;
    CPLSetConfigOption("CPL_LOG", folder.File("gdal.log").c_str());
    CPLSetConfigOption("CPL_DEBUG", "ON");
    CPLDebug("TEST", "opening");
    CPLSetConfigOption("CPL_DEBUG", nullptr);
    const std::vector<std::string> lines = Lines(ReadFile(folder.File("gdal.log")));
    ASSERT_EQ(lines.size(), 1U);
    // GDAL puts the time of its own before such a message.
    ASSERT_GT(lines[0].size(), 27U);
    EXPECT_EQ(lines[0].substr(20, 7), "Debug: ");
    EXPECT_EQ(lines[0].substr(lines[0].rfind(' ', lines[0].size() - 9)), " TEST: opening");
}

TEST(GdalLog, AFolderOfTheHostsThatCannotBeMadeIsNoReasonToFail) {
    const TemporaryFolder folder;
    zelto::test::WriteFile(folder.File("state"), "a file");
    CGISDataSource::SetLogFolder(folder.File("state/program").c_str());
    {
        const PlainDataSource source;
        CPLError(CE_Failure, CPLE_AppDefined, "lost");
    }
    CGISDataSource::SetLogFolder(nullptr);
    EXPECT_EQ(ReadFile(folder.File("state")), "a file");
}
