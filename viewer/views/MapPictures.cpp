#include "viewer/views/MapPictures.h"

#include "viewer/model/Document.h"
#include "viewer/views/MapView.h"
#include "viewer/worker/Engine.h"

namespace zelto::view {

namespace {

constexpr int OVERVIEW_SIDE = 512;

/// The view that just holds a box, without a border.
ViewTransform OverviewOf(const CBoundingBox& box) {
    const ViewTransform square = ViewTransform::Fitting(box, {OVERVIEW_SIDE, OVERVIEW_SIDE});
    const QSize size(qCeil(box.GetWidth() / square.Scale()),
                     qCeil(box.GetHeight() / square.Scale()));
    return square.Resized(size.expandedTo({1, 1}).boundedTo({OVERVIEW_SIDE, OVERVIEW_SIDE}));
}

} // namespace

MapPictures::MapPictures(Document& document, Engine& engine, MapView& map, QObject* parent)
    : QObject(parent), m_document(document), m_engine(engine), m_map(map) {
    connect(&map, &MapView::ViewChanged, this, &MapPictures::DrawView);
    connect(&document, &Document::LookChanged, this, [this] {
        DrawView();
        DrawOverview();
    });
    connect(&engine, &Engine::Drawn, this, &MapPictures::Take);
    connect(&engine, &Engine::OverviewDrawn, this, &MapPictures::TakeOverview);
}

void MapPictures::SetMask(const Shapes& mask) {
    m_mask = mask;
    ShowBackdrop();
    DrawView();
}

/// What lies outside the areas is not to show where the picture does not reach.
void MapPictures::ShowBackdrop() {
    m_map.SetBackdrop(m_mask.empty() ? m_overview : Picture());
}

DrawRequest MapPictures::RequestFor(const ViewTransform& view) {
    DrawRequest request;
    request.view = view;
    const auto& layers = m_document.Layers();
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
        if (layer->isOpen && layer->isVisible)
            request.layers.push_back({layer->id, layer->settings});
    return request;
}

void MapPictures::DrawView() {
    if (!m_map.View().IsValid() || !m_document.HasPicture())
        return;
    DrawRequest request = RequestFor(m_map.View());
    request.mask = m_mask;
    request.isKept = true;
    request.revision = ++m_wanted;
    m_engine.Draw(request);
}

void MapPictures::DrawOverview() {
    if (!m_document.HasPicture()) {
        m_overview = {};
        m_map.Clear();
        emit OverviewChanged({});
        return;
    }
    m_engine.DrawOverview(RequestFor(OverviewOf(m_document.Extent())));
}

void MapPictures::Take(const Picture& picture) {
    m_shown = picture.revision;
    if (m_document.HasPicture())
        m_map.SetPicture(picture);
    if (IsUpToDate())
        emit CaughtUp();
}

void MapPictures::TakeOverview(const Picture& picture) {
    if (!m_document.HasPicture())
        return;
    m_overview = picture;
    ShowBackdrop();
    emit OverviewChanged(picture);
}

} // namespace zelto::view
