#pragma once

#include "viewer/model/ViewTransform.h"

#include <QPainterPath>

class QPainter;

namespace zelto::view {

class AreaModel;
class TrainingClasses;

/// All shapes with their classes' colours, the selected ones with their handles.
void PaintAreas(QPainter& painter, const ViewTransform& view, const AreaModel& areas,
                const TrainingClasses& training);
/// Something that is being drawn or dragged.
void PaintSketch(QPainter& painter, const QPainterPath& outline);
void PaintHandle(QPainter& painter, QPointF pixel);

} // namespace zelto::view
