#pragma once

#include "viewer/model/ShapeEditing.h"
#include "viewer/worker/Requests.h"

#include <QObject>
#include <QSet>
#include <QUndoStack>
#include <vector>

namespace zelto::view {

/// A shape on the map.
struct AreaShape {
    int id = 0; ///< stays the same through edits
    ShapePointer shape;
    int trainingClass = 0; ///< number of its class; 0: none

    bool operator==(const AreaShape&) const = default;
};

/// The shapes drawn on the map, which of them are selected, and every step of their history.
class AreaModel : public QObject {
    Q_OBJECT

  public:
    explicit AreaModel(QObject* parent = nullptr);

    const std::vector<AreaShape>& All() const { return m_shapes; }
    const AreaShape* Find(int id) const;
    const QSet<int>& Selection() const { return m_selection; }
    void Select(const QSet<int>& ids);
    bool IsSelected(int id) const { return m_selection.contains(id); }
    /// The topmost shape that holds the point; −1 without one.
    int ShapeAt(QPointF ground, double tolerance) const;
    /// The shapes that cover ground: those selected, or all where none is.
    Shapes ChosenAreas() const;
    /// All shapes that cover ground.
    Shapes Areas() const;

    // Each a step that can be undone.
    void Add(const ShapePointer& shape);
    void AddAll(const Shapes& shapes, const QString& step);
    void Change(const std::vector<AreaShape>& changed, const QString& step);
    void RemoveSelected();
    void RemoveAll();
    void SetClassOfSelected(int trainingClass);

    QUndoStack& History() { return m_history; }

    /// Whether all shapes are in a file as they are.
    bool IsSaved() const { return m_shapes.empty() || m_history.isClean(); }
    /// The step of the history that the shapes stand at.
    int Step() const { return m_history.index(); }
    /// The shapes as they were at a step are in a file.
    void MarkSaved(int step);

  signals:
    void ShapesChanged();
    void SelectionChanged();

  private:
    friend class AreaStep;
    void Push(std::vector<AreaShape> after, const QString& step);
    void Restore(const std::vector<AreaShape>& shapes);

    std::vector<AreaShape> m_shapes;
    QSet<int> m_selection;
    QUndoStack m_history;
    int m_nextId = 1;
};

} // namespace zelto::view
