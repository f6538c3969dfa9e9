#include "viewer/MainWindow.h"
#include "viewer/actions/FileActions.h"

#include <QDockWidget>
#include <QMenuBar>
#include <QToolBar>

namespace zelto::view {

namespace {

constexpr int TOOL_ICON_SIDE = 22;

} // namespace

/// @param ids separated by blanks; "-" stands for a line between groups
void MainWindow::AddToMenu(QMenu& menu, const QString& ids) {
    menu.setToolTipsVisible(true);
    for (const QString& id : ids.split(' ')) {
        if (id == "-")
            menu.addSeparator();
        else
            menu.addAction(m_actions.Find(id));
    }
}

void MainWindow::MakeMenus() {
    QMenu& file = *menuBar()->addMenu(tr("&File"));
    AddToMenu(file, "open compose");
    QMenu* recent = file.addMenu(tr("Open &recent"));
    connect(&file, &QMenu::aboutToShow, this,
            [this, recent] { m_fileActions->FillRecent(*recent); });
    AddToMenu(file, "- export properties - quit");
    QMenu& view = *menuBar()->addMenu(tr("&View"));
    AddToMenu(view, "fit fit-layer one-to-one zoom-in zoom-out - pan-left pan-right pan-up "
                    "pan-down - theme-system theme-light theme-dark");
    view.addSeparator();
    for (QDockWidget* dock : findChildren<QDockWidget*>(Qt::FindDirectChildrenOnly))
        view.addAction(dock->toggleViewAction());
    AddToMenu(*menuBar()->addMenu(tr("&Layer")),
              "layer-up layer-down layer-visible layer-remove - display-copy display-paste "
              "display-reset");
    AddToMenu(*menuBar()->addMenu(tr("&Areas")),
              "tool-pan tool-select tool-point tool-line tool-polygon tool-rectangle tool-ellipse "
              "- undo redo area-delete area-select-all - areas-open areas-save - areas-mask "
              "statistics statistics-each histograms");
    AddToMenu(*menuBar()->addMenu(tr("&Training")),
              "class-add class-assign class-remove - spectra samples-open samples-save");
    AddToMenu(*menuBar()->addMenu(tr("&Work")),
              "pyramids copy-to polygonize - georef classes-save");
}

void MainWindow::MakeToolBar() {
    QToolBar* bar = addToolBar(tr("Tools"));
    bar->setObjectName("tools");
    bar->setIconSize({TOOL_ICON_SIDE, TOOL_ICON_SIDE});
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    for (const QString& id :
         QString("open export - fit one-to-one zoom-in zoom-out - tool-pan tool-select tool-point "
                 "tool-line tool-polygon tool-rectangle tool-ellipse - undo redo area-delete - "
                 "areas-mask statistics class-add")
             .split(' ')) {
        if (id == "-")
            bar->addSeparator();
        else
            bar->addAction(m_actions.Find(id));
    }
}

} // namespace zelto::view
