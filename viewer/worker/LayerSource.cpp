#include "viewer/worker/LayerSource.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/display/StretchPreparation.h"
#include "zelto/raster/RasterBand.h"

#include "cli/support/RenderRamps.h"
#include "viewer/worker/AreaFiles.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

constexpr auto DISPLAY_RAMP = static_cast<DataDisplayType>(1);
/// A smaller image is read in the time that a person does not notice.
constexpr std::int64_t LARGE = std::int64_t{4096} * 4096;
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

BandFacts Describe(const CRasterBand& band) {
    BandFacts facts;
    facts.type = FromWide(band.GetDataTypeName());
    facts.isByte = band.GetDataType() == PDT_Byte;
    facts.hasColorTable = band.IsHaveColorTable();
    if (band.IsHaveNoData())
        facts.noData = band.GetNoDataValue();
    return facts;
}

std::vector<ClassColor> DescribeClasses(const CClassifyDisplayTable* table) {
    std::vector<ClassColor> classes;
    for (int i = 0; table != nullptr && i < table->GetItemCount(); ++i) {
        const CClassifyDisplayItem& item = *table->GetItem(i);
        classes.push_back({item.m_low, item.m_high,
                           QColor(item.m_color.red, item.m_color.green, item.m_color.blue),
                           FromWide(item.m_name)});
    }
    return classes;
}

unsigned char Byte(int value) {
    return static_cast<unsigned char>(value);
}

CClassifyDisplayTable TableOf(const std::vector<ClassColor>& classes) {
    CClassifyDisplayTable table(static_cast<int>(classes.size()));
    for (const ClassColor& each : classes)
        table.AddClassifyItem(
            {{Byte(each.color.red()), Byte(each.color.green()), Byte(each.color.blue()), 255},
             each.low,
             each.high,
             Wide(each.name)});
    return table;
}

/// The ranges that the user set, in the form the preparation takes: one for each shown band, or
/// none. Of a composed image each source shows one band.
std::vector<CStretchPreparation::Range> RangesFor(const DisplaySettings& settings, std::size_t i,
                                                  bool composed) {
    std::vector<CStretchPreparation::Range> ranges;
    const std::size_t first = composed ? i : 0;
    const std::size_t count = composed ? 1 : settings.bands.size();
    for (std::size_t k = first; k < first + count && k < settings.ranges.size(); ++k)
        if (settings.ranges[k])
            ranges.push_back({settings.ranges[k]->low, settings.ranges[k]->high});
    return ranges.size() == count ? ranges : std::vector<CStretchPreparation::Range>();
}

bool LacksPyramid(const CRasterSource& source) {
    const CRasterBand* band = source.GetRasterBand(0);
    return band != nullptr && band->GetOverviewCount() == 0 &&
           std::int64_t{source.GetWidth()} * source.GetHeight() > LARGE;
}

