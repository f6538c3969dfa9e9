#include "zelto/raster/internal/StatisticsBand.h"

#include "zelto/raster/internal/VirtualBand.h"

#include <vrtdataset.h>

#include <cstring>
#include <vector>

namespace zelto {

namespace {

/// Reads through to another band and keeps metadata of its own. It belongs to no data set.
class StandInBand final : public GDALRasterBand {
  public:
    explicit StandInBand(GDALRasterBand& band) : m_band(band) {
        nRasterXSize = band.GetXSize();
        nRasterYSize = band.GetYSize();
        eDataType = band.GetRasterDataType();
        band.GetBlockSize(&nBlockXSize, &nBlockYSize);
    }

    double GetNoDataValue(int* success) override { return m_band.GetNoDataValue(success); }
    int64_t GetNoDataValueAsInt64(int* success) override {
        return m_band.GetNoDataValueAsInt64(success);
    }
    uint64_t GetNoDataValueAsUInt64(int* success) override {
        return m_band.GetNoDataValueAsUInt64(success);
    }
    double GetMinimum(int* success) override { return m_band.GetMinimum(success); }
    double GetMaximum(int* success) override { return m_band.GetMaximum(success); }
    GDALColorInterp GetColorInterpretation() override { return m_band.GetColorInterpretation(); }
    GDALRasterBand* GetMaskBand() override { return m_band.GetMaskBand(); }
    int GetMaskFlags() override { return m_band.GetMaskFlags(); }
    int HasArbitraryOverviews() override { return m_band.HasArbitraryOverviews(); }
    int GetOverviewCount() override { return m_band.GetOverviewCount(); }
    GDALRasterBand* GetOverview(int index) override;
    CPLErr ComputeRasterMinMax(int approximate, double* range) override;
    /// Statistics are this band's own; how samples are to be understood is the file's.
    const char* GetMetadataItem(const char* name, const char* domain) override {
        if (domain != nullptr && EQUAL(domain, "IMAGE_STRUCTURE"))
            return m_band.GetMetadataItem(name, domain);
        return GDALRasterBand::GetMetadataItem(name, domain);
    }

  protected:
    CPLErr IReadBlock(int column, int row, void* block) override;
    CPLErr IRasterIO(GDALRWFlag flag, int xOff, int yOff, int xSize, int ySize, void* buffer,
                     int bufWidth, int bufHeight, GDALDataType type, GSpacing pixelSpace,
                     GSpacing lineSpace, GDALRasterIOExtraArg* extra) override {
        return m_band.RasterIO(flag, xOff, yOff, xSize, ySize, buffer, bufWidth, bufHeight, type,
                               pixelSpace, lineSpace, extra);
    }

  private:
    bool KnowsMinMax();

    GDALRasterBand& m_band;
    std::vector<std::unique_ptr<StandInBand>> m_overviews;
};

/// Overviews are computed on as well, so they get stand-ins of their own.
GDALRasterBand* StandInBand::GetOverview(int index) {
    GDALRasterBand* overview = m_band.GetOverview(index);
    if (overview == nullptr)
        return nullptr;
    const auto slot = static_cast<std::size_t>(index);
    if (slot >= m_overviews.size())
        m_overviews.resize(slot + 1);
    if (!m_overviews[slot])
        m_overviews[slot] = std::make_unique<StandInBand>(*overview);
    return m_overviews[slot].get();
}

bool StandInBand::KnowsMinMax() {
    int hasMinimum = FALSE;
    int hasMaximum = FALSE;
    GetMinimum(&hasMinimum);
    GetMaximum(&hasMaximum);
    return hasMinimum != FALSE && hasMaximum != FALSE;
}

/// Where GDAL approximates from an overview, it reads the overview of a file band whole, but
/// approximates that of a virtual band once more.
CPLErr StandInBand::ComputeRasterMinMax(int approximate, double* range) {
    if (approximate != FALSE && IsVirtual(&m_band) && !KnowsMinMax() && GetOverviewCount() > 0) {
        GDALRasterBand* overview = GetRasterSampleOverview(GDALSTAT_APPROX_NUMSAMPLES);
        if (overview != this)
            return overview->GDALRasterBand::ComputeRasterMinMax(TRUE, range);
    }
    return GDALRasterBand::ComputeRasterMinMax(approximate, range);
}

/// Through the file band's own block cache, so that a later drawing finds the blocks there.
CPLErr StandInBand::IReadBlock(int column, int row, void* block) {
    GDALRasterBlock* source = m_band.GetLockedBlockRef(column, row);
    if (source == nullptr)
        return CE_Failure;
    const auto samples =
        static_cast<std::size_t>(nBlockXSize) * static_cast<std::size_t>(nBlockYSize);
    std::memcpy(block, source->GetDataRef(),
                samples * static_cast<std::size_t>(GDALGetDataTypeSizeBytes(eDataType)));
    source->DropLock();
    return CE_None;
}

/// Virtual rasters are never taken as open for update: warped ones say they are however they
/// were opened, and would write the results into their file.
bool IsOpenForUpdate(GDALRasterBand& band) {
    GDALDataset* dataset = band.GetDataset();
    return dataset != nullptr && dataset->GetAccess() == GA_Update &&
           dynamic_cast<VRTDataset*>(dataset) == nullptr;
}

} // namespace

StatisticsBand::StatisticsBand(GDALRasterBand& band)
    : m_standIn(IsOpenForUpdate(band) ? nullptr : std::make_unique<StandInBand>(band)),
      m_band(m_standIn ? m_standIn.get() : &band) {}

StatisticsBand::~StatisticsBand() = default;

} // namespace zelto
