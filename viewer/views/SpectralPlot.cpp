#include "viewer/views/SpectralPlot.h"

#include "viewer/views/StatusLine.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

constexpr int LINES = 4;
constexpr double SPREAD = 2.0; ///< deviations around the mean

} // namespace

/// Where bands and values lie on the widget.
struct SpectralPlot::Axes {
    QRectF area;
    double low = 0.0;
    double high = 1.0;
    int bands = 0;

    QPointF At(int band, double value) const {
        const double step = bands > 1 ? area.width() / (bands - 1) : 0.0;
        const double part = (value - low) / (high - low);
        return {bands > 1 ? area.left() + band * step : area.center().x(),
                area.bottom() - part * area.height()};
    }
};

SpectralPlot::SpectralPlot(TrainingClasses& classes, QWidget* parent)
    : QWidget(parent), m_classes(classes) {
    setObjectName("spectra");
    setMinimumHeight(140);
    setToolTip(tr("Mean of each band, and two deviations around it"));
    connect(&classes, &TrainingClasses::SpectraChanged, this, qOverload<>(&QWidget::update));
    connect(&classes, &TrainingClasses::ClassesChanged, this, qOverload<>(&QWidget::update));
}

SpectralPlot::Axes SpectralPlot::MakeAxes() const {
    Axes axes;
    bool first = true;
    for (const ClassSpectrum& spectrum : m_classes.Spectra()) {
        axes.bands = std::max(axes.bands, static_cast<int>(spectrum.mean.size()));
        for (std::size_t b = 0; b < spectrum.mean.size(); ++b) {
            const double low = spectrum.mean[b] - SPREAD * spectrum.deviation[b];
            const double high = spectrum.mean[b] + SPREAD * spectrum.deviation[b];
            axes.low = first ? low : std::min(axes.low, low);
            axes.high = first ? high : std::max(axes.high, high);
            first = false;
        }
    }
    if (!(axes.high > axes.low))
        axes.high = axes.low + 1.0;
    axes.area = QRectF(rect()).adjusted(44, 10, -12, -22);
    return axes;
}

void SpectralPlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Axes axes = MakeAxes();
    if (axes.bands == 0) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("Give shapes a class, then compute the spectra"));
        return;
    }
    DrawAxes(painter, axes);
    for (const ClassSpectrum& spectrum : m_classes.Spectra())
        DrawClass(painter, axes, spectrum);
}

void SpectralPlot::DrawAxes(QPainter& painter, const Axes& axes) const {
    QColor line = palette().color(QPalette::PlaceholderText);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    painter.setFont(small);
    for (int i = 0; i <= LINES; ++i) {
        const double value = axes.low + (axes.high - axes.low) * i / LINES;
        const double y = axes.At(0, value).y();
        line.setAlpha(70);
        painter.setPen(line);
        painter.drawLine(QPointF(axes.area.left(), y), QPointF(axes.area.right(), y));
        line.setAlpha(255);
        painter.setPen(line);
        painter.drawText(QRectF(0, y - 8, axes.area.left() - 6, 16),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(value, 'g', 4));
    }
    const int step = std::max(1, axes.bands / 10);
    for (int band = 0; band < axes.bands; band += step)
        painter.drawText(QRectF(axes.At(band, axes.low).x() - 20, axes.area.bottom() + 4, 40, 16),
                         Qt::AlignHCenter | Qt::AlignTop, QString::number(band + 1));
}

void SpectralPlot::DrawClass(QPainter& painter, const Axes& axes,
                             const ClassSpectrum& spectrum) const {
    const TrainingClass* owner = m_classes.Find(spectrum.number);
    if (owner == nullptr || spectrum.mean.empty())
        return;
    const int bands = static_cast<int>(spectrum.mean.size());
    QPolygonF mean;
    QPolygonF ribbon;
    for (int b = 0; b < bands; ++b) {
        const auto i = static_cast<std::size_t>(b);
        mean.append(axes.At(b, spectrum.mean[i]));
        ribbon.append(axes.At(b, spectrum.mean[i] + SPREAD * spectrum.deviation[i]));
    }
    for (int b = bands - 1; b >= 0; --b) {
        const auto i = static_cast<std::size_t>(b);
        ribbon.append(axes.At(b, spectrum.mean[i] - SPREAD * spectrum.deviation[i]));
    }
    QColor pale = owner->color;
    pale.setAlpha(50);
    painter.setPen(Qt::NoPen);
    painter.setBrush(pale);
    painter.drawPolygon(ribbon);
    painter.setPen(QPen(owner->color, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(mean);
    painter.setBrush(owner->color);
    for (const QPointF& point : mean)
        painter.drawEllipse(point, 2.4, 2.4);
}

} // namespace zelto::view
