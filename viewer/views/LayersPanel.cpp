#include "viewer/views/LayersPanel.h"

#include "viewer/model/Document.h"
#include "viewer/views/ButtonRow.h"
#include "viewer/worker/Requests.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QVBoxLayout>

namespace zelto::view {

namespace {

constexpr int ID_ROLE = Qt::UserRole;

} // namespace

LayersPanel::LayersPanel(Document& document, QWidget* parent)
    : QWidget(parent), m_document(document), m_list(new QListWidget), m_memory(new QLabel) {
    m_list->setObjectName("layers");
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setAlternatingRowColors(false);
    m_list->setAccessibleName(tr("Layers"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_list, 1);
    m_memory->setObjectName("layersMemory");
    m_memory->setForegroundRole(QPalette::PlaceholderText);
    m_memory->setContentsMargins(8, 4, 8, 0);
    layout->addWidget(m_memory);
    connect(&document, &Document::LayersChanged, this, &LayersPanel::Rebuild);
    connect(&document, &Document::CurrentChanged, this, &LayersPanel::SelectCurrent);
    connect(m_list, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (!m_isFilling && item != nullptr)
            m_document.SetCurrent(item->data(ID_ROLE).toInt());
    });
    connect(m_list, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        if (!m_isFilling)
            m_document.SetVisible(item->data(ID_ROLE).toInt(), item->checkState() == Qt::Checked);
    });
    // The list has moved the row already; the document follows when the list is done with it.
    connect(m_list->model(), &QAbstractItemModel::rowsMoved, this, &LayersPanel::TakeOrder,
            Qt::QueuedConnection);
    Rebuild();
}

void LayersPanel::AddToolBarActions(const QList<QAction*>& actions) {
    static_cast<QVBoxLayout*>(layout())->addLayout(MakeButtonRow(actions));
}

void LayersPanel::ShowMemory(const LayersMemory& memory) {
    const QLocale locale;
    m_memory->setText(tr("%1 of %2 in memory")
                          .arg(locale.formattedDataSize(memory.bytes, 0),
                               locale.formattedDataSize(memory.bound, 0)));
    QString tip = tr("What is kept of all layers together: blocks of the files, drawings, "
                     "histograms, open files. Beyond the bound what was seen longest ago is let "
                     "go, and made again when it is wanted.");
    if (memory.closedFiles > 0)
        tip += '\n' + tr("%n file(s) closed for that.", nullptr, memory.closedFiles);
    m_memory->setToolTip(tip);
}

void LayersPanel::Fill(QListWidgetItem& item, const Layer& layer) const {
    const LayerFacts& facts = layer.facts;
    item.setData(ID_ROLE, layer.id);
    item.setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled |
                  Qt::ItemIsUserCheckable);
    item.setCheckState(layer.isVisible ? Qt::Checked : Qt::Unchecked);
    item.setText(layer.isOpen ? layer.origin.Name() : tr("%1 (opening…)").arg(layer.origin.Name()));
    if (!layer.isOpen)
        return;
    QString tip =
        tr("%1\n%2 × %3 pixels, %n band(s) of %4", nullptr, static_cast<int>(facts.bands.size()))
            .arg(layer.origin.paths.join('\n'))
            .arg(facts.width)
            .arg(facts.height)
            .arg(facts.bands.empty() ? QString() : facts.bands.front().type);
    if (!facts.coordinateName.isEmpty())
        tip += '\n' + facts.coordinateName;
    if (facts.warped)
        tip += '\n' + tr("Shown in the first layer's reference system");
    item.setToolTip(tip);
}

void LayersPanel::Rebuild() {
    m_isFilling = true;
    m_list->clear();
    for (const Layer& layer : m_document.Layers()) {
        auto* item = new QListWidgetItem(m_list);
        Fill(*item, layer);
    }
    m_isFilling = false;
    SelectCurrent();
}

void LayersPanel::SelectCurrent() {
    const Layer* current = m_document.Current();
    m_isFilling = true;
    for (int row = 0; current != nullptr && row < m_list->count(); ++row)
        if (m_list->item(row)->data(ID_ROLE).toInt() == current->id)
            m_list->setCurrentRow(row);
    m_isFilling = false;
}

void LayersPanel::TakeOrder() {
    QList<int> order;
    for (int row = 0; row < m_list->count(); ++row)
        order.append(m_list->item(row)->data(ID_ROLE).toInt());
    for (int row = 0; row < order.size(); ++row)
        m_document.Move(order[row], row);
}

} // namespace zelto::view
