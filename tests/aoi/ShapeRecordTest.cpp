#include "zelto/aoi/internal/ShapeRecord.h"

#include "tests/aoi/AoiFileBytes.h"
#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

namespace {

using namespace zelto::test;
using zelto::ShapeRecordUse;

std::unique_ptr<CDrawShape> Read(const std::string& bytes, ShapeRecordUse use) {
    std::istringstream stream(bytes);
    zelto::BinaryReader reader(stream);
    return zelto::ReadShapeRecord(reader, use);
}

std::string Written(const CDrawShape* shape) {
    std::ostringstream stream;
    zelto::BinaryWriter writer(stream);
    zelto::WriteShapeRecord(writer, shape);
    return stream.str();
}

TEST(ShapeRecord, OfASampleKeepsANegativeSizeThatAnAreaTurnsRound) {
    const std::string bytes = RectangleBytes('\4', 10, 20, -4, 3);
    const auto sample = Read(bytes, ShapeRecordUse::SAMPLE);
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(dynamic_cast<CDrawRectangle&>(*sample).m_width, -4);
    EXPECT_EQ(Written(sample.get()), bytes);
    const auto area = Read(bytes, ShapeRecordUse::AREA_OF_INTEREST);
    ASSERT_NE(area, nullptr);
    const auto& rectangle = dynamic_cast<CDrawRectangle&>(*area);
    EXPECT_EQ(rectangle.m_width, 4);
    EXPECT_EQ(rectangle.m_topLeft.x, 6);
    EXPECT_EQ(rectangle.m_topLeft.y, 20);
    const std::string ellipse = RectangleBytes('\5', 10, 20, 4, -3);
    EXPECT_EQ(Written(Read(ellipse, ShapeRecordUse::SAMPLE).get()), ellipse);
}

TEST(ShapeRecord, OfASampleMayHaveFewerVerticesThanARing) {
    const std::string bytes = PolygonBytes(2, 2);
    EXPECT_EQ(Read(bytes, ShapeRecordUse::AREA_OF_INTEREST), nullptr);
    const auto sample = Read(bytes, ShapeRecordUse::SAMPLE);
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->m_vertices.size(), 2U);
    EXPECT_EQ(Written(sample.get()), bytes);
}

TEST(ShapeRecord, OfAShapeWithoutTheFieldsOfItsKindIsTheKindAlone) {
    EXPECT_EQ(Written(nullptr), std::string(1, '\0'));
    CDrawPolygon polygon = UnitSquareTimes10();
    for (const ShapeKind kind : {SHAPE_RECTANGLE, SHAPE_ELLIPSE}) {
        polygon.m_shapeKind = kind;
        EXPECT_EQ(Written(&polygon), std::string(1, '\0')) << "no corners";
    }
    polygon.m_shapeKind = static_cast<ShapeKind>(9);
    EXPECT_EQ(Written(&polygon), "\x09");
}

} // namespace
