#include "zelto/baselib/internal/Operation.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/raster/RasterSource.h"

using zelto::mostShownBands;

namespace {

constexpr const char* noSuchBand = "it has no such band, or shows only one";

} // namespace

bool CRasterSource::SetShowBandNum(int count, int* bandIndices) {
    const zelto::OperationScope scope;
    if (count < 1 || count > mostShownBands || bandIndices == nullptr)
        return zelto::FailWith(false, m_filePath, "one to three bands can be shown");
    m_showBandCount = count;
    m_showBands.assign(bandIndices, bandIndices + count);
    return true;
}

bool CRasterSource::SetRedBandNum(int index) {
    const zelto::OperationScope scope;
    if (index < 0 || index >= m_bandCount)
        return zelto::FailWith(false, m_filePath, noSuchBand);
    if (m_showBands.empty())
        m_showBands.resize(1);
    m_showBands[0] = index;
    return true;
}

bool CRasterSource::SetGreenBandNum(int index) {
    const zelto::OperationScope scope;
    if (index < 0 || index >= m_bandCount || m_showBandCount != 3)
        return zelto::FailWith(false, m_filePath, noSuchBand);
    m_showBands.resize(mostShownBands);
    m_showBands[1] = index;
    return true;
}

bool CRasterSource::SetBlueBandNum(int index) {
    const zelto::OperationScope scope;
    if (index < 0 || index >= m_bandCount || m_showBandCount != 3)
        return zelto::FailWith(false, m_filePath, noSuchBand);
    m_showBands.resize(mostShownBands);
    m_showBands[2] = index;
    return true;
}

int CRasterSource::GetRedBandNum() const {
    return m_showBandCount < 1 || m_showBands.empty() ? 0 : m_showBands[0];
}

int CRasterSource::GetGreenBandNum() const {
    if (m_showBandCount == 1)
        return GetRedBandNum();
    return m_showBandCount == 3 && m_showBands.size() > 1 ? m_showBands[1] : 0;
}

int CRasterSource::GetBlueBandNum() const {
    if (m_showBandCount == 1)
        return GetRedBandNum();
    return m_showBandCount == 3 && m_showBands.size() > 2 ? m_showBands[2] : 0;
}

CRasterBand* CRasterSource::GetShownBand(int k) const {
    if (k < 0 || static_cast<std::size_t>(k) >= m_showBands.size())
        return nullptr;
    return GetRasterBand(m_showBands[static_cast<std::size_t>(k)]);
}
