#include "viewer/views/PlaceDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zelto::view {

PlaceDialog::PlaceDialog(const LayerFacts& facts, QWidget* parent)
    : QDialog(parent),
      m_box(new QGroupBox(tr("Sides of the whole image, north up"))),
      m_srs(new QLineEdit),
      m_remark(new QLabel) {
    setWindowTitle(tr("Georeference %1").arg(facts.origin.Name()));
    m_box->setCheckable(true);
    auto* sides = new QFormLayout(m_box);
    const QString names[] = {tr("Left"), tr("Top"), tr("Right"), tr("Bottom")};
    const double values[] = {facts.extent.GetLeft(), facts.extent.GetTop(), facts.extent.GetRight(),
                             facts.extent.GetBottom()};
    for (std::size_t i = 0; i < m_sides.size(); ++i) {
        m_sides[i] = new QLineEdit(QString::number(values[i], 'g', 15));
        sides->addRow(names[i], m_sides[i]);
        connect(m_sides[i], &QLineEdit::textChanged, this, &PlaceDialog::Check);
    }
    m_srs->setPlaceholderText(tr("EPSG:32650, or any text that names a system; empty: as it is"));
    m_srs->setMinimumWidth(380);
    auto* system = new QFormLayout;
    system->addRow(tr("Reference system"), m_srs);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_accept = buttons->button(QDialogButtonBox::Ok);
    m_accept->setText(tr("Write into the file"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_box);
    layout->addLayout(system);
    layout->addWidget(m_remark);
    layout->addWidget(buttons);
    connect(m_box, &QGroupBox::toggled, this, &PlaceDialog::Check);
    connect(m_srs, &QLineEdit::textChanged, this, &PlaceDialog::Check);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Check();
}

Placement PlaceDialog::Chosen() const {
    Placement placement;
    if (m_box->isChecked())
        placement.box.emplace(m_sides[0]->text().toDouble(), m_sides[1]->text().toDouble(),
                              m_sides[2]->text().toDouble(), m_sides[3]->text().toDouble());
    placement.srs = m_srs->text().trimmed();
    return placement;
}

void PlaceDialog::Check() {
    bool areNumbers = true;
    for (const QLineEdit* side : m_sides) {
        bool isNumber = false;
        side->text().toDouble(&isNumber);
        areNumbers = areNumbers && isNumber;
    }
    const Placement chosen = Chosen();
    const bool isBox = !chosen.box || (areNumbers && chosen.box->m_left < chosen.box->m_right &&
                                       chosen.box->m_bottom < chosen.box->m_top);
    m_remark->setText(isBox ? QString() : tr("Left is less than right, and bottom less than top."));
    m_accept->setEnabled(isBox && (chosen.box || !chosen.srs.isEmpty()));
}

} // namespace zelto::view
