#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/datasource/GISDataSource.h"

#include "tests/classify/AssistantBytes.h"
#include "tests/support/NamedPipe.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>

using zelto::test::AssistantClass;
using zelto::test::AssistantEntry;
using zelto::test::AssistantHeader;
using zelto::test::Bytes;
using zelto::test::WholeAssistantFile;

namespace {

class AssistantFileRead : public ::testing::Test {
  protected:
    bool Read(const Bytes& bytes) {
        zelto::test::WriteFile(m_folder.File("image.acf"), bytes.Str());
        return m_file.ReadClassifiedAssistantFile(m_folder.WideFile("image.acf"));
    }

    zelto::test::TemporaryFolder m_folder;
    CClassifiedAssistantFile m_file;
};

} // namespace

TEST_F(AssistantFileRead, GivesClassesEntriesAndMatrix) {
    ASSERT_TRUE(Read(WholeAssistantFile()));
    EXPECT_EQ(m_file.GetVersion(), 102);
    EXPECT_EQ(m_file.GetClassCount(), 2);
    EXPECT_EQ(m_file.GetEntryTableFlag(), 1);
    EXPECT_EQ(m_file.GetEntryCount(), 3);
    ASSERT_EQ(m_file.GetClasses().size(), 2U);
    const auto& water = m_file.GetClasses()[0];
    EXPECT_EQ(water.GetName(), L"water");
    EXPECT_EQ(water.m_value, 3);
    EXPECT_EQ(water.m_color.red, 10);
    EXPECT_EQ(water.m_color.green, 20);
    EXPECT_EQ(water.m_color.blue, 30);
    EXPECT_EQ(water.m_color.alpha, 0x5A);
    EXPECT_EQ(water.m_further, 0x0123456789ABCDEFU);
    EXPECT_EQ(m_file.GetClasses()[1].GetName(), L"forest");
    ASSERT_EQ(m_file.GetEntries().size(), 3U);
    EXPECT_EQ(m_file.GetEntries()[0].m_first, 1.5);
    EXPECT_EQ(m_file.GetEntries()[0].m_second, -2.5);
    EXPECT_EQ(m_file.GetEntries()[0].m_third, 7);
    EXPECT_EQ(m_file.GetEntries()[0].m_fourth, -8);
    const CClassifiedAssistantFile::TextMatrix matrix = {{L"a", L"bc"}, {L"", L"d e"}};
    EXPECT_EQ(m_file.GetChangedMatrix(), matrix);
}

TEST_F(AssistantFileRead, FailsForMissingFilesFoldersAndEmptyPaths) {
    EXPECT_FALSE(m_file.ReadClassifiedAssistantFile(m_folder.WideFile("none.acf")));
    EXPECT_FALSE(m_file.ReadClassifiedAssistantFile(m_folder.WideFile("")));
    EXPECT_FALSE(m_file.ReadClassifiedAssistantFile(L""));
}

TEST_F(AssistantFileRead, FailsForAnotherTagAndLeavesTheContent) {
    ASSERT_TRUE(Read(WholeAssistantFile()));
    Bytes other = Bytes().Text("ZELTO_classAssistFileTag", 256).Fill(1080 - 256);
    other.IntAt(288, 1) += AssistantClass("x", 9, 0, 0, 0);
    EXPECT_FALSE(Read(other));
    EXPECT_EQ(m_file.GetClasses().size(), 2U);
    EXPECT_EQ(m_file.GetTag(), L"ZELTO_ClassAssistFileTag");
    EXPECT_FALSE(Read(Bytes().Text("ZELTO_ClassAssistFileTagX", 1080)));
    EXPECT_FALSE(Read(Bytes().Text("ZELTO_ClassAssistFileTa", 1080)));
}

TEST_F(AssistantFileRead, IgnoresWhatFollowsTheTagsTerminator) {
    Bytes bytes = Bytes().Text("ZELTO_ClassAssistFileTag", 50).Fill(206, '\x7F').Fill(824);
    EXPECT_TRUE(Read(bytes));
}

