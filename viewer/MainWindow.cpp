#include "viewer/MainWindow.h"

#include "viewer/actions/AreaActions.h"
#include "viewer/actions/FileActions.h"
#include "viewer/actions/LayerActions.h"
#include "viewer/actions/TrainingActions.h"
#include "viewer/actions/ViewActions.h"
#include "viewer/actions/WorkActions.h"
#include "viewer/views/DisplayPanel.h"
#include "viewer/views/HistogramPanel.h"
#include "viewer/views/LayersPanel.h"
#include "viewer/views/MapPictures.h"
#include "viewer/views/MapView.h"
#include "viewer/views/MessageBar.h"
#include "viewer/views/OverviewMap.h"
#include "viewer/views/StatusLine.h"
#include "viewer/views/TablePanel.h"
#include "viewer/views/TaskLine.h"
#include "viewer/views/TrainingPanel.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QGridLayout>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>

namespace zelto::view {

namespace {

QStringList FilesOf(const QMimeData& data) {
    QStringList paths;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile())
            paths += url.toLocalFile();
    return paths;
}

} // namespace

MainWindow::MainWindow(const QStringList& files) {
    setObjectName("window");
    setWindowTitle("Zelto");
    setAcceptDrops(true);
    setDockOptions(AnimatedDocks | AllowNestedDocks | AllowTabbedDocks);
    // Tables of numbers are wide, lists of classes are long.
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::BottomDockWidgetArea);
    // A screen that is scaled up may have room for less.
    resize(QSize(1280, 800).boundedTo(screen()->availableSize()));
    MakeCentre();
    MakeActions(files);
    MakePanels();
    MakeMenus();
    MakeToolBar();
    MakeStatusBar();
    FollowPointer();
    FollowView();
    FollowOverview();
    restoreGeometry(m_preferences.Geometry());
    restoreState(m_preferences.WindowState());
}

MainWindow::~MainWindow() {
    // Views go before the models that they listen to.
    delete takeCentralWidget();
    qDeleteAll(findChildren<QDockWidget*>(Qt::FindDirectChildrenOnly));
}

void MainWindow::MakeCentre() {
    m_messages = new MessageBar;
    m_map = new MapView;
    m_map->SetHint(tr("Open an image (%1), or drop one here")
                       .arg(QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText)));
    auto* centre = new QWidget;
    auto* layout = new QGridLayout(centre);
    layout->setContentsMargins(0, 0, 0, 0);
    // Over the map, which does not move when a message comes or goes.
    layout->addWidget(m_map, 0, 0);
    layout->addWidget(m_messages, 0, 0, Qt::AlignTop);
    m_messages->raise();
    setCentralWidget(centre);
    m_pictures = new MapPictures(m_document, m_engine, *m_map, this);
}

void MainWindow::MakeActions(const QStringList& files) {
    const Workbench bench{*this,  m_document,  m_engine,    m_areas,       m_training, m_tasks,
                          *m_map, *m_pictures, *m_messages, m_preferences, m_actions};
    m_fileActions = new FileActions(bench, this);
    OpenFiles(files);
    new ViewActions(bench, this);
    new LayerActions(bench, this);
    m_areaActions = new AreaActions(bench, this);
    m_trainingActions = new TrainingActions(bench, this);
    m_workActions = new WorkActions(bench, this);
    addActions(m_actions.All());
}

QDockWidget* MainWindow::AddPanel(const QString& id, const QString& title, const QString& shortcut,
                                  QWidget* content, Qt::DockWidgetArea area) {
    auto* dock = new QDockWidget(title, this);
    dock->setObjectName(id);
    dock->setWidget(content);
    addDockWidget(area, dock);
    QAction* action = dock->toggleViewAction();
    action->setShortcut(shortcut);
    action->setToolTip(tr("Show or hide the panel"));
    return dock;
}

