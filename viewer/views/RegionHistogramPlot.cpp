#include "viewer/views/RegionHistogramPlot.h"

#include "viewer/views/PlotAxes.h"
#include "viewer/views/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace zelto::view {

namespace {

constexpr int TEXT_HEIGHT = 16;

/// Pixels per unit of value, so that buckets of different widths compare.
double Density(const host::BandHistogram& histogram, int count) {
    return static_cast<double>(count) / histogram.width;
}

QColor ColorOf(int band, int bandCount) {
    if (bandCount <= 1)
        return ChannelColor(0, true);
    return QColor::fromHsv(240 * band / (bandCount - 1), 190, IsDark() ? 230 : 190);
}

} // namespace

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

/// Values along x, densities from 0 along y.
PlotAxes RegionHistogramPlot::MakeAxes() const {
    PlotAxes axes;
    axes.area = QRectF(rect()).adjusted(10, 6, -10, -TEXT_HEIGHT - 4);
    axes.y = {0.0, 0.0};
    for (const RegionHistogram& each : m_histograms) {
        const host::BandHistogram& histogram = each.histogram;
        if (histogram.counts.empty())
            continue;
        axes.x.Include(histogram.low, axes.y.high == 0.0);
        axes.x.Include(histogram.High(), false);
        for (const int count : histogram.counts)
            axes.y.high = std::max(axes.y.high, Density(histogram, count));
    }
    return axes;
}

void RegionHistogramPlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const PlotAxes axes = MakeAxes();
    if (!(axes.y.high > 0.0)) {
        DrawInsteadOfPlot(painter, *this, tr("No values"));
        return;
    }
    DrawMarksOfX(painter, *this, axes);
    for (const RegionHistogram& each : m_histograms)
        DrawCurve(painter, axes, each);
}

void RegionHistogramPlot::DrawCurve(QPainter& painter, const PlotAxes& axes,
                                    const RegionHistogram& histogram) const {
    const host::BandHistogram& counted = histogram.histogram;
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
