#include "viewer/views/TrainingPanel.h"

#include "viewer/model/AreaModel.h"
#include "viewer/model/TrainingClasses.h"
#include "viewer/views/ButtonRow.h"
#include "viewer/views/SpectralPlot.h"

#include <QAction>
#include <QColorDialog>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace zelto::view {

namespace {

enum Column { COLOR, NAME, SHAPES, PIXELS, COLUMNS };

QTableWidgetItem* FixedItem(const QString& text) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return item;
}

} // namespace

TrainingPanel::TrainingPanel(TrainingClasses& classes, AreaModel& areas, QWidget* parent)
    : QWidget(parent), m_classes(classes), m_areas(areas), m_table(new QTableWidget(0, COLUMNS)) {
    m_table->setObjectName("classes");
    m_table->setHorizontalHeaderLabels({QString(), tr("Class"), tr("Shapes"), tr("Pixels")});
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->setShowGrid(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setColumnWidth(COLOR, 26);
    m_table->horizontalHeader()->setSectionResizeMode(NAME, QHeaderView::Stretch);
    m_table->setColumnWidth(SHAPES, 60);
    m_table->setColumnWidth(PIXELS, 60);
    m_table->setToolTip(
        tr("A double click renames a class, or chooses its colour; the selected class is the one "
           "that shapes are given"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_table, 1);
    layout->addWidget(new SpectralPlot(classes));
    connect(&classes, &TrainingClasses::ClassesChanged, this, &TrainingPanel::Rebuild);
    connect(&classes, &TrainingClasses::SpectraChanged, this, &TrainingPanel::Rebuild);
    connect(&areas, &AreaModel::ShapesChanged, this, &TrainingPanel::Rebuild);
    connect(m_table, &QTableWidget::cellDoubleClicked, this, [this](int row, int column) {
        if (column == COLOR)
            ChooseColor(row);
    });
    connect(m_table, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
        if (!m_isFilling && item->column() == NAME)
            TakeName(*item);
    });
    connect(m_table, &QTableWidget::currentCellChanged, this, [this](int row) {
        if (!m_isFilling)
            m_classes.SetCurrent(NumberOf(row));
    });
}

void TrainingPanel::AddToolBarActions(const QList<QAction*>& actions) {
    static_cast<QVBoxLayout*>(layout())->addLayout(MakeButtonRow(actions));
}

int TrainingPanel::NumberOf(int row) const {
    const auto& all = m_classes.All();
    return row >= 0 && static_cast<std::size_t>(row) < all.size()
               ? all[static_cast<std::size_t>(row)].number
               : 0;
}

void TrainingPanel::Rebuild() {
    m_isFilling = true;
    m_table->setRowCount(static_cast<int>(m_classes.All().size()));
    int row = 0;
    for (const TrainingClass& each : m_classes.All()) {
        auto* color = FixedItem({});
        color->setData(Qt::DecorationRole, each.color); // also seen where the row is selected
        m_table->setItem(row, COLOR, color);
        m_table->setItem(row, NAME, new QTableWidgetItem(each.name));
        const auto shapes =
            std::count_if(m_areas.All().begin(), m_areas.All().end(),
                          [&](const AreaShape& s) { return s.trainingClass == each.number; });
        m_table->setItem(row, SHAPES, FixedItem(QString::number(shapes)));
        QString pixels = "–";
        for (const ClassSpectrum& spectrum : m_classes.Spectra())
            if (spectrum.number == each.number)
                pixels = QString::number(spectrum.pixels);
        m_table->setItem(row, PIXELS, FixedItem(pixels));
        if (each.number == m_classes.Current())
            m_table->setCurrentCell(row, NAME);
        ++row;
    }
    m_isFilling = false;
}

void TrainingPanel::TakeName(const QTableWidgetItem& item) {
    // The table is not to be filled anew while it hands out an item of its own.
    QMetaObject::invokeMethod(
        this,
        [this, number = NumberOf(item.row()), name = item.text().trimmed()] {
            m_classes.Rename(number, name);
        },
        Qt::QueuedConnection);
}

void TrainingPanel::ChooseColor(int row) {
    const TrainingClass* each = m_classes.Find(NumberOf(row));
    if (each == nullptr)
        return;
    const int number = each->number;
    const QColor color = QColorDialog::getColor(each->color, this, each->name);
    if (color.isValid())
        m_classes.SetColor(number, color);
}

} // namespace zelto::view
