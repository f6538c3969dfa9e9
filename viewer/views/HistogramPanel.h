#pragma once

#include "viewer/worker/HistogramWork.h"

#include <QWidget>

class QComboBox;

namespace zelto::view {

class MessageBar;
class Preferences;
class RegionHistogramPlot;
class TablePanel;

/// Histograms of a region: curves of the bands, and their counts as a table.
class HistogramPanel : public QWidget {
    Q_OBJECT

  public:
    HistogramPanel(MessageBar& messages, Preferences& preferences, QWidget* parent = nullptr);

    /// @param title what the region and the image are called
    void SetHistograms(const QString& title, const std::vector<RegionHistogram>& histograms);

  private:
    /// Those of the chosen band, or all.
    void ShowChosen();

    QComboBox* m_band;
    RegionHistogramPlot* m_plot;
    TablePanel* m_table;
    QString m_title;
    std::vector<RegionHistogram> m_histograms;
};

} // namespace zelto::view
