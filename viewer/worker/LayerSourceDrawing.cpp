#include "zelto/aoi/AOISource.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/display/StretchPreparation.h"
#include "zelto/raster/RasterBand.h"

#include "host/base/Failure.h"
#include "host/picture/Drawing.h"
#include "host/picture/RenderRamps.h"
#include "viewer/worker/AreaFiles.h"
#include "viewer/worker/LayerClasses.h"
#include "viewer/worker/LayerSource.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>

namespace zelto::view {

namespace {

constexpr auto DISPLAY_RAMP = static_cast<DataDisplayType>(1);

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(LayerSource)
};

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

/// Makes an image that is not premultiplied let through.
void Fade(QImage& image, float transparency) {
    if (transparency <= 0.0F)
        return;
    auto* pixel = reinterpret_cast<QRgb*>(image.bits());
    const qsizetype count = image.sizeInBytes() / qsizetype{sizeof(QRgb)};
    for (QRgb* const end = pixel + count; pixel != end; ++pixel) {
        const int alpha = qRound(static_cast<float>(qAlpha(*pixel)) * (1.0F - transparency));
        *pixel = (*pixel & RGB_MASK) | (static_cast<QRgb>(alpha) << 24);
    }
}

} // namespace

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
        drawn = DrawMasked(view, mask, image, reason);
    } else {
        // A composed image is adjusted and made transparent while it is drawn.
        drawn = source.GetShowData(&box, image.width(), image.height(), image.bits(), false);
        if (drawn && !m_composed)
            source.ApplyShowDataHISC(image.width(), image.height(), image.bits());
        if (!drawn)
            reason = ReasonOr(m_origin.Path() + ": " + Texts::tr("its pixels cannot be read"));
    }
    if (drawn && IsFadedAfterwards(settings))
        Fade(image, settings.transparency);
    return drawn && applied && ApplyMask(view, image, reason);
}

/// Where the file is see-through, its image is.
bool LayerSource::ApplyMask(const ViewTransform& view, QImage& image, QString& reason) {
    if (!m_mask)
        return true;
    try {
        host::ApplyMask(*m_mask, m_origin.Path().toStdString(),
                        {view.Box(), image.width(), image.height()}, image.bits());
        return true;
    } catch (const host::Failure& failure) {
        reason = QString::fromStdString(failure.what());
        return false;
    }
}

/// The engine draws a single band's greys and classes as opaque as they are.
bool LayerSource::IsFadedAfterwards(const DisplaySettings& settings) {
    if (m_composed || settings.bands.size() != 1 || !settings.ramp.isEmpty())
        return false;
    const CRasterBand* band = BandOf(settings.bands.front());
    return ShowsClasses(settings) || (band != nullptr && !band->IsHaveColorTable());
}

/// A colour table that has been changed is shown as classes: the file's own stays as it is.
bool LayerSource::ShowsClasses(const DisplaySettings& settings) const {
    return m_hasClassTable || (!m_classes.empty() && !settings.classes.empty() &&
                               settings.bands == std::vector<int>{0});
}

void LayerSource::Prepare(const DisplaySettings& settings) {
    QString reason;
    if (!settings.ofView && !Apply(settings, Shown().GetExtent(), reason))
        m_applied.reset();
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

void LayerSource::ApplyLook(CRasterSource& source, const DisplaySettings& settings) {
    source.m_hue = settings.hue;
    source.m_intensity = settings.intensity;
    source.m_saturation = settings.saturation;
    source.m_contrast = settings.contrast;
    source.m_transparency = IsFadedAfterwards(settings) ? 0.0F : settings.transparency;
    ApplyClasses(source, settings);
    if (!settings.ramp.isEmpty()) {
        CColorRamp ramp = host::MakeRamp(settings.ramp.toStdString());
        source.SetColorRamp(&ramp);
        source.SetDisplayType(DISPLAY_RAMP);
    }
}

void LayerSource::ApplyClasses(CRasterSource& source, const DisplaySettings& settings) const {
    if (ShowsClasses(settings)) {
        CClassifyDisplayTable table = TableOf(Edited(m_classes, settings.classes));
        source.SetClassifyDisplayTable(&table);
        source.SetDisplayType(DISPLAY_CLASSIFIED);
    } else {
        source.SetClassifyDisplayTable(nullptr);
        source.SetDisplayType(DISPLAY_DEFAULT);
    }
}

bool LayerSource::DrawMasked(const ViewTransform& view, const Shapes& mask, QImage& image,
                             QString& reason) {
    CAOISource area;
    AddShapes(area, mask);
    try {
        host::DrawMasked(Shown(), area, {view.Box(), image.width(), image.height()}, false,
                         host::ChannelOrder::BlueFirst, image.bits());
        return true;
    } catch (const host::Failure& failure) {
        reason = QString::fromStdString(failure.what());
        return false;
    }
}

} // namespace zelto::view
