#include "zelto/classify/ClassifiedAssistantFile.h"

#include "tests/classify/AssistantBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::AssistantClass;
using zelto::test::AssistantEntry;
using zelto::test::AssistantHeader;
using zelto::test::Bytes;
using zelto::test::WholeAssistantFile;

namespace {

class AssistantFileWrite : public ::testing::Test {
  protected:
    std::string Written() {
        EXPECT_TRUE(m_file.WriteClssifiedAssistantFile(m_folder.WideFile("out.acf")));
        return zelto::test::ReadFile(m_folder.File("out.acf"));
    }
    void Read(const Bytes& bytes) {
        zelto::test::WriteFile(m_folder.File("in.acf"), bytes.Str());
        ASSERT_TRUE(m_file.ReadClassifiedAssistantFile(m_folder.WideFile("in.acf")));
    }

    zelto::test::TemporaryFolder m_folder;
    CClassifiedAssistantFile m_file;
};

} // namespace

TEST_F(AssistantFileWrite, ANewObjectGivesItsHeaderAlone) {
    EXPECT_EQ(Written(), AssistantHeader(0).Str());
    EXPECT_EQ(Written().size(), 1080U);
}

TEST_F(AssistantFileWrite, RoundTripsByteForByte) {
    Read(WholeAssistantFile());
    EXPECT_EQ(Written(), WholeAssistantFile().Str());
}

TEST_F(AssistantFileWrite, CarriesBytesWithoutAMeaning) {
    Bytes bytes = Bytes().Text("ZELTO_ClassAssistFileTag", 50).Fill(206, '\x11').Fill(824, '\x22');
    bytes.IntAt(256, 101).IntAt(288, 1).IntAt(1072, 0).IntAt(1076, 77);
    bytes += Bytes().Text("ab", 6).Fill(250, '\x33').Int(-5).Fill(12, '\x44');
    Read(bytes);
    EXPECT_EQ(m_file.GetClasses()[0].GetName(), L"ab");
    EXPECT_EQ(Written(), bytes.Str());
}

TEST_F(AssistantFileWrite, WritesWhatTheHostSet) {
    CClassifiedAssistantFile::ClassRecord record;
    record.SetName(L"town");
    record.m_value = 8;
    record.m_color = {1, 2, 3, 0x5A};
    record.m_further = 0x0123456789ABCDEFU;
    m_file.AddClass(record);
    m_file.SetEntries({{1.0, 2.0, 3, 4}});
    Bytes expected = AssistantHeader(1, 102, 1, 1);
    expected += AssistantClass("town", 8, 1, 2, 3);
    expected += AssistantEntry(1.0, 2.0, 3, 4);
    EXPECT_EQ(Written(), expected.Str());
}

TEST_F(AssistantFileWrite, CountsFollowTheLists) {
    m_file.SetClasses(std::vector<CClassifiedAssistantFile::ClassRecord>(3));
    EXPECT_EQ(m_file.GetClassCount(), 3);
    m_file.SetEntries({{}, {}});
    EXPECT_EQ(m_file.GetEntryTableFlag(), 1);
    EXPECT_EQ(m_file.GetEntryCount(), 2);
    EXPECT_EQ(Written().size(), 1080U + 3 * 272 + 2 * 24);
    m_file.SetEntries({});
    EXPECT_EQ(m_file.GetEntryTableFlag(), 0);
    EXPECT_EQ(m_file.GetEntryCount(), 0);
}

TEST_F(AssistantFileWrite, AFlagOfZeroKeepsTheEntriesOut) {
    m_file.SetEntries({{}, {}});
    m_file.SetEntryTableFlag(0);
    EXPECT_EQ(Written().size(), 1080U);
}

TEST_F(AssistantFileWrite, WritesAMatrixFromVersion101On) {
    CClassifiedAssistantFile::TextMatrix matrix = {{L"x"}};
    m_file.SetChangedMatrix(matrix);
    m_file.SetVersion(100);
    EXPECT_EQ(Written().size(), 1080U);
    m_file.SetVersion(101);
    Bytes expected = AssistantHeader(0, 101);
    EXPECT_EQ(Written(), expected.Int(1).Int(1).Text("x", 256).Str());
}

TEST_F(AssistantFileWrite, GivesEveryRowTheFirstRowsColumns) {
    CClassifiedAssistantFile::TextMatrix matrix = {{L"a", L"b"}, {L"c"}, {L"d", L"e", L"f"}};
    m_file.SetChangedMatrix(matrix);
    Bytes expected = AssistantHeader(0);
    expected.Int(3).Int(2);
    for (const char* text : {"a", "b", "c", "", "d", "e"})
        expected.Text(text, 256);
    EXPECT_EQ(Written(), expected.Str());
}

TEST_F(AssistantFileWrite, WritesRowsWithoutColumnsAsTheirNumbersAlone) {
    CClassifiedAssistantFile::TextMatrix matrix = {{}, {L"lost"}};
    m_file.SetChangedMatrix(matrix);
    Bytes expected = AssistantHeader(0);
    EXPECT_EQ(Written(), expected.Int(2).Int(0).Str());
}

TEST_F(AssistantFileWrite, CutsTextsAfter127Units) {
    CClassifiedAssistantFile::TextMatrix matrix = {
        {std::wstring(127, L'x'), std::wstring(128, L'y'), std::wstring(1000, L'z')}};
    m_file.SetChangedMatrix(matrix);
    Bytes expected = AssistantHeader(0);
    expected.Int(1).Int(3);
    for (const char letter : {'x', 'y', 'z'})
        expected.Text(std::string(127, letter), 256);
    EXPECT_EQ(Written(), expected.Str());
}

TEST_F(AssistantFileWrite, AnObjectWithAnotherTagWritesNothing) {
    zelto::test::WriteFile(m_folder.File("out.acf"), "old");
    m_file.SetTag(L"ZELTO_CLASSASSISTFILETAG");
    EXPECT_FALSE(m_file.WriteClssifiedAssistantFile(m_folder.WideFile("out.acf")));
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("out.acf")), "old");
    EXPECT_FALSE(m_file.WriteClssifiedAssistantFile(m_folder.WideFile("new.acf")));
    EXPECT_EQ(m_folder.Names(), std::vector<std::string>{"out.acf"});
}

TEST_F(AssistantFileWrite, FailsForPathsThatCannotBeWritten) {
    EXPECT_FALSE(m_file.WriteClssifiedAssistantFile(L""));
    EXPECT_FALSE(m_file.WriteClssifiedAssistantFile(m_folder.WideFile("no/such/folder.acf")));
    std::filesystem::create_directory(m_folder.Path() / "folder.acf");
    EXPECT_FALSE(m_file.WriteClssifiedAssistantFile(m_folder.WideFile("folder.acf")));
    EXPECT_TRUE(std::filesystem::is_directory(m_folder.Path() / "folder.acf"));
    EXPECT_EQ(m_folder.Names(), std::vector<std::string>{"folder.acf"});
}

TEST_F(AssistantFileWrite, CopiesAreIndependent) {
    Read(WholeAssistantFile());
    CClassifiedAssistantFile copy(m_file);
    CClassifiedAssistantFile assigned;
    assigned = m_file;
    m_file.SetClasses({});
    EXPECT_EQ(copy.GetClassCount(), 2);
    EXPECT_EQ(assigned.GetClasses()[1].GetName(), L"forest");
    EXPECT_EQ(assigned.GetChangedMatrix()[1][1], L"d e");
    EXPECT_EQ(copy.GetEntries().size(), 3U);
}
