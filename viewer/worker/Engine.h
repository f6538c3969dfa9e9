#pragma once

#include "viewer/model/LayerFacts.h"
#include "viewer/worker/LayerStore.h"
#include "viewer/worker/Mailbox.h"
#include "viewer/worker/Requests.h"

#include <QObject>
#include <functional>
#include <map>
#include <memory>
#include <thread>

namespace zelto::view {

/// The interface's side of the thread that owns every open image. All calls return at once; what
/// was asked for arrives as a signal on the interface's thread.
class Engine : public QObject {
    Q_OBJECT

  public:
    explicit Engine(QObject* parent = nullptr);
    /// Waits for the call of the engine that is in work; whatever waits is forgotten.
    ~Engine() override;

    /// Opens an image as a layer of the given number, in place of one that is open under it.
    /// @param referenceLayer the layer whose reference system it is shown in; one that is not
    ///        open leaves it its own
    /// @param display as DisplaySettings::ToMap() makes it: how it is to be shown; what is not in
    ///        it is as the engine has it
    void Open(int layer, const LayerOrigin& origin, int referenceLayer, const QVariantMap& display);
    void Close(int layer);
    /// The latest request is drawn; those before it that still wait never are.
    void Draw(const DrawRequest& request);
    /// The same for the small picture of everything.
    void DrawOverview(const DrawRequest& request);
    void Read(int layer, QPointF ground);
    void CountValues(int layer, const std::vector<int>& bands);
    /// Rested() is emitted when nothing else waits.
    void Rest();
    /// Bytes that may be kept for all layers, beside the blocks that GDAL keeps.
    void SetMemoryBound(qint64 bytes);

  signals:
    void Opened(int layer, const zelto::view::LayerFacts& facts,
                const zelto::view::DisplaySettings& settings);
    void OpenFailed(int layer, const QString& reason);
    void Drawn(const zelto::view::Picture& picture);
    void OverviewDrawn(const zelto::view::Picture& picture);
    void DrawFailed(int layer, const QString& reason);
    /// What a drawing has stretched between, when that differs from the one before.
    void Stretched(int layer, const zelto::view::ShownRanges& ranges);
    void Found(const zelto::view::Reading& reading);
    void Counted(int layer, const std::vector<zelto::view::BandHistogram>& histograms);
    /// What is kept for the layers has changed by so much that a person would see it.
    void MemoryChanged(const zelto::view::LayersMemory& memory);
    void Rested();

  private:
    void Run();
    Picture DrawNow(const DrawRequest& request, const std::function<bool()>& isOutOfDate);
    void CountNow(int layer, std::vector<int> bands, std::vector<BandHistogram> counted);
    void TellMemory();

    Mailbox m_mailbox;
    LayerStore m_layers;               ///< the worker thread's alone
    std::map<int, ShownRanges> m_told; ///< the same
    LayersMemory m_toldMemory;         ///< the same
    std::thread m_thread;
};

} // namespace zelto::view
