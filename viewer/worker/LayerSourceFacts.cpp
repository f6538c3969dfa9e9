#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/raster/RasterBand.h"

#include "viewer/worker/LayerSource.h"
#include "viewer/worker/Texts.h"

#include <gdal_priv.h>

#include <algorithm>

namespace zelto::view {

namespace {

/// A smaller image is read in the time that a person does not notice.
constexpr std::int64_t LARGE = std::int64_t{4096} * 4096;
/// Of an open file, and of a block in its index: position and size.
constexpr qint64 FILE_BYTES = qint64{1} << 20;
constexpr qint64 BLOCK_BYTES = 16;

BandFacts Describe(const CRasterBand& band) {
    BandFacts facts;
    facts.type = FromWide(band.GetDataTypeName());
    facts.hasColorTable = band.IsHaveColorTable();
    return facts;
}

qint64 IndexBytes(const CRasterBand& band) {
    const auto blocks = [](int side, int block) {
        return block > 0 ? (qint64{side} + block - 1) / block : 0;
    };
    qint64 bytes = blocks(band.GetWidth(), band.GetBlockXSize()) *
                   blocks(band.GetHeight(), band.GetBlockYSize()) * BLOCK_BYTES;
    for (int i = 0; i < band.GetOverviewCount(); ++i)
        bytes += IndexBytes(*band.GetOverview(i));
    return bytes;
}

bool LacksPyramid(const CRasterSource& source) {
    const CRasterBand* band = source.GetRasterBand(0);
    return band != nullptr && band->GetOverviewCount() == 0 &&
           std::int64_t{source.GetWidth()} * source.GetHeight() > LARGE;
}

/// The images of a container, of which a plain opening shows the first.
QStringList SubdatasetsOf(const CRasterSource& shown, const QString& path) {
    if (FromWide(shown.GetDescription()) == path)
        return {};
    CRasterSource container;
    QStringList names;
    if (container.OpenAsDataset(Wide(path).c_str(), GIS_READONLY) == GIS_SUCCESS)
        for (int i = 0; i < container.GetSubRasterCount(); ++i)
            names += FromWide(container.GetSubRaster(i)->GetFilePath());
    return names;
}

/// Whether the image has many bands that nothing names, and is shown by their order. Sensors count
/// from blue to red and on: the third, second and first look like what people see.
bool AreValuesInOrder(const CRasterSource& source) {
    if (source.GetBandCount() <= 4 || source.GetShowBandArray() != std::vector<int>{0, 1, 2})
        return false;
    GDALRasterBand* first = source.GetRasterBand(0)->GetGDALBand();
    return first != nullptr && first->GetColorInterpretation() != GCI_RedBand;
}

} // namespace

LayerFacts LayerSource::Describe() {
    CRasterSource& source = Shown();
    LayerFacts facts;
    facts.origin = m_origin;
    facts.width = source.GetWidth();
    facts.height = source.GetHeight();
    facts.extent = source.GetExtent();
    source.GetGeoTransform(facts.geoTransform.data(), false);
    std::copy_n(source.GetInverseGeoTransform(), facts.inverse.size(), facts.inverse.begin());
    facts.wkt = m_reference;
    if (!facts.wkt.empty()) {
        source.InitCoordinateName();
        facts.coordinateName = FromWide(source.GetCoordinateNameNew());
        facts.coordinateWords =
            QString::fromStdString(CCoordinateAlgorithm::GetCoordinateInfoString(facts.wkt.c_str()))
                .remove('\r');
        facts.geographic = source.IsGeographic();
    }
    facts.warped = m_warped;
    for (const auto& each : m_sources)
        facts.lacksPyramid = facts.lacksPyramid || LacksPyramid(*each);
    if (!m_composed && !m_warped)
        facts.subdatasets = SubdatasetsOf(source, m_origin.Path());
    facts.classes = m_classes;
    const int bandCount = m_composed ? 3 : source.GetBandCount();
    for (int i = 0; i < bandCount; ++i)
        if (const CRasterBand* band = BandOf(i))
            facts.bands.push_back(zelto::view::Describe(*band));
    facts.initial.bands = source.GetShowBandArray();
    if (!m_composed && AreValuesInOrder(source))
        facts.initial.bands = {2, 1, 0};
    // Several bands of bytes are values; three, or one with colours, are a picture already.
    if (!m_composed && bandCount > 4 && facts.initial.bands.size() == 3)
        facts.initial.stretch = "percent";
    return facts;
}

qint64 LayerSource::Bytes() const {
    qint64 bytes = 0;
    if (m_mask)
        bytes += FILE_BYTES + IndexBytes(*m_mask->GetRasterBand(0));
    for (const auto& source : m_sources) {
        bytes += FILE_BYTES;
        for (int i = 0; i < source->GetBandCount(); ++i)
            bytes += IndexBytes(*source->GetRasterBand(i));
    }
    return bytes;
}

} // namespace zelto::view
