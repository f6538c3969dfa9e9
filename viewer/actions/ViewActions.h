#pragma once

#include "viewer/actions/Workbench.h"

#include <QObject>

class QActionGroup;

namespace zelto::view {

/// Which part is shown, how large, and in which colours the window comes.
class ViewActions : public QObject {
    Q_OBJECT

  public:
    ViewActions(const Workbench& bench, QObject* parent);

    /// Each pixel of the current image as one of the screen, on its own grid.
    void ShowOneToOne();

  private:
    void AddZoom();
    void AddPan();
    void AddThemes();
    void Enable();

    Workbench m_bench;
};

} // namespace zelto::view
