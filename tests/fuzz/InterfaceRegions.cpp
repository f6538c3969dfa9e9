#include "zelto/algorithm/ImgSamplePixels.h"
#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/aoi/AOIMask.h"
#include "zelto/coordinate/Reproject.h"
#include "zelto/raster/RasterBand.h"

#include "tests/fuzz/InterfaceScene.h"

#include <algorithm>

namespace zelto::fuzz {

namespace {

/// Room for a number per band, and a matrix of them.
struct Results {
    std::vector<double> min, max, mean, deviation, matrix;
    __int64 count = 0;

    explicit Results(const CRasterSource& source) {
        const auto bands = static_cast<std::size_t>(std::max(source.GetBandCount(), 1));
        for (auto* list : {&min, &max, &mean, &deviation})
            list->resize(bands);
        matrix.resize(bands * bands);
    }
};

CDrawShape* ShapeOf(Scene& scene, InputBytes& bytes) {
    const int which = bytes.Below(4);
    return which == 0 ? scene.shape.get() : scene.area.GetDrawShape(which - 1);
}

void MakeRegion(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.region = std::make_unique<CRasterAOI>(bytes.Byte() == 5 ? nullptr : &source,
                                                bytes.Byte() == 5 ? nullptr : &scene.area);
}

void AskRegion(Scene& scene, InputBytes& bytes) {
    if (!scene.region)
        return;
    CRasterAOI& region = *scene.region;
    auto box = ReadBox(bytes, scene.sources[0]);
    region.IsInAOI(bytes.Count(), bytes.Count());
    region.IsdfInAOI(bytes.Number(), bytes.Number());
    region.TopoRelationWithBoundingBox(PointerTo(box));
    const int x = bytes.Count();
    const int y = bytes.Count();
    const int width = bytes.Count();
    region.ReadCacheAoiBuffer(x, y, width, bytes.Count());
}

void BoundRegion(Scene& scene, InputBytes& bytes) {
    if (!scene.region)
        return;
    if (bytes.Flag())
        scene.region = std::make_unique<CRasterAOI>(*scene.region);
    scene.region->GetRect();
    scene.region->GetExtent();
}

void ComputeRegion(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    Results r(source);
    const bool covariance = bytes.Flag();
    CRasterAlgorithm::ComputeStaticsFromAOI(
        &source, scene.region.get(), r.count, r.min.data(), r.max.data(),
        bytes.Byte() == 5 ? nullptr : r.mean.data(), covariance ? r.matrix.data() : nullptr,
        bytes.Flag(), nullptr);
}

void ComputeShape(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    Results r(source);
    CRasterAlgorithm::ComputeStaticsFromDrawshape(
        &source, ShapeOf(scene, bytes), r.count, r.min.data(), r.max.data(), r.mean.data(),
        bytes.Flag() ? r.matrix.data() : nullptr, nullptr);
    CImgSamplePixels samples(1.0);
    CRasterAlgorithm::GetSamplePixelFromDrawShape(&source, ShapeOf(scene, bytes), &samples);
    samples.Get(bytes.Count(), bytes.Count());
}

/// Rasters without samples of their own: to bring any of their windows to millions of samples
/// takes a second, of which nothing is learnt.
bool IsSmall(const CRasterSource& source) {
    return source.GetWidth() < 1000;
}

void ComputeReport(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    CRegionStatistics report(&source);
    auto box = ReadBox(bytes, source);
    switch (bytes.Below(4)) {
    case 0:
        report.SetAOI(&scene.area);
        break;
    case 1:
        report.SetShape(ShapeOf(scene, bytes));
        break;
    case 2:
        report.SetBox(box.value_or(CBoundingBox()));
        break;
    default:
        report.SetBands({bytes.Count(), bytes.Count()});
    }
    report.SetApprox(bytes.Flag());
    report.Compute(nullptr);
    if (!IsSmall(source))
        return;
    report.ComputeCovariance(nullptr);
    const double low = bytes.Number();
    report.ComputePercentiles(low, bytes.Number(), nullptr);
    std::vector<__int64> counts(static_cast<std::size_t>(bytes.Below(20)));
    const double start = bytes.Number();
    report.ComputeHistogram(bytes.Count(), start, bytes.Number(), counts, nullptr);
}

void ComputeMask(Scene& scene, InputBytes& bytes) {
    const CBoundingBox box = ReadBox(bytes, scene.sources[0]).value_or(CBoundingBox());
    const PictureSize size = ReadSize(bytes);
    const CAOIMask mask(bytes.Byte() == 5 ? nullptr : &scene.area, box, size.width, size.height);
    mask.IsPointIn(bytes.Count(), bytes.Count());
    mask.IsPoint2DIn(bytes.Number(), bytes.Number());
}

void Reproject(Scene& scene, InputBytes& bytes) {
    constexpr const char* TARGETS[] = {"EPSG:4326", "EPSG:3857", "EPSG:32651", nullptr};
    CRasterSource& source = scene.Source(bytes);
    const std::unique_ptr<CReproject> way(
        CReproject::Create(&source, TARGETS[bytes.Below(4)], nullptr, nullptr));
    if (!way)
        return;
    CBoundingBox box = ReadBox(bytes, source).value_or(CBoundingBox());
    CBoundingBox mapped = box;
    way->SetMeanElevation(bytes.Number());
    way->Src2DestBox(box, mapped, 0.0, 0.0);
    // Steps that suit the boxes: the finest ones allowed take seconds.
    const auto steps = static_cast<double>(1 + bytes.Below(30));
    way->Src2DestBox(box, mapped, box.GetWidth() / steps, box.GetHeight() / steps);
    const double stepX = mapped.GetWidth() / steps;
    const double stepY = mapped.GetHeight() / steps;
    way->CreateGrid(mapped, stepX, stepY, static_cast<unsigned>(bytes.Below(5)));
    CRect window;
    way->GetInImgEnveFromGeoOut(mapped, &window, stepX, stepY);
    std::vector<double> x = bytes.Numbers(3);
    std::vector<double> y = bytes.Numbers(3);
    double column[3];
    double row[3];
    way->GetSrcPos(x.data(), y.data(), column, row, 3);
}

} // namespace

std::span<const Operation> RegionOperations() {
    static constexpr Operation OPERATIONS[] = {
        MakeRegion,   AskRegion,     BoundRegion, ComputeRegion,
        ComputeShape, ComputeReport, ComputeMask, Reproject,
    };
    return OPERATIONS;
}

} // namespace zelto::fuzz
