#include "viewer/model/LayerFacts.h"

#include <QFileInfo>
#include <cmath>

namespace zelto::view {

QString LayerOrigin::Name() const {
    QString name = QFileInfo(Path()).fileName();
    if (name.isEmpty() || Path().contains("\":") || Path().contains(':'))
        name = Path().section('/', -1); // a data set within a file
    return IsComposed() ? name + " + 2" : name;
}

double LayerFacts::PixelSize() const {
    const double size = std::hypot(geoTransform[1], geoTransform[4]);
    return size > 0.0 && std::isfinite(size) ? size : 1.0;
}

QPointF LayerFacts::ToImage(QPointF ground) const {
    return {inverse[0] + inverse[1] * ground.x() + inverse[2] * ground.y(),
            inverse[3] + inverse[4] * ground.x() + inverse[5] * ground.y()};
}

} // namespace zelto::view
