#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <QPointF>
#include <QRectF>
#include <QSize>

namespace zelto::view {

/// Which part of the ground a picture shows: the ground point in its middle, the ground units a
/// pixel, the same in both directions, and the picture's size. Pixels are those of the screen,
/// positions 0 at the picture's top-left corner, y downwards; ground has y upwards.
///
/// A value: every movement makes a new one, so that a picture can keep the one it was drawn for.
class ViewTransform {
  public:
    ViewTransform() = default;
    ViewTransform(QPointF center, double scale, QSize size);

    /// The view that shows all of a box, as large as fits. A box without area is given one.
    static ViewTransform Fitting(const CBoundingBox& box, QSize size);

    /// Whether it has pixels and a finite, positive scale.
    bool IsValid() const;
    QPointF Center() const { return m_center; }
    double Scale() const { return m_scale; }
    QSize Size() const { return m_size; }

    CBoundingBox Box() const;
    QPointF ToGround(QPointF pixel) const;
    QPointF ToPixel(QPointF ground) const;
    /// Where the pixels of a picture drawn for `other` lie in this view.
    QRectF PlaceOf(const ViewTransform& other) const;
    QRectF PlaceOf(const CBoundingBox& box) const;

    ViewTransform Resized(QSize size) const { return {m_center, m_scale, size}; }
    /// The ground moves along with the pointer.
    ViewTransform MovedBy(QPointF pixels) const;
    ViewTransform CenteredAt(QPointF ground) const { return {ground, m_scale, m_size}; }
    /// The ground under `pixel` stays there.
    ViewTransform ZoomedAround(QPointF pixel, double factor) const;
    ViewTransform WithScale(double scale) const { return {m_center, scale, m_size}; }
    /// The nearest view whose pixels cover those of a grid with a corner at `corner` and pixels of
    /// the view's own scale: what is then drawn 1:1 shows every pixel once.
    ViewTransform AlignedTo(QPointF corner) const;

    bool operator==(const ViewTransform&) const = default;

  private:
    QPointF m_center;
    double m_scale = 1.0;
    QSize m_size;
};

} // namespace zelto::view
