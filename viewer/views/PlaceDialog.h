#pragma once

#include "viewer/model/LayerFacts.h"
#include "viewer/worker/ImageWork.h"

#include <QDialog>
#include <array>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace zelto::view {

/// Asks where an image lies: the sides of the whole image, and the system they are in.
class PlaceDialog : public QDialog {
    Q_OBJECT

  public:
    PlaceDialog(const LayerFacts& facts, QWidget* parent = nullptr);

    Placement Chosen() const;

  private:
    void Check();

    std::array<QLineEdit*, 4> m_sides{}; ///< left, top, right, bottom
    QGroupBox* m_box;
    QLineEdit* m_srs;
    QLabel* m_remark;
    QPushButton* m_accept;
};

} // namespace zelto::view
