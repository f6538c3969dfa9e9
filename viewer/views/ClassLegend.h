#pragma once

#include "viewer/model/DisplaySettings.h"

#include <QWidget>

class QTableWidget;

namespace zelto::view {

/// The classes of a classified image. A double click on a colour chooses another one.
class ClassLegend : public QWidget {
    Q_OBJECT

  public:
    explicit ClassLegend(QWidget* parent = nullptr);

    void SetClasses(const std::vector<ClassColor>& classes);
    const std::vector<ClassColor>& Classes() const { return m_classes; }

  signals:
    void Edited();

  private:
    void Rebuild();
    void ChooseColor(int row);

    QTableWidget* m_table;
    std::vector<ClassColor> m_classes;
};

} // namespace zelto::view
