#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <memory>

namespace {

/// Replaces an owned object by a copy of `*source`, which may be the present one; null removes.
/// The present one stays where there is no memory for the copy.
template <typename T>
void ReplaceByCopy(T*& owned, const T* source) {
    zelto::Operation(false, [&] {
        auto copy = source != nullptr ? std::make_unique<T>(*source) : nullptr;
        delete owned;
        owned = copy.release();
        return true;
    });
}

} // namespace

void CRasterSource::SetStretchType(StretchType type) {
    m_stretchType = type;
    for (CRasterBand* band : m_bands)
        band->SetStretchType(type);
}

void CRasterSource::SetAutoLevelThresold(double threshold) {
    m_autoLevelThreshold = threshold;
    for (CRasterBand* band : m_bands)
        band->SetAutoLevelThresold(threshold);
}

bool CRasterSource::SetShowStretchNum(int number) {
    m_showStretchNumber = number;
    return true;
}

bool CRasterSource::EnableHistogramEqualize() {
    const zelto::OperationScope scope;
    for (int k = 0; k < m_showBandCount; ++k)
        if (CRasterBand* band = GetShownBand(k))
            band->EnableHistogramEqualize();
    zelto::NameFileOfLastError(m_filePath);
    return true;
}

bool CRasterSource::AllBandHistogramEqualize() {
    const zelto::OperationScope scope;
    for (CRasterBand* band : m_bands)
        band->EnableHistogramEqualize();
    zelto::NameFileOfLastError(m_filePath);
    return true;
}

void CRasterSource::SetColorRamp(CColorRamp* ramp) {
    ReplaceByCopy(m_colorRamp, ramp);
}

void CRasterSource::SetClassifyDisplayTable(CClassifyDisplayTable* table) {
    ReplaceByCopy(m_classifyTable, table);
}

void CRasterSource::DeleteRGBCache() {
    if (m_rgbCache == nullptr)
        return;
    delete[] m_rgbCache;
    m_rgbCache = nullptr;
    m_useRgbCache = false;
}

void CRasterSource::ClearRGBShowHisDensity() {
    delete[] m_showDensity;
    m_showDensity = nullptr;
}

void CRasterSource::CopyDisplaySetting(CGISDataSource* other) {
    if (other == nullptr || other->GetDataSourceType() != DS_RASTER)
        return;
    const auto& source = static_cast<const CRasterSource&>(*other);
    m_displayType = source.m_displayType;
    // Each setter refuses a band that this source does not have, or does not show.
    SetRedBandNum(source.GetRedBandNum());
    SetGreenBandNum(source.GetGreenBandNum());
    SetBlueBandNum(source.GetBlueBandNum());
    m_hue = source.m_hue;
    m_intensity = source.m_intensity;
    m_saturation = source.m_saturation;
    m_contrast = source.m_contrast;
    m_transparency = source.m_transparency;
    // Stored only: the bands keep the thresholds and stretches they have.
    m_autoLevelThreshold = source.m_autoLevelThreshold;
    m_stretchType = source.m_stretchType;
}
