#include "viewer/views/PropertiesDialog.h"

#include "host/report/RasterReport.h"
#include "viewer/views/ReportView.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QVBoxLayout>

namespace zelto::view {

namespace {

QWidget* MakeText(const QString& text) {
    auto* page = new QPlainTextEdit(text);
    page->setReadOnly(true);
    page->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    page->setFrameShape(QFrame::NoFrame);
    return page;
}

} // namespace

PropertiesDialog::PropertiesDialog(const LayerFacts& layer,
                                   const std::vector<host::RasterFacts>& files, QWidget* parent)
    : QDialog(parent) {
    setObjectName("properties");
    setWindowTitle(layer.origin.Name());
    QWidget* content = nullptr;
    if (files.size() == 1) {
        content = MakeFile(layer, files.front());
    } else {
        auto* all = new QTabWidget;
        for (const host::RasterFacts& file : files)
            all->addTab(MakeFile(layer, file),
                        LayerOrigin{{QString::fromStdString(file.path)}, {}}.Name());
        content = all;
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(content);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    resize(680, 440);
}

QWidget* PropertiesDialog::MakeFile(const LayerFacts& layer, const host::RasterFacts& file) {
    host::TableContent summary = host::SummaryTable(file);
    summary.rows.insert(summary.rows.begin(), {"file", file.path});
    auto* tabs = new QTabWidget;
    tabs->addTab(MakeFactsForm(summary), tr("Image"));
    tabs->addTab(MakeReportView("bands", host::BandTable(file)), tr("Bands"));
    if (!file.controlPoints.empty())
        tabs->addTab(MakeReportView("controlPoints", host::ControlPointTable(file)),
                     tr("Control points"));
    if (!file.classes.empty())
        tabs->addTab(MakeReportView("classes", host::ClassTableOf(file.classes)), tr("Classes"));
    if (!file.subdatasets.empty())
        tabs->addTab(MakeReportView("subdatasets", host::SubdatasetTable(file)),
                     tr("Sub-data-sets"));
    tabs->addTab(MakeText(layer.coordinateWords), tr("Coordinate system"));
    tabs->addTab(MakeText(QString::fromStdString(file.wkt)), tr("As text"));
    return tabs;
}

} // namespace zelto::view
