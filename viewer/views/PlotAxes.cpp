#include "viewer/views/PlotAxes.h"

#include "host/picture/Plot.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QString>
#include <QWidget>
#include <algorithm>

namespace zelto::view {

namespace {

constexpr double PIXELS_PER_MARK_OF_X = 70.0;
constexpr double PIXELS_PER_MARK_OF_Y = 32.0;
constexpr double GAP = 4.0;

QFont SmallFont(const QWidget& widget) {
    QFont small = widget.font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    return small;
}

QColor TextColor(const QWidget& widget) {
    return widget.palette().color(QPalette::PlaceholderText);
}

void DrawLine(QPainter& painter, const QWidget& widget, QPointF from, QPointF to) {
    QColor pale = TextColor(widget);
    pale.setAlpha(70);
    painter.setPen(pale);
    painter.drawLine(from, to);
}

void DrawText(QPainter& painter, const QWidget& widget, const QRectF& place, int alignment,
              const QString& text) {
    painter.setFont(SmallFont(widget));
    painter.setPen(TextColor(widget));
    painter.drawText(place, alignment, text);
}

QString TextOf(double value) {
    return QString::fromStdString(host::TickLabel(value));
}

} // namespace

void PlotAxes::Range::Include(double value, bool isFirst) {
    low = isFirst ? value : std::min(low, value);
    high = isFirst ? value : std::max(high, value);
}

QPointF PlotAxes::At(double valueX, double valueY) const {
    return {area.left() + (valueX - x.low) / (x.high - x.low) * area.width(),
            area.bottom() - (valueY - y.low) / (y.high - y.low) * area.height()};
}

std::vector<double> MarksOf(const PlotAxes::Range& range, double pixels, double perMark) {
    return host::RoundTicks(range.low, range.high, std::max(static_cast<int>(pixels / perMark), 2));
}

void DrawMarksOfX(QPainter& painter, const QWidget& widget, const PlotAxes& axes) {
    for (const double value : MarksOf(axes.x, axes.area.width(), PIXELS_PER_MARK_OF_X)) {
        const double x = axes.At(value, axes.y.low).x();
        DrawLine(painter, widget, {x, axes.area.bottom()}, {x, axes.area.top()});
        DrawBelow(painter, widget, axes, x, TextOf(value));
    }
}

void DrawMarksOfY(QPainter& painter, const QWidget& widget, const PlotAxes& axes) {
    const double height = QFontMetricsF(SmallFont(widget)).height();
    for (const double value : MarksOf(axes.y, axes.area.height(), PIXELS_PER_MARK_OF_Y)) {
        const double y = axes.At(axes.x.low, value).y();
        DrawLine(painter, widget, {axes.area.left(), y}, {axes.area.right(), y});
        DrawText(painter, widget, {0.0, y - height / 2.0, axes.area.left() - GAP, height},
                 Qt::AlignRight | Qt::AlignVCenter, TextOf(value));
    }
}

void DrawBelow(QPainter& painter, const QWidget& widget, const PlotAxes& axes, double x,
               const QString& text) {
    const QFontMetricsF metrics(SmallFont(widget));
    const double width = metrics.horizontalAdvance(text) + 2.0;
    const double left = std::clamp(x - width / 2.0, 0.0, std::max(widget.width() - width, 0.0));
    DrawText(painter, widget, {left, axes.area.bottom() + GAP, width, metrics.height()},
             Qt::AlignCenter, text);
}

void DrawInsteadOfPlot(QPainter& painter, const QWidget& widget, const QString& text) {
    painter.setPen(TextColor(widget));
    painter.drawText(widget.rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                     text);
}

} // namespace zelto::view
