#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/classify/ClassifySampleFile.h"

#include "tests/classify/SampleBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>

using zelto::test::Bytes;
using zelto::test::SampleBox;
using zelto::test::SampleClass;
using zelto::test::SampleHeader;
using zelto::test::SamplePolygon;
using zelto::test::WholeSampleFile;

namespace {

class SampleFileWrite : public ::testing::Test {
  protected:
    std::string Written() {
        EXPECT_EQ(m_file.WriteClassifySampleFile(m_folder.WideFile("out")), 1);
        return zelto::test::ReadFile(m_folder.File("out"));
    }
    void Read(const Bytes& bytes) {
        zelto::test::WriteFile(m_folder.File("in"), bytes.Str());
        ASSERT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("in")), 1);
    }

    zelto::test::TemporaryFolder m_folder;
    CClassifySampleFile m_file;
};

CDrawShape* NewLine() {
    auto* line = new CDrawLine;
    line->AddVertex({0, 0});
    line->AddVertex({3, 4});
    return line;
}

} // namespace

TEST_F(SampleFileWrite, RoundTripsByteForByte) {
    Read(WholeSampleFile());
    EXPECT_EQ(Written(), WholeSampleFile().Str());
}

TEST_F(SampleFileWrite, CarriesBytesWithoutAMeaning) {
    Bytes bytes = Bytes().Text("ZELTO_SampleFileTag", 40).Fill(248, '\x11').Int(1).Fill(20, '\x22');
    bytes += Bytes().Text("ab", 6).Fill(250, '\x33').Int(-1).Int(-2).Int(-3).Int(1);
    bytes.Long(0x7FF0000000000001U).Long(0xFFF8000000000123U).Long(0x8000000000000000U);
    bytes.Int(4).Int(5).Double(6).Int(-1).Int(1);
    Read(bytes += SampleBox(4, 5, 6, -7, -8));
    EXPECT_EQ(m_file.GetClass(0)->GetName(), L"ab");
    EXPECT_EQ(Written(), bytes.Str());
}

TEST_F(SampleFileWrite, ANewObjectIsZerosAndWritesNothingUntilItHasItsTag) {
    EXPECT_EQ(m_file.GetTag(), L"");
    EXPECT_EQ(m_file.WriteClassifySampleFile(m_folder.WideFile("out")), 0);
    m_file.SetTag(L"zelto_SampleFileTag");
    EXPECT_EQ(m_file.WriteClassifySampleFile(m_folder.WideFile("out")), 0);
    EXPECT_TRUE(m_folder.Names().empty());
    m_file.SetTag(CClassifySampleFile::FILE_TAG);
    EXPECT_EQ(Written(), SampleHeader(0).Str());
}

TEST_F(SampleFileWrite, FailsForPathsThatCannotBeWritten) {
    m_file.SetTag(CClassifySampleFile::FILE_TAG);
    EXPECT_EQ(m_file.WriteClassifySampleFile(L""), 0);
    EXPECT_EQ(m_file.WriteClassifySampleFile(m_folder.WideFile("no/folder")), 0);
}

TEST_F(SampleFileWrite, WritesEveryShapeWhateverFlagAndCountSay) {
    CClassifySampleFile::ClassRecord record;
    record.SetName(L"x");
    record.m_values = {11, 12, 13};
    record.m_moreValues = {21, 22};
    record.m_sampleShapeCount = 9;
    auto* polygon = new CDrawPolygon;
    polygon->AddVertex({1, 2});
    polygon->AddVertex({3, 4});
    record.m_sampleShapes = {polygon, NewLine(), nullptr};
    m_file.SetTag(CClassifySampleFile::FILE_TAG);
    m_file.AddClass(record);
    Bytes expected = SampleHeader(1);
    expected += SampleClass("x", 0, 0, 9);
    expected += SamplePolygon({1, 2, 3, 4});
    EXPECT_EQ(Written(), expected.Byte(2).Byte(0).Str());
}

