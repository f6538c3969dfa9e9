#include "viewer/views/PicturePainting.h"

#include <QPainter>

namespace zelto::view {

namespace {

bool IsScaled(const Picture& picture, const ViewTransform& view) {
    return picture.view.Scale() != view.Scale();
}

} // namespace

void PaintPicture(QPainter& painter, const Picture& picture, const ViewTransform& view) {
    if (picture.image.isNull())
        return;
    const QRectF place = view.PlaceOf(picture.view);
    if (!IsScaled(picture, view)) {
        // Whole pixels only: a picture that is moved stays as sharp as it was drawn.
        painter.drawImage(place.topLeft().toPoint(), picture.image);
        return;
    }
    // Painting only what is seen keeps a frame quick when a small part is blown up.
    const QRectF seen = place.intersected(QRectF(QPointF(), QSizeF(view.Size())));
    if (seen.isEmpty())
        return;
    const double toPicture = view.Scale() / picture.view.Scale();
    const QRectF part((seen.topLeft() - place.topLeft()) * toPicture, seen.size() * toPicture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, toPicture > 1.0);
    painter.drawImage(seen, picture.image, part);
}

QRect CoveredBy(const Picture& picture, const ViewTransform& view) {
    const QRectF place = view.PlaceOf(picture.view);
    if (IsScaled(picture, view))
        return place.toAlignedRect().adjusted(1, 1, -1, -1);
    return {place.topLeft().toPoint(), picture.image.size()};
}

} // namespace zelto::view
