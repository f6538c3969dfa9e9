#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/baselib/Log.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

using namespace zelto;

namespace {

constexpr int failureLevel = 4;

constexpr const char* noValueInCache = "its show-data cache holds no value at this place";

/// Writes a message of the show-data cache, when there is a logger.
template <typename... Arguments>
void LogFailure(int line, const wchar_t* format, Arguments... arguments) {
    if (CLog::m_pLogger != nullptr)
        CLog::m_pLogger->WriteLog(failureLevel, L"RasterSource", line,
                                  L"CRasterSource::GetShowData2Cache", format, arguments...);
}

/// Number of a band for people, from 1. Shown bands may have any index; the greatest one wraps.
int NumberOf(int index) {
    return static_cast<int>(static_cast<unsigned>(index) + 1U);
}

/// Why there is nothing to read.
/// @param status not ViewStatus::Selected
void LogMissedWindow(ViewStatus status) {
    switch (status) {
    case ViewStatus::MissesRaster:
        return LogFailure(__LINE__, L"实际要读取的栅格数据大小为0");
    case ViewStatus::NoGroundWidth:
        return LogFailure(__LINE__, L"转换之后的宽度为0");
    case ViewStatus::NoGroundHeight:
        return LogFailure(__LINE__, L"转换之后的高度为0");
    default:
        return LogFailure(__LINE__, L"读出的内存大小为0");
    }
}

} // namespace

bool CRasterSource::GetShowData2Cache(CBoundingBox* box, int w, int h) {
    return DrawOrTell(*this, [=, this] {
        if (box == nullptr)
            return Refuse(noPlaceToDraw);
        const ViewWindow view = SelectViewWindow(GridOf(*this), *box, w, h, ViewRule::Cache);
        if (view.status != ViewStatus::Selected) {
            LogMissedWindow(view.status);
            return Refuse(ReasonOf(view.status));
        }
        const ReadWindow& read = view.read;
        for (int k = 0; k < m_showBandCount; ++k) {
            CRasterBand* band = GetShownBand(k);
            if (band == nullptr)
                SetLastError(noShownBand);
            else if (band->GetData(read.xOff, read.yOff, read.xSize, read.ySize, read.bufWidth,
                                   read.bufHeight))
                continue;
            const int index = static_cast<std::size_t>(k) < m_showBands.size() ? m_showBands[k] : k;
            LogFailure(__LINE__, L"读取第%d波段数据出错", NumberOf(index));
            return false;
        }
        return true;
    });
}

void CRasterSource::ReleaseShowDataCache() {
    for (int k = 0; k < m_showBandCount; ++k)
        if (CRasterBand* band = GetShownBand(k))
            band->ReleaseCache();
}

bool CRasterSource::GetShowValueFormCache(double x, double y, unsigned char& r, unsigned char& g,
                                          unsigned char& b, unsigned char& a) {
    double column = 0.0;
    double row = 0.0;
    GroundToImage(x, y, column, row);
    a = 255;
    const OperationScope scope;
    if (m_showBandCount == 1) {
        if (GetSingleBandColor(column, row, r, g, b, a))
            return true;
        return FailWith(false, NameOf(*this), noValueInCache);
    }
    unsigned char* channels[] = {&r, &g, &b};
    for (int k = 0; k < std::min(m_showBandCount, 3) && a != 0; ++k) {
        CRasterBand* band = GetShownBand(k);
        a = band != nullptr && band->GetShowValueAt(column, row, channels[k]) ? 255 : 0;
    }
    if (a == 0)
        return FailWith(false, NameOf(*this), noValueInCache);
    return true;
}

bool CRasterSource::GetSingleBandColor(double column, double row, unsigned char& r,
                                       unsigned char& g, unsigned char& b, unsigned char& a) const {
    CRasterBand* band = GetShownBand(0);
    double value = 0.0;
    a = 0;
    if (band == nullptr)
        return false;
    const SingleBandKind kind = KindOf(*this, *band);
    if (kind == SingleBandKind::Palette) {
        if (!band->GetRGBDataFromColorTable(column, row, r, g, b, a))
            a = 0;
        return a != 0;
    }
    if (!band->GetNearestValueAt(column, row, &value))
        return false;
    if (kind == SingleBandKind::Classes) {
        m_classifyTable->GetColor(value, r, g, b, a);
    } else {
        const unsigned char shown = band->Convert2ShowValue(value);
        const bool ramp = kind == SingleBandKind::Ramp;
        r = ramp ? m_colorRamp->Red(shown) : shown;
        g = ramp ? m_colorRamp->Green(shown) : shown;
        b = ramp ? m_colorRamp->Blue(shown) : shown;
    }
    // Opaque whatever the table says.
    a = 255;
    return true;
}
