#pragma once

#include "viewer/model/DisplaySettings.h"

#include <QWidget>

class QModelIndex;
class QPushButton;
class QTableView;

namespace zelto::view {

/// The classes of a classified image, or the entries of a colour table. A double click, or Enter,
/// on a colour chooses another one, on a name edits it; a button goes back to those of the file.
class ClassLegend : public QWidget {
    Q_OBJECT

  public:
    explicit ClassLegend(QWidget* parent = nullptr);

    /// @param isEdited whether there is something to go back from
    void SetClasses(const std::vector<ClassColor>& classes, bool isEdited);
    const std::vector<ClassColor>& Classes() const { return m_classes; }

  signals:
    void Edited();
    /// The classes of the file are wanted again.
    void ResetWanted();

  private:
    class Model;
    void ChooseColor(const QModelIndex& index);

    std::vector<ClassColor> m_classes;
    Model* m_model;
    QTableView* m_table;
    QPushButton* m_reset;
};

} // namespace zelto::view
