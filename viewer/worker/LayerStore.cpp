#include "viewer/worker/LayerStore.h"

#include "viewer/worker/Texts.h"

#include <gdal.h>

#include <QCoreApplication>
#include <algorithm>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(LayerStore)
};

/// Whether what was opened again is the image that everybody still has the facts of.
bool IsSameImage(const LayerFacts& before, const LayerFacts& now) {
    return before.width == now.width && before.height == now.height &&
           before.bands.size() == now.bands.size() && before.geoTransform == now.geoTransform &&
           before.wkt == now.wkt;
}

} // namespace

qint64 LayerStore::Kept::Bytes() const {
    qint64 bytes = source ? source->Bytes() : 0;
    if (drawing)
        bytes += drawing->image.sizeInBytes();
    for (const auto& [band, histogram] : counts)
        bytes += std::ssize(histogram.counts) * qint64{sizeof(int)};
    return bytes;
}

bool LayerStore::Open(int layer, const LayerOrigin& origin, int referenceLayer, QString& reason) {
    m_layers.erase(layer);
    Kept kept;
    kept.origin = origin;
    if (const auto first = m_layers.find(referenceLayer); first != m_layers.end())
        kept.reference = first->second.facts.wkt;
    kept.source = LayerSource::Open(origin, kept.reference, reason);
    if (!kept.source)
        return false;
    kept.facts = kept.source->Describe();
    m_layers[layer] = std::move(kept);
    See(layer);
    Trim();
    return true;
}

LayerStore::Kept& LayerStore::See(int layer) {
    Kept& kept = m_layers.at(layer);
    kept.seen = ++m_clock;
    return kept;
}

LayerSource* LayerStore::Find(int layer, QString& reason) {
    Kept& kept = See(layer);
    if (kept.source)
        return kept.source.get();
    kept.source = LayerSource::Open(kept.origin, kept.reference, reason);
    if (kept.source && !IsSameImage(kept.facts, kept.source->Describe())) {
        kept.source.reset();
        reason = kept.origin.Path() + ": " + Texts::tr("another image now; open it again");
    }
    Trim();
    return kept.source.get();
}

QImage LayerStore::Draw(const LayerDrawing& layer, const DrawRequest& request, QString& reason) {
    Kept& kept = See(layer.layer);
    if (kept.drawing && kept.drawing->view == request.view &&
        kept.drawing->settings == layer.settings && kept.drawing->mask == request.mask)
        return kept.drawing->image;
    LayerSource* source = Find(layer.layer, reason);
    if (source == nullptr)
        return {};
    QImage image(request.view.Size(), QImage::Format_ARGB32);
    if (image.isNull()) {
        reason = Texts::tr("not enough memory for the picture");
        return {};
    }
    const bool isDrawn = source->Draw(request.view, layer.settings, request.mask, image, reason);
    kept.ranges = source->Ranges();
    if (request.isKept)
        kept.drawing.reset();
    // One alone changes with every picture.
    if (isDrawn && request.isKept && request.layers.size() > 1)
        kept.drawing = Drawing{request.view, layer.settings, request.mask, image};
    Trim();
    return image;
}

BandHistogram LayerStore::CountValues(int layer, int band, QString& reason) {
    Kept& kept = See(layer);
    if (const auto found = kept.counts.find(band); found != kept.counts.end())
        return found->second;
    LayerSource* source = Find(layer, reason);
    if (source == nullptr)
        return {band, {}, {}, false};
    const BandHistogram histogram = source->CountValues(band);
    kept.counts[band] = histogram;
    Trim();
    return histogram;
}

LayersMemory LayerStore::Memory() const {
    LayersMemory memory;
    memory.bytes = Bytes() + GDALGetCacheUsed64();
    memory.bound = m_bound + GDALGetCacheMax64();
    for (const auto& [layer, kept] : m_layers)
        if (!kept.source)
            ++memory.closedFiles;
    return memory;
}

void LayerStore::SetBound(qint64 bytes) {
    m_bound = bytes;
    Trim();
}

qint64 LayerStore::Bytes() const {
    qint64 bytes = 0;
    for (const auto& [layer, kept] : m_layers)
        bytes += kept.Bytes();
    return bytes;
}

/// @param hasIt whether a layer has what is to be let go
template <typename HasIt, typename LetGo>
void LayerStore::TrimBy(const HasIt& hasIt, const LetGo& letGo) {
    std::vector<Kept*> byAge;
    for (auto& [layer, kept] : m_layers)
        if (hasIt(kept))
            byAge.push_back(&kept);
    std::sort(byAge.begin(), byAge.end(),
              [](const Kept* a, const Kept* b) { return a->seen < b->seen; });
    qint64 bytes = Bytes();
    for (Kept* kept : byAge) {
        if (bytes <= m_bound)
            return;
        bytes -= kept->Bytes();
        letGo(*kept);
        bytes += kept->Bytes();
    }
}

void LayerStore::Trim() {
    TrimBy([](const Kept& kept) { return kept.drawing.has_value(); },
           [](Kept& kept) { kept.drawing.reset(); });
    TrimBy([this](const Kept& kept) { return kept.seen != m_clock; },
           [](Kept& kept) {
               kept.counts.clear();
               kept.source.reset();
           });
}

} // namespace zelto::view
