#include "viewer/worker/Engine.h"

#include "zelto/datasource/GISDataSource.h"

#include <QElapsedTimer>
#include <QPainter>
#include <exception>

namespace zelto::view {

Engine::Engine(QObject* parent) : QObject(parent) {
    qRegisterMetaType<LayerFacts>();
    qRegisterMetaType<DisplaySettings>();
    qRegisterMetaType<Picture>();
    qRegisterMetaType<Reading>();
    qRegisterMetaType<std::vector<BandHistogram>>();
    qRegisterMetaType<ShownRanges>();
    qRegisterMetaType<LayersMemory>();
    // The first user configures GDAL and the last one tears it down, both on this thread.
    CGISDataSource::RegisterGDAL();
    m_thread = std::thread([this] { Run(); });
}

Engine::~Engine() {
    m_mailbox.Stop();
    m_thread.join();
    CGISDataSource::DestroyGDAL();
}

void Engine::Run() {
    while (auto job = m_mailbox.Take()) {
        try {
            (*job)();
            TellMemory();
        } catch (const std::exception& error) {
            // Pictures and lists of the program's own may lack memory; the engine throws nothing.
            emit DrawFailed(-1, QString::fromUtf8(error.what()));
        }
    }
    m_layers = LayerStore();
}

void Engine::Open(int layer, const LayerOrigin& origin, int referenceLayer,
                  const QVariantMap& display) {
    m_mailbox.Post([=, this] {
        QString reason;
        if (!m_layers.Open(layer, origin, referenceLayer, reason)) {
            emit OpenFailed(layer, reason);
            return;
        }
        const LayerFacts& facts = m_layers.Facts(layer);
        const DisplaySettings settings =
            DisplaySettings::FromMap(display, facts.initial, static_cast<int>(facts.bands.size()));
        emit Opened(layer, facts, settings);
        // While the interface makes room for the picture.
        if (LayerSource* source = m_layers.Find(layer, reason))
            source->Prepare(settings);
    });
}

void Engine::Close(int layer) {
    m_mailbox.Post([=, this] {
        m_layers.Close(layer);
        m_told.erase(layer);
    });
}

void Engine::Draw(const DrawRequest& request) {
    m_mailbox.PostLatest(Mailbox::Latest::Picture, [=, this] {
        const Picture picture =
            DrawNow(request, [this] { return m_mailbox.IsWaiting(Mailbox::Latest::Picture); });
        if (!picture.image.isNull())
            emit Drawn(picture);
    });
}

void Engine::DrawOverview(const DrawRequest& request) {
    m_mailbox.PostLatest(Mailbox::Latest::Overview,
                         [=, this] { emit OverviewDrawn(DrawNow(request, [] { return false; })); });
}

/// Layers are laid over each other from the lowest up.
/// @param isOutOfDate asked before each layer; the answer is then a picture without an image
Picture Engine::DrawNow(const DrawRequest& request, const std::function<bool()>& isOutOfDate) {
    QElapsedTimer timer;
    timer.start();
    Picture picture;
    picture.view = request.view;
    picture.revision = request.revision;
    picture.image = QImage(request.view.Size(), QImage::Format_ARGB32_Premultiplied);
    picture.image.fill(Qt::transparent);
    QPainter painter(&picture.image);
    for (const LayerDrawing& each : request.layers) {
        if (isOutOfDate())
            return {};
        if (!m_layers.Has(each.layer))
            continue;
        QString reason;
        painter.drawImage(0, 0, m_layers.Draw(each, request, reason));
        if (!reason.isEmpty())
            emit DrawFailed(each.layer, reason);
        if (m_told[each.layer] != m_layers.Ranges(each.layer)) {
            m_told[each.layer] = m_layers.Ranges(each.layer);
            emit Stretched(each.layer, m_told[each.layer]);
        }
    }
    painter.end();
    picture.milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    return picture;
}

void Engine::Read(int layer, QPointF ground) {
    m_mailbox.PostLatest(Mailbox::Latest::Reading, [=, this] {
        QString reason;
        LayerSource* source = m_layers.Has(layer) ? m_layers.Find(layer, reason) : nullptr;
        if (source == nullptr)
            return; // the next picture tells why
        Reading reading = source->Read(ground);
        reading.layer = layer;
        emit Found(reading);
    });
}

void Engine::CountValues(int layer, const std::vector<int>& bands) {
    m_mailbox.PostLatest(Mailbox::Latest::Histograms, [=, this] { CountNow(layer, bands, {}); });
}

/// Goes on after the picture when one is wanted meanwhile.
void Engine::CountNow(int layer, std::vector<int> bands, std::vector<BandHistogram> counted) {
    while (!bands.empty() && m_layers.Has(layer)) {
        QString reason;
        counted.push_back(m_layers.CountValues(layer, bands.front(), reason));
        bands.erase(bands.begin());
        if (!reason.isEmpty())
            return;
        if (!bands.empty() && m_mailbox.IsWaiting(Mailbox::Latest::Picture)) {
            m_mailbox.PostUnlessWaiting(Mailbox::Latest::Histograms,
                                        [=, this] { CountNow(layer, bands, counted); });
            return;
        }
    }
    if (m_layers.Has(layer))
        emit Counted(layer, counted);
}

void Engine::SetMemoryBound(qint64 bytes) {
    m_mailbox.Post([=, this] { m_layers.SetBound(bytes); });
}

void Engine::TellMemory() {
    constexpr qint64 SEEN = qint64{1} << 20;
    const LayersMemory memory = m_layers.Memory();
    if (memory.bytes / SEEN == m_toldMemory.bytes / SEEN && memory.bound == m_toldMemory.bound &&
        memory.closedFiles == m_toldMemory.closedFiles)
        return;
    m_toldMemory = memory;
    emit MemoryChanged(memory);
}

void Engine::Rest() {
    m_mailbox.PostLatest(Mailbox::Latest::Rest, [this] { emit Rested(); });
}

} // namespace zelto::view