TEST_F(AssistantFileRead, ReplacesTheListsOfAUsedObject) {
    ASSERT_TRUE(Read(WholeAssistantFile()));
    Bytes bytes = AssistantHeader(1);
    ASSERT_TRUE(Read(bytes += AssistantClass("only", 5, 1, 2, 3)));
    ASSERT_EQ(m_file.GetClasses().size(), 1U);
    EXPECT_EQ(m_file.GetClasses()[0].GetName(), L"only");
    EXPECT_TRUE(m_file.GetEntries().empty());
    EXPECT_TRUE(m_file.GetChangedMatrix().empty());
}

TEST_F(AssistantFileRead, LooksForNoMatrixInVersion100) {
    Bytes bytes = AssistantHeader(0, 100);
    ASSERT_TRUE(Read(bytes.Int(1).Int(1).Text("x", 256)));
    EXPECT_TRUE(m_file.GetChangedMatrix().empty());
}

TEST_F(AssistantFileRead, FindsTheMatrixFromVersion101On) {
    Bytes bytes = AssistantHeader(0, 101);
    ASSERT_TRUE(Read(bytes.Int(1).Int(1).Text("x", 256)));
    EXPECT_EQ(m_file.GetChangedMatrix(), (CClassifiedAssistantFile::TextMatrix{{L"x"}}));
}

TEST_F(AssistantFileRead, TakesEntriesOnlyWithFlagAndPositiveCount) {
    Bytes noFlag = AssistantHeader(0, 100, 0, 1);
    ASSERT_TRUE(Read(noFlag += AssistantEntry(1, 2, 3, 4)));
    EXPECT_TRUE(m_file.GetEntries().empty());
    EXPECT_EQ(m_file.GetEntryCount(), 1); // carried, meaningless without the flag
    Bytes negative = AssistantHeader(0, 100, 1, -1);
    ASSERT_TRUE(Read(negative += AssistantEntry(1, 2, 3, 4)));
    EXPECT_TRUE(m_file.GetEntries().empty());
    Bytes anyFlag = AssistantHeader(0, 100, -7, 1);
    ASSERT_TRUE(Read(anyFlag += AssistantEntry(1, 2, 3, 4)));
    EXPECT_EQ(m_file.GetEntries().size(), 1U);
}

TEST_F(AssistantFileRead, FewerThanEightBytesAfterTheEntriesAreNoMatrix) {
    for (std::size_t extra = 0; extra < 8; ++extra) {
        Bytes bytes = AssistantHeader(0);
        ASSERT_TRUE(Read(bytes.Fill(extra, '\1'))) << extra;
        EXPECT_TRUE(m_file.GetChangedMatrix().empty());
    }
}

TEST_F(AssistantFileRead, GivesTheWholeRecordsOfAFileCutAnywhere) {
    const std::string whole = WholeAssistantFile().Str();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(length);
        Bytes cut;
        zelto::test::WriteFile(m_folder.File("cut.acf"), whole.substr(0, length));
        CClassifiedAssistantFile file;
        const bool read = file.ReadClassifiedAssistantFile(m_folder.WideFile("cut.acf"));
        ASSERT_EQ(read, length >= 1080);
        const std::size_t body = length < 1080 ? 0 : length - 1080;
        const std::size_t classes = std::min<std::size_t>(body / 272, 2);
        const std::size_t entries = body < 544 ? 0 : std::min<std::size_t>((body - 544) / 24, 3);
        const std::size_t texts = body < 624 ? 0 : (body - 624) / 256;
        ASSERT_EQ(file.GetClasses().size(), classes);
        ASSERT_EQ(file.GetEntries().size(), entries);
        std::size_t held = 0;
        for (const auto& row : file.GetChangedMatrix())
            held += row.size();
        ASSERT_EQ(held, texts);
        ASSERT_EQ(file.GetClassCount(), static_cast<int>(classes));
    }
}

