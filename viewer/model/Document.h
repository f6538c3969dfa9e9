#pragma once

#include "viewer/model/LayerFacts.h"

#include <QObject>
#include <vector>

namespace zelto::view {

struct Layer {
    int id = 0;
    LayerOrigin origin;
    bool isOpen = false; ///< false while it is being opened; the facts are then empty
    bool isVisible = true;
    LayerFacts facts;
    DisplaySettings settings;
};

/// The layers of the window and how each is shown. Knows nothing of files and pictures: who opens
/// and draws listens to the signals.
class Document : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    /// From the topmost to the lowest.
    const std::vector<Layer>& Layers() const { return m_layers; }
    const Layer* Find(int id) const;
    /// The layer that panels show and tools work with; null without layers.
    const Layer* Current() const { return Find(m_current); }
    void SetCurrent(int id);
    /// The layer opened first, whose reference system all are shown in; −1 without one.
    int ReferenceLayer() const { return m_reference; }
    /// Around all visible, open layers; without any an all-zero box.
    CBoundingBox Extent() const;
    bool HasPicture() const;

    /// A layer on top that is still to be opened. Answers its number, never used again.
    int Add(const LayerOrigin& origin);
    void TakeFacts(int id, const LayerFacts& facts, const DisplaySettings& settings);
    void Remove(int id);
    /// @param position 0: on top
    void Move(int id, int position);
    void SetVisible(int id, bool visible);
    void SetSettings(int id, const DisplaySettings& settings);

  signals:
    /// Layers came, went, moved or were opened.
    void LayersChanged();
    void CurrentChanged();
    /// What a picture of the layers looks like has changed.
    void LookChanged();
    void SettingsChanged(int id);

  private:
    Layer* FindForChange(int id);

    std::vector<Layer> m_layers;
    int m_current = -1;
    int m_reference = -1;
    int m_nextId = 1;
};

} // namespace zelto::view
