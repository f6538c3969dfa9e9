#pragma once

#include "viewer/actions/Workbench.h"
#include "viewer/model/LayerFacts.h"

#include <QObject>
#include <QSet>

class QMenu;

namespace zelto::view {

/// Opens images as layers, remembers them, and tells what did not open.
class FileActions : public QObject {
    Q_OBJECT

  public:
    FileActions(const Workbench& bench, QObject* parent);

    void OpenFiles(const QStringList& paths);
    void FillRecent(QMenu& menu);

  private:
    void OpenOrigin(const LayerOrigin& origin);
    void ChooseFiles();
    void ChooseComposition();
    void ChooseSubdataset(const QString& container, const QStringList& names);
    void TakeOpened(int id, const LayerFacts& facts, const DisplaySettings& settings);
    void TakeFailure(int id, const QString& reason);
    void OfferPyramid(const LayerFacts& facts);

    Workbench m_bench;
    QSet<QString> m_offered; ///< files for which a pyramid was offered once
};

} // namespace zelto::view
