#include "viewer/views/LabeledSlider.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

namespace zelto::view {

namespace {

constexpr int VALUE_WIDTH = 34;

} // namespace

LabeledSlider::LabeledSlider(const QString& name, int least, int most, QWidget* parent)
    : QWidget(parent),
      m_name(new QLabel(name)),
      m_slider(new QSlider(Qt::Horizontal)),
      m_value(new QLabel) {
    m_name->setBuddy(m_slider);
    m_slider->setRange(least, most);
    m_slider->setPageStep(10);
    m_slider->setAccessibleName(name);
    m_slider->setToolTip(tr("%1; a double click puts it back").arg(name));
    m_slider->installEventFilter(this);
    m_value->setMinimumWidth(VALUE_WIDTH);
    m_value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_name);
    layout->addWidget(m_slider, 1);
    layout->addWidget(m_value);
    connect(m_slider, &QSlider::valueChanged, this, [this] {
        ShowValue();
        emit Moved();
    });
    ShowValue();
}

float LabeledSlider::Value() const {
    return static_cast<float>(m_slider->value()) / 100.0F;
}

void LabeledSlider::SetValue(float value) {
    const QSignalBlocker quiet(m_slider);
    m_slider->setValue(qRound(value * 100.0F));
    ShowValue();
}

void LabeledSlider::ShowValue() {
    m_value->setText(QString::number(m_slider->value()));
}

bool LabeledSlider::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick) {
        m_slider->setValue(0);
        return true;
    }
    return QWidget::eventFilter(object, event);
}

} // namespace zelto::view
