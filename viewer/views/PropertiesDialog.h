#pragma once

#include "viewer/model/LayerFacts.h"

#include <QDialog>

namespace zelto::view {

/// What there is to say about an image and its reference system.
class PropertiesDialog : public QDialog {
    Q_OBJECT

  public:
    PropertiesDialog(const LayerFacts& facts, QWidget* parent = nullptr);
};

} // namespace zelto::view
