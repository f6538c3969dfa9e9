#include "viewer/views/OverviewMap.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace zelto::view {

namespace {

constexpr int MARGIN = 8;
/// A smaller mark of the view could not be seen.
constexpr double LEAST_MARK = 6.0;

} // namespace

OverviewMap::OverviewMap(QWidget* parent) : QWidget(parent) {
    setObjectName("overview");
    setMinimumHeight(110);
    setCursor(Qt::PointingHandCursor);
    setToolTip(tr("Click or drag to move the view"));
}

void OverviewMap::SetPicture(const Picture& picture) {
    m_picture = picture;
    update();
}

void OverviewMap::SetView(const ViewTransform& view) {
    m_view = view;
    update();
}

ViewTransform OverviewMap::Fitted() const {
    const QSize inner = size() - QSize(2 * MARGIN, 2 * MARGIN);
    return ViewTransform::Fitting(m_picture.view.Box(), inner).Resized(size());
}

void OverviewMap::paintEvent(QPaintEvent*) {
    if (m_picture.image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHints(QPainter::SmoothPixmapTransform | QPainter::Antialiasing);
    const ViewTransform fitted = Fitted();
    const QRectF place = fitted.PlaceOf(m_picture.view);
    painter.fillRect(place, palette().color(QPalette::Dark));
    painter.drawImage(place, m_picture.image);
    if (!m_view.IsValid())
        return;
    QRectF mark = fitted.PlaceOf(m_view);
    const QPointF middle = mark.center();
    mark.setSize(mark.size().expandedTo({LEAST_MARK, LEAST_MARK}));
    mark.moveCenter(middle);
    QPainterPath outside;
    outside.addRect(place);
    QPainterPath inside;
    inside.addRect(mark);
    painter.fillPath(outside.subtracted(inside), QColor(0, 0, 0, 90));
    painter.setPen(QPen(palette().color(QPalette::Highlight).lighter(125), 2.0));
    painter.drawRect(mark.intersected(QRectF(rect()).adjusted(1, 1, -1, -1)));
}

void OverviewMap::mousePressEvent(QMouseEvent* event) {
    Choose(event->position());
}

void OverviewMap::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton))
        Choose(event->position());
}

void OverviewMap::Choose(QPointF position) {
    if (!m_picture.image.isNull())
        emit CenterChosen(Fitted().ToGround(position));
}

} // namespace zelto::view
