#pragma once

#include "viewer/model/LayerFacts.h"
#include "viewer/worker/Requests.h"

#include <QWidget>

class QLabel;

namespace zelto::view {

/// What the status bar tells: what is under the pointer, the scale, and the memory in use.
class StatusLine : public QWidget {
    Q_OBJECT

  public:
    explicit StatusLine(QWidget* parent = nullptr);

    /// @param facts of the layer that was read
    void ShowReading(const Reading& reading, const LayerFacts& facts);
    void ClearReading();
    /// @param ratio screen pixels to one of the image; 0: nothing is shown
    void ShowZoom(double ratio);

  private:
    void ShowMemory();

    QLabel* m_position;
    QLabel* m_place;
    QLabel* m_values;
    QLabel* m_zoom;
    QLabel* m_memory;
};

/// A number as people read it: no more digits than it needs, six significant ones at most where
/// it has a fraction.
QString ReadableNumber(double value);
/// "61°12′04.5″ N"
QString ReadableAngle(double degrees, bool isLatitude);

} // namespace zelto::view
