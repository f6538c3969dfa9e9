#include "viewer/views/MapView.h"

#include "viewer/views/MapTool.h"
#include "viewer/views/PicturePainting.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

/// Three notches of the wheel about double the scale.
constexpr double ZOOM_PER_NOTCH = 1.25;
constexpr double NOTCH = 120.0;
constexpr double KEY_PAN = 0.15;
constexpr double HIT_PIXELS = 6.0;
/// Air around an image that is fitted into the view.
constexpr double FIT_MARGIN = 0.98;
/// Numbers beyond these are of no use to anybody and would leave what floating point can hold.
constexpr double LEAST_SCALE = 1e-12;
constexpr double LARGEST_SCALE = 1e12;

MapPointer PointerAt(QPointF pixel, const ViewTransform& view, Qt::KeyboardModifiers modifiers,
                     double pixelRatio) {
    return {pixel, view.ToGround(pixel), HIT_PIXELS * pixelRatio * view.Scale(), modifiers};
}

} // namespace

MapView::MapView(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(160, 120);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setObjectName("map");
    setAccessibleName(tr("Map"));
    ChooseCursor();
}

QSize MapView::PixelSize() const {
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

void MapView::SetView(const ViewTransform& view) {
    if (!view.IsValid() || view.Scale() < LEAST_SCALE || view.Scale() > LARGEST_SCALE ||
        view == m_view)
        return;
    m_view = view;
    update();
    emit ViewChanged();
}

void MapView::Fit(const CBoundingBox& box) {
    const ViewTransform fitting = ViewTransform::Fitting(box, PixelSize());
    SetView(fitting.WithScale(fitting.Scale() / FIT_MARGIN));
}

void MapView::ZoomBy(double factor) {
    SetView(
        m_view.ZoomedAround(QPointF(m_view.Size().width(), m_view.Size().height()) / 2.0, factor));
}

void MapView::PanBy(QPointF parts) {
    SetView(m_view.MovedBy({-std::round(parts.x() * m_view.Size().width()),
                            -std::round(parts.y() * m_view.Size().height())}));
}

void MapView::SetPicture(const Picture& picture) {
    m_picture = picture;
    update();
}

void MapView::SetBackdrop(const Picture& picture) {
    m_backdrop = picture;
    update();
}

void MapView::Clear() {
    m_picture = {};
    m_backdrop = {};
    update();
}

void MapView::SetTool(MapTool* tool) {
    if (m_tool)
        m_tool->Leave();
    m_tool = tool;
    if (m_tool)
        connect(m_tool, &MapTool::Changed, this, qOverload<>(&MapView::update),
                Qt::UniqueConnection);
    ChooseCursor();
    update();
}

void MapView::SetHint(const QString& hint) {
    m_hint = hint;
    update();
}

void MapView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    DrawBackground(painter);
    painter.scale(1.0 / devicePixelRatioF(), 1.0 / devicePixelRatioF());
    // Only where the picture leaves something open: blowing it up costs more than all the rest.
    QRegion open(QRect(QPoint(), m_view.Size()));
    if (!m_picture.image.isNull())
        open -= CoveredBy(m_picture, m_view);
    if (!open.isEmpty() && !m_backdrop.image.isNull()) {
        painter.save();
        painter.setClipRegion(open);
        PaintPicture(painter, m_backdrop, m_view);
        painter.restore();
    }
    PaintPicture(painter, m_picture, m_view);
    if (m_overlay)
        m_overlay(painter, m_view);
    if (m_tool)
        m_tool->Paint(painter, m_view);
    painter.resetTransform();
    if (m_picture.image.isNull() && m_backdrop.image.isNull())
        DrawHint(painter);
}

void MapView::DrawBackground(QPainter& painter) const {
    painter.fillRect(rect(), palette().color(QPalette::Dark));
}

void MapView::DrawHint(QPainter& painter) const {
    if (m_hint.isEmpty())
        return;
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * 1.25);
    painter.setFont(larger);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, m_hint);
}

void MapView::resizeEvent(QResizeEvent*) {
    if (m_view.Size().isEmpty())
        m_view = m_view.Resized(PixelSize());
    else
        SetView(m_view.Resized(PixelSize()));
}

void MapView::mousePressEvent(QMouseEvent* event) {
    const QPointF pixel = ToPixels(event->position());
    const bool isLeft = event->button() == Qt::LeftButton;
    if (event->button() == Qt::MiddleButton || (isLeft && (!m_tool || m_isSpaceDown))) {
        m_isPanning = true;
        m_grabbed = pixel;
        ChooseCursor();
    } else if (isLeft && m_tool) {
        m_tool->Press(PointerAt(pixel, m_view, event->modifiers(), devicePixelRatioF()));
    }
}

void MapView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF pixel = ToPixels(event->position());
    if (m_isPanning) {
        SetView(m_view.MovedBy(pixel - m_grabbed));
        m_grabbed = pixel;
    } else if (m_tool) {
        m_tool->Move(PointerAt(pixel, m_view, event->modifiers(), devicePixelRatioF()),
                     event->buttons().testFlag(Qt::LeftButton));
    }
    emit PointerMoved(m_view.ToGround(pixel));
}

void MapView::mouseReleaseEvent(QMouseEvent* event) {
    const QPointF pixel = ToPixels(event->position());
    if (m_isPanning && event->button() != Qt::RightButton) {
        m_isPanning = false;
        ChooseCursor();
    } else if (event->button() == Qt::LeftButton && m_tool) {
        m_tool->Release(PointerAt(pixel, m_view, event->modifiers(), devicePixelRatioF()));
    }
}

void MapView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const QPointF pixel = ToPixels(event->position());
    if (m_tool)
        m_tool->DoubleClick(PointerAt(pixel, m_view, event->modifiers(), devicePixelRatioF()));
    else
        SetView(m_view.ZoomedAround(pixel, 2.0));
}

void MapView::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / NOTCH;
    if (notches != 0.0)
        SetView(m_view.ZoomedAround(ToPixels(event->position()),
                                    std::pow(ZOOM_PER_NOTCH, std::clamp(notches, -20.0, 20.0))));
    event->accept();
}

bool MapView::PanWithKey(const QKeyEvent& event) {
    const double step = event.modifiers().testFlag(Qt::ShiftModifier) ? 1.0 : KEY_PAN;
    switch (event.key()) {
    case Qt::Key_Left:
        PanBy({-step, 0.0});
        return true;
    case Qt::Key_Right:
        PanBy({step, 0.0});
        return true;
    case Qt::Key_Up:
        PanBy({0.0, -step});
        return true;
    case Qt::Key_Down:
        PanBy({0.0, step});
        return true;
    default:
        return false;
    }
}

void MapView::keyPressEvent(QKeyEvent* event) {
    if (m_tool && m_tool->Key(*event))
        return;
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        m_isSpaceDown = true;
        ChooseCursor();
    } else if (!PanWithKey(*event)) {
        QWidget::keyPressEvent(event);
    }
}

void MapView::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        m_isSpaceDown = false;
        ChooseCursor();
    } else {
        QWidget::keyReleaseEvent(event);
    }
}

void MapView::leaveEvent(QEvent*) {
    emit PointerLeft();
}

void MapView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        update();
    QWidget::changeEvent(event);
}

void MapView::ChooseCursor() {
    if (m_isPanning)
        setCursor(Qt::ClosedHandCursor);
    else
        setCursor(m_tool && !m_isSpaceDown ? m_tool->Cursor() : QCursor(Qt::OpenHandCursor));
}

} // namespace zelto::view
