#pragma once

#include "viewer/model/ShapeEditing.h"
#include "viewer/views/MapTool.h"

#include <vector>

namespace zelto::view {

class AreaModel;

/// Draws shapes of one kind. Rectangles and ellipses are dragged from corner to corner, with
/// Shift as squares and circles; of lines and polygons each click adds a vertex, a double click
/// or Enter finishes, Backspace takes the last vertex back and Escape all of them.
class DrawTool : public MapTool {
    Q_OBJECT

  public:
    DrawTool(AreaModel& areas, ShapeKind kind, QObject* parent);

    void Press(const MapPointer& pointer) override;
    void Move(const MapPointer& pointer, bool isDown) override;
    void Release(const MapPointer& pointer) override;
    void DoubleClick(const MapPointer& pointer) override;
    bool Key(const QKeyEvent& event) override;
    void Paint(QPainter& painter, const ViewTransform& view) const override;
    void Leave() override;

  private:
    bool IsDragged() const { return m_kind == SHAPE_RECTANGLE || m_kind == SHAPE_ELLIPSE; }
    QPointF OppositeCorner(const MapPointer& pointer) const;
    void Finish();

    AreaModel& m_areas;
    ShapeKind m_kind;
    std::vector<QPointF> m_points; ///< on the ground
    QPointF m_pointer;             ///< the next vertex, where the pointer is
};

} // namespace zelto::view
