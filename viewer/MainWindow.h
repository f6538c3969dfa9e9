#pragma once

#include "viewer/actions/ActionTable.h"
#include "viewer/actions/Workbench.h"
#include "viewer/model/AreaModel.h"
#include "viewer/model/Document.h"
#include "viewer/model/Preferences.h"
#include "viewer/model/TrainingClasses.h"
#include "viewer/worker/Engine.h"
#include "viewer/worker/TaskRunner.h"

#include <QMainWindow>

namespace zelto::view {

class AreaActions;
class FileActions;
class MapPictures;
class MapView;
class MessageBar;
class OverviewMap;
class StatusLine;
class TrainingActions;
class WorkActions;

/// The window: puts models, worker, views and actions together. What it holds it makes once;
/// everything else goes on between those by signals.
class MainWindow : public QMainWindow {
    Q_OBJECT

  public:
    /// Begins to open the files before anything else is made, which takes about as long.
    explicit MainWindow(const QStringList& files = {});
    ~MainWindow() override;

    void OpenFiles(const QStringList& paths);

    // For programs that drive the window.
    Document& GetDocument() { return m_document; }
    Engine& GetEngine() { return m_engine; }
    AreaModel& GetAreas() { return m_areas; }
    TrainingClasses& GetTraining() { return m_training; }
    TaskRunner& GetTasks() { return m_tasks; }
    MapView& GetMap() { return *m_map; }
    MapPictures& GetPictures() { return *m_pictures; }
    MessageBar& GetMessages() { return *m_messages; }
    AreaActions& GetAreaActions() { return *m_areaActions; }
    TrainingActions& GetTrainingActions() { return *m_trainingActions; }
    WorkActions& GetWorkActions() { return *m_workActions; }
    QAction* FindAction(const QString& id) const { return m_actions.Find(id); }
    const ActionTable& Actions() const { return m_actions; }

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void MakeCentre();
    void MakeActions(const QStringList& files);
    void MakePanels();
    QWidget* MakeNumbers();
    QDockWidget* AddPanel(const QString& id, const QString& title, const QString& shortcut,
                          QWidget* content, Qt::DockWidgetArea area);
    void MakeMenus();
    void MakeToolBar();
    void AddToMenu(QMenu& menu, const QString& ids);
    void MakeStatusBar();
    bool MayLoseShapes();
    void FollowPointer();
    void FollowView();
    void FollowOverview();

    // In the order in which they are needed; the worker threads end before what they feed.
    Preferences m_preferences;
    ActionTable m_actions;
    Document m_document;
    AreaModel m_areas;
    TrainingClasses m_training;
    Engine m_engine;
    TaskRunner m_tasks;
    MapView* m_map = nullptr;
    MapPictures* m_pictures = nullptr;
    MessageBar* m_messages = nullptr;
    OverviewMap* m_overview = nullptr;
    StatusLine* m_status = nullptr;
    FileActions* m_fileActions = nullptr;
    AreaActions* m_areaActions = nullptr;
    TrainingActions* m_trainingActions = nullptr;
    WorkActions* m_workActions = nullptr;
};

} // namespace zelto::view