TEST_F(AssistantFileRead, NegativeCountsGiveNothing) {
    constexpr int least = std::numeric_limits<int>::min();
    Bytes bytes = AssistantHeader(least, 102, 1, least);
    ASSERT_TRUE(Read(bytes.Int(-1).Int(-1).Fill(600)));
    EXPECT_TRUE(m_file.GetClasses().empty());
    EXPECT_TRUE(m_file.GetEntries().empty());
    EXPECT_TRUE(m_file.GetChangedMatrix().empty());
}

TEST_F(AssistantFileRead, EnormousCountsGiveWhatTheFileHolds) {
    constexpr int most = std::numeric_limits<int>::max();
    Bytes classes = AssistantHeader(most, 102, 1, most);
    classes += AssistantClass("one", 1, 0, 0, 0);
    ASSERT_TRUE(Read(classes.Fill(100)));
    EXPECT_EQ(m_file.GetClasses().size(), 1U);
    EXPECT_TRUE(m_file.GetEntries().empty());
    Bytes entries = AssistantHeader(0, 102, 1, most);
    ASSERT_TRUE(Read(entries += AssistantEntry(1, 2, 3, 4)));
    EXPECT_EQ(m_file.GetEntries().size(), 1U);
    EXPECT_EQ(m_file.GetEntryCount(), 1);
    Bytes matrix = AssistantHeader(0);
    ASSERT_TRUE(Read(matrix.Int(most).Int(most).Text("x", 256).Fill(3)));
    EXPECT_EQ(m_file.GetChangedMatrix(), (CClassifiedAssistantFile::TextMatrix{{L"x"}}));
    Bytes noColumns = AssistantHeader(0);
    ASSERT_TRUE(Read(noColumns.Int(most).Int(0)));
    EXPECT_TRUE(m_file.GetChangedMatrix().empty());
}

TEST_F(AssistantFileRead, RowsWithoutColumnsComeBack) {
    for (const int rows : {1, 3, 1 << 20}) {
        Bytes bytes = AssistantHeader(0);
        ASSERT_TRUE(Read(bytes.Int(rows).Int(0)));
        EXPECT_EQ(m_file.GetChangedMatrix(),
                  CClassifiedAssistantFile::TextMatrix(static_cast<std::size_t>(rows)));
    }
    CClassifiedAssistantFile written;
    CClassifiedAssistantFile::TextMatrix matrix(2);
    written.SetChangedMatrix(matrix);
    ASSERT_TRUE(written.WriteClssifiedAssistantFile(m_folder.WideFile("rows.acf")));
    ASSERT_TRUE(m_file.ReadClassifiedAssistantFile(m_folder.WideFile("rows.acf")));
    EXPECT_EQ(m_file.GetChangedMatrix(), matrix);
}

TEST_F(AssistantFileRead, NumbersOfRowsAndColumnsBelowZeroAreNoMatrix) {
    const int least = std::numeric_limits<int>::min();
    for (const auto& [rows, columns] :
         {std::pair(-1, 0), std::pair(least, 3), std::pair(3, -1), std::pair(-1, -1)}) {
        Bytes bytes = AssistantHeader(0);
        ASSERT_TRUE(Read(bytes.Int(rows).Int(columns).Text("x", 256)));
        EXPECT_TRUE(m_file.GetChangedMatrix().empty()) << rows << " " << columns;
    }
}

TEST_F(AssistantFileRead, APipeIsNotOpenedAndTheReasonIsTold) {
    const zelto::test::EndsSoon endsSoon;
    zelto::test::MakePipe(m_folder.File("pipe.acf"));
    EXPECT_FALSE(m_file.ReadClassifiedAssistantFile(m_folder.WideFile("pipe.acf")));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_folder.File("pipe.acf") + ": not a regular file");
    EXPECT_FALSE(m_file.ReadClassifiedAssistantFile(m_folder.WideFile("none.acf")));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_folder.File("none.acf") + ": No such file or directory");
}

TEST_F(AssistantFileRead, ReadsAPathWithChineseLetters) {
    zelto::test::WriteFile(m_folder.File("分类.acf"), WholeAssistantFile().Str());
    EXPECT_TRUE(m_file.ReadClassifiedAssistantFile(m_folder.WideFile("分类.acf")));
}
