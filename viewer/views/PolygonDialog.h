#pragma once

#include "viewer/model/LayerFacts.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QSpinBox;

namespace zelto::view {

/// Asks which band becomes polygons, and where they go.
class PolygonDialog : public QDialog {
    Q_OBJECT

  public:
    PolygonDialog(const LayerFacts& facts, const QString& folder, QWidget* parent = nullptr);

    QString Path() const;
    /// From 1.
    int Band() const;
    bool JoinsCorners() const;

  private:
    QLineEdit* m_path;
    QSpinBox* m_band;
    QCheckBox* m_corners;
};

} // namespace zelto::view
