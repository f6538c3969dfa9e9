#pragma once

#include "viewer/worker/Requests.h"

#include <QWidget>
#include <optional>

namespace zelto::view {

/// The histogram of a shown band with the two bounds that its stretch goes between. The bounds
/// can be dragged, each by itself or, from the middle, both.
class HistogramView : public QWidget {
    Q_OBJECT

  public:
    explicit HistogramView(QWidget* parent = nullptr);

    void SetColor(const QColor& color);
    /// Without a histogram the view is empty.
    void SetHistogram(const std::optional<BandHistogram>& histogram);
    void SetBounds(const Bounds& bounds);
    const std::optional<BandHistogram>& Histogram() const { return m_histogram; }
    Bounds ShownBounds() const { return m_bounds; }
    QSize sizeHint() const override { return {220, 78}; }

  signals:
    void BoundsDragged();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    enum class Grip { None, Low, High, Both };

    QRectF PlotArea() const;
    double ToPosition(double value) const;
    double ToValue(double position) const;
    Grip GripAt(double position) const;
    void DrawBars(QPainter& painter, const QRectF& area) const;
    void DrawBounds(QPainter& painter, const QRectF& area) const;

    QColor m_color;
    std::optional<BandHistogram> m_histogram;
    Bounds m_bounds;
    Grip m_grip = Grip::None;
    double m_grabbed = 0.0; ///< value that a drag began at or came to
};

} // namespace zelto::view
