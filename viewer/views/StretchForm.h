#pragma once

#include "zelto/display/StretchPreparation.h"

#include "viewer/model/DisplaySettings.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;

namespace zelto::view {

/// The stretch and what it takes: only the parameters of the chosen one are shown.
class StretchForm : public QWidget {
    Q_OBJECT

  public:
    explicit StretchForm(QWidget* parent = nullptr);

    void ShowSettings(const DisplaySettings& settings);
    /// Puts what the user chose into the settings.
    void Fill(DisplaySettings& settings) const;

  signals:
    void Edited();

  private:
    QDoubleSpinBox* AddNumber(const QString& name, const QString& tip, double least, double most,
                              double step, int decimals);
    bool Takes(CStretchPreparation::Setting setting) const;
    void ShowParameters();

    QFormLayout* m_form;
    QComboBox* m_stretch;
    QDoubleSpinBox* m_clipLow;
    QDoubleSpinBox* m_clipHigh;
    QDoubleSpinBox* m_low;
    QDoubleSpinBox* m_high;
    QDoubleSpinBox* m_threshold;
    QDoubleSpinBox* m_gamma;
    QComboBox* m_wallisModel;
    QCheckBox* m_ofView;
    bool m_isFilling = false;
};

} // namespace zelto::view
