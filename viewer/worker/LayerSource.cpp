#include "viewer/worker/LayerSource.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/raster/RasterBand.h"

#include "host/base/Failure.h"
#include "host/picture/DisplaySource.h"
#include "viewer/worker/LayerClasses.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

/// Samples a side that a histogram is counted from.
constexpr int HISTOGRAM_SIDE = 512;
constexpr int HISTOGRAM_BUCKETS = 256;

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
    if (!origin.IsComposed()) {
        host::ShowBandsByColor(layer->Shown());
        try {
            layer->OpenMask(reference);
        } catch (const host::Failure& failure) {
            reason = QString::fromStdString(failure.what());
            return nullptr;
        }
    }
    layer->m_reference = layer->Shown().GetProjectionWKT();
    layer->m_classes = DescribeClasses(layer->Shown().GetClassifyDisplayTable());
    layer->m_hasClassTable = !layer->m_classes.empty();
    if (!layer->m_hasClassTable && !layer->m_composed)
        layer->m_classes = DescribePalette(layer->Shown().GetRasterBand(0));
    return layer;
}

void LayerSource::OpenMask(const std::string& reference) {
    m_opacity.emplace(Shown());
    if (m_opacity->Path().empty())
        return;
    bool warped = false;
    QString reason;
    m_mask = OpenOne(QString::fromStdString(m_opacity->Path()), reference, warped, reason);
    if (!m_mask)
        throw host::Failure(m_origin.Path().toStdString(), reason.toStdString());
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
