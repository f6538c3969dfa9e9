#pragma once

#include <QPointF>
#include <QRectF>
#include <vector>

class QPainter;
class QString;
class QWidget;

namespace zelto::view {

/// Where the values of a plot lie on its widget. Both ranges go upwards and are not empty.
struct PlotAxes {
    struct Range {
        double low = 0.0;
        double high = 1.0;

        /// Makes room for a value; the first one stands alone.
        void Include(double value, bool isFirst);
    };

    QRectF area;
    Range x;
    Range y;

    QPointF At(double valueX, double valueY) const;
};

/// The round numbers that an axis of so many pixels has room for.
std::vector<double> MarksOf(const PlotAxes::Range& range, double pixels, double perMark);

// Marks, lines and texts in the colours and the small font of the widget's plots.

/// Upright lines with their numbers below.
void DrawMarksOfX(QPainter& painter, const QWidget& widget, const PlotAxes& axes);
/// Lines across with their numbers at the left.
void DrawMarksOfY(QPainter& painter, const QWidget& widget, const PlotAxes& axes);
/// A text below the position, moved inwards where it would leave the widget.
void DrawBelow(QPainter& painter, const QWidget& widget, const PlotAxes& axes, double x,
               const QString& text);
/// What stands in place of a plot that has nothing to show.
void DrawInsteadOfPlot(QPainter& painter, const QWidget& widget, const QString& text);

} // namespace zelto::view
