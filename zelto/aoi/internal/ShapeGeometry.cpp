#include "zelto/aoi/internal/ShapeGeometry.h"

#include "zelto/aoi/DrawEllipse.h"

#include <ogr_geometry.h>

#include <cmath>
#include <memory>
#include <vector>

namespace zelto {

namespace {

constexpr double LEAST_STEPS = 50;
constexpr int MOST_STEPS = 1000000;

using Points = std::vector<OGRRawPoint>;

Points RectanglePoints(const CDrawRectangle& shape) {
    const auto [left, top] = shape.m_topLeft;
    const double right = left + shape.m_width;
    const double bottom = top - shape.m_height;
    return {{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}};
}

double EllipseStep(double a, double resolution) {
    if (resolution == 0 || !(a / resolution > LEAST_STEPS))
        return a / LEAST_STEPS;
    return a / resolution > MOST_STEPS ? a / MOST_STEPS : resolution;
}

/// Half an ellipse's outline: y as a function of the distance t from the centre along x.
class EllipseOutline {
  public:
    EllipseOutline(const CDrawEllipse& shape, double resolution)
        : m_a(shape.m_width / 2),
          m_b(shape.m_height / 2),
          m_centreX(shape.m_topLeft.x + m_a),
          m_centreY(shape.m_topLeft.y - m_b),
          m_step(EllipseStep(m_a, resolution)) {}

    Points Ring() {
        Quarter(0, +1, m_a, +1);
        Quarter(m_a, -1, 0, -1);
        Quarter(0, -1, -m_a, -1);
        Quarter(-m_a, +1, 0, +1);
        return std::move(m_points);
    }

  private:
    /// Points from `first` in the direction given up to `last`, which ends the quarter even
    /// when a step has just reached it.
    void Quarter(double first, int direction, double last, int side) {
        for (int k = 0; k <= MOST_STEPS; ++k) {
            const double t = first + direction * (k * m_step);
            if (direction > 0 ? t > last : t < last)
                break;
            Add(t, side);
        }
        Add(last, side);
    }

    void Add(double t, int side) {
        const double height = m_b / m_a * std::sqrt(m_a * m_a - t * t);
        m_points.emplace_back(m_centreX + t, m_centreY + side * height);
    }

    double m_a;
    double m_b;
    double m_centreX;
    double m_centreY;
    double m_step;
    Points m_points;
};

Points EllipsePoints(const CDrawEllipse& shape, double resolution) {
    if (!(shape.m_width > 0 && shape.m_height > 0 && std::isfinite(shape.m_width)))
        return {};
    return EllipseOutline(shape, resolution).Ring();
}

Points PolygonPoints(const CDrawShape& shape) {
    Points points;
    points.reserve(shape.m_vertices.size() + 1);
    for (const auto& [x, y] : shape.m_vertices)
        points.emplace_back(x, y);
    if (!points.empty())
        points.push_back(points.front());
    return points;
}

Points RingPoints(const CDrawShape& shape, double resolution) {
    switch (shape.m_shapeKind) {
    case SHAPE_RECTANGLE:
        return RectanglePoints(static_cast<const CDrawRectangle&>(shape));
    case SHAPE_ELLIPSE:
        return EllipsePoints(static_cast<const CDrawEllipse&>(shape), resolution);
    case SHAPE_POLYGON:
        return PolygonPoints(shape);
    default:
        return {};
    }
}

} // namespace

OGRPolygon* MakePolygon(const CDrawShape& shape, double resolution) {
    auto polygon = std::make_unique<OGRPolygon>();
    const Points points = RingPoints(shape, resolution);
    if (points.empty())
        return polygon.release();
    auto ring = std::make_unique<OGRLinearRing>();
    ring->setPoints(static_cast<int>(points.size()), points.data());
    polygon->addRingDirectly(ring.release());
    return polygon.release();
}

} // namespace zelto
