#pragma once

#include "viewer/model/TrainingClasses.h"

#include <QWidget>

namespace zelto::view {

struct PlotAxes;

/// Per class the mean of each band as a line, and two deviations around it as a ribbon.
class SpectralPlot : public QWidget {
    Q_OBJECT

  public:
    SpectralPlot(TrainingClasses& classes, QWidget* parent = nullptr);
    QSize sizeHint() const override { return {260, 190}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    PlotAxes MakeAxes() const;
    void DrawBands(QPainter& painter, const PlotAxes& axes) const;
    void DrawClass(QPainter& painter, const PlotAxes& axes, const ClassSpectrum& spectrum) const;

    TrainingClasses& m_classes;
};

} // namespace zelto::view
