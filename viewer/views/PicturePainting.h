#pragma once

#include "viewer/worker/Requests.h"

#include <QRect>

class QPainter;

namespace zelto::view {

/// Lays a picture drawn for another view where its pixels belong in this one.
void PaintPicture(QPainter& painter, const Picture& picture, const ViewTransform& view);

/// The pixels that PaintPicture() covers wholly.
QRect CoveredBy(const Picture& picture, const ViewTransform& view);

} // namespace zelto::view
