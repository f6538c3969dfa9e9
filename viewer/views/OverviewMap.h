#pragma once

#include "viewer/model/ViewTransform.h"
#include "viewer/worker/Requests.h"

#include <QWidget>

namespace zelto::view {

/// The small picture of everything with the present view marked; a click or drag moves the view.
class OverviewMap : public QWidget {
    Q_OBJECT

  public:
    explicit OverviewMap(QWidget* parent = nullptr);

    void SetPicture(const Picture& picture);
    void SetView(const ViewTransform& view);
    QSize sizeHint() const override { return {240, 180}; }

  signals:
    /// The view is to have this point in its middle.
    void CenterChosen(QPointF ground);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

  private:
    /// The picture's view, scaled to this widget.
    ViewTransform Fitted() const;
    void Choose(QPointF position);

    Picture m_picture;
    ViewTransform m_view;
};

} // namespace zelto::view
