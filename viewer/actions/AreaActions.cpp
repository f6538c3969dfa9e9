#include "viewer/actions/AreaActions.h"

#include "viewer/actions/ActionTable.h"
#include "viewer/model/AreaModel.h"
#include "viewer/model/Document.h"
#include "viewer/model/Preferences.h"
#include "viewer/model/TrainingClasses.h"
#include "viewer/views/AreaPainting.h"
#include "viewer/views/DrawTool.h"
#include "viewer/views/MapPictures.h"
#include "viewer/views/MapView.h"
#include "viewer/views/MessageBar.h"
#include "viewer/views/RegionTable.h"
#include "viewer/views/SelectTool.h"
#include "viewer/worker/AreaFiles.h"
#include "viewer/worker/RegionWork.h"
#include "viewer/worker/TaskRunner.h"

#include <QActionGroup>
#include <QFileDialog>
#include <QMainWindow>

namespace zelto::view {

namespace {

const QString AREAS = "areas";

} // namespace

AreaActions::AreaActions(const Workbench& bench, QObject* parent)
    : QObject(parent),
      m_bench(bench),
      m_tools(new QActionGroup(this)),
      m_select(new SelectTool(bench.areas, this)) {
    AddTools();
    AddEdits();
    AddFiles();
    AddNumbers();
    MapView& map = bench.map;
    map.SetOverlay([&areas = bench.areas, &training = bench.training](QPainter& painter,
                                                                      const ViewTransform& view) {
        PaintAreas(painter, view, areas, training);
    });
    const auto repaint = [&map] { map.update(); };
    connect(&bench.areas, &AreaModel::ShapesChanged, this, [this] {
        if (m_isMasked)
            m_bench.pictures.SetMask(m_bench.areas.Areas());
    });
    connect(&bench.areas, &AreaModel::ShapesChanged, &map, repaint);
    connect(&bench.areas, &AreaModel::SelectionChanged, &map, repaint);
    connect(&bench.training, &TrainingClasses::ClassesChanged, &map, repaint);
    connect(&bench.areas, &AreaModel::ShapesChanged, this, &AreaActions::Enable);
    connect(&bench.areas, &AreaModel::SelectionChanged, this, &AreaActions::Enable);
    connect(&bench.document, &Document::CurrentChanged, this, &AreaActions::Enable);
    Enable();
}

void AreaActions::AddTool(const QString& id, const QString& text, const QString& tip,
                          const QString& key, MapTool* tool) {
    QAction* action =
        m_bench.actions.AddSwitch({"tool-" + id, text, tip, key, id}, [=, this](bool on) {
            if (on)
                m_bench.map.SetTool(tool);
        });
    m_tools->addAction(action);
    action->setChecked(tool == nullptr);
}

void AreaActions::AddTools() {
    const auto draw = [this](ShapeKind kind) { return new DrawTool(m_bench.areas, kind, this); };
    AddTool("pan", tr("P&an"), tr("Drag the map"), tr("H"), nullptr);
    AddTool("select", tr("&Select"), tr("Select, move and reshape shapes"), tr("V"), m_select);
    AddTool("point", tr("Draw &points"), tr("Click to set a point"), tr("P"), draw(SHAPE_POINT));
    AddTool("line", tr("Draw &lines"), tr("Click for each vertex, double-click to finish"), tr("L"),
            draw(SHAPE_MULTILINE));
    AddTool("polygon", tr("Draw p&olygons"), tr("Click for each vertex, double-click to finish"),
            tr("G"), draw(SHAPE_POLYGON));
    AddTool("rectangle", tr("Draw &rectangles"), tr("Drag from corner to corner; Shift: square"),
            tr("R"), draw(SHAPE_RECTANGLE));
    AddTool("ellipse", tr("Draw &ellipses"), tr("Drag from corner to corner; Shift: circle"),
            tr("E"), draw(SHAPE_ELLIPSE));
}

void AreaActions::AddEdits() {
    ActionTable& actions = m_bench.actions;
    QUndoStack& history = m_bench.areas.History();
    QAction* undo = actions.Add(
        {"undo", tr("&Undo"), tr("Take the last edit of shapes back"), QKeySequence::Undo, "undo"},
        [&history] { history.undo(); });
    QAction* redo = actions.Add({"redo", tr("R&edo"), tr("Make the edit that was taken back again"),
                                 QKeySequence::Redo, "redo"},
                                [&history] { history.redo(); });
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(&history, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(&history, &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
    actions.Add({"area-delete", tr("&Delete"),
                 tr("Delete the selected shapes, or the vertex last taken"), QKeySequence::Delete,
                 "delete"},
                [this] { Delete(); });
    actions.Add({"area-select-all", tr("Select &all"), tr("Select all shapes"),
                 QKeySequence::SelectAll, ""},
                [this] {
                    QSet<int> all;
                    for (const AreaShape& each : m_bench.areas.All())
                        all.insert(each.id);
                    m_bench.areas.Select(all);
                });
}

void AreaActions::AddFiles() {
    ActionTable& actions = m_bench.actions;
    actions.Add({"areas-open", tr("Open a&reas…"), tr("Add the shapes of a file of areas"),
                 tr("Ctrl+Shift+A"), ""},
                [this] {
                    const QString path = QFileDialog::getOpenFileName(
                        &m_bench.window, tr("Open areas"), m_bench.preferences.Folder(AREAS),
                        tr("Areas (*.aif *.shp *.gpkg *.geojson *.json *.kml);;All files (*)"));
                    if (!path.isEmpty())
                        OpenAreas(path);
                });
    actions.Add(
        {"areas-save", tr("Sa&ve areas…"), tr("Save the selected shapes that cover ground, or all"),
         QKeySequence::Save, "save"},
        [this] {
            const QString path = QFileDialog::getSaveFileName(
                &m_bench.window, tr("Save areas"), m_bench.preferences.Folder(AREAS) + "/areas.aif",
                tr("Areas of interest (*.aif);;Shapefiles (*.shp)"));
            if (!path.isEmpty())
                SaveAreas(path);
        });
}

void AreaActions::AddNumbers() {
    ActionTable& actions = m_bench.actions;
    actions.AddSwitch({"areas-mask", tr("Show &only the areas"),
                       tr("Leave out what is outside the areas"), tr("Ctrl+M"), "mask"},
                      [this](bool only) { ShowOnlyAreas(only); });
    actions.Add({"statistics", tr("S&tatistics"),
                 tr("Statistics of the layer in the selected areas, in all, or of the whole image"),
                 tr("Ctrl+T"), "statistics"},
                [this] { ComputeStatistics(false); });
    actions.Add({"statistics-each", tr("Statistics of eac&h shape"),
                 tr("The same for each shape by itself"), tr("Ctrl+Shift+T"), ""},
                [this] { ComputeStatistics(true); });
    actions.Add({"histograms", tr("Hi&stograms"),
                 tr("How often each value occurs in the selected areas, in all, or in the whole "
                    "image"),
                 tr("Ctrl+Alt+H"), ""},
                [this] { CountHistograms(); });
}

void AreaActions::Enable() {
    const AreaModel& areas = m_bench.areas;
    const bool hasAreas = !areas.Areas().empty();
    const Layer* layer = m_bench.document.Current();
    const bool isFile = layer != nullptr && layer->isOpen && !layer->origin.IsComposed();
    const auto enable = [this](const char* id, bool on) {
        m_bench.actions.Find(id)->setEnabled(on);
    };
    enable("area-delete", !areas.Selection().isEmpty());
    enable("area-select-all", !areas.All().empty());
    enable("areas-save", hasAreas);
    enable("areas-mask", hasAreas || m_isMasked);
    enable("statistics", isFile);
    enable("histograms", isFile);
    enable("statistics-each", isFile && hasAreas);
    for (QAction* tool : m_tools->actions())
        tool->setEnabled(m_bench.document.HasPicture());
}

void AreaActions::Delete() {
    if (m_bench.map.Tool() != m_select || !m_select->RemoveVertex())
        m_bench.areas.RemoveSelected();
}

void AreaActions::ShowOnlyAreas(bool only) {
    m_isMasked = only;
    m_bench.pictures.SetMask(only ? m_bench.areas.Areas() : Shapes());
}

void AreaActions::OpenAreas(const QString& path) {
    m_bench.preferences.SetFolderOf(AREAS, path);
    const Layer* layer = m_bench.document.Current();
    const std::string wkt = layer != nullptr ? layer->facts.wkt : std::string();
    m_bench.tasks.Start({tr("Opening areas"), [this, path, wkt](CDataProgress&) {
                             const auto read = ReadAreas(path, wkt);
                             return TaskResult{
                                 read.reason, [this, read] {
                                     const bool wasSaved = m_bench.areas.IsSaved();
                                     m_bench.areas.AddAll(read.shapes, tr("Open areas"));
                                     if (wasSaved)
                                         m_bench.areas.MarkSaved(m_bench.areas.Step());
                                     if (!read.remark.isEmpty())
                                         m_bench.messages.TellError(read.remark);
                                 }};
                         }});
}

void AreaActions::SaveAreas(const QString& path) {
    m_bench.preferences.SetFolderOf(AREAS, path);
    const Layer* layer = m_bench.document.Current();
    const std::string wkt = layer != nullptr ? layer->facts.wkt : std::string();
    const double resolution = layer != nullptr ? layer->facts.PixelSize() / 4.0 : 0.0;
    const Shapes shapes = m_bench.areas.ChosenAreas();
    const bool areAll = shapes.size() == m_bench.areas.Areas().size();
    m_bench.tasks.Start(
        {tr("Saving areas"), [=, this, step = m_bench.areas.Step()](CDataProgress&) {
             return TaskResult{WriteAreas(path, shapes, wkt, resolution), [=, this] {
                                   if (areAll)
                                       m_bench.areas.MarkSaved(step);
                                   m_bench.messages.Tell(tr("%1 is saved.").arg(path));
                               }};
         }});
}

RegionRequest AreaActions::RequestForCurrent() const {
    const Layer* layer = m_bench.document.Current();
    RegionRequest request;
    request.path = layer->origin.Path();
    request.reference = layer->facts.warped ? layer->facts.wkt : std::string();
    request.shapes = m_bench.areas.ChosenAreas();
    return request;
}

/// The image and what of it the numbers are of.
QString AreaActions::TitleOf(const RegionRequest& request) const {
    const QString name = m_bench.document.Current()->origin.Name();
    const int shapes = static_cast<int>(request.shapes.size());
    if (shapes == 0)
        return tr("%1, the whole image").arg(name);
    return (m_bench.areas.Selection().isEmpty() ? tr("%1, all %n shape(s)", nullptr, shapes)
                                                : tr("%1, %n selected shape(s)", nullptr, shapes))
        .arg(name);
}

void AreaActions::CountHistograms() {
    const RegionRequest request = RequestForCurrent();
    const QString name = TitleOf(request);
    m_bench.tasks.Start({tr("Histograms"), [this, request, name](CDataProgress& progress) {
                             const RegionHistograms answer = CountRegion(request, progress);
                             return TaskResult{answer.reason, [this, answer, name] {
                                                   emit HistogramsReady(name, answer.bands);
                                               }};
                         }});
}

void AreaActions::ComputeStatistics(bool eachShape) {
    RegionRequest request = RequestForCurrent();
    request.eachShape = eachShape;
    const QString name = TitleOf(request);
    m_bench.tasks.Start({tr("Statistics"), [this, request, name](CDataProgress& progress) {
                             const RegionAnswer answer = ComputeRegions(request, progress);
                             return TaskResult{answer.reason, [this, answer, name] {
                                                   emit StatisticsReady(
                                                       MakeRegionTable(name, answer));
                                               }};
                         }});
}

} // namespace zelto::view
