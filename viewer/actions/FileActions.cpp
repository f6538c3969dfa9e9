#include "viewer/actions/FileActions.h"

#include "viewer/actions/ActionTable.h"
#include "viewer/model/Document.h"
#include "viewer/model/Preferences.h"
#include "viewer/views/CompositionDialog.h"
#include "viewer/views/MapView.h"
#include "viewer/views/MessageBar.h"
#include "viewer/worker/Engine.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMainWindow>
#include <QMenu>

namespace zelto::view {

namespace {

const QString IMAGES = "images";

/// Names of data sets within files stay as they are.
QString AbsolutePath(const QString& path) {
    return QFileInfo::exists(path) ? QFileInfo(path).absoluteFilePath() : path;
}

} // namespace

FileActions::FileActions(const Workbench& bench, QObject* parent)
    : QObject(parent), m_bench(bench) {
    ActionTable& actions = bench.actions;
    actions.Add({"open", tr("&Open…"), tr("Open images as layers"), QKeySequence::Open, "open"},
                [this] { ChooseFiles(); });
    actions.Add({"compose", tr("Open as &red, green and blue…"),
                 tr("Show one band of each of three images as colours"), tr("Ctrl+Shift+O"),
                 "compose"},
                [this] { ChooseComposition(); });
    actions.Add({"quit", tr("&Quit"), tr("End the program"), QKeySequence::Quit, ""},
                [this] { m_bench.window.close(); });
    connect(&bench.engine, &Engine::Opened, this, &FileActions::TakeOpened);
    connect(&bench.engine, &Engine::OpenFailed, this, &FileActions::TakeFailure);
    connect(&bench.engine, &Engine::DrawFailed, this,
            [this](int, const QString& reason) { m_bench.messages.TellError(reason); });
}

void FileActions::ChooseFiles() {
    const QStringList paths = QFileDialog::getOpenFileNames(&m_bench.window, tr("Open images"),
                                                            m_bench.preferences.Folder(IMAGES));
    if (!paths.isEmpty())
        m_bench.preferences.SetFolderOf(IMAGES, paths.front());
    OpenFiles(paths);
}

void FileActions::ChooseComposition() {
    CompositionDialog dialog(m_bench.preferences.Folder(IMAGES), &m_bench.window);
    if (dialog.exec() == QDialog::Accepted)
        OpenOrigin(dialog.Origin());
}

void FileActions::OpenFiles(const QStringList& paths) {
    for (const QString& path : paths)
        OpenOrigin({{AbsolutePath(path)}, {}});
}

void FileActions::OpenOrigin(const LayerOrigin& origin) {
    const int reference = m_bench.document.ReferenceLayer();
    const int id = m_bench.document.Add(origin);
    // Of three images together nothing is remembered.
    m_bench.engine.Open(id, origin, reference,
                        origin.IsComposed() ? QVariantMap()
                                            : m_bench.preferences.DisplayOf(origin.Path()));
}

void FileActions::TakeOpened(int id, const LayerFacts& facts, const DisplaySettings& settings) {
    const Layer* layer = m_bench.document.Find(id);
    if (layer == nullptr) {
        m_bench.engine.Close(id); // it was removed meanwhile
        return;
    }
    const bool isFirstPicture = !m_bench.document.HasPicture();
    const QString path = facts.origin.Path();
    const bool isReopened = !layer->settings.bands.empty();
    if (isFirstPicture)
        m_bench.map.Fit(facts.extent);
    m_bench.document.TakeFacts(id, facts, isReopened ? layer->settings : settings);
    if (!facts.origin.IsComposed())
        m_bench.preferences.AddRecentFile(path);
    if (facts.subdatasets.size() > 1 && !isReopened)
        m_bench.messages.Offer(tr("%1 holds %n images; the first one is shown.", nullptr,
                                  static_cast<int>(facts.subdatasets.size()))
                                   .arg(facts.origin.Name()),
                               tr("Choose…"), [this, path, names = facts.subdatasets] {
                                   ChooseSubdataset(path, names);
                               });
    else
        OfferPyramid(facts);
}

void FileActions::ChooseSubdataset(const QString& container, const QStringList& names) {
    bool isChosen = false;
    const QString name = QInputDialog::getItem(&m_bench.window, tr("Images of %1").arg(container),
                                               tr("Image to open:"), names, 0, false, &isChosen);
    if (isChosen)
        OpenOrigin({{name}, {}});
}

void FileActions::OfferPyramid(const LayerFacts& facts) {
    const QString path = facts.origin.Path();
    if (!facts.lacksPyramid || facts.origin.IsComposed() || m_offered.contains(path))
        return;
    m_offered.insert(path);
    m_bench.messages.Offer(
        tr("%1 is large and has no pyramid: views of all of it are slow.").arg(facts.origin.Name()),
        tr("Build one"), [this] {
            if (QAction* build = m_bench.actions.Find("pyramids"))
                build->trigger();
        });
}

void FileActions::TakeFailure(int id, const QString& reason) {
    m_bench.document.Remove(id);
    m_bench.messages.TellError(reason);
}

void FileActions::FillRecent(QMenu& menu) {
    menu.clear();
    for (const QString& path : m_bench.preferences.RecentFiles())
        menu.addAction(path, this, [this, path] { OpenFiles({path}); });
    menu.setEnabled(!menu.isEmpty());
    if (menu.isEmpty())
        return;
    menu.addSeparator();
    menu.addAction(tr("Clear this list"), this, [this] { m_bench.preferences.ClearRecentFiles(); });
}

} // namespace zelto::view
