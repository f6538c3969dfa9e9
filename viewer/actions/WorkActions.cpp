#include "viewer/actions/WorkActions.h"

#include "host/report/RasterFacts.h"
#include "viewer/actions/ActionTable.h"
#include "viewer/model/Document.h"
#include "viewer/model/Preferences.h"
#include "viewer/views/MapView.h"
#include "viewer/views/MessageBar.h"
#include "viewer/views/PlaceDialog.h"
#include "viewer/views/PolygonDialog.h"
#include "viewer/views/PropertiesDialog.h"
#include "viewer/worker/Engine.h"
#include "viewer/worker/ImageWork.h"
#include "viewer/worker/LayerClasses.h"
#include "viewer/worker/TaskRunner.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>

namespace zelto::view {

namespace {

const QString IMAGES = "images";
const QString PICTURES = "pictures";

} // namespace

WorkActions::WorkActions(const Workbench& bench, QObject* parent)
    : QObject(parent), m_bench(bench) {
    ActionTable& actions = bench.actions;
    actions.Add({"export", tr("&Export the view…"),
                 tr("Save what the map shows as PNG, or as GeoTIFF with its place"), tr("Ctrl+E"),
                 "export"},
                [this] { ChooseExport(); });
    actions.Add({"properties", tr("&Properties"), tr("What there is to say about the image"),
                 tr("Ctrl+I"), "info"},
                [this] { ShowProperties(); });
    actions.Add({"pyramids", tr("Build a &pyramid"),
                 tr("Make reduced copies beside the image, so that views of all of it are quick"),
                 tr("Ctrl+Shift+P"), "pyramid"},
                [this] {
                    if (const Layer* layer = m_bench.document.Current())
                        BuildPyramid(layer->id);
                });
    actions.Add({"polygonize", tr("Make p&olygons…"),
                 tr("A polygon for every area of equal pixels, in a vector file"),
                 tr("Ctrl+Shift+M"), "polygonize"},
                [this] { ChoosePolygons(); });
    actions.Add({"copy-to", tr("&Copy to another format…"),
                 tr("Write all bands of the image into a new file"), tr("Ctrl+Alt+C"), "copy"},
                [this] { ChooseCopy(); });
    actions.Add({"classes-save", tr("Save c&lasses…"),
                 tr("Write the classes and their colours into a file; beside the image it is where "
                    "they are read from"),
                 tr("Ctrl+Shift+L"), ""},
                [this] { ChooseClassFile(); });
    actions.Add({"georef", tr("&Georeference…"), tr("Say where the image lies"), tr("Ctrl+Shift+G"),
                 "georef"},
                [this] { ChoosePlace(); });
    connect(&bench.document, &Document::LayersChanged, this, &WorkActions::Enable);
    connect(&bench.document, &Document::CurrentChanged, this, &WorkActions::Enable);
    Enable();
}

void WorkActions::Enable() {
    const Layer* layer = m_bench.document.Current();
    const bool isOpen = layer != nullptr && layer->isOpen;
    const bool isFile = isOpen && !layer->origin.IsComposed();
    m_bench.actions.Find("export")->setEnabled(m_bench.document.HasPicture());
    m_bench.actions.Find("properties")->setEnabled(isOpen);
    m_bench.actions.Find("pyramids")->setEnabled(isFile);
    m_bench.actions.Find("polygonize")->setEnabled(isFile);
    m_bench.actions.Find("copy-to")->setEnabled(isFile);
    m_bench.actions.Find("classes-save")->setEnabled(isFile && !layer->facts.classes.empty());
    m_bench.actions.Find("georef")->setEnabled(isFile);
}

void WorkActions::Reopen(int id) {
    if (const Layer* layer = m_bench.document.Find(id))
        m_bench.engine.Open(
            id, layer->origin,
            id == m_bench.document.ReferenceLayer() ? -1 : m_bench.document.ReferenceLayer(),
            layer->settings.ToMap());
}

void WorkActions::BuildPyramid(int id) {
    const Layer* layer = m_bench.document.Find(id);
    if (layer == nullptr)
        return;
    const bool isCategorical =
        !layer->facts.classes.empty() ||
        (!layer->facts.bands.empty() && layer->facts.bands.front().hasColorTable);
    const QString resampling = isCategorical ? "NEAREST" : "AVERAGE";
    const QString path = layer->origin.Path();
    m_bench.tasks.Start({tr("Building a pyramid"), [=, this](CDataProgress& progress) {
                             return TaskResult{
                                 view::BuildPyramid(path, resampling, progress), [this, id, path] {
                                     Reopen(id);
                                     m_bench.messages.Tell(tr("%1 has a pyramid.").arg(path));
                                 }};
                         }});
}

void WorkActions::ChoosePolygons() {
    const Layer* layer = m_bench.document.Current();
    PolygonDialog dialog(layer->facts, m_bench.preferences.Folder("vectors"), &m_bench.window);
    if (dialog.exec() == QDialog::Accepted)
        MakePolygons(dialog.Path(), dialog.Band(), dialog.JoinsCorners());
}

void WorkActions::MakePolygons(const QString& target, int band, bool eight) {
    const Layer* layer = m_bench.document.Current();
    if (layer == nullptr)
        return;
    m_bench.preferences.SetFolderOf("vectors", target);
    const QString path = m_bench.document.Current()->origin.Path();
    m_bench.tasks.Start(
        {tr("Making polygons"), [=, this](CDataProgress& progress) {
             return TaskResult{
                 view::MakePolygons(path, target, band, eight, progress),
                 [this, target] { m_bench.messages.Tell(tr("%1 is saved.").arg(target)); }};
         }});
}

void WorkActions::ChooseCopy() {
    const Layer* layer = m_bench.document.Current();
    const QString name = QFileInfo(layer->origin.Path()).completeBaseName();
    const QString target = QFileDialog::getSaveFileName(
        &m_bench.window, tr("Copy the image"),
        m_bench.preferences.Folder(IMAGES) + "/" + name + "-copy.tif",
        tr("GeoTIFF (*.tif);;Erdas Imagine (*.img);;PCIDSK (*.pix);;All files (*)"));
    if (!target.isEmpty())
        CopyTo(target);
}

void WorkActions::CopyTo(const QString& target) {
    const Layer* layer = m_bench.document.Current();
    if (layer == nullptr)
        return;
    const QString path = layer->origin.Path();
    m_bench.tasks.Start({tr("Copying"), [=, this](CDataProgress& progress) {
                             return TaskResult{CopyImage(path, target, progress), [this, target] {
                                                   m_bench.messages.Tell(
                                                       tr("%1 is saved.").arg(target));
                                               }};
                         }});
}

void WorkActions::ChooseExport() {
    const Layer* layer = m_bench.document.Current();
    const QString name =
        layer != nullptr ? QFileInfo(layer->origin.Path()).completeBaseName() : QString("view");
    const QString path =
        QFileDialog::getSaveFileName(&m_bench.window, tr("Export the view"),
                                     m_bench.preferences.Folder(PICTURES) + "/" + name + ".png",
                                     tr("Pictures (*.png);;Georeferenced pictures (*.tif *.tiff)"));
    if (!path.isEmpty())
        Export(path);
}

void WorkActions::Export(const QString& path) {
    m_bench.preferences.SetFolderOf(PICTURES, path);
    const Picture picture = m_bench.map.Shown();
    const Layer* reference = m_bench.document.Find(m_bench.document.ReferenceLayer());
    const std::string wkt = reference != nullptr ? reference->facts.wkt : std::string();
    m_bench.tasks.Start(
        {tr("Exporting"), [=, this](CDataProgress&) {
             return TaskResult{
                 WritePicture(path, picture.image, picture.view.Box(), wkt),
                 [this, path] { m_bench.messages.Tell(tr("%1 is saved.").arg(path)); }};
         }});
}

void WorkActions::ChoosePlace() {
    const Layer* layer = m_bench.document.Current();
    // Copied: while the dialog is open layers may go.
    const int id = layer->id;
    const QString path = layer->origin.Path();
    PlaceDialog dialog(layer->facts, &m_bench.window);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_bench.tasks.Start(
        {tr("Georeferencing"), [=, this, placement = dialog.Chosen()](CDataProgress&) {
             return TaskResult{PlaceImage(path, placement), [this, id] { Reopen(id); }};
         }});
}

/// The files are asked anew, and for what they hold, however they are shown.
void WorkActions::ShowProperties() {
    const LayerFacts layer = m_bench.document.Current()->facts;
    m_bench.tasks.Start(
        {tr("Properties"), [this, layer](CDataProgress& progress) {
             std::vector<host::RasterFacts> files;
             for (const QString& path : layer.origin.paths)
                 files.push_back(host::DescribeRaster(path.toStdString(), {}, progress));
             return TaskResult{{}, [this, layer, files] {
                                   auto* dialog =
                                       new PropertiesDialog(layer, files, &m_bench.window);
                                   dialog->setAttribute(Qt::WA_DeleteOnClose);
                                   dialog->show();
                               }};
         }});
}

void WorkActions::ChooseClassFile() {
    const QString path = QFileDialog::getSaveFileName(
        &m_bench.window, tr("Save classes"), ClassFileOf(m_bench.document.Current()->origin.Path()),
        tr("Classes of an image (*.acf)"));
    if (!path.isEmpty())
        SaveClasses(path);
}

void WorkActions::SaveClasses(const QString& path) {
    const Layer* layer = m_bench.document.Current();
    if (layer == nullptr)
        return;
    const int id = layer->id;
    const bool isOfImage = path == ClassFileOf(layer->origin.Path());
    const std::vector<ClassColor> classes = Edited(layer->facts.classes, layer->settings.classes);
    m_bench.tasks.Start({tr("Saving classes"), [=, this](CDataProgress&) {
                             return TaskResult{WriteClasses(path, classes), [=, this] {
                                                   m_bench.messages.Tell(
                                                       tr("%1 is saved.").arg(path));
                                                   if (isOfImage)
                                                       Reopen(id);
                                               }};
                         }});
}

} // namespace zelto::view
