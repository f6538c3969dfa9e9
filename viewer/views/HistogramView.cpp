#include "viewer/views/HistogramView.h"

#include "viewer/views/StatusLine.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

constexpr int TEXT_HEIGHT = 16;
constexpr double GRIP_PIXELS = 7.0;

} // namespace

HistogramView::HistogramView(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setMinimumHeight(64);
    setToolTip(tr("Drag the bounds to stretch between them"));
}

void HistogramView::SetColor(const QColor& color) {
    m_color = color;
    update();
}

void HistogramView::SetHistogram(const std::optional<BandHistogram>& histogram) {
    m_histogram = histogram;
    update();
}

void HistogramView::SetBounds(const Bounds& bounds) {
    if (m_grip != Grip::None || !std::isfinite(bounds.high - bounds.low))
        return;
    m_bounds = bounds;
    update();
}

QRectF HistogramView::PlotArea() const {
    return QRectF(rect()).adjusted(8, 4, -8, -TEXT_HEIGHT);
}

double HistogramView::ToPosition(double value) const {
    const QRectF area = PlotArea();
    const Bounds& range = m_histogram->range;
    const double span = range.high - range.low;
    return area.left() + (span > 0.0 ? (value - range.low) / span : 0.0) * area.width();
}

double HistogramView::ToValue(double position) const {
    const QRectF area = PlotArea();
    const Bounds& range = m_histogram->range;
    const double part = std::clamp((position - area.left()) / area.width(), 0.0, 1.0);
    const double value = range.low + part * (range.high - range.low);
    return m_histogram->whole ? std::round(value) : value;
}

void HistogramView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = PlotArea();
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0, 0, 0, -TEXT_HEIGHT + 3), 4, 4);
    if (!m_histogram || m_histogram->counts.empty())
        return;
    DrawBars(painter, area);
    DrawBounds(painter, area);
}

/// Heights by the square root, so that rare values are seen beside frequent ones.
void HistogramView::DrawBars(QPainter& painter, const QRectF& area) const {
    const std::vector<int>& counts = m_histogram->counts;
    const int most = *std::max_element(counts.begin(), counts.end());
    if (most <= 0)
        return;
    QPainterPath outline(area.bottomLeft());
    const double step = area.width() / static_cast<double>(counts.size());
    double x = area.left();
    for (const int count : counts) {
        const double y =
            area.bottom() - area.height() * std::sqrt(static_cast<double>(count) / most);
        outline.lineTo(x, y);
        outline.lineTo(x += step, y);
    }
    outline.lineTo(area.bottomRight());
    QColor pale = m_color;
    pale.setAlpha(70);
    painter.fillPath(outline, pale);
    painter.save();
    painter.setClipRect(QRectF(QPointF(ToPosition(m_bounds.low), area.top()),
                               QPointF(ToPosition(m_bounds.high), area.bottom())));
    painter.fillPath(outline, m_color);
    painter.restore();
}

void HistogramView::DrawBounds(QPainter& painter, const QRectF& area) const {
    const QColor color = palette().color(QPalette::WindowText);
    for (const double value : {m_bounds.low, m_bounds.high}) {
        const double x = std::clamp(ToPosition(value), area.left(), area.right());
        painter.setPen(QPen(color, 1.4));
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(QPointF(x, area.bottom()), 4.0, 4.0);
    }
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    painter.setFont(small);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const QRectF line(0, height() - TEXT_HEIGHT + 3, width(), TEXT_HEIGHT - 3);
    painter.drawText(line.adjusted(4, 0, 0, 0), Qt::AlignLeft, ReadableNumber(m_bounds.low));
    painter.drawText(line.adjusted(0, 0, -4, 0), Qt::AlignRight, ReadableNumber(m_bounds.high));
}

HistogramView::Grip HistogramView::GripAt(double position) const {
    if (!m_histogram || m_histogram->counts.empty())
        return Grip::None;
    const double low = ToPosition(m_bounds.low);
    const double high = ToPosition(m_bounds.high);
    const double toLow = std::fabs(position - low);
    const double toHigh = std::fabs(position - high);
    if (std::min(toLow, toHigh) <= GRIP_PIXELS)
        return toLow < toHigh || (toLow == toHigh && position < low) ? Grip::Low : Grip::High;
    return position > low && position < high ? Grip::Both : Grip::None;
}

void HistogramView::mousePressEvent(QMouseEvent* event) {
    m_grip = event->button() == Qt::LeftButton ? GripAt(event->position().x()) : Grip::None;
    if (m_grip != Grip::None)
        m_grabbed = ToValue(event->position().x());
}

void HistogramView::mouseMoveEvent(QMouseEvent* event) {
    const double position = event->position().x();
    if (m_grip == Grip::None) {
        const Grip grip = GripAt(position);
        setCursor(grip == Grip::None   ? Qt::ArrowCursor
                  : grip == Grip::Both ? Qt::OpenHandCursor
                                       : Qt::SizeHorCursor);
        return;
    }
    const double value = ToValue(position);
    const Bounds before = m_bounds;
    const double least = (m_histogram->range.high - m_histogram->range.low) / 1000.0;
    if (m_grip == Grip::Low) {
        m_bounds.low = std::min(value, m_bounds.high - least);
    } else if (m_grip == Grip::High) {
        m_bounds.high = std::max(value, m_bounds.low + least);
    } else {
        m_bounds.low += value - m_grabbed;
        m_bounds.high += value - m_grabbed;
        m_grabbed = value;
    }
    if (m_bounds == before)
        return;
    update();
    emit BoundsDragged();
}

void HistogramView::mouseReleaseEvent(QMouseEvent*) {
    m_grip = Grip::None;
}

} // namespace zelto::view
