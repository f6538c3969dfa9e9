#include "zelto/algorithm/internal/NamedPolygons.h"

#include "zelto/baselib/CommonFun.h"

#include <cpl_conv.h>

namespace zelto {

namespace {

OGRGeometryUniquePtr MakePolygon(const std::vector<double>& coordinates) {
    OGRGeometryUniquePtr geometry(OGRGeometryFactory::createGeometry(wkbPolygon));
    OGRLinearRing ring;
    for (std::size_t i = 0; i + 1 < coordinates.size(); i += 2)
        ring.addPoint(coordinates[i], coordinates[i + 1]);
    ring.closeRings();
    geometry->toPolygon()->addRing(&ring);
    return geometry;
}

} // namespace

std::vector<NamedPolygon> ReadNamedPolygons(std::istream& stream) {
    std::vector<NamedPolygon> polygons;
    std::string name;
    while (stream >> name) {
        std::vector<double> coordinates;
        std::string token;
        bool ended = false;
        while (!ended && stream >> token) {
            ended = token == "end";
            if (!ended)
                coordinates.push_back(CPLAtof(token.c_str()));
        }
        if (ended)
            polygons.push_back({CommonFun::M2U(name), MakePolygon(coordinates)});
    }
    return polygons;
}

} // namespace zelto
