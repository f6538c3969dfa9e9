#include "zelto/aoi/internal/ShapeRecord.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"

#include <algorithm>
#include <cstdint>

namespace zelto {

namespace {

constexpr std::uint64_t VERTEX_SIZE = 16;
constexpr std::int32_t LEAST_RING = 3;

bool ReadPoint(BinaryReader& reader, CPoint2D& p) {
    return reader.Read(p.x) && reader.Read(p.y);
}

void WritePoint(BinaryWriter& writer, const CPoint2D& p) {
    writer.Write(p.x);
    writer.Write(p.y);
}

template <typename Shape>
std::unique_ptr<CDrawShape> ReadRectangle(BinaryReader& reader, ShapeRecordUse use) {
    CPoint2D topLeft;
    double width = 0.0;
    double height = 0.0;
    if (!ReadPoint(reader, topLeft) || !reader.Read(width) || !reader.Read(height))
        return nullptr;
    auto shape = std::make_unique<Shape>();
    shape->AddVertex(topLeft);
    shape->AddVertex(topLeft + CPoint2D(width, -height));
    // Taking the size from the corners rounds; a file that is read and written must not change.
    if (use == ShapeRecordUse::SAMPLE || (width >= 0 && height >= 0)) {
        shape->m_topLeft = topLeft;
        shape->m_width = width;
        shape->m_height = height;
        shape->UpdateExtent();
    }
    return shape;
}

std::unique_ptr<CDrawShape> ReadPolygon(BinaryReader& reader, ShapeRecordUse use) {
    std::int32_t count = 0;
    if (!reader.Read(count) || (use == ShapeRecordUse::AREA_OF_INTEREST && count < LEAST_RING))
        return nullptr;
    auto shape = std::make_unique<CDrawPolygon>();
    shape->m_complete = true;
    if (reader.Holds(count, VERTEX_SIZE))
        shape->m_vertices.reserve(static_cast<std::size_t>(count));
    CPoint2D p;
    for (std::int32_t i = 0; i < count; ++i) {
        if (!ReadPoint(reader, p))
            return nullptr;
        shape->AddVertex(p);
    }
    return shape;
}

void WriteRectangle(BinaryWriter& writer, const CDrawRectangle& shape) {
    WritePoint(writer, shape.m_topLeft);
    writer.Write(shape.m_width);
    writer.Write(shape.m_height);
}

void WritePolygon(BinaryWriter& writer, const CDrawShape& shape) {
    writer.Write(static_cast<std::int32_t>(shape.m_vertices.size()));
    for (const CPoint2D& p : shape.m_vertices)
        WritePoint(writer, p);
}

} // namespace

std::unique_ptr<CDrawShape> ReadShapeRecord(BinaryReader& reader, ShapeRecordUse use) {
    std::uint8_t kind = 0;
    if (!reader.Read(kind))
        return nullptr;
    switch (kind) {
    case SHAPE_RECTANGLE:
        return ReadRectangle<CDrawRectangle>(reader, use);
    case SHAPE_ELLIPSE:
        return ReadRectangle<CDrawEllipse>(reader, use);
    case SHAPE_POLYGON:
        return ReadPolygon(reader, use);
    default:
        return nullptr;
    }
}

void WriteShapeRecord(BinaryWriter& writer, const CDrawShape* shape) {
    // The class decides with the kind: a host may have changed the kind of another class's
    // object, which then has none of the fields that the kind promises.
    const auto* rectangle = dynamic_cast<const CDrawRectangle*>(shape);
    int kind = shape == nullptr ? 0 : shape->m_shapeKind;
    const bool hasCorners = kind == SHAPE_RECTANGLE || kind == SHAPE_ELLIPSE;
    if (hasCorners && rectangle == nullptr)
        kind = 0;
    writer.Write(static_cast<std::uint8_t>(kind));
    if (hasCorners && rectangle != nullptr)
        WriteRectangle(writer, *rectangle);
    else if (kind == SHAPE_POLYGON)
        WritePolygon(writer, *shape);
}

} // namespace zelto
