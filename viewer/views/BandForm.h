#pragma once

#include "viewer/model/DisplaySettings.h"

#include <QWidget>
#include <array>

class QComboBox;
class QLabel;

namespace zelto::view {

struct Layer;

/// Which bands are shown: three as colours, or one in greys or a ramp.
class BandForm : public QWidget {
    Q_OBJECT

  public:
    explicit BandForm(QWidget* parent = nullptr);

    /// @param layer that is open
    void ShowLayer(const Layer& layer);
    /// Puts what the user chose into the settings.
    void Fill(DisplaySettings& settings) const;

  signals:
    void Edited();

  private:
    bool IsSingle() const;
    void ShowNames(const Layer& layer);
    void Tell();

    QComboBox* m_mode;
    std::array<QComboBox*, 3> m_bands{};
    std::array<QLabel*, 3> m_labels{};
    QComboBox* m_ramp;
    bool m_isFilling = false;
};

} // namespace zelto::view
