#pragma once

#include "viewer/worker/Requests.h"

#include <QWidget>
#include <array>
#include <map>
#include <vector>

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace zelto::view {

class BandForm;
class ClassLegend;
class Document;
class Engine;
class HistogramView;
class LabeledSlider;
class StretchForm;
struct Layer;

/// How the current layer is shown. Every change goes to the document at once.
class DisplayPanel : public QWidget {
    Q_OBJECT

  public:
    DisplayPanel(Document& document, Engine& engine, QWidget* parent = nullptr);

  private:
    void AddHistograms(QVBoxLayout& layout);
    void AddSliders(QVBoxLayout& layout);
    void AlignNames();
    void ShowLayer();
    void ShowHistograms(const Layer& layer);
    /// The bounds that the k-th shown band was last drawn between.
    Bounds BoundsOf(const Layer& layer, std::size_t k, const BandHistogram& histogram) const;
    void TakeControls();
    void TakeBounds();
    void ResetClasses();
    void AskForHistograms();
    void TakeHistograms(int layer, const std::vector<BandHistogram>& histograms);

    Document& m_document;
    Engine& m_engine;
    QLabel* m_title;
    QScrollArea* m_scroll;
    QWidget* m_content;
    BandForm* m_bands;
    StretchForm* m_stretch;
    std::array<HistogramView*, 3> m_histograms{};
    std::array<LabeledSlider*, 5> m_sliders{};
    ClassLegend* m_legend;
    int m_histogramLayer = -1;
    std::map<int, BandHistogram> m_counted; ///< by band, of that layer
    std::map<int, ShownRanges> m_ranges;    ///< by layer
    bool m_isFilling = false;
};

} // namespace zelto::view
