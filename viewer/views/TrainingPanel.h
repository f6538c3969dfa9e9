#pragma once

#include <QWidget>

class QAction;
class QTableWidget;
class QTableWidgetItem;

namespace zelto::view {

class AreaModel;
class TrainingClasses;

/// The classes with their colours and how many shapes and pixels each has, and their spectra.
class TrainingPanel : public QWidget {
    Q_OBJECT

  public:
    TrainingPanel(TrainingClasses& classes, AreaModel& areas, QWidget* parent = nullptr);

    void AddToolBarActions(const QList<QAction*>& actions);

  private:
    void Rebuild();
    void TakeName(const QTableWidgetItem& item);
    void ChooseColor(int row);
    int NumberOf(int row) const;

    TrainingClasses& m_classes;
    AreaModel& m_areas;
    QTableWidget* m_table;
    bool m_isFilling = false;
};

} // namespace zelto::view
