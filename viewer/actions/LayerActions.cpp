#include "viewer/actions/LayerActions.h"

#include "viewer/actions/ActionTable.h"
#include "viewer/model/Document.h"
#include "viewer/model/Preferences.h"
#include "viewer/views/MessageBar.h"
#include "viewer/worker/Engine.h"

#include <algorithm>

namespace zelto::view {

namespace {

/// What of a display another image can be shown with: the bands must be there, and bounds are
/// values of the image they were chosen for.
DisplaySettings Adapted(DisplaySettings settings, const Layer& layer) {
    const int count = static_cast<int>(layer.facts.bands.size());
    const bool hasBands = std::all_of(settings.bands.begin(), settings.bands.end(),
                                      [count](int band) { return band < count; });
    if (!hasBands)
        settings.bands = layer.settings.bands;
    settings.classes = layer.settings.classes;
    return settings;
}

} // namespace

LayerActions::LayerActions(const Workbench& bench, QObject* parent)
    : QObject(parent), m_bench(bench) {
    AddOrder();
    AddDisplay();
    connect(&bench.document, &Document::LayersChanged, this, &LayerActions::Enable);
    connect(&bench.document, &Document::CurrentChanged, this, &LayerActions::Enable);
    connect(&bench.document, &Document::SettingsChanged, this, &LayerActions::Remember);
    Enable();
}

void LayerActions::AddOrder() {
    ActionTable& actions = m_bench.actions;
    actions.Add({"layer-remove", tr("&Remove layer"), tr("Take the layer out of the window"),
                 tr("Ctrl+Backspace"), "delete"},
                [this] { Remove(); });
    actions.Add({"layer-up", tr("Move &up"), tr("Show the layer above the next one"),
                 tr("Ctrl+Shift+Up"), "up"},
                [this] { MoveCurrent(-1); });
    actions.Add({"layer-down", tr("Move &down"), tr("Show the layer below the next one"),
                 tr("Ctrl+Shift+Down"), "down"},
                [this] { MoveCurrent(1); });
    actions.Add(
        {"layer-visible", tr("Show or &hide"), tr("Show or hide the layer"), tr("Ctrl+H"), ""},
        [this] {
            if (const Layer* layer = m_bench.document.Current())
                m_bench.document.SetVisible(layer->id, !layer->isVisible);
        });
}

void LayerActions::AddDisplay() {
    ActionTable& actions = m_bench.actions;
    actions.Add({"display-copy", tr("&Copy display"), tr("Take up how the layer is shown"),
                 tr("Ctrl+Shift+C"), "copy"},
                [this] {
                    m_copied = m_bench.document.Current()->settings;
                    Enable();
                });
    actions.Add({"display-paste", tr("&Paste display"),
                 tr("Show the layer as the one whose display was copied"), tr("Ctrl+Shift+V"), ""},
                [this] {
                    const Layer* layer = m_bench.document.Current();
                    m_bench.document.SetSettings(layer->id, Adapted(*m_copied, *layer));
                });
    actions.Add({"display-reset", tr("Reset d&isplay"), tr("Show the layer as when first opened"),
                 tr("Ctrl+Shift+R"), "reset"},
                [this] {
                    const Layer* layer = m_bench.document.Current();
                    m_bench.document.SetSettings(layer->id, layer->facts.initial);
                });
}

void LayerActions::Enable() {
    const Layer* layer = m_bench.document.Current();
    const bool isOpen = layer != nullptr && layer->isOpen;
    for (const char* id :
         {"layer-up", "layer-down", "layer-visible", "display-copy", "display-reset"})
        m_bench.actions.Find(id)->setEnabled(isOpen);
    m_bench.actions.Find("layer-remove")->setEnabled(layer != nullptr);
    m_bench.actions.Find("display-paste")->setEnabled(isOpen && m_copied);
}

void LayerActions::Remove() {
    const Layer* layer = m_bench.document.Current();
    if (layer == nullptr)
        return;
    const int id = layer->id;
    m_bench.document.Remove(id);
    m_bench.engine.Close(id);
}

void LayerActions::MoveCurrent(int by) {
    const auto& layers = m_bench.document.Layers();
    const Layer* layer = m_bench.document.Current();
    if (layer == nullptr)
        return;
    const int position = static_cast<int>(layer - layers.data());
    m_bench.document.Move(layer->id, position + by);
}

void LayerActions::Remember(int id) {
    const Layer* layer = m_bench.document.Find(id);
    if (layer != nullptr && !layer->origin.IsComposed())
        m_bench.preferences.SetDisplayOf(layer->origin.Path(), layer->settings.ToMap());
}

} // namespace zelto::view
