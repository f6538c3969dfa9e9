#include "viewer/worker/LayerSource.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/raster/RasterBand.h"

#include "viewer/worker/LayerClasses.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

/// A smaller image is read in the time that a person does not notice.
constexpr std::int64_t LARGE = std::int64_t{4096} * 4096;
/// Samples a side that a histogram is counted from.
constexpr int HISTOGRAM_SIDE = 512;
constexpr int HISTOGRAM_BUCKETS = 256;
/// Of an open file, and of a block in its index: position and size.
constexpr qint64 FILE_BYTES = qint64{1} << 20;
constexpr qint64 BLOCK_BYTES = 16;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(LayerSource)
};

bool IsToBeWarped(const CRasterSource& source, const std::string& reference) {
    const std::string own = source.GetProjectionWKT();
    return !reference.empty() && !own.empty() &&
           !CCoordinateAlgorithm::IsSameCoordinate(own.c_str(), reference.c_str());
}

/// @param warped set where the image is shown in another system than its own
std::unique_ptr<CRasterSource> OpenOne(const QString& path, const std::string& reference,
                                       bool& warped, QString& reason) {
    CGISDataSource::ClearLastErrorText();
    const std::wstring name = Wide(path);
    auto source = std::make_unique<CRasterSource>();
    source->SetForDisplay(true);
    GISError error = source->Open(name.c_str(), GIS_READONLY, true);
    if (error == GIS_SUCCESS && IsToBeWarped(*source, reference)) {
        source = std::make_unique<CRasterSource>();
        source->SetForDisplay(true);
        error = source->OpenAndWarped(name.c_str(), GIS_READONLY, reference.c_str());
        warped = true;
    }
    if (error == GIS_SUCCESS && source->GetBandCount() > 0)
        return source;
    reason = ReasonOr(path + ": " + Texts::tr("not an image that can be shown"));
    return nullptr;
}

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

} // namespace

std::unique_ptr<LayerSource> LayerSource::Open(const LayerOrigin& origin,
                                               const std::string& reference, QString& reason) {
    std::unique_ptr<LayerSource> layer(new LayerSource);
    layer->m_origin = origin;
    for (const QString& path : origin.paths) {
        layer->m_sources.push_back(OpenOne(path, reference, layer->m_warped, reason));
        if (!layer->m_sources.back())
            return nullptr;
    }
    if (layer->m_sources.empty())
        return nullptr;
    if (origin.IsComposed() && !layer->Compose(origin)) {
        reason = ReasonOr(Texts::tr("the three images have nothing in common"));
        return nullptr;
    }
    layer->m_reference = layer->Shown().GetProjectionWKT();
    layer->m_classes = DescribeClasses(layer->Shown().GetClassifyDisplayTable());
    layer->m_hasClassTable = !layer->m_classes.empty();
    if (!layer->m_hasClassTable && !layer->m_composed)
        layer->m_classes = DescribePalette(layer->Shown().GetRasterBand(0));
    return layer;
}

LayerSource::~LayerSource() {
    CCoordinateTransformation::DestroyCoordinateTransformation(m_toLonLat);
}

bool LayerSource::Compose(const LayerOrigin& origin) {
    std::array<CRasterBand*, 3> bands{};
    for (std::size_t k = 0; k < bands.size(); ++k) {
        bands[k] = m_sources[k]->GetRasterBand(origin.bands[k]);
        int shown = origin.bands[k];
        m_sources[k]->SetShowBandNum(1, &shown);
    }
    m_composed = std::make_unique<CComposedRaster>();
    return m_composed->CreateRaster(m_sources[0].get(), bands[0], m_sources[1].get(), bands[1],
                                    m_sources[2].get(), bands[2]) == GIS_SUCCESS;
}

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
    // Several bands of bytes are values; three, or one with colours, are a picture already.
    if (!m_composed && bandCount > 4 && facts.initial.bands.size() == 3)
        facts.initial.stretch = "percent";
    return facts;
}

