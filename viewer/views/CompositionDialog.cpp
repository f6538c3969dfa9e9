#include "viewer/views/CompositionDialog.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

namespace zelto::view {

namespace {

constexpr int MOST_BANDS = 100000;
constexpr int PATH_WIDTH = 320;

} // namespace

CompositionDialog::CompositionDialog(const QString& folder, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Open as red, green and blue"));
    auto* grid = new QGridLayout(this);
    const QString names[] = {tr("Red"), tr("Green"), tr("Blue")};
    for (int k = 0; k < 3; ++k)
        AddRow(*grid, k, names[k], folder);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_accept = buttons->button(QDialogButtonBox::Ok);
    grid->addWidget(buttons, 3, 0, 1, 4);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Enable();
}

void CompositionDialog::AddRow(QGridLayout& grid, int k, const QString& name,
                               const QString& folder) {
    auto* path = new QLineEdit;
    path->setMinimumWidth(PATH_WIDTH);
    path->setPlaceholderText(tr("Image"));
    auto* choose = new QPushButton(tr("Choose…"));
    auto* band = new QSpinBox;
    band->setRange(1, MOST_BANDS);
    band->setPrefix(tr("Band "));
    grid.addWidget(new QLabel(name), k, 0);
    grid.addWidget(path, k, 1);
    grid.addWidget(choose, k, 2);
    grid.addWidget(band, k, 3);
    const auto index = static_cast<std::size_t>(k);
    m_paths[index] = path;
    m_bands[index] = band;
    connect(path, &QLineEdit::textChanged, this, &CompositionDialog::Enable);
    connect(choose, &QPushButton::clicked, this, [this, path, folder] {
        const QString chosen = QFileDialog::getOpenFileName(this, tr("Open an image"), folder);
        if (!chosen.isEmpty())
            path->setText(chosen);
    });
}

void CompositionDialog::Enable() {
    bool isComplete = true;
    for (const QLineEdit* path : m_paths)
        isComplete = isComplete && path != nullptr && !path->text().isEmpty();
    if (m_accept != nullptr)
        m_accept->setEnabled(isComplete);
}

LayerOrigin CompositionDialog::Origin() const {
    LayerOrigin origin;
    for (std::size_t k = 0; k < m_paths.size(); ++k) {
        origin.paths.append(m_paths[k]->text());
        origin.bands[k] = m_bands[k]->value() - 1;
    }
    return origin;
}

} // namespace zelto::view
