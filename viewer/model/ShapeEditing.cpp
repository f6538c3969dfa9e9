#include "viewer/model/ShapeEditing.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPoint.h"
#include "zelto/aoi/DrawPolygon.h"

#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

CPoint2D Ground(QPointF p) {
    return {p.x(), p.y()};
}

QPointF Point(const CPoint2D& p) {
    return {p.x, p.y};
}

bool IsBoxed(const CDrawShape& shape) {
    return shape.m_shapeKind == SHAPE_RECTANGLE || shape.m_shapeKind == SHAPE_ELLIPSE;
}

QRectF BoxOf(const CDrawShape& shape) {
    const auto& box = static_cast<const CDrawRectangle&>(shape);
    return {QPointF(box.m_topLeft.x, box.m_topLeft.y - box.m_height),
            QSizeF(box.m_width, box.m_height)};
}

std::unique_ptr<CDrawShape> NewShape(ShapeKind kind) {
    switch (kind) {
    case SHAPE_POINT:
        return std::make_unique<CDrawPoint>();
    case SHAPE_LINE:
    case SHAPE_MULTILINE:
        return std::make_unique<CDrawMultiLine>();
    case SHAPE_RECTANGLE:
        return std::make_unique<CDrawRectangle>();
    case SHAPE_ELLIPSE:
        return std::make_unique<CDrawEllipse>();
    case SHAPE_POLYGON:
        return std::make_unique<CDrawPolygon>();
    default:
        return nullptr;
    }
}

std::size_t LeastPoints(ShapeKind kind) {
    return kind == SHAPE_POINT ? 1 : kind == SHAPE_POLYGON ? 3 : 2;
}

/// The engine's shape of given points with the fields of another one.
ShapePointer Rebuilt(const CDrawShape& shape, const std::vector<QPointF>& points) {
    const ShapePointer made = MakeShape(shape.m_shapeKind, points);
    if (!made)
        return nullptr;
    auto changed =
        std::shared_ptr<CDrawShape>(CDrawShape::CreateCopy(const_cast<CDrawShape*>(made.get())));
    changed->m_firstColor = shape.m_firstColor;
    changed->m_secondColor = shape.m_secondColor;
    changed->m_userValue = shape.m_userValue;
    return changed;
}

double DistanceToSegment(QPointF p, QPointF a, QPointF b) {
    const QPointF along = b - a;
    const double length = QPointF::dotProduct(along, along);
    const double part =
        length > 0.0 ? std::clamp(QPointF::dotProduct(p - a, along) / length, 0.0, 1.0) : 0.0;
    const QPointF away = p - (a + part * along);
    return std::hypot(away.x(), away.y());
}

std::vector<QPointF> VerticesOf(const CDrawShape& shape) {
    std::vector<QPointF> points;
    points.reserve(shape.m_vertices.size());
    for (const CPoint2D& vertex : shape.m_vertices)
        points.push_back(Point(vertex));
    return points;
}

/// The side, told by its first vertex, that passes nearest; −1 without one within the tolerance.
int SideAt(const CDrawShape& shape, QPointF ground, double tolerance) {
    const std::vector<QPointF> points = VerticesOf(shape);
    const std::size_t sides =
        points.empty() ? 0 : points.size() - (shape.m_shapeKind == SHAPE_POLYGON ? 0 : 1);
    int nearest = -1;
    for (std::size_t i = 0; i < sides; ++i) {
        const double distance =
            DistanceToSegment(ground, points[i], points[(i + 1) % points.size()]);
        if (distance <= tolerance) {
            tolerance = distance;
            nearest = static_cast<int>(i);
        }
    }
    return nearest;
}

} // namespace

ShapePointer MakeShape(ShapeKind kind, const std::vector<QPointF>& points) {
    std::shared_ptr<CDrawShape> shape = NewShape(kind);
    if (!shape || points.size() < LeastPoints(kind))
        return nullptr;
    shape->m_useMark = USE_MARK_AOI;
    for (const QPointF& point : points)
        shape->AddVertex(Ground(point));
    if (IsBoxed(*shape)) {
        auto& box = static_cast<CDrawRectangle&>(*shape);
        box.UpdateExtent(); // it is inverted after a drag to the left or upwards
        if (!(box.m_width > 0.0 && box.m_height > 0.0))
            return nullptr;
    }
    shape->m_complete = true;
    return shape;
}

ShapePointer CopyOf(const CDrawShape* shape) {
    return ShapePointer(CDrawShape::CreateCopy(const_cast<CDrawShape*>(shape)));
}

bool IsArea(const CDrawShape& shape) {
    return IsBoxed(shape) || shape.m_shapeKind == SHAPE_POLYGON;
}

