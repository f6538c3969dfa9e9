#pragma once

#include "tests/support/TemporaryFolder.h"
#include "tests/viewer/WindowDriver.h"
#include "viewer/views/MapView.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QImage>
#include <functional>
#include <memory>

class CRasterSource;

namespace zelto::test {

/// A window with the sample scene in it, in the settings that it opens with.
class SceneWindow : public testing::Test {
  protected:
    void SetUp() override;

    view::MapView& Map() { return m_window->GetMap(); }
    const view::Layer& Current() { return *m_window->GetDocument().Current(); }
    void Trigger(const char* action) { m_window->FindAction(action)->trigger(); }
    QPoint Middle() { return Map().rect().center(); }
    /// What the map counts as pixels: those of the screen, of which a widget's pixel is several
    /// where the screen is scaled up.
    QPointF OnScreen(QPointF ofWidget) { return ofWidget * Map().devicePixelRatioF(); }
    /// Draws a rectangle of 120 × 100 pixels of the screen about the middle, with the mouse.
    void DrawRectangle();

    /// The picture of the map's view as the engine draws it with settings of the sample scene's
    /// own, in the form that the map has.
    QImage DrawByEngine(const std::function<void(CRasterSource&)>& prepare);

    TemporaryFolder m_folder;
    std::unique_ptr<view::MainWindow> m_window;
};

} // namespace zelto::test
