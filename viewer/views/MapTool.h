#pragma once

#include "viewer/model/ViewTransform.h"

#include <QCursor>
#include <QObject>

class QKeyEvent;
class QPainter;

namespace zelto::view {

/// Where the pointer is, and what is held down.
struct MapPointer {
    QPointF pixel;
    QPointF ground;
    double tolerance = 0.0; ///< ground units that count as a hit
    Qt::KeyboardModifiers modifiers;
};

/// What the left button does on the map. Tools see ground coordinates and change models; the map
/// itself they only paint on.
class MapTool : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    virtual void Press(const MapPointer& pointer) = 0;
    virtual void Move(const MapPointer& pointer, bool isDown) = 0;
    virtual void Release(const MapPointer& pointer) = 0;
    virtual void DoubleClick(const MapPointer&) {}
    /// Answers whether the key was meant for the tool.
    virtual bool Key(const QKeyEvent&) { return false; }
    virtual void Paint(QPainter&, const ViewTransform&) const {}
    virtual QCursor Cursor() const { return Qt::CrossCursor; }
    /// The user chose another tool.
    virtual void Leave() {}

  signals:
    void Changed();
};

} // namespace zelto::view
