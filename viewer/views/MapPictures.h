#pragma once

#include "viewer/worker/Requests.h"

#include <QObject>

namespace zelto::view {

class Document;
class Engine;
class MapView;

/// Keeps the map's picture up to date: asks for one whenever the view or the layers' look change,
/// and hands the map what comes back, unless it has something newer.
///
/// Panning done right is all here and in MapView. A drag changes the view and nothing else, so
/// the next frame shows the last picture at its new place. The request goes out at the same
/// moment, and the worker's mailbox holds only the latest: while one picture is drawn any number
/// of views pass by undrawn. A picture carries the view that it was drawn for, so that one which
/// comes late is still shown where it belongs. What no picture covers is filled from the small
/// picture of everything that the overview shows too.
class MapPictures : public QObject {
    Q_OBJECT

  public:
    MapPictures(Document& document, Engine& engine, MapView& map, QObject* parent);

    /// Pixels outside the shapes are left out; empty: none is.
    void SetMask(const Shapes& mask);
    /// Whether the map shows the present view of the present layers.
    bool IsUpToDate() const { return m_shown == m_wanted; }

  signals:
    /// The picture shown is of the present view.
    void CaughtUp();
    void OverviewChanged(const zelto::view::Picture& overview);

  private:
    DrawRequest RequestFor(const ViewTransform& view);
    void DrawView();
    void DrawOverview();
    void ShowBackdrop();
    void Take(const Picture& picture);
    void TakeOverview(const Picture& picture);

    Document& m_document;
    Engine& m_engine;
    MapView& m_map;
    Shapes m_mask;
    Picture m_overview; ///< of everything, unmasked
    quint64 m_wanted = 0;
    quint64 m_shown = 0;
};

} // namespace zelto::view
