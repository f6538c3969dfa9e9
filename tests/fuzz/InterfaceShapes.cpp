#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPolygon.h"

#include "tests/fuzz/InterfaceScene.h"

#include <ogr_geometry.h>

namespace zelto::fuzz {

namespace {

std::unique_ptr<CDrawShape> MakeShape(int kind) {
    switch (kind) {
    case 0:
        return std::make_unique<CDrawPoint>();
    case 1:
        return std::make_unique<CDrawLine>();
    case 2:
        return std::make_unique<CDrawMultiLine>();
    case 3:
        return std::make_unique<CDrawRectangle>();
    case 4:
        return std::make_unique<CDrawEllipse>();
    default:
        return std::make_unique<CDrawPolygon>();
    }
}

/// A point near the top-left corner of the first source, mostly.
CPoint2D ReadPoint(const Scene& scene, InputBytes& bytes) {
    const CPoint2D corner = scene.sources[0].GetExtent().TopLeft();
    const double pixel = scene.sources[0].GetXResolution();
    const double x = bytes.Number();
    return {corner.x + x * pixel, corner.y - bytes.Number() * pixel};
}

/// The shape being drawn, or one of the area's; null where there is none.
CDrawShape* AnyShape(Scene& scene, InputBytes& bytes) {
    const int which = bytes.Below(6);
    return which < 3 ? scene.shape.get() : scene.area.GetDrawShape(which - 3);
}

void Draw(Scene& scene, InputBytes& bytes) {
    scene.shape = MakeShape(bytes.Below(6));
    for (int i = bytes.Below(9); i > 0; --i)
        scene.shape->AddVertex(ReadPoint(scene, bytes));
}

void AddVertices(Scene& scene, InputBytes& bytes) {
    const int count = bytes.Below(4);
    for (int i = 0; scene.shape && i < count; ++i)
        scene.shape->AddVertex(ReadPoint(scene, bytes));
}

void Finish(Scene& scene, InputBytes& bytes) {
    if (!scene.shape)
        return;
    scene.shape->m_complete = bytes.Byte() != 5;
    scene.ForgetRegion();
    if (scene.area.AddDrawShape(scene.shape.get()))
        static_cast<void>(scene.shape.release());
}

void Remove(Scene& scene, InputBytes& bytes) {
    scene.ForgetRegion();
    if (bytes.Flag())
        scene.area.RemoveAllSelectedDrawShapes();
    else
        scene.area.RemoveDrawShape(scene.area.GetDrawShape(bytes.Count()));
}

void Hit(Scene& scene, InputBytes& bytes) {
    CDrawShape* shape = AnyShape(scene, bytes);
    auto box = ReadBox(bytes, scene.sources[0]);
    const CPoint2D point = ReadPoint(scene, bytes);
    if (shape == nullptr)
        return;
    shape->TopoRelationWithPoint(point, bytes.Number(), bytes.Below(3));
    shape->TopoRelationWithBoundingbox(PointerTo(box));
}

void HitArea(Scene& scene, InputBytes& bytes) {
    auto box = ReadBox(bytes, scene.sources[0]);
    const CPoint2D point = ReadPoint(scene, bytes);
    scene.area.TopoRelationWithPoint(point.x, point.y);
    scene.area.GetTopoRelationWithBoundingbox(PointerTo(box));
    scene.area.GetSelectedDrawShape(point, bytes.Number(), bytes.Below(2));
    scene.area.GetSelectedDrawShape(PointerTo(box), bytes.Below(2));
    std::vector<CDrawShape*> selected;
    scene.area.GetAllSelectedDrawShapes(&selected);
}

void Edit(Scene& scene, InputBytes& bytes) {
    CDrawShape* shape = AnyShape(scene, bytes);
    if (shape == nullptr)
        return;
    scene.ForgetRegion();
    const CPoint2D point = ReadPoint(scene, bytes);
    switch (bytes.Below(6)) {
    case 0:
        shape->UpdateSelectPoint(point);
        break;
    case 1:
        shape->SetOffset(bytes.Number(), bytes.Number());
        break;
    case 2:
        shape->RemoveLastVertex();
        break;
    case 3:
        shape->RecomputeExtent();
        break;
    case 4:
        shape->m_selectedPointIndex = bytes.Count();
        shape->UpdateSelectPoint(point);
        break;
    default:
        shape->SetColor(0x123456, 0x654321);
    }
}

void EditVertices(Scene& scene, InputBytes& bytes) {
    CDrawShape* shape = AnyShape(scene, bytes);
    const CPoint2D point = ReadPoint(scene, bytes);
    const int index = bytes.Count();
    scene.ForgetRegion();
    if (auto* polygon = dynamic_cast<CDrawPolygon*>(shape)) {
        bytes.Flag() ? polygon->InsertVertex(point, index) : polygon->RemoveVertex(point);
        polygon->ReComputeExtent();
        CPoint2D asked = point;
        polygon->IsPointIn(bytes.Byte() == 5 ? nullptr : &asked);
    } else if (auto* line = dynamic_cast<CDrawMultiLine*>(shape)) {
        bytes.Flag() ? line->InsertVertex(point, index) : line->RemoveVertex(point);
        line->ReComputeExtent();
    } else if (auto* rectangle = dynamic_cast<CDrawRectangle*>(shape)) {
        rectangle->SetTop(point.y);
        rectangle->SetRight(point.x);
        rectangle->SetBottomLeft(ReadPoint(scene, bytes));
        rectangle->UpdateExtent();
    }
}

void Copy(Scene& scene, InputBytes& bytes) {
    CDrawShape* shape = AnyShape(scene, bytes);
    scene.shape.reset(CDrawShape::CreateCopy(shape));
}

void UseEllipse(Scene& scene, InputBytes& bytes) {
    const auto* ellipse = dynamic_cast<const CDrawEllipse*>(AnyShape(scene, bytes));
    const CPoint2D from = ReadPoint(scene, bytes);
    if (ellipse != nullptr)
        ellipse->IsIntersect(from, ReadPoint(scene, bytes));
}

void MakeGeometries(Scene& scene, InputBytes& bytes) {
    if (bytes.Flag())
        scene.area.SetResolution(bytes.Number());
    scene.area.GetOGRGeometries();
}

void FromGeometry(Scene& /*scene*/, InputBytes& bytes) {
    constexpr const char* TEXTS[] = {
        "POLYGON ((0 0, 9 0, 9 9, 0 0), (1 1, 2 1, 2 2, 1 1))",
        "MULTIPOLYGON (((0 0, 9 0, 9 9, 0 0)), ((20 20, 29 20, 29 29, 20 20)))",
        "POLYGON EMPTY",
        "POINT (1 2)",
        "CURVEPOLYGON (CIRCULARSTRING (0 0, 4 0, 4 4, 0 4, 0 0))",
    };
    OGRGeometry* geometry = nullptr;
    if (bytes.Byte() != 5)
        OGRGeometryFactory::createFromWkt(TEXTS[bytes.Below(5)], nullptr, &geometry);
    const std::unique_ptr<CAOISource> area(CAOISource::Create(geometry));
    OGRGeometryFactory::destroyGeometry(geometry);
    if (area)
        area->GetOGRGeometries();
}

void Empty(Scene& scene, InputBytes& bytes) {
    scene.ForgetRegion();
    if (bytes.Flag())
        scene.area.Close();
    else
        scene.area.RecomputeExtent();
}

void UseControlPoints(Scene& scene, InputBytes& bytes) {
    CControlPoints& points = scene.controlPoints;
    const CPoint2D p = ReadPoint(scene, bytes);
    auto box = ReadBox(bytes, scene.sources[0]);
    switch (bytes.Below(8)) {
    case 0:
    case 1:
        points.AddPoint(p, 0x00FF00);
        break;
    case 2:
        points.RemovePoint(bytes.Count());
        break;
    case 3:
        points.UpdatePoint(bytes.Count(), p);
        break;
    case 4:
        points.GetSelectedPoint(p, bytes.Number(), bytes.Below(2));
        break;
    case 5:
        points.GetSelectedPoint(PointerTo(box), bytes.Below(2));
        points.RemoveAllSelectedPoints();
        break;
    case 6:
        points.GetDrawShapeClosestPoint(p);
        points.GetPoint(bytes.Count());
        points.SetCurrentSelectedPoint(bytes.Count());
        break;
    default: {
        CControlPoints copy(points);
        points.RemoveAllPoints();
        points = copy;
    }
    }
}

} // namespace

std::span<const Operation> ShapeOperations() {
    static constexpr Operation OPERATIONS[] = {
        Draw,  AddVertices,      Finish,         Remove,
        Hit,   HitArea,          Edit,           EditVertices,
        Copy,  UseEllipse,       MakeGeometries, FromGeometry,
        Empty, UseControlPoints,
    };
    return OPERATIONS;
}

} // namespace zelto::fuzz
