#include "viewer/views/HistogramPanel.h"

#include "viewer/views/RegionHistogramPlot.h"
#include "viewer/views/RegionTable.h"
#include "viewer/views/TablePanel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace zelto::view {

HistogramPanel::HistogramPanel(MessageBar& messages, Preferences& preferences, QWidget* parent)
    : QWidget(parent),
      m_band(new QComboBox),
      m_plot(new RegionHistogramPlot),
      m_table(new TablePanel("histograms", messages, preferences)) {
    m_band->setObjectName("histogramBand");
    m_band->setToolTip(tr("The band whose histogram is shown"));
    auto* left = new QVBoxLayout;
    left->setContentsMargins(8, 4, 0, 0);
    left->setSpacing(2);
    left->addWidget(m_band, 0, Qt::AlignLeft);
    left->addWidget(m_plot, 1);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(left, 3);
    layout->addWidget(m_table, 2);
    connect(m_band, &QComboBox::currentIndexChanged, this, &HistogramPanel::ShowChosen);
}

void HistogramPanel::SetHistograms(const QString& title,
                                   const std::vector<RegionHistogram>& histograms) {
    m_title = title;
    m_histograms = histograms;
    const QSignalBlocker filling(m_band);
    m_band->clear();
    m_band->addItem(tr("All bands"));
    for (const RegionHistogram& each : histograms)
        m_band->addItem(tr("Band %1").arg(each.band + 1));
    ShowChosen();
}

void HistogramPanel::ShowChosen() {
    const auto chosen = static_cast<std::size_t>(std::max(m_band->currentIndex(), 0));
    std::vector<RegionHistogram> shown = m_histograms;
    if (chosen > 0)
        shown = {m_histograms[chosen - 1]};
    m_plot->SetHistograms(shown, static_cast<int>(m_histograms.size()));
    m_table->SetTable(MakeHistogramTable(m_title, shown));
}

} // namespace zelto::view