/// "1174 × 1174, 587 × 587"
QString PyramidOf(const CRasterSource& source) {
    QStringList levels;
    const CRasterBand* band = source.GetRasterBand(0);
    for (int i = 0; band != nullptr && i < band->GetOverviewCount(); ++i)
        levels += QString("%1 × %2")
                      .arg(band->GetOverview(i)->GetWidth())
                      .arg(band->GetOverview(i)->GetHeight());
    return levels.join(", ");
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
    facts.format = FromWide(CRasterSource::GetDataFormatName(source.GetRasterDataFormat()));
    facts.pyramid = PyramidOf(*m_sources.front());
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
    facts.classes = DescribeClasses(source.GetClassifyDisplayTable());
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

CRasterBand* LayerSource::BandOf(int index) {
    if (!m_composed)
        return Shown().GetRasterBand(index);
    const auto k = static_cast<std::size_t>(std::clamp(index, 0, 2));
    return m_sources[k]->GetRasterBand(m_origin.bands[k]);
}

bool LayerSource::Draw(const ViewTransform& view, const DisplaySettings& settings,
                       const Shapes& mask, QImage& image, QString& reason) {
    image.fill(Qt::transparent);
    CRasterSource& source = Shown();
    CBoundingBox box = view.Box();
    CBoundingBox extent = source.GetExtent();
    if (!box.IsIntersect(&extent))
        return true;
    const bool applied = Apply(settings, box, reason);
    CGISDataSource::ClearLastErrorText();
    bool drawn = false;
    if (!mask.empty()) {
        drawn = DrawMasked(box, mask, image);
    } else {
        // A composed image is adjusted and made transparent while it is drawn.
        drawn = source.GetShowData(&box, image.width(), image.height(), image.bits(), false);
        if (drawn && !m_composed)
            source.ApplyShowDataHISC(image.width(), image.height(), image.bits());
    }
    if (!drawn)
        reason = ReasonOr(m_origin.Path() + ": " + Texts::tr("its pixels cannot be read"));
    return drawn && applied;
}

bool LayerSource::Apply(const DisplaySettings& settings, const CBoundingBox& box, QString& reason) {
    if (m_applied == settings && !settings.ofView)
        return true;
    if (!m_composed) {
        std::vector<int> bands = settings.bands;
        Shown().SetShowBandNum(static_cast<int>(bands.size()), bands.data());
    }
    ApplyLook(Shown(), settings);
    m_applied = settings;
    if (ApplyStretch(settings, box))
        return true;
    reason = ReasonOr(m_origin.Path() + ": " + Texts::tr("the stretch cannot be had"));
    return false;
}

bool LayerSource::ApplyStretch(const DisplaySettings& settings, const CBoundingBox& box) {
    using Setting = CStretchPreparation::Setting;
    const std::string name = settings.stretch.toStdString();
    const auto takes = [&](Setting setting) { return CStretchPreparation::Takes(name, setting); };
    m_ranges.clear();
    bool applied = true;
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        CStretchPreparation stretch(m_sources[i].get());
        if (!stretch.SetStretch(name))
            return false;
        if (takes(Setting::Clip))
            stretch.SetClip(settings.clip.low, settings.clip.high);
        if (takes(Setting::Ranges))
            stretch.SetRanges(RangesFor(settings, i, m_composed != nullptr));
        if (takes(Setting::Gamma) && settings.gamma != 1.0)
            stretch.SetGamma({settings.gamma});
        if (takes(Setting::Bounds))
            stretch.SetBounds(settings.low, settings.high);
        if (takes(Setting::Threshold))
            stretch.SetThreshold(settings.threshold);
        if (takes(Setting::WallisModel))
            stretch.SetWallisModel(settings.wallisModel);
        if (takes(Setting::Region) && settings.ofView)
            stretch.SetView(box);
        applied = stretch.Apply(nullptr) == GIS_SUCCESS && applied;
        for (const CStretchPreparation::Band& band : stretch.GetBands())
            m_ranges.push_back({band.range.low, band.range.high});
    }
    return applied;
}

void LayerSource::ApplyLook(CRasterSource& source, const DisplaySettings& settings) const {
    source.m_hue = settings.hue;
    source.m_intensity = settings.intensity;
    source.m_saturation = settings.saturation;
    source.m_contrast = settings.contrast;
    source.m_transparency = settings.transparency;
    if (settings.classes) {
        CClassifyDisplayTable table = TableOf(*settings.classes);
        source.SetClassifyDisplayTable(&table);
    }
    const bool hasClasses = source.GetClassifyDisplayTable() != nullptr;
    source.SetDisplayType(hasClasses ? DISPLAY_CLASSIFIED : DISPLAY_DEFAULT);
    if (!settings.ramp.isEmpty()) {
        CColorRamp ramp = cli::MakeRamp(settings.ramp.toStdString());
        source.SetColorRamp(&ramp);
        source.SetDisplayType(DISPLAY_RAMP);
    }
}

/// The engine's planes with its own answer where the area is, put together as it does it itself.
bool LayerSource::DrawMasked(CBoundingBox& box, const Shapes& mask, QImage& image) {
    CRasterSource& source = Shown();
    CAOISource area;
    AddShapes(area, mask);
    CRasterAOI onGrid(&source, &area);
    onGrid.Initialize();
    const int w = image.width();
    const int h = image.height();
    const std::size_t size = static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
    std::vector<unsigned char> red(size);
    std::vector<unsigned char> green(size);
    std::vector<unsigned char> blue(size);
    std::vector<unsigned char> inside(size);
    unsigned char* planes[] = {red.data(), green.data(), blue.data()};
    if (!source.GetMaskedShowData(&box, w, h, 3, planes, &onGrid, inside.data()))
        return false;
    const int opaque = qRound(255.0F * (1.0F - source.m_transparency));
    auto* pixel = reinterpret_cast<QRgb*>(image.bits());
    for (std::size_t i = 0; i < size; ++i)
        pixel[i] = inside[i] != 0 ? qRgba(red[i], green[i], blue[i], opaque) : 0;
    return true;
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
