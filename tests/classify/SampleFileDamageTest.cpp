#include "zelto/aoi/DrawShape.h"
#include "zelto/classify/ClassifySampleFile.h"

#include "tests/classify/SampleBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>

using zelto::test::Bytes;
using zelto::test::SampleBox;
using zelto::test::SampleClass;
using zelto::test::SampleHeader;
using zelto::test::WholeSampleFile;

namespace {

constexpr int MOST = std::numeric_limits<int>::max();

class SampleFileDamage : public ::testing::Test {
  protected:
    int Read(const std::string& bytes) {
        zelto::test::WriteFile(m_folder.File("samples"), bytes);
        return m_file.ReadClassifySampleFile(m_folder.WideFile("samples"));
    }

    zelto::test::TemporaryFolder m_folder;
    CClassifySampleFile m_file;
};

/// A class record up to the band count.
Bytes ClassStart(int n) {
    return Bytes().Text("x", 256).Int(11).Int(12).Int(13).Int(n);
}

} // namespace

TEST_F(SampleFileDamage, AFileCutAnywhereGivesWhatItHolds) {
    const std::string whole = WholeSampleFile().Str();
    // First class: 272 bytes of fixed fields, two triples, 8 bytes, four numbers, 8 bytes.
    constexpr std::size_t fixed = 312 + 272;
    constexpr std::size_t matrix = fixed + 48 + 8;
    constexpr std::size_t shapes = matrix + 32 + 8;
    constexpr std::size_t second = shapes + 33 + 33 + 69;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(length);
        ASSERT_EQ(Read(whole.substr(0, length)), length >= 312 ? 1 : 0);
        if (length < 312)
            continue;
        const int classes = (length >= fixed) + (length >= second + 272);
        ASSERT_EQ(m_file.GetClassCount(), classes);
        if (classes == 0)
            continue;
        const auto& first = *m_file.GetClass(0);
        const std::size_t triples = std::min<std::size_t>((length - fixed) / 24, 2);
        ASSERT_EQ(first.m_firstArray.size(), triples);
        ASSERT_EQ(first.m_secondArray.size(), triples);
        const std::size_t cells =
            length < matrix ? 0 : std::min<std::size_t>((length - matrix) / 8, 4);
        ASSERT_EQ(first.m_matrix.size(), cells);
        const std::size_t held =
            (length >= shapes + 33) + (length >= shapes + 66) + (length >= second);
        ASSERT_EQ(first.m_sampleShapes.size(), held);
        if (length >= shapes) {
            ASSERT_EQ(first.m_sampleShapeCount, static_cast<int>(held));
        }
    }
}

TEST_F(SampleFileDamage, ANegativeBandCountMeansNoNumbers) {
    for (const int n : {-1, -2, -46341, std::numeric_limits<int>::min()}) {
        SCOPED_TRACE(n);
        Bytes bytes = SampleHeader(2);
        bytes += ClassStart(n).Int(21).Int(22).Int(0).Int(0);
        bytes += SampleClass("next", 1, 0, 0);
        ASSERT_EQ(Read(bytes.Str()), 1);
        EXPECT_EQ(m_file.GetClass(0)->m_bandCount, n);
        EXPECT_TRUE(m_file.GetClass(0)->m_firstArray.empty());
        EXPECT_TRUE(m_file.GetClass(0)->m_matrix.empty());
        EXPECT_EQ(m_file.GetClass(0)->m_moreValues[1], 22);
        EXPECT_EQ(m_file.GetClass(1)->GetName(), L"next");
    }
}

TEST_F(SampleFileDamage, AnEnormousBandCountGivesTheTriplesThatAreThere) {
    Bytes bytes = SampleHeader(1);
    bytes += ClassStart(MOST);
    for (int i = 0; i < 7; ++i)
        bytes.Double(i);
    ASSERT_EQ(Read(bytes.Str()), 1);
    EXPECT_EQ(m_file.GetClass(0)->m_secondArray, (std::vector<double>{0, 3}));
    EXPECT_EQ(m_file.GetClass(0)->m_firstArray, (std::vector<double>{1, 4}));
    EXPECT_TRUE(m_file.GetClass(0)->m_matrix.empty());
}

TEST_F(SampleFileDamage, ABandCountWhoseSquareOverflowsReadsTheMatrixToTheEnd) {
    constexpr int n = 65536; // n² is 2^32, 0 in 32 bits
    Bytes bytes = SampleHeader(1);
    bytes += ClassStart(n);
    bytes.Fill(static_cast<std::size_t>(n) * 24).Int(1).Int(2).Double(7).Double(8).Fill(5);
    ASSERT_EQ(Read(bytes.Str()), 1);
    EXPECT_EQ(m_file.GetClass(0)->m_firstArray.size(), 65536U);
    EXPECT_EQ(m_file.GetClass(0)->m_matrix, (std::vector<double>{7, 8}));
}

TEST_F(SampleFileDamage, EnormousClassAndShapeCountsEndWithTheFile) {
    Bytes bytes = SampleHeader(MOST);
    bytes += SampleClass("x", 1, 1, MOST);
    bytes += SampleBox(4, 0, 1, 1, 1);
    ASSERT_EQ(Read(bytes.Byte(1).Byte(2).Byte(4).Fill(31).Str()), 1);
    EXPECT_EQ(m_file.GetClassCount(), 1);
    EXPECT_EQ(m_file.GetClass(0)->m_sampleShapes.size(), 1U);
    EXPECT_EQ(m_file.GetClass(0)->m_sampleShapeCount, 1);
}

TEST_F(SampleFileDamage, ANegativeShapeCountGivesNoShapes) {
    Bytes bytes = SampleHeader(2);
    bytes += SampleClass("x", 0, 1, -5);
    bytes += SampleClass("y", 0, 0, 0);
    ASSERT_EQ(Read(bytes.Str()), 1);
    EXPECT_TRUE(m_file.GetClass(0)->m_sampleShapes.empty());
    EXPECT_EQ(m_file.GetClass(1)->GetName(), L"y");
}

TEST_F(SampleFileDamage, AnEnormousVertexCountLeavesThePolygonOut) {
    Bytes bytes = SampleHeader(1);
    bytes += SampleClass("x", 0, 1, 1);
    ASSERT_EQ(Read(bytes.Byte(6).Int(MOST).Double(1).Double(2).Str()), 1);
    EXPECT_TRUE(m_file.GetClass(0)->m_sampleShapes.empty());
}

TEST_F(SampleFileDamage, AClassCutInItsNumbersIsNotWrittenAgain) {
    const std::string whole = WholeSampleFile().Str();
    ASSERT_EQ(Read(whole.substr(0, 312 + 272 + 30)), 1);
    EXPECT_EQ(m_file.WriteClassifySampleFile(m_folder.WideFile("samples")), 0);
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("samples")).size(), 312U + 272 + 30);
}
