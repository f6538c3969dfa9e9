#include "zelto/aoi/internal/ShapeRows.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/internal/HitPredicates.h"
#include "zelto/aoi/internal/PolygonRows.h"

#include <algorithm>
#include <cmath>
#include <typeinfo>

namespace zelto {

namespace {

class RectangleRows : public ShapeRows {
  public:
    explicit RectangleRows(const CDrawRectangle& shape) : ShapeRows(shape.m_extent) {}

    void Mark(const PositionRow& /*row*/, std::span<unsigned char> inside,
              RowScratch& /*scratch*/) const override {
        std::fill(inside.begin(), inside.end(), 1);
    }
};

class EllipseRows : public ShapeRows {
  public:
    explicit EllipseRows(const CDrawEllipse& shape)
        : ShapeRows(shape.m_extent), m_axes(shape.m_topLeft, shape.m_width, shape.m_height) {
        const auto isUsable = [](double semiAxis) {
            return semiAxis * semiAxis > 0 && std::fabs(semiAxis) <= MONOTONE_LIMIT;
        };
        m_monotone = isUsable(m_axes.a) && isUsable(m_axes.b) &&
                     std::fabs(m_axes.centreX) <= MONOTONE_LIMIT &&
                     std::fabs(m_axes.centreY) <= MONOTONE_LIMIT;
    }

    void Mark(const PositionRow& row, std::span<unsigned char> inside,
              RowScratch& /*scratch*/) const override {
        const auto holds = [&](double x) { return m_axes.Holds(x, row.y); };
        if (!row.monotone || !m_monotone) {
            for (std::size_t i = 0; i < row.xs.size(); ++i)
                inside[i] |= static_cast<unsigned char>(holds(row.xs[i]));
            return;
        }
        // Rounding keeps the order of x − centre and of its square: what is inside is one span
        // that ends somewhere to either side of the centre.
        const auto begin = row.xs.begin();
        const auto middle = std::partition_point(begin, row.xs.end(),
                                                 [&](double x) { return x - m_axes.centreX < 0; });
        const auto first = std::partition_point(begin, middle, [&](double x) { return !holds(x); });
        const auto last = std::partition_point(middle, row.xs.end(), holds);
        std::fill(inside.begin() + (first - begin), inside.begin() + (last - begin), 1);
    }

  private:
    EllipseAxes m_axes;
    bool m_monotone = false;
};

} // namespace

std::unique_ptr<ShapeRows> ShapeRows::Create(const CDrawShape& shape) {
    // The dynamic type, not the kind: a class derived by the host may answer differently.
    const std::type_info& type = typeid(shape);
    if (type == typeid(CDrawPolygon))
        return std::make_unique<PolygonRows>(static_cast<const CDrawPolygon&>(shape));
    if (type == typeid(CDrawRectangle))
        return std::make_unique<RectangleRows>(static_cast<const CDrawRectangle&>(shape));
    if (type == typeid(CDrawEllipse))
        return std::make_unique<EllipseRows>(static_cast<const CDrawEllipse&>(shape));
    return nullptr;
}

} // namespace zelto
