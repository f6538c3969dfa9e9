#pragma once

#include "viewer/actions/Workbench.h"

#include <QObject>

namespace zelto::view {

/// Collects shapes as the samples of classes, and their files.
class TrainingActions : public QObject {
    Q_OBJECT

  public:
    TrainingActions(const Workbench& bench, QObject* parent);

    void ComputeSpectra();
    void OpenSamples(const QString& path);
    void SaveSamples(const QString& path);

  private:
    void AddClasses();
    void AddFiles();
    void Enable();
    bool HasSamples() const;

    Workbench m_bench;
};

} // namespace zelto::view
