#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/classify/ClassifySampleFile.h"
#include "zelto/datasource/GISDataSource.h"

#include "tests/classify/SampleBytes.h"
#include "tests/support/NamedPipe.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>

using zelto::test::Bytes;
using zelto::test::SampleBox;
using zelto::test::SampleClass;
using zelto::test::SampleHeader;
using zelto::test::SamplePolygon;
using zelto::test::WholeSampleFile;

namespace {

class SampleFileRead : public ::testing::Test {
  protected:
    int Read(const Bytes& bytes) {
        zelto::test::WriteFile(m_folder.File("samples"), bytes.Str());
        return m_file.ReadClassifySampleFile(m_folder.WideFile("samples"));
    }

    zelto::test::TemporaryFolder m_folder;
    CClassifySampleFile m_file;
};

void ExpectExtent(const CDrawShape& shape, double left, double top, double right, double bottom) {
    EXPECT_EQ(shape.m_extent.m_left, left);
    EXPECT_EQ(shape.m_extent.m_top, top);
    EXPECT_EQ(shape.m_extent.m_right, right);
    EXPECT_EQ(shape.m_extent.m_bottom, bottom);
}

} // namespace

TEST_F(SampleFileRead, GivesNumbersInTheOrderOfTheFile) {
    ASSERT_EQ(Read(WholeSampleFile()), 1);
    EXPECT_EQ(m_file.GetFileName(), m_folder.WideFile("samples"));
    ASSERT_EQ(m_file.GetClassCount(), 2);
    const auto& crops = *m_file.GetClass(0);
    EXPECT_EQ(crops.GetName(), L"crops");
    EXPECT_EQ(crops.m_values, (std::array{11, 12, 13}));
    EXPECT_EQ(crops.m_bandCount, 2);
    EXPECT_EQ(crops.m_firstArray, (std::vector<double>{100, 101}));
    EXPECT_EQ(crops.m_secondArray, (std::vector<double>{200, 201}));
    EXPECT_EQ(crops.m_thirdArray, (std::vector<double>{300, 301}));
    EXPECT_EQ(crops.m_moreValues, (std::array{21, 22}));
    EXPECT_EQ(crops.m_matrix, (std::vector<double>{0.5, 1.5, 2.5, 3.5}));
    EXPECT_EQ(crops.m_hasSamples, 1);
    EXPECT_EQ(crops.m_sampleShapeCount, 3);
    EXPECT_EQ(m_file.GetClass(1)->GetName(), L"bare soil");
    EXPECT_TRUE(m_file.GetClass(1)->m_firstArray.empty());
    EXPECT_EQ(m_file.GetClass(-1), nullptr);
    EXPECT_EQ(m_file.GetClass(2), nullptr);
}

TEST_F(SampleFileRead, GivesCompleteShapesWithTheirExtents) {
    ASSERT_EQ(Read(WholeSampleFile()), 1);
    const auto& shapes = m_file.GetClass(0)->m_sampleShapes;
    ASSERT_EQ(shapes.size(), 3U);
    for (const CDrawShape* shape : shapes)
        EXPECT_TRUE(shape->m_complete);
    const auto* rectangle = dynamic_cast<CDrawRectangle*>(shapes[0]);
    ASSERT_NE(rectangle, nullptr);
    EXPECT_EQ(rectangle->m_shapeKind, SHAPE_RECTANGLE);
    EXPECT_EQ(rectangle->m_topLeft.x, 0.1);
    EXPECT_EQ(rectangle->m_topLeft.y, 20.3);
    EXPECT_EQ(rectangle->m_width, 0.2);
    EXPECT_EQ(rectangle->m_height, 0.7);
    ExpectExtent(*rectangle, 0.1, 20.3, 0.1 + 0.2, 20.3 - 0.7);
    const auto* ellipse = dynamic_cast<CDrawEllipse*>(shapes[1]);
    ASSERT_NE(ellipse, nullptr);
    ExpectExtent(*ellipse, -7.0, 5.0, -3.0, 3.0);
    ASSERT_NE(dynamic_cast<CDrawPolygon*>(shapes[2]), nullptr);
    ASSERT_EQ(shapes[2]->m_vertices.size(), 4U);
    EXPECT_EQ(shapes[2]->m_vertices[3].y, 9.0);
    ExpectExtent(*shapes[2], 0.0, 9.0, 10.0, 0.0);
}

TEST_F(SampleFileRead, HitTestsOfShapesReadBackWork) {
    ASSERT_EQ(Read(WholeSampleFile()), 1);
    const auto& shapes = m_file.GetClass(0)->m_sampleShapes;
    EXPECT_EQ(shapes[0]->TopoRelationWithPoint({0.2, 20.0}, 0.0, 1), TOPO_CONTAIN);
    EXPECT_EQ(shapes[1]->TopoRelationWithPoint({-5.0, 4.0}, 0.0, 1), TOPO_CONTAIN);
    EXPECT_EQ(shapes[1]->TopoRelationWithPoint({-6.9, 4.9}, 0.0, 1), TOPO_DISJOINT);
    EXPECT_EQ(shapes[2]->TopoRelationWithPoint({5.0, 5.0}, 0.0, 1), TOPO_CONTAIN);
}

TEST_F(SampleFileRead, FailsForAnotherTagAndLeavesTheContent) {
    ASSERT_EQ(Read(WholeSampleFile()), 1);
    for (const char* tag : {"ZELTO_sampleFileTag", "ZELTO_SampleFileTagX", "ZELTO_SampleFile", ""})
        EXPECT_EQ(Read(Bytes().Text(tag, 40).Fill(272)), 0) << tag;
    EXPECT_EQ(m_file.GetClassCount(), 2);
    EXPECT_EQ(m_file.GetTag(), CClassifySampleFile::FILE_TAG);
}

