#include "viewer/views/SelectTool.h"

#include "viewer/views/AreaPainting.h"

#include <QKeyEvent>
#include <QPainter>

namespace zelto::view {

SelectTool::SelectTool(AreaModel& areas, QObject* parent) : MapTool(parent), m_areas(areas) {
    connect(&areas, &AreaModel::ShapesChanged, this, [this] {
        m_handle = -1;
        emit Changed();
    });
    connect(&areas, &AreaModel::SelectionChanged, this, &MapTool::Changed);
}

bool SelectTool::TakeHandle(const MapPointer& pointer) {
    for (const AreaShape& each : m_areas.All()) {
        const int handle = m_areas.IsSelected(each.id)
                               ? HandleAt(*each.shape, pointer.ground, pointer.tolerance)
                               : -1;
        if (handle < 0)
            continue;
        m_shape = each.id;
        m_handle = handle;
        return true;
    }
    m_shape = m_handle = -1;
    return false;
}

void SelectTool::Press(const MapPointer& pointer) {
    m_from = m_to = pointer.ground;
    if (TakeHandle(pointer)) {
        m_drag = Drag::Handle;
        return;
    }
    const int hit = m_areas.ShapeAt(pointer.ground, pointer.tolerance);
    m_drag = hit < 0 ? Drag::Box : Drag::Selection;
    if (hit >= 0)
        SelectAt(hit, pointer.modifiers);
}

/// With Control a click adds a shape or takes it away; else a shape not yet selected becomes the
/// only one, and one that is stays with the others, to be moved with them.
void SelectTool::SelectAt(int id, Qt::KeyboardModifiers modifiers) {
    QSet<int> ids = m_areas.Selection();
    if (modifiers.testFlag(Qt::ControlModifier)) {
        if (!ids.remove(id))
            ids.insert(id);
    } else if (!ids.contains(id)) {
        ids = {id};
    }
    m_areas.Select(ids);
}

void SelectTool::Move(const MapPointer& pointer, bool isDown) {
    if (!isDown || m_drag == Drag::None)
        return;
    m_to = pointer.ground;
    emit Changed();
}

std::vector<AreaShape> SelectTool::Dragged() const {
    std::vector<AreaShape> changed;
    for (const AreaShape& each : m_areas.All()) {
        AreaShape after = each;
        if (m_drag == Drag::Handle && each.id == m_shape)
            after.shape = WithHandleAt(*each.shape, m_handle, m_to);
        else if (m_drag == Drag::Selection && m_areas.IsSelected(each.id))
            after.shape = MovedBy(*each.shape, m_to - m_from);
        else
            continue;
        if (after.shape)
            changed.push_back(after);
    }
    return changed;
}

void SelectTool::Release(const MapPointer& pointer) {
    m_to = pointer.ground;
    if (m_drag == Drag::Box) {
        SelectInBox(pointer.modifiers);
    } else if (m_drag != Drag::None && m_to != m_from) {
        const int handle = m_handle;
        m_areas.Change(Dragged(), m_drag == Drag::Handle ? tr("Reshape") : tr("Move"));
        m_handle = handle; // still the one that Delete is for
    }
    m_drag = Drag::None;
    emit Changed();
}

void SelectTool::SelectInBox(Qt::KeyboardModifiers modifiers) {
    const QRectF box = QRectF(m_from, m_to).normalized();
    QSet<int> ids = modifiers.testFlag(Qt::ControlModifier) ? m_areas.Selection() : QSet<int>();
    for (const AreaShape& each : m_areas.All())
        for (const QPointF& handle : HandlesOf(*each.shape))
            if (box.contains(handle))
                ids.insert(each.id);
    m_areas.Select(ids);
}

void SelectTool::DoubleClick(const MapPointer& pointer) {
    m_drag = Drag::None;
    for (const AreaShape& each : m_areas.All()) {
        const ShapePointer shape =
            m_areas.IsSelected(each.id)
                ? WithVertexInserted(*each.shape, pointer.ground, pointer.tolerance)
                : nullptr;
        if (!shape)
            continue;
        m_areas.Change({{each.id, shape, each.trainingClass}}, tr("Add a vertex"));
        return;
    }
}

bool SelectTool::RemoveVertex() {
    const AreaShape* shape = m_handle >= 0 ? m_areas.Find(m_shape) : nullptr;
    const ShapePointer changed = shape ? WithVertexRemoved(*shape->shape, m_handle) : nullptr;
    if (!changed)
        return false;
    m_areas.Change({{shape->id, changed, shape->trainingClass}}, tr("Remove a vertex"));
    return true;
}

bool SelectTool::Key(const QKeyEvent& event) {
    if (event.key() != Qt::Key_Escape)
        return false;
    m_areas.Select({});
    return true;
}

void SelectTool::Leave() {
    m_drag = Drag::None;
    m_handle = -1;
}

void SelectTool::Paint(QPainter& painter, const ViewTransform& view) const {
    if (m_drag == Drag::Box && m_from != m_to)
        PaintSketch(painter, [&] {
            QPainterPath path;
            path.addRect(QRectF(view.ToPixel(m_from), view.ToPixel(m_to)).normalized());
            return path;
        }());
    if (m_drag == Drag::Selection || m_drag == Drag::Handle) {
        if (m_from == m_to)
            return;
        for (const AreaShape& each : Dragged())
            PaintSketch(painter, OutlineOf(*each.shape, view));
    }
}

} // namespace zelto::view
