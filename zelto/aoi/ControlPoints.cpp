#include "zelto/aoi/ControlPoints.h"

#include "zelto/baselib/internal/NoThrow.h"

#include <algorithm>
#include <memory>

namespace {

/// Points at this distance or farther are not the closest one to anything.
constexpr double FARTHEST = 1e7;

} // namespace

CControlPoints::CControlPoints(const CControlPoints& other) {
    *this = other;
}

CControlPoints& CControlPoints::operator=(const CControlPoints& other) {
    if (this == &other)
        return *this;
    RemoveAllPoints();
    m_index.clear();
    const bool copied = zelto::NoThrow(false, [&] {
        m_points.reserve(other.m_points.size());
        for (const CDrawPoint* point : other.m_points) {
            m_points.push_back(new CDrawPoint(*point));
            m_index[point->m_identifier] = m_points.back();
        }
        return true;
    });
    if (!copied) {
        RemoveAllPoints();
        m_index.clear();
        return *this;
    }
    m_currentSelection = other.m_currentSelection;
    m_lastIdentifier = other.m_lastIdentifier;
    return *this;
}

CControlPoints::~CControlPoints() {
    RemoveAllPoints();
}

int CControlPoints::AddPoint(CDrawPoint* point) {
    if (point == nullptr || point->m_useMark != USE_MARK_CONTROL_POINT)
        return m_lastIdentifier;
    return zelto::NoThrow(static_cast<int>(m_lastIdentifier), [&] {
        // Both take it or none.
        m_points.reserve(m_points.size() + 1);
        m_index[m_lastIdentifier + 1] = point;
        point->m_identifier = ++m_lastIdentifier;
        m_points.push_back(point);
        return static_cast<int>(m_lastIdentifier);
    });
}

int CControlPoints::AddPoint(CPoint2D p, unsigned long color) {
    return zelto::NoThrow(static_cast<int>(m_lastIdentifier), [&] {
        auto point = std::make_unique<CDrawPoint>(GetCount() + 1);
        point->m_useMark = USE_MARK_CONTROL_POINT;
        point->AddVertex(p);
        point->SetColor(color, color);
        point->m_complete = true;
        const int identifier = AddPoint(point.get());
        if (!m_points.empty() && m_points.back() == point.get())
            static_cast<void>(point.release());
        return identifier;
    });
}

bool CControlPoints::RemovePoint(CDrawPoint* point) {
    const auto listed = std::find(m_points.begin(), m_points.end(), point);
    if (point != nullptr && listed != m_points.end()) {
        m_points.erase(listed);
        delete point;
        // The index keeps its entry, and hosts know this answer as "removed by pointer".
        return false;
    }
    const auto indexed = std::find_if(m_index.begin(), m_index.end(),
                                      [&](const auto& entry) { return entry.second == point; });
    if (indexed == m_index.end())
        return false;
    // What an entry without a listed point names was deleted when it left the list.
    m_index.erase(indexed);
    return true;
}

bool CControlPoints::RemovePoint(int identifier) {
    CDrawPoint* point = GetDrawPointByID(identifier);
    m_index.erase(identifier);
    if (point == nullptr)
        return false;
    m_points.erase(std::find(m_points.begin(), m_points.end(), point));
    delete point;
    return true;
}

void CControlPoints::RemoveAllSelectedPoints() {
    const auto kept = std::stable_partition(m_points.begin(), m_points.end(),
                                            [](CDrawPoint* point) { return !point->m_selected; });
    std::for_each(kept, m_points.end(), [](CDrawPoint* point) { delete point; });
    m_points.erase(kept, m_points.end());
}

void CControlPoints::RemoveAllPoints() {
    for (CDrawPoint* point : m_points)
        delete point;
    m_points.clear();
    m_lastIdentifier = 0;
}

CDrawPoint* CControlPoints::GetDrawPoint(int index) const {
    return index >= 0 && index < GetCount() ? m_points[static_cast<std::size_t>(index)] : nullptr;
}

CDrawPoint* CControlPoints::GetDrawPointByID(int identifier) const {
    const auto found = std::find_if(m_points.begin(), m_points.end(), [&](const CDrawPoint* point) {
        return point->m_identifier == identifier;
    });
    return found != m_points.end() ? *found : nullptr;
}

CPoint2D CControlPoints::GetPoint(int identifier) const {
    const CDrawPoint* point = GetDrawPointByID(identifier);
    return point != nullptr ? point->m_point : CPoint2D();
}

void CControlPoints::UpdatePoint(int identifier, CPoint2D p) {
    for (CDrawPoint* point : m_points) {
        if (point->m_identifier != identifier)
            continue;
        point->RemoveLastVertex();
        point->AddVertex(p);
    }
}

void CControlPoints::GetAllSelectedPoints(std::vector<CDrawShape*>* selected) const {
    if (selected == nullptr)
        return;
    std::copy_if(m_points.begin(), m_points.end(), std::back_inserter(*selected),
                 [](const CDrawPoint* point) { return point->m_selected; });
}

CDrawPoint* CControlPoints::GetDrawShapeClosestPoint(CPoint2D p) {
    m_currentSelection = -1;
    CDrawPoint* closest = nullptr;
    double least = FARTHEST;
    for (CDrawPoint* point : m_points) {
        if (!point->m_visible)
            continue;
        point->m_selected = false;
        const double distance = point->m_point.distance(p);
        if (distance < least) {
            least = distance;
            closest = point;
        }
    }
    if (closest != nullptr) {
        closest->m_selected = true;
        m_currentSelection = closest->m_identifier;
    }
    return closest;
}

CDrawPoint* CControlPoints::GetSelectedPoint(CPoint2D p, double tolerance, int /*mode*/) {
    m_currentSelection = -1;
    CDrawPoint* hit = nullptr;
    for (CDrawPoint* point : m_points) {
        if (!point->m_visible)
            continue;
        point->m_selected =
            hit == nullptr && point->TopoRelationWithPoint(p, tolerance, 1) == TOPO_CONTAIN;
        if (point->m_selected)
            hit = point;
    }
    if (hit != nullptr)
        m_currentSelection = hit->m_identifier;
    return hit;
}

CDrawPoint* CControlPoints::GetSelectedPoint(CBoundingBox* /*box*/, int /*mode*/) {
    return nullptr;
}

void CControlPoints::SetCurrentSelectedPoint(int identifier) {
    CDrawPoint* point = GetDrawPointByID(identifier);
    if (point == nullptr)
        return;
    point->m_selected = true;
    m_currentSelection = identifier;
}
