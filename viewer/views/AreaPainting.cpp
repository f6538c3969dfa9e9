#include "viewer/views/AreaPainting.h"

#include "viewer/model/AreaModel.h"
#include "viewer/model/TrainingClasses.h"

#include <QPainter>

namespace zelto::view {

namespace {

constexpr double HANDLE_HALF = 4.0;
/// More handles than these would only hide the shape.
constexpr std::size_t MOST_HANDLES = 400;
const QColor PLAIN(255, 214, 64);

/// Pixels of the screen for one of the interface: everything is as large as it looks elsewhere.
double PixelsOf(const QPainter& painter) {
    return painter.device()->devicePixelRatioF();
}

/// Over any image: a dark line under a bright one.
void StrokeTwice(QPainter& painter, const QPainterPath& outline, const QColor& color,
                 double width) {
    const double pixels = PixelsOf(painter);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 150), (width + 2.0) * pixels, Qt::SolidLine, Qt::RoundCap,
                        Qt::RoundJoin));
    painter.drawPath(outline);
    painter.setPen(QPen(color, width * pixels, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(outline);
}

} // namespace

void PaintAreas(QPainter& painter, const ViewTransform& view, const AreaModel& areas,
                const TrainingClasses& training) {
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF seen = QRectF(QPointF(), QSizeF(view.Size())).adjusted(-8, -8, 8, 8);
    for (const AreaShape& each : areas.All()) {
        const QPainterPath outline = OutlineOf(*each.shape, view);
        if (!outline.boundingRect().adjusted(-1, -1, 1, 1).intersects(seen))
            continue;
        const TrainingClass* owner = training.Find(each.trainingClass);
        const QColor color = owner != nullptr ? owner->color : PLAIN;
        const bool isSelected = areas.IsSelected(each.id);
        QColor fill = color;
        fill.setAlpha(isSelected ? 70 : 34);
        if (IsArea(*each.shape))
            painter.fillPath(outline, fill);
        StrokeTwice(painter, outline, color, isSelected ? 2.4 : 1.6);
        if (!isSelected)
            continue;
        const auto handles = HandlesOf(*each.shape);
        for (std::size_t i = 0; i < handles.size() && handles.size() <= MOST_HANDLES; ++i)
            PaintHandle(painter, view.ToPixel(handles[i]));
    }
}

void PaintSketch(QPainter& painter, const QPainterPath& outline) {
    painter.setRenderHint(QPainter::Antialiasing);
    StrokeTwice(painter, outline, Qt::white, 1.4);
}

void PaintHandle(QPainter& painter, QPointF pixel) {
    const double half = HANDLE_HALF * PixelsOf(painter);
    painter.setPen(QPen(QColor(20, 20, 20), 1.2 * PixelsOf(painter)));
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(pixel - QPointF(half, half), QSizeF(2 * half, 2 * half)));
}

} // namespace zelto::view
