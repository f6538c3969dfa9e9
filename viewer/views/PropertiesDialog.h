#pragma once

#include "host/report/RasterFacts.h"
#include "viewer/model/LayerFacts.h"

#include <QDialog>

namespace zelto::view {

/// What there is to say about an image, as `zelto info` tells it, and its reference system in
/// words.
class PropertiesDialog : public QDialog {
    Q_OBJECT

  public:
    /// @param files of the image: one, or those composed
    PropertiesDialog(const LayerFacts& layer, const std::vector<host::RasterFacts>& files,
                     QWidget* parent = nullptr);

  private:
    QWidget* MakeFile(const LayerFacts& layer, const host::RasterFacts& file);
};

} // namespace zelto::view
