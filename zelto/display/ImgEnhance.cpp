#include "zelto/display/ImgEnhance.h"

#include <algorithm>
#include <new>

namespace {
constexpr int TABLE_SIZE = 256;
}

CImgEnhance::CImgEnhance() = default;

CImgEnhance::CImgEnhance(const CImgEnhance& other)
    : m_lineType(other.m_lineType), m_points(other.m_points) {
    SetEnhancedTable(other.m_table.get());
}

CImgEnhance& CImgEnhance::operator=(const CImgEnhance& other) {
    if (this == &other)
        return *this;
    m_lineType = other.m_lineType;
    m_points = other.m_points;
    if (other.m_table)
        SetEnhancedTable(other.m_table.get());
    else
        m_table.reset();
    return *this;
}

CImgEnhance::~CImgEnhance() = default;

bool CImgEnhance::SetEnhancedTable(const unsigned char* table) {
    if (table == nullptr)
        return false;
    if (!m_table)
        m_table.reset(new (std::nothrow) unsigned char[TABLE_SIZE]);
    if (!m_table)
        return false;
    std::copy_n(table, TABLE_SIZE, m_table.get());
    return true;
}

unsigned char CImgEnhance::GetEnhancedValue(unsigned char value) const {
    return m_table ? m_table[value] : value;
}

void CImgEnhance::SetCurvePoints(const CPoint2D* points, int count) {
    m_points.clear();
    if (points != nullptr && count >= 1)
        m_points.assign(points, points + count);
}
