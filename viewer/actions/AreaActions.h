#pragma once

#include "viewer/actions/Workbench.h"
#include "viewer/model/NumberTable.h"
#include "viewer/worker/HistogramWork.h"

#include <QObject>

class QActionGroup;

namespace zelto::view {

class MapTool;
class SelectTool;

/// The tools that draw and select, the history of edits, files of areas, and numbers about them.
class AreaActions : public QObject {
    Q_OBJECT

  public:
    AreaActions(const Workbench& bench, QObject* parent);

    void OpenAreas(const QString& path);
    void SaveAreas(const QString& path);

  signals:
    void StatisticsReady(const zelto::view::NumberTable& table);
    void HistogramsReady(const QString& title,
                         const std::vector<zelto::view::RegionHistogram>& histograms);

  private:
    void AddTools();
    void AddTool(const QString& id, const QString& text, const QString& tip, const QString& key,
                 MapTool* tool);
    void AddEdits();
    void AddFiles();
    void AddNumbers();
    void Enable();
    void Delete();
    void ShowOnlyAreas(bool only);
    RegionRequest RequestForCurrent() const;
    QString TitleOf(const RegionRequest& request) const;
    void ComputeStatistics(bool eachShape);
    void CountHistograms();

    Workbench m_bench;
    QActionGroup* m_tools;
    SelectTool* m_select;
    bool m_isMasked = false;
};

} // namespace zelto::view
