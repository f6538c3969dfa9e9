#pragma once

#include "viewer/actions/Workbench.h"

#include <QObject>
#include <QString>

namespace zelto::view {

/// Work on files that takes long: it goes on in the background while the map stays usable.
class WorkActions : public QObject {
    Q_OBJECT

  public:
    WorkActions(const Workbench& bench, QObject* parent);

    void BuildPyramid(int layer);
    void CopyTo(const QString& target);
    void MakePolygons(const QString& path, int band, bool eight);
    void Export(const QString& path);
    void SaveClasses(const QString& path);

  private:
    void ChooseCopy();
    void ChoosePolygons();
    void ChooseExport();
    void ChoosePlace();
    void ChooseClassFile();
    void ShowProperties();
    void Enable();
    /// Opens a layer's file anew after it has changed.
    void Reopen(int layer);

    Workbench m_bench;
};

} // namespace zelto::view