TEST_F(SampleFileWrite, ShapesThatFlagAndCountDoNotTellOfAreNotReadBack) {
    for (const auto& [flag, count, readBack] :
         {std::array{0, 2, 0}, {1, 0, 0}, {1, 1, 1}, {-1, 2, 2}}) {
        SCOPED_TRACE(testing::Message() << flag << ", " << count);
        CClassifySampleFile::ClassRecord record;
        record.m_sampleShapes = {new CDrawPolygon, new CDrawPolygon};
        record.m_hasSamples = flag;
        record.m_sampleShapeCount = count;
        m_file.SetTag(CClassifySampleFile::FILE_TAG);
        m_file.RemoveAllClasses();
        m_file.AddClass(record);
        EXPECT_EQ(Written().size(), 312U + 256 + 16 + 8 + 8 + 2 * (1 + 4));
        ASSERT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("out")), 1);
        EXPECT_EQ(m_file.GetClass(0)->m_sampleShapes.size(), static_cast<std::size_t>(readBack));
        EXPECT_EQ(m_file.GetClass(0)->m_hasSamples, flag);
        EXPECT_EQ(m_file.GetClass(0)->m_sampleShapeCount, count);
    }
}

TEST_F(SampleFileWrite, WritesTheSecondArrayFirst) {
    CClassifySampleFile::ClassRecord record;
    record.SetName(L"crops");
    record.m_values = {11, 12, 13};
    record.m_bandCount = 2;
    record.m_firstArray = {100, 101};
    record.m_secondArray = {200, 201};
    record.m_thirdArray = {300, 301};
    record.m_moreValues = {21, 22};
    record.m_matrix = {0.5, 1.5, 2.5, 3.5};
    m_file.SetTag(CClassifySampleFile::FILE_TAG);
    m_file.AddClass(record);
    Bytes expected = SampleHeader(1);
    EXPECT_EQ(Written(), (expected += SampleClass("crops", 2, 0, 0)).Str());
}

TEST_F(SampleFileWrite, RefusesArraysThatDoNotFitTheBandCount) {
    m_file.SetTag(CClassifySampleFile::FILE_TAG);
    CClassifySampleFile::ClassRecord record;
    record.m_bandCount = 1;
    record.m_firstArray = record.m_secondArray = record.m_thirdArray = {1.0};
    record.m_matrix = {1.0};
    for (auto* list :
         {&record.m_firstArray, &record.m_secondArray, &record.m_thirdArray, &record.m_matrix}) {
        list->push_back(2.0);
        m_file.RemoveAllClasses();
        m_file.AddClass(record);
        EXPECT_EQ(m_file.WriteClassifySampleFile(m_folder.WideFile("out")), 0);
        list->pop_back();
    }
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(SampleFileWrite, CopiesHaveShapesOfTheirOwn) {
    Read(WholeSampleFile());
    CClassifySampleFile copy(m_file);
    CClassifySampleFile assigned;
    assigned = m_file;
    assigned = *&assigned;
    m_file.GetClass(0)->m_sampleShapes[2]->m_vertices.clear();
    m_file.RemoveAllClasses();
    EXPECT_EQ(m_file.GetClassCount(), 0);
    m_file = assigned;
    EXPECT_EQ(Written(), WholeSampleFile().Str());
    EXPECT_EQ(copy.WriteClassifySampleFile(m_folder.WideFile("copy")), 1);
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("copy")), WholeSampleFile().Str());
}

TEST_F(SampleFileWrite, AssigningAClassReplacesItsShapes) {
    Read(WholeSampleFile());
    *m_file.GetClass(0) = *m_file.GetClass(1);
    EXPECT_TRUE(m_file.GetClass(0)->m_sampleShapes.empty());
    EXPECT_EQ(m_file.GetClass(0)->GetName(), L"bare soil");
}
