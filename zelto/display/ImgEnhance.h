#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/StretchType.h"
#include "zelto/geometry/Point2D.h"

#include <memory>
#include <vector>

/// A user's enhancement curve: a table of 256 display bytes, with the curve it was drawn as.
class ZELTO_API CImgEnhance {
  public:
    CImgEnhance();
    CImgEnhance(const CImgEnhance& other);
    CImgEnhance& operator=(const CImgEnhance& other);
    virtual ~CImgEnhance();

    /// Copies 256 bytes.
    /// @return false for null or when the table cannot be allocated
    bool SetEnhancedTable(const unsigned char* table);
    /// 256 bytes, or null while none were set.
    unsigned char* GetEnhancedTable() { return m_table.get(); }
    /// The table's byte, or the value itself while there is no table.
    unsigned char GetEnhancedValue(unsigned char value) const;

    /// Stored for the host, never interpreted.
    void SetLineType(HistogramLineType type) { m_lineType = type; }
    HistogramLineType GetLineType() const { return m_lineType; }
    /// Replaces the curve's points; null or a count below 1 leaves none.
    void SetCurvePoints(const CPoint2D* points, int count);
    const std::vector<CPoint2D>& GetCurvePoints() const { return m_points; }

  protected:
    HistogramLineType m_lineType = HistogramLineStraight;
    std::vector<CPoint2D> m_points;
    std::unique_ptr<unsigned char[]> m_table;
};
