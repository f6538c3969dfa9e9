#pragma once

#include "viewer/worker/Requests.h"

#include <QString>
#include <string>

class CAOISource;

namespace zelto::view {

/// Adds copies of shapes that cover ground to an area of the engine's.
/// @return false where one could not be added; the others are
bool AddShapes(CAOISource& area, const Shapes& shapes);

struct AreaFileContent {
    Shapes shapes;
    QString reason; ///< why nothing was read; empty: it was
    QString remark; ///< what was done without
};

/// The shapes of a file of areas or any vector file.
/// @param reference system to give them in; empty: as they are
AreaFileContent ReadAreas(const QString& path, const std::string& reference);

/// Writes shapes that cover ground, as a shapefile where the path says so.
/// @param resolution ground length of the steps by which an ellipse becomes a ring
/// @return why it failed; empty: it did not
QString WriteAreas(const QString& path, const Shapes& shapes, const std::string& reference,
                   double resolution);

} // namespace zelto::view
