#include "viewer/model/AreaModel.h"

#include <QUndoCommand>
#include <algorithm>

namespace zelto::view {

/// A step of the history. It holds the lists before and after; the shapes in them are shared.
class AreaStep : public QUndoCommand {
  public:
    AreaStep(AreaModel& model, std::vector<AreaShape> after, const QString& text)
        : QUndoCommand(text), m_model(model), m_before(model.m_shapes), m_after(std::move(after)) {}

    void undo() override { m_model.Restore(m_before); }
    void redo() override { m_model.Restore(m_after); }

  private:
    AreaModel& m_model;
    std::vector<AreaShape> m_before;
    std::vector<AreaShape> m_after;
};

AreaModel::AreaModel(QObject* parent) : QObject(parent) {}

const AreaShape* AreaModel::Find(int id) const {
    const auto found = std::find_if(m_shapes.begin(), m_shapes.end(),
                                    [id](const AreaShape& s) { return s.id == id; });
    return found != m_shapes.end() ? &*found : nullptr;
}

void AreaModel::Select(const QSet<int>& ids) {
    if (ids == m_selection)
        return;
    m_selection = ids;
    emit SelectionChanged();
}

int AreaModel::ShapeAt(QPointF ground, double tolerance) const {
    for (auto each = m_shapes.rbegin(); each != m_shapes.rend(); ++each)
        if (Holds(*each->shape, ground, tolerance))
            return each->id;
    return -1;
}

Shapes AreaModel::ChosenAreas() const {
    Shapes chosen;
    for (const AreaShape& each : m_shapes)
        if (m_selection.contains(each.id) && IsArea(*each.shape))
            chosen.push_back(each.shape);
    return chosen.empty() ? Areas() : chosen;
}

Shapes AreaModel::Areas() const {
    Shapes areas;
    for (const AreaShape& each : m_shapes)
        if (IsArea(*each.shape))
            areas.push_back(each.shape);
    return areas;
}

void AreaModel::Add(const ShapePointer& shape) {
    if (!shape)
        return;
    AddAll({shape}, tr("Draw"));
}

void AreaModel::AddAll(const Shapes& shapes, const QString& step) {
    std::vector<AreaShape> after = m_shapes;
    QSet<int> added;
    for (const ShapePointer& shape : shapes) {
        added.insert(m_nextId);
        after.push_back({m_nextId++, shape, 0});
    }
    Push(std::move(after), step);
    Select(added);
}

void AreaModel::Change(const std::vector<AreaShape>& changed, const QString& step) {
    std::vector<AreaShape> after = m_shapes;
    for (AreaShape& each : after)
        for (const AreaShape& replacement : changed)
            if (replacement.id == each.id)
                each = replacement;
    Push(std::move(after), step);
}

void AreaModel::RemoveSelected() {
    std::vector<AreaShape> after = m_shapes;
    std::erase_if(after, [this](const AreaShape& s) { return m_selection.contains(s.id); });
    Push(std::move(after), tr("Delete"));
}

void AreaModel::RemoveAll() {
    Push({}, tr("Delete all"));
}

void AreaModel::SetClassOfSelected(int trainingClass) {
    std::vector<AreaShape> after = m_shapes;
    for (AreaShape& each : after)
        if (m_selection.contains(each.id) && IsArea(*each.shape))
            each.trainingClass = trainingClass;
    Push(std::move(after), tr("Choose class"));
}

void AreaModel::Push(std::vector<AreaShape> after, const QString& step) {
    if (after != m_shapes)
        m_history.push(new AreaStep(*this, std::move(after), step));
}

void AreaModel::Restore(const std::vector<AreaShape>& shapes) {
    m_shapes = shapes;
    QSet<int> remaining;
    for (const AreaShape& each : m_shapes)
        if (m_selection.contains(each.id))
            remaining.insert(each.id);
    emit ShapesChanged();
    Select(remaining);
}

void AreaModel::MarkSaved(int step) {
    if (m_history.index() == step)
        m_history.setClean(); // else they have changed while they were written
}

} // namespace zelto::view
