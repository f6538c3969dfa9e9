#include "zelto/aoi/internal/ShapeGeometry.h"

#include "zelto/aoi/DrawEllipse.h"

#include <ogr_geometry.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

namespace zelto {

namespace {

/// Steps of a quarter that a ring has at least, where its area has no more points than it may.
constexpr double STEPS_OF_COARSE_RINGS = 50;
constexpr int LEAST_STEPS = 8;
/// A quarter has a point for every step, one before the first and one more at its end.
constexpr int POINTS_BESIDE_STEPS = 2;
constexpr int QUARTERS = 4;
constexpr int MOST_STEPS_OF_A_RING = MOST_RING_POINTS / QUARTERS - POINTS_BESIDE_STEPS;

using Points = std::vector<OGRRawPoint>;

Points RectanglePoints(const CDrawRectangle& shape) {
    const auto [left, top] = shape.m_topLeft;
    const double right = left + shape.m_width;
    const double bottom = top - shape.m_height;
    return {{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}};
}

/// The shape with its corner and size; null where it is not of the class that its kind promises,
/// because a host has a class of its own or has changed the kind.
const CDrawRectangle* AsRectangle(const CDrawShape& shape) {
    return dynamic_cast<const CDrawRectangle*>(&shape);
}

bool HasOutline(const CDrawRectangle& ellipse) {
    return ellipse.m_width > 0 && ellipse.m_height > 0 && std::isfinite(ellipse.m_width);
}

/// The step that the resolution asks for.
double WantedStep(double a, double resolution) {
    const bool isFine = resolution != 0 && a / resolution > STEPS_OF_COARSE_RINGS;
    return isFine ? resolution : a / STEPS_OF_COARSE_RINGS;
}

double EllipseStep(double a, double resolution, int mostSteps) {
    const double step = WantedStep(a, resolution);
    return a / step >= mostSteps + 1.0 ? a / mostSteps : step;
}

/// Steps that a quarter of the ellipse has before the area's other ellipses are looked at.
int WantedSteps(const CDrawRectangle& ellipse, double resolution) {
    const double a = ellipse.m_width / 2;
    const double steps = std::floor(a / WantedStep(a, resolution));
    return static_cast<int>(std::min<double>(steps, MOST_STEPS_OF_A_RING));
}

/// The greatest limit to the steps of each quarter that leaves the rings within their budget.
int MostStepsWithinBudget(std::vector<int> wanted) {
    std::sort(wanted.begin(), wanted.end());
    auto left = static_cast<std::int64_t>(wanted.size());
    std::int64_t budget = MOST_ELLIPSE_POINTS / QUARTERS - left * POINTS_BESIDE_STEPS;
    for (const int steps : wanted) {
        const std::int64_t share = budget / left;
        if (steps > share)
            return static_cast<int>(std::max<std::int64_t>(share, LEAST_STEPS));
        budget -= steps;
        --left;
    }
    return MOST_STEPS_OF_A_RING;
}

/// Half an ellipse's outline: y as a function of the distance t from the centre along x.
class EllipseOutline {
  public:
    EllipseOutline(const CDrawRectangle& shape, double resolution, int mostSteps)
        : m_a(shape.m_width / 2),
          m_b(shape.m_height / 2),
          m_centreX(shape.m_topLeft.x + m_a),
          m_centreY(shape.m_topLeft.y - m_b),
          m_step(EllipseStep(m_a, resolution, mostSteps)),
          m_mostSteps(mostSteps) {}

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
        for (int k = 0; k <= m_mostSteps; ++k) {
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
    int m_mostSteps;
    Points m_points;
};

Points EllipsePoints(const CDrawRectangle& shape, double resolution, int mostSteps) {
    if (!HasOutline(shape))
        return {};
    return EllipseOutline(shape, resolution, mostSteps).Ring();
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

Points RingPoints(const CDrawShape& shape, double resolution, int mostSteps) {
    if (shape.m_shapeKind == SHAPE_POLYGON)
        return PolygonPoints(shape);
    const CDrawRectangle* const rectangle = AsRectangle(shape);
    if (rectangle == nullptr)
        return {};
    switch (shape.m_shapeKind) {
    case SHAPE_RECTANGLE:
        return RectanglePoints(*rectangle);
    case SHAPE_ELLIPSE:
        return EllipsePoints(*rectangle, resolution, mostSteps);
    default:
        return {};
    }
}

} // namespace

ShapePolygons::ShapePolygons(std::span<CDrawShape* const> shapes, double resolution)
    : m_resolution(resolution) {
    std::vector<int> wanted;
    for (const CDrawShape* shape : shapes) {
        const bool isEllipse = shape->m_shapeKind == SHAPE_ELLIPSE;
        const CDrawRectangle* const ellipse = isEllipse ? AsRectangle(*shape) : nullptr;
        if (ellipse != nullptr && HasOutline(*ellipse))
            wanted.push_back(WantedSteps(*ellipse, resolution));
    }
    m_mostSteps = MostStepsWithinBudget(std::move(wanted));
}

std::unique_ptr<OGRPolygon> ShapePolygons::Make(const CDrawShape& shape) const {
    auto polygon = std::make_unique<OGRPolygon>();
    const Points points = RingPoints(shape, m_resolution, m_mostSteps);
    if (points.empty())
        return polygon;
    auto ring = std::make_unique<OGRLinearRing>();
    ring->setPoints(static_cast<int>(points.size()), points.data());
    // A ring that has no memory for its points has none of them, and answers nothing.
    if (ring->getNumPoints() != static_cast<int>(points.size()) ||
        polygon->addRingDirectly(ring.get()) != OGRERR_NONE)
        throw std::bad_alloc();
    static_cast<void>(ring.release());
    return polygon;
}

} // namespace zelto
