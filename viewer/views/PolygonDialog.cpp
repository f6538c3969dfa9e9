#include "viewer/views/PolygonDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

namespace zelto::view {

PolygonDialog::PolygonDialog(const LayerFacts& facts, const QString& folder, QWidget* parent)
    : QDialog(parent),
      m_path(new QLineEdit),
      m_band(new QSpinBox),
      m_corners(new QCheckBox(tr("Pixels that touch at a corner belong together"))) {
    setWindowTitle(tr("Polygons of %1").arg(facts.origin.Name()));
    const QString name = QFileInfo(facts.origin.Path()).completeBaseName();
    m_path->setText(folder + "/" + name + ".shp");
    m_path->setMinimumWidth(360);
    m_band->setRange(1, static_cast<int>(facts.bands.size()));
    auto* choose = new QPushButton(tr("Choose…"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* form = new QFormLayout(this);
    form->addRow(tr("Band"), m_band);
    form->addRow(QString(), m_corners);
    form->addRow(tr("Vector file"), m_path);
    form->addRow(QString(), choose);
    form->addRow(buttons);
    connect(choose, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getSaveFileName(
            this, tr("Vector file"), m_path->text(), tr("Vector files (*.shp *.gpkg *.geojson)"));
        if (!path.isEmpty())
            m_path->setText(path);
    });
    connect(m_path, &QLineEdit::textChanged, this, [buttons](const QString& path) {
        buttons->button(QDialogButtonBox::Ok)->setEnabled(!path.isEmpty());
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

QString PolygonDialog::Path() const {
    return m_path->text();
}

int PolygonDialog::Band() const {
    return m_band->value();
}

bool PolygonDialog::JoinsCorners() const {
    return m_corners->isChecked();
}

} // namespace zelto::view
