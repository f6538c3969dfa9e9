#pragma once

#include "viewer/model/LayerFacts.h"

#include <QDialog>
#include <array>

class QGridLayout;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace zelto::view {

/// Asks for the three images and bands that are shown as red, green and blue.
class CompositionDialog : public QDialog {
    Q_OBJECT

  public:
    CompositionDialog(const QString& folder, QWidget* parent = nullptr);

    LayerOrigin Origin() const;

  private:
    void AddRow(QGridLayout& grid, int k, const QString& name, const QString& folder);
    void Enable();

    std::array<QLineEdit*, 3> m_paths{};
    std::array<QSpinBox*, 3> m_bands{};
    QPushButton* m_accept = nullptr;
};

} // namespace zelto::view
