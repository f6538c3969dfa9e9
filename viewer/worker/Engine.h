#pragma once

#include "viewer/model/LayerFacts.h"
#include "viewer/worker/Mailbox.h"
#include "viewer/worker/Requests.h"

#include <QObject>
#include <functional>
#include <map>
#include <memory>
#include <thread>

namespace zelto::view {

class LayerSource;

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
    void Open(int layer, const LayerOrigin& origin, int referenceLayer);
    void Close(int layer);
    /// The latest request is drawn; those before it that still wait never are.
    void Draw(const DrawRequest& request);
    /// The same for the small picture of everything.
    void DrawOverview(const DrawRequest& request);
    void Read(int layer, QPointF ground);
    void CountValues(int layer, const std::vector<int>& bands);
    /// Rested() is emitted when nothing else waits.
    void Rest();

  signals:
    void Opened(int layer, const zelto::view::LayerFacts& facts);
    void OpenFailed(int layer, const QString& reason);
    void Drawn(const zelto::view::Picture& picture);
    void OverviewDrawn(const zelto::view::Picture& picture);
    void DrawFailed(int layer, const QString& reason);
    /// What a drawing has stretched between, when that differs from the one before.
    void Stretched(int layer, const zelto::view::ShownRanges& ranges);
    void Found(const zelto::view::Reading& reading);
    void Counted(int layer, const std::vector<zelto::view::BandHistogram>& histograms);
    void Rested();

  private:
    void Run();
    LayerSource* Find(int layer) const;
    Picture DrawNow(const DrawRequest& request, const std::function<bool()>& isOutOfDate);

    Mailbox m_mailbox;
    std::map<int, std::unique_ptr<LayerSource>> m_layers; ///< the worker thread's alone
    std::map<int, ShownRanges> m_told;                    ///< the same
    std::thread m_thread;
};

} // namespace zelto::view