void MainWindow::MakePanels() {
    auto* layers = new LayersPanel(m_document);
    layers->AddToolBarActions({m_actions.Find("open"), m_actions.Find("layer-up"),
                               m_actions.Find("layer-down"), m_actions.Find("layer-remove")});
    connect(&m_engine, &Engine::MemoryChanged, layers, &LayersPanel::ShowMemory);
    m_overview = new OverviewMap;
    QDockWidget* overviewDock =
        AddPanel("overviewPanel", tr("Overview"), "F5", m_overview, Qt::LeftDockWidgetArea);
    QDockWidget* layersDock =
        AddPanel("layersPanel", tr("Layers"), "F6", layers, Qt::LeftDockWidgetArea);
    QDockWidget* displayDock =
        AddPanel("displayPanel", tr("Display"), "F7", new DisplayPanel(m_document, m_engine),
                 Qt::RightDockWidgetArea);
    auto* training = new TrainingPanel(m_training, m_areas);
    training->AddToolBarActions({m_actions.Find("class-add"), m_actions.Find("class-assign"),
                                 m_actions.Find("class-remove"), m_actions.Find("spectra"),
                                 m_actions.Find("samples-save")});
    QDockWidget* trainingDock =
        AddPanel("trainingPanel", tr("Training classes"), "F8", training, Qt::LeftDockWidgetArea);
    QDockWidget* statisticsDock = AddPanel("statisticsPanel", tr("Statistics"), "F9", MakeNumbers(),
                                           Qt::BottomDockWidgetArea);
    trainingDock->hide();
    statisticsDock->hide();
    resizeDocks({overviewDock, layersDock}, {190, 400}, Qt::Vertical);
    resizeDocks({layersDock, displayDock}, {270, 300}, Qt::Horizontal);
    connect(&m_training, &TrainingClasses::ClassesChanged, trainingDock, [=, this] {
        if (trainingDock->isVisible())
            return;
        trainingDock->show();
        resizeDocks({overviewDock, layersDock, trainingDock}, {170, 110, 380}, Qt::Vertical);
    });
    connect(m_areaActions, &AreaActions::StatisticsReady, statisticsDock, &QDockWidget::show);
    connect(m_areaActions, &AreaActions::HistogramsReady, statisticsDock, &QDockWidget::show);
}

/// Pages of the numbers about areas; each comes to the front when it has new ones.
QWidget* MainWindow::MakeNumbers() {
    auto* statistics = new TablePanel("statistics", *m_messages, m_preferences);
    auto* histograms = new HistogramPanel(*m_messages, m_preferences);
    auto* pages = new QTabWidget;
    pages->setObjectName("numbers");
    pages->setDocumentMode(true);
    pages->addTab(statistics, tr("Statistics"));
    pages->addTab(histograms, tr("Histograms"));
    connect(m_areaActions, &AreaActions::StatisticsReady, pages, [=](const NumberTable& table) {
        statistics->SetTable(table);
        pages->setCurrentWidget(statistics);
    });
    connect(m_areaActions, &AreaActions::HistogramsReady, pages,
            [=](const QString& title, const std::vector<RegionHistogram>& bands) {
                histograms->SetHistograms(title, bands);
                pages->setCurrentWidget(histograms);
            });
    return pages;
}

void MainWindow::MakeStatusBar() {
    m_status = new StatusLine;
    statusBar()->addWidget(m_status, 1);
    statusBar()->addPermanentWidget(new TaskLine(m_tasks));
    statusBar()->setSizeGripEnabled(false);
    connect(&m_tasks, &TaskRunner::Failed, this, [this](const QString& title, const QString& why) {
        m_messages->TellError(tr("%1: %2").arg(title, why));
    });
    connect(&m_tasks, &TaskRunner::Cancelled, this,
            [this](const QString& title) { m_messages->Tell(tr("%1: cancelled").arg(title)); });
}

void MainWindow::FollowPointer() {
    connect(m_map, &MapView::PointerMoved, this, [this](QPointF ground) {
        if (const Layer* layer = m_document.Current(); layer != nullptr && layer->isOpen)
            m_engine.Read(layer->id, ground);
    });
    connect(m_map, &MapView::PointerLeft, m_status, &StatusLine::ClearReading);
    connect(&m_engine, &Engine::Found, this, [this](const Reading& reading) {
        if (const Layer* layer = m_document.Find(reading.layer))
            m_status->ShowReading(reading, layer->facts);
    });
}

void MainWindow::FollowView() {
    const auto show = [this] {
        const Layer* layer = m_document.Current();
        const bool isOpen = layer != nullptr && layer->isOpen;
        m_status->ShowZoom(isOpen ? layer->facts.PixelSize() / m_map->View().Scale() : 0.0);
        setWindowTitle(isOpen ? layer->origin.Name() : QString());
        m_overview->SetView(m_map->View());
    };
    connect(m_map, &MapView::ViewChanged, this, show);
    connect(&m_document, &Document::CurrentChanged, this, show);
}

void MainWindow::FollowOverview() {
    connect(m_pictures, &MapPictures::OverviewChanged, m_overview, &OverviewMap::SetPicture);
    connect(m_overview, &OverviewMap::CenterChosen, this,
            [this](QPointF ground) { m_map->SetView(m_map->View().CenteredAt(ground)); });
}

void MainWindow::OpenFiles(const QStringList& paths) {
    m_fileActions->OpenFiles(paths);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!FilesOf(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    OpenFiles(FilesOf(*event->mimeData()));
    event->acceptProposedAction();
}

/// Asks where shapes are in no file yet.
bool MainWindow::MayLoseShapes() {
    if (m_areas.IsSaved())
        return true;
    const auto answer = QMessageBox::question(
        this, tr("Shapes are not saved"), tr("The shapes on the map have not been saved."),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        m_actions.Find("areas-save")->trigger(); // the window stays until that is done
    return answer == QMessageBox::Discard;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!MayLoseShapes()) {
        event->ignore();
        return;
    }
    m_preferences.SetWindow(saveGeometry(), saveState());
    event->accept();
}

} // namespace zelto::view
