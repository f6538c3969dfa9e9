#pragma once

#include "viewer/model/ViewTransform.h"
#include "viewer/views/MapTool.h"
#include "viewer/worker/Requests.h"

#include <QPointer>
#include <QWidget>
#include <functional>

namespace zelto::view {

/// The map: shows the last picture that was drawn, moved and scaled to the present view, and lets
/// the user pan and zoom. It draws nothing of the images itself and waits for nobody, so that a
/// frame costs the same whatever the engine is doing.
class MapView : public QWidget {
    Q_OBJECT

  public:
    explicit MapView(QWidget* parent = nullptr);

    /// In pixels of the screen, also where a pixel of the interface has several.
    const ViewTransform& View() const { return m_view; }
    void SetView(const ViewTransform& view);
    /// Shows all of a box, with a little air around it.
    void Fit(const CBoundingBox& box);
    void ZoomBy(double factor);
    /// Moves by parts of the view's sides: (1, 0) shows what was beyond the right edge.
    void PanBy(QPointF parts);

    void SetPicture(const Picture& picture);
    /// What stands in for places that no picture shows yet.
    void SetBackdrop(const Picture& picture);
    const Picture& Shown() const { return m_picture; }
    /// Forgets the pictures.
    void Clear();

    /// What the left button does; null: it pans. Not owned.
    void SetTool(MapTool* tool);
    MapTool* Tool() const { return m_tool; }
    /// Painted over the picture in every frame, in pixels of the screen.
    using Overlay = std::function<void(QPainter&, const ViewTransform&)>;
    void SetOverlay(const Overlay& overlay) { m_overlay = overlay; }
    /// Shown in the middle while there is nothing else to see.
    void SetHint(const QString& hint);

  signals:
    void ViewChanged();
    /// The pointer is over a point of the ground.
    void PointerMoved(QPointF ground);
    void PointerLeft();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    QPointF ToPixels(QPointF position) const { return position * devicePixelRatioF(); }
    QSize PixelSize() const;
    void DrawBackground(QPainter& painter) const;
    void DrawHint(QPainter& painter) const;
    bool PanWithKey(const QKeyEvent& event);
    void ChooseCursor();

    ViewTransform m_view;
    Picture m_picture;
    Picture m_backdrop;
    QPointer<MapTool> m_tool;
    Overlay m_overlay;
    QString m_hint;
    QPointF m_grabbed; ///< pixel that the drag began at or came to
    bool m_isPanning = false;
    bool m_isSpaceDown = false;
};

} // namespace zelto::view
