#include "viewer/views/RegionHistogramPlot.h"

#include "viewer/views/StatusLine.h"
#include "viewer/views/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace zelto::view {

namespace {

constexpr int MARKS = 6;
constexpr int TEXT_HEIGHT = 16;

/// Pixels per unit of value, so that buckets of different widths compare.
double Density(const cli::BandHistogram& histogram, int count) {
    return static_cast<double>(count) / histogram.width;
}

QColor ColorOf(int band, int bandCount) {
    if (bandCount <= 1)
        return ChannelColor(0, true);
    return QColor::fromHsv(240 * band / (bandCount - 1), 190, IsDark() ? 230 : 190);
}

} // namespace

/// Where values and densities lie on the widget.
struct RegionHistogramPlot::Axes {
    QRectF area;
    double low = 0.0;
    double high = 1.0;
    double most = 0.0;

    QPointF At(double value, double density) const {
        return {area.left() + (value - low) / (high - low) * area.width(),
                area.bottom() - density / most * area.height()};
    }
};

RegionHistogramPlot::RegionHistogramPlot(QWidget* parent) : QWidget(parent) {
    setObjectName("regionHistogram");
    setMinimumSize(200, 80);
    setToolTip(tr("How often each value occurs in the area"));
}

void RegionHistogramPlot::SetHistograms(const std::vector<RegionHistogram>& histograms,
                                        int bandCount) {
    m_histograms = histograms;
    m_bandCount = bandCount;
    update();
}

RegionHistogramPlot::Axes RegionHistogramPlot::MakeAxes() const {
    Axes axes;
    axes.area = QRectF(rect()).adjusted(10, 6, -10, -TEXT_HEIGHT - 4);
    for (const RegionHistogram& each : m_histograms) {
        const cli::BandHistogram& histogram = each.histogram;
        if (histogram.counts.empty())
            continue;
        const bool isFirst = axes.most == 0.0;
        axes.low = isFirst ? histogram.low : std::min(axes.low, histogram.low);
        axes.high = isFirst ? histogram.High() : std::max(axes.high, histogram.High());
        for (const int count : histogram.counts)
            axes.most = std::max(axes.most, Density(histogram, count));
    }
    return axes;
}

void RegionHistogramPlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Axes axes = MakeAxes();
    if (!(axes.most > 0.0)) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("No values"));
        return;
    }
    DrawAxes(painter, axes);
    for (const RegionHistogram& each : m_histograms)
        DrawCurve(painter, axes, each);
}

void RegionHistogramPlot::DrawAxes(QPainter& painter, const Axes& axes) const {
    QColor line = palette().color(QPalette::PlaceholderText);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    painter.setFont(small);
    for (int i = 0; i <= MARKS; ++i) {
        const double value = axes.low + (axes.high - axes.low) * i / MARKS;
        const QPointF foot = axes.At(value, 0.0);
        line.setAlpha(70);
        painter.setPen(line);
        painter.drawLine(foot, QPointF(foot.x(), axes.area.top()));
        line.setAlpha(255);
        painter.setPen(line);
        const QRectF place(foot.x() - 40, foot.y() + 4, 80, TEXT_HEIGHT);
        const bool isEnd = i == 0 || i == MARKS;
        painter.drawText(isEnd ? place.translated(i == 0 ? 32 : -32, 0) : place,
                         i == 0       ? Qt::AlignLeft
                         : i == MARKS ? Qt::AlignRight
                                      : Qt::AlignHCenter,
                         ReadableNumber(value));
    }
}

void RegionHistogramPlot::DrawCurve(QPainter& painter, const Axes& axes,
                                    const RegionHistogram& histogram) const {
    const cli::BandHistogram& counted = histogram.histogram;
    if (counted.counts.empty())
        return;
    QPainterPath outline(axes.At(counted.low, 0.0));
    double from = counted.low;
    for (const int count : counted.counts) {
        const double density = Density(counted, count);
        outline.lineTo(axes.At(from, density));
        outline.lineTo(axes.At(from += counted.width, density));
    }
    outline.lineTo(axes.At(from, 0.0));
    const QColor color = ColorOf(histogram.band, m_bandCount);
    QColor pale = color;
    pale.setAlpha(40);
    painter.fillPath(outline, pale);
    painter.setPen(QPen(color, 1.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(outline);
}

} // namespace zelto::view
