#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/display/ImgEnhance.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/display/WallisStretch.h"
#include "zelto/display/ZoomLinear.h"
#include "zelto/display/ZoomLinear002.h"
#include "zelto/raster/RasterBand.h"

#include <array>
#include <new>

namespace {

/// Puts a histogram of given counts in the place of the present one and builds its equalisation
/// map.
bool ReplaceHistogram(CRasterHistogram*& owned, double min, double max, int buckets,
                      const int* counts) {
    if (buckets < 0 || (buckets > 0 && counts == nullptr))
        return zelto::FailWith(false, L"", "the histogram has no counts");
    delete owned;
    owned = new (std::nothrow) CRasterHistogram(min, max, buckets, counts, false, true);
    if (owned == nullptr)
        return zelto::FailWith(false, L"", "not enough memory for the histogram");
    owned->SetHistogramMap(0);         // it counts its own
    return zelto::LastError().empty(); // without memory there is no map
}

} // namespace

void CRasterBand::SetStretchData(StretchType type, double a1, double a2, double a3, double a4,
                                 double a5, double a6) {
    delete m_stretchFunction;
    m_stretchFunction = nullptr;
    switch (type) {
    case StretchZoomLinear002:
        m_stretchFunction =
            new (std::nothrow) CZoomLinear002(type, 0.0, 0.0, 0.0, 0.0, a3, a4, 0.0, 0.0);
        break;
    case StretchWallis:
        m_stretchFunction =
            new (std::nothrow) CWallisStretch(type, 0.0, 255.0, a1, a2, a3, a4, a5, a6);
        break;
    case StretchZoomLinear:
        m_stretchFunction =
            new (std::nothrow) CZoomLinear(type, 0.0, 255.0, 0.0, 0.0, a3, a4, 0.0, 0.0);
        break;
    default:
        return;
    }
    m_stretchType = type;
}

bool CRasterBand::EnableHistogramEqualize() {
    const zelto::OperationScope scope;
    constexpr int MAX_BUCKETS = 256;
    const double range = GetMaximum() - GetMinimum();
    const int buckets = range > MAX_BUCKETS ? MAX_BUCKETS : zelto::TruncateToInt32(range);
    std::array<int, MAX_BUCKETS> counts{};
    // A failed computation leaves an earlier histogram in use.
    GetHistogram(GetMinimum(), GetMaximum(), buckets, counts.data(), false, true, nullptr);
    if (m_histogram == nullptr)
        return false;
    m_histogram->SetHistogramMap(static_cast<__int64>(m_width) * m_height);
    return true;
}

bool CRasterBand::SetCustomHistogram(double min, double max, int buckets, int* counts) {
    const zelto::OperationScope scope;
    return ReplaceHistogram(m_customHistogram, min, max, buckets, counts);
}

bool CRasterBand::SetHistogram(double min, double max, int buckets, const int* counts) {
    const zelto::OperationScope scope;
    if (!ReplaceHistogram(m_histogram, min, max, buckets, counts))
        return false;
    m_histogramIsGiven = true;
    return true;
}

bool CRasterBand::SetEnhancedData(const unsigned char* table, HistogramLineType lineType,
                                  CPoint2D* points, int pointCount) {
    return zelto::Operation(false, [&] {
        if (m_enhancer == nullptr)
            m_enhancer = new (std::nothrow) CImgEnhance;
        if (m_enhancer == nullptr || !m_enhancer->SetEnhancedTable(table))
            return zelto::FailWith(false, L"", "there is no table, or no memory for it");
        m_enhancer->SetLineType(lineType);
        m_enhancer->SetCurvePoints(points, pointCount);
        return true;
    });
}
