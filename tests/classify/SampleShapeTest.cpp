#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPoint.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/classify/ClassifySampleFile.h"

#include "tests/classify/SampleBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>

using zelto::test::Bytes;
using zelto::test::SampleBox;
using zelto::test::SamplePolygon;

namespace {

class SampleShape : public ::testing::Test {
  protected:
    std::fstream Stream(std::ios::openmode mode) {
        return std::fstream(m_folder.File("shapes"), mode | std::ios::binary);
    }
    std::fstream StreamOf(const Bytes& bytes) {
        zelto::test::WriteFile(m_folder.File("shapes"), bytes.Str());
        return Stream(std::ios::in);
    }
    void TearDown() override {
        for (const CDrawShape* shape : m_shapes)
            delete shape;
    }

    zelto::test::TemporaryFolder m_folder;
    std::vector<CDrawShape*> m_shapes;
};

} // namespace

TEST_F(SampleShape, SavesOneRecordPerShape) {
    CDrawEllipse ellipse;
    ellipse.AddVertex({10, 20});
    ellipse.AddVertex({15, 16});
    CDrawPolygon polygon;
    for (const CPoint2D& p : {CPoint2D(0, 0), CPoint2D(4, 0), CPoint2D(0, 4)})
        polygon.AddVertex(p);
    CDrawPoint point;
    point.AddVertex({7, 7});
    std::fstream stream = Stream(std::ios::out);
    EXPECT_EQ(CClassifySampleFile::SaveSampleAOI(stream, &ellipse), 1);
    EXPECT_EQ(CClassifySampleFile::SaveSampleAOI(stream, &polygon), 1);
    EXPECT_EQ(CClassifySampleFile::SaveSampleAOI(stream, &point), 1);
    stream.close();
    Bytes expected = SampleBox(5, 10, 20, 5, 4);
    expected += SamplePolygon({0, 0, 4, 0, 0, 4});
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("shapes")), expected.Byte(1).Str());
}

TEST_F(SampleShape, ReadsRecordAfterRecord) {
    Bytes bytes = Bytes().Byte(3);
    bytes += SampleBox(4, 1, 2, 3, 4);
    std::fstream stream = StreamOf(bytes += SamplePolygon({1, 1, 2, 2, 3, 1}));
    EXPECT_EQ(CClassifySampleFile::ReadSampleAOI(stream, &m_shapes), 1);
    EXPECT_TRUE(m_shapes.empty());
    EXPECT_EQ(CClassifySampleFile::ReadSampleAOI(stream, &m_shapes), 1);
    EXPECT_EQ(CClassifySampleFile::ReadSampleAOI(stream, &m_shapes), 1);
    EXPECT_EQ(CClassifySampleFile::ReadSampleAOI(stream, &m_shapes), 0);
    ASSERT_EQ(m_shapes.size(), 2U);
    EXPECT_EQ(m_shapes[0]->m_shapeKind, SHAPE_RECTANGLE);
    EXPECT_EQ(m_shapes[1]->m_vertices.size(), 3U);
}

TEST_F(SampleShape, ARecordCutShortGivesNoShape) {
    for (const Bytes& bytes : {SampleBox(4, 1, 2, 3, 4), SamplePolygon({1, 1, 2, 2, 3, 1})})
        for (std::size_t length = 0; length < bytes.Str().size(); ++length) {
            zelto::test::WriteFile(m_folder.File("shapes"), bytes.Str().substr(0, length));
            std::fstream stream = Stream(std::ios::in);
            EXPECT_EQ(CClassifySampleFile::ReadSampleAOI(stream, &m_shapes), 0) << length;
            EXPECT_TRUE(m_shapes.empty());
        }
}

TEST_F(SampleShape, StreamsThatAreNotOpenAndNullFailQuietly) {
    std::fstream closed;
    EXPECT_EQ(CClassifySampleFile::ReadSampleAOI(closed, &m_shapes), 0);
    EXPECT_EQ(CClassifySampleFile::SaveSampleAOI(closed, nullptr), 1);
    std::fstream stream = StreamOf(SampleBox(4, 1, 2, 3, 4));
    EXPECT_EQ(CClassifySampleFile::ReadSampleAOI(stream, nullptr), 0);
}

TEST_F(SampleShape, AShapeOfAnotherClassThanItsKindIsWrittenWithoutAKind) {
    CDrawPolygon polygon;
    polygon.m_shapeKind = SHAPE_RECTANGLE;
    std::fstream stream = Stream(std::ios::out);
    EXPECT_EQ(CClassifySampleFile::SaveSampleAOI(stream, &polygon), 1);
    stream.close();
    EXPECT_EQ(zelto::test::ReadFile(m_folder.File("shapes")), std::string(1, '\0'));
}
