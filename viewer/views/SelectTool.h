#pragma once

#include "viewer/model/AreaModel.h"
#include "viewer/views/MapTool.h"

#include <QRectF>
#include <vector>

namespace zelto::view {

/// Selects shapes by clicks and boxes, moves them, and drags their vertices and handles. A double
/// click on a side puts a vertex there; Delete removes the vertex last taken, or else the shapes.
class SelectTool : public MapTool {
    Q_OBJECT

  public:
    SelectTool(AreaModel& areas, QObject* parent);

    void Press(const MapPointer& pointer) override;
    void Move(const MapPointer& pointer, bool isDown) override;
    void Release(const MapPointer& pointer) override;
    void DoubleClick(const MapPointer& pointer) override;
    bool Key(const QKeyEvent& event) override;
    void Paint(QPainter& painter, const ViewTransform& view) const override;
    QCursor Cursor() const override { return Qt::ArrowCursor; }
    void Leave() override;

    /// Removes the vertex that was last taken hold of.
    /// @return false where there is none, or the shape needs it
    bool RemoveVertex();

  private:
    enum class Drag { None, Selection, Handle, Box };

    bool TakeHandle(const MapPointer& pointer);
    void SelectAt(int id, Qt::KeyboardModifiers modifiers);
    void SelectInBox(Qt::KeyboardModifiers modifiers);
    std::vector<AreaShape> Dragged() const;

    AreaModel& m_areas;
    Drag m_drag = Drag::None;
    QPointF m_from;
    QPointF m_to;
    int m_shape = -1; ///< whose handle was taken
    int m_handle = -1;
};

} // namespace zelto::view