qint64 LayerSource::Bytes() const {
    qint64 bytes = 0;
    for (const auto& source : m_sources) {
        bytes += FILE_BYTES;
        for (int i = 0; i < source->GetBandCount(); ++i)
            bytes += IndexBytes(*source->GetRasterBand(i));
    }
    return bytes;
}

CRasterBand* LayerSource::BandOf(int index) {
    if (!m_composed)
        return Shown().GetRasterBand(index);
    const auto k = static_cast<std::size_t>(std::clamp(index, 0, 2));
    return m_sources[k]->GetRasterBand(m_origin.bands[k]);
}

Reading LayerSource::Read(QPointF ground) {
    CRasterSource& source = Shown();
    Reading reading;
    reading.ground = ground;
    double column = 0.0;
    double row = 0.0;
    source.GroundToImage(ground.x(), ground.y(), column, row);
    reading.isInside =
        column >= 0.0 && row >= 0.0 && column < source.GetWidth() && row < source.GetHeight();
    // Made when it is first asked for, not while the first picture is waited for.
    if (m_toLonLat == nullptr && !m_reference.empty())
        m_toLonLat = CCoordinateTransformation::CreateCoordinateTransformation(
            m_reference.c_str(), "EPSG:4326", static_cast<double*>(nullptr));
    if (m_toLonLat != nullptr) {
        double x = ground.x();
        double y = ground.y();
        if (m_toLonLat->Transform(1, &x, &y, nullptr, nullptr) && std::isfinite(x))
            reading.lonLat = QPointF(x, y);
    }
    if (!reading.isInside)
        return reading;
    reading.column = static_cast<int>(column);
    reading.row = static_cast<int>(row);
    std::vector<double> values(static_cast<std::size_t>(m_composed ? 3 : source.GetBandCount()));
    if (source.GetPixel(values.data(), reading.column, reading.row, PDT_Float64) == GIS_SUCCESS)
        reading.values = std::move(values);
    const CClassifyDisplayTable* table = source.GetClassifyDisplayTable();
    for (int i = 0; table != nullptr && !reading.values.empty() && i < table->GetItemCount(); ++i)
        if (table->GetItem(i)->Contains(reading.values.front())) {
            reading.className = FromWide(table->GetItem(i)->m_name);
            break;
        }
    return reading;
}

BandHistogram LayerSource::CountValues(int index) {
    BandHistogram histogram;
    histogram.band = index;
    CRasterBand* band = BandOf(index);
    if (band == nullptr)
        return histogram;
    // Not the band's own range: a stretch between bounds has put those in its place.
    double mean = 0.0;
    double deviation = 0.0;
    band->ComputeStaticsFromCustom(histogram.range.low, histogram.range.high, mean, deviation,
                                   nullptr);
    if (band->GetDataType() == PDT_Byte) {
        histogram.range = {0.0, 255.0};
        histogram.whole = true;
    }
    const int width = std::min(band->GetWidth(), HISTOGRAM_SIDE);
    const int height = std::min(band->GetHeight(), HISTOGRAM_SIDE);
    std::vector<double> samples(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    if (!band->GetDataToBuffer(0, 0, band->GetWidth(), band->GetHeight(), width, height,
                               samples.data()))
        return histogram;
    const double span = histogram.range.high - histogram.range.low;
    if (!std::isfinite(span))
        return histogram;
    histogram.counts.assign(HISTOGRAM_BUCKETS, 0);
    const double perValue = span > 0.0 ? (HISTOGRAM_BUCKETS - 1) / span : 0.0;
    for (const double value : samples) {
        // Written so that what is not a number is left out.
        if (!(value >= histogram.range.low && value <= histogram.range.high) ||
            (band->IsHaveNoData() && band->IsNoData(value)))
            continue;
        ++histogram.counts[static_cast<std::size_t>((value - histogram.range.low) * perValue)];
    }
    return histogram;
}

} // namespace zelto::view
