#include "viewer/views/StretchForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <algorithm>
#include <utility>

namespace zelto::view {

namespace {

constexpr double FAR = 1e12;

} // namespace

StretchForm::StretchForm(QWidget* parent)
    : QWidget(parent),
      m_form(new QFormLayout(this)),
      m_stretch(new QComboBox),
      m_wallisModel(new QComboBox),
      m_ofView(new QCheckBox) {
    m_form->setContentsMargins(0, 0, 0, 0);
    m_stretch->setObjectName("stretch");
    m_stretch->setToolTip(tr("How the values become brightness"));
    const std::pair<const char*, QString> names[] = {
        {"auto", tr("Automatic")},
        {"percent", tr("Between percentiles")},
        {"stddev", tr("Two deviations around the mean")},
        {"linear", tr("Linear")},
        {"none", tr("None (8-bit values as they are)")},
        {"table", tr("Gamma curve")},
        {"equalize", tr("Histogram equalisation")},
        {"custom-equalize", tr("Equalisation between bounds")},
        {"autolevels", tr("Auto levels")},
        {"wallis", tr("Wallis filter")},
        {"zoom002", tr("Display range, spread")},
        {"zoom", tr("Display range, zoomed")}};
    for (const auto& [name, label] : names)
        m_stretch->addItem(label, QString(name));
    m_form->addRow(tr("Stretch"), m_stretch);
    m_clipLow =
        AddNumber(tr("Darkest"), tr("Percent of the values that become black"), 0.0, 49.9, 0.5, 2);
    m_clipHigh =
        AddNumber(tr("Brightest"), tr("Percent of the values below white"), 50.1, 100.0, 0.5, 2);
    m_clipLow->setSuffix(" %");
    m_clipHigh->setSuffix(" %");
    m_low = AddNumber(tr("From"), tr("Least value that is spread"), -FAR, FAR, 1.0, 3);
    m_high = AddNumber(tr("To"), tr("Greatest value that is spread"), -FAR, FAR, 1.0, 3);
    m_threshold =
        AddNumber(tr("Cut off"), tr("Percent of the values cut at each end"), 0.0, 49.0, 0.5, 2);
    m_threshold->setSuffix(" %");
    m_gamma = AddNumber(tr("Gamma"), tr("Above 1 brightens the dark parts"), 0.1, 10.0, 0.1, 2);
    m_wallisModel->addItems({tr("Model 1"), tr("Model 2"), tr("Model 3")});
    m_form->addRow(tr("Colours"), m_wallisModel);
    m_ofView->setText(tr("By what is in view"));
    m_ofView->setToolTip(tr("Stretch by the values in view instead of the whole image"));
    m_form->addRow(QString(), m_ofView);
    connect(m_ofView, &QCheckBox::toggled, this, [this] {
        if (!m_isFilling)
            emit Edited();
    });
    for (QComboBox* box : {m_stretch, m_wallisModel}) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        connect(box, &QComboBox::currentIndexChanged, this, [this] {
            ShowParameters();
            if (!m_isFilling)
                emit Edited();
        });
    }
    ShowParameters();
}

QDoubleSpinBox* StretchForm::AddNumber(const QString& name, const QString& tip, double least,
                                       double most, double step, int decimals) {
    auto* box = new QDoubleSpinBox;
    box->setRange(least, most);
    box->setSingleStep(step);
    box->setDecimals(decimals);
    box->setToolTip(tip);
    box->setKeyboardTracking(false);
    m_form->addRow(name, box);
    connect(box, &QDoubleSpinBox::valueChanged, this, [this] {
        if (!m_isFilling)
            emit Edited();
    });
    return box;
}

bool StretchForm::Takes(CStretchPreparation::Setting setting) const {
    return CStretchPreparation::Takes(m_stretch->currentData().toString().toStdString(), setting);
}

void StretchForm::ShowParameters() {
    using Setting = CStretchPreparation::Setting;
    m_form->setRowVisible(m_clipLow, Takes(Setting::Clip));
    m_form->setRowVisible(m_clipHigh, Takes(Setting::Clip));
    m_form->setRowVisible(m_low, Takes(Setting::Bounds));
    m_form->setRowVisible(m_high, Takes(Setting::Bounds));
    m_form->setRowVisible(m_threshold, Takes(Setting::Threshold));
    m_form->setRowVisible(m_gamma, Takes(Setting::Gamma));
    m_form->setRowVisible(m_wallisModel, Takes(Setting::WallisModel));
    m_form->setRowVisible(m_ofView, Takes(Setting::Region));
}

void StretchForm::ShowSettings(const DisplaySettings& settings) {
    m_isFilling = true;
    m_stretch->setCurrentIndex(std::max(m_stretch->findData(settings.stretch), 0));
    m_clipLow->setValue(settings.clip.low);
    m_clipHigh->setValue(settings.clip.high);
    m_low->setValue(settings.low.value_or(0.0));
    m_high->setValue(settings.high.value_or(255.0));
    m_threshold->setValue(settings.threshold * 100.0);
    m_gamma->setValue(settings.gamma);
    m_wallisModel->setCurrentIndex(settings.wallisModel);
    m_ofView->setChecked(settings.ofView);
    m_isFilling = false;
    ShowParameters();
}

void StretchForm::Fill(DisplaySettings& settings) const {
    settings.stretch = m_stretch->currentData().toString();
    settings.clip = {m_clipLow->value(), m_clipHigh->value()};
    const bool hasBounds =
        Takes(CStretchPreparation::Setting::Bounds) && m_low->value() < m_high->value();
    settings.low = hasBounds ? std::optional(m_low->value()) : std::nullopt;
    settings.high = hasBounds ? std::optional(m_high->value()) : std::nullopt;
    settings.threshold = m_threshold->value() / 100.0;
    settings.gamma = m_gamma->value();
    settings.wallisModel = m_wallisModel->currentIndex();
    settings.ofView = m_ofView->isChecked();
}

} // namespace zelto::view
