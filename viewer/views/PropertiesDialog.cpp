#include "viewer/views/PropertiesDialog.h"

#include "viewer/views/StatusLine.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace zelto::view {

namespace {

void AddFact(QFormLayout& form, const QString& name, const QString& text) {
    if (text.isEmpty())
        return;
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    form.addRow(name, label);
}

QString Pair(double a, double b) {
    return QString("%1, %2").arg(QString::number(a, 'g', 12), QString::number(b, 'g', 12));
}

QWidget* MakeSummary(const LayerFacts& facts) {
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->setHorizontalSpacing(18);
    AddFact(*form, PropertiesDialog::tr("File"), facts.origin.paths.join('\n'));
    AddFact(*form, PropertiesDialog::tr("Format"), facts.format);
    AddFact(*form, PropertiesDialog::tr("Size"),
            PropertiesDialog::tr("%1 × %2 pixels").arg(facts.width).arg(facts.height));
    AddFact(*form, PropertiesDialog::tr("Bands"), QString::number(facts.bands.size()));
    AddFact(*form, PropertiesDialog::tr("Origin"),
            Pair(facts.geoTransform[0], facts.geoTransform[3]));
    AddFact(*form, PropertiesDialog::tr("Pixel size"),
            Pair(facts.geoTransform[1], facts.geoTransform[5]));
    AddFact(*form, PropertiesDialog::tr("Left, top"),
            Pair(facts.extent.GetLeft(), facts.extent.GetTop()));
    AddFact(*form, PropertiesDialog::tr("Right, bottom"),
            Pair(facts.extent.GetRight(), facts.extent.GetBottom()));
    AddFact(*form, PropertiesDialog::tr("Coordinates"),
            facts.coordinateName.isEmpty() ? PropertiesDialog::tr("none") : facts.coordinateName);
    AddFact(*form, PropertiesDialog::tr("Pyramid"),
            facts.pyramid.isEmpty() ? PropertiesDialog::tr("none") : facts.pyramid);
    return page;
}

QWidget* MakeBands(const LayerFacts& facts) {
    auto* table = new QTableWidget(static_cast<int>(facts.bands.size()), 4);
    table->setHorizontalHeaderLabels({PropertiesDialog::tr("Band"), PropertiesDialog::tr("Type"),
                                      PropertiesDialog::tr("No-data value"),
                                      PropertiesDialog::tr("Colour table")});
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setShowGrid(false);
    for (int row = 0; row < table->rowCount(); ++row) {
        const BandFacts& band = facts.bands[static_cast<std::size_t>(row)];
        table->setItem(row, 0, new QTableWidgetItem(QString::number(row + 1)));
        table->setItem(row, 1, new QTableWidgetItem(band.type));
        table->setItem(row, 2,
                       new QTableWidgetItem(band.noData ? ReadableNumber(*band.noData) : "–"));
        table->setItem(
            row, 3, new QTableWidgetItem(band.hasColorTable ? PropertiesDialog::tr("yes") : "–"));
    }
    return table;
}

QWidget* MakeText(const QString& text) {
    auto* page = new QPlainTextEdit(text);
    page->setReadOnly(true);
    page->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    page->setFrameShape(QFrame::NoFrame);
    return page;
}

} // namespace

PropertiesDialog::PropertiesDialog(const LayerFacts& facts, QWidget* parent) : QDialog(parent) {
    setObjectName("properties");
    setWindowTitle(facts.origin.Name());
    auto* tabs = new QTabWidget;
    tabs->addTab(MakeSummary(facts), tr("Image"));
    tabs->addTab(MakeBands(facts), tr("Bands"));
    tabs->addTab(MakeText(facts.coordinateWords), tr("Coordinate system"));
    tabs->addTab(MakeText(QString::fromStdString(facts.wkt)), tr("As text"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    resize(620, 420);
}

} // namespace zelto::view
