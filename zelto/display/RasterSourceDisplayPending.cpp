#include "zelto/raster/RasterSource.h"

// Placeholders that let the raster source link until its drawing operations arrive.

void CRasterSource::CopyDisplaySetting(CGISDataSource* /*other*/) {}

void CRasterSource::SetStretchType(StretchType type) {
    m_stretchType = type;
}

bool CRasterSource::GetShowData(CBoundingBox* /*box*/, int /*w*/, int /*h*/, int /*bands*/,
                                unsigned char** /*planes*/, CRasterAOI* /*aoi*/, bool /*flag*/) {
    return false;
}

bool CRasterSource::GetShowData(CBoundingBox* /*box*/, int /*w*/, int /*h*/, unsigned char* /*out*/,
                                bool /*adjust*/) {
    return false;
}

void CRasterSource::ApplyShowDataHISC(double* /*red*/, double* /*green*/, double* /*blue*/,
                                      int /*w*/, int /*h*/) {}

void CRasterSource::ApplyShowDataHISC(int /*w*/, int /*h*/, unsigned char* /*interleaved*/) {}

bool CRasterSource::GetShowDataGray(CBoundingBox* /*box*/, int /*w*/, int /*h*/, int /*bands*/,
                                    unsigned char** /*planes*/, CRasterAOI* /*aoi*/,
                                    bool /*flag*/) {
    return false;
}

void CRasterSource::DeleteRGBCache() {
    delete[] m_rgbCache;
    m_rgbCache = nullptr;
    m_useRgbCache = false;
}

void CRasterSource::ClearRGBShowHisDensity() {
    delete[] m_showDensity;
    m_showDensity = nullptr;
}
