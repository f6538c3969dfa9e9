#include "zelto/display/ImgEnhance.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/raster/RasterBand.h"

#include "tests/fuzz/InterfaceScene.h"

#include <gdal_priv.h>

#include <algorithm>

namespace zelto::fuzz {

namespace {

/// A side of a buffer: small, or such that there is nothing to hold.
int ReadSide(InputBytes& bytes) {
    const int side = bytes.Count();
    return side > 64 ? side % 64 : side;
}

struct Window {
    int x, y, width, height, bufWidth, bufHeight;
    std::size_t Samples() const { return PictureSize{bufWidth, bufHeight}.Pixels(); }
};

Window ReadWindow(InputBytes& bytes) {
    Window window{};
    for (int* field : {&window.x, &window.y, &window.width, &window.height})
        *field = bytes.Count();
    window.bufWidth = ReadSide(bytes);
    window.bufHeight = ReadSide(bytes);
    return window;
}

void ReadBlock(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    const Window w = ReadWindow(bytes);
    // Eight bytes a sample: the widest of the types.
    std::vector<double> samples(w.Samples());
    if (band != nullptr)
        band->ReadBlock(w.x, w.y, w.width, w.height, samples.data(), w.bufWidth, w.bufHeight,
                        static_cast<PixelDataType>(bytes.Below(8)), 0, 0);
}

void WriteBlock(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    const Window w = ReadWindow(bytes);
    std::vector<double> samples(w.Samples(), bytes.Number());
    if (band != nullptr)
        band->WriteBlock(w.x, w.y, w.width, w.height, samples.data(), w.bufWidth, w.bufHeight,
                         PDT_Float64, 0, 0);
}

void CacheData(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    const Window w = ReadWindow(bytes);
    if (band == nullptr)
        return;
    band->GetData(w.x, w.y, w.width, w.height, w.bufWidth, w.bufHeight);
    band->GetCacheDataMean();
}

void AskCache(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    const double x = bytes.Number();
    const double y = bytes.Number();
    if (band == nullptr)
        return;
    double value = 0.0;
    unsigned char color[4];
    band->GetNearestValueAt(x, y, &value);
    band->GetBilinearValueAt(x, y, bytes.Byte() == 5 ? nullptr : &value);
    band->GetShowValueAt(x, y, color);
    band->GetRGBDataFromColorTable(x, y, color[0], color[1], color[2], color[3]);
    band->Convert2ShowValue(bytes.Number());
    band->Convert2Byte(bytes.Number());
}

void Release(Scene& scene, InputBytes& bytes) {
    if (CRasterBand* band = scene.Band(bytes))
        band->ReleaseCache();
}

void ComputeStatistics(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    double results[4];
    double excluded = bytes.Number();
    if (band == nullptr)
        return;
    band->ComputeMinMax(&results[0], &results[1], bytes.Flag());
    band->ComputeStatics(&results[0], &results[1], &results[2], &results[3], bytes.Flag(), nullptr);
    band->ComputeStaticsFromCustom(results[0], results[1], results[2], results[3],
                                   bytes.Flag() ? &excluded : nullptr);
}

void CountValues(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    const int buckets = ReadSide(bytes);
    std::vector<int> counts(static_cast<std::size_t>(std::max(buckets, 1)));
    const double low = bytes.Number();
    if (band != nullptr)
        band->GetHistogram(low, bytes.Number(), buckets, counts.data(), bytes.Flag(), bytes.Flag(),
                           nullptr);
}

void SetHistogram(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    const int buckets = ReadSide(bytes);
    std::vector<int> counts(static_cast<std::size_t>(std::max(buckets, 1)));
    for (int& count : counts)
        count = bytes.Count();
    const double low = bytes.Number();
    if (band != nullptr)
        band->SetCustomHistogram(low, bytes.Number(), buckets,
                                 bytes.Byte() == 5 ? nullptr : counts.data());
}

void SetStretchData(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    const auto type = static_cast<StretchType>(bytes.Below(11));
    const std::vector<double> a = bytes.Numbers(6);
    if (band == nullptr)
        return;
    band->SetStretchData(type, a[0], a[1], a[2], a[3], a[4], a[5]);
    band->SetStretchType(static_cast<StretchType>(bytes.Below(11)));
}

void SetEnhancement(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    std::vector<unsigned char> table(256, bytes.Byte());
    std::vector<CPoint2D> points(3);
    if (band == nullptr)
        return;
    band->SetEnhancedData(bytes.Byte() == 5 ? nullptr : table.data(), HistogramLineCurve,
                          bytes.Flag() ? points.data() : nullptr, bytes.Below(4));
    if (band->GetEnhancer() != nullptr)
        band->GetEnhancer()->GetEnhancedValue(bytes.Byte());
}

void SetRange(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    if (band == nullptr)
        return;
    const double low = bytes.Number();
    band->StoreMinMax(low, bytes.Number());
    band->SetStoredMinMaxFixed(bytes.Flag());
    band->SetNoDataValue(bytes.Number(), false);
    band->SetAutoLevelThresold(bytes.Number());
}

void SetPalette(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    std::vector<tagColorEntry> entries(5);
    if (band == nullptr)
        return;
    const int count = bytes.Below(7) - 1;
    band->SetColorTable(bytes.Byte() == 5 || count > 5 ? nullptr : entries.data(), count);
    if (bytes.Flag())
        band->SetColorTable(static_cast<GDALColorTable*>(nullptr));
}

void UseOverview(Scene& scene, InputBytes& bytes) {
    CRasterBand* band = scene.Band(bytes);
    CRasterBand* overview = band != nullptr ? band->GetOverview(bytes.Count()) : nullptr;
    if (overview == nullptr)
        return;
    overview->GetData(0, 0, overview->GetWidth(), overview->GetHeight(), 8, 8);
    double value = 0.0;
    overview->GetNearestValueAt(bytes.Number(), bytes.Number(), &value);
}

} // namespace

std::span<const Operation> BandOperations() {
    static constexpr Operation OPERATIONS[] = {
        ReadBlock,         WriteBlock,  CacheData,    AskCache,       Release,
        ComputeStatistics, CountValues, SetHistogram, SetStretchData, SetEnhancement,
        SetRange,          SetPalette,  UseOverview,
    };
    return OPERATIONS;
}

} // namespace zelto::fuzz
