#include "viewer/worker/Engine.h"

#include "zelto/datasource/GISDataSource.h"

#include "viewer/worker/LayerSource.h"

#include <QElapsedTimer>
#include <QPainter>
#include <exception>

namespace zelto::view {

Engine::Engine(QObject* parent) : QObject(parent) {
    qRegisterMetaType<LayerFacts>();
    qRegisterMetaType<Picture>();
    qRegisterMetaType<Reading>();
    qRegisterMetaType<std::vector<BandHistogram>>();
    qRegisterMetaType<ShownRanges>();
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
        } catch (const std::exception& error) {
            // Pictures and lists of the program's own may lack memory; the engine throws nothing.
            emit DrawFailed(-1, QString::fromUtf8(error.what()));
        }
    }
    m_layers.clear();
}

LayerSource* Engine::Find(int layer) const {
    const auto found = m_layers.find(layer);
    return found != m_layers.end() ? found->second.get() : nullptr;
}

void Engine::Open(int layer, const LayerOrigin& origin, int referenceLayer) {
    m_mailbox.Post([=, this] {
        m_layers.erase(layer);
        LayerSource* const first = Find(referenceLayer);
        QString reason;
        auto opened = LayerSource::Open(origin, first ? first->Reference() : "", reason);
        if (!opened) {
            emit OpenFailed(layer, reason);
            return;
        }
        const LayerFacts facts = opened->Describe();
        m_layers[layer] = std::move(opened);
        emit Opened(layer, facts);
    });
}

void Engine::Close(int layer) {
    m_mailbox.Post([=, this] {
        m_layers.erase(layer);
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
    QImage drawn(request.view.Size(), QImage::Format_ARGB32);
    QPainter painter(&picture.image);
    for (const LayerDrawing& each : request.layers) {
        LayerSource* source = Find(each.layer);
        QString reason;
        if (isOutOfDate())
            return {};
        if (source == nullptr)
            continue;
        if (!source->Draw(request.view, each.settings, request.mask, drawn, reason))
            emit DrawFailed(each.layer, reason);
        painter.drawImage(0, 0, drawn);
        if (m_told[each.layer] != source->Ranges()) {
            m_told[each.layer] = source->Ranges();
            emit Stretched(each.layer, source->Ranges());
        }
    }
    painter.end();
    picture.milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    return picture;
}

void Engine::Read(int layer, QPointF ground) {
    m_mailbox.PostLatest(Mailbox::Latest::Reading, [=, this] {
        LayerSource* source = Find(layer);
        if (source == nullptr)
            return;
        Reading reading = source->Read(ground);
        reading.layer = layer;
        emit Found(reading);
    });
}

void Engine::CountValues(int layer, const std::vector<int>& bands) {
    m_mailbox.PostLatest(Mailbox::Latest::Histograms, [=, this] {
        LayerSource* source = Find(layer);
        if (source == nullptr)
            return;
        std::vector<BandHistogram> histograms;
        for (const int band : bands)
            histograms.push_back(source->CountValues(band));
        emit Counted(layer, histograms);
    });
}

void Engine::Rest() {
    m_mailbox.PostLatest(Mailbox::Latest::Rest, [this] { emit Rested(); });
}

} // namespace zelto::view
