#include "viewer/views/DrawTool.h"

#include "viewer/model/AreaModel.h"
#include "viewer/views/AreaPainting.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace zelto::view {

DrawTool::DrawTool(AreaModel& areas, ShapeKind kind, QObject* parent)
    : MapTool(parent), m_areas(areas), m_kind(kind) {
    connect(&areas, &AreaModel::ShapesChanged, this, &MapTool::Changed);
    connect(&areas, &AreaModel::SelectionChanged, this, &MapTool::Changed);
}

void DrawTool::Press(const MapPointer& pointer) {
    m_pointer = pointer.ground;
    if (IsDragged())
        m_points.clear();
    m_points.push_back(pointer.ground);
    if (m_kind == SHAPE_POINT)
        Finish();
    emit Changed();
}

void DrawTool::Move(const MapPointer& pointer, bool isDown) {
    m_pointer = IsDragged() && isDown ? OppositeCorner(pointer) : pointer.ground;
    if (!m_points.empty())
        emit Changed();
}

void DrawTool::Release(const MapPointer& pointer) {
    if (!IsDragged() || m_points.empty())
        return;
    m_points.push_back(OppositeCorner(pointer));
    Finish();
}

/// The second click of a double one has added its vertex already.
void DrawTool::DoubleClick(const MapPointer&) {
    if (!IsDragged())
        Finish();
}

QPointF DrawTool::OppositeCorner(const MapPointer& pointer) const {
    if (!pointer.modifiers.testFlag(Qt::ShiftModifier) || m_points.empty())
        return pointer.ground;
    const QPointF away = pointer.ground - m_points.front();
    const double side = std::max(std::fabs(away.x()), std::fabs(away.y()));
    return m_points.front() + QPointF(std::copysign(side, away.x()), std::copysign(side, away.y()));
}

void DrawTool::Finish() {
    m_areas.Add(MakeShape(m_kind, m_points));
    m_points.clear();
    emit Changed();
}

bool DrawTool::Key(const QKeyEvent& event) {
    if (m_points.empty())
        return false;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Finish();
        return true;
    case Qt::Key_Backspace:
        m_points.pop_back();
        emit Changed();
        return true;
    case Qt::Key_Escape:
        Leave();
        return true;
    default:
        return false;
    }
}

void DrawTool::Leave() {
    m_points.clear();
    emit Changed();
}

void DrawTool::Paint(QPainter& painter, const ViewTransform& view) const {
    if (m_points.empty())
        return;
    std::vector<QPointF> points = m_points;
    points.push_back(m_pointer);
    const bool isPolygonBegun = m_kind == SHAPE_POLYGON && points.size() < 3;
    if (const ShapePointer shape = MakeShape(isPolygonBegun ? SHAPE_MULTILINE : m_kind, points))
        PaintSketch(painter, OutlineOf(*shape, view));
    for (const QPointF& point : m_points)
        PaintHandle(painter, view.ToPixel(point));
}

} // namespace zelto::view
