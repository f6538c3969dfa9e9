#include "zelto/baselib/Log.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <vector>

namespace {

struct Message {
    int level;
    std::wstring file;
    int line;
    std::wstring function;
    std::wstring text;
};

class RecordingLog : public CLog {
  public:
    std::vector<Message> m_messages;

  protected:
    void WriteMessage(int level, const std::wstring& file, int line, const std::wstring& function,
                      const std::wstring& message) override {
        m_messages.push_back({level, file, line, function, message});
    }
};

/// The text that a format and its arguments give.
template <typename... Arguments>
std::wstring Logged(const wchar_t* format, Arguments... arguments) {
    RecordingLog log;
    log.WriteLog(3, L"File", 1, L"Function", format, arguments...);
    return log.m_messages.empty() ? L"(nothing)" : log.m_messages.front().text;
}

/// The lines with every digit of the time at their start replaced.
std::string WithoutDigitsOfTimes(const std::string& text) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line); result += line + '\n')
        for (std::size_t i = 0; i < std::min<std::size_t>(line.size(), 19); ++i)
            if (line[i] >= '0' && line[i] <= '9')
                line[i] = '#';
    return result;
}

} // namespace

TEST(Log, HasNoLoggerAtFirst) {
    EXPECT_EQ(CLog::m_pLogger, nullptr);
}

TEST(Log, HandsEverythingToTheHostsLogger) {
    RecordingLog log;
    CLog::m_pLogger = &log;
    CLog::m_pLogger->WriteLog(4, L"RasterSource", 77, L"CRasterSource::Open", L"%d of %s", 3,
                              L"影像");
    CLog::m_pLogger = nullptr;
    ASSERT_EQ(log.m_messages.size(), 1U);
    EXPECT_EQ(log.m_messages[0].level, 4);
    EXPECT_EQ(log.m_messages[0].file, L"RasterSource");
    EXPECT_EQ(log.m_messages[0].line, 77);
    EXPECT_EQ(log.m_messages[0].function, L"CRasterSource::Open");
    EXPECT_EQ(log.m_messages[0].text, L"3 of 影像");
}

TEST(Log, ADestroyedLoggerIsNoLongerUsed) {
    auto log = std::make_unique<RecordingLog>();
    CLog::m_pLogger = log.get();
    { const RecordingLog other; }
    EXPECT_EQ(CLog::m_pLogger, log.get());
    log.reset();
    EXPECT_EQ(CLog::m_pLogger, nullptr);
}

TEST(LogFormat, StringsAreWide) {
    EXPECT_EQ(Logged(L"%s", L"wide 中"), L"wide 中");
    EXPECT_EQ(Logged(L"%ls|%-6s|%6s|%.2s", L"a", L"b", L"c", L"def"), L"a|b     |     c|de");
    EXPECT_EQ(Logged(L"%*s", 3, L"x"), L"  x");
    EXPECT_EQ(Logged(L"%hs and %s", "narrow \xE4\xB8\xAD", L"wide"), L"narrow 中 and wide");
    EXPECT_EQ(Logged(L"%hs", "not UTF-8 \xFF"), L"%hs");
}

TEST(LogFormat, NumbersAreThoseOfPrintf) {
    EXPECT_EQ(Logged(L"%d %lld %x %5.2f %c%%", -3, 1234567890123LL, 255, 2.5, 'z'),
              L"-3 1234567890123 ff  2.50 z%");
    EXPECT_EQ(Logged(L"%hd", 7), L"7");
}

TEST(LogFormat, LongTextsAreWhole) {
    const std::wstring text(100000, L'中');
    EXPECT_EQ(Logged(L"<%s>", text.c_str()), L"<" + text + L">");
}

TEST(LogFormat, OddFormatsDoNoHarm) {
    EXPECT_EQ(Logged(L""), L"");
    EXPECT_EQ(Logged(static_cast<const wchar_t*>(nullptr)), L"(nothing)");
    EXPECT_EQ(Logged(L"no end %%"), L"no end %");
    EXPECT_EQ(Logged(L"cut %-5"), L"cut %-5");
}

TEST(Log, NullNamesAreEmpty) {
    RecordingLog log;
    log.WriteLog(2, nullptr, 1, nullptr, L"text");
    EXPECT_EQ(log.m_messages.at(0).file, L"");
    EXPECT_EQ(log.m_messages.at(0).function, L"");
}

TEST(FileLog, AppendsOneUtf8LinePerMessage) {
    const zelto::test::TemporaryFolder folder;
    CFileLog log(folder.WideFile("日志.txt"));
    log.WriteLog(3, L"RasterBand", 12, L"CRasterBand::Read", L"影像 %d", 5);
    log.WriteLog(4, L"AOISource", 9, L"f", L"second");
    EXPECT_EQ(WithoutDigitsOfTimes(zelto::test::ReadFile(folder.File("日志.txt"))),
              "####-##-## ##:##:## [3] RasterBand:12 CRasterBand::Read: 影像 5\n"
              "####-##-## ##:##:## [4] AOISource:9 f: second\n");
}

TEST(FileLog, AFileThatCannotBeWrittenLosesTheMessage) {
    const zelto::test::TemporaryFolder folder;
    CFileLog log(folder.WideFile("missing/log.txt"));
    log.WriteLog(3, L"a", 1, L"b", L"c");
    EXPECT_TRUE(folder.Names().empty());
}
