#pragma once

#include "zelto/Export.h"
#include "zelto/aoi/DrawPoint.h"

#include <cstdint>
#include <map>
#include <vector>

/// A numbered list of points that the user places on an image. The list owns its points; every
/// point gets the next identifier, which is not used again until RemoveAllPoints().
class ZELTO_API CControlPoints {
  public:
    CControlPoints() = default;
    /// Copies the points; the index of the copy names the copies. Empty without memory.
    CControlPoints(const CControlPoints& other);
    CControlPoints& operator=(const CControlPoints& other);
    ~CControlPoints();

    /// Appends a point and takes ownership.
    /// @return its identifier; for a point whose m_useMark is not USE_MARK_CONTROL_POINT, and
    ///         for null, the last identifier given out, and nothing is taken
    int AddPoint(CDrawPoint* point);
    /// Appends a new complete point.
    /// @param color 0x00BBGGRR, for both of its colours
    int AddPoint(CPoint2D p, unsigned long color);

    /// Deletes a point of the list.
    /// @return false, although the point is gone; hosts remove points by identifier. The index
    ///         keeps its entry: asked again for the same pointer, which is in the list no more,
    ///         the list drops that entry and answers true. False for every other pointer.
    bool RemovePoint(CDrawPoint* point);
    /// Deletes the first point with the identifier.
    /// @return false when there is none
    bool RemovePoint(int identifier);
    void RemoveAllSelectedPoints();
    /// Deletes all points; identifiers start at 1 again.
    void RemoveAllPoints();

    int GetCount() const { return static_cast<int>(m_points.size()); }
    /// Null outside 0 ≤ index < GetCount().
    CDrawPoint* GetDrawPoint(int index) const;
    /// Null for an unknown identifier.
    CDrawPoint* GetDrawPointByID(int identifier) const;
    /// (0, 0) for an unknown identifier.
    CPoint2D GetPoint(int identifier) const;
    /// Moves every point with the identifier.
    void UpdatePoint(int identifier, CPoint2D p);
    /// Appends the selected points to `*selected` in list order.
    void GetAllSelectedPoints(std::vector<CDrawShape*>* selected) const;

    /// Selects the visible point nearest to `p`, nearer than 1e7 ground units, and deselects the
    /// other visible ones; null when there is none.
    CDrawPoint* GetDrawShapeClosestPoint(CPoint2D p);
    /// Selects the first visible point whose coordinates are within the tolerance of `p` and
    /// deselects the other visible ones; null when there is none.
    /// @param mode not used
    CDrawPoint* GetSelectedPoint(CPoint2D p, double tolerance, int mode);
    /// Null: points are not selected by boxes.
    CDrawPoint* GetSelectedPoint(CBoundingBox* box, int mode);
    /// Selects the first point with the identifier, if there is one; the others keep their flags.
    void SetCurrentSelectedPoint(int identifier);
    /// Identifier of the point selected last, −1 for none.
    int GetCurrentSelectedPoint() const { return m_currentSelection; }

  protected:
    std::vector<CDrawPoint*> m_points; ///< owned
    /// Filled when points are added. Entries of points that were deleted otherwise than by
    /// identifier stay; they are never followed.
    std::map<std::int32_t, CDrawPoint*> m_index;
    std::int32_t m_currentSelection = -1;
    std::int32_t m_lastIdentifier = 0;
};
