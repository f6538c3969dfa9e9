#include "viewer/views/BandForm.h"

#include "host/picture/RenderRamps.h"
#include "viewer/model/Document.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <algorithm>

namespace zelto::view {

BandForm::BandForm(QWidget* parent)
    : QWidget(parent), m_mode(new QComboBox), m_ramp(new QComboBox) {
    auto* form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    m_mode->setObjectName("mode");
    m_mode->addItems({tr("Red, green and blue"), tr("A single band")});
    m_mode->setToolTip(tr("Show three bands as colours, or one"));
    form->addRow(tr("Show"), m_mode);
    for (std::size_t k = 0; k < m_bands.size(); ++k) {
        m_bands[k] = new QComboBox;
        m_bands[k]->setObjectName(QString("band%1").arg(k));
        m_bands[k]->setToolTip(tr("The band to show"));
        m_labels[k] = new QLabel;
        form->addRow(m_labels[k], m_bands[k]);
        connect(m_bands[k], &QComboBox::currentIndexChanged, this, &BandForm::Tell);
    }
    m_ramp->setObjectName("ramp");
    m_ramp->setToolTip(tr("Colours of a single band"));
    m_ramp->addItem(tr("None"), QString());
    for (const QString& name : QString::fromStdString(host::RampNames()).split(", "))
        m_ramp->addItem(name, name);
    form->addRow(tr("Colour ramp"), m_ramp);
    connect(m_mode, &QComboBox::currentIndexChanged, this, &BandForm::Tell);
    connect(m_ramp, &QComboBox::currentIndexChanged, this, &BandForm::Tell);
}

void BandForm::ShowLayer(const Layer& layer) {
    m_isFilling = true;
    const std::vector<int>& shown = layer.settings.bands;
    m_mode->setCurrentIndex(shown.size() == 1 ? 1 : 0);
    m_mode->setEnabled(!layer.origin.IsComposed());
    ShowNames(layer);
    const QString names[] = {IsSingle() ? tr("Band") : tr("Red"), tr("Green"), tr("Blue")};
    for (std::size_t k = 0; k < m_bands.size(); ++k) {
        m_bands[k]->setCurrentIndex(k < shown.size() ? shown[k] : 0);
        m_bands[k]->setEnabled(!layer.origin.IsComposed());
        m_labels[k]->setText(names[k]);
        m_bands[k]->setVisible(k == 0 || !IsSingle());
        m_labels[k]->setVisible(k == 0 || !IsSingle());
    }
    m_ramp->setCurrentIndex(std::max(m_ramp->findData(layer.settings.ramp), 0));
    m_ramp->setEnabled(IsSingle());
    m_isFilling = false;
}

void BandForm::ShowNames(const Layer& layer) {
    const int count = static_cast<int>(layer.facts.bands.size());
    for (QComboBox* box : m_bands) {
        if (box->count() == count)
            continue;
        box->clear();
        for (int band = 1; band <= count; ++band)
            box->addItem(tr("Band %1").arg(band));
    }
}

void BandForm::Fill(DisplaySettings& settings) const {
    settings.bands.clear();
    for (std::size_t k = 0; k < (IsSingle() ? 1U : 3U); ++k)
        settings.bands.push_back(std::max(m_bands[k]->currentIndex(), 0));
    settings.ramp = IsSingle() ? m_ramp->currentData().toString() : QString();
}

bool BandForm::IsSingle() const {
    return m_mode->currentIndex() == 1;
}

void BandForm::Tell() {
    if (!m_isFilling)
        emit Edited();
}

} // namespace zelto::view
