#include "viewer/actions/ViewActions.h"

#include "viewer/actions/ActionTable.h"
#include "viewer/model/Document.h"
#include "viewer/model/Preferences.h"
#include "viewer/views/MapView.h"
#include "viewer/views/Theme.h"

#include <QActionGroup>
#include <QMainWindow>

namespace zelto::view {

namespace {

constexpr double ZOOM_STEP = 1.5;

Theme ThemeNamed(const QString& name) {
    return name == "dark" ? Theme::Dark : name == "light" ? Theme::Light : Theme::System;
}

} // namespace

ViewActions::ViewActions(const Workbench& bench, QObject* parent)
    : QObject(parent), m_bench(bench) {
    AddZoom();
    AddPan();
    AddThemes();
    connect(&bench.document, &Document::LayersChanged, this, &ViewActions::Enable);
    Enable();
}

void ViewActions::AddZoom() {
    ActionTable& actions = m_bench.actions;
    MapView& map = m_bench.map;
    actions.Add({"fit", tr("&Fit everything"), tr("Show all layers"), tr("Ctrl+0"), "fit"},
                [this] { m_bench.map.Fit(m_bench.document.Extent()); });
    actions.Add({"fit-layer", tr("Fit the &layer"), tr("Show all of the current layer"),
                 tr("Ctrl+Shift+0"), ""},
                [this] {
                    if (const Layer* layer = m_bench.document.Current(); layer && layer->isOpen)
                        m_bench.map.Fit(layer->facts.extent);
                });
    actions.Add({"one-to-one", tr("&1 : 1"),
                 tr("Show each pixel of the layer as one of the screen"), tr("Ctrl+1"), "one"},
                [this] { ShowOneToOne(); });
    actions.Add(
        {"zoom-in", tr("Zoom &in"), tr("Show less, larger"), QKeySequence::ZoomIn, "zoom-in"},
        [&map] { map.ZoomBy(ZOOM_STEP); });
    actions.Add(
        {"zoom-out", tr("Zoom &out"), tr("Show more, smaller"), QKeySequence::ZoomOut, "zoom-out"},
        [&map] { map.ZoomBy(1.0 / ZOOM_STEP); });
}

/// The arrow keys pan where the map has the focus; these do everywhere.
void ViewActions::AddPan() {
    const auto add = [this](const QString& id, const QString& text, const QString& key,
                            QPointF by) {
        m_bench.actions.Add({id, text, tr("Move the view by half of its size"), key, ""},
                            [this, by] { m_bench.map.PanBy(by); });
    };
    add("pan-left", tr("Pan left"), tr("Alt+Shift+Left"), {-0.5, 0.0});
    add("pan-right", tr("Pan right"), tr("Alt+Shift+Right"), {0.5, 0.0});
    add("pan-up", tr("Pan up"), tr("Alt+Shift+Up"), {0.0, -0.5});
    add("pan-down", tr("Pan down"), tr("Alt+Shift+Down"), {0.0, 0.5});
}

void ViewActions::AddThemes() {
    auto* group = new QActionGroup(this);
    const auto add = [&](const QString& name, const QString& text, const QString& tip,
                         const QString& key) {
        QAction* action =
            m_bench.actions.AddSwitch({"theme-" + name, text, tip, key, ""}, [=, this](bool on) {
                if (!on)
                    return;
                m_bench.preferences.SetThemeName(name);
                ApplyTheme(ThemeNamed(name));
            });
        group->addAction(action);
    };
    add("system", tr("Colours of the &system"), tr("Light or dark as the system is"),
        tr("Ctrl+Alt+S"));
    add("light", tr("&Light colours"), tr("Dark text on a light ground"), tr("Ctrl+Alt+L"));
    add("dark", tr("&Dark colours"), tr("Light text on a dark ground"), tr("Ctrl+Alt+D"));
    if (QAction* chosen = m_bench.actions.Find("theme-" + m_bench.preferences.ThemeName()))
        chosen->setChecked(true);
}

void ViewActions::Enable() {
    const bool hasPicture = m_bench.document.HasPicture();
    for (const char* id : {"fit", "fit-layer", "one-to-one", "zoom-in", "zoom-out", "pan-left",
                           "pan-right", "pan-up", "pan-down"})
        m_bench.actions.Find(id)->setEnabled(hasPicture);
}

void ViewActions::ShowOneToOne() {
    const Layer* layer = m_bench.document.Current();
    if (layer == nullptr || !layer->isOpen)
        return;
    const ViewTransform view = m_bench.map.View().WithScale(layer->facts.PixelSize());
    m_bench.map.SetView(
        view.AlignedTo({layer->facts.geoTransform[0], layer->facts.geoTransform[3]}));
}

} // namespace zelto::view
