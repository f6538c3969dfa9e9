#pragma once

#include <QWidget>

class QLabel;
class QSlider;

namespace zelto::view {

/// A slider with its name before it and its value behind; a double click puts it back to 0.
class LabeledSlider : public QWidget {
    Q_OBJECT

  public:
    /// @param least,most in hundredths, as the value shown
    LabeledSlider(const QString& name, int least, int most, QWidget* parent = nullptr);

    float Value() const;
    void SetValue(float value);
    /// For panels that align the names of several.
    QLabel* Name() const { return m_name; }

  signals:
    /// The user moved it.
    void Moved();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void ShowValue();

    QLabel* m_name;
    QSlider* m_slider;
    QLabel* m_value;
};

} // namespace zelto::view
