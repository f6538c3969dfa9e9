#include "viewer/actions/TrainingActions.h"

#include "viewer/actions/ActionTable.h"
#include "viewer/model/AreaModel.h"
#include "viewer/model/Document.h"
#include "viewer/model/Preferences.h"
#include "viewer/model/TrainingClasses.h"
#include "viewer/views/MessageBar.h"
#include "viewer/worker/SampleWork.h"
#include "viewer/worker/TaskRunner.h"

#include <QFileDialog>
#include <QMainWindow>
#include <algorithm>
#include <map>

namespace zelto::view {

namespace {

const QString SAMPLES = "samples";

/// The classes with their shapes, as the work in the background takes them.
SampleRequest MakeRequest(const Workbench& bench) {
    SampleRequest request;
    const Layer* layer = bench.document.Current();
    request.path = layer->origin.Path();
    request.reference = layer->facts.warped ? layer->facts.wkt : std::string();
    for (const TrainingClass& each : bench.training.All()) {
        SampleShapes samples{each.number, each.name, {}};
        for (const AreaShape& shape : bench.areas.All())
            if (shape.trainingClass == each.number)
                samples.shapes.push_back(shape.shape);
        if (!samples.shapes.empty())
            request.classes.push_back(samples);
    }
    return request;
}

/// Adds the classes of a file and their shapes.
void TakeSamples(const Workbench& bench, const std::vector<SampleShapes>& classes) {
    const bool wasSaved = bench.areas.IsSaved();
    for (const SampleShapes& each : classes) {
        const int number = bench.training.Add(each.name);
        bench.areas.AddAll(each.shapes, TrainingActions::tr("Open samples"));
        bench.areas.SetClassOfSelected(number);
    }
    if (wasSaved)
        bench.areas.MarkSaved(bench.areas.Step());
}

} // namespace

TrainingActions::TrainingActions(const Workbench& bench, QObject* parent)
    : QObject(parent), m_bench(bench) {
    AddClasses();
    AddFiles();
    connect(&bench.training, &TrainingClasses::ClassesChanged, this, &TrainingActions::Enable);
    connect(&bench.areas, &AreaModel::ShapesChanged, this, &TrainingActions::Enable);
    connect(&bench.areas, &AreaModel::SelectionChanged, this, &TrainingActions::Enable);
    connect(&bench.document, &Document::CurrentChanged, this, &TrainingActions::Enable);
    Enable();
}

void TrainingActions::AddClasses() {
    ActionTable& actions = m_bench.actions;
    actions.Add({"class-add", tr("&New class"),
                 tr("Make a training class, of the selected shapes where there are such"),
                 tr("Ctrl+N"), "training"},
                [this] {
                    const int number = m_bench.training.Add();
                    m_bench.areas.SetClassOfSelected(number);
                });
    actions.Add({"class-assign", tr("&Give shapes the class"),
                 tr("Add the selected shapes to the class chosen in the panel"), tr("Ctrl+G"),
                 "add"},
                [this] { m_bench.areas.SetClassOfSelected(m_bench.training.Current()); });
    actions.Add({"class-remove", tr("&Remove class"),
                 tr("Remove the class; its shapes stay on the map"), tr("Ctrl+Shift+N"), "delete"},
                [this] { m_bench.training.Remove(m_bench.training.Current()); });
    actions.Add({"spectra", tr("&Spectra"),
                 tr("Mean and deviation of each band under the shapes of each class"), tr("Ctrl+P"),
                 "statistics"},
                [this] { ComputeSpectra(); });
}

void TrainingActions::AddFiles() {
    ActionTable& actions = m_bench.actions;
    actions.Add({"samples-open", tr("&Open samples…"), tr("Add the classes of a sample file"),
                 tr("Ctrl+Shift+E"), ""},
                [this] {
                    const QString path = QFileDialog::getOpenFileName(
                        &m_bench.window, tr("Open samples"), m_bench.preferences.Folder(SAMPLES));
                    if (!path.isEmpty())
                        OpenSamples(path);
                });
    actions.Add(
        {"samples-save", tr("S&ave samples…"),
         tr("Save the classes as a sample file of the current image"), tr("Ctrl+Shift+S"), "save"},
        [this] {
            const QString path =
                QFileDialog::getSaveFileName(&m_bench.window, tr("Save samples"),
                                             m_bench.preferences.Folder(SAMPLES) + "/classes.smp",
                                             tr("Samples (*.smp);;All files (*)"));
            if (!path.isEmpty())
                SaveSamples(path);
        });
}

bool TrainingActions::HasSamples() const {
    return std::any_of(m_bench.areas.All().begin(), m_bench.areas.All().end(),
                       [this](const AreaShape& shape) {
                           return m_bench.training.Find(shape.trainingClass) != nullptr;
                       });
}

void TrainingActions::Enable() {
    const Layer* layer = m_bench.document.Current();
    const bool isFile = layer != nullptr && layer->isOpen && !layer->origin.IsComposed();
    const bool hasClass = m_bench.training.Current() != 0;
    const bool hasSamples = isFile && HasSamples();
    m_bench.actions.Find("class-add")->setEnabled(layer != nullptr && layer->isOpen);
    m_bench.actions.Find("class-assign")
        ->setEnabled(hasClass && !m_bench.areas.Selection().isEmpty());
    m_bench.actions.Find("class-remove")->setEnabled(hasClass);
    m_bench.actions.Find("spectra")->setEnabled(hasSamples);
    m_bench.actions.Find("samples-save")->setEnabled(hasSamples);
}

void TrainingActions::ComputeSpectra() {
    m_bench.tasks.Start(
        {tr("Spectra"), [this, request = MakeRequest(m_bench)](CDataProgress& progress) {
             const SampleAnswer answer = CollectSamples(request, progress);
             return TaskResult{answer.reason,
                               [this, answer] { m_bench.training.SetSpectra(answer.spectra); }};
         }});
}

void TrainingActions::OpenSamples(const QString& path) {
    m_bench.preferences.SetFolderOf(SAMPLES, path);
    m_bench.tasks.Start(
        {tr("Opening samples"), [this, path](CDataProgress&) {
             const SampleFileContent read = ReadSamples(path);
             return TaskResult{read.reason, [this, read] { TakeSamples(m_bench, read.classes); }};
         }});
}

void TrainingActions::SaveSamples(const QString& path) {
    m_bench.preferences.SetFolderOf(SAMPLES, path);
    SampleRequest request = MakeRequest(m_bench);
    request.target = path;
    const auto& shapes = m_bench.areas.All();
    const bool areAll = std::all_of(shapes.begin(), shapes.end(), [this](const AreaShape& shape) {
        return m_bench.training.Find(shape.trainingClass) != nullptr;
    });
    m_bench.tasks.Start(
        {tr("Saving samples"), [=, this, step = m_bench.areas.Step()](CDataProgress& progress) {
             const SampleAnswer answer = CollectSamples(request, progress);
             return TaskResult{answer.reason, [=, this] {
                                   m_bench.training.SetSpectra(answer.spectra);
                                   if (areAll)
                                       m_bench.areas.MarkSaved(step);
                                   m_bench.messages.Tell(tr("%1 is saved.").arg(path));
                               }};
         }});
}

} // namespace zelto::view
