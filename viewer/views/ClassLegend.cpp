#include "viewer/views/ClassLegend.h"

#include "viewer/views/StatusLine.h"

#include <QColorDialog>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace zelto::view {

ClassLegend::ClassLegend(QWidget* parent) : QWidget(parent), m_table(new QTableWidget(0, 3)) {
    setObjectName("legend");
    m_table->setHorizontalHeaderLabels({tr("Colour"), tr("Value"), tr("Class")});
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    m_table->setShowGrid(false);
    m_table->setMinimumHeight(120);
    m_table->setToolTip(tr("A double click on a colour chooses another one"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_table);
    connect(m_table, &QTableWidget::cellDoubleClicked, this,
            [this](int row, int) { ChooseColor(row); });
}

void ClassLegend::SetClasses(const std::vector<ClassColor>& classes) {
    if (classes == m_classes)
        return;
    m_classes = classes;
    Rebuild();
}

void ClassLegend::Rebuild() {
    m_table->setRowCount(static_cast<int>(m_classes.size()));
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const ClassColor& each = m_classes[static_cast<std::size_t>(row)];
        auto* color = new QTableWidgetItem;
        color->setBackground(each.color);
        m_table->setItem(row, 0, color);
        m_table->setItem(row, 1, new QTableWidgetItem(ReadableNumber((each.low + each.high) / 2)));
        m_table->setItem(row, 2, new QTableWidgetItem(each.name));
    }
    m_table->resizeColumnsToContents();
}

void ClassLegend::ChooseColor(int row) {
    ClassColor& each = m_classes[static_cast<std::size_t>(row)];
    const QColor chosen = QColorDialog::getColor(each.color, this, each.name);
    if (!chosen.isValid() || chosen == each.color)
        return;
    each.color = chosen;
    Rebuild();
    emit Edited();
}

} // namespace zelto::view