TEST_F(SampleFileRead, FailsForPathsWithoutAFile) {
    EXPECT_EQ(m_file.ReadClassifySampleFile(L""), 0);
    EXPECT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("none")), 0);
    EXPECT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("")), 0);
    EXPECT_EQ(m_file.GetFileName(), L"");
}

TEST_F(SampleFileRead, ThePathIsRememberedBeforeTheContentIsLookedAt) {
    ASSERT_EQ(Read(WholeSampleFile()), 1);
    for (const std::string& bytes :
         {Bytes().Text("ZELTO_sampleFileTag", 40).Fill(272).Str(), std::string("short")}) {
        zelto::test::WriteFile(m_folder.File("other"), bytes);
        EXPECT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("other")), 0);
        EXPECT_EQ(m_file.GetFileName(), m_folder.WideFile("other"));
        EXPECT_EQ(m_file.GetClassCount(), 2);
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  m_folder.File("other") + ": is no sample file");
    }
    EXPECT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("none")), 0);
    EXPECT_EQ(m_file.GetFileName(), m_folder.WideFile("other"));
}

TEST_F(SampleFileRead, APipeIsNotOpened) {
    const zelto::test::EndsSoon endsSoon;
    zelto::test::MakePipe(m_folder.File("pipe"));
    EXPECT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("pipe")), 0);
    EXPECT_EQ(m_file.GetFileName(), L"");
}

TEST_F(SampleFileRead, AClassCountBelowOneGivesNoClasses) {
    ASSERT_EQ(Read(WholeSampleFile()), 1);
    ASSERT_EQ(Read(SampleHeader(0)), 1);
    EXPECT_EQ(m_file.GetClass(0), nullptr);
    Bytes negative = SampleHeader(std::numeric_limits<int>::min());
    ASSERT_EQ(Read(negative += SampleClass("x", 0, 0, 0)), 1);
    EXPECT_EQ(m_file.GetClass(0), nullptr);
}

TEST_F(SampleFileRead, AClassWithoutBandsIs288BytesLong) {
    EXPECT_EQ(SampleClass("x", 0, 0, 0).Str().size(), 256U + 16 + 8 + 8);
    Bytes bytes = SampleHeader(2);
    bytes += SampleClass("x", 0, 0, 0);
    bytes += SampleClass("y", 0, 0, 0);
    ASSERT_EQ(Read(bytes), 1);
    EXPECT_EQ(m_file.GetClass(1)->GetName(), L"y");
}

TEST_F(SampleFileRead, TakesShapesOnlyWithTheFlag) {
    Bytes bytes = SampleHeader(2);
    bytes += SampleClass("no flag", 0, 0, 5);
    bytes += SampleClass("flag", 0, -3, 1);
    bytes += SampleBox(4, 0, 1, 1, 1);
    ASSERT_EQ(Read(bytes), 1);
    EXPECT_TRUE(m_file.GetClass(0)->m_sampleShapes.empty());
    EXPECT_EQ(m_file.GetClass(0)->m_sampleShapeCount, 5);
    EXPECT_EQ(m_file.GetClass(1)->m_sampleShapes.size(), 1U);
}

TEST_F(SampleFileRead, OtherKindsAreOneByteAndGiveNoShape) {
    Bytes bytes = SampleHeader(1);
    bytes += SampleClass("x", 0, 1, 7);
    for (const int kind : {0, 1, 2, 3, 7, 255})
        bytes.Byte(kind);
    ASSERT_EQ(Read(bytes += SampleBox(5, 1, 2, 3, 4)), 1);
    ASSERT_EQ(m_file.GetClass(0)->m_sampleShapes.size(), 1U);
    EXPECT_EQ(m_file.GetClass(0)->m_sampleShapes[0]->m_shapeKind, SHAPE_ELLIPSE);
}

TEST_F(SampleFileRead, PolygonsOfAnyLengthStayInStep) {
    Bytes bytes = SampleHeader(1);
    bytes += SampleClass("x", 0, 1, 4);
    bytes += SamplePolygon({});
    bytes += SamplePolygon({1, 2});
    bytes += Bytes().Byte(6).Int(-2);
    bytes += SamplePolygon({1, 2, 3, 4, 5, 0});
    ASSERT_EQ(Read(bytes), 1);
    const auto& shapes = m_file.GetClass(0)->m_sampleShapes;
    ASSERT_EQ(shapes.size(), 4U);
    EXPECT_EQ(shapes[0]->m_vertices.size(), 0U);
    EXPECT_EQ(shapes[1]->m_vertices.size(), 1U);
    EXPECT_EQ(shapes[2]->m_vertices.size(), 0U);
    EXPECT_EQ(shapes[3]->m_vertices.size(), 3U);
}

TEST_F(SampleFileRead, MoreThanAMillionShapesAreRefused) {
    constexpr int MOST = 1'000'000;
    Bytes bytes = SampleHeader(1);
    bytes += SampleClass("crops", 0, 1, MOST + 1);
    const std::string polygon = SamplePolygon({}).Str();
    std::string text = bytes.Str();
    for (int i = 0; i <= MOST; ++i)
        text += polygon;
    zelto::test::WriteFile(m_folder.File("samples"), text);
    EXPECT_EQ(m_file.ReadClassifySampleFile(m_folder.WideFile("samples")), 0);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_folder.File("samples") + ": has more than 1000000 shapes");
    EXPECT_EQ(m_file.GetClassCount(), 0);
}
