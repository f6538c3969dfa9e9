#pragma once

#include "viewer/worker/HistogramWork.h"

#include <QWidget>

namespace zelto::view {

struct PlotAxes;

/// Histograms as curves over one axis of values, each band in a colour of its own.
class RegionHistogramPlot : public QWidget {
    Q_OBJECT

  public:
    explicit RegionHistogramPlot(QWidget* parent = nullptr);
    QSize sizeHint() const override { return {420, 150}; }

    /// @param bandCount of the image, so that a band shown alone keeps its colour
    void SetHistograms(const std::vector<RegionHistogram>& histograms, int bandCount);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    PlotAxes MakeAxes() const;
    void DrawCurve(QPainter& painter, const PlotAxes& axes, const RegionHistogram& histogram) const;

    std::vector<RegionHistogram> m_histograms;
    int m_bandCount = 0;
};

} // namespace zelto::view