std::vector<QPointF> HandlesOf(const CDrawShape& shape) {
    if (shape.m_shapeKind == SHAPE_POINT)
        return {Point(static_cast<const CDrawPoint&>(shape).m_point)};
    if (!IsBoxed(shape))
        return VerticesOf(shape);
    const QRectF box = BoxOf(shape); // of the ground: its bottom is the greater y
    const double middle = box.center().x();
    const double centre = box.center().y();
    return {{box.left(), box.bottom()}, {middle, box.bottom()},   {box.right(), box.bottom()},
            {box.right(), centre},      {box.right(), box.top()}, {middle, box.top()},
            {box.left(), box.top()},    {box.left(), centre}};
}

int HandleAt(const CDrawShape& shape, QPointF ground, double tolerance) {
    const std::vector<QPointF> handles = HandlesOf(shape);
    for (std::size_t i = 0; i < handles.size(); ++i) {
        const QPointF away = handles[i] - ground;
        if (std::max(std::fabs(away.x()), std::fabs(away.y())) <= tolerance)
            return static_cast<int>(i);
    }
    return -1;
}

bool Holds(const CDrawShape& shape, QPointF ground, double tolerance) {
    if (shape.m_shapeKind == SHAPE_POINT)
        return HandleAt(shape, ground, tolerance) == 0;
    if (!IsArea(shape))
        return SideAt(shape, ground, tolerance) >= 0;
    const ShapePointer copy = CopyOf(&shape); // the engine's test notes what it hit
    return copy && const_cast<CDrawShape&>(*copy).TopoRelationWithPoint(Ground(ground), tolerance,
                                                                        1) == TOPO_CONTAIN;
}

ShapePointer MovedBy(const CDrawShape& shape, QPointF offset) {
    auto moved =
        std::shared_ptr<CDrawShape>(CDrawShape::CreateCopy(const_cast<CDrawShape*>(&shape)));
    if (moved)
        moved->SetOffset(offset.x(), offset.y());
    return moved;
}

ShapePointer WithHandleAt(const CDrawShape& shape, int handle, QPointF ground) {
    std::vector<QPointF> points;
    if (IsBoxed(shape)) {
        QRectF box = BoxOf(shape);
        // Clockwise from the top-left corner: 0, 6 and 7 are on the left, 2 to 4 on the right.
        if (handle == 0 || handle >= 6)
            box.setLeft(ground.x());
        if (handle >= 2 && handle <= 4)
            box.setRight(ground.x());
        if (handle <= 2)
            box.setBottom(ground.y());
        if (handle >= 4 && handle <= 6)
            box.setTop(ground.y());
        box = box.normalized();
        points = {box.bottomLeft(), box.topRight()};
    } else {
        points = HandlesOf(shape);
        if (handle < 0 || static_cast<std::size_t>(handle) >= points.size())
            return CopyOf(&shape);
        points[static_cast<std::size_t>(handle)] = ground;
    }
    const ShapePointer changed = Rebuilt(shape, points);
    return changed ? changed : CopyOf(&shape);
}

ShapePointer WithVertexInserted(const CDrawShape& shape, QPointF ground, double tolerance) {
    if (shape.m_shapeKind != SHAPE_POLYGON && shape.m_shapeKind != SHAPE_MULTILINE)
        return nullptr;
    const int side = SideAt(shape, ground, tolerance);
    if (side < 0)
        return nullptr;
    std::vector<QPointF> points = VerticesOf(shape);
    points.insert(points.begin() + side + 1, ground);
    return Rebuilt(shape, points);
}

ShapePointer WithVertexRemoved(const CDrawShape& shape, int vertex) {
    std::vector<QPointF> points = VerticesOf(shape);
    const bool hasVertices =
        shape.m_shapeKind == SHAPE_POLYGON || shape.m_shapeKind == SHAPE_MULTILINE;
    if (!hasVertices || vertex < 0 || static_cast<std::size_t>(vertex) >= points.size())
        return nullptr;
    points.erase(points.begin() + vertex);
    return Rebuilt(shape, points);
}

QPainterPath OutlineOf(const CDrawShape& shape, const ViewTransform& view) {
    QPainterPath path;
    if (IsBoxed(shape)) {
        const QRectF box = BoxOf(shape);
        const QRectF place(view.ToPixel(box.bottomLeft()), view.ToPixel(box.topRight()));
        if (shape.m_shapeKind == SHAPE_ELLIPSE)
            path.addEllipse(place);
        else
            path.addRect(place);
    } else if (shape.m_shapeKind == SHAPE_POINT) {
        path.addEllipse(view.ToPixel(HandlesOf(shape).front()), 4.0, 4.0);
    } else {
        QPolygonF points;
        for (const CPoint2D& vertex : shape.m_vertices)
            points.append(view.ToPixel(Point(vertex)));
        path.addPolygon(points);
        if (shape.m_shapeKind == SHAPE_POLYGON)
            path.closeSubpath();
    }
    return path;
}

} // namespace zelto::view
