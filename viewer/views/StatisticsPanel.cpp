#include "viewer/views/StatisticsPanel.h"

#include "viewer/model/Preferences.h"
#include "viewer/views/Icons.h"
#include "viewer/views/MessageBar.h"

#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSaveFile>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace zelto::view {

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

/// A cell as CSV has it: in quotes where it holds a separator or a quote, which is then doubled.
QString Quoted(const QString& cell, QChar separator) {
    if (!cell.contains(separator) && !cell.contains('"') && !cell.contains('\n'))
        return cell;
    return '"' + QString(cell).replace("\"", "\"\"") + '"';
}

} // namespace

StatisticsPanel::StatisticsPanel(MessageBar& messages, Preferences& preferences, QWidget* parent)
    : QWidget(parent),
      m_messages(messages),
      m_preferences(preferences),
      m_title(new QLabel),
      m_table(new QTableWidget) {
    m_title->setTextFormat(Qt::PlainText);
    m_table->setObjectName("statistics");
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->verticalHeader()->hide();
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 2, 4, 2);
    bar->addWidget(m_title, 1);
    auto* copy = AddButton(*bar, "copyStatistics", "copy", tr("Copy the table"));
    auto* save = AddButton(*bar, "saveStatistics", "save", tr("Save the table as CSV"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_table);
    connect(copy, &QToolButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(ToText('\t'));
        m_messages.Tell(tr("The table is on the clipboard."));
    });
    connect(save, &QToolButton::clicked, this, &StatisticsPanel::ChooseFile);
}

void StatisticsPanel::SetTable(const StatisticsTable& table) {
    m_shown = table;
    m_title->setText(table.title);
    m_table->clear();
    m_table->setColumnCount(static_cast<int>(table.columns.size()));
    m_table->setRowCount(static_cast<int>(table.rows.size()));
    m_table->setHorizontalHeaderLabels(table.columns);
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const QStringList& cells = table.rows[static_cast<std::size_t>(row)];
        for (int column = 0; column < cells.size(); ++column) {
            auto* item = new QTableWidgetItem(cells[column]);
            bool isNumber = false;
            cells[column].toDouble(&isNumber);
            item->setTextAlignment((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
            m_table->setItem(row, column, item);
        }
    }
    m_table->resizeColumnsToContents();
}

QString StatisticsPanel::ToText(QChar separator) const {
    QString text;
    const auto add = [&](const QStringList& cells) {
        QStringList quoted;
        for (const QString& cell : cells)
            quoted += Quoted(cell, separator);
        text += quoted.join(separator) + '\n';
    };
    add(m_shown.columns);
    for (const QStringList& row : m_shown.rows)
        add(row);
    return text;
}

bool StatisticsPanel::Save(const QString& path) {
    QSaveFile file(path);
    const bool saved =
        file.open(QIODevice::WriteOnly) && file.write(ToText(',').toUtf8()) >= 0 && file.commit();
    if (!saved)
        m_messages.TellError(path + ": " + file.errorString());
    return saved;
}

void StatisticsPanel::ChooseFile() {
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save the table"), m_preferences.Folder("tables") + "/statistics.csv",
        tr("Tables (*.csv)"));
    if (path.isEmpty() || !Save(path))
        return;
    m_preferences.SetFolderOf("tables", path);
    m_messages.Tell(tr("%1 is saved.").arg(path));
}

} // namespace zelto::view
