#include "viewer/views/DisplayPanel.h"

#include "zelto/display/StretchPreparation.h"

#include "viewer/model/Document.h"
#include "viewer/views/BandForm.h"
#include "viewer/views/ClassLegend.h"
#include "viewer/views/HistogramView.h"
#include "viewer/views/LabeledSlider.h"
#include "viewer/views/StretchForm.h"
#include "viewer/views/Theme.h"
#include "viewer/worker/Engine.h"

#include <QLabel>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace zelto::view {

namespace {

float DisplaySettings::*const SLIDER_MEMBERS[] = {
    &DisplaySettings::hue, &DisplaySettings::intensity, &DisplaySettings::saturation,
    &DisplaySettings::contrast, &DisplaySettings::transparency};

} // namespace

DisplayPanel::DisplayPanel(Document& document, Engine& engine, QWidget* parent)
    : QWidget(parent),
      m_document(document),
      m_engine(engine),
      m_title(new QLabel),
      m_scroll(new QScrollArea),
      m_content(new QWidget) {
    auto* inner = new QVBoxLayout(m_content);
    inner->setSpacing(10);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setWordWrap(true);
    m_title->setContentsMargins(10, 6, 10, 0);
    m_bands = new BandForm;
    m_stretch = new StretchForm;
    inner->addWidget(m_bands);
    inner->addWidget(m_stretch);
    connect(m_bands, &BandForm::Edited, this, &DisplayPanel::TakeControls);
    connect(m_stretch, &StretchForm::Edited, this, &DisplayPanel::TakeControls);
    AddHistograms(*inner);
    AddSliders(*inner);
    m_legend = new ClassLegend;
    connect(m_legend, &ClassLegend::Edited, this, &DisplayPanel::TakeControls);
    connect(m_legend, &ClassLegend::ResetWanted, this, &DisplayPanel::ResetClasses);
    inner->addWidget(m_legend);
    inner->addStretch(1);
    AlignNames();

    m_scroll->setWidget(m_content);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setMinimumWidth(m_content->minimumSizeHint().width() +
                              style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_title);
    layout->addWidget(m_scroll, 1);
    layout->addStretch();

    connect(&document, &Document::CurrentChanged, this, &DisplayPanel::ShowLayer);
    connect(&document, &Document::SettingsChanged, this, &DisplayPanel::ShowLayer);
    connect(&engine, &Engine::Counted, this, &DisplayPanel::TakeHistograms);
    connect(&engine, &Engine::Stretched, this, [this](int id, const ShownRanges& ranges) {
        m_ranges[id] = ranges;
        const Layer* layer = m_document.Current();
        if (layer != nullptr && layer->id == id && layer->isOpen)
            ShowHistograms(*layer);
    });
    ShowLayer();
}

void DisplayPanel::AddHistograms(QVBoxLayout& layout) {
    for (std::size_t k = 0; k < m_histograms.size(); ++k) {
        m_histograms[k] = new HistogramView;
        m_histograms[k]->setObjectName(QString("histogram%1").arg(k));
        layout.addWidget(m_histograms[k]);
        connect(m_histograms[k], &HistogramView::BoundsDragged, this, &DisplayPanel::TakeBounds);
    }
}

void DisplayPanel::AddSliders(QVBoxLayout& layout) {
    const QString names[] = {tr("Hue"), tr("Intensity"), tr("Saturation"), tr("Contrast"),
                             tr("Transparency")};
    for (std::size_t i = 0; i < m_sliders.size(); ++i) {
        const bool isTransparency = i + 1 == m_sliders.size();
        m_sliders[i] = new LabeledSlider(names[i], isTransparency ? 0 : -100, 100);
        m_sliders[i]->setObjectName(QString("slider%1").arg(i));
        layout.addWidget(m_sliders[i]);
        connect(m_sliders[i], &LabeledSlider::Moved, this, &DisplayPanel::TakeControls);
    }
}

/// One column of names for all forms and sliders.
void DisplayPanel::AlignNames() {
    QList<QLabel*> names;
    for (const QWidget* form : {static_cast<QWidget*>(m_bands), static_cast<QWidget*>(m_stretch)})
        for (QLabel* label : form->findChildren<QLabel*>())
            names += label;
    for (const LabeledSlider* slider : m_sliders)
        names += slider->Name();
    int width = 0;
    for (const QLabel* name : names)
        width = std::max(width, name->sizeHint().width());
    for (QLabel* name : names)
        name->setMinimumWidth(width);
}

