#include "zelto/baselib/internal/Operation.h"
#include "zelto/display/internal/DisplayMapping.h"
#include "zelto/display/internal/PaletteEntry.h"
#include "zelto/raster/RasterBand.h"

namespace {

constexpr const char* noValue = "the band's cache holds no value at this place, or no colour";

} // namespace

unsigned char CRasterBand::Convert2Byte(double value) const {
    if (m_dataType == PDT_Byte)
        return zelto::PassThrough{}(value);
    return zelto::InnerMinMax{{GetMinimum(), GetMaximum()}}(value);
}

unsigned char CRasterBand::Convert2ShowValue(double value) {
    return zelto::DisplayMapping::Convert(*this, value);
}

bool CRasterBand::GetShowValueAt(double x, double y, unsigned char* out) {
    const zelto::OperationScope scope;
    double sample = 0.0;
    if (out == nullptr || !GetNearestValueAt(x, y, &sample))
        return zelto::FailWith(false, L"", noValue);
    *out = Convert2ShowValue(sample);
    return true;
}

bool CRasterBand::GetRGBDataFromColorTable(double x, double y, unsigned char& r, unsigned char& g,
                                           unsigned char& b, unsigned char& a) const {
    const zelto::OperationScope scope;
    double sample = 0.0;
    const GDALColorTable* const palette = zelto::PaletteOf(*this);
    if (palette == nullptr || !GetNearestValueAt(x, y, &sample))
        return zelto::FailWith(false, L"", noValue);
    const GDALColorEntry entry = zelto::PaletteEntry(*palette, sample);
    r = static_cast<unsigned char>(entry.c1);
    g = static_cast<unsigned char>(entry.c2);
    b = static_cast<unsigned char>(entry.c3);
    a = static_cast<unsigned char>(entry.c4);
    return true;
}
