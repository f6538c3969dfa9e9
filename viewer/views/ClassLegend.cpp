#include "viewer/views/ClassLegend.h"

#include "viewer/views/StatusLine.h"

#include <QAbstractTableModel>
#include <QColorDialog>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace zelto::view {

namespace {

enum Column { COLOR, VALUE, NAME, COLUMNS };

} // namespace

/// Shows the legend's classes where they are: a colour table may have 65,536 entries.
class ClassLegend::Model : public QAbstractTableModel {
  public:
    explicit Model(ClassLegend& legend) : QAbstractTableModel(&legend), m_legend(legend) {}

    void Replace(const std::vector<ClassColor>& classes) {
        const bool isReset = classes.size() != m_legend.m_classes.size();
        if (isReset)
            beginResetModel();
        m_legend.m_classes = classes;
        if (isReset)
            endResetModel();
        else if (!classes.empty())
            emit dataChanged(index(0, COLOR), index(rowCount({}) - 1, NAME));
    }

    void SetColor(int row, const QColor& color) {
        ClassColor& changed = m_legend.m_classes[static_cast<std::size_t>(row)];
        if (changed.color == color)
            return;
        changed.color = color;
        Tell(index(row, COLOR));
    }

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_legend.m_classes.size());
    }
    int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : COLUMNS;
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const ClassColor& each = m_legend.m_classes[static_cast<std::size_t>(index.row())];
        if (role == Qt::BackgroundRole && index.column() == COLOR)
            return each.color;
        if (role == Qt::DisplayRole && index.column() == VALUE)
            return ReadableNumber((each.low + each.high) / 2.0);
        if ((role == Qt::DisplayRole || role == Qt::EditRole) && index.column() == NAME)
            return each.name;
        return {};
    }
    bool setData(const QModelIndex& index, const QVariant& value, int role) override {
        ClassColor& changed = m_legend.m_classes[static_cast<std::size_t>(index.row())];
        if (role != Qt::EditRole || index.column() != NAME || changed.name == value.toString())
            return false;
        changed.name = value.toString();
        Tell(index);
        return true;
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        return index.column() == NAME ? flags | Qt::ItemIsEditable : flags;
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
            return {};
        return QStringList{ClassLegend::tr("Colour"), ClassLegend::tr("Value"),
                           ClassLegend::tr("Class")}
            .value(section);
    }

  private:
    void Tell(const QModelIndex& index) {
        emit dataChanged(index, index);
        emit m_legend.Edited();
    }

    ClassLegend& m_legend;
};

ClassLegend::ClassLegend(QWidget* parent)
    : QWidget(parent),
      m_model(new Model(*this)),
      m_table(new QTableView),
      m_reset(new QPushButton(tr("Colours of the file"))) {
    setObjectName("legend");
    m_table->setObjectName("classes");
    m_table->setModel(m_model);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setShowGrid(false);
    m_table->setMinimumHeight(160);
    m_table->setToolTip(tr("A double click on a colour chooses another one, on a name edits it"));
    m_reset->setObjectName("resetClasses");
    m_reset->setToolTip(tr("Show the classes as the file has them"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_table);
    layout->addWidget(m_reset, 0, Qt::AlignLeft);
    connect(m_table, &QTableView::activated, this, &ClassLegend::ChooseColor);
    connect(m_table, &QTableView::doubleClicked, this, &ClassLegend::ChooseColor);
    connect(m_reset, &QPushButton::clicked, this, &ClassLegend::ResetWanted);
}

void ClassLegend::SetClasses(const std::vector<ClassColor>& classes, bool isEdited) {
    m_reset->setVisible(isEdited);
    if (classes == m_classes)
        return;
    m_model->Replace(classes);
    m_table->resizeColumnsToContents();
}

void ClassLegend::ChooseColor(const QModelIndex& index) {
    if (index.column() != COLOR || findChild<QColorDialog*>() != nullptr)
        return; // a double click may count as an activation as well
    const int row = index.row();
    const ClassColor& each = m_classes[static_cast<std::size_t>(row)];
    const QColor chosen =
        QColorDialog::getColor(each.color, this, each.name, QColorDialog::ShowAlphaChannel);
    // While the dialog was open the legend may have become that of another image.
    if (chosen.isValid() && row < m_model->rowCount({}))
        m_model->SetColor(row, chosen);
}

} // namespace zelto::view
