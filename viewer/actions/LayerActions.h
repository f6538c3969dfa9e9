#pragma once

#include "viewer/actions/Workbench.h"
#include "viewer/model/DisplaySettings.h"

#include <QObject>
#include <optional>

namespace zelto::view {

/// Order, removal and display of layers.
class LayerActions : public QObject {
    Q_OBJECT

  public:
    LayerActions(const Workbench& bench, QObject* parent);

  private:
    void AddOrder();
    void AddDisplay();
    void Enable();
    void Remove();
    /// @param by rows, negative upwards
    void MoveCurrent(int by);
    void Remember(int id);

    Workbench m_bench;
    std::optional<DisplaySettings> m_copied;
};

} // namespace zelto::view
