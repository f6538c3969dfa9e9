#include "viewer/views/ReportView.h"

#include "host/base/Printable.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QStandardItemModel>
#include <QTableView>

namespace zelto::view {

namespace {

/// The words of the reports, here for those who translate them.
[[maybe_unused]] constexpr const char* const WORDS[] = {
    QT_TRANSLATE_NOOP("Report", "file"),         QT_TRANSLATE_NOOP("Report", "format"),
    QT_TRANSLATE_NOOP("Report", "size"),         QT_TRANSLATE_NOOP("Report", "bands"),
    QT_TRANSLATE_NOOP("Report", "origin"),       QT_TRANSLATE_NOOP("Report", "pixel size"),
    QT_TRANSLATE_NOOP("Report", "geotransform"), QT_TRANSLATE_NOOP("Report", "extent"),
    QT_TRANSLATE_NOOP("Report", "coordinates"),  QT_TRANSLATE_NOOP("Report", "control points"),
    QT_TRANSLATE_NOOP("Report", "datum"),        QT_TRANSLATE_NOOP("Report", "units"),
    QT_TRANSLATE_NOOP("Report", "band"),         QT_TRANSLATE_NOOP("Report", "type"),
    QT_TRANSLATE_NOOP("Report", "block"),        QT_TRANSLATE_NOOP("Report", "no-data"),
    QT_TRANSLATE_NOOP("Report", "colours"),      QT_TRANSLATE_NOOP("Report", "overviews"),
    QT_TRANSLATE_NOOP("Report", "point"),        QT_TRANSLATE_NOOP("Report", "column"),
    QT_TRANSLATE_NOOP("Report", "row"),          QT_TRANSLATE_NOOP("Report", "value"),
    QT_TRANSLATE_NOOP("Report", "red"),          QT_TRANSLATE_NOOP("Report", "green"),
    QT_TRANSLATE_NOOP("Report", "blue"),         QT_TRANSLATE_NOOP("Report", "name"),
    QT_TRANSLATE_NOOP("Report", "sub-data-set"), QT_TRANSLATE_NOOP("Report", "description")};

/// With a capital where the language has such.
QString Heading(const std::string& word) {
    QString text = QCoreApplication::translate("Report", word.c_str());
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

QString Shown(const std::string& text) {
    return QString::fromStdString(host::Printable(text));
}

} // namespace

QWidget* MakeFactsForm(const host::TableContent& facts) {
    auto* page = new QWidget;
    page->setObjectName("facts");
    auto* form = new QFormLayout(page);
    form->setHorizontalSpacing(18);
    for (const auto& fact : facts.rows) {
        auto* label = new QLabel(Shown(fact[1]));
        label->setObjectName(QString::fromStdString(fact[0]));
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setWordWrap(true);
        form->addRow(Heading(fact[0]), label);
    }
    return page;
}

QWidget* MakeReportView(const QString& id, const host::TableContent& content) {
    auto* view = new QTableView;
    view->setObjectName(id);
    auto* model = new QStandardItemModel(static_cast<int>(content.rows.size()),
                                         static_cast<int>(content.columns.size()), view);
    for (int column = 0; column < model->columnCount(); ++column)
        model->setHeaderData(column, Qt::Horizontal,
                             Heading(content.columns[static_cast<std::size_t>(column)]));
    for (int row = 0; row < model->rowCount(); ++row)
        for (int column = 0; column < model->columnCount(); ++column)
            model->setItem(row, column,
                           new QStandardItem(Shown(content.rows[static_cast<std::size_t>(
                               row)][static_cast<std::size_t>(column)])));
    view->setModel(model);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->verticalHeader()->hide();
    view->horizontalHeader()->setStretchLastSection(true);
    view->setShowGrid(false);
    view->setFrameShape(QFrame::NoFrame);
    view->resizeColumnsToContents();
    return view;
}

} // namespace zelto::view
