#include "viewer/model/Document.h"

#include <algorithm>

namespace zelto::view {

Layer* Document::FindForChange(int id) {
    const auto found =
        std::find_if(m_layers.begin(), m_layers.end(), [id](const Layer& l) { return l.id == id; });
    return found != m_layers.end() ? &*found : nullptr;
}

const Layer* Document::Find(int id) const {
    return const_cast<Document*>(this)->FindForChange(id);
}

void Document::SetCurrent(int id) {
    if (id == m_current)
        return;
    m_current = id;
    emit CurrentChanged();
}

CBoundingBox Document::Extent() const {
    CBoundingBox extent;
    bool first = true;
    for (const Layer& layer : m_layers) {
        if (!layer.isOpen || !layer.isVisible)
            continue;
        CBoundingBox own = layer.facts.extent;
        if (first)
            extent = own;
        else
            extent.Combine(&own);
        first = false;
    }
    return extent;
}

bool Document::HasPicture() const {
    return std::any_of(m_layers.begin(), m_layers.end(),
                       [](const Layer& layer) { return layer.isOpen && layer.isVisible; });
}

int Document::Add(const LayerOrigin& origin) {
    Layer layer;
    layer.id = m_nextId++;
    layer.origin = origin;
    if (m_layers.empty())
        m_reference = layer.id;
    m_layers.insert(m_layers.begin(), layer);
    emit LayersChanged();
    SetCurrent(layer.id);
    return layer.id;
}

void Document::TakeFacts(int id, const LayerFacts& facts, const DisplaySettings& settings) {
    Layer* layer = FindForChange(id);
    if (layer == nullptr)
        return;
    layer->isOpen = true;
    layer->facts = facts;
    layer->settings = settings;
    // The picture is asked for before anything that panels show.
    emit LookChanged();
    emit LayersChanged();
    if (id == m_current)
        emit CurrentChanged();
}

void Document::Remove(int id) {
    const auto found =
        std::find_if(m_layers.begin(), m_layers.end(), [id](const Layer& l) { return l.id == id; });
    if (found == m_layers.end())
        return;
    const auto position = found - m_layers.begin();
    m_layers.erase(found);
    if (id == m_reference)
        m_reference = m_layers.empty() ? -1 : m_layers.back().id;
    emit LayersChanged();
    if (id == m_current) {
        const auto next = std::min<std::ptrdiff_t>(position, std::ssize(m_layers) - 1);
        SetCurrent(next < 0 ? -1 : m_layers[static_cast<std::size_t>(next)].id);
    }
    emit LookChanged();
}

void Document::Move(int id, int position) {
    const auto found =
        std::find_if(m_layers.begin(), m_layers.end(), [id](const Layer& l) { return l.id == id; });
    const int last = static_cast<int>(m_layers.size()) - 1;
    if (found == m_layers.end())
        return;
    const auto from = found - m_layers.begin();
    const auto to = static_cast<std::ptrdiff_t>(std::clamp(position, 0, last));
    if (from < to)
        std::rotate(found, found + 1, m_layers.begin() + to + 1);
    else
        std::rotate(m_layers.begin() + to, found, found + 1);
    emit LayersChanged();
    emit LookChanged();
}

void Document::SetVisible(int id, bool visible) {
    Layer* layer = FindForChange(id);
    if (layer == nullptr || layer->isVisible == visible)
        return;
    layer->isVisible = visible;
    emit LayersChanged();
    emit LookChanged();
}

void Document::SetSettings(int id, const DisplaySettings& settings) {
    Layer* layer = FindForChange(id);
    if (layer == nullptr || layer->settings == settings)
        return;
    layer->settings = settings;
    emit SettingsChanged(id);
    emit LookChanged();
}

} // namespace zelto::view
