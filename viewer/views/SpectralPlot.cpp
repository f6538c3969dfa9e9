#include "viewer/views/SpectralPlot.h"

#include "viewer/views/PlotAxes.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

constexpr double SPREAD = 2.0; ///< deviations around the mean
constexpr double PIXELS_PER_BAND = 26.0;

} // namespace

SpectralPlot::SpectralPlot(TrainingClasses& classes, QWidget* parent)
    : QWidget(parent), m_classes(classes) {
    setObjectName("spectra");
    setMinimumHeight(140);
    setToolTip(tr("Mean of each band, and two deviations around it"));
    connect(&classes, &TrainingClasses::SpectraChanged, this, qOverload<>(&QWidget::update));
    connect(&classes, &TrainingClasses::ClassesChanged, this, qOverload<>(&QWidget::update));
}

/// The bands from 0 on along x, their values along y.
PlotAxes SpectralPlot::MakeAxes() const {
    PlotAxes axes;
    bool isFirst = true;
    std::size_t bands = 1;
    for (const ClassSpectrum& spectrum : m_classes.Spectra()) {
        bands = std::max(bands, spectrum.mean.size());
        for (std::size_t b = 0; b < spectrum.mean.size(); ++b)
            for (const double side : {-SPREAD, SPREAD}) {
                axes.y.Include(spectrum.mean[b] + side * spectrum.deviation[b], isFirst);
                isFirst = false;
            }
    }
    if (!(axes.y.high > axes.y.low))
        axes.y.high = axes.y.low + 1.0;
    // A single band stands in the middle.
    axes.x = bands > 1 ? PlotAxes::Range{0.0, static_cast<double>(bands - 1)}
                       : PlotAxes::Range{-1.0, 1.0};
    axes.area = QRectF(rect()).adjusted(44, 10, -12, -22);
    return axes;
}

void SpectralPlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_classes.Spectra().empty()) {
        DrawInsteadOfPlot(painter, *this, tr("Give shapes a class, then compute the spectra"));
        return;
    }
    const PlotAxes axes = MakeAxes();
    DrawMarksOfY(painter, *this, axes);
    DrawBands(painter, axes);
    for (const ClassSpectrum& spectrum : m_classes.Spectra())
        DrawClass(painter, axes, spectrum);
}

/// The numbers of the bands, as many as there is room for.
void SpectralPlot::DrawBands(QPainter& painter, const PlotAxes& axes) const {
    for (const double band :
         MarksOf({axes.x.low + 1.0, axes.x.high + 1.0}, axes.area.width(), PIXELS_PER_BAND))
        if (band >= 1.0 && band == std::floor(band))
            DrawBelow(painter, *this, axes, axes.At(band - 1.0, axes.y.low).x(),
                      QString::number(static_cast<int>(band)));
}

void SpectralPlot::DrawClass(QPainter& painter, const PlotAxes& axes,
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
