#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/internal/HitPredicates.h"
#include "zelto/baselib/internal/NoThrow.h"

#include <algorithm>
#include <iterator>

namespace {

/// Selects the first visible shape that is hit and deselects the other visible ones.
template <typename IsHit>
CDrawShape* SelectFirst(const std::vector<CDrawShape*>& shapes, IsHit isHit) {
    CDrawShape* hit = nullptr;
    for (CDrawShape* shape : shapes) {
        if (!shape->m_visible)
            continue;
        // Once there is a hit the others are not tested any more.
        shape->m_selected = hit == nullptr && isHit(*shape);
        if (shape->m_selected)
            hit = shape;
    }
    return hit;
}

/// Deselects selected shapes that are hit, up to the first unselected one that is hit, which
/// becomes selected.
template <typename IsHit>
CDrawShape* ToggleSelection(const std::vector<CDrawShape*>& shapes, IsHit isHit) {
    CDrawShape* stillSelected = nullptr;
    for (CDrawShape* shape : shapes) {
        if (!shape->m_visible)
            continue;
        const bool hit = isHit(*shape);
        if (!shape->m_selected && hit) {
            shape->m_selected = true;
            return shape;
        }
        if (shape->m_selected && hit)
            shape->m_selected = false;
        else if (shape->m_selected)
            stillSelected = shape;
    }
    return stillSelected;
}

} // namespace

void CAOISource::GetAllSelectedDrawShapes(std::vector<CDrawShape*>* selected) {
    if (selected == nullptr)
        return;
    zelto::NoThrow(false, [&] {
        std::copy_if(m_drawShapes.begin(), m_drawShapes.end(), std::back_inserter(*selected),
                     [](const CDrawShape* shape) { return shape->m_selected; });
        return true;
    });
}

CDrawShape* CAOISource::GetSelectedDrawShape(CPoint2D p, double tolerance, int mode) {
    const auto isHit = [&](CDrawShape& shape) {
        return shape.TopoRelationWithPoint(p, tolerance, 1) == TOPO_CONTAIN;
    };
    return mode == 0 ? SelectFirst(m_drawShapes, isHit) : ToggleSelection(m_drawShapes, isHit);
}

CDrawShape* CAOISource::GetSelectedDrawShape(CBoundingBox* box, int mode) {
    CDrawShape* last = nullptr;
    for (CDrawShape* shape : m_drawShapes) {
        if (!shape->m_visible)
            continue;
        if (shape->TopoRelationWithBoundingbox(box) > TOPO_DISJOINT) {
            shape->m_selected = true;
            last = shape;
        } else if (mode == 0) {
            shape->m_selected = false;
        }
    }
    return last;
}

SpatialTopoRelation CAOISource::TopoRelationWithPoint(double x, double y) {
    if (!m_extent.IsContain(x, y))
        return TOPO_DISJOINT;
    for (CDrawShape* shape : m_drawShapes) {
        const SpatialTopoRelation relation = shape->TopoRelationWithPoint({x, y}, 0.0, 1);
        if (relation >= TOPO_INTERSECT)
            return relation;
    }
    return TOPO_DISJOINT;
}

SpatialTopoRelation CAOISource::GetTopoRelationWithBoundingbox(CBoundingBox* box) {
    if (box == nullptr || zelto::AreDisjoint(*box, m_extent))
        return TOPO_DISJOINT;
    SpatialTopoRelation strongest = TOPO_DISJOINT;
    for (CDrawShape* shape : m_drawShapes) {
        strongest = std::max(strongest, shape->TopoRelationWithBoundingbox(box));
        if (strongest == TOPO_CONTAIN)
            break;
    }
    return strongest;
}