void DisplayPanel::ShowLayer() {
    const Layer* layer = m_document.Current();
    const bool isShown = layer != nullptr && layer->isOpen;
    m_scroll->setVisible(isShown);
    m_title->setText(isShown ? layer->origin.Name() : tr("No image"));
    if (!isShown) {
        for (HistogramView* view : m_histograms)
            view->SetHistogram(std::nullopt);
        m_legend->hide();
        m_histogramLayer = -1;
        return;
    }
    m_isFilling = true;
    m_bands->ShowLayer(*layer);
    m_stretch->ShowSettings(layer->settings);
    for (std::size_t i = 0; i < m_sliders.size(); ++i)
        m_sliders[i]->SetValue(layer->settings.*SLIDER_MEMBERS[i]);
    m_legend->SetClasses(Edited(layer->facts.classes, layer->settings.classes),
                         !layer->settings.classes.empty());
    m_legend->setVisible(!layer->facts.classes.empty() && layer->settings.bands.size() == 1 &&
                         layer->settings.ramp.isEmpty());
    m_isFilling = false;
    ShowHistograms(*layer);
}

void DisplayPanel::ShowHistograms(const Layer& layer) {
    if (m_histogramLayer != layer.id) {
        m_counted.clear();
        m_histogramLayer = layer.id;
    }
    const std::vector<int>& shown = layer.settings.bands;
    bool isMissing = false;
    for (std::size_t k = 0; k < m_histograms.size(); ++k) {
        HistogramView& view = *m_histograms[k];
        view.setVisible(k < shown.size());
        if (k >= shown.size())
            continue;
        view.SetColor(ChannelColor(static_cast<int>(k), shown.size() == 1));
        const auto found = m_counted.find(shown[k]);
        isMissing = isMissing || found == m_counted.end();
        if (found == m_counted.end()) {
            view.SetHistogram(std::nullopt);
            continue;
        }
        view.SetHistogram(found->second);
        view.SetBounds(BoundsOf(layer, k, found->second));
    }
    if (isMissing)
        AskForHistograms();
}

Bounds DisplayPanel::BoundsOf(const Layer& layer, std::size_t k,
                              const BandHistogram& histogram) const {
    const auto drawn = m_ranges.find(layer.id);
    if (layer.settings.ranges[k])
        return *layer.settings.ranges[k];
    if (drawn != m_ranges.end() && k < drawn->second.size() &&
        drawn->second[k].low < drawn->second[k].high)
        return drawn->second[k];
    return histogram.range;
}

void DisplayPanel::TakeControls() {
    const Layer* layer = m_document.Current();
    if (m_isFilling || layer == nullptr || !layer->isOpen)
        return;
    DisplaySettings settings = layer->settings;
    const std::vector<int> before = settings.bands;
    m_bands->Fill(settings);
    const QString stretchBefore = settings.stretch;
    m_stretch->Fill(settings);
    if (settings.bands != before || settings.stretch != stretchBefore)
        settings.ranges = {}; // they were those of other bands, or of another stretch
    // The filter starts from the statistics of three colours.
    if (settings.bands.size() == 1 && settings.stretch == "wallis")
        settings.stretch = "auto";
    for (std::size_t i = 0; i < m_sliders.size(); ++i)
        settings.*SLIDER_MEMBERS[i] = m_sliders[i]->Value();
    settings.classes = EditsBetween(layer->facts.classes, m_legend->Classes());
    m_document.SetSettings(layer->id, settings);
}

void DisplayPanel::ResetClasses() {
    const Layer* layer = m_document.Current();
    if (layer == nullptr || !layer->isOpen)
        return;
    DisplaySettings settings = layer->settings;
    settings.classes.clear();
    m_document.SetSettings(layer->id, settings);
}

/// A bound that was dragged makes the stretch linear; the other bands keep the bounds they show.
void DisplayPanel::TakeBounds() {
    const Layer* layer = m_document.Current();
    if (layer == nullptr || !layer->isOpen)
        return;
    DisplaySettings settings = layer->settings;
    if (!CStretchPreparation::Takes(settings.stretch.toStdString(),
                                    CStretchPreparation::Setting::Ranges))
        settings.stretch = "linear";
    settings.ofView = false;
    for (std::size_t k = 0; k < settings.bands.size(); ++k)
        if (m_histograms[k]->Histogram())
            settings.ranges[k] = m_histograms[k]->ShownBounds();
    m_document.SetSettings(layer->id, settings);
}

void DisplayPanel::AskForHistograms() {
    const Layer* layer = m_document.Current();
    std::vector<int> bands;
    for (const int band : layer->settings.bands)
        if (m_counted.find(band) == m_counted.end())
            bands.push_back(band);
    m_engine.CountValues(layer->id, bands);
}

void DisplayPanel::TakeHistograms(int id, const std::vector<BandHistogram>& histograms) {
    const Layer* layer = m_document.Current();
    if (layer == nullptr || layer->id != id || id != m_histogramLayer)
        return;
    for (const BandHistogram& histogram : histograms)
        m_counted[histogram.band] = histogram;
    ShowHistograms(*layer);
}

} // namespace zelto::view
