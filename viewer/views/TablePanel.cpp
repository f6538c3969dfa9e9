#include "viewer/views/TablePanel.h"

#include "viewer/model/Preferences.h"
#include "viewer/views/Icons.h"
#include "viewer/views/MessageBar.h"

#include <QAbstractTableModel>
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSaveFile>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

namespace zelto::view {

/// Shows a table where it is: a cell costs nothing until it is seen.
class TablePanel::Model : public QAbstractTableModel {
  public:
    Model(const NumberTable& table, QObject* parent)
        : QAbstractTableModel(parent), m_table(table) {}

    void Change(const std::function<void()>& change) {
        beginResetModel();
        change();
        endResetModel();
    }

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_table.rows.size());
    }
    int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_table.columns.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const QString cell =
            m_table.rows[static_cast<std::size_t>(index.row())].value(index.column());
        if (role == Qt::DisplayRole)
            return cell;
        if (role == Qt::TextAlignmentRole)
            return AlignmentOf(cell);
        return {};
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role == Qt::DisplayRole && orientation == Qt::Horizontal)
            return m_table.columns.value(section);
        if (role == Qt::TextAlignmentRole && orientation == Qt::Horizontal)
            return AlignmentOf(m_table.rows.empty() ? QString()
                                                    : m_table.rows.front().value(section));
        return {};
    }

  private:
    static QVariant AlignmentOf(const QString& cell) {
        bool isNumber = false;
        cell.toDouble(&isNumber);
        return QVariant((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }

    const NumberTable& m_table;
};

namespace {

QToolButton* AddButton(QHBoxLayout& layout, const QString& name, const QString& icon,
                       const QString& tip) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(MakeIcon(icon));
    button->setToolTip(tip);
    layout.addWidget(button);
    return button;
}

} // namespace

TablePanel::TablePanel(const QString& id, MessageBar& messages, Preferences& preferences,
                       QWidget* parent)
    : QWidget(parent),
      m_messages(messages),
      m_preferences(preferences),
      m_title(new QLabel),
      m_model(new Model(m_shown, this)),
      m_view(new QTableView) {
    setObjectName(id);
    m_title->setTextFormat(Qt::PlainText);
    m_view->setModel(m_model);
    m_view->setAlternatingRowColors(true);
    m_view->setShowGrid(false);
    m_view->verticalHeader()->hide();
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 2, 4, 2);
    bar->addWidget(m_title, 1);
    auto* copy = AddButton(*bar, "copy", "copy", tr("Copy the table"));
    auto* save = AddButton(*bar, "save", "save", tr("Save the table as CSV"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_view);
    connect(copy, &QToolButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(m_shown.ToText('\t'));
        m_messages.Tell(tr("The table is on the clipboard."));
    });
    connect(save, &QToolButton::clicked, this, &TablePanel::ChooseFile);
}

void TablePanel::SetTable(const NumberTable& table) {
    m_model->Change([&] { m_shown = table; });
    m_title->setText(table.title);
    m_view->resizeColumnsToContents();
}

bool TablePanel::Save(const QString& path) {
    QSaveFile file(path);
    const bool saved = file.open(QIODevice::WriteOnly) &&
                       file.write(m_shown.ToText(',').toUtf8()) >= 0 && file.commit();
    if (!saved)
        m_messages.TellError(path + ": " + file.errorString());
    return saved;
}

void TablePanel::ChooseFile() {
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save the table"), m_preferences.Folder("tables") + "/" + objectName() + ".csv",
        tr("Tables (*.csv)"));
    if (path.isEmpty() || !Save(path))
        return;
    m_preferences.SetFolderOf("tables", path);
    m_messages.Tell(tr("%1 is saved.").arg(path));
}

} // namespace zelto::view
